// Tests of the switch operations that rows cannot express.
#include <gtest/gtest.h>

#include <vector>

#include "oltmgmt.h"
#include "tests/library/exchange_bytes.h"

namespace olt::test {

namespace {

/// All 4,094 VLANs: each with its number, the difference from 4,095, and a text of its own.
class LongList {
 public:
  static constexpr uint16_t kCount = 4'094;

  LongList() {
    for (uint16_t vlan = 1; vlan <= kCount; ++vlan) {
      olt_vlan_node &node = nodes_[vlan - 1u];
      node.next = vlan == kCount ? nullptr : &nodes_[vlan];
      node.vlan_first = vlan;
      node.vlan_second = static_cast<uint16_t>(4'095 - vlan);
      for (int i = 0; i != 32; ++i) node.vlan_descr[i] = static_cast<char>(vlan * 7 + i);
    }
    list_.head = nodes_.data();
    list_.count = kCount;
  }

  const olt_vlan_list *list() const { return &list_; }

  static Bytes elements(bool with_descr) {
    const size_t size = with_descr ? 36 : 4;
    Bytes bytes;
    for (uint16_t vlan = 1; vlan <= kCount; ++vlan) {
      const Bytes element = record(36, {{0, half_word(vlan)},
                                        {2, half_word(static_cast<uint16_t>(4'095 - vlan))},
                                        {4, counting(32, static_cast<uint8_t>(vlan * 7))}});
      bytes.insert(bytes.end(), element.begin(), element.begin() + static_cast<ptrdiff_t>(size));
    }
    return bytes;
  }

 private:
  std::vector<olt_vlan_node> nodes_ = std::vector<olt_vlan_node>(kCount);
  olt_vlan_list list_ = {};
};

/// A list of one node that claims to have two.
class ShortList {
 public:
  ShortList() {
    list_.head = &node_;
    list_.count = 2;
  }

  const olt_vlan_list *list() const { return &list_; }

 private:
  olt_vlan_node node_ = {};
  olt_vlan_list list_ = {};
};

constexpr bool kWithDescr = true;

using Sender = int32_t (*)(const olt_vlan_list *);

struct NamedSender {
  const char *name;
  Sender send;
  bool with_descr;
  /// 2^32 minus the length of one element.
  uint32_t length_of_minus_one;
};

void PrintTo(const NamedSender &sender, std::ostream *out) {
  *out << sender.name;
}

class ListSender : public testing::TestWithParam<NamedSender> {};

TEST_P(ListSender, SendsAllVlans) {
  const LongList list;
  ScriptedPlatform platform;
  EXPECT_EQ(GetParam().send(list.list()), 0);
  ASSERT_EQ(platform.event_count(), 3u);
  EXPECT_EQ(platform.event(0).size, GetParam().with_descr ? 147'384u : 16'376u);
  EXPECT_TRUE(request_of(platform.event(1)) == LongList::elements(GetParam().with_descr));
  EXPECT_TRUE(platform.event(2).block_was_intact);
}

TEST_P(ListSender, GivesUpWhenThereIsNoMemoryForANegativeCount) {
  olt_vlan_list list = {};
  list.count = -1;
  ScriptedPlatform platform;
  platform.fail_allocation(1);
  EXPECT_EQ(GetParam().send(&list), -1);
  ASSERT_EQ(platform.event_count(), 1u);
  EXPECT_EQ(platform.event(0).size, GetParam().length_of_minus_one);
  EXPECT_STREQ(platform.event(0).tag, GetParam().name);
}

TEST_P(ListSender, ReadsPastTheEndOfAListThatIsTooShort) {
  const ShortList list;
  EXPECT_DEATH(
      {
        ScriptedPlatform platform;
        GetParam().send(list.list());
      },
      "");
}

INSTANTIATE_TEST_SUITE_P(
    Switch, ListSender,
    testing::Values(
        NamedSender{"add_vlan_list", &add_vlan_list, false, 4'294'967'292},
        NamedSender{"delete_vlan_list", &delete_vlan_list, false, 4'294'967'292},
        NamedSender{"add_vlan_descr_list", &add_vlan_descr_list, kWithDescr, 4'294'967'260},
        NamedSender{"delete_vlan_descr_list", &delete_vlan_descr_list, false, 4'294'967'292},
        NamedSender{"add_muticastvlan_list", &add_muticastvlan_list, false, 4'294'967'292},
        NamedSender{"delete_muticastvlan_list", &delete_muticastvlan_list, false, 4'294'967'292}),
    [](const auto &sender) { return sender.param.name; });

using TrunkSender = int32_t (*)(uint32_t, uint32_t, const olt_vlan_list *, uint32_t);

constexpr TrunkSender kTrunkSenders[] = {&process_trunk_vlan, &process_trunk_vlan_untag,
                                         &process_trunk_vlan_all, &process_trunk_vlan_untag_all};

TEST(TrunkVlans, AreAllSentFromALongList) {
  const LongList list;
  for (TrunkSender send : kTrunkSenders) {
    ScriptedPlatform platform;
    EXPECT_EQ(send(1, 2, list.list(), 3), 0);
    ASSERT_EQ(platform.event_count(), 3u);
    EXPECT_EQ(platform.event(0).size, 16'456u);
    const Bytes request = request_of(platform.event(1));
    ASSERT_EQ(request.size(), 16'456u);
    EXPECT_EQ(slice(request, 0, 12), hex("01000000 02000000 03000000"));
    EXPECT_TRUE(slice(request, 80, 16'456) == LongList::elements(false));
    EXPECT_TRUE(platform.event(2).block_was_intact);
  }
}

TEST(TrunkVlans, AreReadPastTheEndOfAListThatIsTooShort) {
  const ShortList list;
  for (TrunkSender send : kTrunkSenders)
    EXPECT_DEATH(
        {
          ScriptedPlatform platform;
          send(1, 2, list.list(), 3);
        },
        "");
}

TEST(VlanQuery, ReadsPastTheEndOfAListThatIsTooShort) {
  const ShortList list;
  char name[32];
  EXPECT_DEATH(
      {
        ScriptedPlatform platform;
        get_vlan_information_file_bylist(list.list(), name);
      },
      "");
}

TEST(VlanQuery, SendsAllVlansOfALongList) {
  const LongList list;
  const Bytes reply = record(80, {{48, text("vlans")}});
  ScriptedPlatform platform;
  platform.answer(answer_with(reply));
  char name[32];
  EXPECT_EQ(get_vlan_information_file_bylist(list.list(), name), 0);
  EXPECT_STREQ(name, "vlans");
  ASSERT_EQ(platform.event_count(), 4u);
  const Bytes request = request_of(platform.event(1));
  ASSERT_EQ(request.size(), 16'456u);
  EXPECT_EQ(word_at(request, 0), 1u);
  EXPECT_TRUE(slice(request, 80, 16'456) == LongList::elements(false));
}

}  // namespace

}  // namespace olt::test
