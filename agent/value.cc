#include "agent/value.h"

#include <algorithm>
#include <cstring>

namespace olt::agent {

namespace {

constexpr uint32_t kBits = 8;

uint32_t number_in(ByteView bytes) {
  uint32_t number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  return number;
}

/// The lowest bit of the first byte is port 1; in SNMP, the highest one is.
Bytes with_bits_reversed(ByteView bytes) {
  Bytes reversed(bytes.size());
  for (size_t bit = 0; bit < bytes.size() * kBits; ++bit) {
    bool is_set = (bytes[bit / kBits] >> bit % kBits & 1) != 0;
    if (is_set) reversed[bit / kBits] |= static_cast<uint8_t>(0x80U >> bit % kBits);
  }
  return reversed;
}

/// High octet first, without zeros, which are no VLAN.
Bytes ids_in(ByteView bytes) {
  Bytes ids;
  for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
    if (bytes[at] == 0 && bytes[at + 1] == 0) continue;
    ids.insert(ids.end(), {bytes[at + 1], bytes[at]});
  }
  return ids;
}

int64_t number_of(const Column &column, ByteView bytes) {
  uint32_t number = number_in(bytes);
  if (column.type == SmiType::kUnsigned32) return number;
  return static_cast<int32_t>(number);
}

}  // namespace

bool is_number(SmiType type) {
  return type == SmiType::kInteger32 || type == SmiType::kUnsigned32 ||
         type == SmiType::kEnumeration;
}

Value value_of(const Column &column, ByteView record) {
  const catalog::Field &field = column.field;
  if (column.is_counted) {
    size_t bytes = record.size() - std::min<size_t>(record.size(), field.offset);
    return {static_cast<int64_t>(bytes / field.record_size)};
  }
  ByteView bytes = record.subspan(std::min<size_t>(field.offset, record.size()));
  Bytes padded;
  if (bytes.size() < field.width) {
    padded.assign(bytes.begin(), bytes.end());
    padded.resize(field.width);
    bytes = padded;
  }
  bytes = bytes.first(field.width);
  switch (column.type) {
    case SmiType::kInteger32:
    case SmiType::kUnsigned32:
    case SmiType::kEnumeration:
      return {number_of(column, bytes)};
    case SmiType::kText:
      return {0, {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)}};
    case SmiType::kPortList:
      return {0, with_bits_reversed(bytes)};
    case SmiType::kVlanIds:
      return {0, ids_in(bytes)};
    default:
      return {0, {bytes.begin(), bytes.end()}};
  }
}

std::optional<Bytes> bytes_of(const Column &column, const Value &value) {
  const catalog::Field &field = column.field;
  if (is_number(column.type)) {
    uint64_t limit = field.width < sizeof(uint32_t) ? uint64_t{1} << (kBits * field.width)
                                                    : uint64_t{UINT32_MAX} + 1;
    bool is_named = column.labels.empty() ||
                    std::any_of(column.labels.begin(), column.labels.end(),
                                [&](const Label &label) { return label.value == value.number; });
    bool fits = column.type == SmiType::kInteger32 ||
                (value.number >= 0 && static_cast<uint64_t>(value.number) < limit);
    if (!is_named || !fits) return std::nullopt;
    auto number = static_cast<uint32_t>(value.number);
    const auto *first = reinterpret_cast<const uint8_t *>(&number);
    return Bytes(first, first + field.width);
  }
  if (column.type == SmiType::kPortList) {
    if (value.octets.size() != field.width) return std::nullopt;
    return with_bits_reversed(value.octets);
  }
  if (column.type == SmiType::kText) {
    bool has_zero = std::find(value.octets.begin(), value.octets.end(), 0) != value.octets.end();
    if (has_zero || value.octets.size() > field.longest_text()) return std::nullopt;
    Bytes bytes = value.octets;
    bytes.resize(field.width);
    return bytes;
  }
  if (column.type == SmiType::kVlanIds || value.octets.size() != field.width) return std::nullopt;
  return value.octets;
}

}  // namespace olt::agent
