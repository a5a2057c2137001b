// What the library relies on the device to do.
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include "tests/target/check_groups.h"
#include "tests/target/checks.h"
#include "tests/target/control.h"
#include "tests/target/flash_model.h"

namespace {

int erase(int device, uint32_t start, uint32_t length) {
  uint32_t request[2] = {start, length};
  return control(device, 0x80084D02, request);
}

void check_erase(int device) {
  fill_flash();
  expect("erase one block", 0, erase(device, 0x2000, 4096));
  model_erased(0x2000, 4096);
  expect_flash_as_modelled("one block is erased");
  expect("erase the last block", 0, erase(device, 0x3ff000, 4096));
  model_erased(0x3ff000, 4096);
  expect_flash_as_modelled("the last block is erased");

  expect_error("erase from an unaligned start", EINVAL, erase(device, 0x800, 4096));
  expect_error("erase an unaligned length", EINVAL, erase(device, 0, 100));
  expect_error("erase past the end", EINVAL, erase(device, 0x400000, 4096));
  expect_error("erase across the end", EINVAL, erase(device, 0x3ff000, 8192));
  expect_error("erase a range that wraps around 32 bits", EINVAL, erase(device, 0xfffff000, 8192));
  expect("erase nothing", 0, erase(device, 0x5000, 0));
  expect("erase nothing from an unaligned start", 0, erase(device, 0x5001, 0));
  expect_error("erase nothing at the end", EINVAL, erase(device, 0x400000, 0));
  expect_flash_as_modelled("refused and empty erases change nothing");
}

void check_seek(int device) {
  expect("seek to the end", 0x400000, lseek(device, 0x400000, SEEK_SET));
  expect_error("seek beyond the end", EINVAL, lseek(device, 0x400001, SEEK_SET));
  expect_error("seek before the start", EINVAL, lseek(device, -1, SEEK_SET));
  expect("seek back from the end", 0x3ffff0, lseek(device, -16, SEEK_END));
  expect("seek on", 0x3ffff8, lseek(device, 8, SEEK_CUR));
  expect_error("seek on beyond the end", EINVAL, lseek(device, 9, SEEK_CUR));
  expect_error("seek back before the start", EINVAL, lseek(device, -0x400000, SEEK_CUR));
  expect("a refused seek moves nothing", 0x3ffff8, lseek(device, 0, SEEK_CUR));
  expect_error("seek from an unknown origin", EINVAL, lseek(device, 0, 99));
}

void check_read(int device) {
  char bytes[64];
  lseek(device, 0x3ffff0, SEEK_SET);
  expect("read across the end", 16, read(device, bytes, sizeof bytes));
  expect("read at the end", 0, read(device, bytes, sizeof bytes));
  lseek(device, 0x1234, SEEK_SET);
  expect("read in the middle", 64, read(device, bytes, sizeof bytes));
  expect("the bytes read", 0, memcmp(bytes, model_at(0x1234), sizeof bytes));
  expect("reading moves on", 0x1234 + 64, lseek(device, 0, SEEK_CUR));
  expect("read nothing", 0, read(device, bytes, 0));
}

void check_write(int device) {
  char zeros[64] = {};
  lseek(device, 0x3ffff0, SEEK_SET);
  expect("write across the end", 16, write(device, zeros, sizeof zeros));
  model_written(0x3ffff0, zeros, 16);
  expect_error("write at the end", ENOSPC, write(device, zeros, 1));
  expect_error("write nothing at the end", ENOSPC, write(device, zeros, 0));
  lseek(device, 0x2345, SEEK_SET);
  expect("write in the middle", 64, write(device, zeros, sizeof zeros));
  model_written(0x2345, zeros, sizeof zeros);
  expect("writing moves on", 0x2345 + 64, lseek(device, 0, SEEK_CUR));
  expect("write nothing", 0, write(device, zeros, 0));
  expect_flash_as_modelled("exactly these bytes are written");
}

void check_access() {
  char byte = 0;
  const int reader = open("/dev/mtd0", O_RDONLY);
  expect_error("write through a reader", EBADF, write(reader, &byte, 1));
  expect_error("erase through a reader", EPERM, erase(reader, 0, 4096));
  expect("close the reader", 0, close(reader));
  const int writer = open("/dev/mtd0", O_WRONLY);
  expect_error("read through a writer", EBADF, read(writer, &byte, 1));
  expect("close the writer", 0, close(writer));
  const int truncating = open("/dev/mtd0", O_RDWR | O_TRUNC);
  expect("close what was opened with O_TRUNC", 0, close(truncating));
  expect_error("read what is closed", EBADF, read(reader, &byte, 1));
  expect_flash_as_modelled("access that is refused changes nothing");
}

void check_other_requests(int device) {
  uint32_t request[2] = {0, 4096};
  expect_error("an unknown request", ENOTTY, control(device, 0x80084DFF, request));
  expect_flash_as_modelled("an unknown request changes nothing");
}

}  // namespace

void check_device() {
  const int device = open("/dev/mtd0", O_RDWR);
  check_erase(device);
  check_seek(device);
  check_read(device);
  check_write(device);
  check_other_requests(device);
  expect("close the device", 0, close(device));
  check_access();
}
