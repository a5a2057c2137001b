// Compares both macros of oltmgmt.h with a version.
// usage: version TEXT
#include <oltmgmt.h>
#include <stdio.h>
#include <string.h>

int main(int argc, char **argv) {
  char number[16];
  snprintf(number, sizeof number, "%d.%d.%d", OLTMGMT_VERSION_NUMBER >> 16 & 0xff,
           OLTMGMT_VERSION_NUMBER >> 8 & 0xff, OLTMGMT_VERSION_NUMBER & 0xff);
  if (argc == 2 && strcmp(argv[1], OLTMGMT_VERSION) == 0 && strcmp(argv[1], number) == 0) return 0;
  printf("oltmgmt.h has version %s, as a number %s\n", OLTMGMT_VERSION, number);
  return 1;
}
