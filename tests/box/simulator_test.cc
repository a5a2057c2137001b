// The box as a whole: what is served, what is refused, and that nothing harms it.

#include "box/simulator.h"

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace {

using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::TestBox;
using olt::tests::text;
using olt::tests::word;

struct Served {
  uint32_t module;
  uint32_t type;
  size_t request;
  size_t reply;
};

// Requests of zeros that each message answers with status 0.
constexpr Served kServed[] = {
    {2, 2, 4, 0},    {18, 2, 4, 0},   {22, 2, 4, 0},   {23, 2, 4, 0},   {2, 3, 0, 32},
    {18, 3, 0, 32},  {22, 3, 0, 32},  {23, 3, 0, 32},  {18, 4, 0, 4},   {2, 5, 0, 0},
    {2, 6, 0, 0},    {2, 7, 0, 0},    {2, 8, 0, 0},    {2, 9, 0, 0},    {2, 12, 0, 6},
    {2, 33, 0, 80},  {2, 39, 12, 12}, {2, 40, 28, 28}, {2, 50, 172, 0}, {2, 51, 172, 0},
    {2, 52, 88, 0},  {2, 53, 0, 80},  {2, 56, 136, 0}, {2, 57, 0, 136}, {2, 58, 172, 172},
    {2, 59, 196, 0}, {2, 60, 0, 196}, {2, 61, 0, 4},   {2, 62, 80, 80}, {2, 63, 80, 80},
    {22, 81, 4, 32}, {22, 83, 4, 0},  {2, 83, 4, 0},
};

TEST(Simulator, AnswersEachMessageWithAReplyOfItsLength) {
  TestBox box;
  for (const Served &message : kServed) {
    olt::box::Answer answer = box.ask(message.module, message.type, Bytes(message.request));
    EXPECT_EQ(answer.status, 0) << "module " << message.module << " type " << message.type;
    EXPECT_EQ(answer.reply.size(), message.reply)
        << "module " << message.module << " type " << message.type;
  }
}

TEST(Simulator, RefusesRequestsOfAnotherLengthAndCountsThem) {
  TestBox box;
  uint64_t refused = 0;
  for (const Served &message : kServed) {
    EXPECT_EQ(box.status(message.module, message.type, Bytes(message.request + 1)), 2U);
    ++refused;
    if (message.request == 0) continue;
    EXPECT_EQ(box.status(message.module, message.type, Bytes(message.request - 1)), 2U);
    EXPECT_EQ(box.status(message.module, message.type, {}), 2U);
    refused += 2;
  }
  std::string counters = box.command(R"({"command":"counters"})");
  EXPECT_NE(counters.find("\"bad_lengths\":" + std::to_string(refused) + ","), std::string::npos)
      << counters;
}

TEST(Simulator, RefusesAndCountsWhatItDoesNotServe) {
  TestBox box;
  EXPECT_EQ(box.status(2, 200), 1U);
  EXPECT_EQ(box.status(2, 4), 1U);
  EXPECT_EQ(box.status(18, 12), 1U);
  EXPECT_EQ(box.status(23, 4'000'000'000), 1U);
  EXPECT_EQ(
      box.command(R"({"command":"counters"})"),
      R"({"ok":true,"counters":{"exchanges":4,"refused":4,"unserved":4,"bad_lengths":0,)"
      R"("faults":0,"messages":[)"
      R"({"module":2,"type":4,"exchanges":1,"refused":1,"unserved":1,"bad_lengths":0,"faults":0},)"
      R"({"module":2,"type":200,"exchanges":1,"refused":1,"unserved":1,"bad_lengths":0,"faults":0},)"
      R"({"module":18,"type":12,"exchanges":1,"refused":1,"unserved":1,"bad_lengths":0,"faults":0},)"
      R"({"module":23,"type":4000000000,"exchanges":1,"refused":1,"unserved":1,"bad_lengths":0,)"
      R"("faults":0}]}})");
}

TEST(Simulator, SurvivesEveryLengthOfEveryType) {
  TestBox box;
  box.traced = false;
  Bytes request;
  for (uint32_t module : {2U, 18U, 22U, 23U, 1000U}) {
    for (uint32_t type = 0; type <= 300; ++type) {
      for (uint32_t length = 0; length <= 300; ++length) {
        uint32_t pattern = (type + length) % 3;
        request.assign(length, pattern == 0 ? 0 : pattern == 1 ? 0xFF : 'a');
        box.ask(module, type, request);
      }
    }
  }
  EXPECT_EQ(box.reply(2, 12), hex("02 00 00 00 00 01"));
}

TEST(Simulator, CountsAFloodOfDifferentTypesWithoutGrowing) {
  TestBox box;
  for (uint32_t type = 1000; type < 11'000; ++type) EXPECT_EQ(box.status(2, type), 1U);
  EXPECT_EQ(box.status(2, 12), 0U);
  std::string counters = box.command(R"({"command":"counters"})");
  EXPECT_LE(counters.size(), 65'535U);
  EXPECT_NE(counters.find(R"("unserved":10000)"), std::string::npos);
  EXPECT_NE(counters.find(R"("type":12,"exchanges":1)"), std::string::npos);
}

TEST(Simulator, TracesOneLineAnExchange) {
  TestBox box;
  box.status(2, 12);
  box.status(22, 83, word(5));
  box.status(2, 200, hex("01 02"));
  ASSERT_EQ(box.trace.size(), 3U);
  EXPECT_EQ(box.trace[0],
            "2026-01-31T12:00:00.000000Z module 2 type 12 olt-mac: request 0, status 0 ok, "
            "reply 6 [020000000001]");
  EXPECT_EQ(box.trace[1],
            "2026-01-31T12:00:00.000000Z module 22 type 83 log-level: request 4 [05000000], "
            "status 0 ok, reply 0");
  EXPECT_EQ(box.trace[2],
            "2026-01-31T12:00:00.000000Z module 2 type 200 unserved: request 2 [0102], "
            "status 1 message type not served, reply 0");
}

TEST(Simulator, CutsLongRecordsInTraces) {
  TestBox box;
  box.status(2, 52, Bytes(88, 0xAB));
  ASSERT_EQ(box.trace.size(), 1U);
  std::string shown;
  for (int i = 0; i < 64; ++i) shown += "ab";
  EXPECT_NE(box.trace[0].find("request 88 [" + shown + "...], status 0"), std::string::npos)
      << box.trace[0];
}

TEST(Simulator, HidesPasswordsInTraces) {
  TestBox box;
  Bytes user = record(80, {{0, word(1)}, {8, text("operator")}, {40, text("secret")}});
  std::string name = "6f70657261746f72" + std::string(48, '0');
  box.status(2, 10, user);
  box.status(2, 62, record(80, {{8, text("admin")}, {40, text("secret")}}));
  box.status(2, 63, record(80, {{4, word(1)}, {40, text("secret")}}));
  // Neither does a slip of length or of module tell a password.
  box.status(2, 10, record(55, {{40, text("secret")}}));
  box.status(18, 10, user);
  ASSERT_EQ(box.trace.size(), 5U);
  EXPECT_NE(box.trace[0].find("request 80 [0100000000000000" + name + "**...]"), std::string::npos)
      << box.trace[0];
  EXPECT_NE(box.trace[1].find("reply 80 [0000000001000000" + name + "**...]"), std::string::npos)
      << box.trace[1];
  for (const std::string &line : box.trace) {
    EXPECT_EQ(line.find("736563"), std::string::npos) << line;
    EXPECT_NE(line.find("**"), std::string::npos) << line;
  }
}

TEST(Request, IsNeverReadBehindItsEnd) {
  const Bytes data = hex("01 02 03 04 05");
  olt::box::Request request{data};
  EXPECT_EQ(request.word(1), 0x05040302U);
  EXPECT_EQ(request.record<uint16_t>(3), 0x0504U);
  EXPECT_EQ(request.records<uint16_t>(1), (std::vector<uint16_t>{0x0302, 0x0504}));
  EXPECT_THROW(request.word(2), olt::box::BadLength);
  EXPECT_THROW(request.record<uint16_t>(4), olt::box::BadLength);
  EXPECT_THROW(request.record<uint16_t>(SIZE_MAX), olt::box::BadLength);
  EXPECT_THROW(request.records<uint16_t>(0), olt::box::BadLength);
  EXPECT_THROW(request.records<uint16_t>(7), olt::box::BadLength);
  EXPECT_THROW(request.bytes(1, SIZE_MAX), olt::box::BadLength);
}

TEST(Field, HoldsATextWithOrWithoutItsZero) {
  char field[4] = {'w', 'x', 'y', 'z'};
  EXPECT_EQ(olt::box::text_of(field), "wxyz");
  EXPECT_EQ(olt::box::terminated_text_of(field), std::nullopt);
  olt::box::set_text(field, "a");
  EXPECT_EQ(std::string_view(field, 4), std::string_view("a\0\0\0", 4));
  EXPECT_EQ(olt::box::terminated_text_of(field), "a");
  olt::box::set_text(field, "abcdef");
  EXPECT_EQ(olt::box::text_of(field), "abcd");
}

TEST(Reply, GrowsToWhatIsWrittenAndNoFurther) {
  olt::box::Reply reply;
  reply.bytes(2, hex("61 62"));
  reply.append(hex("63"));
  reply.record(uint16_t{0x1234});
  EXPECT_EQ(reply.take(), hex("34 12 61 62 63"));
  EXPECT_THROW(olt::box::Reply().bytes(65'532, hex("00 00 00 00")), std::length_error);
}

}  // namespace
