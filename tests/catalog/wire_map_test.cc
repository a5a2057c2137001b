// Calls every operation that sends with arguments of which no two bytes are alike, and compares
// each byte of its requests with what the catalog says; then answers with a reply of distinct
// bytes, and compares each byte of the caller's memory.
#include "catalog/wire_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "catalog/catalog.h"
#include "oltmgmt.h"
#include "tests/catalog/caller_memory.h"
#include "tests/library/byte_pattern.h"
#include "tests/library/scripted_platform.h"

namespace olt::test {

namespace {

using olt::catalog::Argument;
using olt::catalog::families;
using olt::catalog::Family;
using olt::catalog::Kind;
using olt::catalog::Operation;
using olt::catalog::Origin;
using olt::catalog::Part;
using Bytes = std::vector<uint8_t>;

/// How long the arguments of a call and its reply are, and which bytes they have.
struct Variant {
  Lengths lengths;
  size_t rest;         ///< bytes of a reply after its head
  bool second_digits;  ///< of the bytes' numbers
};

/// Byte number n: never 0. The two digits tell it from all others.
uint8_t numbered(size_t n, bool second_digit) {
  return static_cast<uint8_t>(1 + (second_digit ? n / 255 : n) % 255);
}

/// One call, its exchange and what it leaves.
class Experiment {
 public:
  Experiment(const Operation &operation, const Variant &variant)
      : operation_(operation),
        variant_(variant),
        memory_(operation, variant.lengths, [this] { return next(); }) {}

  void run() {
    Bytes reply = make_reply();
    ScriptedPlatform platform;
    platform.answer({.reply = reply.data(), .reply_length = static_cast<uint16_t>(reply.size())});
    poison_the_stack(variant_.second_digits ? 0x3C : 0xC3);
    int32_t result = memory_.call();
    EXPECT_EQ(result, 0);
    compare_requests(platform);
    compare_memory(reply);
  }

  /// What the call returns when there is no memory.
  int32_t result_without_memory() {
    Bytes reply = make_reply();
    ScriptedPlatform platform;
    platform.answer({.reply = reply.data(), .reply_length = static_cast<uint16_t>(reply.size())});
    platform.fail_allocation(1, true);
    return memory_.call();
  }

  /// Offsets of parts that memory fills, whose bytes were not all zero.
  const std::set<size_t> &filled_by_memory() const { return filled_by_memory_; }

 private:
  [[gnu::noinline]] static void poison_the_stack(int byte) {
    volatile uint8_t below[4096];
    for (volatile uint8_t &poisoned : below) poisoned = static_cast<uint8_t>(byte);
  }

  uint8_t next() { return numbered(++count_, variant_.second_digits); }

  Bytes make_reply() {
    Bytes reply;
    size_t length = operation_.reply.fixed_length();
    for (const Part &part : operation_.reply.parts()) {
      if (!part.reaches_the_end()) continue;
      const Argument &argument = operation_.arguments()[part.argument];
      length += argument.kind == Kind::kHeadedBlock ? argument.size : 0;
      length += variant_.rest;
    }
    while (reply.size() < length) reply.push_back(next());
    shape_reply(operation_, variant_.lengths.text, reply);
    return reply;
  }

  void compare_requests(const ScriptedPlatform &platform) {
    std::vector<const Event *> exchanges;
    for (size_t i = 0; i < platform.event_count(); ++i) {
      if (platform.event(i).kind == EventKind::kExchange) exchanges.push_back(&platform.event(i));
    }
    const auto &address = operation_.address;
    ASSERT_EQ(exchanges.size(), address.second_module == 0 ? 1U : 2U);
    EXPECT_EQ(exchanges[0]->module,
              address.module == 0 ? memory_.arguments()[0].bytes[0] : address.module);
    EXPECT_EQ(exchanges.back()->module,
              address.second_module == 0 ? exchanges[0]->module : address.second_module);
    for (const Event *exchange : exchanges) {
      EXPECT_EQ(exchange->type, address.message_type);
      EXPECT_EQ(exchange->timeout, address.timeout);
      EXPECT_EQ(exchange->no_reply, is_read() ? 0U : 1U);
      is_allocated_ = is_allocated(platform, exchange->request);
      compare_request(
          {exchange->request_bytes, exchange->request_bytes + exchange->request_length});
    }
  }

  void compare_request(const Bytes &request) {
    size_t length = operation_.request.fixed_length();
    for (const Part &part : operation_.request.parts()) {
      if (part.reaches_the_end()) length += memory_.arguments()[part.argument].bytes.size();
    }
    ASSERT_EQ(request.size(), length);
    for (const Part &part : operation_.request.parts()) {
      size_t width = part.reaches_the_end() ? length - part.offset : part.width;
      compare_part(part, {request.begin() + part.offset,
                          request.begin() + part.offset + static_cast<ptrdiff_t>(width)});
    }
  }

  void compare_part(const Part &part, const Bytes &sent) {
    SCOPED_TRACE("request at " + std::to_string(part.offset));
    if (part.origin == Origin::kArgument) return compare_argument(part, sent);
    if (part.origin == Origin::kAny) return note_memory(part.offset, sent);
    Bytes expected(sent.size());
    for (size_t i = 0; i < sizeof part.constant && i < expected.size(); ++i) {
      expected[i] = static_cast<uint8_t>(part.constant >> 8 * i);
    }
    EXPECT_EQ(sent, expected);
  }

  void compare_argument(const Part &part, const Bytes &sent) {
    const Bytes &argument = memory_.arguments()[part.argument].bytes;
    size_t width = sent.size();
    if (part.is_text) {
      size_t length =
          static_cast<size_t>(std::find(argument.begin(), argument.end(), 0) - argument.begin());
      width = std::min(length + (part.with_zero ? 1 : 0), width);
    }
    ASSERT_LE(part.from + width, argument.size());
    Bytes expected(argument.begin() + part.from,
                   argument.begin() + part.from + static_cast<ptrdiff_t>(width));
    Bytes rest(sent.begin() + static_cast<ptrdiff_t>(width), sent.end());
    EXPECT_EQ(Bytes(sent.begin(), sent.begin() + static_cast<ptrdiff_t>(width)), expected);
    if (part.rest == Origin::kZeros) {
      EXPECT_EQ(rest, Bytes(rest.size()));
    } else if (!rest.empty()) {
      note_memory(part.offset + width, rest);
    }
  }

  static bool is_allocated(const ScriptedPlatform &platform, const void *request) {
    for (size_t i = 0; i < platform.event_count(); ++i) {
      const Event &event = platform.event(i);
      if (event.kind == EventKind::kAllocated && event.block == request) return true;
    }
    return false;
  }

  /// Bytes that the operation left as they were: known in an allocated block, poisoned on the
  /// stack.
  void note_memory(size_t offset, const Bytes &sent) {
    for (size_t i = 0; is_allocated_ && i < sent.size(); ++i) {
      EXPECT_EQ(sent[i], fresh_byte(offset + i)) << offset + i;
    }
    bool is_zero = std::all_of(sent.begin(), sent.end(), [](uint8_t byte) { return byte == 0; });
    if (!is_zero) filled_by_memory_.insert(offset);
  }

  void compare_memory(const Bytes &reply) {
    std::vector<Bytes> expected;
    for (const ArgumentMemory &memory : memory_.arguments()) expected.push_back(memory.bytes);
    expect_constants(expected);
    for (const Part &part : operation_.reply.parts()) {
      if (is_read() && part.origin == Origin::kArgument) take(part, reply, expected[part.argument]);
    }
    for (size_t place = 0; place < expected.size(); ++place) compare(place, expected[place]);
  }

  /// Whether the call asks for a reply.
  bool is_read() const {
    bool reads = operation_.reply.read_if_zero == nullptr || variant_.lengths.reads;
    return reads && !operation_.reply.parts().empty();
  }

  /// What an operation sets in its caller's record before it sends that.
  void expect_constants(std::vector<Bytes> &expected) const {
    static const std::map<std::string, uint8_t> kSet = {{"modify_user_level", 3},
                                                        {"get_system_next_user", 0}};
    auto found = kSet.find(operation_.name);
    if (found == kSet.end()) return;
    const uint8_t word[] = {found->second, 0, 0, 0};
    std::copy(std::begin(word), std::end(word), expected[0].begin());
  }

  static void take(const Part &part, const Bytes &reply, Bytes &argument) {
    auto from = reply.begin() + part.offset;
    if (part.reaches_the_end()) {
      argument.assign(from, reply.end());
      return;
    }
    auto end = from + part.width;
    if (part.is_text) end = std::find(from, end, 0) + 1;
    ASSERT_LE(part.from + (end - from), static_cast<ptrdiff_t>(argument.size()));
    std::copy(from, end, argument.begin() + part.from);
  }

  void compare(size_t place, const Bytes &expected) {
    const Argument &argument = operation_.arguments()[place];
    const ArgumentMemory &memory = memory_.arguments()[place];
    SCOPED_TRACE(argument.name);
    if (memory.block != nullptr) {
      EXPECT_EQ(memory.length, argument.kind == Kind::kBlock ? expected.size() : 0);
      const auto *block = static_cast<const uint8_t *>(memory.block);
      EXPECT_EQ(Bytes(block, block + expected.size()), expected);
      return;
    }
    Bytes guarded = expected;
    guarded.resize(expected.size() + CallerMemory::kGuard, CallerMemory::kGuardByte);
    EXPECT_EQ(memory.guarded, guarded);
  }

  const Operation &operation_;
  const Variant variant_;
  size_t count_ = 0;
  CallerMemory memory_;
  bool is_allocated_ = false;  ///< the request that is compared
  std::set<size_t> filled_by_memory_;
};

constexpr Variant kVariants[] = {
    {.lengths = {1, 7, true}, .rest = 40, .second_digits = false},
    {.lengths = {1, 7, true}, .rest = 40, .second_digits = true},
    {.lengths = {3, 1000, false}, .rest = 300, .second_digits = false},
    {.lengths = {3, 1000, false}, .rest = 300, .second_digits = true},
    {.lengths = {0, 1, true}, .rest = 0, .second_digits = false},
};

class WireMap : public testing::TestWithParam<const Operation *> {};

TEST_P(WireMap, AccountsForEveryByte) {
  const Operation &operation = *GetParam();
  std::set<size_t> filled;
  for (const Variant &variant : kVariants) {
    SCOPED_TRACE("items " + std::to_string(variant.lengths.items) + ", digit " +
                 std::to_string(variant.second_digits ? 2 : 1));
    Experiment experiment(operation, variant);
    experiment.run();
    filled.insert(experiment.filled_by_memory().begin(), experiment.filled_by_memory().end());
  }
  for (const Part &part : operation.request.parts()) {
    bool is_text = part.is_text && part.rest == Origin::kAny;
    if (part.origin != Origin::kAny && !is_text) continue;
    auto from = filled.lower_bound(part.offset);
    EXPECT_TRUE(from != filled.end() && *from < part.offset + part.width) << part.offset;
  }
}

std::vector<const Operation *> all_that_send() {
  std::vector<const Operation *> all;
  for (const Family &family : families()) {
    for (const Operation &operation : family.operations) {
      if (operation.address.sends()) all.push_back(&operation);
    }
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(AllOperations, WireMap, testing::ValuesIn(all_that_send()),
                         [](const auto &each) { return std::string(each.param->name); });

/// Those that write to what they did not get are not called.
TEST(Outcomes, NameTheOperationsThatReportThatARequestCouldNotBeBuilt) {
  const std::set<std::string> untested = {
      "add_authallowed_loid",
      "add_authallowed_mac",
      "add_authallowed_mac_loid",
      "delete_authallowed_loid",
      "delete_authallowed_mac",
      "delete_authallowed_mac_loid",
      "do_handle_epon_updatestream",
      "do_handle_epon_updatestream_onu",
      "get_vlan_information_file_bylist",
      "process_trunk_vlan",
      "process_trunk_vlan_all",
      "process_trunk_vlan_untag",
      "process_trunk_vlan_untag_all",
  };
  // They return -1 for every failure.
  std::set<std::string> named = {"set_ont_port_alarmsetting", "set_ont_port_loopback"};
  std::set<std::string> report;
  for (const Operation *operation : all_that_send()) {
    const char *minus_one = operation->outcome.minus_one;
    if (minus_one != nullptr && minus_one == std::string("the request could not be built")) {
      named.insert(operation->name);
    }
    if (untested.contains(operation->name)) continue;
    if (Experiment(*operation, kVariants[0]).result_without_memory() == -1) {
      report.insert(operation->name);
    }
  }
  EXPECT_EQ(named, report);
  EXPECT_EQ(report.size(), 31U);
}

TEST(WireMapOfAll, Covers176Operations) {
  EXPECT_EQ(all_that_send().size(), 176U);
}

}  // namespace

}  // namespace olt::test
