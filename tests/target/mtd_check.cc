// Checks the flash operations on the device at /dev/mtd0, or without one.
#include <stdio.h>
#include <string.h>

#include "tests/target/check_groups.h"
#include "tests/target/checks.h"

int main(int count, char **words) {
  const char *group = count == 2 ? words[1] : "";
  if (strcmp(group, "device") == 0) {
    check_device();
    check_regions();
    check_board_record();
  } else if (strcmp(group, "absent") == 0) {
    check_absent_device();
#ifdef OLT_KERNEL_CHECKS
  } else if (strcmp(group, "kernel") == 0) {
    check_kernel_view();
#endif
  } else {
    static_cast<void>(
        fprintf(stderr, "mtd_check: expected one argument: device, absent or kernel\n"));
    return 2;
  }
  return report_checks();
}
