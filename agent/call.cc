#include "agent/call.h"

#include <algorithm>
#include <cstring>

#include "oltplatform.h"

namespace olt::agent {

using catalog::Argument;
using catalog::FieldKind;
using catalog::Kind;

namespace {

/// Texts that end with a zero are copied from replies without a length check.
constexpr size_t kLongestReply = 65'535;

bool may_overrun(const Argument &argument) {
  return argument.is_output() &&
         std::any_of(argument.fields.begin(), argument.fields.end(),
                     [](const catalog::Field &field) { return field.kind == FieldKind::kText; });
}

}  // namespace

thread_local std::atomic<uint8_t> *Call::asked_module = nullptr;

Call::Call(const catalog::Operation &operation) : operation_(operation) {
  for (const Argument &argument : operation.arguments()) {
    size_t room = argument.kind == Kind::kValue ? argument.whole().width : 0;
    if (may_overrun(argument)) room += kLongestReply;
    values_.emplace_back().bytes.resize(room);
  }
}

Call::~Call() {
  for (const Value &value : values_) {
    if (value.block != nullptr) ___FREE(value.block, operation_.name, __LINE__);
  }
}

void Call::set_bytes(size_t place, size_t offset, ByteView bytes) {
  Bytes &room = values_[place].bytes;
  if (offset >= room.size()) return;
  std::copy_n(bytes.begin(), std::min(bytes.size(), room.size() - offset), room.data() + offset);
}

void Call::set_word(size_t place, size_t offset, uint32_t word) {
  set_bytes(place, offset, {reinterpret_cast<const uint8_t *>(&word), sizeof word});
}

int32_t Call::make() {
  if (asked_module != nullptr) *asked_module = operation_.address.module;
  std::vector<void *> slots;
  for (size_t place = 0; place < values_.size(); ++place) {
    bool is_block = operation_.arguments()[place].kind == Kind::kHeadedBlock;
    slots.push_back(is_block ? static_cast<void *>(&values_[place].block)
                             : values_[place].bytes.data());
  }
  return operation_.call(slots.data());
}

ByteView Call::bytes(size_t place) const {
  const Value &value = values_[place];
  const Argument &argument = operation_.arguments()[place];
  if (argument.kind == Kind::kValue) return {value.bytes.data(), argument.whole().width};
  if (value.block == nullptr) return {};
  // The head's last word counts the bytes after the head.
  const auto *block = static_cast<const uint8_t *>(value.block);
  uint32_t rest = 0;
  std::memcpy(&rest, block + argument.size - sizeof rest, sizeof rest);
  return {block, size_t{argument.size} + rest};
}

}  // namespace olt::agent
