#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "oltmgmt.h"

namespace {

struct Region {
  uint32_t start;
  uint32_t size;
};

/// Regions 1 to 5 by number. By address, region 5 comes before region 4.
constexpr Region kRegions[] = {
    {0x000000, 0x010000}, {0x010000, 0x001000}, {0x011000, 0x0B0000},
    {0x1C1000, 0x23F000}, {0x0C1000, 0x100000},
};

constexpr uint32_t end_of(const Region &region) {
  return region.start + region.size;
}

static_assert(kRegions[0].start == 0 && kRegions[1].start == end_of(kRegions[0]) &&
                  kRegions[2].start == end_of(kRegions[1]) &&
                  kRegions[4].start == end_of(kRegions[2]) &&
                  kRegions[3].start == end_of(kRegions[4]) && end_of(kRegions[3]) == 0x400000,
              "the regions tile 4 MiB");

constexpr int32_t kRefused = -1;
constexpr int32_t kNotOpened = -2;
constexpr uint32_t kEraseBlock = 4096;

const Region *find_region(uint32_t number) {
  return number - 1 < 5 ? &kRegions[number - 1] : nullptr;
}

int open_device() {
  return open("/dev/mtd0", O_RDWR);
}

int32_t seek(int device, uint32_t offset) {
  return static_cast<int32_t>(lseek(device, static_cast<off_t>(offset), SEEK_SET));
}

/// Argument of the device's erase request.
struct EraseRequest {
  uint32_t start;
  uint32_t length;
};

/// C libraries declare ioctl with different types of the request number.
template <typename Number>
int send_erase(int (*call)(int, Number, ...), int device, EraseRequest *request) {
  return call(device, static_cast<Number>(0x80084D02U), request);
}

int erase(int device, uint32_t start, uint32_t length) {
  EraseRequest request{start, length};
  return send_erase(ioctl, device, &request);
}

int32_t read_at(int device, uint32_t offset, void *buffer, uint32_t length) {
  int32_t result = seek(device, offset);
  return result < 0 ? result : static_cast<int32_t>(read(device, buffer, length));
}

int32_t write_at(int device, uint32_t offset, const void *buffer, uint32_t length) {
  int32_t result = seek(device, offset);
  return result < 0 ? result : static_cast<int32_t>(write(device, buffer, length));
}

/// Erases the blocks that the data occupies and writes the data, in as many writes as the device
/// needs.
int32_t replace(int device, uint32_t offset, const char *data, uint32_t length) {
  int32_t result = erase(device, offset, (length + kEraseBlock - 1) & ~(kEraseBlock - 1));
  while (result >= 0 && length != 0) {
    result = write_at(device, offset, data, length);
    if (result < 0) break;
    auto written = static_cast<uint32_t>(result);
    offset += written;
    data += written;
    length -= written;
  }
  return result;
}

}  // namespace

int32_t read_from_flash(uint32_t region, void *buffer, uint32_t length) {
  const Region *place = find_region(region);
  if (place == nullptr) return kRefused;
  if (length > place->size) length = place->size;
  int device = open_device();
  if (device < 0) return kNotOpened;
  int32_t result = read_at(device, place->start, buffer, length);
  close(device);
  return result;
}

int32_t save_to_flash(uint32_t region, const void *buffer, uint32_t length) {
  const Region *place = find_region(region);
  if (place == nullptr || length > place->size) return kRefused;
  int device = open_device();
  if (device < 0) return kNotOpened;
  int32_t result = replace(device, place->start, static_cast<const char *>(buffer), length);
  close(device);
  return result;
}

int32_t erase_to_flash(uint32_t region, uint32_t /*unused_a*/, uint32_t /*unused_b*/) {
  const Region *place = find_region(region);
  if (place == nullptr) return kRefused;
  int device = open_device();
  if (device < 0) return kNotOpened;
  int32_t result = erase(device, place->start, place->size);
  close(device);
  return result;
}
