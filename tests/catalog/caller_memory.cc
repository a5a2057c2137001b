#include "tests/catalog/caller_memory.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <set>
#include <string_view>

namespace olt::test {

using catalog::Argument;
using catalog::FieldKind;
using catalog::Kind;
using catalog::Operation;
using catalog::Part;

namespace {

uint32_t vlan_width(const Argument &argument) {
  return argument.described_bytes() > 0 ? 36 : 4;
}

void link(ArgumentMemory &memory, uint32_t width) {
  memory.nodes.resize(memory.bytes.size() / width);
  for (size_t i = 0; i < memory.nodes.size(); ++i) {
    std::memcpy(&memory.nodes[i].vlan_first, memory.bytes.data() + i * width, width);
    if (i > 0) memory.nodes[i - 1].next = &memory.nodes[i];
  }
  memory.vlans.head = memory.nodes.data();
  memory.vlans.count = static_cast<int32_t>(memory.nodes.size());
}

}  // namespace

CallerMemory::CallerMemory(const Operation &operation, const Lengths &lengths,
                           const std::function<uint8_t()> &next)
    : operation_(operation), lengths_(lengths) {
  for (const Argument &argument : operation.arguments()) {
    std::vector<uint8_t> &bytes = arguments_.emplace_back().bytes;
    std::generate_n(std::back_inserter(bytes), size_of(argument), next);
    if (argument.form == FieldKind::kText && argument.is_input()) {
      auto end = static_cast<ptrdiff_t>(std::min<size_t>(lengths.text, argument.max));
      std::fill(bytes.begin() + end, bytes.end(), 0);
    }
  }
  satisfy_checks();
  for (size_t i = 0; i < arguments_.size(); ++i) expose(operation.arguments()[i], arguments_[i]);
}

size_t CallerMemory::size_of(const Argument &argument) const {
  switch (argument.kind) {
    case Kind::kValue:
      return argument.whole().width;
    case Kind::kStream:
      return lengths_.items * 100;
    case Kind::kVlans:
      return lengths_.items * vlan_width(argument);
    case Kind::kIds:
    case Kind::kEntries:
      return lengths_.items * argument.size;
    default:
      return 0;
  }
}

/// The few values that operations look at.
void CallerMemory::satisfy_checks() {
  static const std::set<std::string_view> kNameAPort = {
      "get_snmp_olt_port_basic_info", "set_snmp_olt_port_basic_info", "get_snmp_olt_port_status"};
  if (kNameAPort.contains(operation_.name)) {
    const uint8_t names[] = {1, 0, 0, 0, 3, 0, 0, 0};
    std::copy(std::begin(names), std::end(names), arguments_[0].bytes.begin());
  }
  if (operation_.reply.read_if_zero != nullptr && lengths_.reads) {
    std::fill_n(arguments_[0].bytes.begin(), 4, 0);
  }
}

void CallerMemory::expose(const Argument &argument, ArgumentMemory &memory) {
  memory.guarded = memory.bytes;
  memory.guarded.resize(memory.bytes.size() + kGuard, kGuardByte);
  switch (argument.kind) {
    case Kind::kStream:
      memory.length = static_cast<uint32_t>(memory.bytes.size());
      slots_.insert(slots_.end(), {memory.guarded.data(), &memory.length});
      break;
    case Kind::kBlock:
      slots_.insert(slots_.end(), {&memory.block, &memory.length});
      break;
    case Kind::kHeadedBlock:
    case Kind::kReplyBlock:
      slots_.push_back(&memory.block);
      break;
    case Kind::kVlans:
      link(memory, vlan_width(argument));
      slots_.push_back(&memory.vlans);
      break;
    case Kind::kIds:
    case Kind::kEntries:
      memory.length = static_cast<uint32_t>(lengths_.items);
      slots_.insert(slots_.end(), {&memory.length, memory.guarded.data()});
      break;
    default:
      slots_.push_back(memory.guarded.data());
  }
}

void shape_reply(const Operation &operation, size_t text, std::vector<uint8_t> &reply) {
  for (const Part &part : operation.reply.parts()) {
    if (part.is_text) reply[part.offset + std::min<size_t>(text, part.width - 1U)] = 0;
    if (!part.reaches_the_end()) continue;
    const Argument &argument = operation.arguments()[part.argument];
    if (argument.kind != Kind::kHeadedBlock) continue;
    auto rest = static_cast<uint32_t>(reply.size() - argument.size);
    std::memcpy(reply.data() + argument.size - sizeof rest, &rest, sizeof rest);
  }
}

}  // namespace olt::test
