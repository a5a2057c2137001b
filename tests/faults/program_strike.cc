// Strikes a whole program, as its environment says:
//   OLT_STRIKE          the plan: nth, errno, lasting (0 or 1) and the call, with blanks between
//   OLT_STRIKE_REACHED  a file that appears when the fault struck

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

#include "tests/faults/strike.h"

namespace {

using olt::faults::Plan;
using olt::faults::Strike;

// Never destroyed: it strikes up to the very end.
Strike *of_program = nullptr;

[[gnu::constructor]] void begin() {
  const char *text = std::getenv("OLT_STRIKE");
  if (text == nullptr) return;
  Plan plan{};
  std::istringstream(text) >> plan.nth >> plan.error >> plan.lasting >> plan.call;
  of_program = new Strike(plan);
}

[[gnu::destructor]] void tell() {
  const char *path = std::getenv("OLT_STRIKE_REACHED");
  if (of_program == nullptr || !of_program->reached() || path == nullptr) return;
  syscall(SYS_openat, AT_FDCWD, path, O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
}

}  // namespace
