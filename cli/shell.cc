#include "cli/shell.h"

#include <fmt/format.h>
#include <langinfo.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands.h"
#include "cli/history_line.h"
#include "cli/line_editor.h"
#include "cli/line_history.h"
#include "cli/shell_signals.h"
#include "cli/text/error.h"
#include "cli/text/file.h"
#include "cli/text/pager.h"
#include "cli/text/words.h"
#include "oltmgmt.h"

namespace olt::cli {

namespace {

using Words = std::vector<std::string>;

/// What is typed is UTF-8 even where the locale knows ASCII alone.
void choose_locale() {
  std::setlocale(LC_CTYPE, "");
  if (std::string_view(nl_langinfo(CODESET)) != "UTF-8") std::setlocale(LC_CTYPE, "C.UTF-8");
}

bool is_end(const std::string &word) {
  return word == "exit" || word == "quit";
}

void report(const Error &error) {
  fmt::print(stderr, "{}\n", error.what());
}

/// Says which box commands reach, and warns when they do not.
void greet(Session &session) {
  print(fmt::format("oltctl " OLTMGMT_VERSION " with {}\n"
                    "'help' shows the commands, '?' what may come next, 'exit' ends the shell.\n",
                    session.box().description()));
  try {
    session.box().require_box();
  } catch (const Error &error) {
    report(error);
  }
}

void run_words(Session &session, const Words &words) {
  bool is_own_help = words[0] == "help" && (words.size() == 1 || is_end(words[1]));
  if (is_own_help && words.size() <= 2 && !session.wants_json()) {
    print(shell_help_text());
  } else {
    run_line(session, words);
  }
}

/// Carries out a line.
/// @return whether to go on
bool take_line(Session &session, LineHistory &lines, const ShellSignals &signals,
               const std::string &line) {
  Words words;
  try {
    words = command_words(line);
    if (words.empty()) return true;
    if (words.size() == 1 && is_end(words[0])) return false;
    lines.add(line, history_line(words, session.layout()));
    ShellSignals::DuringCommand during(signals);
    run_words(session, words);
  } catch (const Error &error) {
    if (words.empty()) lines.add(line, std::nullopt);
    if (ShellSignals::interrupted()) {
      fmt::print(stderr, "{}: interrupted\n", words[0]);
    } else {
      report(error);
    }
  }
  return !ShellSignals::told_to_end();
}

}  // namespace

void run_shell(Session &session) {
  if (isatty(STDIN_FILENO) == 0) {
    wrong_usage(
        "shell: standard input is not a terminal; expected one, or -f - to run commands "
        "from standard input");
  }
  choose_locale();
  use_pager();
  ShellSignals signals;
  greet(session);
  LineHistory lines;
  LineEditor editor(fmt::format("oltctl {}> ", session.box().name()), lines.recalled(), signals,
                    session.layout());
  bool goes_on = true;
  while (goes_on) {
    std::optional<std::string> line = editor.line();
    if (!line) {
      print("\n");
      break;
    }
    goes_on = take_line(session, lines, signals, *line);
  }
  lines.save();
}

}  // namespace olt::cli
