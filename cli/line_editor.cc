#include "cli/line_editor.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "base/text.h"
#include "base/width.h"
#include "cli/commands.h"
#include "cli/completion.h"
#include "cli/text/error.h"
#include "cli/text/file.h"
#include "cli/text/terminal_size.h"

namespace olt::cli {

namespace {

using Context = LineEditor::Context;
using Words = std::vector<std::string>;

const Context &context_of(EditLine *editor) {
  Context *context = nullptr;
  el_get(editor, EL_CLIENTDATA, &context);
  return *context;
}

/// Reads one character for the editor.
int read_key(EditLine *editor, wchar_t *key) {
  const Context &context = context_of(editor);
  std::mbstate_t state{};
  char byte = 0;
  while (context.signals.wait_for_key() && ::read(STDIN_FILENO, &byte, 1) == 1) {
    size_t length = std::mbrtowc(key, &byte, 1, &state);
    if (length <= 1) return 1;
    if (length == static_cast<size_t>(-1)) state = {};
  }
  return -1;
}

char *prompt_of(EditLine *editor) {
  return const_cast<std::string &>(context_of(editor).prompt).data();
}

std::string_view before_cursor(EditLine *editor) {
  const LineInfo *line = el_line(editor);
  return {line->buffer, static_cast<size_t>(line->cursor - line->buffer)};
}

// Completion.

/// The paths that begin with the word, which has something before the path; directories end with
/// '/'. Hidden files must be asked for.
Words paths(std::string_view word, const Completion &completion) {
  std::string path(word.substr(completion.before.size()));
  size_t name_begin = path.find_last_of('/') == std::string::npos ? 0 : path.find_last_of('/') + 1;
  std::string folder = path.substr(0, name_begin);
  std::string name = path.substr(name_begin);
  Words found;
  std::error_code error;
  for (std::filesystem::directory_iterator at(folder.empty() ? "." : folder, error), end;
       !error && at != end; at.increment(error)) {
    std::string entry = at->path().filename();
    bool is_folder = at->is_directory(error);
    bool is_wanted = is_folder || completion.kind == Completion::Kind::kFiles;
    if (!is_wanted || !entry.starts_with(name) || (name.empty() && entry[0] == '.')) continue;
    found.push_back(
        fmt::format("{}{}{}{}", completion.before, folder, entry, is_folder ? "/" : ""));
  }
  std::sort(found.begin(), found.end());
  return found;
}

/// The words of the shell itself are there, too.
Words first_words_of_shell(std::string_view word, Words words) {
  for (const char *own : {"exit", "quit"}) {
    if (std::string_view(own).starts_with(word)) words.emplace_back(own);
  }
  return words;
}

Words words_at_cursor(std::span<const std::string> before, std::string_view word,
                      const catalog::Layout &layout) {
  Completion completion = complete_word(commands(), before, word, layout);
  if (completion.kind != Completion::Kind::kWords) return paths(word, completion);
  return before.empty() ? first_words_of_shell(word, std::move(completion.words))
                        : std::move(completion.words);
}

std::string common_beginning(const Words &words) {
  std::string common = words.front();
  for (const std::string &word : words) {
    auto [end, other] = std::mismatch(common.begin(), common.end(), word.begin(), word.end());
    common.erase(end, common.end());
  }
  return common;
}

/// Characters that would end the word, or mean something else, get a backslash.
std::string typed(std::string_view text) {
  std::string escaped;
  for (char character : text) {
    if (std::string_view(" \t'\"\\").find(character) != std::string_view::npos) escaped += '\\';
    escaped += character;
  }
  return escaped;
}

/// The words in columns as wide as the screen, read downwards, without what all have in common up
/// to the last separator.
std::string in_columns(const Words &words, size_t screen) {
  size_t begin = common_beginning(words).find_last_of("=@/") + 1;
  size_t width = 0;
  Words cells;
  for (const std::string &word : words) {
    cells.push_back(printable(word.substr(begin)));
    width = std::max(width, display_width(cells.back()) + 2);
  }
  size_t columns = std::max<size_t>(1, (screen + 1) / width);
  size_t rows = (cells.size() + columns - 1) / columns;
  std::string text;
  for (size_t row = 0; row < rows; ++row) {
    for (size_t at = row; at < cells.size(); at += rows) {
      text += cells[at];
      if (at + rows < cells.size()) text.append(width - display_width(cells[at]), ' ');
    }
    text += '\n';
  }
  return text;
}

unsigned char complete_at_cursor(EditLine *editor, int /*key*/) {
  Words before = words_to_complete(before_cursor(editor));
  if (before.empty()) return CC_REFRESH_BEEP;
  std::string word = std::move(before.back());
  before.pop_back();
  Words found = words_at_cursor(before, word, context_of(editor).layout);
  if (found.empty()) return CC_REFRESH_BEEP;
  std::string rest = typed(common_beginning(found).substr(word.size()));
  bool is_open = found.front().ends_with('=') || found.front().ends_with('/');
  if (found.size() == 1 && !is_open) rest += ' ';
  if (!rest.empty()) return el_insertstr(editor, rest.c_str()) == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
  size_t columns = terminal_size().value_or(kUsualTerminal).columns;
  print(fmt::format("\n{}", in_columns(found, columns)));
  return CC_REDISPLAY;
}

// Help.

/// The operations and commands that begin with the word, with their summaries.
std::string summaries(std::string_view word, const catalog::Layout &layout) {
  std::string text;
  for (const std::string &name : words_at_cursor({}, word, layout)) {
    const Command *command = find_command(name);
    const catalog::Operation *operation = layout.find(name);
    if (operation == nullptr && command == nullptr) continue;
    text += fmt::format("  {:<42}{}\n", name,
                        operation != nullptr ? operation->summary : command->summary);
  }
  return text;
}

/// What '?' shows in this place; empty where it is a character like others.
std::string help_at_cursor(const Words &words, const catalog::Layout &layout) {
  if (words.size() == 1) return words[0].empty() ? shell_help_text() : summaries(words[0], layout);
  if (words.empty() || !words.back().empty()) return "";
  try {
    return help_text(words[0], layout);
  } catch (const Error &error) {
    return fmt::format("{}\n", error.what());
  }
}

unsigned char show_help(EditLine *editor, int /*key*/) {
  std::string text =
      help_at_cursor(words_to_complete(before_cursor(editor)), context_of(editor).layout);
  if (text.empty()) return el_insertstr(editor, "?") == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
  print("\n");
  print(text);
  return CC_REDISPLAY;
}

}  // namespace

LineEditor::LineEditor(std::string prompt, History *lines, const ShellSignals &signals,
                       const catalog::Layout &layout)
    : context_{std::move(prompt), signals, layout},
      editor_(el_init("oltctl", stdin, stdout, stderr)) {
  el_set(editor_, EL_CLIENTDATA, &context_);
  el_set(editor_, EL_GETCFN, read_key);
  el_set(editor_, EL_PROMPT, prompt_of);
  el_set(editor_, EL_EDITOR, "emacs");
  el_set(editor_, EL_HIST, history, lines);
  // The narrow form leaks its copies of the two texts.
  el_wset(editor_, EL_ADDFN, L"olt-complete", L"Completes from the catalog", complete_at_cursor);
  el_wset(editor_, EL_ADDFN, L"olt-help", L"Shows what may come next", show_help);
  el_set(editor_, EL_BIND, "^I", "olt-complete", nullptr);
  el_set(editor_, EL_BIND, "?", "olt-help", nullptr);
}

LineEditor::~LineEditor() {
  el_end(editor_);
}

std::optional<std::string> LineEditor::line() {
  while (!ShellSignals::told_to_end()) {
    int count = 0;
    ShellSignals::clear();
    // Else the terminal would still process keys typed right after the prompt.
    el_set(editor_, EL_PREP_TERM, 1);
    const char *text = el_gets(editor_, &count);
    if (text != nullptr && count > 0) {
      std::string line(text, static_cast<size_t>(count));
      if (line.ends_with('\n')) line.pop_back();
      return line;
    }
    if (!ShellSignals::interrupted()) break;
    el_reset(editor_);
    fmt::print("\n");
  }
  return std::nullopt;
}

}  // namespace olt::cli
