#include "tests/cli/program.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace olt::test {

std::vector<std::string> private_environment(const Folder &folder) {
  unsetenv("OLT_RUN_DIR");
  unsetenv("OLT_LAYOUT");
  return {"XDG_STATE_HOME=" + folder.path(), "XDG_CONFIG_HOME=" + folder.path(), "TERM=dumb"};
}

long peak_memory(const std::vector<std::string> &command, std::vector<std::string> environment) {
  // A sanitizer would keep what is released.
  environment.emplace_back("ASAN_OPTIONS=quarantine_size_mb=0:thread_local_quarantine_size_kb=0");
  pid_t child = fork();
  if (child == 0) {
    for (FILE *output : {stdout, stderr}) {
      if (std::freopen("/dev/null", "w", output) == nullptr) _exit(99);
    }
    execute(command, environment);
  }
  int status = -1;
  rusage usage{};
  EXPECT_EQ(wait4(child, &status, 0, &usage), child);
  EXPECT_EQ(status, 0);
  return usage.ru_maxrss;
}

Finished Oltctl::operator()(const std::vector<std::string> &arguments,
                            const std::string &input) const {
  std::vector<std::string> command = {OLTCTL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command, private_environment(folder_), input);
}

}  // namespace olt::test
