#include "capture/trace/capture_file.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "capture/trace/files.h"
#include "capture/trace/packets.h"

enum {
  kPath = 400,
  kMaxNames = 1000,        ///< tried until one is free
  kFirstDescriptor = 200,  ///< above those that programs close by number
  kWindow = 131072,
  kUnit = 4096,             ///< that files grow by
  kMinPadding = 12,         ///< the smallest block; one is before each room
  kLongPadding = 16777216,  ///< longer than any window
  kMinLimit = 1048576,
  kYields = 100,
  kSleeps = 1000  ///< a thread waits so long for another; a sleep is 1 ms
};
static const uint32_t kPaddingBlock = 0x804F4C54;

static char before_process[kPath], after_process[kPath], own_program[64];
static uint64_t limit;  // of one file; 0: none

static const void *holder;  // of everything below: an address of its thread
static _Thread_local int cancel_state;
static bool ended;

static struct {
  int descriptor;  // -1: there is no file
  dev_t device;
  ino_t inode;
  uint64_t end;  // of the last window
  char path[kPath];
} file;

static struct {
  uint8_t *mapped, *at, *end;  // null: there is no window
} window;

static uint32_t run, process, exchanges, lost;

void complain(const char *place, const char *reason) {
  char line[kPath + 200];
  struct pollfd errors = {.fd = STDERR_FILENO, .events = POLLOUT};
  int length = snprintf(line, sizeof line, "libolttrace: %s: %s\n", place, reason);
  if (length <= 0 || poll(&errors, 1, 0) != 1 || errors.revents != POLLOUT) return;
  if (write(STDERR_FILENO, line, (size_t)length) < 0) return;
}

void stop_capture(const char *place, const char *reason) {
  char text[120];
  snprintf(text, sizeof text, "%.90s; capture ends", reason);
  if (!__atomic_exchange_n(&ended, true, __ATOMIC_ACQ_REL)) complain(place, text);
}

// Settings

static bool refuse(const char *name, const char *reason) {
  complain(name, reason);
  return false;
}

static bool set_path(const char *text) {
  const char *mark = strstr(text, "%p");
  if (mark == NULL || strchr(mark, '/') != NULL)
    return refuse("OLT_CAPTURE",
                  "no %p in the file's name; expected a path such as /tmp/%p.pcapng");
  size_t length = 0;
  if (text[0] != '/') {  // the program may change its directory
    if (getcwd(before_process, kPath / 2) == NULL) return refuse("OLT_CAPTURE", strerror(errno));
    length = strlen(before_process);
    before_process[length++] = '/';
  }
  if (length + strlen(text) + 40 > kPath) return refuse("OLT_CAPTURE", strerror(ENAMETOOLONG));
  memcpy(before_process + length, text, (size_t)(mark - text));
  strcpy(after_process, mark + 2);
  return true;
}

static bool set_limit(const char *text) {
  char *end = NULL;
  errno = 0;
  unsigned long long bytes = strtoull(text, &end, 10);
  if (text[0] < '0' || text[0] > '9' || *end != 0 || errno != 0 || bytes < kMinLimit)
    return refuse("OLT_CAPTURE_LIMIT", "not a limit; expected bytes, at least 1048576");
  limit = bytes / 2 & ~(uint64_t)(kUnit - 1);
  return true;
}

static void set_program(void) {
  char path[kPath];
  ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
  path[length > 0 ? length : 0] = 0;
  const char *slash = strrchr(path, '/');
  snprintf(own_program, sizeof own_program, "%.63s", slash != NULL ? slash + 1 : path);
}

bool set_up_capture(void) {
  const char *path = getenv("OLT_CAPTURE");
  const char *bytes = getenv("OLT_CAPTURE_LIMIT");
  file.descriptor = -1;
  if (path == NULL || path[0] == 0) return false;
  set_program();
  return set_path(path) && (bytes == NULL || bytes[0] == 0 || set_limit(bytes));
}

// The file

static bool is_still_ours(void) {
  struct stat now;
  return file.descriptor >= 0 && fstat(file.descriptor, &now) == 0 && now.st_dev == file.device &&
         now.st_ino == file.inode;
}

/// Whether a name is taken by anything.
static bool is_taken(const char *path) {
  struct stat found;
  return lstat(path, &found) == 0;
}

static void name_old(char *name) {
  snprintf(name, kPath + 8, "%s.old", file.path);
}

static bool put(const void *bytes, size_t count, uint64_t at) {
  errno = ENOSPC;  // when only a part is written
  return pwrite(file.descriptor, bytes, count, (off_t)at) == (ssize_t)count;
}

/// Creates a file under that name, which must be free.
static bool create(void) {
  uint8_t section[256];
  errno = EFBIG;
  if (exceeds_own_limit(sizeof section)) return false;
  int made = open(file.path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (made < 0) return false;
  int high = fcntl(made, F_DUPFD_CLOEXEC, kFirstDescriptor);
  if (high >= 0) close(made);
  file.descriptor = high >= 0 ? high : made;
  struct stat now;
  if (fstat(file.descriptor, &now) != 0) return false;
  file.device = now.st_dev;
  file.inode = now.st_ino;
  file.end = put_section(section, own_program);
  file.end += put_interface(section + file.end, "platform", own_program);
  return put(section, (size_t)file.end, 0);
}

/// Creates this process's first file, or the next one when the program closed the last one.
static bool create_first(void) {
  char old[kPath + 8];
  for (int i = 0; i < kMaxNames; i++) {
    char number[16] = "";
    if (i > 0) snprintf(number, sizeof number, "-%d", i);  // before an exec, or a process long gone
    snprintf(file.path, sizeof file.path, "%.190s%d%s%.190s", before_process, (int)process, number,
             after_process);
    name_old(old);
    errno = EEXIST;
    if (!is_taken(old) && create()) return true;
    if (errno != EEXIST) return false;
  }
  return false;
}

static void unmap(void) {
  uint8_t *mapped = window.mapped;
  size_t length = (size_t)(window.end - mapped);
  memset(&window, 0, sizeof window);  // first: a fork may come in between
  if (mapped != NULL) munmap(mapped, length);
}

/// Cuts off what no exchange fills, and unmaps the window.
static void end_window(void) {
  uint64_t used = file.end - (uint64_t)(window.end - window.at);
  if (is_still_ours() && ftruncate(file.descriptor, (off_t)used) == 0) file.end = used;
  unmap();
}

static void close_file(void) {
  end_window();
  if (is_still_ours()) close(file.descriptor);
  file.descriptor = -1;
}

static void store(void *at, uint32_t word) {
  __atomic_store_n((uint32_t *)at, word, __ATOMIC_RELEASE);
}

/// Lets the padding reach up to that end; begins it when there is none. When the process is killed
/// in between, the file ends within it.
static bool pad(uint64_t end) {
  uint32_t left = (uint32_t)(window.end - window.at);
  uint32_t length = (uint32_t)(end - file.end) + left;
  if (left > 0)
    store(window.at + 4, length);
  else if (!put((uint32_t[3]){kPaddingBlock, length, length}, kMinPadding, file.end))
    return false;
  return put(&length, 4, end - 4);
}

/// Takes the space on the disk: writing to a mapped page must not fail.
static bool fill(uint64_t begin, uint64_t end) {
  static uint8_t zeros[65536];
  while (begin < end) {
    size_t count = end - begin < sizeof zeros ? (size_t)(end - begin) : sizeof zeros;
    if (!put(zeros, count, begin)) return false;
    begin += count;
  }
  return true;
}

/// Makes room by putting the file aside as the old one.
static bool turn_over(void) {
  char old[kPath + 8];
  close_file();
  name_old(old);
  return rename(file.path, old) == 0 && create();
}

/// Maps the file from the first byte that no exchange fills to that end.
static bool map(uint64_t used, uint64_t end) {
  size_t before = (size_t)used & ((size_t)sysconf(_SC_PAGESIZE) - 1);
  size_t length = before + (size_t)(end - used);
  void *mapped = mmap(NULL, length, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE,
                      file.descriptor, (off_t)(used - before));
  if (mapped == MAP_FAILED) return false;
  unmap();
  window.mapped = mapped;
  window.at = window.mapped + before;
  window.end = window.mapped + length;
  file.end = end;
  return true;
}

/// Appends to the file until there is room for an exchange.
static bool extend(uint32_t size) {
  uint64_t used = file.end - (uint64_t)(window.end - window.at);
  uint64_t end = used + size + kMinPadding;
  if (end < used + kWindow) end = used + kWindow;
  end = (end + kUnit - 1) & ~(uint64_t)(kUnit - 1);
  if (limit != 0 && end > limit) end = limit;
  if (end < used + size + kMinPadding) return turn_over() && extend(size);
  errno = EFBIG;
  return !exceeds_own_limit(end) && pad(end) && fill(file.end + 8, end - 4) && map(used, end);
}

static bool next_window(uint32_t size) {
  if (file.descriptor >= 0 && !is_still_ours()) {  // closed by the program, perhaps reused
    unmap();
    file.descriptor = -1;
  }
  if ((file.descriptor >= 0 || create_first()) && extend(size)) return true;
  int error = errno;
  if (exchanges == 0 && is_still_ours()) unlink(file.path);
  close_file();
  stop_capture(file.path, strerror(error));
  return false;
}

// Rooms

/// Not when the thread itself has it, below a signal handler that makes exchanges.
static bool lock(void) {
  const void *nobody = NULL;
  const void *self = &cancel_state;
  for (int i = 0; !__atomic_compare_exchange_n(&holder, &nobody, self, false, __ATOMIC_ACQUIRE,
                                               __ATOMIC_RELAXED);
       i++, nobody = NULL) {
    if (nobody == self) return false;
    if (i == kYields + kSleeps) {
      stop_capture("platmsg_syn_result", "another thread does not leave the recording");
      return false;
    }
    i < kYields ? sched_yield() : poll(NULL, 0, 1);
  }
  return true;
}

static void unlock(void) {
  int state = cancel_state;  // a signal handler may take the lock next
  __atomic_store_n(&holder, NULL, __ATOMIC_RELEASE);
  pthread_setcancelstate(state, NULL);
}

static bool fits(uint32_t size) {
  return size + kMinPadding <= (size_t)(window.end - window.at);
}

static uint32_t seconds(void) {
  struct timespec date;
  clock_gettime(CLOCK_REALTIME, &date);
  return (uint32_t)date.tv_sec;
}

uint8_t *take_room(uint32_t size, struct exchange *exchange) {
  if (__atomic_load_n(&ended, __ATOMIC_ACQUIRE)) return NULL;
  int state = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
  if (!lock()) {
    __atomic_add_fetch(&lost, 1, __ATOMIC_RELAXED);
    pthread_setcancelstate(state, NULL);
    return NULL;
  }
  cancel_state = state;
  if (process == 0) {
    process = (uint32_t)getpid();
    run = seconds();
  }
  size += kMinPadding;
  if (!fits(size) && !next_window(size)) {
    unlock();
    return NULL;
  }
  exchange->run = run;
  exchange->process = process;
  exchange->number = ++exchanges;
  exchange->lost = __atomic_exchange_n(&lost, 0, __ATOMIC_RELAXED);
  return window.at + kMinPadding;
}

void commit_room(uint32_t size) {
  uint8_t *next = window.at + kMinPadding + size;
  uint32_t left = (uint32_t)(window.end - next);
  memcpy(next, (uint32_t[2]){kPaddingBlock, left}, 8);
  // The process may be killed between any two stores. Both ends of the padding change while it is
  // longer than the file; then its length is that of the part before the room.
  store(window.at + 4, kLongPadding);
  store(window.end - 4, left);
  store(window.at + 8, kMinPadding);
  store(window.at + 4, kMinPadding);
  window.at = next;
  unlock();
}

void end_capture(void) {
  int state = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
  if (lock()) {
    end_window();
    cancel_state = state;
    unlock();
  }
}

void leave_capture_to_parent(void) {
  unmap();
  if (is_still_ours()) close(file.descriptor);
  file.descriptor = -1;
  process = exchanges = lost = 0;
  __atomic_store_n(&holder, NULL, __ATOMIC_RELEASE);
}
