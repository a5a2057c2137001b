#include "box/watch/message_types.h"

#include <algorithm>
#include <iterator>

namespace olt::box {

namespace {

struct Row {
  std::string_view operation;
  uint32_t type;
};

constexpr Row kRows[] = {
#include "box/watch/message_types.inc"
};

}  // namespace

std::optional<uint32_t> message_type_of(std::string_view operation) {
  const Row *row = std::find_if(std::begin(kRows), std::end(kRows),
                                [operation](const Row &one) { return one.operation == operation; });
  if (row == std::end(kRows)) return std::nullopt;
  return row->type;
}

}  // namespace olt::box
