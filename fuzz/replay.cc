// Feeds every file of the named directories to a fuzz target, once.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/target.h"

namespace {

std::vector<std::string> files_in(const char *directory) {
  std::vector<std::string> files;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// The buffer is exactly as long as the input, so that sanitizers notice reads past its end.
void replay(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<uint8_t> input{std::istreambuf_iterator<char>(file), {}};
  if (file.bad() || input.size() != std::filesystem::file_size(path)) {
    throw std::runtime_error(path + ": cannot be read");
  }
  // Printed first, so that it names the input that ends the program.
  std::printf("%s\n", path.c_str());
  static_cast<void>(std::fflush(stdout));
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char **argv) {
  try {
    size_t count = 0;
    for (int i = 1; i < argc; ++i) {
      for (const std::string &path : files_in(argv[i])) {
        replay(path);
        ++count;
      }
    }
    LLVMFuzzerTestOneInput(nullptr, 0);
    if (count > 0) return 0;
    static_cast<void>(std::fprintf(
        stderr, "%s: there is nothing to replay; expected directories with inputs\n", argv[0]));
  } catch (const std::exception &error) {
    static_cast<void>(std::fprintf(stderr, "%s: %s\n", argv[0], error.what()));
  }
  return 1;
}
