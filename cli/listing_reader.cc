#include "cli/listing_reader.h"

#include <algorithm>
#include <system_error>

#include "cli/error.h"
#include "cli/file.h"

namespace olt::cli {

namespace {

constexpr size_t kLongest = size_t{64} * 1024 * 1024;

}  // namespace

std::string listing_name(ByteView field) {
  return {field.begin(), std::find(field.begin(), field.end(), 0)};
}

std::string read_listing(const std::filesystem::path &folder, const std::string &name) {
  if (name.empty() || name.starts_with('.') || name.find('/') != std::string::npos) {
    fail("cannot read the listing: '{}' is not the name of a file in {}", printable(name),
         folder.string());
  }
  std::string path = (folder / name).string();
  std::error_code error;
  std::string text = read_file(path, kLongest, error);
  if (error) fail("cannot read the listing {}: {}", printable(path), error.message());
  return text;
}

}  // namespace olt::cli
