// What the rows of the PON operations cannot say.
#include <gtest/gtest.h>

#include <vector>

#include "oltmgmt.h"
#include "tests/library/guarded_memory.h"
#include "tests/library/scripted_platform.h"

namespace olt::test {

namespace {

/// Memory at an address that is no multiple of 4, with bytes that tell their places apart.
class Scattered {
 public:
  Scattered(size_t size, size_t remainder) {
    memory_.place(size, 4, remainder);
    for (size_t i = 0; i != size; ++i) memory_.data()[i] = at(i);
  }

  static uint8_t at(size_t offset) { return static_cast<uint8_t>(offset * 40503u >> 8); }

  template <typename T>
  const T *as() const {
    return reinterpret_cast<const T *>(memory_.data());
  }

 private:
  GuardedMemory memory_;
};

/// Number of the scattered bytes that the request carries in their places from the offset on.
size_t carried(const Event &exchange, size_t offset) {
  size_t count = 0;
  while (offset + count != exchange.request_length &&
         exchange.request_bytes[offset + count] == Scattered::at(count))
    ++count;
  return count;
}

using ChangeEntries = int32_t (*)(uint32_t, uint32_t, int32_t, const olt_auth_entry *);

class LongEntryList : public testing::TestWithParam<ChangeEntries> {};

TEST_P(LongEntryList, IsSentWhole) {
  const Scattered entries(440'000, 3);
  ScriptedPlatform platform;
  EXPECT_EQ(GetParam()(1, 2, 10'000, entries.as<olt_auth_entry>()), 0);
  ASSERT_EQ(platform.event_count(), 3u);
  EXPECT_EQ(platform.event(0).size, 440'080u);
  EXPECT_EQ(platform.event(1).request_length, 440'080u);
  EXPECT_EQ(carried(platform.event(1), 80), 440'000u);
}

INSTANTIATE_TEST_SUITE_P(Pon, LongEntryList,
                         testing::Values(&add_authallowed_mac, &delete_authallowed_mac,
                                         &add_authallowed_loid, &delete_authallowed_loid,
                                         &add_authallowed_mac_loid, &delete_authallowed_mac_loid,
                                         &delete_blocklist_mac));

TEST(EntryList, OfANegativeCountHasAVastLength) {
  ScriptedPlatform platform;
  platform.fail_allocation(1);
  EXPECT_EQ(delete_blocklist_mac(1, 2, -2, nullptr), -1);
  ASSERT_EQ(platform.event_count(), 2u);
  EXPECT_EQ(platform.event(0).size, 0xFFFFFFF8u);
  EXPECT_STREQ(platform.event(1).message, "less of memory");
}

using ChangeVlans = int32_t (*)(const olt_ont_target *, uint32_t, const uint16_t *);

class LongVlanList : public testing::TestWithParam<ChangeVlans> {};

TEST_P(LongVlanList, IsSentWhole) {
  const olt_ont_target ont = {};
  const Scattered vlans(140'000, 2);
  ScriptedPlatform platform;
  EXPECT_EQ(GetParam()(&ont, 70'000, vlans.as<uint16_t>()), 0);
  ASSERT_EQ(platform.event_count(), 3u);
  EXPECT_EQ(platform.event(0).size, 140'088u);
  EXPECT_EQ(platform.event(1).request_length, 140'088u);
  EXPECT_EQ(carried(platform.event(1), 88), 140'000u);
}

INSTANTIATE_TEST_SUITE_P(Pon, LongVlanList,
                         testing::Values(&add_ont_port_muticastvlan,
                                         &delete_ont_port_muticastvlan));

}  // namespace

}  // namespace olt::test
