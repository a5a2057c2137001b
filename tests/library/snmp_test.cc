// Tests of the SNMP table readers that rows cannot express.
#include <gtest/gtest.h>
#include <string.h>

#include "oltmgmt.h"
#include "tests/library/exchange_bytes.h"

namespace olt::test {

namespace {

TEST(TableWalk, SendsTheOntRecordOfThePreviousReply) {
  const Bytes first = counting(100, 0x20);
  const Bytes second = counting(100, 0x90);
  ScriptedPlatform platform;
  platform.answer(answer_with(first));
  platform.answer(answer_with(second));
  platform.answer({.status = 9});
  olt_ont_target ont = {};
  olt_uni_downrate rates = {};
  EXPECT_EQ(process_onu_portdownrate(&ont, &rates), 0);
  EXPECT_EQ(process_onu_portdownrate(&ont, &rates), 0);
  EXPECT_EQ(process_onu_portdownrate(&ont, &rates), 9);
  ASSERT_EQ(platform.event_count(), 5u);
  EXPECT_EQ(request_of(platform.event(0)), Bytes(88));
  EXPECT_EQ(request_of(platform.event(2)), slice(first, 0, 88));
  EXPECT_EQ(request_of(platform.event(4)), slice(second, 0, 88));
  EXPECT_EQ(memcmp(&ont, second.data(), 88), 0);
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

TEST_P(CountedBlock, TrustsAnyCount) {
  for (uint32_t count : {0x0001'0005u, 0x7FFF'FFFFu, 0x8000'0000u, 0xFFFF'FF00u}) {
    const Bytes reply = record(GetParam().head, {{GetParam().head - 4u, word(count)}});
    ScriptedPlatform platform;
    platform.answer(answer_with(reply));
    platform.fail_allocation(1);
    const olt_ont_target ont = {};
    void *block = &platform;
    EXPECT_EQ(GetParam().read(&ont, &block), 0);
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
