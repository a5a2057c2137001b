// IPTV profiles with their channels, the profiles of ONUs, and the channels of single users.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace {

using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::SmallPon;
using olt::tests::target;
using olt::tests::target_with;
using olt::tests::text;
using olt::tests::word;

Bytes name(std::string_view profile) {
  return record(32, {{0, text(profile)}});
}

/// What is not looked at is no zeros.
Bytes channel(std::string_view profile, uint32_t number, const Bytes &settings = Bytes(16)) {
  Bytes bytes(56, 0xEE);
  Bytes field = word(number);
  std::copy(field.begin(), field.end(), bytes.begin() + 36);
  std::copy(settings.begin(), settings.end(), bytes.begin() + 40);
  Bytes behind = name(profile);
  bytes.insert(bytes.end(), behind.begin(), behind.end());
  return bytes;
}

Bytes user_channel(std::string_view user, uint32_t a, std::string_view halves, uint32_t d) {
  return record(20,
                {{0, hex(user)}, {6, hex("eeee")}, {8, word(a)}, {12, hex(halves)}, {16, word(d)}});
}

bool holds(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

TEST(IptvProfiles, AreCreatedListedAndCleared) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 161, name("basic")), 4U);
  EXPECT_EQ(box.status(2, 157, name("basic")), 0U);
  EXPECT_EQ(box.status(2, 157, name("basic")), 5U);
  EXPECT_EQ(box.list_target(161, name("basic")),
            "IPTV profile basic\n"
            "==================\n"
            "\n"
            "0 channels\n"
            "Channel  Settings\n"
            "-------  --------\n"
            "\n"
            "0 ONUs\n");
  EXPECT_EQ(box.status(2, 158, name("basic")), 0U);
  EXPECT_EQ(box.status(2, 158, name("basic")), 4U);
  EXPECT_EQ(box.status(2, 161, name("basic")), 4U);
}

TEST(IptvProfiles, ANameMayFillItsField) {
  SmallPon box;
  std::string longest(32, 'p');
  EXPECT_EQ(box.status(2, 157, text(longest)), 0U);
  EXPECT_EQ(box.status(2, 161, name(longest.substr(1))), 4U);
  EXPECT_TRUE(holds(box.list_target(161, text(longest)), "IPTV profile " + longest + "\n"));
  Bytes garbage_behind(32, 0xEE);
  garbage_behind[0] = 'x';
  garbage_behind[1] = 0;
  EXPECT_EQ(box.status(2, 157, garbage_behind), 0U);
  EXPECT_EQ(box.status(2, 161, name("x")), 0U);
}

TEST(IptvProfiles, NamelessOnesAndBadLengthsAreRefused) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 157, Bytes(32)), 3U);
  EXPECT_EQ(box.status(2, 158, Bytes(32)), 3U);
  EXPECT_EQ(box.status(2, 161, Bytes(32)), 3U);
  EXPECT_EQ(box.status(2, 160, channel("", 1)), 3U);
  EXPECT_EQ(box.status(2, 157, Bytes(31, 'p')), 2U);
  EXPECT_EQ(box.status(2, 160, Bytes(87)), 2U);
  EXPECT_EQ(box.status(2, 162, Bytes(19)), 2U);
}

TEST(IptvProfiles, ThereIsRoomFor256) {
  SmallPon box;
  for (int i = 0; i < 256; ++i) ASSERT_EQ(box.status(2, 157, name(std::to_string(i))), 0U);
  EXPECT_EQ(box.status(2, 157, name("one more")), 6U);
  EXPECT_EQ(box.status(2, 158, name("7")), 0U);
  EXPECT_EQ(box.status(2, 157, name("one more")), 0U);
}

TEST(IptvChannels, AreAddedAndDeletedByTheirNumber) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 160, channel("basic", 7)), 4U);
  box.status(2, 157, name("basic"));
  EXPECT_EQ(box.status(2, 160, channel("basic", 700, hex("0102030405060708090a0b0c0d0e0f10"))), 0U);
  EXPECT_EQ(box.status(2, 160, channel("basic", 7)), 0U);
  EXPECT_EQ(box.status(2, 160, channel("basic", 7, Bytes(16, 1))), 5U);
  EXPECT_TRUE(holds(box.list_target(161, name("basic")),
                    "\n2 channels\n"
                    "Channel  Settings\n"
                    "-------  --------------------------------\n"
                    "7        00000000000000000000000000000000\n"
                    "700      0102030405060708090a0b0c0d0e0f10\n"));
  EXPECT_EQ(box.status(2, 159, channel("other", 7)), 4U);
  EXPECT_EQ(box.status(2, 159, channel("basic", 7, Bytes(16, 9))), 0U);
  EXPECT_EQ(box.status(2, 159, channel("basic", 7)), 4U);
  EXPECT_TRUE(holds(box.list_target(161, name("basic")), "\n1 channel\n"));
}

TEST(IptvChannels, ThereIsRoomFor1024InAProfile) {
  SmallPon box;
  box.status(2, 157, name("basic"));
  box.status(2, 157, name("more"));
  for (uint32_t number = 1; number <= 1024; ++number) {
    ASSERT_EQ(box.status(2, 160, channel("basic", number)), 0U);
  }
  EXPECT_EQ(box.status(2, 160, channel("basic", 1025)), 6U);
  EXPECT_EQ(box.status(2, 160, channel("more", 1025)), 0U);
}

TEST(IptvProfiles, AreAttachedToOnus) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 155, target_with(target(1, 2), name("basic"))), 4U);
  box.status(2, 157, name("basic"));
  box.status(2, 157, name("more"));
  EXPECT_EQ(box.status(2, 155, target_with(target(1, 2), name("more"))), 0U);
  EXPECT_EQ(box.status(2, 155, target_with(target(1, 2), name("basic"))), 0U);
  EXPECT_EQ(box.status(2, 155, target_with(target(2, 1), name("basic"))), 0U);
  EXPECT_EQ(box.status(2, 155, target_with(target(2, 5), name("basic"))), 4U);
  EXPECT_EQ(box.status(2, 155, target_with(target(2, 1), Bytes(32))), 3U);
  EXPECT_TRUE(holds(box.list_target(161, name("basic")), "\n2 ONUs\n1/1/2\n1/2/1\n"));
  EXPECT_TRUE(holds(box.list_target(161, name("more")), "\n0 ONUs\n"));
  EXPECT_EQ(box.status(2, 156, target(1, 2)), 0U);
  EXPECT_EQ(box.status(2, 156, target(1, 2)), 4U);
  EXPECT_TRUE(holds(box.list_target(161, name("basic")), "\n1 ONU\n1/2/1\n"));
}

TEST(IptvProfiles, ClearingOneDetachesItFromItsOnus) {
  SmallPon box;
  box.status(2, 157, name("basic"));
  box.status(2, 157, name("more"));
  box.status(2, 155, target_with(target(1, 2), name("basic")));
  box.status(2, 155, target_with(target(1, 3), name("more")));
  EXPECT_EQ(box.status(2, 158, name("basic")), 0U);
  EXPECT_EQ(box.status(2, 156, target(1, 2)), 4U);
  EXPECT_EQ(box.status(2, 156, target(1, 3)), 0U);
}

TEST(UserChannels, AreToldApartByAllTheirValues) {
  SmallPon box;
  Bytes one = user_channel("021001000001", 5, "06000700", 9);
  EXPECT_EQ(box.status(2, 162, one), 0U);
  Bytes other_garbage = one;
  other_garbage[6] = other_garbage[7] = 0;
  EXPECT_EQ(box.status(2, 162, other_garbage), 5U);
  EXPECT_EQ(box.status(2, 162, user_channel("021001000001", 5, "06000800", 9)), 0U);
  EXPECT_EQ(box.status(2, 162, user_channel("021001000002", 5, "06000700", 9)), 0U);
  EXPECT_TRUE(holds(box.listing(box.reply(2, 33), 48),
                    "\nIPTV channels of single users\n"
                    "User               a  b  c  d\n"
                    "-----------------  -  -  -  -\n"
                    "02:10:01:00:00:01  5  6  7  9\n"
                    "02:10:01:00:00:01  5  6  8  9\n"
                    "02:10:01:00:00:02  5  6  7  9\n"));
  EXPECT_EQ(box.status(2, 163, user_channel("021001000001", 4, "06000700", 9)), 4U);
  EXPECT_EQ(box.status(2, 163, other_garbage), 0U);
  EXPECT_EQ(box.status(2, 163, one), 4U);
  EXPECT_EQ(box.status(2, 162, user_channel("011001000001", 5, "06000700", 9)), 3U);
  EXPECT_EQ(box.status(2, 162, user_channel("000000000000", 5, "06000700", 9)), 3U);
}

TEST(Iptv, AllOfItIsConfiguration) {
  SmallPon box;
  box.status(2, 157, name("basic"));
  box.status(2, 160, channel("basic", 7, Bytes(16, 0xAB)));
  box.status(2, 155, target_with(target(1, 2), name("basic")));
  box.status(2, 162, user_channel("021001000001", 5, "06000700", 9));
  std::string listed = box.list_target(161, name("basic"));
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_TRUE(holds(config, "\nIPTV profiles\nbasic  1 channel\n       7          abababab"));
  EXPECT_TRUE(holds(config, "\nIPTV profiles of ONUs\n1/1/2  basic\n")) << config;
  box.status(2, 8);
  box.status(2, 9);
  EXPECT_EQ(box.status(2, 161, name("basic")), 4U);
  EXPECT_EQ(box.status(2, 163, user_channel("021001000001", 5, "06000700", 9)), 4U);
  box.restart();
  EXPECT_EQ(box.list_target(161, name("basic")), listed);
  EXPECT_EQ(box.listing(box.reply(2, 33), 48), config);
  EXPECT_EQ(box.status(2, 163, user_channel("021001000001", 5, "06000700", 9)), 0U);
}

TEST(Iptv, AProfileThatAnOnuHasMustBeInTheFile) {
  SmallPon box;
  box.status(2, 157, name("basic"));
  box.status(2, 155, target_with(target(1, 2), name("basic")));
  box.status(2, 8);
  box.end();
  const std::string path = box.folder / "state/saved.json";
  std::string saved = olt::tests::read_file(path);
  size_t profile = saved.find(R"("name": "basic")");
  ASSERT_NE(profile, std::string::npos) << saved;
  olt::tests::write_file(path, saved.replace(profile, 15, R"("name": "other")"));
  try {
    box.restart();
    ADD_FAILURE() << "accepted";
  } catch (const std::runtime_error &error) {
    EXPECT_TRUE(holds(error.what(), "/configuration/ont-iptv/onus: is ")) << error.what();
    EXPECT_TRUE(holds(error.what(), "expected profiles that exist")) << error.what();
  }
}

}  // namespace
