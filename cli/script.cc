#include "cli/script.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <istream>
#include <vector>

#include "cli/commands.h"
#include "cli/text/error.h"
#include "cli/text/words.h"

namespace olt::cli {

namespace {

void run_lines(Session &session, const std::string &name, std::istream &lines) {
  std::string line;
  for (size_t number = 1; std::getline(lines, line); ++number) {
    try {
      std::vector<std::string> words = split_words(line);
      if (!words.empty()) run_line(session, words);
    } catch (const Error &error) {
      throw Error(error.status(), fmt::format("{}:{}: {}", name, number, error.what()));
    }
  }
}

}  // namespace

void run_script(Session &session, const std::string &path) {
  if (path == "-") {
    run_lines(session, "standard input", std::cin);
    return;
  }
  errno = 0;
  std::ifstream file(path);
  file.peek();
  if (file.fail() && !file.eof()) {
    wrong_usage("oltctl: cannot read the script {}: {}; expected a file with a command a line",
                path, std::strerror(errno != 0 ? errno : EIO));
  }
  run_lines(session, path, file);
}

}  // namespace olt::cli
