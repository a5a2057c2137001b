// The runner must report every fault that an operation can have. Two sample operations behave as
// their rows say or have one fault at a time; further samples cover the other kinds of operations.
#include "tests/library/runner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <vector>

#include "oltplatform.h"

namespace olt::test {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

void keep_line(void *lines, const char *line) {
  static_cast<std::vector<std::string> *>(lines)->push_back(line);
}

std::vector<std::string> findings_of(const Row &row) {
  std::vector<std::string> lines;
  Findings findings(keep_line, &lines);
  run_row(row, findings);
  EXPECT_EQ(findings.count(), lines.size());
  return lines;
}

enum class Fault {
  kNone,
  kOtherType,
  kOtherModule,
  kOtherTimeout,
  kOtherRequestByte,
  kShortRequest,
  kCopiedRequest,
  kReplyNotWanted,
  kReplyLengthNotWanted,
  kReplyNotCleared,
  kOtherInitialStatus,
  kRetries,
  kIgnoresStatus,
  kIgnoresTransport,
  kAddsStatus,
  kSignedStatus,
  kReleasesRefusedReply,
  kReadsRefusedReply,
  kNeverReleases,
  kReleasesTwice,
  kReleasesOtherHandle,
  kReadsReleasedReply,
  kReadsBehindReply,
  kTrustsReplyLength,
  kChecksReplyLength,
  kOtherReplyOffset,
  kWritesBehindOut,
  kWritesBeforeOut,
  kTouchesOutOnFailure,
  kReadsBehindRecord,
  kAllocates,
};

Fault g_fault = Fault::kNone;

bool is(Fault fault) {
  return g_fault == fault;
}

/// Sends the caller's 7 bytes themselves, fills 5 from offset 2 of the reply.
int32_t sample_reader(const uint8_t *record, uint8_t *out) {
  uint8_t other[8];
  memcpy(other, record, is(Fault::kReadsBehindRecord) ? 8 : 7);
  if (is(Fault::kOtherRequestByte)) ++other[3];
  const void *request = is(Fault::kOtherRequestByte) || is(Fault::kCopiedRequest) ? other : record;
  void *reply = nullptr;
  uint16_t length = is(Fault::kReplyNotCleared) ? 1 : 0;
  uint32_t handle = 0;
  uint16_t status = is(Fault::kOtherInitialStatus) ? 1 : 0;
  int32_t result = 0;
  if (is(Fault::kAllocates)) ___FREE(___MALLOC(1, "sample_reader", 1), "sample_reader", 1);
  for (int attempt = 0; attempt != 2; ++attempt) {
    bool reply_wanted = !is(Fault::kReplyNotWanted);
    result =
        platmsg_syn_result(is(Fault::kOtherType) ? 1 : 0x101, is(Fault::kOtherModule) ? 3 : 2,
                           const_cast<void *>(request), is(Fault::kShortRequest) ? 6 : 7,
                           reply_wanted ? &reply : nullptr,
                           reply_wanted && !is(Fault::kReplyLengthNotWanted) ? &length : nullptr,
                           reply_wanted ? &handle : nullptr, &status, reply_wanted ? 0 : 1,
                           is(Fault::kOtherTimeout) ? 20 : 10);
    if (!is(Fault::kRetries) || result == 0) break;
  }
  if (is(Fault::kChecksReplyLength) && result == 0 && status == 0 && length < 7) return -1;
  const auto *bytes = static_cast<const uint8_t *>(reply);
  if ((result != 0 && !is(Fault::kIgnoresTransport)) ||
      (status != 0 && !is(Fault::kIgnoresStatus))) {
    if (is(Fault::kReleasesRefusedReply)) IPC_Free(handle);
    if (is(Fault::kReadsRefusedReply) && bytes != nullptr) out[0] = bytes[0];
    if (is(Fault::kTouchesOutOnFailure)) out[0] = 0;
    if (is(Fault::kAddsStatus)) return static_cast<int32_t>(static_cast<uint32_t>(result) + status);
    return result | (is(Fault::kSignedStatus) ? static_cast<int16_t>(status) : status);
  }
  if (bytes == nullptr) return 0;
  if (is(Fault::kReadsReleasedReply)) IPC_Free(handle);
  memcpy(out, bytes + (is(Fault::kOtherReplyOffset) ? 1 : 2),
         is(Fault::kTrustsReplyLength) && length > 2 ? length - 2u : 5u);
  if (is(Fault::kReadsBehindReply)) out[4] = static_cast<uint8_t>(out[4] | bytes[7]);
  if (is(Fault::kWritesBehindOut)) out[5] = 0;
  if (is(Fault::kWritesBeforeOut)) out[-1] = 0;
  if (!is(Fault::kNeverReleases) && !is(Fault::kReadsReleasedReply))
    IPC_Free(handle + (is(Fault::kReleasesOtherHandle) ? 1 : 0));
  if (is(Fault::kReleasesTwice)) IPC_Free(handle);
  return 0;
}

constexpr Row kReader = {
    .operation = "sample_reader",
    .call = [](Caller c) { return sample_reader(c[0], c[1]); },
    .exchanges = {{.type = 0x101, .request = "10+7", .sent_from = 0, .reply = "20+7"}},
    .blocks = {kept("record", Alignment::kAny, "10+7"),
               filled("out", Alignment::kAny, "AA*5", "22+5")}};

struct FaultAndFinding {
  Fault fault;
  const char *finding;
};

void PrintTo(const FaultAndFinding &parameter, std::ostream *out) {
  *out << parameter.finding;
}

class FaultyReader : public testing::TestWithParam<FaultAndFinding> {
 protected:
  ~FaultyReader() override { g_fault = Fault::kNone; }
};

TEST_P(FaultyReader, IsReported) {
  g_fault = GetParam().fault;
  EXPECT_THAT(findings_of(kReader), testing::Contains(HasSubstr(GetParam().finding)));
}

INSTANTIATE_TEST_SUITE_P(
    Runner, FaultyReader,
    testing::Values(
        FaultAndFinding{Fault::kOtherType, "success: message type: expected 257 (0x101), got 1"},
        FaultAndFinding{Fault::kOtherModule, "module: expected 2 (0x2), got 3"},
        FaultAndFinding{Fault::kOtherTimeout, "time-out: expected 10 (0xa), got 20"},
        FaultAndFinding{Fault::kOtherRequestByte, "request, byte 3 of 7: expected 13, got 14"},
        FaultAndFinding{Fault::kShortRequest, "request length: expected 7 (0x7), got 6"},
        FaultAndFinding{Fault::kCopiedRequest, "expected the caller's record itself"},
        FaultAndFinding{Fault::kReplyNotWanted,
                        "reply arguments: expected all given, got all null"},
        FaultAndFinding{Fault::kReplyLengthNotWanted,
                        "reply arguments: expected all given, got some of them null"},
        FaultAndFinding{Fault::kReplyNotCleared, "reply arguments: expected cleared values"},
        FaultAndFinding{Fault::kOtherInitialStatus, "initial status: expected 0 (0x0), got 1"},
        FaultAndFinding{Fault::kRetries,
                        "transport result 1: expected no further call, got platmsg_syn_result"},
        FaultAndFinding{Fault::kIgnoresStatus, "exchange 1: status 5: "},
        FaultAndFinding{Fault::kIgnoresTransport, "exchange 1: transport result 1: "},
        FaultAndFinding{Fault::kAddsStatus,
                        "transport result 3, status 5: result: expected 7, got 8"},
        FaultAndFinding{Fault::kSignedStatus, "status 0xFFFF: result: expected 65535, got -1"},
        FaultAndFinding{Fault::kReleasesRefusedReply,
                        "status 5: expected no further call, got IPC_Free"},
        FaultAndFinding{Fault::kReadsRefusedReply,
                        "status 1: touched a reply that must not be read now"},
        FaultAndFinding{Fault::kNeverReleases, "success: expected IPC_Free, got no further call"},
        FaultAndFinding{Fault::kReleasesTwice, "success: expected no further call, got IPC_Free"},
        FaultAndFinding{Fault::kReleasesOtherHandle, "success: reply handle: expected"},
        FaultAndFinding{Fault::kReadsReleasedReply,
                        "success: touched a reply that must not be read now"},
        FaultAndFinding{Fault::kReadsBehindReply,
                        "success: touched a reply that must not be read now"},
        FaultAndFinding{Fault::kTrustsReplyLength, "longer reply: "},
        FaultAndFinding{Fault::kChecksReplyLength, "reply length of 0: result: expected 0, got -1"},
        FaultAndFinding{Fault::kOtherReplyOffset, "success: out, byte 0 of 5: expected 22, got 21"},
        FaultAndFinding{Fault::kWritesBehindOut,
                        "success: touched byte 5 of the caller's out, which has 5"},
        FaultAndFinding{Fault::kWritesBeforeOut, "success: wrote outside of the caller's out"},
        FaultAndFinding{Fault::kTouchesOutOnFailure, "status 5: out, byte 0 of 5: expected AA"},
        FaultAndFinding{Fault::kReadsBehindRecord,
                        "success: touched byte 7 of the caller's record, which has 7"},
        FaultAndFinding{Fault::kAllocates, "success: expected platmsg_syn_result, got ___MALLOC"}));

TEST(Runner, FindsNothingWrongWithAReaderThatKeepsItsRow) {
  EXPECT_THAT(findings_of(kReader), IsEmpty());
}

enum class BlockFault {
  kNone,
  kOtherSize,
  kOtherTag,
  kOtherLine,
  kClearsBlock,
  kWritesBehindBlock,
  kWritesBeforeBlock,
  kNeverReleases,
  kReleasesBeforeSending,
  kReleasesOnSuccessOnly,
  kOtherReleaseTag,
  kOtherReleaseLine,
  kReturnsZeroWithoutMemory,
  kReleasesNull,
  kDoesNotLog,
  kOtherLogText,
  kOtherLogLine,
  kStopsAtLastNode,
};

BlockFault g_block_fault = BlockFault::kNone;

bool is(BlockFault fault) {
  return g_block_fault == fault;
}

struct Node {
  const Node *next;
  uint8_t unread[12 - sizeof(void *)];
  uint16_t first;
  uint16_t second;
};

struct List {
  const Node *head;
  uint8_t unread[16 - sizeof(void *)];
  int32_t count;
};

/// Sends 8 bytes, of which it writes the first 2, and 4 for each node of the list.
int32_t sample_setter(const List *list) {
  auto length = 8 + 4 * static_cast<uint32_t>(list->count);
  const char *tag = is(BlockFault::kOtherTag) ? "sample" : "sample_setter";
  auto *block = static_cast<uint8_t *>(___MALLOC(is(BlockFault::kOtherSize) ? length + 1 : length,
                                                 tag, is(BlockFault::kOtherLine) ? 12 : 11));
  if (block == nullptr) {
    if (!is(BlockFault::kDoesNotLog))
      log_log(3, "sample_setter", is(BlockFault::kOtherLogLine) ? 23 : 22,
              is(BlockFault::kOtherLogText) ? "less of memory" : "less of momery");
    if (is(BlockFault::kReleasesNull)) ___FREE(nullptr, "sample_setter", 33);
    return is(BlockFault::kReturnsZeroWithoutMemory) ? 0 : -1;
  }
  if (is(BlockFault::kClearsBlock)) memset(block, 0, length);
  memset(block, 1, 2);
  const Node *node = list->head;
  for (int32_t i = 0; i < list->count; ++i) {
    memcpy(block + 8 + size_t{4} * static_cast<size_t>(i), &node->first, 4);
    if (!is(BlockFault::kStopsAtLastNode) && i + 1 == list->count) break;
    node = node->next;
  }
  if (is(BlockFault::kStopsAtLastNode)) block[2] = static_cast<uint8_t>(node->first);
  if (is(BlockFault::kWritesBehindBlock)) block[length] = 0;
  if (is(BlockFault::kWritesBeforeBlock)) block[-1] = 0;
  uint16_t status = 0;
  if (is(BlockFault::kReleasesBeforeSending)) ___FREE(block, "sample_setter", 33);
  int32_t result =
      platmsg_syn_result(0x102, 2, block, length, nullptr, nullptr, nullptr, &status, 1, 10);
  if (!is(BlockFault::kNeverReleases) && (!is(BlockFault::kReleasesOnSuccessOnly) || result == 0))
    ___FREE(block, is(BlockFault::kOtherReleaseTag) ? "sample" : "sample_setter",
            is(BlockFault::kOtherReleaseLine) ? 34 : 33);
  return result | status;
}

constexpr Row kSetter = {.operation = "sample_setter",
                         .call = [](Caller c) { return sample_setter(c[0]); },
                         .exchanges = {{.type = 0x102, .request = "0101 ~~*6 12003400 56007800"}},
                         .blocks = {kept("list", Alignment::kPointer, "&2/16 02000000"),
                                    kept("last node", Alignment::kPointer, "&-/12 5600 7800"),
                                    kept("first node", Alignment::kPointer, "&1/12 1200 3400")},
                         .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                                           .allocation_line = 11,
                                           .release_line = 33,
                                           .log_line = 22,
                                           .log = "less of momery"}};

struct BlockFaultAndFinding {
  BlockFault fault;
  const char *finding;
};

void PrintTo(const BlockFaultAndFinding &parameter, std::ostream *out) {
  *out << parameter.finding;
}

class FaultySetter : public testing::TestWithParam<BlockFaultAndFinding> {
 protected:
  ~FaultySetter() override { g_block_fault = BlockFault::kNone; }
};

TEST_P(FaultySetter, IsReported) {
  g_block_fault = GetParam().fault;
  EXPECT_THAT(findings_of(kSetter), testing::Contains(HasSubstr(GetParam().finding)));
}

INSTANTIATE_TEST_SUITE_P(
    Runner, FaultySetter,
    testing::Values(
        BlockFaultAndFinding{BlockFault::kOtherSize, "success: ___MALLOC size: expected 16"},
        BlockFaultAndFinding{BlockFault::kOtherTag,
                             "___MALLOC tag: expected sample_setter, got sample"},
        BlockFaultAndFinding{BlockFault::kOtherLine, "___MALLOC line: expected 11, got 12"},
        BlockFaultAndFinding{BlockFault::kClearsBlock, "success: request, byte 2 of 16"},
        BlockFaultAndFinding{BlockFault::kWritesBehindBlock,
                             "success: touched memory around a ___MALLOC block"},
        BlockFaultAndFinding{BlockFault::kWritesBeforeBlock,
                             "success: wrote outside of the request block"},
        BlockFaultAndFinding{BlockFault::kNeverReleases,
                             "success: expected ___FREE, got no further call"},
        BlockFaultAndFinding{BlockFault::kReleasesBeforeSending,
                             "success: touched a released ___MALLOC block"},
        BlockFaultAndFinding{BlockFault::kReleasesOnSuccessOnly,
                             "transport result 1: expected ___FREE, got no further call"},
        BlockFaultAndFinding{BlockFault::kOtherReleaseTag, "___FREE tag: expected"},
        BlockFaultAndFinding{BlockFault::kOtherReleaseLine, "___FREE line: expected 33, got 34"},
        BlockFaultAndFinding{BlockFault::kReturnsZeroWithoutMemory,
                             "out of memory: result: expected -1, got 0"},
        BlockFaultAndFinding{BlockFault::kReleasesNull,
                             "out of memory: expected no further call, got ___FREE"},
        BlockFaultAndFinding{BlockFault::kDoesNotLog,
                             "out of memory: expected log_log, got no further call"},
        BlockFaultAndFinding{BlockFault::kOtherLogText,
                             "log line: expected >less of momery<, got >less of memory<"},
        BlockFaultAndFinding{BlockFault::kOtherLogLine, "log_log line: expected 22, got 23"},
        BlockFaultAndFinding{BlockFault::kStopsAtLastNode,
                             "success: touched inaccessible memory"}));

TEST(Runner, FindsNothingWrongWithASetterThatKeepsItsRow) {
  EXPECT_THAT(findings_of(kSetter), IsEmpty());
}

/// Sends a block of 4 bytes. Without memory it follows the policy, even into undefined behaviour.
__attribute__((no_sanitize("undefined"))) int32_t post_block(OutOfMemory policy) {
  void *block = ___MALLOC(4, "sample_policy", 0);
  if (block == nullptr && policy == OutOfMemory::kMinusOne) return -1;
  if (block == nullptr && policy == OutOfMemory::kZero) return 0;
  uint16_t status = 0;
  int32_t result = 0;
  if (block != nullptr || policy == OutOfMemory::kUntested) {
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): that is the point
    *static_cast<volatile uint32_t *>(block) = 0;
    result = platmsg_syn_result(0x103, 2, block, 4, nullptr, nullptr, nullptr, &status, 1, 10);
  }
  ___FREE(block, "sample_policy", 0);
  return result | status;
}

Row policy_row(int32_t (*call)(Caller), OutOfMemory policy) {
  Row row = {.operation = "sample_policy",
             .call = call,
             .exchanges = {{.type = 0x103, .request = "00*4"}},
             .request_block = {.out_of_memory = policy}};
  return row;
}

TEST(Runner, DistinguishesThePoliciesForAFailedAllocation) {
  struct {
    OutOfMemory policy;
    int32_t (*call)(Caller);
  } const samples[] = {
      {OutOfMemory::kMinusOne, [](Caller) { return post_block(OutOfMemory::kMinusOne); }},
      {OutOfMemory::kZero, [](Caller) { return post_block(OutOfMemory::kZero); }},
      {OutOfMemory::kZeroAndRelease,
       [](Caller) { return post_block(OutOfMemory::kZeroAndRelease); }},
      {OutOfMemory::kUntested, [](Caller) { return post_block(OutOfMemory::kUntested); }}};
  for (const auto &expected : samples) {
    for (const auto &actual : samples) {
      SCOPED_TRACE(testing::Message() << "row says " << static_cast<int>(expected.policy)
                                      << ", operation does " << static_cast<int>(actual.policy));
      auto findings = findings_of(policy_row(actual.call, expected.policy));
      EXPECT_EQ(findings.empty(), expected.policy == actual.policy);
    }
  }
}

/// Sends the caller's 4 bytes and copies the reply; the arguments select what it does after a
/// failure and whether it releases the reply.
int32_t fetch(const void *record, uint16_t status_before, int32_t failure_mask, bool releases,
              uint8_t *out) {
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = status_before;
  int32_t result = platmsg_syn_result(0x104, 2, const_cast<void *>(record), 4, &reply, &length,
                                      &handle, &status, 0, 10);
  if ((result | status) != 0) return (result | status) & failure_mask;
  memcpy(out, reply, 4);
  if (releases) IPC_Free(handle);
  return 0;
}

Row getter_row(int32_t (*call)(Caller)) {
  Row row = {.operation = "sample_getter",
             .call = call,
             .exchanges = {{.type = 0x104, .request = "10+4", .sent_from = 0, .reply = "20+4"}},
             .blocks = {filled("record", Alignment::kAny, "10+4", "20+4")}};
  return row;
}

TEST(Runner, KnowsRepliesThatAreNeverReleased) {
  Row row = getter_row([](Caller c) { return fetch(c[0], 0, -1, false, c[0]); });
  EXPECT_THAT(findings_of(row),
              testing::Contains("sample_getter, success: expected IPC_Free, got no further call"));
  row.releases_reply = false;
  EXPECT_THAT(findings_of(row), IsEmpty());
}

TEST(Runner, KnowsResultsThatHideTheFailure) {
  Row flat = getter_row([](Caller c) { return fetch(c[0], 0, -1, true, c[0]) != 0 ? -1 : 0; });
  flat.results = Results::kMinusOne;
  EXPECT_THAT(findings_of(flat), IsEmpty());
  flat.results = Results::kAlwaysZero;
  EXPECT_THAT(findings_of(flat), testing::Contains(HasSubstr("result: expected 0, got -1")));

  Row never_failing = getter_row([](Caller c) {
    uint8_t *out = c[0];
    uint8_t kept[4] = {};
    fetch(out, 0, -1, true, kept);
    memcpy(out, kept, 4);
    return 0;
  });
  never_failing.results = Results::kAlwaysZero;
  EXPECT_THAT(findings_of(never_failing), testing::Contains(HasSubstr("record, byte 0 of 4")));
  never_failing.blocks[0].after_failure = "00*4";
  EXPECT_THAT(findings_of(never_failing), IsEmpty());
}

TEST(Runner, KnowsCallsThatAreRefusedBeforeAnythingIsSent) {
  Row row = {.operation = "sample_refusal",
             .call = [](Caller) { return -1; },
             .results = Results::kRefused};
  EXPECT_THAT(findings_of(row), IsEmpty());
  row.call = [](Caller) { return 0; };
  EXPECT_THAT(findings_of(row), testing::Contains(HasSubstr("result: expected -1, got 0")));
}

/// Builds the request in a block, releases it before checking the result, copies the reply back.
int32_t fetch_through_block(uint8_t *record) {
  void *block = ___MALLOC(4, "sample_getter", 0);
  if (block == nullptr) return 0;
  memcpy(block, record, 4);
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  int32_t result = platmsg_syn_result(0x104, 2, block, 4, &reply, &length, &handle, &status, 0, 10);
  ___FREE(block, "sample_getter", 0);
  if ((result | status) != 0) return result | status;
  memcpy(record, reply, 4);
  IPC_Free(handle);
  return 0;
}

TEST(Runner, KnowsRequestBlocksOfReaders) {
  Row row = getter_row([](Caller c) { return fetch_through_block(c[0]); });
  row.exchanges[0].sent_from = kNoBlock;
  row.request_block.out_of_memory = OutOfMemory::kZero;
  EXPECT_THAT(findings_of(row), IsEmpty());
}

/// Returns the reply's first 2 bytes in a block, or null.
int32_t fetch_answer(void **answer, uint32_t size) {
  uint8_t record[4] = {};
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  int32_t result =
      platmsg_syn_result(0x105, 2, record, 4, &reply, &length, &handle, &status, 0, 10);
  if ((result | status) != 0) return result | status;
  *answer = ___MALLOC(size, "sample_answer", 0);
  if (*answer != nullptr) memcpy(*answer, reply, 2);
  IPC_Free(handle);
  return 0;
}

TEST(Runner, KnowsBlocksThatAreReturned) {
  Row row = {.operation = "sample_answer",
             .call = [](Caller c) { return fetch_answer(c[0], 2); },
             .exchanges = {{.type = 0x105, .request = "00*4", .reply = "20+4"}},
             .blocks = {filled("answer", Alignment::kPointer, "&-", "&=")},
             .returned_block = {.out_of_memory = OutOfMemory::kNullAnswer, .bytes = "2021"}};
  EXPECT_THAT(findings_of(row), IsEmpty());

  Row dying = row;
  dying.returned_block.out_of_memory = OutOfMemory::kUntested;
  EXPECT_THAT(findings_of(dying),
              testing::Contains(HasSubstr("out of memory: expected to die of writing to null")));

  Row longer = row;
  longer.call = [](Caller c) { return fetch_answer(c[0], 3); };
  EXPECT_THAT(findings_of(longer), testing::Contains(HasSubstr("___MALLOC size: expected 2")));

  Row other_bytes = row;
  other_bytes.returned_block.bytes = "2022";
  EXPECT_THAT(findings_of(other_bytes),
              testing::Contains(HasSubstr("returned block, byte 1 of 2: expected 22, got 21")));
}

/// Sends the value to module 22, then to module 2, or the other way round.
int32_t post_twice(uint32_t first, uint32_t second, bool stops) {
  uint32_t value = 7;
  uint16_t status = 0;
  int32_t result =
      platmsg_syn_result(0x106, first, &value, 4, nullptr, nullptr, nullptr, &status, 1, 10);
  if (stops && (result | status) != 0) return result | status;
  result = platmsg_syn_result(0x106, second, &value, 4, nullptr, nullptr, nullptr, &status, 1, 10);
  return result | status;
}

TEST(Runner, KnowsSequencesOfTwoExchanges) {
  Row row = {.operation = "sample_sequence",
             .call = [](Caller) { return post_twice(22, 2, true); },
             .exchanges = {{.type = 0x106, .module = 22, .request = "07000000"},
                           {.type = 0x106, .module = 2, .request = "07000000"}}};
  EXPECT_THAT(findings_of(row), IsEmpty());
  row.call = [](Caller) { return post_twice(2, 22, true); };
  EXPECT_THAT(findings_of(row), testing::Contains(HasSubstr("module: expected 22 (0x16), got 2")));
  row.call = [](Caller) { return post_twice(22, 2, false); };
  EXPECT_THAT(findings_of(row),
              testing::Contains(HasSubstr("exchange 1: status 5: expected no further call")));
}

TEST(Runner, DoesNotCompareBytesThatDoNotMatter) {
  Row row = getter_row([](Caller c) { return fetch(c[0], 0, -1, true, c[0]); });
  row.exchanges[0].request = "10 ??*2 13";
  EXPECT_THAT(findings_of(row), IsEmpty());
  row.exchanges[0].request = "?? 11 12 ??";
  EXPECT_THAT(findings_of(row), IsEmpty());
  row.exchanges[0].request = "?? 11 13 ??";
  EXPECT_THAT(findings_of(row), testing::Contains(HasSubstr("request, byte 2 of 4")));
}

TEST(Runner, NamesTheVariantAndTheAddresses) {
  Row row = getter_row([](Caller c) { return fetch(c[0], 1, -1, true, c[0]); });
  row.variant = "odd";
  EXPECT_THAT(findings_of(row),
              testing::Contains("sample_getter odd, success, reply at +1, buffers at +3: "
                                "initial status: expected 0 (0x0), got 1 (0x1)"));
}

}  // namespace

}  // namespace olt::test
