/// Runs oltctl as a user does, with an embedded box of its own.
#ifndef OLT_TESTS_CLI_PROGRAM_H
#define OLT_TESTS_CLI_PROGRAM_H

#include <string>
#include <vector>

#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace olt::test {

/// What a child's environment has on top of this process's, from which OLT_RUN_DIR and
/// OLT_LAYOUT are removed.
std::vector<std::string> private_environment(const Folder &folder);

/// Runs a command that must succeed, without its output. @return the most kilobytes it had in
/// memory
long peak_memory(const std::vector<std::string> &command, std::vector<std::string> environment);

/// A state folder, and oltctl runs that share it.
class Oltctl {
 public:
  Finished operator()(const std::vector<std::string> &arguments,
                      const std::string &input = "") const;
  const Folder &folder() const { return folder_; }

 private:
  Folder folder_;
};

}  // namespace olt::test

#endif
