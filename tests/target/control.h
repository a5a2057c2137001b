#ifndef OLT_TESTS_TARGET_CONTROL_H
#define OLT_TESTS_TARGET_CONTROL_H

#include <stdint.h>
#include <sys/ioctl.h>

/// C libraries declare ioctl with different types of the request number.
template <typename Number>
int control_by(int (*call)(int, Number, ...), int device, uint32_t request, uint32_t *argument) {
  return call(device, static_cast<Number>(request), argument);
}

inline int control(int device, uint32_t request, uint32_t *argument) {
  return control_by(ioctl, device, request, argument);
}

#endif
