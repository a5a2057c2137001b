// Multicast at the user ports of ONUs.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

Bytes vlans(uint32_t first, uint32_t last) {
  Bytes ids;
  for (uint32_t vlan = first; vlan <= last; ++vlan) {
    ids.push_back(static_cast<uint8_t>(vlan));
    ids.push_back(static_cast<uint8_t>(vlan >> 8));
  }
  return ids;
}

uint32_t change(SmallPon &box, uint32_t type, const Bytes &ids, uint32_t port = 1) {
  return box.status(type, target_with(target(1, 2, port), ids));
}

/// The listing of a port's VLANs without its title.
std::string listed(SmallPon &box, uint32_t port = 1) {
  std::string listing = box.list_target(kListPortMulticastVlans, target(1, 2, port));
  return listing.substr(listing.find("\n\n") + 2);
}

size_t groups_of(const std::string &listing, const std::string &port) {
  size_t count = 0;
  for (size_t at = listing.find(port); at != std::string::npos; at = listing.find(port, at + 1)) {
    ++count;
  }
  return count;
}

TEST(PortMulticastVlans, AreAddedAndDeleted) {
  SmallPon box;
  EXPECT_EQ(listed(box), "0 VLANs\n");
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("c800 6400 0100")), kOk);
  EXPECT_EQ(listed(box), "3 VLANs\n1\n100\n200\n");
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("6400 fe0f 6400")), kOk);
  EXPECT_EQ(listed(box), "4 VLANs\n1\n100\n200\n4094\n");
  EXPECT_EQ(change(box, kDeletePortMulticastVlans, hex("0100 c800")), kOk);
  EXPECT_EQ(listed(box), "2 VLANs\n100\n4094\n");
  EXPECT_EQ(listed(box, 2), "0 VLANs\n");
  EXPECT_EQ(box.status(kClearPortMulticastVlans, target(1, 2, 1)), kOk);
  EXPECT_EQ(listed(box), "0 VLANs\n");
  EXPECT_EQ(box.status(kClearPortMulticastVlans, target(1, 2, 1)), kOk);
}

TEST(PortMulticastVlans, BadRequestsChangeNothing) {
  SmallPon box;
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("6400 c800")), kOk);
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("2c01 0000")), kBadValue);
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("2c01 ff0f")), kBadValue);
  EXPECT_EQ(change(box, kDeletePortMulticastVlans, hex("6400 ffff")), kBadValue);
  EXPECT_EQ(change(box, kDeletePortMulticastVlans, hex("6400 6500")), kNotFound);
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("2c01 00")), kBadLength);
  EXPECT_EQ(change(box, kAddPortMulticastVlans, Bytes(2 * (kMaxVlans + 1))), kBadLength);
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("2c01"), 3), kNotFound);
  EXPECT_EQ(change(box, kDeletePortMulticastVlans, hex("6400"), 0), kNotFound);
  EXPECT_EQ(box.status(kClearPortMulticastVlans, target(1, 2, 0)), kNotFound);
  EXPECT_EQ(box.status(kListPortMulticastVlans, target(1, 2, 0)), kNotFound);
  EXPECT_EQ(change(box, kAddPortMulticastVlans, {}), kOk);
  EXPECT_EQ(change(box, kDeletePortMulticastVlans, {}), kOk);
  EXPECT_EQ(listed(box), "2 VLANs\n100\n200\n");
}

TEST(PortMulticastVlans, ThereIsRoomFor64) {
  SmallPon box;
  EXPECT_EQ(change(box, kAddPortMulticastVlans, vlans(1001, 1064)), kOk);
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("0100")), kFull);
  EXPECT_EQ(change(box, kAddPortMulticastVlans, vlans(1001, 1064)), kOk);
  EXPECT_EQ(listed(box).find("64 VLANs\n1001\n"), 0U);
  EXPECT_EQ(change(box, kDeletePortMulticastVlans, vlans(1001, 1064)), kOk);
  EXPECT_EQ(listed(box), "0 VLANs\n");
}

TEST(GroupLimit, IsReadBack) {
  SmallPon box;
  EXPECT_EQ(box.reply(kGetGroupLimit, target(1, 2, 2)), word(0));
  EXPECT_EQ(box.status(kSetGroupLimit, target_with(target(1, 2, 2), word(0xDEADBEEF))), kOk);
  EXPECT_EQ(box.reply(kGetGroupLimit, target(1, 2, 2)), word(0xDEADBEEF));
  EXPECT_EQ(box.reply(kGetGroupLimit, target(1, 2, 1)), word(0));
  EXPECT_EQ(box.status(kSetGroupLimit, target_with(target(1, 2, 3), word(1))), kNotFound);
  EXPECT_EQ(box.status(kSetGroupLimit, target(1, 2, 1)), kBadLength);
  EXPECT_EQ(box.status(kGetGroupLimit, target_with(target(1, 2, 1), word(1))), kBadLength);
}

TEST(Strip, IsListed) {
  SmallPon box;
  Bytes strip(kStripSize, 'a');
  strip[33] = 'z';
  EXPECT_EQ(box.status(kSetUniPortStrip, target_with(target(1, 2, 1), strip)), kOk);
  EXPECT_EQ(box.list_target(kListUniPortStrip, target(1, 2, 1)),
            "Stripping of multicast tags at UNI port 1/1/2:1\n"
            "===============================================\n"
            "\n"
            "Record\n"
            "0000  61616161616161616161616161616161  aaaaaaaaaaaaaaaa\n"
            "0010  61616161616161616161616161616161  aaaaaaaaaaaaaaaa\n"
            "0020  617a                              az\n");
  EXPECT_EQ(box.status(kSetUniPortStrip, target_with(target(1, 2, 1), Bytes(kStripSize - 1))),
            kBadLength);
  EXPECT_EQ(box.status(kSetUniPortStrip, target_with(target(1, 2, 3), strip)), kNotFound);
}

TEST(FastLeave, IsKept) {
  SmallPon box;
  EXPECT_EQ(box.status(kSetFastLeave, target_with(target(1, 2, 1), word(1))), kOk);
  std::string config = box.list_target(kListOnuConfig, target(1, 2));
  EXPECT_TRUE(holds(config, "IGMP fast leave\n1/1/2:1  1\n")) << config;
  EXPECT_EQ(box.status(kSetFastLeave, target(1, 2, 1)), kBadLength);
}

TEST(Groups, AreJoinedOneAfterTheOther) {
  SmallPon box;
  EXPECT_EQ(box.list_target(kListMulticastGroups, target(1, 2)),
            "Multicast groups of ONU 1/1/2\n"
            "=============================\n"
            "\n"
            "Groups\n"
            "Port  Group  VLAN  Joined at\n"
            "----  -----  ----  ---------\n");
  box.advance(1h);
  EXPECT_EQ(box.list_target(kListMulticastGroups, target(1, 2)),
            "Multicast groups of ONU 1/1/2\n"
            "=============================\n"
            "\n"
            "Groups\n"
            "Port     Group      VLAN  Joined at\n"
            "-------  ---------  ----  --------------------\n"
            "1/1/2:1  239.1.1.1  -     2026-01-31T12:00:05Z\n"
            "1/1/2:1  239.1.1.2  -     2026-01-31T12:00:10Z\n"
            "1/1/2:2  239.1.2.1  -     2026-01-31T12:00:05Z\n"
            "1/1/2:2  239.1.2.2  -     2026-01-31T12:00:10Z\n");
}

TEST(Groups, AreLimitedAndSpreadOverTheVlansOfThePort) {
  SmallPon box;
  EXPECT_EQ(change(box, kAddPortMulticastVlans, hex("6400 c800")), kOk);
  box.advance(1h);
  EXPECT_EQ(box.status(kSetGroupLimit, target_with(target(1, 2, 2), word(1))), kOk);
  std::string groups = box.list_target(kListMulticastGroups, target(1, 2));
  EXPECT_TRUE(holds(groups, "239.1.1.1  100   ")) << groups;
  EXPECT_TRUE(holds(groups, "239.1.1.2  200   ")) << groups;
  EXPECT_EQ(groups_of(groups, "1/1/2:1"), 2U);
  EXPECT_EQ(groups_of(groups, "1/1/2:2"), 1U);
}

TEST(Groups, AreUnavailableWhileTheOnuIsAway) {
  SmallPon box;
  EXPECT_EQ(box.status(kRebootOnu, target(1, 2)), kOk);
  EXPECT_EQ(box.status(kListMulticastGroups, target(1, 2)), kOnuNotUp);
  box.advance(8s);
  EXPECT_EQ(groups_of(box.list_target(kListMulticastGroups, target(1, 2)), "1/1/2:"), 2U);
  EXPECT_EQ(box.status(kListMulticastGroups, target(1, 5)), kNotFound);
}

TEST(PortMulticast, IsConfiguration) {
  SmallPon box;
  change(box, kAddPortMulticastVlans, hex("6400 c800"));
  box.status(kSetGroupLimit, target_with(target(1, 2, 1), word(9)));
  box.status(kSetUniPortStrip, target_with(target(1, 2, 1), Bytes(kStripSize, 7)));
  box.status(kSetFastLeave, target_with(target(1, 2, 1), word(1)));
  std::string config = box.list_target(kListOnuConfig, target(1, 2));
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  EXPECT_EQ(listed(box), "0 VLANs\n");
  box.restart();
  EXPECT_EQ(box.list_target(kListOnuConfig, target(1, 2)), config);
  EXPECT_EQ(listed(box), "2 VLANs\n100\n200\n");
}

TEST(PortMulticast, DamagedVlansInAStateFileAreReported) {
  SmallPon box;
  change(box, kAddPortMulticastVlans, hex("6400"));
  box.status(kSaveConfig);
  box.end();
  for (const char *bad : {"\"0100000000", "\"0164100000", "\"4101000000"}) {
    box.damage_state("saved", "\"0164000000", bad);
    try {
      box.restart();
      ADD_FAILURE() << "accepted " << bad;
    } catch (const std::runtime_error &error) {
      EXPECT_TRUE(holds(std::string(error.what()), "holds no VLANs")) << error.what();
    }
    box.damage_state("saved", bad, "\"0164000000");
  }
}

}  // namespace

}  // namespace olt::test
