/// A simulated box in a process of its own, in private folders, for one test.
#ifndef OLT_TESTS_END_TO_END_RUNNING_BOX_H
#define OLT_TESTS_END_TO_END_RUNNING_BOX_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace olt::test {

/// A process of oltbox, or of another program that serves modules. Sets OLT_RUN_DIR, so that the
/// library of this process reaches it.
class RunningBox {
 public:
  RunningBox();
  RunningBox(const RunningBox &) = delete;
  RunningBox &operator=(const RunningBox &) = delete;
  ~RunningBox();

  /// Starts oltbox, with further options, and waits until it is ready.
  void start(const std::vector<std::string> &options = {});
  /// Starts another program on the run directory in its place, and waits until it is ready.
  void start_program(const std::string &program, const std::vector<std::string> &options);
  /// Ends it with the signal. @return its Finished::status.
  int end(int signal);

  pid_t pid() const { return pid_; }
  const std::string &run_dir() const { return run_dir_; }
  const std::string &folder() const { return folder_.path(); }
  /// What the last one has written so far.
  std::string output() const { return read_file(folder_ / "output"); }
  std::string errors() const { return read_file(folder_ / "errors"); }

  /// The content of a listing in the run directory.
  std::string listing(const char (&name)[32]) const;

  /// Runs oltctl on this box.
  Finished oltctl(const std::vector<std::string> &arguments) const;

 private:
  Folder folder_;
  std::string run_dir_;
  pid_t pid_ = -1;
};

}  // namespace olt::test

#endif
