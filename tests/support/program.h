/// Programs as children of a test.
#ifndef OLT_TESTS_SUPPORT_PROGRAM_H
#define OLT_TESTS_SUPPORT_PROGRAM_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace olt::test {

/// The result of a program.
struct Finished {
  int status = -1;  ///< exit status, or 128 + the signal that ended it
  std::string output;
  std::string errors;
};

/// Replaces this process with a program; adds the variables to its environment. For children.
[[noreturn]] void execute(const std::vector<std::string> &command,
                          const std::vector<std::string> &environment);

/// Waits for the end of a child. @return as Finished::status.
int wait_for(pid_t child);

/// Sends a signal to a child, waits for its end, and sets its identifier to -1. Throws when there
/// is none: the signal would go to all processes. @return as Finished::status.
int end_child(pid_t &child, int signal);

/// Runs a program to its end. The input must fit into a pipe.
Finished run(const std::vector<std::string> &command,
             const std::vector<std::string> &environment = {}, const std::string &input = "");

}  // namespace olt::test

#endif
