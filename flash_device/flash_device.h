/// A simulated flash behind "/dev/mtd0", for development hosts: 4 MiB in erase blocks of 4 KiB,
/// kept in an image file.
///
/// A program that links flash_device reaches it with its own calls of open, openat, lseek, read,
/// write, ioctl and close, and with those of its libraries; so liboltmgmt's flash operations work
/// unchanged. Other files are left alone. Programs that do not link it preload liboltflash.so.
#ifndef OLT_FLASH_DEVICE_FLASH_DEVICE_H
#define OLT_FLASH_DEVICE_FLASH_DEVICE_H

#include <stddef.h>

namespace olt::flash_device {

struct Options {
  bool nor = false;         ///< writing only clears bits, as in NOR flash
  const char *faults = "";  ///< planned failures, as docs/flash.md describes them
};

constexpr size_t kErrorLength = 512;

/// From now on "/dev/mtd0" is this image, with power on and all counts at zero. The image is
/// created, full of 0xFF, when it does not exist. Descriptors that are already open keep
/// their file. Must not run while another thread uses the device.
/// @return false and a line in error, with nothing changed, when the image or the options are
///         unusable
bool redirect(const char *image, char (&error)[kErrorLength], const Options &options = {});

/// From now on "/dev/mtd0" is the machine's own device again, as it is before any redirect.
void off();

enum class Activity { kRead, kErase, kWrite };

/// @param done bytes of the call's total so far
using Watcher = void (*)(void *context, Activity activity, size_t done, size_t total);

/// From now on, a read, erase or write of more than 64 KiB of "/dev/mtd0", simulated or the
/// machine's own, is made in parts, and the watcher is called after each. Only for descriptors that
/// are opened from now on. Null ends it. Must not run while another thread uses the device.
void watch(Watcher watcher, void *context);

}  // namespace olt::flash_device

#endif
