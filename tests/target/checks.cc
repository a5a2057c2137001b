#include "tests/target/checks.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>

namespace {

int passed;
int failed;

bool count(bool good) {
  ++(good ? passed : failed);
  return good;
}

long long printable(int64_t value) {
  return value;
}

}  // namespace

void expect(const char *what, int64_t expected, int64_t got) {
  if (count(expected == got)) return;
  printf("%s: expected %lld, got %lld\n", what, printable(expected), printable(got));
}

void expect_error(const char *what, int expected_errno, int64_t result) {
  const int error = errno;
  if (count(result == -1 && error == expected_errno)) return;
  printf("%s: expected -1 (%s), got %lld", what, strerror(expected_errno), printable(result));
  if (result < 0) printf(" (%s)", strerror(error));
  printf("\n");
}

void expect_text(const char *what, const char *expected, const char *got) {
  if (count(strcmp(expected, got) == 0)) return;
  printf("%s: expected\n%s\ngot\n%s\n", what, expected, got);
}

int report_checks() {
  printf("%d passed, %d failed\n", passed, failed);
  return passed > 0 && failed == 0 ? 0 : 1;
}
