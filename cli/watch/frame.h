/// What a terminal shows of a watch.
#ifndef OLT_CLI_WATCH_FRAME_H
#define OLT_CLI_WATCH_FRAME_H

#include <string>
#include <string_view>
#include <vector>

namespace olt::cli {

/// A line, in parts that changed and parts that did not.
struct FrameLine {
  struct Part {
    std::string text;
    bool changed;
  };
  std::vector<Part> parts;
  bool changed = false;
};

/// Compares each text with the one before it.
class TextChanges {
 public:
  /// The lines of the text. One that the last text had, too, at whatever place, is not changed; of
  /// others, the words differ that are not those of a line with the same first word. Nothing in the
  /// first text is changed.
  std::vector<FrameLine> next(std::string_view text);

 private:
  bool is_first_ = true;
  std::vector<std::string> before_;
};

/// A terminal on which each frame replaces the one before.
class Screen {
 public:
  Screen();
  Screen(const Screen &) = delete;
  Screen &operator=(const Screen &) = delete;
  ~Screen();

  /// Shows as much as fits. Changed lines begin with "*", and their changed parts are in reverse
  /// video. A terminal that cannot move its cursor shows the frames below each other. Throws Error.
  void show(const std::vector<FrameLine> &lines);

  /// From another thread, when the program is about to end: no frame is shown any more, and the
  /// terminal is as it was.
  static void leave();

 private:
  std::string text_of(const FrameLine &line, size_t columns) const;

  bool is_dumb_;
  bool is_first_ = true;
};

}  // namespace olt::cli

#endif
