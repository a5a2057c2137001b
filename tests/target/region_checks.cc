// The region operations, with a device and without one.
#include <stdio.h>
#include <string.h>

#include "oltmgmt.h"
#include "tests/target/check_groups.h"
#include "tests/target/checks.h"
#include "tests/target/flash_model.h"

namespace {

struct Place {
  uint32_t region;
  uint32_t start;
  uint32_t size;
};
constexpr Place kPlaces[] = {{1, 0x000000, 65536},
                             {2, 0x010000, 4096},
                             {3, 0x011000, 720896},
                             {5, 0x0c1000, 1048576},
                             {4, 0x1c1000, 2355200}};

uint8_t data[2355200 + 1];
uint8_t buffer[2355200 + 1];

void make_data() {
  for (uint32_t i = 0; i < sizeof data; ++i) data[i] = static_cast<uint8_t>(i * 7 + 1);
}

/// Prefixes the name of a check with the region.
const char *in_region(const Place &place, const char *what) {
  static char text[96];
  static_cast<void>(
      snprintf(text, sizeof text, "region %u: %s", static_cast<unsigned>(place.region), what));
  return text;
}

void check_erasing(const Place &place) {
  fill_flash();
  expect(in_region(place, "erase"), 0, erase_to_flash(place.region, 0x123, 0x456));
  model_erased(place.start, place.size);
  expect_flash_as_modelled(in_region(place, "only this region is erased"));
}

void check_saving_all(const Place &place) {
  fill_flash();
  expect(in_region(place, "save all of it"), place.size,
         save_to_flash(place.region, data, place.size));
  model_written(place.start, data, place.size);
  expect_flash_as_modelled(in_region(place, "only this region is written"));
  expect(in_region(place, "save too much"), -1, save_to_flash(place.region, data, place.size + 1));
  expect_flash_as_modelled(in_region(place, "a refused save changes nothing"));
}

void check_saving_little(const Place &place) {
  fill_flash();
  expect(in_region(place, "save one byte"), 1, save_to_flash(place.region, data, 1));
  model_erased(place.start, 4096);
  model_written(place.start, data, 1);
  expect_flash_as_modelled(in_region(place, "one byte is written and one block erased"));
  expect(in_region(place, "save nothing"), 0, save_to_flash(place.region, data, 0));
  expect_flash_as_modelled(in_region(place, "saving nothing changes nothing"));
  if (place.size == 4096) return;
  expect(in_region(place, "save 4097 bytes"), 4097, save_to_flash(place.region, data, 4097));
  model_erased(place.start, 8192);
  model_written(place.start, data, 4097);
  expect_flash_as_modelled(in_region(place, "4097 bytes take two blocks"));
}

void check_reading(const Place &place) {
  fill_flash();
  memset(buffer, 0xa5, sizeof buffer);
  expect(in_region(place, "read all of it"), place.size,
         read_from_flash(place.region, buffer, place.size));
  expect(in_region(place, "its bytes"), 0, memcmp(buffer, model_at(place.start), place.size));
  memset(buffer, 0xa5, sizeof buffer);
  expect(in_region(place, "read too much"), place.size,
         read_from_flash(place.region, buffer, 0xffffffff));
  expect(in_region(place, "nothing after it is read"), 0xa5, buffer[place.size]);
  memset(buffer, 0xa5, sizeof buffer);
  expect(in_region(place, "read three bytes"), 3, read_from_flash(place.region, buffer, 3));
  expect(in_region(place, "the three bytes"), 0, memcmp(buffer, model_at(place.start), 3));
  expect(in_region(place, "the fourth is untouched"), 0xa5, buffer[3]);
  expect(in_region(place, "read nothing"), 0, read_from_flash(place.region, buffer, 0));
  expect_flash_as_modelled(in_region(place, "reading changes nothing"));
}

void check_refused_regions() {
  constexpr uint32_t kNone[] = {0, 6, 0x80000000, 0xffffffff};
  fill_flash();
  for (const uint32_t region : kNone) {
    expect("read an unknown region", -1, read_from_flash(region, buffer, 1));
    expect("save to an unknown region", -1, save_to_flash(region, data, 1));
    expect("erase an unknown region", -1, erase_to_flash(region, 0, 0));
  }
  expect_flash_as_modelled("unknown regions change nothing");
}

}  // namespace

void check_regions() {
  make_data();
  for (const Place &place : kPlaces) {
    check_erasing(place);
    check_saving_all(place);
    check_saving_little(place);
    check_reading(place);
  }
  check_refused_regions();
}

void check_absent_device() {
  uint32_t type = 77;
  uint32_t pending = 88;
  char serial[10];
  expect("read without a device", -2, read_from_flash(1, buffer, 1));
  expect("save without a device", -2, save_to_flash(1, data, 1));
  expect("erase without a device", -2, erase_to_flash(1, 0, 0));
  expect("read the OAM type without a device", -1, read_oam_type(&type, &pending));
  expect("the type is untouched", 77, type);
  expect("the pending flag is untouched", 88, pending);
  expect("write the OAM type without a device", -1, write_oam_type(1, 1));
  expect("read the serial without a device", 0, read_olt_serial(serial));
  expect_text("the default serial", "110100", serial);
}
