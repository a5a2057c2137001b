#include "capture/trace/files.h"

#include <errno.h>
#include <fcntl.h>
#include <stddef.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

bool exceeds_own_limit(uint64_t length) {
  struct rlimit largest;
  return getrlimit(RLIMIT_FSIZE, &largest) == 0 && largest.rlim_cur != RLIM_INFINITY &&
         length > largest.rlim_cur;
}

bool copy_file(int from, const char *path, uint32_t max) {
  struct stat found;
  if (fstat(from, &found) != 0) return false;
  errno = EFBIG;
  if (!S_ISREG(found.st_mode) || found.st_size > (off_t)max) return false;
  size_t length = (size_t)found.st_size;
  if (exceeds_own_limit(length)) return false;
  int to = open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (to < 0) return false;
  // A file that is cut meanwhile fails the write, and raises no signal.
  void *bytes = mmap(NULL, length + 1, PROT_READ, MAP_PRIVATE, from, 0);
  errno = ENOSPC;  // when only a part is written
  bool copied = write(to, bytes, length) == (ssize_t)length;
  int error = errno;
  munmap(bytes, length + 1);
  close(to);
  if (!copied) unlink(path);
  errno = error;
  return copied;
}
