#include "cli/call/call.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/olthost.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Kind;

namespace {

/// Some operations copy texts out of a reply without a length check: room for all that a reply can
/// hold, after what they fill.
constexpr size_t kRoomAfterOutput = OLT_REPLY_LIMIT;

/// The result of some operations when their exchange failed.
constexpr int32_t kNotSaid = -1;

size_t room(const Argument &argument) {
  if (argument.kind != Kind::kValue) return 0;
  return argument.whole().width + (argument.is_output() ? kRoomAfterOutput : 0);
}

/// A head's last word counts the bytes after the head.
uint32_t headed_length(const void *block, uint32_t head) {
  uint32_t rest = 0;
  std::memcpy(&rest, static_cast<const uint8_t *>(block) + head - sizeof rest, sizeof rest);
  return head + rest;
}

uint32_t word(const Bytes &bytes) {
  uint32_t word = 0;
  std::memcpy(&word, bytes.data(), sizeof word);
  return word;
}

}  // namespace

Call::Call(const catalog::Operation &operation) : operation_(operation) {
  for (const Argument &argument : operation.arguments()) {
    values_.emplace_back().bytes.resize(room(argument));
  }
}

Call::Call(const Call &other) : operation_(other.operation_), values_(other.values_) {
  for (size_t place = 0; place < values_.size(); ++place) {
    set_vlans(place, std::move(values_[place].nodes));
  }
}

Call::~Call() {
  for (const Value &value : values_) {
    if (value.block != nullptr) ___FREE(value.block, operation_.name, __LINE__);
  }
}

void Call::set_bytes(size_t place, size_t offset, ByteView bytes) {
  Value &value = values_[place];
  std::copy(bytes.begin(), bytes.end(), value.bytes.data() + offset);
  if (value.given.size() < offset + bytes.size()) value.given.resize(offset + bytes.size());
  for (size_t i = 0; i < bytes.size(); ++i) value.given[offset + i] = true;
}

bool Call::is_given(size_t place, size_t offset, size_t count) const {
  const std::vector<bool> &given = values_[place].given;
  for (size_t at = offset; at < offset + count; ++at) {
    if (at >= given.size() || !given[at]) return false;
  }
  return true;
}

bool Call::is_any_given(size_t place, size_t offset, size_t count) const {
  for (size_t at = offset; at < offset + count; ++at) {
    if (is_given(place, at, 1)) return true;
  }
  return false;
}

void Call::fill_in(size_t place, size_t offset, ByteView bytes) {
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (!is_given(place, offset + i, 1)) values_[place].bytes[offset + i] = bytes[i];
  }
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
  ExchangesOf exchanges(operation_);
  int32_t result = operation_.call(slots.data());
  exchange_ = last_exchange();
  measure_outputs(result);
  olt_release_replies();  // those that the operation keeps
  return result;
}

int32_t Call::reason(int32_t result) const {
  if (result != kNotSaid || !exchange_) return result;
  int32_t ended = exchange_->transport | exchange_->status;
  return ended != 0 ? ended : result;
}

void Call::add_slots(size_t place, std::vector<void *> &slots) {
  Value &value = values_[place];
  const Argument &argument = operation_.arguments()[place];
  switch (argument.kind) {
    case Kind::kValue:
      slots.push_back(value.bytes.data());
      break;
    case Kind::kStream:
      value.length = static_cast<uint32_t>(value.bytes.size());
      slots.insert(slots.end(), {value.bytes.data(), &value.length});
      break;
    case Kind::kIds:
    case Kind::kEntries:
      value.length = static_cast<uint32_t>(value.bytes.size() / argument.size);
      value.bytes.reserve(1);  // an empty list has an address, too
      slots.insert(slots.end(), {&value.length, value.bytes.data()});
      break;
    case Kind::kVlans:
      slots.push_back(&value.vlans);
      break;
    case Kind::kBuffer:
      value.bytes.resize(std::min(argument.max, word(values_[place + 1].bytes)));
      slots.push_back(value.bytes.data());
      break;
    case Kind::kBlock:
      slots.insert(slots.end(), {&value.block, &value.length});
      break;
    case Kind::kHeadedBlock:
    case Kind::kReplyBlock:
      slots.push_back(&value.block);
      break;
  }
}

/// Finds the lengths that operations do not return.
void Call::measure_outputs(int32_t result) {
  for (size_t place = 0; place < values_.size(); ++place) {
    Value &value = values_[place];
    const Argument &argument = operation_.arguments()[place];
    if (argument.kind == Kind::kBuffer) value.length = static_cast<uint32_t>(std::max(result, 0));
    if (value.block == nullptr) continue;
    if (argument.kind == Kind::kReplyBlock) value.length = reply_length();
    if (argument.kind == Kind::kHeadedBlock) {
      value.length = headed_length(value.block, argument.size);
    }
  }
}

ByteView Call::bytes(size_t place) const {
  const Value &value = values_[place];
  switch (operation_.arguments()[place].kind) {
    case Kind::kBlock:
    case Kind::kHeadedBlock:
    case Kind::kReplyBlock:
      return {static_cast<const uint8_t *>(value.block), value.block == nullptr ? 0 : value.length};
    case Kind::kBuffer:
      return {value.bytes.data(), value.length};
    default:
      return {value.bytes.data(), operation_.arguments()[place].whole().width};
  }
}

}  // namespace olt::cli
