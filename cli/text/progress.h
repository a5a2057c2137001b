/// How far a long transfer is, for whoever waits at a terminal or reads a log.
#ifndef OLT_CLI_TEXT_PROGRESS_H
#define OLT_CLI_TEXT_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace olt::cli {

/// How fast a transfer is, from its begin on.
class Pace {
 public:
  explicit Pace(uint64_t total) : total_(total), begin_(std::chrono::steady_clock::now()) {}

  std::chrono::milliseconds elapsed() const;
  uint64_t bytes_per_second(uint64_t done) const;
  /// Rounded up, so that nothing is left only at the end.
  std::chrono::seconds left(uint64_t done) const;

 private:
  uint64_t total_;
  std::chrono::steady_clock::time_point begin_;
};

/// Lines on standard error. A terminal shows one line, which is redrawn; elsewhere there is a line
/// for every tenth of the transfer.
class Progress {
 public:
  /// @param title in front of each line
  Progress(std::string title, uint64_t total);
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;
  /// Ends a terminal's line.
  ~Progress();

  /// Shows bytes, rate and the time left.
  void show(uint64_t done);
  /// Shows a text in their place.
  void show(const std::string &text);

 private:
  bool is_due(uint64_t done);
  std::string line(uint64_t done) const;
  void write(const std::string &text);

  std::string title_;
  uint64_t total_;
  bool is_terminal_;
  Pace pace_;
  std::chrono::milliseconds next_draw_{0};  ///< after the begin
  uint64_t tenths_ = 0;                     ///< that have a line
  size_t columns_ = 0;                      ///< of the terminal's line that are in use
};

/// "1.5 MiB".
std::string size_text(uint64_t bytes);

/// "1m30s".
std::string time_text(std::chrono::seconds time);

}  // namespace olt::cli

#endif
