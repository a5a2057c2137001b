#include "cli/output/listing_reader.h"

#include <system_error>

#include "base/text.h"
#include "cli/text/error.h"
#include "cli/text/file.h"

namespace olt::cli {

namespace {

constexpr size_t kLongest = size_t{64} * 1024 * 1024;

}  // namespace

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
