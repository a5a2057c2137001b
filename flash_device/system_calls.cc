#include "flash_device/system_calls.h"

namespace olt::flash_device {

namespace {

// Look-ups are not allowed in signal handlers, which may be the first to call one.
[[gnu::constructor]] void find_all() {
  next::open.find();
  next::open_large.find();
  next::openat.find();
  next::openat_large.find();
  next::lseek.find();
  next::lseek_large.find();
  next::read.find();
  next::write.find();
  next::ioctl.find();
  next::close.find();
  next::open_2.find();
  next::open_large_2.find();
  next::openat_2.find();
  next::openat_large_2.find();
  next::read_chk.find();
}

}  // namespace
}  // namespace olt::flash_device
