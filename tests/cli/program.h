/// Runs oltctl as a user does, with an embedded box of its own.
#ifndef OLT_TESTS_CLI_PROGRAM_H
#define OLT_TESTS_CLI_PROGRAM_H

#include <string>
#include <vector>

namespace olt::tests {

struct Finished {
  int status = -1;  ///< exit status, or 128 + the signal that ended it
  std::string output;
  std::string errors;
};

/// A folder below the system's temporary one, removed with everything in it.
class Folder {
 public:
  Folder();
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;
  ~Folder();
  const std::string &path() const { return path_; }
  std::string write(const std::string &name, const std::string &content) const;

 private:
  std::string path_;
};

std::string read_file(const std::string &path);

/// The environment that a child gets on top of this process's; OLT_RUN_DIR is not passed on.
std::vector<std::string> private_environment(const Folder &folder);

/// Replaces this process. For children.
[[noreturn]] void execute(const std::vector<std::string> &command,
                          const std::vector<std::string> &environment);

int wait_for(int child);

Finished run(const std::vector<std::string> &command, const std::vector<std::string> &environment,
             const std::string &input = "");

/// A state folder, and oltctl runs that share it.
class Oltctl {
 public:
  Finished operator()(const std::vector<std::string> &arguments,
                      const std::string &input = "") const;
  const Folder &folder() const { return folder_; }

 private:
  Folder folder_;
};

}  // namespace olt::tests

#endif
