#include "cli/watch/frame.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <optional>

#include "base/text.h"
#include "base/width.h"
#include "cli/text/error.h"
#include "cli/text/file.h"
#include "cli/text/terminal_size.h"

namespace olt::cli {

namespace {

constexpr const char *kHome = "\x1b[H";
constexpr const char *kClear = "\x1b[2J";
constexpr const char *kClearRest = "\x1b[J";
constexpr const char *kClearLine = "\x1b[K";
constexpr const char *kReverseVideo = "\x1b[7m";
constexpr const char *kPlainVideo = "\x1b[0m";

/// Held while a frame is written.
std::mutex drawing;
bool is_drawn_on = false;

std::vector<std::string> lines_in(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    size_t end = std::min(text.find('\n'), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

/// Words with the blanks before them.
std::vector<std::string> words_with_blanks(std::string_view line) {
  std::vector<std::string> words;
  while (!line.empty()) {
    size_t begin = std::min(line.find_first_not_of(' '), line.size());
    size_t end = std::min(line.find(' ', begin), line.size());
    words.emplace_back(line.substr(0, end));
    line.remove_prefix(end);
  }
  return words;
}

std::string_view without_blanks(std::string_view word) {
  return word.substr(std::min(word.find_first_not_of(' '), word.size()));
}

FrameLine changed_line(const std::vector<std::string> &words,
                       const std::vector<std::string> &before) {
  FrameLine line = {{}, true};
  for (size_t i = 0; i < words.size(); ++i) {
    bool is_same = i < before.size() && without_blanks(words[i]) == without_blanks(before[i]);
    std::string_view word = without_blanks(words[i]);
    line.parts.push_back({words[i].substr(0, words[i].size() - word.size()), false});
    line.parts.push_back({std::string(word), !is_same});
  }
  return line;
}

}  // namespace

std::vector<FrameLine> TextChanges::next(std::string_view text) {
  std::vector<std::string> lines = lines_in(text);
  std::vector<FrameLine> frame;
  for (const std::string &line : lines) {
    if (is_first_ || std::find(before_.begin(), before_.end(), line) != before_.end()) {
      frame.push_back({{{line, false}}, false});
      continue;
    }
    std::vector<std::string> words = words_with_blanks(line);
    auto like = std::find_if(before_.begin(), before_.end(), [&words](const std::string &other) {
      std::vector<std::string> others = words_with_blanks(other);
      return !words.empty() && !others.empty() && words[0] == others[0];
    });
    frame.push_back(changed_line(
        words, like == before_.end() ? std::vector<std::string>() : words_with_blanks(*like)));
  }
  before_ = std::move(lines);
  is_first_ = false;
  return frame;
}

Screen::Screen() {
  const char *kind = std::getenv("TERM");
  is_dumb_ = kind == nullptr || std::string_view(kind) == "dumb";
  std::lock_guard lock(drawing);
  is_drawn_on = !is_dumb_;
}

Screen::~Screen() {
  std::lock_guard lock(drawing);
  is_drawn_on = false;
}

std::string Screen::text_of(const FrameLine &line, size_t columns) const {
  std::string text = line.changed ? "* " : "  ";
  size_t room = columns - std::min<size_t>(columns, 2);
  for (const FrameLine::Part &part : line.parts) {
    std::string_view fits = fitting(part.text, room);
    room -= display_width(fits);
    if (part.changed && !is_dumb_) {
      text += fmt::format("{}{}{}", kReverseVideo, fits, kPlainVideo);
    } else {
      text += fits;
    }
    if (fits.size() < part.text.size()) break;
  }
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

void Screen::show(const std::vector<FrameLine> &lines) {
  std::optional<TerminalSize> size = terminal_size();
  size_t columns = size ? size->columns : SIZE_MAX;
  size_t room = size && !is_dumb_ ? size->lines - 1 : SIZE_MAX;
  bool is_cut = lines.size() > room;
  size_t shown = is_cut ? room - std::min<size_t>(room, 1) : lines.size();
  std::string text;
  if (!is_dumb_) text = fmt::format("{}{}", is_first_ ? kClear : "", kHome);
  if (is_dumb_ && !is_first_) text += '\n';
  std::string line_end = is_dumb_ ? "\n" : fmt::format("{}\n", kClearLine);
  for (size_t i = 0; i < shown; ++i) text += text_of(lines[i], columns) + line_end;
  if (is_cut) {
    text += fmt::format("  ({} below){}", counted(lines.size() - shown, "more line"), line_end);
  }
  if (!is_dumb_) text += kClearRest;
  std::lock_guard lock(drawing);
  print(text);
  is_first_ = false;
}

void Screen::leave() {
  drawing.lock();
  if (is_drawn_on) print(fmt::format("{}\n", kPlainVideo));
}

}  // namespace olt::cli
