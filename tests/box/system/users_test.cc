// User accounts, byte for byte.

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace {

using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::TestBox;
using olt::tests::text;
using olt::tests::word;

Bytes user(uint32_t op, std::string_view name, std::string_view password = "", uint32_t level_a = 0,
           uint32_t level_b = 0) {
  return record(80, {{0, word(op)},
                     {8, text(name)},
                     {40, text(password)},
                     {72, word(level_a)},
                     {76, word(level_b)}});
}

Bytes named(std::string_view name) {
  return record(80, {{8, text(name)}});
}

Bytes at(uint32_t index) {
  return record(80, {{4, word(index)}});
}

TEST(Users, FactoryHasOneAdministrator) {
  TestBox box;
  Bytes admin = record(80, {{8, text("admin")},
                            {40, text("admin")},
                            {72, hex("01 00 00 00")},
                            {76, hex("01 00 00 00")}});
  EXPECT_EQ(box.reply(2, 63, at(0)), admin);
  EXPECT_EQ(box.reply(2, 62, named("")), admin);
  EXPECT_EQ(box.reply(2, 10, user(0, "admin", "admin")), admin);
  EXPECT_EQ(box.status(2, 63, at(1)), 4U);
  EXPECT_EQ(box.status(2, 62, named("admin")), 4U);
}

TEST(Users, AreWalkedInTheOrderInWhichTheyWereAdded) {
  TestBox box;
  EXPECT_EQ(box.status(2, 10, user(1, "zoe", "a", 7, 8)), 0U);
  EXPECT_EQ(box.status(2, 10, user(1, "bob", "b", 0xFFFFFFFF, 0x01020304)), 0U);
  EXPECT_EQ(box.status(2, 10, user(1, "amy", "c")), 0U);
  EXPECT_EQ(box.reply(2, 62, named("admin")), record(80, {{4, word(1)},
                                                          {8, text("zoe")},
                                                          {40, text("a")},
                                                          {72, hex("07 00 00 00")},
                                                          {76, hex("08 00 00 00")}}));
  EXPECT_EQ(box.reply(2, 62, named("zoe")), record(80, {{4, word(2)},
                                                        {8, text("bob")},
                                                        {40, text("b")},
                                                        {72, hex("ff ff ff ff")},
                                                        {76, hex("04 03 02 01")}}));
  EXPECT_EQ(box.status(2, 10, user(2, "bob")), 0U);
  Bytes amy = record(80, {{4, word(2)}, {8, text("amy")}, {40, text("c")}});
  EXPECT_EQ(box.reply(2, 62, named("zoe")), amy);
  EXPECT_EQ(box.reply(2, 63, at(2)), amy);
  EXPECT_EQ(box.status(2, 62, named("amy")), 4U);
  EXPECT_EQ(box.status(2, 62, named("bob")), 4U);
}

TEST(Users, AreCheckedByNameAndPassword) {
  TestBox box;
  box.status(2, 10, user(1, "operator", "secret", 3, 4));
  Bytes found = box.reply(2, 10, user(0, "operator", "secret"));
  EXPECT_EQ(olt::tests::slice(found, 72, 80), hex("03 00 00 00 04 00 00 00"));
  EXPECT_EQ(box.status(2, 10, user(0, "operator", "Secret")), 7U);
  EXPECT_EQ(box.status(2, 10, user(0, "operator", "")), 7U);
  EXPECT_EQ(box.status(2, 10, user(0, "stranger", "secret")), 4U);
}

TEST(Users, AreUniqueByName) {
  TestBox box;
  EXPECT_EQ(box.status(2, 10, user(1, "admin", "other")), 5U);
  EXPECT_EQ(box.status(2, 10, user(0, "admin", "admin")), 0U);
}

TEST(Users, ThatAreUnknownCannotBeDeletedOrModified) {
  TestBox box;
  EXPECT_EQ(box.status(2, 10, user(2, "stranger")), 4U);
  EXPECT_EQ(box.status(2, 10, user(3, "stranger")), 4U);
  EXPECT_EQ(box.status(2, 10, user(4, "admin")), 3U);
}

TEST(Users, AreModifiedInPlace) {
  TestBox box;
  box.status(2, 10, user(1, "operator", "secret", 3, 4));
  EXPECT_EQ(box.status(2, 10, user(3, "admin", "changed", 5, 6)), 0U);
  EXPECT_EQ(box.reply(2, 63, at(0)),
            record(80, {{8, text("admin")}, {40, text("changed")}, {72, word(5)}, {76, word(6)}}));
}

TEST(Users, HaveNamesOfOneTo31Bytes) {
  TestBox box;
  std::string longest(31, 'x');
  EXPECT_EQ(box.status(2, 10, user(1, longest, longest)), 0U);
  EXPECT_EQ(box.reply(2, 63, at(1)),
            record(80, {{4, word(1)}, {8, text(longest)}, {40, text(longest)}}));
  EXPECT_EQ(box.status(2, 10, user(1, std::string(32, 'y'), "p")), 3U);
  EXPECT_EQ(box.status(2, 10, user(1, "y", std::string(32, 'p'))), 3U);
  EXPECT_EQ(box.status(2, 10, user(1, "")), 3U);
  EXPECT_EQ(box.status(2, 62, named(std::string(32, 'x'))), 3U);
}

TEST(Users, AreNoMoreThan32) {
  TestBox box;
  for (int i = 1; i < 32; ++i) {
    ASSERT_EQ(box.status(2, 10, user(1, "user" + std::to_string(i))), 0U);
  }
  EXPECT_EQ(box.status(2, 10, user(1, "one too many")), 6U);
  EXPECT_EQ(box.status(2, 10, user(2, "user7")), 0U);
  EXPECT_EQ(box.status(2, 10, user(1, "one too many")), 0U);
}

TEST(Users, AreSavedWithAnyBytesInNameAndPassword) {
  TestBox box;
  std::string name = "J\xC3\xB6rg \"\\\x01\x7F\xFF";
  box.status(2, 10, user(1, name, "\x80\xFE", 1, 2));
  EXPECT_EQ(box.status(2, 8), 0U);
  box.restart();
  EXPECT_EQ(
      box.reply(2, 63, at(1)),
      record(
          80,
          {{4, word(1)}, {8, text(name)}, {40, text("\x80\xFE")}, {72, word(1)}, {76, word(2)}}));
}

TEST(Users, AreListedWithoutTheirPasswords) {
  TestBox box;
  box.status(2, 10, user(1, "op\nerator", "secret", 3, 400));
  box.status(2, 10, user(0, "op\nerator", "guess"));
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("Users\n"
                        "Index  Name          Password  Level A  Level B\n"
                        "-----  ------------  --------  -------  -------\n"
                        "0      admin         **        1        1\n"
                        "1      op\\x0aerator  **        3        400\n"),
            std::string::npos)
      << config;
  std::string log = box.listing(box.reply(22, 81, word(0)), 0);
  EXPECT_NE(log.find("user \"op\\x0aerator\" gave a wrong password: login refused\n"),
            std::string::npos)
      << log;
  for (const std::string &listing : {config, log}) {
    EXPECT_EQ(listing.find("secret"), std::string::npos) << listing;
    EXPECT_EQ(listing.find("guess"), std::string::npos) << listing;
  }
}

}  // namespace
