#include "box/core/listings.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <system_error>

#include "base/descriptor.h"

namespace olt::box {

namespace {

constexpr size_t kKept = 1024;
constexpr std::string_view kSuffix = ".txt";

/// The number in KIND-NUMBER.txt; nothing if the name has another form.
std::optional<uint32_t> number_in(std::string_view name) {
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

Listings::Listings(std::filesystem::path directory, std::optional<gid_t> group)
    : directory_(std::move(directory)), placement_({.group = group, .durable = Durable::kNo}) {
  if (group) placement_.mode = 0640;
}

void Listings::find_numbers() {
  std::error_code error;
  std::filesystem::directory_iterator entries(directory_, error);
  std::multimap<uint32_t, std::string> names;
  for (const std::filesystem::directory_iterator end; !error && entries != end;
       entries.increment(error)) {
    std::string name = entries->path().filename().string();
    if (auto number = number_in(name)) names.emplace(*number, name);
  }
  if (error) throw StorageFailure(directory_.string() + ": " + error.message());
  names_ = std::move(names);
  last_number_ = names_.empty() ? 0 : names_.rbegin()->first;
}

std::string Listings::write(std::string_view kind, std::string_view text) {
  Descriptor directory = open_directory(directory_);
  if (!last_number_) find_numbers();
  if (*last_number_ == UINT32_MAX) {
    throw StorageFailure(directory_.string() + ": no number is left for another listing");
  }
  uint32_t number = ++*last_number_;
  std::string name = fmt::format("{}-{:08}{}", kind, number, kSuffix);
  replace_file(directory, name, text, placement_);
  names_.emplace(number, name);
  while (names_.size() > kKept) {
    unlinkat(directory.get(), names_.begin()->second.c_str(), 0);
    names_.erase(names_.begin());
  }
  return name;
}

}  // namespace olt::box
