// Makes calls of a whole program fail, as its environment says:
//   OLT_FAULT          the plan: nth, errno, lasting (0 or 1) and the call, with blanks between
//   OLT_FAULT_REACHED  a file that is created when a call has failed

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

#include "tests/faults/fault_injector.h"

namespace {

using olt::faults::FaultInjector;
using olt::faults::Plan;

// Never destroyed: calls fail up to the very end.
FaultInjector *of_program = nullptr;

[[gnu::constructor]] void begin() {
  const char *text = std::getenv("OLT_FAULT");
  if (text == nullptr) return;
  Plan plan{};
  std::istringstream(text) >> plan.nth >> plan.error >> plan.lasting >> plan.call;
  of_program = new FaultInjector(plan);
}

[[gnu::destructor]] void report() {
  const char *path = std::getenv("OLT_FAULT_REACHED");
  if (of_program == nullptr || !of_program->reached() || path == nullptr) return;
  syscall(SYS_openat, AT_FDCWD, path, O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
}

}  // namespace
