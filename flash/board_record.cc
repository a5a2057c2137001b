#include <stddef.h>
#include <stdio.h>

#include "oltmgmt.h"

namespace {

constexpr uint32_t kBoardRegion = 2;

/// The board's own record, at the start of its region. The reserved bytes belong to others and are
/// written back unchanged.
struct BoardRecord {
  uint8_t reserved_00[43];
  uint8_t serial_digits[3];
  uint8_t reserved_2e[476];
  uint8_t oam_type_pending;
  uint8_t oam_type;
};
static_assert(sizeof(BoardRecord) == 524 && offsetof(BoardRecord, serial_digits) == 43 &&
              offsetof(BoardRecord, oam_type_pending) == 522);

bool load(BoardRecord &record) {
  return read_from_flash(kBoardRegion, &record, sizeof record) > 0;
}

int32_t save(const BoardRecord &record) {
  return save_to_flash(kBoardRegion, &record, sizeof record) > 0 ? 0 : -1;
}

}  // namespace

int32_t read_oam_type(uint32_t *oam_type, uint32_t *pending) {
  BoardRecord record{};
  if (!load(record)) return -1;
  *oam_type = record.oam_type;
  if (record.oam_type_pending != 1) return 0;
  *pending = 1;
  record.oam_type_pending = 0;
  return save(record);
}

int32_t write_oam_type(uint32_t oam_type, uint32_t pending) {
  BoardRecord record{};
  if (oam_type > 2 || !load(record)) return -1;
  record.oam_type_pending = static_cast<uint8_t>(pending);
  record.oam_type = static_cast<uint8_t>(oam_type);
  return save(record);
}

int32_t read_olt_serial(char *serial) {
  BoardRecord record{};
  if (load(record)) {
    const uint8_t(&digits)[3] = record.serial_digits;
    sprintf(serial, "%d%d%d", digits[0], digits[1], digits[2]);
  } else {
    sprintf(serial, "%s", "110100");
  }
  return 0;
}
