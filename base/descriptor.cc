#include "base/descriptor.h"

#include <fcntl.h>

namespace olt {

Descriptor above_standard_streams(Descriptor descriptor) {
  if (!descriptor.is_open() || descriptor.get() > STDERR_FILENO) return descriptor;
  return Descriptor(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

void fill_standard_streams() {
  int number = 0;
  do number = open("/dev/null", O_RDWR);
  while (number >= 0 && number <= STDERR_FILENO);
  if (number >= 0) close(number);
}

}  // namespace olt
