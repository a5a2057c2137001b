#include "cli/call.h"

#include <algorithm>
#include <cstring>

#include "cli/exchanges.h"
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
      return std::max(argument.size, 1U);
    case Kind::kName:
      return argument.size;
    case Kind::kRecord:
      return argument.size + kRoomBehindRecord;
    default:
      break;
  }
  return 0;
}

/// A head's last word counts what is behind the head.
uint32_t headed_length(const void *block, uint32_t head) {
  uint32_t behind = 0;
  std::memcpy(&behind, static_cast<const uint8_t *>(block) + head - sizeof behind, sizeof behind);
  return head + behind;
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

void Call::set_vlans(size_t place, std::vector<olt_vlan_node> vlans) {
  Value &value = values_[place];
  value.nodes = std::move(vlans);
  for (size_t i = 1; i < value.nodes.size(); ++i) value.nodes[i - 1].next = &value.nodes[i];
  value.vlans.head = value.nodes.data();
  value.vlans.count = static_cast<int32_t>(value.nodes.size());
}

int32_t Call::make() {
  std::vector<void *> slots;
  for (size_t place = 0; place < values_.size(); ++place) add_slots(place, slots);
  int32_t result = operation_.call(slots.data());
  measure_outputs(result);
  return result;
}

void Call::add_slots(size_t place, std::vector<void *> &slots) {
  Value &value = values_[place];
  const Argument &argument = operation_.arguments()[place];
  switch (argument.kind) {
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
      slots.insert(slots.end(), {value.bytes.data(), &value.word});
      break;
    case Kind::kIds:
    case Kind::kEntries:
      value.word = static_cast<uint32_t>(value.bytes.size() / argument.size);
      value.bytes.reserve(1);  // an empty list has an address, too
      slots.insert(slots.end(), {&value.word, value.bytes.data()});
      break;
    case Kind::kVlans:
      slots.push_back(&value.vlans);
      break;
    case Kind::kBuffer:
      value.bytes.resize(std::min(argument.most, values_[place + 1].word));
      slots.push_back(value.bytes.data());
      break;
    case Kind::kBlock:
      slots.insert(slots.end(), {&value.block, &value.word});
      break;
    case Kind::kHeadedBlock:
    case Kind::kReplyBlock:
      slots.push_back(&value.block);
      break;
  }
}

/// The lengths that operations leave to their callers to know.
void Call::measure_outputs(int32_t result) {
  for (size_t place = 0; place < values_.size(); ++place) {
    Value &value = values_[place];
    const Argument &argument = operation_.arguments()[place];
    if (argument.kind == Kind::kBuffer) value.word = static_cast<uint32_t>(std::max(result, 0));
    if (value.block == nullptr) continue;
    if (argument.kind == Kind::kReplyBlock) value.word = last_reply_length();
    if (argument.kind == Kind::kHeadedBlock) {
      value.word = headed_length(value.block, argument.size);
    }
  }
}

ByteView Call::bytes(size_t place) const {
  const Value &value = values_[place];
  switch (operation_.arguments()[place].kind) {
    case Kind::kBlock:
    case Kind::kHeadedBlock:
    case Kind::kReplyBlock:
      return {static_cast<const uint8_t *>(value.block), value.block == nullptr ? 0 : value.word};
    case Kind::kBuffer:
      return {value.bytes.data(), value.word};
    default:
      return {value.bytes.data(), operation_.arguments()[place].size};
  }
}

}  // namespace olt::cli
