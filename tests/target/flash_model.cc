#include "tests/target/flash_model.h"

#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "tests/target/checks.h"
#include "tests/target/control.h"

namespace {

constexpr uint32_t kSize = 4194304;

uint8_t pattern[kSize];
uint8_t model[kSize];
uint8_t flash[kSize];

void make_pattern() {
  for (uint32_t i = 0; i < kSize; ++i) {
    pattern[i] = static_cast<uint8_t>((i ^ (i >> 8) ^ (i >> 16)) % 251);
  }
}

bool write_pattern(int device) {
  uint32_t everything[2] = {0, kSize};
  return control(device, 0x80084D02, everything) == 0 &&
         write(device, pattern, kSize) == ssize_t{kSize};
}

bool read_flash() {
  const int device = open("/dev/mtd0", O_RDONLY);
  const bool complete = read(device, flash, kSize) == ssize_t{kSize};
  return close(device) == 0 && complete;
}

}  // namespace

void fill_flash() {
  if (pattern[1] == 0) make_pattern();
  memcpy(model, pattern, kSize);
  const int device = open("/dev/mtd0", O_RDWR);
  expect("fill the flash", true, device >= 0 && write_pattern(device));
  close(device);
}

void model_erased(uint32_t start, uint32_t length) {
  memset(model + start, 0xff, length);
}

void model_written(uint32_t start, const void *data, uint32_t length) {
  memcpy(model + start, data, length);
}

const uint8_t *model_at(uint32_t start) {
  return model + start;
}

void expect_flash_as_modelled(const char *what) {
  if (!read_flash()) {
    expect(what, true, false);
    return;
  }
  uint32_t at = memcmp(flash, model, kSize) == 0 ? kSize : 0;
  while (at < kSize && flash[at] == model[at]) ++at;
  expect(what, kSize, at);
  if (at < kSize) printf("  at 0x%06x: expected %02x, got %02x\n", at, model[at], flash[at]);
}
