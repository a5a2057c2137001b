#include "box/state/cbor.h"

#include "base/bad_input.h"

namespace olt::box {

namespace {

enum Major : uint8_t { kNumber = 0, kBytes = 2, kText = 3, kTag = 6 };
constexpr uint8_t kListHead = 0x9F;
constexpr uint8_t kMapHead = 0xBF;
constexpr uint8_t kFalse = 0xF4;
constexpr uint8_t kTrue = 0xF5;
constexpr uint8_t kBreak = 0xFF;

/// "OLTS", in the range that anybody may use.
constexpr uint64_t kSecretTag = 0x4F4C5453;

[[noreturn]] void refuse() {
  throw BadInput("is not encoded as state is");
}

}  // namespace

void CborWriter::head(uint8_t major, uint64_t value) {
  auto first = static_cast<uint8_t>(major << 5);
  if (value < 24) {
    data_ += static_cast<char>(first | value);
    return;
  }
  int power = value <= UINT8_MAX ? 0 : value <= UINT16_MAX ? 1 : value <= UINT32_MAX ? 2 : 3;
  data_ += static_cast<char>(first | (24 + power));
  for (int shift = (8 << power) - 8; shift >= 0; shift -= 8) {
    data_ += static_cast<char>(value >> shift);
  }
}

void CborWriter::bytes(ByteView value) {
  head(kBytes, value.size());
  data_.append(reinterpret_cast<const char *>(value.data()), value.size());
}

void CborWriter::text(std::string_view value) {
  head(kText, value.size());
  data_ += value;
}

void CborWriter::secret() {
  head(kTag, kSecretTag);
}

inline uint8_t CborReader::byte() {
  if (position_ == data_.size()) refuse();
  return static_cast<uint8_t>(data_[position_++]);
}

inline uint64_t CborReader::argument(uint8_t head) {
  uint8_t low = head & 0x1F;
  if (low < 24) return low;
  if (low > 27) refuse();
  size_t count = size_t{1} << (low - 24);
  if (count > data_.size() - position_) refuse();
  uint64_t value = 0;
  for (size_t end = position_ + count; position_ != end; ++position_) {
    value = value << 8 | static_cast<uint8_t>(data_[position_]);
  }
  return value;
}

CborReader::Value CborReader::next() {
  Value value;
  uint8_t head = byte();
  if (head >> 5 == kTag) {
    if (argument(head) != kSecretTag) refuse();
    value.is_secret = true;
    head = byte();
  }
  if (head == kListHead || head == kMapHead) {
    value.kind = head == kListHead ? Kind::kList : Kind::kMap;
  } else if (head == kFalse || head == kTrue) {
    value.kind = Kind::kFlag;
    value.number = head == kTrue ? 1 : 0;
  } else if (head >> 5 == kNumber) {
    value.kind = Kind::kNumber;
    value.number = argument(head);
  } else if (head >> 5 == kBytes || head >> 5 == kText) {
    value.kind = head >> 5 == kBytes ? Kind::kBytes : Kind::kText;
    uint64_t length = argument(head);
    if (length > data_.size() - position_) refuse();
    value.data = data_.substr(position_, static_cast<size_t>(length));
    position_ += value.data.size();
  } else if (head != kBreak) {
    refuse();
  }
  return value;
}

void CborReader::skip() {
  size_t depth = 0;
  do {
    Kind kind = next().kind;
    if (kind == Kind::kList || kind == Kind::kMap) {
      ++depth;
    } else if (kind == Kind::kEnd) {
      if (depth == 0) refuse();
      --depth;
    }
  } while (depth != 0);
}

}  // namespace olt::box
