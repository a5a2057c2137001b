// The first program of the emulated board: creates the flash device, runs mtd_check on it and
// switches the board off.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/reboot.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void mount_on(const char *folder, const char *type) {
  mkdir(folder, 0755);
  if (mount(type, folder, type, 0, "") != 0) {
    printf("board: cannot mount %s: %s\n", folder, strerror(errno));
  }
}

void use_console() {
  const int console = open("/dev/ttyS0", O_RDWR | O_CLOEXEC);
  dup2(console, STDIN_FILENO);
  dup2(console, STDOUT_FILENO);
  dup2(console, STDERR_FILENO);
}

void make_flash() {
  const int module = open("/mtdram.ko", O_RDONLY | O_CLOEXEC);
  if (syscall(SYS_finit_module, module, "total_size=4096 erase_size=4", 0) != 0) {
    printf("board: no flash: %s\n", strerror(errno));
  }
}

/// Runs mtd_check, which prints its own counts.
void check(const char *name, const char *group, const char *preload) {
  printf("board: checking %s\n", name);
  fflush(stdout);
  const pid_t process = fork();
  if (process == 0) {
    if (preload != nullptr) setenv("LD_PRELOAD", preload, 1);
    execl("/mtd_check", "mtd_check", group, nullptr);
    _exit(127);
  }
  int status = 0;
  waitpid(process, &status, 0);
  printf("board: %s: %s\n", name, WIFEXITED(status) && WEXITSTATUS(status) == 0 ? "good" : "bad");
}

}  // namespace

int main() {
  mount_on("/dev", "devtmpfs");
  use_console();
  mount_on("/proc", "proc");
  mount_on("/sys", "sysfs");
  setenv("OLT_FLASH_IMAGE", "/flash.img", 1);
  check("a board without a flash", "absent", nullptr);
  make_flash();
  check("the flash", "device", nullptr);
  check("the kernel's view", "kernel", nullptr);
  check("the simulated flash", "device", "/lib/liboltflash.so");
  fflush(stdout);
  reboot(RB_POWER_OFF);
}
