/// The interposed functions as the next library defines them.
#ifndef OLT_FLASH_DEVICE_SYSTEM_CALLS_H
#define OLT_FLASH_DEVICE_SYSTEM_CALLS_H

#include <dlfcn.h>
#include <stdint.h>
#include <sys/types.h>

#include "flash_device/shared.h"

namespace olt::flash_device {

template <typename Function>
class NextFunction {
 public:
  constexpr explicit NextFunction(const char *name) noexcept : name_(name) {}

  template <typename... Arguments>
  auto operator()(Arguments... arguments) {
    return find()(arguments...);
  }

  Function *find() {
    void *function = found_.get();
    if (function == nullptr) {
      function = dlsym(RTLD_NEXT, name_);
      found_.set(function);
    }
    return reinterpret_cast<Function *>(function);
  }

 private:
  const char *name_;
  Shared<void *> found_{nullptr};
};

// "large" stands for 64, because some C libraries have macros of the names with 64.
namespace next {

inline constinit NextFunction<int(const char *, int, ...)> open{"open"};
inline constinit NextFunction<int(const char *, int, ...)> open_large{"open64"};
inline constinit NextFunction<int(int, const char *, int, ...)> openat{"openat"};
inline constinit NextFunction<int(int, const char *, int, ...)> openat_large{"openat64"};
inline constinit NextFunction<off_t(int, off_t, int)> lseek{"lseek"};
inline constinit NextFunction<int64_t(int, int64_t, int)> lseek_large{"lseek64"};
inline constinit NextFunction<ssize_t(int, void *, size_t)> read{"read"};
inline constinit NextFunction<ssize_t(int, const void *, size_t)> write{"write"};
inline constinit NextFunction<int(int, unsigned long, ...)> ioctl{"ioctl"};
inline constinit NextFunction<int(int)> close{"close"};

// Variants that programs compiled with buffer checks call.
inline constinit NextFunction<int(const char *, int)> open_2{"__open_2"};
inline constinit NextFunction<int(const char *, int)> open_large_2{"__open64_2"};
inline constinit NextFunction<int(int, const char *, int)> openat_2{"__openat_2"};
inline constinit NextFunction<int(int, const char *, int)> openat_large_2{"__openat64_2"};
inline constinit NextFunction<ssize_t(int, void *, size_t, size_t)> read_chk{"__read_chk"};

}  // namespace next
}  // namespace olt::flash_device

#endif
