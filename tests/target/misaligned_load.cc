// Loading a word from an odd address must be a fault on this system; otherwise tests with replies
// at odd addresses would prove nothing. Some kernels emulate such loads, and some emulators allow
// them.
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

alignas(4) uint8_t bytes[8];

[[noreturn]] void load_at_odd_address() {
  const rlimit no_core_file = {};
  setrlimit(RLIMIT_CORE, &no_core_file);
  // volatile: knowing the address, the compiler would load the word in a way that works.
  const uint8_t *volatile odd = bytes + 1;
  _exit(*reinterpret_cast<const uint32_t *>(odd) != 0);
}

}  // namespace

int main() {
  const pid_t child = fork();
  if (child == 0) load_at_odd_address();
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) {
    perror("misaligned_load");
    return 2;
  }
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGBUS) return 0;
  printf("expected a bus error, got wait status 0x%x\n", static_cast<unsigned>(status));
  return 1;
}
