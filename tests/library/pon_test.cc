// Tests of the PON operations that rows cannot express.
#include <gtest/gtest.h>
#include <string.h>

#include "oltmgmt.h"
#include "tests/library/exchange_bytes.h"
#include "tests/library/guarded_memory.h"

namespace olt::test {

namespace {

/// Bytes at an address that is remainder modulo 4.
class Misaligned {
 public:
  Misaligned(const Bytes &bytes, size_t remainder) {
    memory_.place(bytes.size(), 4, remainder);
    memcpy(memory_.data(), bytes.data(), bytes.size());
  }

  template <typename T>
  const T *as() const {
    return reinterpret_cast<const T *>(memory_.data());
  }

 private:
  GuardedMemory memory_;
};

using ChangeEntries = int32_t (*)(uint32_t, uint32_t, int32_t, const olt_auth_entry *);

class LongEntryList : public testing::TestWithParam<ChangeEntries> {};

TEST_P(LongEntryList, IsSentWhole) {
  const Bytes bytes = scattered(440'000);
  const Misaligned entries(bytes, 3);
  ScriptedPlatform platform;
  EXPECT_EQ(GetParam()(1, 2, 10'000, entries.as<olt_auth_entry>()), 0);
  ASSERT_EQ(platform.event_count(), 3u);
  EXPECT_EQ(platform.event(0).size, 440'080u);
  ASSERT_EQ(platform.event(1).request_length, 440'080u);
  EXPECT_TRUE(slice(request_of(platform.event(1)), 80, 440'080) == bytes);
}

INSTANTIATE_TEST_SUITE_P(Pon, LongEntryList,
                         testing::Values(&add_authallowed_mac, &delete_authallowed_mac,
                                         &add_authallowed_loid, &delete_authallowed_loid,
                                         &add_authallowed_mac_loid, &delete_authallowed_mac_loid,
                                         &delete_blocklist_mac));

TEST(EntryList, WithANegativeCountWrapsAround) {
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
  const Bytes bytes = scattered(140'000);
  const Misaligned vlans(bytes, 2);
  ScriptedPlatform platform;
  EXPECT_EQ(GetParam()(&ont, 70'000, vlans.as<uint16_t>()), 0);
  ASSERT_EQ(platform.event_count(), 3u);
  EXPECT_EQ(platform.event(0).size, 140'088u);
  ASSERT_EQ(platform.event(1).request_length, 140'088u);
  EXPECT_TRUE(slice(request_of(platform.event(1)), 88, 140'088) == bytes);
}

INSTANTIATE_TEST_SUITE_P(Pon, LongVlanList,
                         testing::Values(&add_ont_port_muticastvlan,
                                         &delete_ont_port_muticastvlan));

}  // namespace

}  // namespace olt::test
