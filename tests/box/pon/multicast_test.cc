// Multicast at the user ports of ONUs.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace {

using namespace std::chrono_literals;
using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::read_file;
using olt::tests::SmallPon;
using olt::tests::target;
using olt::tests::target_with;
using olt::tests::word;
using olt::tests::write_file;

constexpr uint32_t kAdd = 124;
constexpr uint32_t kDelete = 125;

Bytes vlans(uint32_t first, uint32_t last) {
  Bytes ids;
  for (uint32_t vlan = first; vlan <= last; ++vlan) {
    ids.push_back(static_cast<uint8_t>(vlan));
    ids.push_back(static_cast<uint8_t>(vlan >> 8));
  }
  return ids;
}

uint32_t change(SmallPon &box, uint32_t type, const Bytes &ids, uint32_t port = 1) {
  return box.status(2, type, target_with(target(1, 2, port), ids));
}

/// What the listing of a port's VLANs holds behind its title.
std::string listed(SmallPon &box, uint32_t port = 1) {
  std::string listing = box.list_target(122, target(1, 2, port));
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
  EXPECT_EQ(change(box, kAdd, hex("c800 6400 0100")), 0U);
  EXPECT_EQ(listed(box), "3 VLANs\n1\n100\n200\n");
  EXPECT_EQ(change(box, kAdd, hex("6400 fe0f 6400")), 0U);
  EXPECT_EQ(listed(box), "4 VLANs\n1\n100\n200\n4094\n");
  EXPECT_EQ(change(box, kDelete, hex("0100 c800")), 0U);
  EXPECT_EQ(listed(box), "2 VLANs\n100\n4094\n");
  EXPECT_EQ(listed(box, 2), "0 VLANs\n");
  EXPECT_EQ(box.status(2, 123, target(1, 2, 1)), 0U);
  EXPECT_EQ(listed(box), "0 VLANs\n");
  EXPECT_EQ(box.status(2, 123, target(1, 2, 1)), 0U);
}

TEST(PortMulticastVlans, BadRequestsChangeNothing) {
  SmallPon box;
  EXPECT_EQ(change(box, kAdd, hex("6400 c800")), 0U);
  EXPECT_EQ(change(box, kAdd, hex("2c01 0000")), 3U);
  EXPECT_EQ(change(box, kAdd, hex("2c01 ff0f")), 3U);
  EXPECT_EQ(change(box, kDelete, hex("6400 ffff")), 3U);
  EXPECT_EQ(change(box, kDelete, hex("6400 6500")), 4U);
  EXPECT_EQ(change(box, kAdd, hex("2c01 00")), 2U);
  EXPECT_EQ(change(box, kAdd, Bytes(2 * 4095)), 2U);
  EXPECT_EQ(change(box, kAdd, hex("2c01"), 3), 4U);
  EXPECT_EQ(change(box, kDelete, hex("6400"), 0), 4U);
  EXPECT_EQ(box.status(2, 123, target(1, 2, 0)), 4U);
  EXPECT_EQ(box.status(2, 122, target(1, 2, 0)), 4U);
  EXPECT_EQ(change(box, kAdd, {}), 0U);
  EXPECT_EQ(change(box, kDelete, {}), 0U);
  EXPECT_EQ(listed(box), "2 VLANs\n100\n200\n");
}

TEST(PortMulticastVlans, ThereIsRoomFor64) {
  SmallPon box;
  EXPECT_EQ(change(box, kAdd, vlans(1001, 1064)), 0U);
  EXPECT_EQ(change(box, kAdd, hex("0100")), 6U);
  EXPECT_EQ(change(box, kAdd, vlans(1001, 1064)), 0U);
  EXPECT_EQ(listed(box).find("64 VLANs\n1001\n"), 0U);
  EXPECT_EQ(change(box, kDelete, vlans(1001, 1064)), 0U);
  EXPECT_EQ(listed(box), "0 VLANs\n");
}

TEST(GroupLimit, IsReadBack) {
  SmallPon box;
  EXPECT_EQ(box.reply(2, 120, target(1, 2, 2)), word(0));
  EXPECT_EQ(box.status(2, 121, target_with(target(1, 2, 2), word(0xDEADBEEF))), 0U);
  EXPECT_EQ(box.reply(2, 120, target(1, 2, 2)), word(0xDEADBEEF));
  EXPECT_EQ(box.reply(2, 120, target(1, 2, 1)), word(0));
  EXPECT_EQ(box.status(2, 121, target_with(target(1, 2, 3), word(1))), 4U);
  EXPECT_EQ(box.status(2, 121, target(1, 2, 1)), 2U);
  EXPECT_EQ(box.status(2, 120, target_with(target(1, 2, 1), word(1))), 2U);
}

TEST(Strip, IsListed) {
  SmallPon box;
  Bytes strip(34, 'a');
  strip[33] = 'z';
  EXPECT_EQ(box.status(2, 127, target_with(target(1, 2, 1), strip)), 0U);
  EXPECT_EQ(box.list_target(126, target(1, 2, 1)),
            "Stripping of multicast tags at UNI port 1/1/2:1\n"
            "===============================================\n"
            "\n"
            "Record\n"
            "0000  61616161616161616161616161616161  aaaaaaaaaaaaaaaa\n"
            "0010  61616161616161616161616161616161  aaaaaaaaaaaaaaaa\n"
            "0020  617a                              az\n");
  EXPECT_EQ(box.status(2, 127, target_with(target(1, 2, 1), Bytes(33))), 2U);
  EXPECT_EQ(box.status(2, 127, target_with(target(1, 2, 3), strip)), 4U);
}

TEST(FastLeave, IsKept) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 154, target_with(target(1, 2, 1), word(1))), 0U);
  std::string config = box.list_target(48, target(1, 2));
  EXPECT_NE(config.find("IGMP fast leave\n1/1/2:1  1\n"), std::string::npos) << config;
  EXPECT_EQ(box.status(2, 154, target(1, 2, 1)), 2U);
}

TEST(Groups, AreJoinedOneAfterTheOther) {
  SmallPon box;
  EXPECT_EQ(box.list_target(148, target(1, 2)),
            "Multicast groups of ONU 1/1/2\n"
            "=============================\n"
            "\n"
            "Groups\n"
            "Port  Group  VLAN  Joined at\n"
            "----  -----  ----  ---------\n");
  box.advance(1h);
  EXPECT_EQ(box.list_target(148, target(1, 2)),
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
  EXPECT_EQ(change(box, kAdd, hex("6400 c800")), 0U);
  box.advance(1h);
  EXPECT_EQ(box.status(2, 121, target_with(target(1, 2, 2), word(1))), 0U);
  std::string groups = box.list_target(148, target(1, 2));
  EXPECT_NE(groups.find("239.1.1.1  100   "), std::string::npos) << groups;
  EXPECT_NE(groups.find("239.1.1.2  200   "), std::string::npos) << groups;
  EXPECT_EQ(groups_of(groups, "1/1/2:1"), 2U);
  EXPECT_EQ(groups_of(groups, "1/1/2:2"), 1U);
}

TEST(Groups, OnlyTheOnuCanTell) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 107, target(1, 2)), 0U);
  EXPECT_EQ(box.status(2, 148, target(1, 2)), 11U);
  box.advance(8s);
  EXPECT_EQ(groups_of(box.list_target(148, target(1, 2)), "1/1/2:"), 2U);
  EXPECT_EQ(box.status(2, 148, target(1, 5)), 4U);
}

TEST(PortMulticast, IsConfiguration) {
  SmallPon box;
  change(box, kAdd, hex("6400 c800"));
  box.status(2, 121, target_with(target(1, 2, 1), word(9)));
  box.status(2, 127, target_with(target(1, 2, 1), Bytes(34, 7)));
  box.status(2, 154, target_with(target(1, 2, 1), word(1)));
  std::string config = box.list_target(48, target(1, 2));
  box.status(2, 8);
  box.status(2, 9);
  EXPECT_EQ(listed(box), "0 VLANs\n");
  box.restart();
  EXPECT_EQ(box.list_target(48, target(1, 2)), config);
  EXPECT_EQ(listed(box), "2 VLANs\n100\n200\n");
}

TEST(PortMulticast, DamagedVlansInAStateFileAreReported) {
  SmallPon box;
  change(box, kAdd, hex("6400"));
  box.status(2, 8);
  box.end();
  const std::string path = box.folder / "state/saved.json";
  std::string saved = read_file(path);
  for (const char *bad : {"0100000000", "0164100000", "4101000000"}) {
    std::string damaged = saved;
    size_t at = damaged.find("\"0164000000");
    ASSERT_NE(at, std::string::npos);
    damaged.replace(at + 1, 10, bad);
    write_file(path, damaged);
    try {
      box.restart();
      ADD_FAILURE() << "accepted " << bad;
    } catch (const std::runtime_error &error) {
      EXPECT_NE(std::string(error.what()).find("VLANs in 129 bytes in hex"), std::string::npos)
          << error.what();
    }
  }
}

}  // namespace
