#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "flash_device/device.h"
#include "flash_device/flash_device.h"
#include "flash_device/image.h"
#include "flash_device/parts.h"

namespace olt::flash_device {

namespace {

bool plan(Faults &faults, const char *text, char (&error)[kErrorLength]) {
  std::string_view wrong = faults.plan(text);
  if (wrong.empty()) return true;
  static_cast<void>(
      snprintf(error, sizeof error,
               "flash fault \"%.*s\" is unknown or one too many; expected at most 32 of "
               "CALL:NUMBER:ERROR, read:NUMBER:short=BYTES and write:NUMBER:short=BYTES, beside "
               "cut=BYTES and erase-cut=BYTES",
               static_cast<int>(wrong.size()), wrong.data()));
  return false;
}

}  // namespace

bool redirect(const char *image, char (&error)[kErrorLength], const Options &options) {
  Faults faults;
  char path[PATH_MAX];
  if (!plan(faults, options.faults, error) || !prepare_image(image, error)) return false;
  if (realpath(image, path) == nullptr) {
    static_cast<void>(
        snprintf(error, sizeof error, "flash image \"%s\": %s", image, strerror(errno)));
    return false;
  }
  device.attach(path, options.nor, faults);
  return true;
}

void off() {
  device.detach();
}

void watch(Watcher watcher, void *context) {
  parts.watch(watcher, context);
}

}  // namespace olt::flash_device
