/// The checks, by what they need to find behind /dev/mtd0.
#ifndef OLT_TESTS_TARGET_CHECK_GROUPS_H
#define OLT_TESTS_TARGET_CHECK_GROUPS_H

// A device: what it does with each system call, then the library on it.
void check_device();
void check_regions();
void check_board_record();

/// Nothing: the device cannot be opened.
void check_absent_device();

/// The kernel's own device: what it knows of the device and sees of the library's calls.
void check_kernel_view();

#endif
