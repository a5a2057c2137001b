#include "flash_device/image.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "flash_device/system_calls.h"

namespace olt::flash_device {

namespace {

constexpr mode_t kImageMode = 0644;

bool fill(int file) {
  char blank[4096];
  memset(blank, 0xff, sizeof blank);
  for (uint32_t done = 0; done < kFlashSize; done += sizeof blank) {
    if (next::write(file, blank, sizeof blank) != ssize_t{sizeof blank}) return false;
  }
  return true;
}

bool fill_new_file(const char *path) {
  int file = next::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kImageMode);
  if (file < 0) return false;
  bool filled = fill(file);
  return next::close(file) == 0 && filled;
}

bool create(const char *path) {
  char draft[PATH_MAX];
  if (snprintf(draft, sizeof draft, "%s.%d", path, static_cast<int>(getpid())) >= PATH_MAX) {
    errno = ENAMETOOLONG;
    return false;
  }
  bool created = fill_new_file(draft) && (link(draft, path) == 0 || errno == EEXIST);
  int reason = errno;
  unlink(draft);
  errno = reason;
  return created;
}

bool describe(const char *path, char (&error)[kErrorLength], const char *problem) {
  static_cast<void>(snprintf(error, sizeof error, "flash image \"%s\" %s", path, problem));
  return false;
}

}  // namespace

bool prepare_image(const char *path, char (&error)[kErrorLength]) {
  struct stat found {};
  if (stat(path, &found) != 0 && (errno != ENOENT || !create(path) || stat(path, &found) != 0)) {
    return describe(path, error, strerror(errno));
  }
  if (!S_ISREG(found.st_mode) || found.st_size != off_t{kFlashSize}) {
    return describe(path, error, "is not a file of 4194304 bytes, as expected");
  }
  if (access(path, R_OK | W_OK) != 0) return describe(path, error, strerror(errno));
  return true;
}

}  // namespace olt::flash_device
