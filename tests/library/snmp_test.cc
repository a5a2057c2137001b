// What the rows of the SNMP table readers cannot say.
#include <gtest/gtest.h>
#include <string.h>

#include <vector>

#include "oltmgmt.h"
#include "tests/library/scripted_platform.h"

namespace olt::test {

namespace {

using Record = std::vector<uint8_t>;

Record request_of(const Event &event) {
  return {event.request_bytes, event.request_bytes + event.request_length};
}

TEST(TableWalk, PassesTheTargetOfTheAnswerBefore) {
  Record first(100);
  Record second(100);
  for (size_t i = 0; i != 100; ++i) {
    first[i] = static_cast<uint8_t>(0x20 + i);
    second[i] = static_cast<uint8_t>(0x90 + i);
  }
  ScriptedPlatform platform;
  platform.answer({.reply = first.data(), .reply_length = 100});
  platform.answer({.reply = second.data(), .reply_length = 100});
  platform.answer({.status = 9});
  olt_ont_target target = {};
  olt_uni_downrate rates = {};
  EXPECT_EQ(process_onu_portdownrate(&target, &rates), 0);
  EXPECT_EQ(process_onu_portdownrate(&target, &rates), 0);
  EXPECT_EQ(process_onu_portdownrate(&target, &rates), 9);
  ASSERT_EQ(platform.event_count(), 5u);
  EXPECT_EQ(request_of(platform.event(0)), Record(88));
  EXPECT_EQ(request_of(platform.event(2)), Record(first.begin(), first.begin() + 88));
  EXPECT_EQ(request_of(platform.event(4)), Record(second.begin(), second.begin() + 88));
  EXPECT_EQ(memcmp(&target, second.data(), 88), 0);
  EXPECT_EQ(memcmp(&rates, second.data() + 88, 12), 0);
}

struct CountedReader {
  const char *name;
  int32_t (*read)(const olt_ont_target *, void **);
  uint16_t head;
};

void PrintTo(const CountedReader &reader, std::ostream *out) {
  *out << reader.name;
}

class CountedBlock : public testing::TestWithParam<CountedReader> {};

TEST_P(CountedBlock, TrustsTheCountHoweverHighItIs) {
  for (uint32_t count : {0x0001'0005u, 0x7FFF'FFFFu, 0x8000'0000u, 0xFFFF'FF00u}) {
    Record reply(GetParam().head);
    for (unsigned i = 0; i != 4; ++i)
      reply[GetParam().head - 4u + i] = static_cast<uint8_t>(count >> 8 * i);
    ScriptedPlatform platform;
    platform.answer({.reply = reply.data(), .reply_length = GetParam().head});
    platform.fail_allocation(1);
    const olt_ont_target target = {};
    void *block = &reply;
    EXPECT_EQ(GetParam().read(&target, &block), 0);
    EXPECT_EQ(block, nullptr);
    ASSERT_EQ(platform.event_count(), 3u);
    EXPECT_EQ(platform.event(1).size, count + GetParam().head);
    EXPECT_EQ(platform.event(2).kind, EventKind::kReplyReleased);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Snmp, CountedBlock,
    testing::Values(CountedReader{"process_snmp_onuglobalinfo", &process_snmp_onuglobalinfo, 60},
                    CountedReader{"process_snmp_hguwaninfo", &process_snmp_hguwaninfo, 88}),
    [](const auto &reader) { return reader.param.name; });

}  // namespace

}  // namespace olt::test
