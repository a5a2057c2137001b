// Calls every operation that sends, with arguments and replies of scattered bytes, and prints its
// name once for each exchange. Then makes an exchange of no operation whose request is too long to
// be recorded whole. What it sends is for libolttrace to record.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

#include "catalog/catalog.h"
#include "catalog/message_fields.h"
#include "oltmgmt.h"
#include "oltplatform.h"
#include "tests/capture/answering_platform.h"

namespace {

using olt::catalog::Argument;
using olt::catalog::FieldKind;
using olt::catalog::Kind;
using olt::catalog::Operation;
using olt::catalog::Part;
using Bytes = std::vector<uint8_t>;

constexpr size_t kItems = 3;
constexpr size_t kText = 7;
constexpr size_t kRest = 90;
constexpr uint32_t kLongRequest = 140'000;

/// Never 0, and printable, so that they are texts, too.
uint8_t next_byte() {
  static uint32_t state = 1;
  state = state * 1'664'525 + 1'013'904'223;
  return static_cast<uint8_t>('0' + (state >> 16) % 75);
}

Bytes scattered(size_t size) {
  Bytes bytes(size);
  std::generate(bytes.begin(), bytes.end(), next_byte);
  return bytes;
}

class Calling {
 public:
  explicit Calling(const Operation &operation) : operation_(operation) {
    memories_.resize(operation.argument_count);
    for (size_t place = 0; place < memories_.size(); ++place) fill(place);
    satisfy_checks();
    for (size_t place = 0; place < memories_.size(); ++place) add_slots(place);
  }

  int32_t make() {
    Bytes reply = make_reply();
    reply_with(reply.data(), static_cast<uint16_t>(reply.size()));
    return operation_.call(slots_.data());
  }

 private:
  struct Memory {
    Bytes bytes;
    uint32_t length = 0;
    void *block = nullptr;
    std::vector<olt_vlan_node> nodes;
    olt_vlan_list vlans{};
  };

  static uint32_t vlan_width(const Argument &argument) {
    return argument.described_bytes() > 0 ? 36 : 4;
  }

  static size_t size_of(const Argument &argument) {
    switch (argument.kind) {
      case Kind::kValue:
        return argument.whole().width;
      case Kind::kStream:
        return 100;
      case Kind::kVlans:
        return kItems * vlan_width(argument);
      case Kind::kIds:
      case Kind::kEntries:
        return kItems * argument.size;
      default:
        return 0;
    }
  }

  void fill(size_t place) {
    const Argument &argument = operation_.arguments()[place];
    Bytes &bytes = memories_[place].bytes;
    bytes = scattered(size_of(argument));
    if (argument.form == FieldKind::kText && argument.is_input())
      std::fill(bytes.begin() + std::min<ptrdiff_t>(kText, argument.max), bytes.end(), 0);
  }

  /// The few values that operations look at.
  void satisfy_checks() {
    std::string_view name = operation_.name;
    if (name.find("snmp_olt_port") != std::string_view::npos) {
      const uint8_t port[] = {1, 0, 0, 0, 3, 0, 0, 0};
      std::copy(std::begin(port), std::end(port), memories_[0].bytes.begin());
    }
    if (operation_.reply.read_if_zero != nullptr) std::fill_n(memories_[0].bytes.begin(), 4, 0);
  }

  void add_slots(size_t place) {
    const Argument &argument = operation_.arguments()[place];
    Memory &memory = memories_[place];
    switch (argument.kind) {
      case Kind::kStream:
        memory.length = static_cast<uint32_t>(memory.bytes.size());
        slots_.insert(slots_.end(), {memory.bytes.data(), &memory.length});
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
        memory.length = kItems;
        slots_.insert(slots_.end(), {&memory.length, memory.bytes.data()});
        break;
      default:
        slots_.push_back(memory.bytes.data());
    }
  }

  static void link(Memory &memory, uint32_t width) {
    memory.nodes.resize(kItems);
    for (size_t i = 0; i < kItems; ++i) {
      std::memcpy(&memory.nodes[i].vlan_first, memory.bytes.data() + i * width, width);
      if (i > 0) memory.nodes[i - 1].next = &memory.nodes[i];
    }
    memory.vlans.head = memory.nodes.data();
    memory.vlans.count = kItems;
  }

  /// With all fields, also behind those that the operation reads.
  Bytes make_reply() const {
    size_t size = operation_.reply.fixed_length();
    for (const auto &placed : fields_of(operation_, operation_.reply))
      size = std::max<size_t>(size, placed.field.offset + placed.field.width);
    bool is_open = false;
    for (const Part &part : operation_.reply.parts()) is_open = is_open || part.reaches_the_end();
    Bytes reply = scattered(size + (is_open ? kRest : 0));
    for (const Part &part : operation_.reply.parts()) {
      if (part.is_text) reply[part.offset + std::min<size_t>(kText, part.width - 1U)] = 0;
      if (!part.reaches_the_end()) continue;
      const Argument &argument = operation_.arguments()[part.argument];
      if (argument.kind != Kind::kHeadedBlock) continue;
      auto rest = static_cast<uint32_t>(reply.size() - argument.size);
      std::memcpy(reply.data() + argument.size - sizeof rest, &rest, sizeof rest);
    }
    return reply;
  }

  const Operation &operation_;
  std::vector<Memory> memories_;
  std::vector<void *> slots_;
};

bool call(const Operation &operation) {
  bool is_asked_twice = operation.address.second_module != olt::catalog::Address::kNone;
  for (int i = 0; i < (is_asked_twice ? 2 : 1); ++i) std::printf("%s\n", operation.name);
  int32_t result = Calling(operation).make();
  if (!operation.succeeded(result)) {
    static_cast<void>(std::fprintf(stderr, "%s: result %d\n", operation.name, result));
    return false;
  }
  return true;
}

}  // namespace

int main() {
  bool succeeded = true;
  for (const olt::catalog::Family &family : olt::catalog::families()) {
    for (const Operation &operation : family.operations)
      if (operation.address.sends()) succeeded = call(operation) && succeeded;
  }
  Bytes request = scattered(kLongRequest);
  uint16_t status = 0;
  platmsg_syn_result(60'000, 2, request.data(), kLongRequest, nullptr, nullptr, nullptr, &status, 1,
                     10);
  return succeeded ? 0 : 1;
}
