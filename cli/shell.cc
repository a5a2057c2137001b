#include "cli/shell.h"

#include <histedit.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/box/own_state_folder.h"
#include "cli/commands.h"
#include "cli/completion.h"
#include "cli/history_line.h"
#include "cli/text/error.h"
#include "cli/text/words.h"

namespace olt::cli {

namespace {

constexpr int kHistoryLines = 1000;

volatile std::sig_atomic_t interrupted = 0;
volatile std::sig_atomic_t told_to_end = 0;

/// A signal ends only the wait for a key, so that the embedded box's state is still kept.
void on_signal(int signal) {
  (signal == SIGINT ? interrupted : told_to_end) = 1;
}

/// Delivers signals only while the shell waits for a key, so that none is missed just before.
class Signals {
 public:
  Signals() {
    struct sigaction action {};
    action.sa_handler = on_signal;
    sigset_t caught;
    sigemptyset(&caught);
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
      sigaction(signal, &action, nullptr);
      sigaddset(&caught, signal);
    }
    pthread_sigmask(SIG_BLOCK, &caught, &open_);
  }

  /// Whether a key can be read; not so after a signal.
  bool wait_for_key() const {
    pollfd keys = {STDIN_FILENO, POLLIN, 0};
    return told_to_end == 0 && ppoll(&keys, 1, nullptr, &open_) > 0;
  }

 private:
  sigset_t open_{};
};

/// What the editor's functions need.
struct Context {
  Signals signals;
  const catalog::Layout &layout;
};

/// Reads one character for the editor.
int read_key(EditLine *editor, wchar_t *key) {
  Context *context = nullptr;
  el_get(editor, EL_CLIENTDATA, &context);
  std::mbstate_t state{};
  char byte = 0;
  while (context->signals.wait_for_key() && read(STDIN_FILENO, &byte, 1) == 1) {
    size_t length = std::mbrtowc(key, &byte, 1, &state);
    if (length <= 1) return 1;
    if (length == static_cast<size_t>(-1)) state = {};
  }
  return -1;
}

std::string common_beginning(const std::vector<std::string> &words) {
  std::string common = words.front();
  for (const std::string &word : words) {
    auto [end, other] = std::mismatch(common.begin(), common.end(), word.begin(), word.end());
    common.erase(end, common.end());
  }
  return common;
}

void show(EditLine *editor, const std::vector<std::string> &words) {
  FILE *terminal = nullptr;
  el_get(editor, EL_GETFP, 1, &terminal);
  fmt::print(terminal, "\n");
  for (const std::string &word : words) fmt::print(terminal, "{}\n", word);
}

/// The words before the cursor; the last one may be unfinished or empty.
std::vector<std::string> words_before_cursor(const LineInfo *line) {
  std::string_view text(line->buffer, static_cast<size_t>(line->cursor - line->buffer));
  size_t begin = text.find_last_of(' ');
  begin = begin == std::string_view::npos ? 0 : begin + 1;
  std::vector<std::string> words;
  try {
    words = split_words(text.substr(0, begin));
  } catch (const Error &) {
    return {};
  }
  words.emplace_back(text.substr(begin));
  return words;
}

unsigned char complete(EditLine *editor, int /*key*/) {
  Context *context = nullptr;
  el_get(editor, EL_CLIENTDATA, &context);
  std::vector<std::string> words = words_before_cursor(el_line(editor));
  if (words.empty()) return CC_REFRESH_BEEP;
  std::string prefix = words.back();
  words.pop_back();
  std::vector<std::string> found = candidates(commands(), words, prefix, context->layout);
  if (found.empty()) return CC_REFRESH_BEEP;
  std::string rest = common_beginning(found).substr(prefix.size());
  if (found.size() == 1 && !found.front().ends_with('=')) rest += ' ';
  if (!rest.empty()) return el_insertstr(editor, rest.c_str()) == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
  show(editor, found);
  return CC_REDISPLAY;
}

char *prompt(EditLine * /*editor*/) {
  static char text[] = "oltctl> ";
  return text;
}

/// Lines of earlier shells, and of this one.
class LineHistory {
 public:
  LineHistory() : history_(history_init()), path_(own_state_folder() / "history") {
    HistEvent event;
    history(history_, &event, H_SETSIZE, kHistoryLines);
    history(history_, &event, H_SETUNIQUE, 1);
    history(history_, &event, H_LOAD, path_.c_str());
  }
  LineHistory(const LineHistory &) = delete;
  LineHistory &operator=(const LineHistory &) = delete;
  ~LineHistory() { history_end(history_); }

  History *get() { return history_; }

  void add(const std::string &line) {
    HistEvent event;
    history(history_, &event, H_ENTER, line.c_str());
  }

  void save() {
    HistEvent event;
    std::filesystem::path fresh = path_;
    fresh += ".new";
    std::error_code error;
    if (history(history_, &event, H_SAVE, fresh.c_str()) < 0) {
      error = {errno, std::generic_category()};
    } else {
      std::filesystem::rename(fresh, path_, error);
    }
    if (error) fail("oltctl: cannot write {}: {}", path_.string(), error.message());
  }

 private:
  History *history_;
  std::filesystem::path path_;
};

class Editor {
 public:
  Editor(LineHistory &lines, const catalog::Layout &layout)
      : context_{{}, layout}, editor_(el_init("oltctl", stdin, stdout, stderr)) {
    el_set(editor_, EL_CLIENTDATA, &context_);
    el_set(editor_, EL_GETCFN, read_key);
    el_set(editor_, EL_PROMPT, prompt);
    el_set(editor_, EL_EDITOR, "emacs");
    el_set(editor_, EL_HIST, history, lines.get());
    // The narrow form leaks its copies of the two texts.
    el_wset(editor_, EL_ADDFN, L"olt-complete", L"Completes from the catalog", complete);
    el_set(editor_, EL_BIND, "^I", "olt-complete", nullptr);
  }
  Editor(const Editor &) = delete;
  Editor &operator=(const Editor &) = delete;
  ~Editor() { el_end(editor_); }

  /// The next line, or nothing at the end of input.
  std::optional<std::string> line() {
    while (told_to_end == 0) {
      int count = 0;
      interrupted = 0;
      // Else the terminal would still process keys typed right after the prompt.
      el_set(editor_, EL_PREP_TERM, 1);
      const char *text = el_gets(editor_, &count);
      if (text != nullptr && count > 0) {
        std::string line(text, static_cast<size_t>(count));
        if (line.ends_with('\n')) line.pop_back();
        return line;
      }
      if (interrupted == 0) break;
      el_reset(editor_);
      fmt::print("\n");
    }
    return std::nullopt;
  }

 private:
  Context context_;
  EditLine *editor_;
};

bool is_end(const std::vector<std::string> &words) {
  return words.size() == 1 && (words[0] == "exit" || words[0] == "quit");
}

/// Carries out a line.
/// @return whether to go on
bool take_line(Session &session, LineHistory &lines, const std::string &line) {
  try {
    std::vector<std::string> words = split_words(line);
    if (words.empty()) return true;
    if (is_end(words)) return false;
    if (std::optional<std::string> remembered = history_line(words, session.layout()))
      lines.add(*remembered);
    run_line(session, words);
  } catch (const Error &error) {
    fmt::print(stderr, "{}\n", error.what());
  }
  return true;
}

}  // namespace

void run_shell(Session &session) {
  if (isatty(STDIN_FILENO) == 0) {
    wrong_usage(
        "shell: standard input is not a terminal; expected one, or -f - to run commands "
        "from standard input");
  }
  std::setlocale(LC_CTYPE, "");
  LineHistory lines;
  Editor editor(lines, session.layout());
  bool goes_on = true;
  while (goes_on) {
    std::optional<std::string> line = editor.line();
    if (!line) {
      fmt::print("\n");
      break;
    }
    goes_on = take_line(session, lines, *line);
  }
  lines.save();
}

}  // namespace olt::cli
