// The device's attributes in the kernel, and every system call of the library with its arguments,
// as the kernel sees them.
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "oltmgmt.h"
#include "tests/target/check_groups.h"
#include "tests/target/checks.h"

namespace {

void expect_attribute(const char *name, const char *expected) {
  char path[64];
  char text[64] = "";
  static_cast<void>(snprintf(path, sizeof path, "/sys/class/mtd/mtd0/%s", name));
  const int file = open(path, O_RDONLY);
  const ssize_t length = read(file, text, sizeof text - 1);
  close(file);
  if (length > 0) text[length - 1] = '\0';
  expect_text(path, expected, text);
}

char calls[4096];

void note(const char *text) {
  strncat(calls, text, sizeof calls - strlen(calls) - 1);
}

void note_decimal(uint64_t number) {
  char text[24];
  static_cast<void>(snprintf(text, sizeof text, " %llu", static_cast<unsigned long long>(number)));
  note(text);
}

void note_hex(uint64_t number, int digits) {
  char text[24];
  static_cast<void>(
      snprintf(text, sizeof text, " 0x%0*llx", digits, static_cast<unsigned long long>(number)));
  note(text);
}

/// A word of the traced process.
unsigned long peek(pid_t process, uint64_t address) {
  return static_cast<unsigned long>(
      ptrace(PTRACE_PEEKDATA, process, static_cast<uintptr_t>(address), nullptr));
}

void note_open(pid_t process, const uint64_t (&arguments)[6]) {
  char path[33] = "";
  for (size_t at = 0; at + sizeof(long) < sizeof path; at += sizeof(long)) {
    const unsigned long word = peek(process, arguments[1] + at);
    memcpy(path + at, &word, sizeof word);
  }
  note("open ");
  note(path);
  note_decimal(arguments[2]);
}

void note_ioctl(pid_t process, const uint64_t (&arguments)[6]) {
  note("ioctl");
  note_hex(static_cast<uint32_t>(arguments[1]), 8);
  note_hex(static_cast<uint32_t>(peek(process, arguments[2])), 6);
  note_hex(static_cast<uint32_t>(peek(process, arguments[2] + 4)), 6);
}

void note_seek(uint64_t offset, uint64_t whence) {
  note("seek");
  note_hex(offset, 6);
  note(" from");
  note_decimal(whence);
}

void note_transfer(const char *name, uint64_t length) {
  note(name);
  note_decimal(length);
}

void note_call(pid_t process, const struct __ptrace_syscall_info &info) {
  const uint64_t(&arguments)[6] = info.entry.args;
  switch (info.entry.nr) {
    case SYS_openat:
      return note_open(process, arguments);
    case SYS_ioctl:
      return note_ioctl(process, arguments);
    case SYS_lseek:
      return note_seek(arguments[1], arguments[2]);
#ifdef SYS__llseek
    case SYS__llseek:
      // The fifth argument is on the stack. The kernel would read it from the tracer's stack.
      return note_seek(arguments[1] << 32 | arguments[2], peek(process, info.stack_pointer + 16));
#endif
    case SYS_read:
      return note_transfer("read", arguments[2]);
    case SYS_write:
      return note_transfer("write", arguments[2]);
    case SYS_close:
      return note("close");
    default:
      return note_transfer("system call", info.entry.nr);
  }
}

void follow(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  while (ptrace(PTRACE_SYSCALL, process, nullptr, nullptr) == 0 &&
         waitpid(process, &status, 0) == process && WIFSTOPPED(status)) {
    struct __ptrace_syscall_info info {};
    ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof info, &info);
    if (info.op != PTRACE_SYSCALL_INFO_ENTRY || info.entry.nr == SYS_exit_group) continue;
    note_call(process, info);
    note("\n");
  }
  expect("the traced operation's result", 0, WIFEXITED(status) ? WEXITSTATUS(status) : -1);
}

/// Runs the operation in a process of its own and compares the system calls that it makes.
template <typename Operation>
void expect_calls(const char *what, const char *expected, Operation operation) {
  calls[0] = '\0';
  const pid_t process = fork();
  if (process == 0) {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    // This stop is the last call before those of the operation.
    syscall(SYS_kill, getpid(), SIGSTOP);
    const bool good = operation();
    _exit(good ? 0 : 1);
  }
  follow(process);
  expect_text(what, expected, calls);
}

char bytes[65537];

void check_attributes() {
  expect_attribute("size", "4194304");
  expect_attribute("erasesize", "4096");
  expect_attribute("type", "ram");
}

void check_region_calls() {
  expect_calls("save 524 bytes to region 2",
               "open /dev/mtd0 2\n"
               "ioctl 0x80084d02 0x010000 0x001000\n"
               "seek 0x010000 from 0\n"
               "write 524\n"
               "close\n",
               [] { return save_to_flash(2, bytes, 524) == 524; });
  expect_calls("save 4097 bytes to region 4",
               "open /dev/mtd0 2\n"
               "ioctl 0x80084d02 0x1c1000 0x002000\n"
               "seek 0x1c1000 from 0\n"
               "write 4097\n"
               "close\n",
               [] { return save_to_flash(4, bytes, 4097) == 4097; });
  expect_calls("save nothing to region 3",
               "open /dev/mtd0 2\n"
               "ioctl 0x80084d02 0x011000 0x000000\n"
               "close\n",
               [] { return save_to_flash(3, bytes, 0) == 0; });
  expect_calls("save too much to region 1", "",
               [] { return save_to_flash(1, bytes, 65537) == -1; });
  expect_calls("read too much of region 1",
               "open /dev/mtd0 2\n"
               "seek 0x000000 from 0\n"
               "read 65536\n"
               "close\n",
               [] { return read_from_flash(1, bytes, 0x20000) == 65536; });
  expect_calls("erase region 4",
               "open /dev/mtd0 2\n"
               "ioctl 0x80084d02 0x1c1000 0x23f000\n"
               "close\n",
               [] { return erase_to_flash(4, 1, 2) == 0; });
  expect_calls("erase region 5",
               "open /dev/mtd0 2\n"
               "ioctl 0x80084d02 0x0c1000 0x100000\n"
               "close\n",
               [] { return erase_to_flash(5, 1, 2) == 0; });
  expect_calls("erase region 6", "", [] { return erase_to_flash(6, 0, 0) == -1; });
}

void check_board_record_calls() {
  expect_calls("write the OAM type",
               "open /dev/mtd0 2\n"
               "seek 0x010000 from 0\n"
               "read 524\n"
               "close\n"
               "open /dev/mtd0 2\n"
               "ioctl 0x80084d02 0x010000 0x001000\n"
               "seek 0x010000 from 0\n"
               "write 524\n"
               "close\n",
               [] { return write_oam_type(2, 0) == 0; });
  expect_calls("read the OAM type, nothing pending",
               "open /dev/mtd0 2\n"
               "seek 0x010000 from 0\n"
               "read 524\n"
               "close\n",
               [] {
                 uint32_t type = 0;
                 uint32_t pending = 0;
                 return read_oam_type(&type, &pending) == 0 && type == 2;
               });
  expect_calls("write an unknown OAM type", "", [] { return write_oam_type(3, 0) == -1; });
}

}  // namespace

void check_kernel_view() {
  check_attributes();
  check_region_calls();
  check_board_record_calls();
}
