#include "box/message/message.h"

#include <algorithm>
#include <stdexcept>

namespace olt::box {

std::span<const uint8_t> Request::bytes(size_t offset, size_t count) const {
  if (offset > data_.size() || count > data_.size() - offset) throw BadLength();
  return data_.subspan(offset, count);
}

void Reply::bytes(size_t offset, std::span<const uint8_t> data) {
  size_t end = offset + data.size();
  if (end > kMaxReply) throw std::length_error("reply longer than 65,535 bytes");
  if (end > data_.size()) data_.resize(end);
  std::copy(data.begin(), data.end(), data_.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace olt::box
