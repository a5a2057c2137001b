#include "box/message/message.h"

#include <algorithm>
#include <stdexcept>

namespace olt::box {

namespace {

constexpr size_t kReplyLimit = 65'535;

}  // namespace

std::span<const uint8_t> Request::bytes(size_t offset, size_t count) const {
  if (offset > data_.size() || count > data_.size() - offset) throw BadLength();
  return data_.subspan(offset, count);
}

uint16_t Request::u16(size_t offset) const {
  auto field = bytes(offset, 2);
  return static_cast<uint16_t>(field[0] | field[1] << 8);
}

uint32_t Request::u32(size_t offset) const {
  return u16(offset) | uint32_t{u16(offset + 2)} << 16;
}

std::optional<std::string> Request::text(size_t offset, size_t field) const {
  auto all = bytes(offset, field);
  auto end = std::find(all.begin(), all.end(), 0);
  if (end == all.end()) return std::nullopt;
  return std::string(all.begin(), end);
}

void Reply::reach(size_t end) {
  if (end > kReplyLimit) throw std::length_error("reply longer than 65,535 bytes");
  if (end > data_.size()) data_.resize(end);
}

void Reply::u16(size_t offset, uint16_t value) {
  reach(offset + 2);
  data_[offset] = static_cast<uint8_t>(value);
  data_[offset + 1] = static_cast<uint8_t>(value >> 8);
}

void Reply::u32(size_t offset, uint32_t value) {
  u16(offset, static_cast<uint16_t>(value));
  u16(offset + 2, static_cast<uint16_t>(value >> 16));
}

void Reply::bytes(size_t offset, std::span<const uint8_t> data) {
  reach(offset + data.size());
  std::copy(data.begin(), data.end(), data_.begin() + static_cast<std::ptrdiff_t>(offset));
}

void Reply::text(size_t offset, size_t field, std::string_view value) {
  reach(offset + field);
  value = value.substr(0, field - 1);
  std::copy(value.begin(), value.end(), data_.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace olt::box
