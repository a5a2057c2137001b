// IPTV profiles with their channels, the profiles of ONUs, and the channels of single users.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

Bytes name(std::string_view profile) {
  return record(kIptvProfileSize, {{0, text(profile)}});
}

/// The bytes that the box must ignore are not zero.
Bytes channel(std::string_view profile, uint32_t number,
              const Bytes &settings = Bytes(kIptvSettingsSize)) {
  Bytes bytes(kIptvChannelSize, 0xEE);
  put(bytes, kChannelNumberAt, word(number));
  put(bytes, kChannelSettingsAt, settings);
  return target_with(bytes, name(profile));
}

Bytes user_channel(std::string_view user, uint32_t a, std::string_view halves, uint32_t d) {
  return record(kUserChannelSize,
                {{0, hex(user)}, {6, hex("eeee")}, {8, word(a)}, {12, hex(halves)}, {16, word(d)}});
}

TEST(IptvProfiles, AreCreatedListedAndCleared) {
  SmallPon box;
  EXPECT_EQ(box.status(kListIptvProfile, name("basic")), kNotFound);
  EXPECT_EQ(box.status(kCreateIptvProfile, name("basic")), kOk);
  EXPECT_EQ(box.status(kCreateIptvProfile, name("basic")), kExists);
  EXPECT_EQ(box.list_target(kListIptvProfile, name("basic")),
            "IPTV profile basic\n"
            "==================\n"
            "\n"
            "0 channels\n"
            "Channel  Settings\n"
            "-------  --------\n"
            "\n"
            "0 ONUs\n");
  EXPECT_EQ(box.status(kClearIptvProfile, name("basic")), kOk);
  EXPECT_EQ(box.status(kClearIptvProfile, name("basic")), kNotFound);
  EXPECT_EQ(box.status(kListIptvProfile, name("basic")), kNotFound);
}

TEST(IptvProfiles, ANameMayFillItsField) {
  SmallPon box;
  std::string longest(kIptvProfileSize, 'p');
  EXPECT_EQ(box.status(kCreateIptvProfile, text(longest)), kOk);
  EXPECT_EQ(box.status(kListIptvProfile, name(longest.substr(1))), kNotFound);
  EXPECT_TRUE(
      holds(box.list_target(kListIptvProfile, text(longest)), "IPTV profile " + longest + "\n"));
  Bytes garbage_after_zero(kIptvProfileSize, 0xEE);
  garbage_after_zero[0] = 'x';
  garbage_after_zero[1] = 0;
  EXPECT_EQ(box.status(kCreateIptvProfile, garbage_after_zero), kOk);
  EXPECT_EQ(box.status(kListIptvProfile, name("x")), kOk);
}

TEST(IptvProfiles, NamelessOnesAndBadLengthsAreRefused) {
  SmallPon box;
  EXPECT_EQ(box.status(kCreateIptvProfile, Bytes(kIptvProfileSize)), kBadValue);
  EXPECT_EQ(box.status(kClearIptvProfile, Bytes(kIptvProfileSize)), kBadValue);
  EXPECT_EQ(box.status(kListIptvProfile, Bytes(kIptvProfileSize)), kBadValue);
  EXPECT_EQ(box.status(kAddIptvChannel, channel("", 1)), kBadValue);
  EXPECT_EQ(box.status(kCreateIptvProfile, Bytes(kIptvProfileSize - 1, 'p')), kBadLength);
  EXPECT_EQ(box.status(kAddIptvChannel, Bytes(kIptvChannelSize + kIptvProfileSize - 1)),
            kBadLength);
  EXPECT_EQ(box.status(kAddUserChannel, Bytes(kUserChannelSize - 1)), kBadLength);
}

TEST(IptvProfiles, ThereIsRoomFor256) {
  SmallPon box;
  for (int i = 0; i < 256; ++i)
    ASSERT_EQ(box.status(kCreateIptvProfile, name(std::to_string(i))), kOk);
  EXPECT_EQ(box.status(kCreateIptvProfile, name("one more")), kFull);
  EXPECT_EQ(box.status(kClearIptvProfile, name("7")), kOk);
  EXPECT_EQ(box.status(kCreateIptvProfile, name("one more")), kOk);
}

TEST(IptvChannels, AreAddedAndDeletedByTheirNumber) {
  SmallPon box;
  EXPECT_EQ(box.status(kAddIptvChannel, channel("basic", 7)), kNotFound);
  box.status(kCreateIptvProfile, name("basic"));
  EXPECT_EQ(
      box.status(kAddIptvChannel, channel("basic", 700, hex("0102030405060708090a0b0c0d0e0f10"))),
      kOk);
  EXPECT_EQ(box.status(kAddIptvChannel, channel("basic", 7)), kOk);
  EXPECT_EQ(box.status(kAddIptvChannel, channel("basic", 7, Bytes(kIptvSettingsSize, 1))), kExists);
  EXPECT_TRUE(holds(box.list_target(kListIptvProfile, name("basic")),
                    "\n2 channels\n"
                    "Channel  Settings\n"
                    "-------  --------------------------------\n"
                    "7        00000000000000000000000000000000\n"
                    "700      0102030405060708090a0b0c0d0e0f10\n"));
  EXPECT_EQ(box.status(kDeleteIptvChannel, channel("other", 7)), kNotFound);
  EXPECT_EQ(box.status(kDeleteIptvChannel, channel("basic", 7, Bytes(kIptvSettingsSize, 9))), kOk);
  EXPECT_EQ(box.status(kDeleteIptvChannel, channel("basic", 7)), kNotFound);
  EXPECT_TRUE(holds(box.list_target(kListIptvProfile, name("basic")), "\n1 channel\n"));
}

TEST(IptvChannels, ThereIsRoomFor1024InAProfile) {
  SmallPon box;
  box.status(kCreateIptvProfile, name("basic"));
  box.status(kCreateIptvProfile, name("more"));
  for (uint32_t number = 1; number <= 1024; ++number) {
    ASSERT_EQ(box.status(kAddIptvChannel, channel("basic", number)), kOk);
  }
  EXPECT_EQ(box.status(kAddIptvChannel, channel("basic", 1025)), kFull);
  EXPECT_EQ(box.status(kAddIptvChannel, channel("more", 1025)), kOk);
}

TEST(IptvProfiles, AreAttachedToOnus) {
  SmallPon box;
  EXPECT_EQ(box.status(kSetIptvProfile, target_with(target(1, 2), name("basic"))), kNotFound);
  box.status(kCreateIptvProfile, name("basic"));
  box.status(kCreateIptvProfile, name("more"));
  EXPECT_EQ(box.status(kSetIptvProfile, target_with(target(1, 2), name("more"))), kOk);
  EXPECT_EQ(box.status(kSetIptvProfile, target_with(target(1, 2), name("basic"))), kOk);
  EXPECT_EQ(box.status(kSetIptvProfile, target_with(target(2, 1), name("basic"))), kOk);
  EXPECT_EQ(box.status(kSetIptvProfile, target_with(target(2, 5), name("basic"))), kNotFound);
  EXPECT_EQ(box.status(kSetIptvProfile, target_with(target(2, 1), Bytes(kIptvProfileSize))),
            kBadValue);
  EXPECT_TRUE(holds(box.list_target(kListIptvProfile, name("basic")), "\n2 ONUs\n1/1/2\n1/2/1\n"));
  EXPECT_TRUE(holds(box.list_target(kListIptvProfile, name("more")), "\n0 ONUs\n"));
  EXPECT_EQ(box.status(kUnsetIptvProfile, target(1, 2)), kOk);
  EXPECT_EQ(box.status(kUnsetIptvProfile, target(1, 2)), kNotFound);
  EXPECT_TRUE(holds(box.list_target(kListIptvProfile, name("basic")), "\n1 ONU\n1/2/1\n"));
}

TEST(IptvProfiles, ClearingOneDetachesItFromItsOnus) {
  SmallPon box;
  box.status(kCreateIptvProfile, name("basic"));
  box.status(kCreateIptvProfile, name("more"));
  box.status(kSetIptvProfile, target_with(target(1, 2), name("basic")));
  box.status(kSetIptvProfile, target_with(target(1, 3), name("more")));
  EXPECT_EQ(box.status(kClearIptvProfile, name("basic")), kOk);
  EXPECT_EQ(box.status(kUnsetIptvProfile, target(1, 2)), kNotFound);
  EXPECT_EQ(box.status(kUnsetIptvProfile, target(1, 3)), kOk);
}

TEST(UserChannels, AreDistinguishedByAllTheirValues) {
  SmallPon box;
  Bytes one = user_channel("021001000001", 5, "06000700", 9);
  EXPECT_EQ(box.status(kAddUserChannel, one), kOk);
  Bytes other_garbage = one;
  other_garbage[6] = other_garbage[7] = 0;
  EXPECT_EQ(box.status(kAddUserChannel, other_garbage), kExists);
  EXPECT_EQ(box.status(kAddUserChannel, user_channel("021001000001", 5, "06000800", 9)), kOk);
  EXPECT_EQ(box.status(kAddUserChannel, user_channel("021001000002", 5, "06000700", 9)), kOk);
  EXPECT_TRUE(holds(box.running_config(),
                    "\nIPTV channels of single users\n"
                    "User               a  b  c  d\n"
                    "-----------------  -  -  -  -\n"
                    "02:10:01:00:00:01  5  6  7  9\n"
                    "02:10:01:00:00:01  5  6  8  9\n"
                    "02:10:01:00:00:02  5  6  7  9\n"));
  EXPECT_EQ(box.status(kDeleteUserChannel, user_channel("021001000001", 4, "06000700", 9)),
            kNotFound);
  EXPECT_EQ(box.status(kDeleteUserChannel, other_garbage), kOk);
  EXPECT_EQ(box.status(kDeleteUserChannel, one), kNotFound);
  EXPECT_EQ(box.status(kAddUserChannel, user_channel("011001000001", 5, "06000700", 9)), kBadValue);
  EXPECT_EQ(box.status(kAddUserChannel, user_channel("000000000000", 5, "06000700", 9)), kBadValue);
}

TEST(Iptv, IsConfiguration) {
  SmallPon box;
  box.status(kCreateIptvProfile, name("basic"));
  box.status(kAddIptvChannel, channel("basic", 7, Bytes(kIptvSettingsSize, 0xAB)));
  box.status(kSetIptvProfile, target_with(target(1, 2), name("basic")));
  box.status(kAddUserChannel, user_channel("021001000001", 5, "06000700", 9));
  std::string listed = box.list_target(kListIptvProfile, name("basic"));
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config, "\nIPTV profiles\nbasic  1 channel\n       7          abababab"));
  EXPECT_TRUE(holds(config, "\nIPTV profiles of ONUs\n1/1/2  basic\n")) << config;
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  EXPECT_EQ(box.status(kListIptvProfile, name("basic")), kNotFound);
  EXPECT_EQ(box.status(kDeleteUserChannel, user_channel("021001000001", 5, "06000700", 9)),
            kNotFound);
  box.restart();
  EXPECT_EQ(box.list_target(kListIptvProfile, name("basic")), listed);
  EXPECT_EQ(box.running_config(), config);
  EXPECT_EQ(box.status(kDeleteUserChannel, user_channel("021001000001", 5, "06000700", 9)), kOk);
}

TEST(Iptv, AProfileOfAnOnuMustBeInTheFile) {
  SmallPon box;
  box.status(kCreateIptvProfile, name("basic"));
  box.status(kSetIptvProfile, target_with(target(1, 2), name("basic")));
  box.status(kSaveConfig);
  box.end();
  box.damage_state("saved", R"("name": "basic")", R"("name": "other")");
  try {
    box.restart();
    ADD_FAILURE() << "accepted";
  } catch (const std::runtime_error &error) {
    EXPECT_TRUE(holds(error.what(), "/configuration/ont-iptv/onus/iptv_profile: is "))
        << error.what();
    EXPECT_TRUE(holds(error.what(), "expected profiles that exist")) << error.what();
  }
}

}  // namespace

}  // namespace olt::test
