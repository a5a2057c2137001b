#include "tests/cli/program.h"

#include <cstdlib>

namespace olt::test {

std::vector<std::string> private_environment(const Folder &folder) {
  unsetenv("OLT_RUN_DIR");
  unsetenv("OLT_LAYOUT");
  return {"XDG_STATE_HOME=" + folder.path(), "XDG_CONFIG_HOME=" + folder.path(), "TERM=dumb"};
}

Finished Oltctl::operator()(const std::vector<std::string> &arguments,
                            const std::string &input) const {
  std::vector<std::string> command = {OLTCTL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command, private_environment(folder_), input);
}

}  // namespace olt::test
