/// Long calls on the flash in parts, for a watcher.
#ifndef OLT_FLASH_DEVICE_PARTS_H
#define OLT_FLASH_DEVICE_PARTS_H

#include <string.h>
#include <sys/types.h>

#include "flash_device/device.h"
#include "flash_device/flash_device.h"
#include "flash_device/shared.h"

namespace olt::flash_device {

class Parts {
 public:
  static constexpr size_t kSize = size_t{64} * 1024;

  void watch(Watcher watcher, void *context) {
    context_ = context;
    watcher_.set(watcher);
  }

  /// To be called with what the machine itself opened and closed.
  void opened(const char *path, int descriptor) {
    bool is_own = watcher_.get() != nullptr && path != nullptr && strcmp(path, "/dev/mtd0") == 0;
    if (is_own && descriptor >= 0) own_.set(descriptor);
  }
  void closed(int descriptor) {
    if (own_.get() == descriptor) own_.set(-1);
  }

  /// Whether a call of that length is made in parts.
  bool covers(int descriptor, size_t length) const {
    return watcher_.get() != nullptr && length > kSize &&
           (descriptor == own_.get() || device.owns(descriptor));
  }

  /// @param part makes a part of the call from an offset on; returns the bytes done or -1
  /// @return the bytes done; -1 when a part failed
  template <typename Part>
  ssize_t make(Activity activity, size_t length, Part part) const {
    size_t done = 0;
    while (done < length) {
      size_t size = length - done < kSize ? length - done : kSize;
      ssize_t count = part(done, size);
      if (count < 0) return count;
      done += static_cast<size_t>(count);
      watcher_.get()(context_, activity, done, length);
      if (static_cast<size_t>(count) < size) break;
    }
    return static_cast<ssize_t>(done);
  }

 private:
  Shared<Watcher> watcher_{nullptr};
  void *context_ = nullptr;
  Shared<int> own_{-1};  ///< the machine's own flash, while it is open
};

/// The instance that the interposed calls use.
inline constinit Parts parts;

}  // namespace olt::flash_device

#endif
