#include "box/state/seal.h"

#include <fmt/core.h>

#include <array>
#include <cstdint>

#include "base/bad_input.h"

namespace olt::box {

namespace {

constexpr std::string_view kMagic = "OLTSTATE";
constexpr uint64_t kVersion = 1;
constexpr size_t kVersionAt = 8;
constexpr size_t kLengthAt = 12;
constexpr size_t kHead = 20;
constexpr size_t kChecksum = 4;

/// Row n: what a byte does to the checksum n bytes later.
using Table = std::array<std::array<uint32_t, 256>, 8>;

constexpr Table make_table() {
  constexpr uint32_t kPolynomial = 0x82F63B78;
  Table table{};
  for (uint32_t byte = 0; byte < 256; ++byte) {
    uint32_t sum = byte;
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? kPolynomial : 0);
    table[0][byte] = sum;
  }
  for (size_t row = 1; row < table.size(); ++row) {
    for (size_t byte = 0; byte < 256; ++byte) {
      uint32_t sum = table[row - 1][byte];
      table[row][byte] = sum >> 8 ^ table[0][sum & 0xFF];
    }
  }
  return table;
}

constexpr Table kTable = make_table();

uint64_t number_at(std::string_view bytes, size_t at, size_t width) {
  uint64_t number = 0;
  for (size_t i = width; i-- > 0;) number = number << 8 | static_cast<uint8_t>(bytes[at + i]);
  return number;
}

void append_number(std::string &bytes, uint64_t number, size_t width) {
  for (size_t i = 0; i < width; ++i) bytes += static_cast<char>(number >> (8 * i));
}

/// CRC-32C, eight bytes a step.
uint32_t checksum(std::string_view bytes) {
  uint32_t sum = UINT32_MAX;
  while (bytes.size() >= 8) {
    uint64_t eight = number_at(bytes, 0, 8) ^ sum;
    sum = 0;
    for (size_t i = 0; i < 8; ++i) sum ^= kTable[7 - i][eight >> (8 * i) & 0xFF];
    bytes.remove_prefix(8);
  }
  for (char byte : bytes) sum = sum >> 8 ^ kTable[0][(sum ^ static_cast<uint8_t>(byte)) & 0xFF];
  return ~sum;
}

}  // namespace

std::string seal(std::string_view content) {
  std::string file;
  file.reserve(kHead + content.size() + kChecksum);
  file += kMagic;
  append_number(file, kVersion, 4);
  append_number(file, content.size(), 8);
  file += content;
  append_number(file, checksum(file), kChecksum);
  return file;
}

std::string_view unseal(std::string_view file) {
  if (file.empty()) throw BadInput("is empty; expected saved state");
  if (file.substr(0, kMagic.size()) != kMagic.substr(0, file.size())) {
    throw BadInput("is damaged or no state file: it does not begin as one");
  }
  if (file.size() < kHead + kChecksum) throw BadInput("is damaged: it is cut off");
  std::string_view sealed = file.substr(0, file.size() - kChecksum);
  bool sound = number_at(file, sealed.size(), kChecksum) == checksum(sealed);
  uint64_t version = number_at(file, kVersionAt, 4);
  if (sound && version != kVersion) {
    throw BadInput(fmt::format("is of version {}; expected {}", version, kVersion));
  }
  uint64_t length = number_at(file, kLengthAt, 8);
  if (length != sealed.size() - kHead) {
    throw BadInput(fmt::format("is damaged: it has {} bytes; expected {} by its head",
                               sealed.size() - kHead, length));
  }
  if (!sound) throw BadInput("is damaged: its checksum does not match");
  return sealed.substr(kHead);
}

}  // namespace olt::box
