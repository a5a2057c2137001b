#include "base/accounts.h"

#include <grp.h>
#include <pwd.h>

#include <cerrno>
#include <charconv>
#include <vector>

namespace olt {

namespace {

constexpr size_t kMaxEntryBytes = size_t{1024} * 1024;

/// Asks the user database, with a buffer that grows until the entry fits.
template <typename Entry, typename Lookup>
std::optional<Entry> look_up(std::vector<char> &buffer, Lookup lookup) {
  Entry entry{};
  Entry *found = nullptr;
  for (buffer.resize(1024); buffer.size() <= kMaxEntryBytes; buffer.resize(buffer.size() * 2)) {
    if (lookup(&entry, buffer.data(), buffer.size(), &found) != ERANGE) break;
  }
  return found != nullptr ? std::optional(entry) : std::nullopt;
}

std::string numbered(const char *name, unsigned number) {
  if (name == nullptr) return std::to_string(number);
  return std::string(name) + " (" + std::to_string(number) + ")";
}

}  // namespace

std::optional<gid_t> find_group(const std::string &name_or_number) {
  std::vector<char> buffer;
  auto entry = look_up<group>(
      buffer, [&](auto... rest) { return getgrnam_r(name_or_number.c_str(), rest...); });
  if (entry) return entry->gr_gid;
  gid_t number{};
  const char *end = name_or_number.data() + name_or_number.size();
  auto [stop, error] = std::from_chars(name_or_number.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::string user_name(uid_t user) {
  std::vector<char> buffer;
  auto entry = look_up<passwd>(buffer, [&](auto... rest) { return getpwuid_r(user, rest...); });
  return numbered(entry ? entry->pw_name : nullptr, user);
}

std::string group_name(gid_t number) {
  std::vector<char> buffer;
  auto entry = look_up<group>(buffer, [&](auto... rest) { return getgrgid_r(number, rest...); });
  return numbered(entry ? entry->gr_name : nullptr, number);
}

}  // namespace olt
