/// A program on a terminal of its own.
#ifndef OLT_TESTS_CLI_TERMINAL_H
#define OLT_TESTS_CLI_TERMINAL_H

#include <sys/ioctl.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace olt::test {

class Terminal {
 public:
  /// @param window its size; zeros for one that does not say its size
  Terminal(const std::vector<std::string> &command, const std::vector<std::string> &environment,
           winsize window = {});
  Terminal(const Terminal &) = delete;
  Terminal &operator=(const Terminal &) = delete;
  ~Terminal();

  void type(const std::string &keys) const;

  /// Waits until the text appears in what was shown since the last call.
  /// @return whether it did; the next call searches after it
  bool shows(const std::string &text);

  /// Waits for the program to end, and kills it if it does not. @return its exit status, or 128 +
  /// the signal that ended it.
  int end();

  /// Everything shown so far.
  const std::string &transcript() const { return transcript_; }
  pid_t pid() const { return pid_; }

 private:
  bool read_more();

  pid_t pid_ = -1;
  int terminal_ = -1;
  std::string transcript_;
  size_t seen_ = 0;
  bool hung_up_ = false;
};

}  // namespace olt::test

#endif
