// Faults: which requests they affect and how, and how they are armed and cleared. In their JSON,
// types are numbers: 2 is kSetDebugEnable, 12 kGetOltMac, 56 kSetSnmpParam, 83 kSetLogLevel.

#include "box/watch/faults.h"

#include <gtest/gtest.h>

#include "base/bad_input.h"
#include "tests/box/support.h"

namespace olt::test {

namespace {

using box::Answer;

TEST(Faults, StatusStrikesSomeRequestsFromTheNth) {
  TestBox box;
  EXPECT_EQ(box.command(R"({"command":"fault_add","fault":{"module":2,"type":12,"status":5,)"
                        R"("delay_ms":0,"action":"status","from":3,"count":2}})"),
            R"({"ok":true,"id":1})");
  std::vector<uint32_t> statuses;
  for (int i = 0; i < 6; ++i) statuses.push_back(box.status(kGetOltMac));
  EXPECT_EQ(statuses, (std::vector<uint32_t>{kOk, kOk, 5, 5, kOk, kOk}));
  EXPECT_EQ(box.command(R"({"command":"fault_list"})"),
            R"({"ok":true,"faults":[{"id":1,"module":2,"type":12,"status":5,"delay_ms":0,)"
            R"("action":"status","from":3,"count":2,"seen":6,"applied":2}]})");
}

TEST(Faults, StrikeAtOnceAndForEverByDefault) {
  TestBox box;
  box.command(R"({"command":"fault_add","fault":{"type":12,"status":65535}})");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(box.status(kGetOltMac), 65'535U);
}

TEST(Faults, StrikeTheirTypeAndModuleOnly) {
  TestBox box;
  box.command(R"({"command":"fault_add","fault":{"module":22,"type":83,"status":5}})");
  EXPECT_EQ(box.status(kSetLogLevel, word(3)), kOk);
  EXPECT_EQ(box.status(kLogModule, kSetLogSize, word(3)), kOk);
  EXPECT_EQ(box.status(kLogModule, kSetLogLevel, word(3)), 5U);
}

TEST(Faults, OfAnyModuleStrikeEveryModule) {
  for (const char *any : {"0", "\"any\""}) {
    TestBox box;
    box.command(std::string(R"({"command":"fault_add","fault":{"type":2,"status":5,"module":)") +
                any + "}}");
    EXPECT_EQ(box.status(kSetDebugEnable, word(1)), 5U);
    EXPECT_EQ(box.status(kRstpModule, kSetDebugEnable, word(1)), 5U);
  }
}

TEST(Faults, LeaveTheStateOfTheBoxAlone) {
  TestBox box;
  box.command(R"({"command":"fault_add","fault":{"type":56,"status":5,"count":1}})");
  box.command(
      R"({"command":"fault_add","fault":{"type":56,"action":"silence","from":2,"count":1}})");
  box.command(R"({"command":"fault_add","fault":{"type":56,"action":"drop","from":3,"count":1}})");
  EXPECT_EQ(box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 1)), 5U);
  EXPECT_EQ(box.ask(kSetSnmpParam, Bytes(kSnmpParamSize, 2)).action, Answer::Action::kWithhold);
  EXPECT_EQ(box.ask(kSetSnmpParam, Bytes(kSnmpParamSize, 3)).action, Answer::Action::kDisconnect);
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0));
  EXPECT_EQ(box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 4)), kOk);
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 4));
}

TEST(Faults, DelayLeavesTheAnswerUnchanged) {
  TestBox box;
  box.command(R"({"command":"fault_add","fault":{"type":12,"delay_ms":250}})");
  Answer answer = box.ask(kGetOltMac);
  EXPECT_EQ(answer.delay_ms, 250U);
  EXPECT_EQ(answer.status, kOk);
  EXPECT_EQ(answer.reply, hex("02 00 00 00 00 01"));
}

TEST(Faults, DelayStatusesAndDrops) {
  TestBox box;
  box.command(R"({"command":"fault_add","fault":{"type":12,"delay_ms":250,"status":7,"count":1}})");
  box.command(
      R"({"command":"fault_add","fault":{"type":12,"delay_ms":20,"action":"drop","from":2}})");
  Answer refused = box.ask(kGetOltMac);
  EXPECT_EQ(refused.delay_ms, 250U);
  EXPECT_EQ(refused.status, 7);
  Answer dropped = box.ask(kGetOltMac);
  EXPECT_EQ(dropped.delay_ms, 20U);
  EXPECT_EQ(dropped.action, Answer::Action::kDisconnect);
}

TEST(Faults, TheOldestDueFaultStrikesAndAllCount) {
  TestBox box;
  box.command(R"({"command":"fault_add","fault":{"type":12,"status":5,"from":2,"count":1}})");
  box.command(R"({"command":"fault_add","fault":{"type":12,"status":6,"count":3}})");
  std::vector<uint32_t> statuses;
  for (int i = 0; i < 4; ++i) statuses.push_back(box.status(kGetOltMac));
  EXPECT_EQ(statuses, (std::vector<uint32_t>{6, 5, 6, kOk}));
}

TEST(Faults, AreClearedOneByOneOrAll) {
  TestBox box;
  box.command(R"({"command":"fault_add","fault":{"type":12,"status":5}})");
  box.command(R"({"command":"fault_add","fault":{"type":12,"status":6}})");
  box.command(R"({"command":"fault_add","fault":{"type":12,"status":7}})");
  EXPECT_EQ(box.command(R"({"command":"fault_clear","id":1})"), R"({"ok":true,"cleared":1})");
  EXPECT_EQ(box.status(kGetOltMac), 6U);
  EXPECT_EQ(box.command(R"({"command":"fault_clear","id":1})"),
            R"({"ok":false,"error":"no fault 1 is armed"})");
  EXPECT_EQ(box.command(R"({"command":"fault_clear"})"), R"({"ok":true,"cleared":2})");
  EXPECT_EQ(box.status(kGetOltMac), kOk);
  EXPECT_EQ(box.command(R"({"command":"fault_add","fault":{"type":12,"status":5}})"),
            R"({"ok":true,"id":4})");
}

TEST(Faults, AreCountedAndTraced) {
  TestBox box;
  box.command(R"({"command":"fault_add","fault":{"type":12,"action":"silence","count":1}})");
  box.command(R"({"command":"fault_add","fault":{"type":12,"delay_ms":5}})");
  box.trace.clear();
  box.ask(kGetOltMac);
  box.ask(kGetOltMac);
  EXPECT_EQ(box.trace,
            (std::vector<std::string>{
                "2026-01-31T12:00:00.000000Z module 2 type 12 olt-mac: request 0, no answer, "
                "fault 1 silence",
                "2026-01-31T12:00:00.000000Z module 2 type 12 olt-mac: request 0, status 0 ok, "
                "reply 6 [020000000001], after 5 ms, fault 2 status"}));
  EXPECT_EQ(box.command(R"({"command":"counters"})"),
            R"({"ok":true,"counters":{"exchanges":2,"refused":0,"unserved":0,"bad_lengths":0,)"
            R"("faults":2,"messages":[{"module":2,"type":12,"exchanges":2,"refused":0,)"
            R"("unserved":0,"bad_lengths":0,"faults":2}]}})");
}

TEST(Faults, AreNoMoreThan256) {
  TestBox box;
  for (int i = 0; i < 256; ++i) {
    box.command(R"({"command":"fault_add","fault":{"module":255,"type":4294967295,"status":65535,)"
                R"("delay_ms":600000,"from":4294967295,"count":4294967295}})");
  }
  EXPECT_EQ(
      box.command(R"({"command":"fault_add","fault":{"type":12,"status":5}})"),
      R"({"ok":false,"error":"256 faults are armed already; expected one to be cleared first"})");
  std::string list = box.command(R"({"command":"fault_list"})");
  EXPECT_EQ(list.substr(0, 12), R"({"ok":true,")");
}

TEST(Faults, ThatAreUsedUpMakeRoom) {
  TestBox box;
  const std::string once = R"({"command":"fault_add","fault":{"type":12,"status":5,"count":1}})";
  const std::string later =
      R"({"command":"fault_add","fault":{"type":12,"status":5,"from":3,"count":2}})";
  EXPECT_EQ(box.command(once), R"({"ok":true,"id":1})");
  EXPECT_EQ(box.command(later), R"({"ok":true,"id":2})");
  for (int id = 3; id <= 256; ++id) {
    EXPECT_EQ(
        box.command(R"({"command":"fault_add","fault":{"type":53,"status":5}})").substr(0, 10),
        R"({"ok":true)");
  }
  EXPECT_EQ(box.command(once).substr(0, 11), R"({"ok":false)");
  EXPECT_EQ(box.status(kGetOltMac), 5U);  // the first fault is used up
  EXPECT_EQ(box.command(once), R"({"ok":true,"id":257})");
  EXPECT_EQ(box.command(once).substr(0, 11), R"({"ok":false)");
  EXPECT_EQ(box.status(kGetOltMac), 5U);  // so is 257
  EXPECT_EQ(box.status(kGetOltMac), 5U);  // 2 applies once more
  EXPECT_EQ(box.command(once), R"({"ok":true,"id":258})");
  EXPECT_EQ(box.command(once).substr(0, 11), R"({"ok":false)");
  std::string list = box.command(R"({"command":"fault_list"})");
  EXPECT_EQ(list.find(R"({"id":1,)"), std::string::npos);
  EXPECT_NE(list.find(R"({"id":2,)"), std::string::npos);
}

TEST(Faults, CanBeArmedByText) {
  TestBox box;
  box.options.faults = {"type=get_olt_mac status=5 from=2 count=1", "type=0x21 silence module=2",
                        "type=53 action=drop delay_ms=7 module=any"};
  EXPECT_EQ(box.status(kGetOltMac), kOk);
  EXPECT_EQ(box.status(kGetOltMac), 5U);
  EXPECT_EQ(box.ask(kListRunningConfig).action, Answer::Action::kWithhold);
  EXPECT_EQ(box.ask(kListBasicInfo).action, Answer::Action::kDisconnect);
  EXPECT_EQ(box::fault_add_command("module=22 type=83 status=0x10"),
            R"({"command":"fault_add","fault":{"module":22,"type":83,"status":16}})");
}

TEST(Faults, MistakesInTextsGetOneLine) {
  const std::pair<const char *, const char *> kMistakes[] = {
      {"", "fault \"\": type: is missing"},
      {"status=5", "fault \"status=5\": type: is missing"},
      {"type=twelve status=5",
       "fault \"type=twelve status=5\": type: is \"twelve\"; expected a message type or an "
       "operation "
       "that sends"},
      {"type=12",
       "fault \"type=12\": the fault has no effect; expected a status, a delay_ms, or the "
       "action silence or drop"},
      {"type=12 loud",
       "fault \"type=12 loud\": \"loud\" is not understood; expected KEY=VALUE, "
       "silence or drop"},
      {"type=12 action=loud",
       "fault \"type=12 action=loud\": action: is \"loud\"; expected "
       "status, silence or drop"},
      {"type=12 status=65536",
       "fault \"type=12 status=65536\": status: is 65536; expected an "
       "integer from 0 to 65535"},
      {"type=12 status=-1",
       "fault \"type=12 status=-1\": status: is \"-1\"; expected an integer from 0 to 65535"},
      {"type=12 status=5 status=6",
       "fault \"type=12 status=5 status=6\": status is given twice; expected once"},
      {"type=12 statsu=5",
       "fault \"type=12 statsu=5\": statsu: is unknown; expected one of module, type, status, "
       "delay_ms, action, from, count"},
      {"type=12 status=5 from=0",
       "fault \"type=12 status=5 from=0\": from: is 0; expected an "
       "integer from 1 to 4294967295"},
      {"type=12 silence status=5",
       "fault \"type=12 silence status=5\": the status is never sent; expected it "
       "without silence and drop"},
      {"type=12 silence delay_ms=5",
       "fault \"type=12 silence delay_ms=5\": the answer that is delayed is never sent; "
       "expected delay_ms without silence"},
      {"type=12 delay_ms=600001",
       "fault \"type=12 delay_ms=600001\": delay_ms: is 600001; expected an integer from 0 to "
       "600000"},
      {"type=12 status=5 module=1000",
       "fault \"type=12 status=5 module=1000\": module: is 1000; expected an integer from 0 "
       "to 255"},
      {"type=12 \x01\xFF=5",
       "fault \"type=12 \\x01\\xff=5\": \\x01\\xff: is unknown; expected one of module, type, "
       "status, "
       "delay_ms, action, from, count"},
  };
  for (const auto &[mistake, line] : kMistakes) {
    try {
      box::fault_add_command(mistake);
      ADD_FAILURE() << mistake << " was accepted";
    } catch (const BadInput &error) {
      EXPECT_STREQ(error.what(), line);
    }
  }
}

TEST(Control, AnswersEveryMistakeWithOneLineOfJson) {
  TestBox box;
  const std::pair<const char *, const char *> kMistakes[] = {
      {"", "1:1: is not JSON; expected '[', '{', or a literal"},
      {"rubbish", "1:1: is not JSON; expected a value that JSON allows"},
      {"[]", "/: is an array; expected an object"},
      {"{}", "/command: is missing"},
      {R"({"command":7})", "/command: is 7; expected a text of at most 32 bytes"},
      {R"({"command":"explode"})",
       "/command: is \\\"explode\\\"; expected fault_add, fault_list, fault_clear, counters, "
       "capture_start, capture_stop, config_export or config_import"},
      {R"({"command":"fault_add"})", "/fault: is missing"},
      {R"({"command":"fault_add","fault":{"type":"12"}})",
       "/fault/type: is \\\"12\\\"; expected an integer from 0 to 4294967295"},
      {R"({"command":"fault_add","fault":{"type":12}})",
       "the fault has no effect; expected a status, a delay_ms, or the action silence or drop"},
      {R"({"command":"fault_add","fault":{"type":12,"status":1.5}})",
       "/fault/status: is 1.5; expected an integer"},
      {R"({"command":"counters","what":1})", "/what: is unknown; expected one of command"},
      {R"({"command":"fault_clear","id":-1})", "/id: is -1; expected a number from 0"},
      {R"({"command":"counters","command":"fault_clear"})",
       "/command: is given twice; expected once"},
  };
  for (const auto &[mistake, line] : kMistakes) {
    EXPECT_EQ(box.command(mistake), std::string(R"({"ok":false,"error":")") + line + "\"}");
  }
}

TEST(Control, ServesItsTypesAndRequestsOfReasonableLength) {
  TestBox box;
  EXPECT_EQ(box.status(kControlModule, 0, text(R"({"command":"counters"})")), kNotServed);
  EXPECT_EQ(box.status(kControlModule, 3, text(R"({"command":"counters"})")), kNotServed);
  EXPECT_EQ(box.status(kControlModule, kControlCommand, Bytes(65'537, '[')), kBadLength);
  EXPECT_EQ(box.status(kControlModule, kControlCommand, Bytes(65'536, '[')), kOk);
}

}  // namespace

}  // namespace olt::test
