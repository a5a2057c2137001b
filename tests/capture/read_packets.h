/// The packets of a capture in memory, and the error that the reader stopped at.
#ifndef OLT_TESTS_CAPTURE_READ_PACKETS_H
#define OLT_TESTS_CAPTURE_READ_PACKETS_H

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/bad_input.h"
#include "capture/reader.h"

namespace olt::test {

struct ReadPackets {
  std::vector<capture::Packet> packets;
  std::string error;
};

inline ReadPackets read_packets(std::span<const uint8_t> bytes) {
  ReadPackets found;
  capture::Reader reader("file", [&bytes](uint8_t *buffer, size_t size) {
    size_t count = std::min(size, bytes.size());
    std::copy_n(bytes.begin(), count, buffer);
    bytes = bytes.subspan(count);
    return count;
  });
  try {
    while (std::optional<capture::Packet> next = reader.next()) found.packets.push_back(*next);
  } catch (const BadInput &error) {
    found.error = error.what();
  }
  return found;
}

}  // namespace olt::test

#endif
