#include "box/core/listings.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <system_error>

namespace olt::box {

namespace {

constexpr size_t kKept = 1024;
constexpr std::string_view kSuffix = ".txt";

/// The number in KIND-NUMBER.txt; nothing if the name has another form.
std::optional<uint32_t> listing_number(std::string_view name) {
  size_t dash = name.find('-');
  if (dash == 0 || dash == std::string_view::npos || !name.ends_with(kSuffix)) return std::nullopt;
  std::string_view kind = name.substr(0, dash);
  bool plain = std::all_of(kind.begin(), kind.end(), [](char c) { return c >= 'a' && c <= 'z'; });
  std::string_view digits = name.substr(dash + 1, name.size() - dash - 1 - kSuffix.size());
  uint32_t number = 0;
  auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  bool whole = error == std::errc() && end == digits.data() + digits.size();
  if (!plain || digits.size() < 8 || !whole) return std::nullopt;
  return number;
}

}  // namespace

Listings::Listings(std::filesystem::path directory, std::optional<gid_t> group, uint64_t limit)
    : directory_(std::move(directory)),
      placement_({.group = group, .durable = Durable::kNo}),
      limit_(limit) {
  if (group) placement_.mode = 0640;
}

void Listings::find_files(const Descriptor &directory) {
  std::error_code error;
  std::filesystem::directory_iterator entries(directory_, error);
  std::multimap<uint32_t, File> files;
  uint32_t last_number = 0;
  uint64_t total = 0;
  for (const std::filesystem::directory_iterator end; !error && entries != end;
       entries.increment(error)) {
    std::string name = entries->path().filename().string();
    auto number = listing_number(name);
    if (!number) continue;
    last_number = std::max(last_number, *number);
    struct stat found {};
    if (fstatat(directory.get(), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
      if (errno == ENOENT) continue;
      throw StorageFailure((directory_ / name).string() + ": " +
                           std::generic_category().message(errno));
    }
    if (!S_ISREG(found.st_mode)) continue;
    auto length = static_cast<uint64_t>(found.st_size);
    files.emplace(*number, File{std::move(name), length});
    total += length;
  }
  if (error) throw StorageFailure(directory_.string() + ": " + error.message());
  files_ = std::move(files);
  last_number_ = last_number;
  total_ = total;
}

bool Listings::has_room(uint64_t length) const {
  return files_.size() < kKept && total_ + length <= limit_;
}

void Listings::make_room(const Descriptor &directory, uint64_t length) {
  for (auto file = files_.begin(); !has_room(length) && file != files_.end();) {
    if (unlinkat(directory.get(), file->second.name.c_str(), 0) != 0 && errno != ENOENT) {
      ++file;
      continue;
    }
    total_ -= file->second.length;
    file = files_.erase(file);
  }
  if (!has_room(length)) {
    throw StorageFailure(directory_.string() + ": listings that cannot be removed leave no room");
  }
}

std::string Listings::write(std::string_view kind, std::string_view text) {
  if (text.size() > limit_) {
    throw StorageFailure(fmt::format("{}: the listing {} has {} bytes; expected at most {}",
                                     directory_.string(), kind, text.size(), limit_));
  }
  Descriptor directory = open_directory(directory_);
  if (!last_number_) find_files(directory);
  if (*last_number_ == UINT32_MAX) {
    throw StorageFailure(directory_.string() + ": no number is left for another listing");
  }
  make_room(directory, text.size());
  uint32_t number = ++*last_number_;
  std::string name = fmt::format("{}-{:08}{}", kind, number, kSuffix);
  replace_file(directory, name, text, placement_);
  files_.emplace(number, File{name, text.size()});
  total_ += text.size();
  return name;
}

}  // namespace olt::box
