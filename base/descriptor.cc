#include "base/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace olt {

Descriptor above_standard_streams(Descriptor descriptor) {
  if (!descriptor.is_open() || descriptor.get() > STDERR_FILENO) return descriptor;
  return Descriptor(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

void fill_standard_streams() {
  for (int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(number, F_GETFD) >= 0 || errno != EBADF) continue;
    open("/dev/null", number == STDERR_FILENO ? O_WRONLY : O_RDONLY);  // as the lowest free number
  }
}

}  // namespace olt
