#include "cli/script.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <istream>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "cli/commands.h"
#include "cli/history_line.h"
#include "cli/text/error.h"
#include "cli/text/words.h"

namespace olt::cli {

namespace {

class Script {
 public:
  Script(Session &session, std::string name, bool echoes, bool keeps_going)
      : session_(session), name_(std::move(name)), echoes_(echoes), keeps_going_(keeps_going) {}

  void run(std::istream &lines) {
    std::string line;
    for (size_t number = 1; std::getline(lines, line); ++number) {
      if (number == 1 && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
      try {
        run_words(line);
      } catch (const Error &error) {
        Error placed(error.status(), fmt::format("{}:{}: {}", name_, number, error.what()));
        if (!keeps_going_) throw Error(placed);
        ++failed_;
        fmt::print(stderr, "{}\n", placed.what());
      }
    }
    if (failed_ == 0) return;
    fail("{}: {} of {} failed", name_, failed_, counted(done_ + failed_, "command"));
  }

 private:
  static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

  void run_words(const std::string &line) {
    std::vector<std::string> words = command_words(line);
    if (words.empty()) return;
    if (echoes_) fmt::print(stderr, "+ {}\n", printable(echoed_line(words, session_.layout())));
    run_line(session_, words);
    ++done_;
  }

  Session &session_;
  const std::string name_;
  const bool echoes_;
  const bool keeps_going_;
  size_t done_ = 0;
  size_t failed_ = 0;
};

}  // namespace

void run_script(Session &session, const std::string &path, bool echoes, bool keeps_going) {
  if (path == "-") {
    Script(session, "standard input", echoes, keeps_going).run(std::cin);
    return;
  }
  errno = 0;
  std::ifstream file(path);
  file.peek();
  if (file.fail() && !file.eof()) {
    wrong_usage("oltctl: cannot read the script {}: {}; expected a file with a command a line",
                path, std::strerror(errno != 0 ? errno : EIO));
  }
  Script(session, path, echoes, keeps_going).run(file);
}

}  // namespace olt::cli
