#include "box/state/seal.h"

#include <fmt/core.h>

#include <cstdint>

#include "base/bad_input.h"

namespace olt::box {

namespace {

constexpr std::string_view kMagic = "OLTSTATE";
constexpr uint64_t kVersion = 1;
constexpr size_t kVersionAt = 8;
constexpr size_t kLengthAt = 12;
constexpr size_t kHeadSize = 20;
constexpr size_t kChecksumSize = 4;

/// Row n: what a byte does to the checksum n bytes later.
struct Table {
  uint32_t rows[8][256];
};

constexpr Table make_table() {
  constexpr uint32_t kPolynomial = 0x82F63B78;
  Table table{};
  for (uint32_t byte = 0; byte < 256; ++byte) {
    uint32_t sum = byte;
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? kPolynomial : 0);
    table.rows[0][byte] = sum;
  }
  for (size_t row = 1; row < 8; ++row) {
    for (size_t byte = 0; byte < 256; ++byte) {
      uint32_t sum = table.rows[row - 1][byte];
      table.rows[row][byte] = sum >> 8 ^ table.rows[0][sum & 0xFF];
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
  const auto *at = reinterpret_cast<const uint8_t *>(bytes.data());
  const uint8_t *const end = at + bytes.size();
  uint32_t sum = UINT32_MAX;
  for (; end - at >= 8; at += 8) {
    sum ^= at[0] | uint32_t{at[1]} << 8 | uint32_t{at[2]} << 16 | uint32_t{at[3]} << 24;
    sum = kTable.rows[7][sum & 0xFF] ^ kTable.rows[6][sum >> 8 & 0xFF] ^
          kTable.rows[5][sum >> 16 & 0xFF] ^ kTable.rows[4][sum >> 24] ^ kTable.rows[3][at[4]] ^
          kTable.rows[2][at[5]] ^ kTable.rows[1][at[6]] ^ kTable.rows[0][at[7]];
  }
  for (; at != end; ++at) sum = sum >> 8 ^ kTable.rows[0][(sum ^ *at) & 0xFF];
  return ~sum;
}

}  // namespace

std::string seal(std::string_view content) {
  std::string file;
  file.reserve(kHeadSize + content.size() + kChecksumSize);
  file += kMagic;
  append_number(file, kVersion, 4);
  append_number(file, content.size(), 8);
  file += content;
  append_number(file, checksum(file), kChecksumSize);
  return file;
}

std::string_view unseal(std::string_view file) {
  if (file.empty()) throw BadInput("is empty; expected saved state");
  if (file.substr(0, kMagic.size()) != kMagic.substr(0, file.size())) {
    throw BadInput("is damaged or no state file: it does not begin as one");
  }
  if (file.size() < kHeadSize + kChecksumSize) throw BadInput("is damaged: it is cut off");
  std::string_view sealed = file.substr(0, file.size() - kChecksumSize);
  bool sound = number_at(file, sealed.size(), kChecksumSize) == checksum(sealed);
  uint64_t version = number_at(file, kVersionAt, 4);
  if (sound && version != kVersion) {
    throw BadInput(fmt::format("is of version {}; expected {}", version, kVersion));
  }
  uint64_t length = number_at(file, kLengthAt, 8);
  if (length != sealed.size() - kHeadSize) {
    throw BadInput(fmt::format("is damaged: it has {} bytes; expected {} by its head",
                               sealed.size() - kHeadSize, length));
  }
  if (!sound) throw BadInput("is damaged: its checksum does not match");
  return sealed.substr(kHeadSize);
}

}  // namespace olt::box
