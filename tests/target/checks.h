/// Counts checks and reports the failed ones. Needs only a C library, so that the same checks run
/// on the target's kernel and on the simulated device.
#ifndef OLT_TESTS_TARGET_CHECKS_H
#define OLT_TESTS_TARGET_CHECKS_H

#include <stdint.h>

void expect(const char *what, int64_t expected, int64_t got);
/// A system call's result is -1, with this errno.
void expect_error(const char *what, int expected_errno, int64_t result);
void expect_text(const char *what, const char *expected, const char *got);

/// Prints "N passed, N failed". @return the exit status
int report_checks();

#endif
