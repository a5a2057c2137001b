// Which ONUs may join: modes, allow lists, block lists.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace {

using namespace std::chrono_literals;
using olt::tests::auth_entries;
using olt::tests::auth_entry;
using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::interface_record;
using olt::tests::listed_interface;
using olt::tests::record;
using olt::tests::slice;
using olt::tests::SmallPon;
using olt::tests::target;
using olt::tests::text;
using olt::tests::word;

constexpr uint32_t kUnblock = 41;
constexpr uint32_t kAllowBoth = 108;
constexpr uint32_t kDisallowBoth = 109;
constexpr uint32_t kAllowLoid = 110;
constexpr uint32_t kDisallowLoid = 111;
constexpr uint32_t kAllowMac = 112;
constexpr uint32_t kDisallowMac = 113;
constexpr uint32_t kSetMode = 114;

Bytes mode_record(uint32_t interface, uint32_t mode) {
  return record(80, {{0, word(1)}, {4, word(interface)}, {36, word(mode)}});
}

void set_mode(SmallPon &box, uint32_t interface, uint32_t mode) {
  EXPECT_EQ(box.status(2, kSetMode, mode_record(interface, mode)), 0U);
}

uint32_t change(SmallPon &box, uint32_t type, uint32_t interface,
                std::initializer_list<Bytes> entries) {
  return box.status(2, type, auth_entries(interface, entries));
}

/// "UUBU" for four ONUs of which the third is not up.
std::string standing(SmallPon &box, uint32_t interface) {
  std::string all;
  for (uint32_t onu = 1; onu <= 4; ++onu) {
    Bytes reply = box.reply(2, 65, target(interface, onu));
    all += slice(reply, 36, 40) == word(1) ? 'U' : 'B';
  }
  return all;
}

std::string block_list(SmallPon &box, uint32_t interface) {
  return box.list_interface(37, interface);
}

TEST(AuthMode, IsReadBackAndKeptForEachInterface) {
  SmallPon box;
  EXPECT_EQ(box.reply(2, 116, interface_record(1)), mode_record(1, 0));
  for (uint32_t mode = 0; mode <= 3; ++mode) {
    set_mode(box, 2, mode);
    EXPECT_EQ(box.reply(2, 116, interface_record(2)), mode_record(2, mode));
  }
  EXPECT_EQ(box.reply(2, 116, interface_record(1)), mode_record(1, 0));
}

TEST(AuthMode, BadOnesAreRefused) {
  SmallPon box;
  EXPECT_EQ(box.status(2, kSetMode, mode_record(1, 4)), 3U);
  EXPECT_EQ(box.status(2, kSetMode, mode_record(3, 1)), 4U);
  EXPECT_EQ(box.status(2, kSetMode, mode_record(0, 1)), 4U);
  EXPECT_EQ(box.status(2, 116, record(80, {{0, word(2)}, {4, word(1)}})), 4U);
  EXPECT_EQ(box.status(2, kSetMode, Bytes(79)), 2U);
  EXPECT_EQ(box.status(2, 116, Bytes(81)), 2U);
  EXPECT_EQ(box.status(2, 115, interface_record(1)), 4U);
  EXPECT_EQ(box.status(2, 37, interface_record(1)), 4U);
  EXPECT_EQ(standing(box, 1), "UUUU");
}

TEST(AuthMode, LetsInByMacAddress) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowMac, 1,
                   {auth_entry("02 20 01 00 02 01"), auth_entry("02 20 01 00 04 01", "unlike")}),
            0U);
  EXPECT_EQ(standing(box, 1), "UUUU");
  set_mode(box, 1, 1);
  EXPECT_EQ(standing(box, 1), "BUBU");
  EXPECT_EQ(standing(box, 2), "UUUU");
}

TEST(AuthMode, LetsInByLoidAndPasswordWhereTheEntryHasOne) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowLoid, 1,
                   {auth_entry("", "onu-1-1-1"), auth_entry("", "onu-1-1-2", "pw-1-1-2"),
                    auth_entry("", "onu-1-1-3", "pw-1-1-2"), auth_entry("", "onu-1-2-4")}),
            0U);
  set_mode(box, 1, 2);
  EXPECT_EQ(standing(box, 1), "UUBB");
}

TEST(AuthMode, LetsInByMacAddressAndLoidTogether) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowBoth, 1,
                   {auth_entry("02 20 01 00 01 01", "onu-1-1-1"),
                    auth_entry("02 20 01 00 02 01", "onu-1-1-2", "pw-1-1-2"),
                    auth_entry("02 20 01 00 03 01", "onu-1-1-4"),
                    auth_entry("02 20 01 00 04 01", "onu-1-1-4", "wrong")}),
            0U);
  set_mode(box, 1, 3);
  EXPECT_EQ(standing(box, 1), "UUBB");
}

TEST(AuthMode, ThatIsSetAgainHasAllTryAnew) {
  SmallPon box;
  set_mode(box, 1, 1);
  EXPECT_EQ(standing(box, 1), "BBBB");
  EXPECT_EQ(change(box, kAllowMac, 1, {auth_entry("02 20 01 00 03 01")}), 0U);
  EXPECT_EQ(standing(box, 1), "BBBB");
  set_mode(box, 1, 1);
  EXPECT_EQ(standing(box, 1), "BBUB");
  set_mode(box, 1, 0);
  EXPECT_EQ(standing(box, 1), "UUUU");
  EXPECT_NE(block_list(box, 1).find("\n0 ONUs\n"), std::string::npos);
}

TEST(AuthMode, LeavesThoseThatStayUpAlone) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowMac, 1, {auth_entry("02 20 01 00 02 01")}), 0U);
  box.advance(60s);
  set_mode(box, 1, 1);
  std::string onus = box.list_interface(35, 1);
  EXPECT_NE(onus.find("1/1/1  02:20:01:00:01:01  onu-1-1-1  blocked  2026-01-31T12:01:00Z"),
            std::string::npos)
      << onus;
  EXPECT_NE(onus.find("1/1/2  02:20:01:00:02:01  onu-1-1-2  up       2026-01-31T12:00:00Z"),
            std::string::npos)
      << onus;
}

TEST(AllowList, DeletedEntryThrowsItsOnuOut) {
  SmallPon box;
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 01 01"), auth_entry("02 20 01 00 02 01")});
  change(box, kAllowLoid, 1, {auth_entry("", "onu-1-1-1")});
  set_mode(box, 1, 1);
  EXPECT_EQ(change(box, kDisallowLoid, 1, {auth_entry("", "onu-1-1-1")}), 0U);
  EXPECT_EQ(standing(box, 1), "UUBB");
  EXPECT_EQ(change(box, kDisallowMac, 1, {auth_entry("02 20 01 00 01 01", "any", "thing")}), 0U);
  EXPECT_EQ(standing(box, 1), "BUBB");
}

TEST(AllowList, EntryOfAKnownKeyReplacesIt) {
  SmallPon box;
  change(box, kAllowLoid, 1, {auth_entry("", "onu-1-1-1"), auth_entry("", "onu-1-1-2")});
  set_mode(box, 1, 2);
  EXPECT_EQ(change(box, kAllowLoid, 1, {auth_entry("", "onu-1-1-1", "wrong")}), 0U);
  EXPECT_EQ(standing(box, 1), "BUBB");
  EXPECT_EQ(change(box, kDisallowLoid, 1, {auth_entry("", "onu-1-1-1")}), 0U);
  EXPECT_EQ(change(box, kDisallowLoid, 1, {auth_entry("", "onu-1-1-1")}), 4U);
}

TEST(AllowList, RequestIsCheckedWholeBeforeAnythingChanges) {
  SmallPon box;
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 01 01")});
  set_mode(box, 1, 1);
  EXPECT_EQ(change(box, kDisallowMac, 1,
                   {auth_entry("02 20 01 00 01 01"), auth_entry("02 20 01 00 02 01")}),
            4U);
  EXPECT_EQ(standing(box, 1), "UBBB");
  EXPECT_EQ(change(box, kAllowMac, 1, {auth_entry("02 20 01 00 02 01"), auth_entry("")}), 3U);
  EXPECT_EQ(change(box, kDisallowMac, 1, {auth_entry("02 20 01 00 02 01")}), 4U);
  EXPECT_EQ(change(box, kDisallowMac, 1,
                   {auth_entry("02 20 01 00 01 01"), auth_entry("02 20 01 00 01 01")}),
            0U);
  EXPECT_EQ(standing(box, 1), "BBBB");
}

TEST(AllowList, WhatItGoesByMustBeThere) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowMac, 1, {auth_entry("", "onu-1-1-1")}), 3U);
  EXPECT_EQ(change(box, kAllowMac, 1, {auth_entry("03 20 01 00 01 01")}), 3U);
  EXPECT_EQ(change(box, kAllowLoid, 1, {auth_entry("02 20 01 00 01 01")}), 3U);
  EXPECT_EQ(change(box, kAllowBoth, 1, {auth_entry("02 20 01 00 01 01")}), 3U);
  EXPECT_EQ(change(box, kAllowBoth, 1, {auth_entry("", "onu-1-1-1")}), 3U);
  EXPECT_EQ(change(box, kDisallowBoth, 1, {auth_entry("", "onu-1-1-1")}), 3U);
}

TEST(AllowList, TextsFillTheirFieldsOrEndWithAZero) {
  SmallPon box;
  std::string longest(24, 'l');
  Bytes junk_behind = record(44, {{6, hex("ee ee")},
                                  {8, text("onu-1-1-1")},
                                  {18, text("junk")},
                                  {32, text("pw-1-1-1")},
                                  {41, text("jnk")}});
  EXPECT_EQ(change(box, kAllowLoid, 1, {auth_entry("", longest, "123456789012"), junk_behind}), 0U);
  set_mode(box, 1, 2);
  EXPECT_EQ(standing(box, 1), "UBBB");
  EXPECT_EQ(change(box, kDisallowLoid, 1, {auth_entry("", longest.substr(1))}), 4U);
  EXPECT_EQ(change(box, kDisallowLoid, 1, {auth_entry("", longest)}), 0U);
}

TEST(AllowList, LengthsAndInterfacesAreChecked) {
  SmallPon box;
  for (uint32_t type :
       {kUnblock, kAllowBoth, kDisallowBoth, kAllowLoid, kDisallowLoid, kAllowMac, kDisallowMac}) {
    EXPECT_EQ(box.status(2, type, Bytes(79)), 2U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(80 + 43)), 2U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(80 + 44 * 16'385)), 2U) << type;
    EXPECT_EQ(change(box, type, 3, {}), 4U) << type;
    EXPECT_EQ(change(box, type, 1, {}), 0U) << type;
  }
}

TEST(AllowList, HoldsAsManyAsItMay) {
  SmallPon box;
  Bytes request = interface_record(1);
  for (uint32_t i = 0; i < 16'384; ++i) {
    Bytes entry = record(44, {{0, hex("02 00")}, {2, word(i)}});
    request.insert(request.end(), entry.begin(), entry.end());
  }
  EXPECT_EQ(box.status(2, kAllowMac, request), 0U);
  EXPECT_EQ(box.status(2, kAllowMac, request), 0U);
  EXPECT_EQ(change(box, kAllowMac, 1, {auth_entry("02 20 01 00 01 01")}), 6U);
  EXPECT_EQ(change(box, kAllowMac, 2, {auth_entry("02 20 01 00 01 01")}), 0U);
  EXPECT_EQ(change(box, kAllowLoid, 1, {auth_entry("", "a")}), 0U);
  EXPECT_EQ(box.status(2, kDisallowMac, request), 0U);
  EXPECT_EQ(change(box, kAllowMac, 1, {auth_entry("02 20 01 00 01 01")}), 0U);
}

TEST(BlockList, OnusAreTriedAgainOnceTheyAreDeletedFromIt) {
  SmallPon box;
  set_mode(box, 1, 1);
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 02 01")});
  EXPECT_EQ(
      change(box, kUnblock, 1,
             {auth_entry("02 20 01 00 02 01", "any", "thing"), auth_entry("02 20 01 00 03 01")}),
      0U);
  EXPECT_EQ(standing(box, 1), "BUBB");
}

TEST(BlockList, HoldsOnlyOnusThatAreBlocked) {
  SmallPon box;
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 01 01"), auth_entry("02 20 01 00 02 01")});
  set_mode(box, 1, 1);
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 04 01")});
  EXPECT_EQ(
      change(box, kUnblock, 1, {auth_entry("02 20 01 00 04 01"), auth_entry("02 20 01 00 01 01")}),
      4U);
  EXPECT_EQ(change(box, kUnblock, 1, {auth_entry("02 20 02 00 04 01")}), 4U);
  EXPECT_EQ(change(box, kUnblock, 1, {auth_entry("02 20 01 00 05 01")}), 4U);
  EXPECT_EQ(change(box, kUnblock, 1, {auth_entry("02 20 01 00 04 02")}), 4U);
  EXPECT_EQ(standing(box, 1), "UUBB");
}

TEST(BlockList, IsListed) {
  SmallPon box;
  change(box, kAllowLoid, 2, {auth_entry("", "onu-1-2-1", "wrong")});
  box.advance(30s);
  set_mode(box, 2, 2);
  change(box, kAllowLoid, 2, {auth_entry("", "onu-1-2-3")});
  change(box, kAllowLoid, 2, {auth_entry("", "onu-1-2-4")});
  change(box, kUnblock, 2, {auth_entry("02 20 02 00 04 01")});
  EXPECT_EQ(block_list(box, 2),
            "Block list of PON interface 1/2\n"
            "===============================\n"
            "\n"
            "3 ONUs\n"
            "ONU    MAC address        LOID       Blocked since         If tried now\n"
            "-----  -----------------  ---------  --------------------  ------------------------\n"
            "1/2/1  02:20:02:00:01:01  onu-1-2-1  2026-01-31T12:00:30Z  refused, wrong password\n"
            "1/2/2  02:20:02:00:02:01  onu-1-2-2  2026-01-31T12:00:30Z  refused, not on the list\n"
            "1/2/3  02:20:02:00:03:01  onu-1-2-3  2026-01-31T12:00:30Z  let in\n");
}

TEST(AllowLists, AreListedWithTheMode) {
  SmallPon box;
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 02 01"), auth_entry("02 20 01 00 01 01")});
  change(box, kAllowLoid, 1, {auth_entry("", "b"), auth_entry("", "a", "secret")});
  set_mode(box, 1, 2);
  EXPECT_EQ(box.list_interface(115, 1),
            "Authentication on PON interface 1/1\n"
            "===================================\n"
            "\n"
            "Mode\n"
            "2  by LOID\n"
            "\n"
            "Allowed by MAC address on 1/1: 2\n"
            "MAC address\n"
            "-----------------\n"
            "02:20:01:00:01:01\n"
            "02:20:01:00:02:01\n"
            "\n"
            "Allowed by LOID on 1/1: 2\n"
            "LOID  Password\n"
            "----  --------\n"
            "a     **\n"
            "b     any\n"
            "\n"
            "Allowed by MAC address and LOID on 1/1: 0\n"
            "MAC address  LOID  Password\n"
            "-----------  ----  --------\n");
}

TEST(Authentication, IsConfigurationAndBlockListsAreNot) {
  SmallPon box;
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 01 01")});
  change(box, kAllowLoid, 1, {auth_entry("", "onu-1-1-1", "pw-1-1-1")});
  change(box, kAllowBoth, 2, {auth_entry("02 20 02 00 02 01", "onu-1-2-2")});
  set_mode(box, 1, 1);
  set_mode(box, 2, 3);
  std::string lists = box.list_interface(115, 1) + box.list_interface(115, 2);
  box.status(2, 8);
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 04 01")});
  change(box, kUnblock, 1, {auth_entry("02 20 01 00 04 01")});
  EXPECT_EQ(standing(box, 1), "UBBU");
  box.status(2, 7);
  EXPECT_EQ(standing(box, 1), "UBBB");
  EXPECT_EQ(standing(box, 2), "BUBB");
  EXPECT_EQ(box.list_interface(115, 1) + box.list_interface(115, 2), lists);
  box.restart();
  EXPECT_EQ(standing(box, 1), "UBBB");
  EXPECT_EQ(box.list_interface(115, 1) + box.list_interface(115, 2), lists);
  box.status(2, 9);
  EXPECT_EQ(standing(box, 1), "UUUU");
  EXPECT_EQ(standing(box, 2), "UUUU");
  EXPECT_NE(box.list_interface(115, 1).find("Allowed by MAC address on 1/1: 0\n"),
            std::string::npos);
}

TEST(Authentication, RebootHasAllTryAnew) {
  SmallPon box;
  set_mode(box, 1, 1);
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 03 01")});
  box.status(2, 8);
  EXPECT_EQ(standing(box, 1), "BBBB");
  box.advance(10s);
  box.status(2, 7);
  EXPECT_EQ(standing(box, 1), "BBUB");
  EXPECT_NE(box.list_interface(35, 1).find("up       2026-01-31T12:00:10Z"), std::string::npos);
  EXPECT_NE(block_list(box, 1).find("1/1/1  02:20:01:00:01:01  onu-1-1-1  2026-01-31T12:00:10Z"),
            std::string::npos);
}

TEST(Authentication, RunningStateGoesOn) {
  SmallPon box;
  box.options.keep_running_state = true;
  set_mode(box, 1, 1);
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 03 01")});
  box.advance(10s);
  EXPECT_EQ(box.status(2, 107, target(2, 3)), 0U);
  std::string onus = box.list_interface(35, 1) + box.list_interface(35, 2);
  box.keep();
  box.restart();
  EXPECT_EQ(box.list_interface(35, 1) + box.list_interface(35, 2), onus);
  EXPECT_EQ(standing(box, 1), "BBBB");
  EXPECT_EQ(standing(box, 2), "UUBU");
  box.advance(3s);
  EXPECT_EQ(standing(box, 2), "UUUU");
}

TEST(Authentication, OverviewsShowIt) {
  SmallPon box;
  change(box, kAllowMac, 1, {auth_entry("02 20 01 00 03 01")});
  set_mode(box, 1, 1);
  box.status(2, 107, target(2, 3));
  std::string info = box.listing(box.reply(2, 53), 48);
  EXPECT_NE(info.find("ONUs\n"
                      "PON interface  Authentication  Up  Away  Blocked\n"
                      "-------------  --------------  --  ----  -------\n"
                      "1/1            by MAC address  1   0     3\n"
                      "1/2            any ONU         3   1     0\n"),
            std::string::npos)
      << info;
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("1/1            by MAC address  1              0      0\n"
                        "1/2            any ONU         0              0      0\n"
                        "\n"
                        "Allowed by MAC address on 1/1: 1\n"
                        "MAC address\n"
                        "-----------------\n"
                        "02:20:01:00:03:01\n"),
            std::string::npos)
      << config;
}

}  // namespace
