#include "flash_device/device.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "flash_device/image.h"
#include "flash_device/system_calls.h"

namespace olt::flash_device {

namespace {

class Lock {
 public:
  explicit Lock(pthread_mutex_t &mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
  Lock(const Lock &) = delete;
  Lock &operator=(const Lock &) = delete;
  ~Lock() { pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t &mutex_;
};

int fail(int error) {
  errno = error;
  return -1;
}

bool fails(const Fault *fault) {
  return fault != nullptr && fault->error != 0;
}

/// The position is that of the file description, as it is for any file.
uint32_t position(int descriptor) {
  return static_cast<uint32_t>(next::lseek(descriptor, 0, SEEK_CUR));
}

void advance(int descriptor, ssize_t length) {
  next::lseek(descriptor, static_cast<off_t>(length), SEEK_CUR);
}

/// How many bytes a call transfers: at most up to the end of the flash.
uint32_t movable(uint32_t offset, size_t length, const Fault *fault) {
  uint32_t available = offset < kFlashSize ? kFlashSize - offset : 0;
  if (fault != nullptr && fault->max_bytes < available) available = fault->max_bytes;
  return length < available ? static_cast<uint32_t>(length) : available;
}

int64_t seek_base(int descriptor, int whence) {
  if (whence == SEEK_CUR) return position(descriptor);
  return whence == SEEK_END ? int64_t{kFlashSize} : 0;
}

bool load(int descriptor, void *data, uint32_t offset, uint32_t length) {
  auto place = static_cast<off_t>(offset);
  return pread(descriptor, data, length, place) == static_cast<ssize_t>(length);
}

bool store_over(int descriptor, const void *data, uint32_t offset, uint32_t length) {
  auto place = static_cast<off_t>(offset);
  return pwrite(descriptor, data, length, place) == static_cast<ssize_t>(length);
}

/// Writing clears bits; only erasing sets them.
bool clear_bits(int descriptor, const uint8_t *data, uint32_t offset, uint32_t length) {
  uint8_t cells[512];
  for (uint32_t done = 0; done < length;) {
    uint32_t rest = length - done;
    uint32_t piece = rest < sizeof cells ? rest : uint32_t{sizeof cells};
    if (!load(descriptor, cells, offset + done, piece)) return false;
    for (uint32_t i = 0; i < piece; ++i) cells[i] = static_cast<uint8_t>(cells[i] & data[done + i]);
    if (!store_over(descriptor, cells, offset + done, piece)) return false;
    done += piece;
  }
  return true;
}

bool blank(int descriptor, uint32_t start, uint32_t length) {
  uint8_t blanks[kEraseBlock];
  memset(blanks, 0xff, sizeof blanks);
  for (uint32_t done = 0; done < length;) {
    uint32_t rest = length - done;
    uint32_t piece = rest < sizeof blanks ? rest : uint32_t{sizeof blanks};
    if (!store_over(descriptor, blanks, start + done, piece)) return false;
    done += piece;
  }
  return true;
}

}  // namespace

void Device::attach(const char *image, bool nor, const Faults &faults) {
  Lock lock(mutex_);
  stpcpy(image_, image);
  nor_ = nor;
  faults_ = faults;
  attached_.set(true);
}

void Device::detach() {
  attached_.set(false);
}

Device::Opened *Device::find(int descriptor) {
  for (Opened &opened : opened_) {
    if (opened.descriptor.get() == descriptor) return &opened;
  }
  return nullptr;
}

Device::Opened *Device::remember(int descriptor, int flags) {
  Opened *opened = find(-1);
  struct stat file {};
  if (opened == nullptr || fstat(descriptor, &file) != 0) return nullptr;
  opened->access = flags & O_ACCMODE;
  opened->filesystem = file.st_dev;
  opened->file = file.st_ino;
  opened->descriptor.set(descriptor);
  opened_count_.add(1);
  return opened;
}

void Device::forget(Opened &opened) {
  opened.descriptor.set(-1);
  opened_count_.add(-1);
}

bool Device::owns(int descriptor) {
  if (descriptor < 0 || opened_count_.get() == 0) return false;
  Opened *opened = find(descriptor);
  if (opened == nullptr) return false;
  // A call that is not interposed may have closed the descriptor; its number may be reused by now.
  struct stat file {};
  if (fstat(descriptor, &file) == 0 && file.st_dev == opened->filesystem &&
      file.st_ino == opened->file) {
    return true;
  }
  Lock lock(mutex_);
  if (opened->descriptor.get() == descriptor) forget(*opened);
  return false;
}

int Device::open(int flags) {
  Lock lock(mutex_);
  const Fault *fault = faults_.next(Call::kOpen);
  if (fails(fault)) return fail(fault->error);
  int descriptor = next::open(image_, O_RDWR | (flags & O_CLOEXEC));
  if (descriptor < 0) return -1;
  if (remember(descriptor, flags) == nullptr) {
    next::close(descriptor);
    return fail(EMFILE);
  }
  return descriptor;
}

int64_t Device::seek(int descriptor, int64_t offset, int whence) {
  Lock lock(mutex_);
  const Fault *fault = faults_.next(Call::kSeek);
  if (fails(fault)) return fail(fault->error);
  if (whence != SEEK_SET && whence != SEEK_CUR && whence != SEEK_END) return fail(EINVAL);
  int64_t base = seek_base(descriptor, whence);
  if (offset < -base || offset > int64_t{kFlashSize} - base) return fail(EINVAL);
  return next::lseek(descriptor, static_cast<off_t>(base + offset), SEEK_SET);
}

ssize_t Device::read(int descriptor, void *buffer, size_t length) {
  Lock lock(mutex_);
  const Fault *fault = faults_.next(Call::kRead);
  if (fails(fault)) return fail(fault->error);
  const Opened *opened = find(descriptor);
  if (opened == nullptr || opened->access == O_WRONLY) return fail(EBADF);
  return next::read(descriptor, buffer, movable(position(descriptor), length, fault));
}

ssize_t Device::write(int descriptor, const void *data, size_t length) {
  Lock lock(mutex_);
  const Fault *fault = faults_.next(Call::kWrite);
  if (fails(fault)) return fail(fault->error);
  const Opened *opened = find(descriptor);
  if (opened == nullptr || opened->access == O_RDONLY) return fail(EBADF);
  uint32_t offset = position(descriptor);
  if (offset >= kFlashSize) return fail(ENOSPC);
  uint32_t wanted = movable(offset, length, fault);
  uint32_t done = faults_.write_cut.admit(wanted);
  if (!store(descriptor, data, offset, done)) return -1;
  advance(descriptor, static_cast<ssize_t>(done));
  return faults_.write_cut.happened() ? fail(EIO) : static_cast<ssize_t>(done);
}

bool Device::store(int descriptor, const void *data, uint32_t offset, uint32_t length) const {
  return nor_ ? clear_bits(descriptor, static_cast<const uint8_t *>(data), offset, length)
              : store_over(descriptor, data, offset, length);
}

int Device::control(int descriptor, uint32_t request, const void *argument) {
  Lock lock(mutex_);
  const Fault *fault = faults_.next(Call::kControl);
  if (fails(fault)) return fail(fault->error);
  const Opened *opened = find(descriptor);
  if (opened == nullptr) return fail(EBADF);
  if (request != kEraseRequest) return fail(ENOTTY);
  EraseRequest erase_request{};
  memcpy(&erase_request, argument, sizeof erase_request);
  return erase(*opened, erase_request);
}

int Device::erase(const Opened &opened, const EraseRequest &request) {
  if (opened.access == O_RDONLY) return fail(EPERM);
  if (request.start >= kFlashSize || request.length > kFlashSize - request.start) {
    return fail(EINVAL);
  }
  if (request.length == 0) return 0;
  if (request.start % kEraseBlock != 0 || request.length % kEraseBlock != 0) return fail(EINVAL);
  uint32_t done = faults_.erase_cut.admit(request.length);
  if (!blank(opened.descriptor.get(), request.start, done)) return -1;
  return faults_.erase_cut.happened() ? fail(EIO) : 0;
}

int Device::close(int descriptor) {
  Lock lock(mutex_);
  const Fault *fault = faults_.next(Call::kClose);
  if (Opened *opened = find(descriptor)) forget(*opened);
  int result = next::close(descriptor);
  return fails(fault) ? fail(fault->error) : result;
}

}  // namespace olt::flash_device
