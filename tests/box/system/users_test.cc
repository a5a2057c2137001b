// User accounts, byte for byte.

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace olt::test {

namespace {

// The first word of a request.
constexpr uint32_t kLookUp = 0;
constexpr uint32_t kAdd = 1;
constexpr uint32_t kDelete = 2;
constexpr uint32_t kModify = 3;

Bytes user(uint32_t op, std::string_view name, std::string_view password = "", uint32_t level_a = 0,
           uint32_t level_b = 0) {
  return record(kUserSize, {{0, word(op)},
                            {kUserNameAt, text(name)},
                            {kPasswordAt, text(password)},
                            {kLevelAAt, word(level_a)},
                            {kLevelBAt, word(level_b)}});
}

Bytes named(std::string_view name) {
  return record(kUserSize, {{kUserNameAt, text(name)}});
}

Bytes at(uint32_t index) {
  return record(kUserSize, {{kUserIndexAt, word(index)}});
}

TEST(Users, FactoryHasOneAdministrator) {
  TestBox box;
  Bytes admin = record(kUserSize, {{kUserNameAt, text("admin")},
                                   {kPasswordAt, text("admin")},
                                   {kLevelAAt, hex("01 00 00 00")},
                                   {kLevelBAt, hex("01 00 00 00")}});
  EXPECT_EQ(box.reply(kGetUserByIndex, at(0)), admin);
  EXPECT_EQ(box.reply(kGetNextUser, named("")), admin);
  EXPECT_EQ(box.reply(kUserAccount, user(kLookUp, "admin", "admin")), admin);
  EXPECT_EQ(box.status(kGetUserByIndex, at(1)), kNotFound);
  EXPECT_EQ(box.status(kGetNextUser, named("admin")), kNotFound);
}

TEST(Users, AreWalkedInTheOrderOfAdding) {
  TestBox box;
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, "zoe", "a", 7, 8)), kOk);
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, "bob", "b", 0xFFFFFFFF, 0x01020304)), kOk);
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, "amy", "c")), kOk);
  EXPECT_EQ(box.reply(kGetNextUser, named("admin")),
            record(kUserSize, {{kUserIndexAt, word(1)},
                               {kUserNameAt, text("zoe")},
                               {kPasswordAt, text("a")},
                               {kLevelAAt, hex("07 00 00 00")},
                               {kLevelBAt, hex("08 00 00 00")}}));
  EXPECT_EQ(box.reply(kGetNextUser, named("zoe")),
            record(kUserSize, {{kUserIndexAt, word(2)},
                               {kUserNameAt, text("bob")},
                               {kPasswordAt, text("b")},
                               {kLevelAAt, hex("ff ff ff ff")},
                               {kLevelBAt, hex("04 03 02 01")}}));
  EXPECT_EQ(box.status(kUserAccount, user(kDelete, "bob")), kOk);
  Bytes amy = record(
      kUserSize, {{kUserIndexAt, word(2)}, {kUserNameAt, text("amy")}, {kPasswordAt, text("c")}});
  EXPECT_EQ(box.reply(kGetNextUser, named("zoe")), amy);
  EXPECT_EQ(box.reply(kGetUserByIndex, at(2)), amy);
  EXPECT_EQ(box.status(kGetNextUser, named("amy")), kNotFound);
  EXPECT_EQ(box.status(kGetNextUser, named("bob")), kNotFound);
}

TEST(Users, AreCheckedByNameAndPassword) {
  TestBox box;
  box.status(kUserAccount, user(kAdd, "operator", "secret", 3, 4));
  Bytes found = box.reply(kUserAccount, user(kLookUp, "operator", "secret"));
  EXPECT_EQ(slice(found, kLevelAAt, kUserSize), hex("03 00 00 00 04 00 00 00"));
  EXPECT_EQ(box.status(kUserAccount, user(kLookUp, "operator", "Secret")), kWrongPassword);
  EXPECT_EQ(box.status(kUserAccount, user(kLookUp, "operator", "")), kWrongPassword);
  EXPECT_EQ(box.status(kUserAccount, user(kLookUp, "stranger", "secret")), kNotFound);
}

TEST(Users, AreUniqueByName) {
  TestBox box;
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, "admin", "other")), kExists);
  EXPECT_EQ(box.status(kUserAccount, user(kLookUp, "admin", "admin")), kOk);
}

TEST(Users, UnknownOnesCannotBeDeletedOrModified) {
  TestBox box;
  EXPECT_EQ(box.status(kUserAccount, user(kDelete, "stranger")), kNotFound);
  EXPECT_EQ(box.status(kUserAccount, user(kModify, "stranger")), kNotFound);
  EXPECT_EQ(box.status(kUserAccount, user(4, "admin")), kBadValue);
}

TEST(Users, AreModifiedInPlace) {
  TestBox box;
  box.status(kUserAccount, user(kAdd, "operator", "secret", 3, 4));
  EXPECT_EQ(box.status(kUserAccount, user(kModify, "admin", "changed", 5, 6)), kOk);
  EXPECT_EQ(box.reply(kGetUserByIndex, at(0)), record(kUserSize, {{kUserNameAt, text("admin")},
                                                                  {kPasswordAt, text("changed")},
                                                                  {kLevelAAt, word(5)},
                                                                  {kLevelBAt, word(6)}}));
}

TEST(Users, HaveNamesOfOneTo31Bytes) {
  TestBox box;
  std::string longest(31, 'x');
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, longest, longest)), kOk);
  EXPECT_EQ(box.reply(kGetUserByIndex, at(1)), record(kUserSize, {{kUserIndexAt, word(1)},
                                                                  {kUserNameAt, text(longest)},
                                                                  {kPasswordAt, text(longest)}}));
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, std::string(32, 'y'), "p")), kBadValue);
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, "y", std::string(32, 'p'))), kBadValue);
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, "")), kBadValue);
  EXPECT_EQ(box.status(kGetNextUser, named(std::string(32, 'x'))), kBadValue);
}

TEST(Users, AreNoMoreThan32) {
  TestBox box;
  for (int i = 1; i < 32; ++i) {
    ASSERT_EQ(box.status(kUserAccount, user(kAdd, "user" + std::to_string(i))), kOk);
  }
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, "one too many")), kFull);
  EXPECT_EQ(box.status(kUserAccount, user(kDelete, "user7")), kOk);
  EXPECT_EQ(box.status(kUserAccount, user(kAdd, "one too many")), kOk);
}

TEST(Users, AreSavedWithAnyBytesInNameAndPassword) {
  TestBox box;
  std::string name = "J\xC3\xB6rg \"\\\x01\x7F\xFF";
  box.status(kUserAccount, user(kAdd, name, "\x80\xFE", 1, 2));
  EXPECT_EQ(box.status(kSaveConfig), kOk);
  box.restart();
  EXPECT_EQ(box.reply(kGetUserByIndex, at(1)), record(kUserSize, {{kUserIndexAt, word(1)},
                                                                  {kUserNameAt, text(name)},
                                                                  {kPasswordAt, text("\x80\xFE")},
                                                                  {kLevelAAt, word(1)},
                                                                  {kLevelBAt, word(2)}}));
}

TEST(Users, AreListedWithoutTheirPasswords) {
  TestBox box;
  box.status(kUserAccount, user(kAdd, "op\nerator", "secret", 3, 400));
  box.status(kUserAccount, user(kLookUp, "op\nerator", "guess"));
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config,
                    "Users\n"
                    "Index  Name          Password  Level A  Level B\n"
                    "-----  ------------  --------  -------  -------\n"
                    "0      admin         **        1        1\n"
                    "1      op\\x0aerator  **        3        400\n"))
      << config;
  std::string log = box.listing(box.reply(kLogModule, kListLog, word(0)), 0);
  EXPECT_TRUE(holds(log, "user \"op\\x0aerator\" gave a wrong password: login refused\n")) << log;
  for (const std::string &listing : {config, log}) {
    EXPECT_FALSE(holds(listing, "secret")) << listing;
    EXPECT_FALSE(holds(listing, "guess")) << listing;
  }
}

}  // namespace

}  // namespace olt::test
