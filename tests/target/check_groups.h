/// The checks, by the device that they need at /dev/mtd0.
#ifndef OLT_TESTS_TARGET_CHECK_GROUPS_H
#define OLT_TESTS_TARGET_CHECK_GROUPS_H

// Any flash device: what it does with each system call, then the library on it.
void check_device();
void check_regions();
void check_board_record();

/// No device: it cannot be opened.
void check_absent_device();

/// The kernel's own device: its attributes and the system calls of the library.
void check_kernel_view();

#endif
