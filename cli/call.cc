#include "cli/call.h"

#include <algorithm>

#include "platform/olthost.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Kind;

namespace {

/// Some operations copy texts out of a reply without a bound: no reply is longer than this room
/// behind their record.
constexpr size_t kRoomBehindRecord = OLT_REPLY_LIMIT;

size_t room(const Argument &argument) {
  switch (argument.kind) {
    case Kind::kText:
      return 1;
    case Kind::kName:
      return argument.size;
    case Kind::kRecord:
      return argument.size + kRoomBehindRecord;
    case Kind::kWord:
    case Kind::kStream:
    case Kind::kBlock:
      break;
  }
  return 0;
}

}  // namespace

Call::Call(const catalog::Operation &operation) : operation_(operation) {
  for (const Argument &argument : operation.arguments()) {
    values_.emplace_back().bytes.resize(room(argument));
  }
}

Call::~Call() {
  for (const Value &value : values_) {
    if (value.block != nullptr) ___FREE(value.block, operation_.name, __LINE__);
  }
}

void Call::set_text(size_t place, std::string_view text) {
  Bytes &bytes = values_[place].bytes;
  bytes.assign(text.begin(), text.end());
  bytes.push_back(0);
}

void Call::set_bytes(size_t place, size_t offset, ByteView bytes) {
  std::copy(bytes.begin(), bytes.end(), values_[place].bytes.data() + offset);
}

int32_t Call::make() {
  std::vector<void *> slots;
  for (size_t place = 0; place < values_.size(); ++place) {
    Value &value = values_[place];
    switch (operation_.arguments()[place].kind) {
      case Kind::kWord:
        slots.push_back(&value.word);
        break;
      case Kind::kText:
      case Kind::kName:
      case Kind::kRecord:
        slots.push_back(value.bytes.data());
        break;
      case Kind::kStream:
        value.word = static_cast<uint32_t>(value.bytes.size());
        slots.push_back(value.bytes.data());
        slots.push_back(&value.word);
        break;
      case Kind::kBlock:
        slots.push_back(&value.block);
        slots.push_back(&value.word);
        break;
    }
  }
  return operation_.call(slots.data());
}

ByteView Call::bytes(size_t place) const {
  const Value &value = values_[place];
  const Argument &argument = operation_.arguments()[place];
  if (argument.kind == Kind::kBlock) {
    return {static_cast<const uint8_t *>(value.block), value.block == nullptr ? 0 : value.word};
  }
  return {value.bytes.data(), argument.size};
}

}  // namespace olt::cli
