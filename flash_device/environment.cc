// The library for preloading: redirects as the environment says, before the program starts.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "flash_device/flash_device.h"

namespace {

using olt::flash_device::kErrorLength;

bool read_switch(const char *name, bool &on, char (&error)[kErrorLength]) {
  const char *value = getenv(name);
  if (value == nullptr || strcmp(value, "0") == 0) return true;
  on = strcmp(value, "1") == 0;
  if (on) return true;
  static_cast<void>(snprintf(error, sizeof error, "%s is \"%s\"; expected 0 or 1", name, value));
  return false;
}

bool redirect_as_told(char (&error)[kErrorLength]) {
  const char *image = getenv("OLT_FLASH_IMAGE");
  if (image == nullptr || *image == '\0') {
    static_cast<void>(snprintf(error, sizeof error,
                               "OLT_FLASH_IMAGE is not set; expected the flash image's path"));
    return false;
  }
  olt::flash_device::Options options;
  if (const char *faults = getenv("OLT_FLASH_FAULTS")) options.faults = faults;
  return read_switch("OLT_FLASH_NOR", options.nor, error) &&
         olt::flash_device::redirect(image, error, options);
}

// The program was to work on a simulated flash and must not go on with the real one.
[[gnu::constructor]] void start() {
  char error[kErrorLength];
  if (redirect_as_told(error)) return;
  static_cast<void>(dprintf(STDERR_FILENO, "liboltflash: %s\n", error));
  _exit(2);
}

}  // namespace
