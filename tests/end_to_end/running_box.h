/// A simulated box in a process of its own, in private folders, for one test.
#ifndef OLT_TESTS_END_TO_END_RUNNING_BOX_H
#define OLT_TESTS_END_TO_END_RUNNING_BOX_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace olt::tests {

/// What a program left behind when it ended.
struct Finished {
  int status = -1;  ///< exit status, or 128 + the signal that ended it
  std::string output;
  std::string errors;
};

/// Runs a program to its end, with these variables set on top of this process's environment.
Finished run(const std::vector<std::string> &command,
             const std::vector<std::string> &environment = {});

/// A folder below the system's temporary one, removed with everything in it.
class PrivateFolder {
 public:
  PrivateFolder();
  PrivateFolder(const PrivateFolder &) = delete;
  PrivateFolder &operator=(const PrivateFolder &) = delete;
  ~PrivateFolder();
  const std::string &path() const { return path_; }

 private:
  std::string path_;
};

/// An oltbox process. This process reaches it through the library: OLT_RUN_DIR is set.
class RunningBox {
 public:
  RunningBox();
  RunningBox(const RunningBox &) = delete;
  RunningBox &operator=(const RunningBox &) = delete;
  ~RunningBox();

  /// Starts oltbox, with further options, and waits until it is ready.
  void start(const std::vector<std::string> &options = {});
  /// Ends it by the signal. @return as Finished::status.
  int end(int signal);

  pid_t pid() const { return pid_; }
  const std::string &run_dir() const { return run_dir_; }
  const std::string &folder() const { return folder_.path(); }

  /// Runs oltctl on this box.
  Finished oltctl(const std::vector<std::string> &arguments) const;

 private:
  PrivateFolder folder_;
  std::string run_dir_;
  pid_t pid_ = -1;
  int ready_ = -1;
};

}  // namespace olt::tests

#endif
