// The box as a whole: what it serves, what it refuses, and that no request harms it.

#include "box/simulator.h"

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace olt::test {

namespace {

struct Served {
  Module module;
  uint32_t type;
  size_t request;
  size_t reply;
};

// Messages that answer a request of zeros with status 0.
constexpr Served kServed[] = {
    {kMainModule, kSetDebugEnable, 4, 0},
    {kOamModule, kSetDebugEnable, 4, 0},
    {kLogModule, kSetDebugEnable, 4, 0},
    {kRstpModule, kSetDebugEnable, 4, 0},
    {kMainModule, kListMemory, 0, kListingNameSize},
    {kOamModule, kListMemory, 0, kListingNameSize},
    {kLogModule, kListMemory, 0, kListingNameSize},
    {kRstpModule, kListMemory, 0, kListingNameSize},
    {kOamModule, kGetOamSupport, 0, 4},
    {kMainModule, kSetInService, 0, 0},
    {kMainModule, kAnnounceStart, 0, 0},
    {kMainModule, kReboot, 0, 0},
    {kMainModule, kSaveConfig, 0, 0},
    {kMainModule, kRestoreDefaults, 0, 0},
    {kMainModule, kGetOltMac, 0, 6},
    {kMainModule, kListRunningConfig, 0, 80},
    {kMainModule, kDebugValue, kDebugValueSize, kDebugValueSize},
    {kMainModule, kSwitchDebugValue, kSwitchDebugSize, kSwitchDebugSize},
    {kMainModule, kSetIpAddress, kNetworkSize, 0},
    {kMainModule, kSetDns, kNetworkSize, 0},
    {kMainModule, kSetSntp, kSntpSize, 0},
    {kMainModule, kListBasicInfo, 0, 80},
    {kMainModule, kSetSnmpParam, kSnmpParamSize, 0},
    {kMainModule, kGetSnmpParam, 0, kSnmpParamSize},
    {kMainModule, kGetNetwork, kNetworkSize, kNetworkSize},
    {kMainModule, kSetSnmpInfo, kSnmpInfoSize, 0},
    {kMainModule, kGetSnmpInfo, 0, kSnmpInfoSize},
    {kMainModule, kGetUpdateStatus, 0, 4},
    {kMainModule, kGetNextUser, kUserSize, kUserSize},
    {kMainModule, kGetUserByIndex, kUserSize, kUserSize},
    {kLogModule, kListLog, 4, kListingNameSize},
    {kLogModule, kSetLogLevel, 4, 0},
    {kMainModule, kSetLogLevel, 4, 0},
};

TEST(Simulator, AnswersEachMessageWithAReplyOfItsLength) {
  TestBox box;
  for (const Served &message : kServed) {
    box::Answer answer = box.ask(message.module, message.type, Bytes(message.request));
    EXPECT_EQ(answer.status, kOk) << "module " << message.module << " type " << message.type;
    EXPECT_EQ(answer.reply.size(), message.reply)
        << "module " << message.module << " type " << message.type;
  }
}

TEST(Simulator, RefusesRequestsOfAnotherLengthAndCountsThem) {
  TestBox box;
  uint64_t refused = 0;
  for (const Served &message : kServed) {
    EXPECT_EQ(box.status(message.module, message.type, Bytes(message.request + 1)), kBadLength);
    ++refused;
    if (message.request == 0) continue;
    EXPECT_EQ(box.status(message.module, message.type, Bytes(message.request - 1)), kBadLength);
    EXPECT_EQ(box.status(message.module, message.type, {}), kBadLength);
    refused += 2;
  }
  std::string counters = box.command(R"({"command":"counters"})");
  EXPECT_TRUE(holds(counters, "\"bad_lengths\":" + std::to_string(refused) + ",")) << counters;
}

TEST(Simulator, RefusesAndCountsWhatItDoesNotServe) {
  TestBox box;
  EXPECT_EQ(box.status(kUnknownType), kNotServed);
  EXPECT_EQ(box.status(kGetOamSupport), kNotServed);
  EXPECT_EQ(box.status(kOamModule, kGetOltMac), kNotServed);
  EXPECT_EQ(box.status(kRstpModule, 4'000'000'000), kNotServed);
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
  for (Module module : {kMainModule, kOamModule, kLogModule, kRstpModule, kControlModule}) {
    for (uint32_t type = 0; type <= 300; ++type) {
      for (uint32_t length = 0; length <= 300; ++length) {
        uint32_t pattern = (type + length) % 3;
        request.assign(length, pattern == 0 ? 0 : pattern == 1 ? 0xFF : 'a');
        box.ask(module, type, request);
      }
    }
  }
  EXPECT_EQ(box.reply(kGetOltMac), hex("02 00 00 00 00 01"));
}

TEST(Simulator, CountsAFloodOfDifferentTypesWithoutGrowing) {
  TestBox box;
  for (uint32_t type = 1000; type < 11'000; ++type) EXPECT_EQ(box.status(type), kNotServed);
  EXPECT_EQ(box.status(kGetOltMac), kOk);
  std::string counters = box.command(R"({"command":"counters"})");
  EXPECT_LE(counters.size(), 65'535U);
  EXPECT_TRUE(holds(counters, R"("unserved":10000)"));
  EXPECT_TRUE(holds(counters, R"("type":12,"exchanges":1)"));
}

TEST(Simulator, TracesOneLineAnExchange) {
  TestBox box;
  box.status(kGetOltMac);
  box.status(kLogModule, kSetLogLevel, word(5));
  box.status(kUnknownType, hex("01 02"));
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
  box.status(kSetSntp, Bytes(kSntpSize, 0xAB));
  ASSERT_EQ(box.trace.size(), 1U);
  std::string shown;
  for (int i = 0; i < 64; ++i) shown += "ab";
  EXPECT_TRUE(holds(box.trace[0], "request 88 [" + shown + "...], status 0")) << box.trace[0];
}

TEST(Simulator, HidesPasswordsInTraces) {
  TestBox box;
  Bytes user = record(
      kUserSize, {{0, word(1)}, {kUserNameAt, text("operator")}, {kPasswordAt, text("secret")}});
  std::string name = "6f70657261746f72" + std::string(48, '0');
  box.status(kUserAccount, user);
  box.status(kGetNextUser,
             record(kUserSize, {{kUserNameAt, text("admin")}, {kPasswordAt, text("secret")}}));
  box.status(kGetUserByIndex,
             record(kUserSize, {{kUserIndexAt, word(1)}, {kPasswordAt, text("secret")}}));
  // A wrong length or module does not reveal a password either.
  box.status(kUserAccount, record(55, {{kPasswordAt, text("secret")}}));
  box.status(kOamModule, kUserAccount, user);
  ASSERT_EQ(box.trace.size(), 5U);
  EXPECT_TRUE(holds(box.trace[0], "request 80 [0100000000000000" + name + "**...]"))
      << box.trace[0];
  EXPECT_TRUE(holds(box.trace[1], "reply 80 [0000000001000000" + name + "**...]")) << box.trace[1];
  for (const std::string &line : box.trace) {
    EXPECT_FALSE(holds(line, "736563")) << line;
    EXPECT_TRUE(holds(line, "**")) << line;
  }
}

TEST(Request, IsNeverReadPastItsEnd) {
  const Bytes data = hex("01 02 03 04 05");
  box::Request request{data};
  EXPECT_EQ(request.word(1), 0x05040302U);
  EXPECT_EQ(request.record<uint16_t>(3), 0x0504U);
  EXPECT_EQ(request.records<uint16_t>(1), (std::vector<uint16_t>{0x0302, 0x0504}));
  EXPECT_THROW(request.word(2), box::BadLength);
  EXPECT_THROW(request.record<uint16_t>(4), box::BadLength);
  EXPECT_THROW(request.record<uint16_t>(SIZE_MAX), box::BadLength);
  EXPECT_THROW(request.records<uint16_t>(0), box::BadLength);
  EXPECT_THROW(request.records<uint16_t>(7), box::BadLength);
  EXPECT_THROW(request.bytes(1, SIZE_MAX), box::BadLength);
}

TEST(Field, HoldsATextWithOrWithoutItsZero) {
  char field[4] = {'w', 'x', 'y', 'z'};
  EXPECT_EQ(box::text_of(field), "wxyz");
  EXPECT_EQ(box::terminated_text_of(field), std::nullopt);
  box::set_text(field, "a");
  EXPECT_EQ(std::string_view(field, 4), std::string_view("a\0\0\0", 4));
  EXPECT_EQ(box::terminated_text_of(field), "a");
  box::set_text(field, "abcdef");
  EXPECT_EQ(box::text_of(field), "abcd");
}

TEST(Reply, GrowsToWhatIsWrittenAndNoFurther) {
  box::Reply reply;
  reply.bytes(2, hex("61 62"));
  reply.append(hex("63"));
  reply.record(uint16_t{0x1234});
  EXPECT_EQ(reply.take(), hex("34 12 61 62 63"));
  EXPECT_THROW(box::Reply().bytes(65'532, hex("00 00 00 00")), std::length_error);
}

}  // namespace

}  // namespace olt::test
