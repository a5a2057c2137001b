#include "tests/support/folder.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace olt::test {

Folder::Folder() : path_((std::filesystem::temp_directory_path() / "olt-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), path_);
  }
}

Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string Folder::operator/(std::string_view name) const {
  return path_ + "/" + std::string(name);
}

std::string Folder::write(std::string_view name, std::string_view content) const {
  write_file(*this / name, content);
  return *this / name;
}

std::string read_file(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void write_file(const std::string &path, std::string_view content) {
  std::ofstream(path, std::ios::binary) << content;
}

}  // namespace olt::test
