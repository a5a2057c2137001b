/// What every measurement needs: one CPU, children that end with it, a folder, turns, quantiles.
#ifndef OLT_BENCH_SUPPORT_H
#define OLT_BENCH_SUPPORT_H

#include <sys/types.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "tests/support/folder.h"

namespace olt::bench {

[[noreturn]] void fail(const std::string &line);

/// Fails with errno's text unless the condition holds.
void require(bool holds, const char *what);

/// Binds this process, and the children to come, to the last CPU that it may use.
void pin_to_one_cpu();

using test::Folder;

/// Writes a file of the caller's own.
void write_file(const std::string &path, const std::string &content);

/// A child process that ends with its parent, or before.
class Child {
 public:
  /// Runs the body in the child, and waits until it has written a line to the descriptor `ready`:
  /// the child serves then.
  explicit Child(const std::function<void(int ready)> &body);
  /// The same for a program that writes the line to its standard output.
  explicit Child(const std::vector<std::string> &command);
  Child(const Child &) = delete;
  Child &operator=(const Child &) = delete;
  ~Child();

  pid_t process() const { return process_; }
  const std::string &first_line() const { return first_line_; }

 private:
  void wait_until_ready();

  pid_t process_;
  int lines_;
  std::string first_line_;
};

/// What a child writes when it serves.
void say_ready(int ready);

/// Runs a program to its end, with its output thrown away. Fails unless it succeeds.
void run(const std::vector<std::string> &command);

double quantile(std::vector<double> values, double part);

/// What the calls of one side took.
struct Times {
  double p50() const { return quantile(all, 0.5); }

  std::vector<double> all;
  std::vector<double> medians;  ///< one for each round
};

/// Microseconds that the call takes.
double time_of(const std::function<void()> &call);

struct Turns {
  int warm_up;
  int rounds;
  int calls;  ///< of each side in a round
};

/// Calls the sides in turns, round by round, so that all see the same weather.
/// @return microseconds, in the order of the sides.
std::vector<Times> take_turns(std::span<const std::function<void()>> sides, const Turns &turns);

}  // namespace olt::bench

#endif
