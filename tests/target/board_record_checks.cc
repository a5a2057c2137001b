// The board record: what the operations report, compared with its bytes at 0x10000.
#include <string.h>

#include "oltmgmt.h"
#include "tests/target/check_groups.h"
#include "tests/target/checks.h"
#include "tests/target/flash_model.h"

namespace {

/// Writes a record whose other bytes are 0x5a, with save_to_flash, which check_regions() checks.
void put_record(uint8_t digit_1, uint8_t digit_2, uint8_t digit_3, uint8_t pending,
                uint8_t oam_type) {
  uint8_t record[524];
  memset(record, 0x5a, sizeof record);
  record[43] = digit_1;
  record[44] = digit_2;
  record[45] = digit_3;
  record[522] = pending;
  record[523] = oam_type;
  expect("put the record", 524, save_to_flash(2, record, 524));
  model_erased(0x10000, 4096);
  model_written(0x10000, record, 524);
}

void model_flags(uint8_t pending, uint8_t oam_type) {
  const uint8_t flags[2] = {pending, oam_type};
  model_written(0x10000 + 522, flags, 2);
}

void expect_oam_type(const char *what, uint32_t type, uint32_t pending) {
  uint32_t got_type = 77;
  uint32_t got_pending = 88;
  expect(what, 0, read_oam_type(&got_type, &got_pending));
  expect(what, type, got_type);
  expect(what, pending, got_pending);
}

void check_oam_type() {
  put_record(1, 2, 3, 0, 2);
  expect("write type 1, pending", 0, write_oam_type(1, 1));
  model_flags(1, 1);
  expect_flash_as_modelled("type and flag are stored, the rest is kept");
  expect_oam_type("type 1, pending", 1, 1);
  model_flags(0, 1);
  expect_flash_as_modelled("reading clears the flag");
  expect_oam_type("type 1, no longer pending", 1, 88);
  expect("write type 2, pending", 0, write_oam_type(2, 1));
  model_flags(1, 2);
  expect_flash_as_modelled("type 2 and the flag are stored");
  expect("write type 0, flag 0x102", 0, write_oam_type(0, 0x102));
  model_flags(2, 0);
  expect_flash_as_modelled("the low byte of the flag is stored");
  expect_oam_type("a flag of 2 is not pending", 0, 88);
  expect_flash_as_modelled("a flag of 2 stays");
  expect("write type 3", -1, write_oam_type(3, 1));
  expect("write type 0x100", -1, write_oam_type(0x100, 1));
  expect_flash_as_modelled("refused types change nothing");
}

void expect_serial(uint8_t digit_1, uint8_t digit_2, uint8_t digit_3, const char *text) {
  char serial[10];
  put_record(digit_1, digit_2, digit_3, 0, 0);
  expect(text, 0, read_olt_serial(serial));
  expect_text("serial", text, serial);
}

}  // namespace

void check_board_record() {
  fill_flash();
  check_oam_type();
  expect_serial(1, 2, 3, "123");
  expect_serial(0, 10, 255, "010255");
  expect_serial(200, 201, 255, "200201255");
  expect_serial(0, 0, 0, "000");
  expect_flash_as_modelled("nothing else was changed");
  expect("erase the record", 0, erase_to_flash(2, 0, 0));
  model_erased(0x10000, 4096);
  expect_oam_type("a blank record", 255, 88);
  expect_flash_as_modelled("reading a blank record changes nothing");
}
