// The interposed system calls. They have names of their own here, because the C libraries declare
// them in different ways. Optional arguments are passed on even when the caller left them out: the
// call does not use them then.
#include <stdint.h>
#include <string.h>
#include <sys/types.h>

#include "flash_device/device.h"
#include "flash_device/parts.h"
#include "flash_device/system_calls.h"

#define OLT_INTERPOSED extern "C" __attribute__((visibility("default")))

namespace {

using olt::flash_device::Activity;
using olt::flash_device::device;
using olt::flash_device::EraseRequest;
using olt::flash_device::kEraseBlock;
using olt::flash_device::kEraseRequest;
using olt::flash_device::parts;
namespace next = olt::flash_device::next;

bool is_flash(const char *path) {
  return device.is_attached() && path != nullptr && strcmp(path, "/dev/mtd0") == 0;
}

int noted(const char *path, int descriptor) {
  parts.opened(path, descriptor);
  return descriptor;
}

ssize_t read_once(int descriptor, void *buffer, size_t length) {
  return device.owns(descriptor) ? device.read(descriptor, buffer, length)
                                 : next::read(descriptor, buffer, length);
}

ssize_t write_once(int descriptor, const void *data, size_t length) {
  return device.owns(descriptor) ? device.write(descriptor, data, length)
                                 : next::write(descriptor, data, length);
}

int control_once(int descriptor, unsigned long request, void *argument) {
  // The number has its top bit set: through an int it arrives with all the higher bits set, too.
  return device.owns(descriptor)
             ? device.control(descriptor, static_cast<uint32_t>(request), argument)
             : next::ioctl(descriptor, request, argument);
}

/// Whether the erase does in parts what it does at once.
bool is_erase_in_parts(int descriptor, unsigned long request, const void *argument) {
  if (static_cast<uint32_t>(request) != kEraseRequest || argument == nullptr) return false;
  const auto *erase = static_cast<const EraseRequest *>(argument);
  return erase->start % kEraseBlock == 0 && erase->length % kEraseBlock == 0 &&
         parts.covers(descriptor, erase->length);
}

}  // namespace

OLT_INTERPOSED int interposed_open(const char *path, int flags, mode_t mode) __asm__("open");
OLT_INTERPOSED int interposed_open64(const char *path, int flags, mode_t mode) __asm__("open64");
OLT_INTERPOSED int interposed_openat(int folder, const char *path, int flags,
                                     mode_t mode) __asm__("openat");
OLT_INTERPOSED int interposed_openat64(int folder, const char *path, int flags,
                                       mode_t mode) __asm__("openat64");
OLT_INTERPOSED off_t interposed_lseek(int descriptor, off_t offset, int whence) __asm__("lseek");
OLT_INTERPOSED int64_t interposed_lseek64(int descriptor, int64_t offset,
                                          int whence) __asm__("lseek64");
OLT_INTERPOSED ssize_t interposed_read(int descriptor, void *buffer, size_t length) __asm__("read");
OLT_INTERPOSED ssize_t interposed_write(int descriptor, const void *data,
                                        size_t length) __asm__("write");
OLT_INTERPOSED int interposed_ioctl(int descriptor, unsigned long request,
                                    void *argument) __asm__("ioctl");
OLT_INTERPOSED int interposed_close(int descriptor) __asm__("close");
OLT_INTERPOSED int interposed_open_2(const char *path, int flags) __asm__("__open_2");
OLT_INTERPOSED int interposed_open64_2(const char *path, int flags) __asm__("__open64_2");
OLT_INTERPOSED int interposed_openat_2(int folder, const char *path,
                                       int flags) __asm__("__openat_2");
OLT_INTERPOSED int interposed_openat64_2(int folder, const char *path,
                                         int flags) __asm__("__openat64_2");
OLT_INTERPOSED ssize_t interposed_read_chk(int descriptor, void *buffer, size_t length,
                                           size_t room) __asm__("__read_chk");

int interposed_open(const char *path, int flags, mode_t mode) {
  return is_flash(path) ? device.open(flags) : noted(path, next::open(path, flags, mode));
}

int interposed_open64(const char *path, int flags, mode_t mode) {
  return is_flash(path) ? device.open(flags) : noted(path, next::open_large(path, flags, mode));
}

int interposed_openat(int folder, const char *path, int flags, mode_t mode) {
  return is_flash(path) ? device.open(flags) : next::openat(folder, path, flags, mode);
}

int interposed_openat64(int folder, const char *path, int flags, mode_t mode) {
  return is_flash(path) ? device.open(flags) : next::openat_large(folder, path, flags, mode);
}

int interposed_open_2(const char *path, int flags) {
  return is_flash(path) ? device.open(flags) : next::open_2(path, flags);
}

int interposed_open64_2(const char *path, int flags) {
  return is_flash(path) ? device.open(flags) : next::open_large_2(path, flags);
}

int interposed_openat_2(int folder, const char *path, int flags) {
  return is_flash(path) ? device.open(flags) : next::openat_2(folder, path, flags);
}

int interposed_openat64_2(int folder, const char *path, int flags) {
  return is_flash(path) ? device.open(flags) : next::openat_large_2(folder, path, flags);
}

off_t interposed_lseek(int descriptor, off_t offset, int whence) {
  return device.owns(descriptor) ? static_cast<off_t>(device.seek(descriptor, offset, whence))
                                 : next::lseek(descriptor, offset, whence);
}

int64_t interposed_lseek64(int descriptor, int64_t offset, int whence) {
  return device.owns(descriptor) ? device.seek(descriptor, offset, whence)
                                 : next::lseek_large(descriptor, offset, whence);
}

ssize_t interposed_read(int descriptor, void *buffer, size_t length) {
  if (!parts.covers(descriptor, length)) return read_once(descriptor, buffer, length);
  return parts.make(Activity::kRead, length, [=](size_t done, size_t size) {
    return read_once(descriptor, static_cast<char *>(buffer) + done, size);
  });
}

ssize_t interposed_read_chk(int descriptor, void *buffer, size_t length, size_t room) {
  return length <= room && device.owns(descriptor)
             ? device.read(descriptor, buffer, length)
             : next::read_chk(descriptor, buffer, length, room);
}

ssize_t interposed_write(int descriptor, const void *data, size_t length) {
  if (!parts.covers(descriptor, length)) return write_once(descriptor, data, length);
  return parts.make(Activity::kWrite, length, [=](size_t done, size_t size) {
    return write_once(descriptor, static_cast<const char *>(data) + done, size);
  });
}

int interposed_ioctl(int descriptor, unsigned long request, void *argument) {
  if (!is_erase_in_parts(descriptor, request, argument)) {
    return control_once(descriptor, request, argument);
  }
  EraseRequest whole = *static_cast<EraseRequest *>(argument);
  ssize_t erased = parts.make(Activity::kErase, whole.length, [=](size_t done, size_t size) {
    EraseRequest part{whole.start + static_cast<uint32_t>(done), static_cast<uint32_t>(size)};
    bool is_done = control_once(descriptor, request, &part) >= 0;
    return is_done ? static_cast<ssize_t>(size) : ssize_t{-1};
  });
  return erased < 0 ? -1 : 0;
}

int interposed_close(int descriptor) {
  parts.closed(descriptor);
  return device.owns(descriptor) ? device.close(descriptor) : next::close(descriptor);
}
