// Which ONUs may join: modes, allow lists, block lists.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

void set_mode(SmallPon &box, uint32_t interface, uint32_t mode) {
  EXPECT_EQ(box.status(kSetAuthMode, mode_record(interface, mode)), kOk);
}

uint32_t change(SmallPon &box, uint32_t type, uint32_t interface,
                std::initializer_list<Bytes> entries) {
  return box.status(type, auth_entries(interface, entries));
}

/// One letter for each ONU: U for up, B for blocked or away.
std::string states(SmallPon &box, uint32_t interface) {
  std::string all;
  for (uint32_t onu = 1; onu <= 4; ++onu) {
    Bytes reply = box.reply(kGetOnuMac, target(interface, onu));
    all += slice(reply, kUpAt, kUpAt + 4) == word(1) ? 'U' : 'B';
  }
  return all;
}

std::string block_list(SmallPon &box, uint32_t interface) {
  return box.list_interface(kListBlocked, interface);
}

TEST(AuthMode, IsReadBackAndKeptForEachInterface) {
  SmallPon box;
  EXPECT_EQ(box.reply(kGetAuthMode, interface_record(1)), mode_record(1, 0));
  for (uint32_t mode = 0; mode <= 3; ++mode) {
    set_mode(box, 2, mode);
    EXPECT_EQ(box.reply(kGetAuthMode, interface_record(2)), mode_record(2, mode));
  }
  EXPECT_EQ(box.reply(kGetAuthMode, interface_record(1)), mode_record(1, 0));
}

TEST(AuthMode, BadOnesAreRefused) {
  SmallPon box;
  EXPECT_EQ(box.status(kSetAuthMode, mode_record(1, 4)), kBadValue);
  EXPECT_EQ(box.status(kSetAuthMode, mode_record(3, 1)), kNotFound);
  EXPECT_EQ(box.status(kSetAuthMode, mode_record(0, 1)), kNotFound);
  EXPECT_EQ(box.status(kGetAuthMode, record(kInterfaceSize, {{0, word(2)}, {4, word(1)}})),
            kNotFound);
  EXPECT_EQ(box.status(kSetAuthMode, Bytes(kInterfaceSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kGetAuthMode, Bytes(kInterfaceSize + 1)), kBadLength);
  EXPECT_EQ(box.status(kListAuth, interface_record(1)), kNotFound);
  EXPECT_EQ(box.status(kListBlocked, interface_record(1)), kNotFound);
  EXPECT_EQ(states(box, 1), "UUUU");
}

TEST(AuthMode, LetsInByMacAddress) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowMacs, 1,
                   {auth_entry("02 20 01 00 02 01"), auth_entry("02 20 01 00 04 01", "unlike")}),
            kOk);
  EXPECT_EQ(states(box, 1), "UUUU");
  set_mode(box, 1, 1);
  EXPECT_EQ(states(box, 1), "BUBU");
  EXPECT_EQ(states(box, 2), "UUUU");
}

TEST(AuthMode, LetsInByLoidAndPasswordWhereTheEntryHasOne) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowLoids, 1,
                   {auth_entry("", "onu-1-1-1"), auth_entry("", "onu-1-1-2", "pw-1-1-2"),
                    auth_entry("", "onu-1-1-3", "pw-1-1-2"), auth_entry("", "onu-1-2-4")}),
            kOk);
  set_mode(box, 1, 2);
  EXPECT_EQ(states(box, 1), "UUBB");
}

TEST(AuthMode, LetsInByMacAddressAndLoidTogether) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowMacLoids, 1,
                   {auth_entry("02 20 01 00 01 01", "onu-1-1-1"),
                    auth_entry("02 20 01 00 02 01", "onu-1-1-2", "pw-1-1-2"),
                    auth_entry("02 20 01 00 03 01", "onu-1-1-4"),
                    auth_entry("02 20 01 00 04 01", "onu-1-1-4", "wrong")}),
            kOk);
  set_mode(box, 1, 3);
  EXPECT_EQ(states(box, 1), "UUBB");
}

TEST(AuthMode, SettingItAgainMakesAllOnusTryAgain) {
  SmallPon box;
  set_mode(box, 1, 1);
  EXPECT_EQ(states(box, 1), "BBBB");
  EXPECT_EQ(change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 03 01")}), kOk);
  EXPECT_EQ(states(box, 1), "BBBB");
  set_mode(box, 1, 1);
  EXPECT_EQ(states(box, 1), "BBUB");
  set_mode(box, 1, 0);
  EXPECT_EQ(states(box, 1), "UUUU");
  EXPECT_TRUE(holds(block_list(box, 1), "\n0 ONUs\n"));
}

TEST(AuthMode, SettingItLeavesAllowedOnusUp) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 02 01")}), kOk);
  box.advance(60s);
  set_mode(box, 1, 1);
  std::string onus = box.list_interface(kListOnus, 1);
  EXPECT_TRUE(holds(onus, "1/1/1  02:20:01:00:01:01  onu-1-1-1  blocked  2026-01-31T12:01:00Z"))
      << onus;
  EXPECT_TRUE(holds(onus, "1/1/2  02:20:01:00:02:01  onu-1-1-2  up       2026-01-31T12:00:00Z"))
      << onus;
}

TEST(AllowList, DeletingAnEntryBlocksItsOnu) {
  SmallPon box;
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 01 01"), auth_entry("02 20 01 00 02 01")});
  change(box, kAllowLoids, 1, {auth_entry("", "onu-1-1-1")});
  set_mode(box, 1, 1);
  EXPECT_EQ(change(box, kDisallowLoids, 1, {auth_entry("", "onu-1-1-1")}), kOk);
  EXPECT_EQ(states(box, 1), "UUBB");
  EXPECT_EQ(change(box, kDisallowMacs, 1, {auth_entry("02 20 01 00 01 01", "any", "thing")}), kOk);
  EXPECT_EQ(states(box, 1), "BUBB");
}

TEST(AllowList, AnEntryWithAKnownKeyReplacesTheOldOne) {
  SmallPon box;
  change(box, kAllowLoids, 1, {auth_entry("", "onu-1-1-1"), auth_entry("", "onu-1-1-2")});
  set_mode(box, 1, 2);
  EXPECT_EQ(change(box, kAllowLoids, 1, {auth_entry("", "onu-1-1-1", "wrong")}), kOk);
  EXPECT_EQ(states(box, 1), "BUBB");
  EXPECT_EQ(change(box, kDisallowLoids, 1, {auth_entry("", "onu-1-1-1")}), kOk);
  EXPECT_EQ(change(box, kDisallowLoids, 1, {auth_entry("", "onu-1-1-1")}), kNotFound);
}

TEST(AllowList, RequestIsCheckedWholeBeforeAnythingChanges) {
  SmallPon box;
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 01 01")});
  set_mode(box, 1, 1);
  EXPECT_EQ(change(box, kDisallowMacs, 1,
                   {auth_entry("02 20 01 00 01 01"), auth_entry("02 20 01 00 02 01")}),
            kNotFound);
  EXPECT_EQ(states(box, 1), "UBBB");
  EXPECT_EQ(change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 02 01"), auth_entry("")}),
            kBadValue);
  EXPECT_EQ(change(box, kDisallowMacs, 1, {auth_entry("02 20 01 00 02 01")}), kNotFound);
  EXPECT_EQ(change(box, kDisallowMacs, 1,
                   {auth_entry("02 20 01 00 01 01"), auth_entry("02 20 01 00 01 01")}),
            kOk);
  EXPECT_EQ(states(box, 1), "BBBB");
}

TEST(AllowList, EntriesWithoutTheirKeyAreRefused) {
  SmallPon box;
  EXPECT_EQ(change(box, kAllowMacs, 1, {auth_entry("", "onu-1-1-1")}), kBadValue);
  EXPECT_EQ(change(box, kAllowMacs, 1, {auth_entry("03 20 01 00 01 01")}), kBadValue);
  EXPECT_EQ(change(box, kAllowLoids, 1, {auth_entry("02 20 01 00 01 01")}), kBadValue);
  EXPECT_EQ(change(box, kAllowMacLoids, 1, {auth_entry("02 20 01 00 01 01")}), kBadValue);
  EXPECT_EQ(change(box, kAllowMacLoids, 1, {auth_entry("", "onu-1-1-1")}), kBadValue);
  EXPECT_EQ(change(box, kDisallowMacLoids, 1, {auth_entry("", "onu-1-1-1")}), kBadValue);
}

TEST(AllowList, TextsMayFillTheirFields) {
  SmallPon box;
  std::string longest(24, 'l');
  Bytes junk_after_texts = record(kAuthEntrySize, {{6, hex("ee ee")},
                                                   {kLoidAt, text("onu-1-1-1")},
                                                   {18, text("junk")},
                                                   {kLoidPasswordAt, text("pw-1-1-1")},
                                                   {41, text("jnk")}});
  EXPECT_EQ(
      change(box, kAllowLoids, 1, {auth_entry("", longest, "123456789012"), junk_after_texts}),
      kOk);
  set_mode(box, 1, 2);
  EXPECT_EQ(states(box, 1), "UBBB");
  EXPECT_EQ(change(box, kDisallowLoids, 1, {auth_entry("", longest.substr(1))}), kNotFound);
  EXPECT_EQ(change(box, kDisallowLoids, 1, {auth_entry("", longest)}), kOk);
}

TEST(AllowList, LengthsAndInterfacesAreChecked) {
  SmallPon box;
  for (uint32_t type : {kUnblock, kAllowMacLoids, kDisallowMacLoids, kAllowLoids, kDisallowLoids,
                        kAllowMacs, kDisallowMacs}) {
    EXPECT_EQ(box.status(type, Bytes(kInterfaceSize - 1)), kBadLength) << type;
    EXPECT_EQ(box.status(type, Bytes(kInterfaceSize + kAuthEntrySize - 1)), kBadLength) << type;
    EXPECT_EQ(box.status(type, Bytes(kInterfaceSize + kAuthEntrySize * (kMaxAuthEntries + 1))),
              kBadLength)
        << type;
    EXPECT_EQ(change(box, type, 3, {}), kNotFound) << type;
    EXPECT_EQ(change(box, type, 1, {}), kOk) << type;
  }
}

TEST(AllowList, HoldsUpTo16384Entries) {
  SmallPon box;
  Bytes request = interface_record(1);
  for (uint32_t i = 0; i < kMaxAuthEntries; ++i) {
    Bytes entry = record(kAuthEntrySize, {{0, hex("02 00")}, {2, word(i)}});
    request.insert(request.end(), entry.begin(), entry.end());
  }
  EXPECT_EQ(box.status(kAllowMacs, request), kOk);
  EXPECT_EQ(box.status(kAllowMacs, request), kOk);
  EXPECT_EQ(change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 01 01")}), kFull);
  EXPECT_EQ(change(box, kAllowMacs, 2, {auth_entry("02 20 01 00 01 01")}), kOk);
  EXPECT_EQ(change(box, kAllowLoids, 1, {auth_entry("", "a")}), kOk);
  EXPECT_EQ(box.status(kDisallowMacs, request), kOk);
  EXPECT_EQ(change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 01 01")}), kOk);
}

TEST(BlockList, DeletedOnusTryAgain) {
  SmallPon box;
  set_mode(box, 1, 1);
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 02 01")});
  EXPECT_EQ(
      change(box, kUnblock, 1,
             {auth_entry("02 20 01 00 02 01", "any", "thing"), auth_entry("02 20 01 00 03 01")}),
      kOk);
  EXPECT_EQ(states(box, 1), "BUBB");
}

TEST(BlockList, HoldsOnlyOnusThatAreBlocked) {
  SmallPon box;
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 01 01"), auth_entry("02 20 01 00 02 01")});
  set_mode(box, 1, 1);
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 04 01")});
  EXPECT_EQ(
      change(box, kUnblock, 1, {auth_entry("02 20 01 00 04 01"), auth_entry("02 20 01 00 01 01")}),
      kNotFound);
  EXPECT_EQ(change(box, kUnblock, 1, {auth_entry("02 20 02 00 04 01")}), kNotFound);
  EXPECT_EQ(change(box, kUnblock, 1, {auth_entry("02 20 01 00 05 01")}), kNotFound);
  EXPECT_EQ(change(box, kUnblock, 1, {auth_entry("02 20 01 00 04 02")}), kNotFound);
  EXPECT_EQ(states(box, 1), "UUBB");
}

TEST(BlockList, IsListed) {
  SmallPon box;
  change(box, kAllowLoids, 2, {auth_entry("", "onu-1-2-1", "wrong")});
  box.advance(30s);
  set_mode(box, 2, 2);
  change(box, kAllowLoids, 2, {auth_entry("", "onu-1-2-3")});
  change(box, kAllowLoids, 2, {auth_entry("", "onu-1-2-4")});
  change(box, kUnblock, 2, {auth_entry("02 20 02 00 04 01")});
  EXPECT_EQ(block_list(box, 2),
            "Block list of PON interface 1/2\n"
            "===============================\n"
            "\n"
            "3 ONUs\n"
            "ONU    MAC address        LOID       Blocked since         If it tried now\n"
            "-----  -----------------  ---------  --------------------  -----------------------\n"
            "1/2/1  02:20:02:00:01:01  onu-1-2-1  2026-01-31T12:00:30Z  refused: wrong password\n"
            "1/2/2  02:20:02:00:02:01  onu-1-2-2  2026-01-31T12:00:30Z  refused: not listed\n"
            "1/2/3  02:20:02:00:03:01  onu-1-2-3  2026-01-31T12:00:30Z  accepted\n");
}

TEST(AllowLists, AreListedWithTheMode) {
  SmallPon box;
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 02 01"), auth_entry("02 20 01 00 01 01")});
  change(box, kAllowLoids, 1, {auth_entry("", "b"), auth_entry("", "a", "secret")});
  set_mode(box, 1, 2);
  EXPECT_EQ(box.list_interface(kListAuth, 1),
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
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 01 01")});
  change(box, kAllowLoids, 1, {auth_entry("", "onu-1-1-1", "pw-1-1-1")});
  change(box, kAllowMacLoids, 2, {auth_entry("02 20 02 00 02 01", "onu-1-2-2")});
  set_mode(box, 1, 1);
  set_mode(box, 2, 3);
  std::string lists = box.list_interface(kListAuth, 1) + box.list_interface(kListAuth, 2);
  box.status(kSaveConfig);
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 04 01")});
  change(box, kUnblock, 1, {auth_entry("02 20 01 00 04 01")});
  EXPECT_EQ(states(box, 1), "UBBU");
  box.status(kReboot);
  EXPECT_EQ(states(box, 1), "UBBB");
  EXPECT_EQ(states(box, 2), "BUBB");
  EXPECT_EQ(box.list_interface(kListAuth, 1) + box.list_interface(kListAuth, 2), lists);
  box.restart();
  EXPECT_EQ(states(box, 1), "UBBB");
  EXPECT_EQ(box.list_interface(kListAuth, 1) + box.list_interface(kListAuth, 2), lists);
  box.status(kRestoreDefaults);
  EXPECT_EQ(states(box, 1), "UUUU");
  EXPECT_EQ(states(box, 2), "UUUU");
  EXPECT_TRUE(holds(box.list_interface(kListAuth, 1), "Allowed by MAC address on 1/1: 0\n"));
}

TEST(Authentication, RebootMakesAllOnusTryAgain) {
  SmallPon box;
  set_mode(box, 1, 1);
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 03 01")});
  box.status(kSaveConfig);
  EXPECT_EQ(states(box, 1), "BBBB");
  box.advance(10s);
  box.status(kReboot);
  EXPECT_EQ(states(box, 1), "BBUB");
  EXPECT_TRUE(holds(box.list_interface(kListOnus, 1), "up       2026-01-31T12:00:10Z"));
  EXPECT_TRUE(
      holds(block_list(box, 1), "1/1/1  02:20:01:00:01:01  onu-1-1-1  2026-01-31T12:00:10Z"));
}

TEST(Authentication, RunningStateContinuesInTheNextBox) {
  SmallPon box;
  box.options.keep_running_state = true;
  set_mode(box, 1, 1);
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 03 01")});
  box.advance(10s);
  EXPECT_EQ(box.status(kRebootOnu, target(2, 3)), kOk);
  std::string onus = box.list_interface(kListOnus, 1) + box.list_interface(kListOnus, 2);
  box.keep();
  box.restart();
  EXPECT_EQ(box.list_interface(kListOnus, 1) + box.list_interface(kListOnus, 2), onus);
  EXPECT_EQ(states(box, 1), "BBBB");
  EXPECT_EQ(states(box, 2), "UUBU");
  box.advance(3s);
  EXPECT_EQ(states(box, 2), "UUUU");
}

TEST(Authentication, AppearsInTheOverviews) {
  SmallPon box;
  change(box, kAllowMacs, 1, {auth_entry("02 20 01 00 03 01")});
  set_mode(box, 1, 1);
  box.status(kRebootOnu, target(2, 3));
  std::string info = box.basic_info();
  EXPECT_TRUE(holds(info,
                    "ONUs\n"
                    "PON interface  Authentication  Up  Away  Blocked\n"
                    "-------------  --------------  --  ----  -------\n"
                    "1/1            by MAC address  1   0     3\n"
                    "1/2            any ONU         3   1     0\n"))
      << info;
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config,
                    "1/1            by MAC address  1              0      0\n"
                    "1/2            any ONU         0              0      0\n"
                    "\n"
                    "Allowed by MAC address on 1/1: 1\n"
                    "MAC address\n"
                    "-----------------\n"
                    "02:20:01:00:03:01\n"))
      << config;
}

}  // namespace

}  // namespace olt::test
