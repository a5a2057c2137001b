/// The simulated device: does on an image what the kernel's character device does on a flash.
#ifndef OLT_FLASH_DEVICE_DEVICE_H
#define OLT_FLASH_DEVICE_DEVICE_H

#include <limits.h>
#include <pthread.h>
#include <stdint.h>
#include <sys/types.h>

#include "flash_device/faults.h"
#include "flash_device/shared.h"

namespace olt::flash_device {

/// The number of an erase request, what it must be a multiple of, and its argument.
constexpr uint32_t kEraseRequest = 0x80084D02;
constexpr uint32_t kEraseBlock = 0x1000;
struct EraseRequest {
  uint32_t start;
  uint32_t length;
};

/// Its calls work like the system calls: -1 and errno on failure. Any thread may call them; each
/// call is atomic.
class Device {
 public:
  /// From now on, open opens this image. The path is absolute.
  void attach(const char *image, bool nor, const Faults &faults);
  void detach();
  bool is_attached() const { return attached_.get(); }

  int open(int flags);
  /// Whether the descriptor was opened here. Takes no system call when none is open.
  bool owns(int descriptor);
  int64_t seek(int descriptor, int64_t offset, int whence);
  ssize_t read(int descriptor, void *buffer, size_t length);
  ssize_t write(int descriptor, const void *data, size_t length);
  int control(int descriptor, uint32_t request, const void *argument);
  int close(int descriptor);

 private:
  struct Opened {
    Shared<int> descriptor{-1};
    int access = 0;
    dev_t filesystem = 0;
    ino_t file = 0;
  };
  static constexpr int kMaxOpened = 64;

  Opened *find(int descriptor);
  Opened *remember(int descriptor, int flags);
  void forget(Opened &opened);
  bool store(int descriptor, const void *data, uint32_t offset, uint32_t length) const;
  int erase(const Opened &opened, const EraseRequest &request);

  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
  Shared<bool> attached_{false};
  Shared<int> opened_count_{0};
  Opened opened_[kMaxOpened];
  char image_[PATH_MAX] = "";
  bool nor_ = false;
  Faults faults_;
};

/// The instance that the interposed calls use.
inline constinit Device device;

}  // namespace olt::flash_device

#endif
