// The configuration as text, in pieces: exported, imported whole or not at all.

#include <gtest/gtest.h>
#include <malloc.h>
#include <nlohmann/json.hpp>

#include <random>

#include "base/text.h"
#include "box/state/json_form.h"
#include "box/watch/configuration_transfer.h"
#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

using Json = nlohmann::ordered_json;

constexpr size_t kPiece = 32'000;

Json ask(TestBox &box, const Json &command) {
  return Json::parse(box.command(command.dump()));
}

std::string exported(TestBox &box, bool secrets = true) {
  std::string text;
  Json command = {{"command", "config_export"}, {"offset", 0}, {"secrets", secrets}};
  for (;;) {
    Json reply = ask(box, command);
    EXPECT_EQ(reply["ok"], true) << reply.dump();
    if (reply["ok"] != true) return "";
    text += *utf8_to_bytes(reply["piece"].get<std::string>());
    if (text.size() >= reply["length"]) return text;
    command = {{"command", "config_export"}, {"offset", text.size()}, {"export", reply["export"]}};
  }
}

/// The reply to the last piece, or to the one that was refused.
Json imported(TestBox &box, std::string_view text, bool adopt = false) {
  Json command = {{"command", "config_import"},
                  {"offset", 0},
                  {"length", text.size()},
                  {"adopt", adopt},
                  {"piece", bytes_to_utf8(text.substr(0, kPiece))}};
  for (size_t offset = kPiece;; offset += kPiece) {
    Json reply = ask(box, command);
    if (reply["ok"] != true || offset >= text.size()) return reply;
    command = {{"command", "config_import"},
               {"import", reply["import"]},
               {"offset", offset},
               {"piece", bytes_to_utf8(text.substr(offset, kPiece))}};
  }
}

/// Why the import was refused; "taken" when it was not.
std::string refusal(TestBox &box, std::string_view text, bool adopt = false) {
  Json reply = imported(box, text, adopt);
  return reply["ok"] == true ? "taken" : reply["error"].get<std::string>();
}

std::string with(std::string text, std::string_view part, std::string_view replacement) {
  size_t at = text.find(part);
  if (at == std::string::npos) throw std::runtime_error(text + " lacks " + std::string(part));
  return text.replace(at, part.size(), replacement);
}

void add_user(TestBox &box, std::string_view name, std::string_view password) {
  EXPECT_EQ(box.status(kUserAccount, record(kUserSize, {{0, word(1)},
                                                        {kUserNameAt, text(name)},
                                                        {kPasswordAt, text(password)},
                                                        {kLevelAAt, word(3)}})),
            kOk);
}

uint32_t log_in(TestBox &box, std::string_view name, std::string_view password) {
  return box.status(kUserAccount,
                    record(kUserSize, {{kUserNameAt, text(name)}, {kPasswordAt, text(password)}}));
}

/// Sets something in each kind of place: lists, records of ONUs, fields.
void set_things(TestBox &box) {
  add_user(box, "operator", "sesame");
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x5A));
  box.status(kSetVoiceAccount, target_with(target(1, 2, 1), counting(kVoiceAccountSize, 1)));
  box.status(kSetVoiceLine, target_with(target(1, 2, 1), word(1)));
  box.status(kAllowLoids, auth_entries(1, {auth_entry("", "onu-1-1-1", "pw-1-1-1"),
                                           auth_entry("", "site-9", "pw-9")}));
  box.status(kSetAuthMode, mode_record(1, 2));
}

TEST(ConfigExport, IsTheTextOfWhatASaveKeeps) {
  SmallPon box;
  set_things(box);
  std::string text = exported(box);
  EXPECT_EQ(box.status(kSaveConfig), kOk);
  EXPECT_EQ(text, box.state("saved"));
  EXPECT_EQ(exported(box), text);
  EXPECT_TRUE(text.starts_with("{\n \"topology\": {\n  \"version\": 1,\n")) << text;
  EXPECT_TRUE(holds(text,
                    "    {\n     \"name\": \"operator\",\n     \"password\": \"sesame\",\n"
                    "     \"level_a\": 3,\n     \"level_b\": 0\n    }\n"))
      << text;
}

TEST(ConfigExport, MasksSecretsUnlessAskedForThem) {
  SmallPon box;
  set_things(box);
  std::string masked = exported(box, false);
  for (std::string_view secret : {"sesame", "5a5a5a", "010203", "pw-1-1-1", "pw-9"}) {
    EXPECT_TRUE(holds(exported(box), secret)) << secret;
    EXPECT_FALSE(holds(masked, secret)) << masked;
  }
  EXPECT_TRUE(holds(masked, "\"name\": \"operator\",\n     \"password\": \"********\"")) << masked;
  EXPECT_TRUE(holds(masked, "\"snmp_param\": \"********\"")) << masked;
  EXPECT_TRUE(holds(masked, "\"user_account\": {\n    \"1/1/2:1\": \"********\"\n")) << masked;
  EXPECT_TRUE(holds(masked, "\"line_status\": {\n    \"1/1/2:1\": \"01000000\"\n")) << masked;
}

TEST(ConfigExport, ComesInPiecesThatFitAReply) {
  TestBox box;
  for (uint32_t onu = 1; onu <= 64; ++onu) {
    for (uint32_t interface = 1; interface <= 16; ++interface) {
      box.status(kDescribeOnu,
                 target_with(target(interface, onu), Bytes(kOnuDescriptionSize, 0xFF)));
    }
  }
  std::string command = R"({"command":"config_export","offset":0,"secrets":false})";
  std::string first = box.command(command);
  EXPECT_TRUE(first.starts_with(R"({"ok":true,"export":1,"length":)")) << first.substr(0, 100);
  EXPECT_LE(first.size(), 65'535U);
  std::string text = exported(box);
  EXPECT_GT(text.size(), 3 * kPiece);
  EXPECT_TRUE(text.ends_with("}\n"));
  EXPECT_EQ(refusal(box, text), "taken");
  EXPECT_EQ(exported(box), text);
}

TEST(ConfigExport, AnotherOneEndsIt) {
  TestBox box;
  std::string begin = R"({"command":"config_export","offset":0,"secrets":false})";
  Json one = Json::parse(box.command(begin));
  Json other = Json::parse(box.command(begin));
  EXPECT_EQ(one["export"], 1);
  EXPECT_EQ(other["export"], 2);
  EXPECT_EQ(
      box.command(R"({"command":"config_export","offset":1000,"export":1})"),
      R"({"ok":false,"error":"/export: 1 has ended, as another client began one; expected to begin )"
      R"(again at offset 0"})");
  EXPECT_EQ(box.command(R"({"command":"config_export","offset":1,"export":2})"),
            R"({"ok":false,"error":"/offset: is 1; expected at most 0"})");
}

TEST(ConfigExport, TakesNoMemoryAfterItsEnd) {
#ifdef OLT_TEST_SANITIZED
  GTEST_SKIP() << "the sanitizer keeps what is released";
#endif
  // So large that the allocator takes it from the system, and gives it back.
  constexpr size_t kDigits = 34 << 20;
  Bytes data(kDigits / 2);
  box::Archive archive;
  archive.bytes("data", data);
  box::ConfigurationTransfer transfer(
      {.read = [kept = archive.take()] { return kept; }, .take = {}});
  size_t before = mallinfo2().hblkhd;
  auto send = [&transfer](const Json &command) {
    std::string archived = box::from_json_text(command.dump());
    box::Archive read(archived);
    box::Archive reply;
    transfer.send(read, reply);
  };
  send({{"offset", 0}, {"secrets", true}});
  EXPECT_GT(mallinfo2().hblkhd, before + kDigits);
  size_t length = kDigits + std::string_view("{\n \"data\": \"\"\n}\n").size();
  for (size_t at = kPiece; at < length; at += kPiece) send({{"offset", at}, {"export", 1}});
  EXPECT_LT(mallinfo2().hblkhd, before + (1 << 20));
}

TEST(ConfigImport, RestoresWhatWasExported) {
  SmallPon box;
  set_things(box);
  std::string text = exported(box);
  SmallPon other;
  EXPECT_NE(exported(other), text);
  EXPECT_EQ(imported(other, text).dump(),
            R"({"ok":true,"import":1,"left_out_count":0,"left_out":[]})");
  EXPECT_EQ(exported(other), text);
  EXPECT_EQ(log_in(other, "operator", "sesame"), kOk);
  EXPECT_EQ(other.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x5A));
  EXPECT_EQ(other.reply(kGetVoiceAccount, target(1, 2, 1)), counting(kVoiceAccountSize, 1));
  // The lists decide which ONUs are up, as when they are set one by one.
  EXPECT_EQ(other.status(kListVoiceLines, target(1, 1)), kOk);
  EXPECT_EQ(other.status(kListVoiceLines, target(1, 2)), kOnuNotUp);
  // It is running, not saved.
  EXPECT_EQ(other.status(kReboot), kOk);
  EXPECT_EQ(log_in(other, "operator", "sesame"), kNotFound);
}

TEST(ConfigImport, ReplacesWhatItDoesNotHold) {
  SmallPon box;
  std::string factory = exported(box);
  set_things(box);
  EXPECT_EQ(refusal(box, factory), "taken");
  EXPECT_EQ(exported(box), factory);
  EXPECT_EQ(log_in(box, "operator", "sesame"), kNotFound);
}

TEST(ConfigImport, ChangesNothingWhenItIsRefused) {
  SmallPon box;
  set_things(box);
  const std::string text = exported(box);
  const struct {
    std::string text;
    std::string refusal;
  } kMistakes[] = {
      {"{", "1:2: is not JSON; expected string literal"},
      {"[]", "/: is an array; expected an object"},
      {"{}", "/topology: is missing"},
      {with(text, "\"configuration\"", "\"configurations\""), "/configuration: is missing"},
      {with(text, "\"system-users\"", "\"system-user\""),
       "/configuration/system-user: is unknown; expected one of system-information, "},
      {with(text, "\"sesame\"", "\"" + std::string(32, 's') + "\""),
       "/configuration/system-users/users/1/password: is not as it should be; expected a text of "
       "at "
       "most 31 bytes"},
      {with(text, "\"level_a\": 3", "\"level_a\": -3"),
       "/configuration/system-users/users/level_a: is -3; expected a number from 0"},
      {with(text, "\"1/1/2:1\": \"0102", "\"1/1/9:1\": \"0102"),
       "/configuration/ont-voice/user_account/1~11~19:1: names no part that the box has"},
      {with(text, "\"1/1/2:1\": \"0102", "\"1/1/2:1\": \"02"),
       "/configuration/ont-voice/user_account/1~11~12:1: has 79 bytes; expected 80"},
      {with(text, "\"1/1/2:1\": \"0102", "\"1/1/2:1\": \"xx02"),
       "/configuration/ont-voice/user_account/1~11~12:1: is not as it should be; expected bytes in "
       "hex"},
      {with(text, "\"mode\": 2", "\"mode\": 4"),
       "/configuration/pon-authentication/interfaces/0/mode: is 4; expected an integer from 0 to "
       "3"},
      {with(text, "\"interfaces\": 2,", "\"interfaces\": 3,"),
       R"(/topology: is another one than that of the box, {"version":1,)"},
  };
  const std::string basic = box.basic_info();
  for (const auto &mistake : kMistakes) {
    std::string line = refusal(box, mistake.text);
    EXPECT_TRUE(line.starts_with(mistake.refusal)) << line;
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_EQ(exported(box), text) << line;
  }
  EXPECT_EQ(box.basic_info(), basic);
  EXPECT_EQ(refusal(box, text), "taken");
}

TEST(ConfigImport, TakesNoCutText) {
  SmallPon box;
  set_things(box);
  const std::string text = exported(box);
  for (size_t length = 1; length + 1 < text.size(); length += 97) {
    std::string line = refusal(box, text.substr(0, length));
    EXPECT_TRUE(holds(line, "is not JSON; expected")) << length << ' ' << line;
  }
  EXPECT_EQ(exported(box), text);
}

// Each text is taken whole, or refused with one line that shows no secret.
TEST(ConfigImport, StandsAnyDamage) {
  SmallPon box;
  set_things(box);
  const std::string text = exported(box);
  std::mt19937 random(20'260'131);
  for (int i = 0; i < 1000; ++i) {
    std::string damaged = text;
    size_t at = random() % text.size();
    switch (random() % 3) {
      case 0:
        damaged[at] = static_cast<char>(random());
        break;
      case 1:
        damaged.erase(at, 1 + random() % 8);
        break;
      default:
        damaged.insert(at, 1 + random() % 3, "{}[]\",:\\0x"[random() % 10]);
    }
    std::string line = refusal(box, damaged);
    if (line == "taken") {
      EXPECT_EQ(refusal(box, text), "taken") << damaged;
    }
    EXPECT_EQ(line.find_first_of("\n\r\x1b"), std::string::npos) << line;
    for (std::string_view secret : {"sesame", "5a5a5a", "010203", "pw-1-1-1", "pw-9"}) {
      EXPECT_FALSE(holds(line, secret)) << line;
    }
    if (i % 100 == 0) {
      EXPECT_EQ(exported(box), text) << line;
    }
  }
}

TEST(ConfigImport, AMaskedSecretStaysAsItIs) {
  SmallPon box;
  set_things(box);
  const std::string text = exported(box);
  std::string masked = exported(box, false);
  EXPECT_EQ(refusal(box, masked), "taken");
  EXPECT_EQ(exported(box), text);
  // Found by its name, wherever it stands and whatever else of it changes.
  std::string changed = with(masked, "\"level_a\": 3", "\"level_a\": 9");
  changed = with(changed, "\"users\": [",
                 R"("users": [ {"name":"new","password":"x","level_a":1,"level_b":2},)");
  EXPECT_EQ(refusal(box, changed), "taken");
  EXPECT_EQ(log_in(box, "operator", "sesame"), kOk);
  EXPECT_EQ(log_in(box, "admin", "admin"), kOk);
  EXPECT_EQ(log_in(box, "new", "x"), kOk);
  EXPECT_TRUE(holds(exported(box), "\"level_a\": 9"));
}

TEST(ConfigImport, AMaskedSecretThatTheBoxLacksIsRefused) {
  SmallPon box;
  set_things(box);
  std::string masked = exported(box, false);
  SmallPon other;
  std::string factory = exported(other);
  EXPECT_EQ(
      refusal(other, masked),
      "/configuration/system-users/users/1/password: is masked; expected a text of at most 31 "
      "bytes");
  EXPECT_EQ(
      refusal(other, with(masked, "\"name\": \"operator\"", "\"name\": \"admin2\"")),
      "/configuration/system-users/users/1/password: is masked; expected a text of at most 31 "
      "bytes");
  EXPECT_EQ(exported(other), factory);
  // The right user, but another entry of the list.
  EXPECT_EQ(refusal(box, with(masked, "\"loid\": \"site-9\"", "\"loid\": \"site-8\"")),
            "/configuration/pon-authentication/interfaces/0/loid/1/password: is masked; expected a "
            "text of at most 12 bytes");
  EXPECT_EQ(refusal(box, with(masked, "\"1/1/2:1\": \"********\"", "\"1/1/2:2\": \"********\"")),
            "/configuration/ont-voice/user_account/1~11~12:2: is masked; expected bytes in hex");
  // Adopting leaves them out.
  Json reply = imported(other, masked, true);
  EXPECT_EQ(reply["ok"], true) << reply.dump();
  EXPECT_EQ(reply["left_out_count"], 4) << reply.dump();
  EXPECT_EQ(
      reply["left_out"][0]["reason"],
      "/configuration/system-users/users/1/password: is masked; expected a text of at most 31 "
      "bytes");
  EXPECT_EQ(log_in(other, "operator", "sesame"), kNotFound);
  EXPECT_EQ(log_in(other, "admin", "admin"), kOk);
}

TEST(ConfigImport, AnotherTopologyIsAdoptedOnRequest) {
  SmallPon box;
  set_things(box);
  box.status(kDescribeOnu, target_with(target(2, 4), Bytes(kOnuDescriptionSize, 'd')));
  std::string text = exported(box);
  TestBox small;
  small.options.topology_file =
      small.folder.write("small.json", R"({"pon":{"interfaces":1,"onus_per_interface":2}})");
  std::string factory = exported(small);
  EXPECT_TRUE(
      refusal(small, text).starts_with("/topology: is another one than that of the box, {"));
  EXPECT_TRUE(refusal(small, text).ends_with("; expected that one, or --adopt to keep what fits"));
  EXPECT_EQ(exported(small), factory);
  Json reply = imported(small, text, true);
  EXPECT_EQ(reply["left_out_count"], 1) << reply.dump();
  EXPECT_EQ(
      reply["left_out"].dump(),
      R"([{"reason":"/configuration/pon-link/description/1~12~14: names no part that the box )"
      R"(has"}])");
  EXPECT_EQ(log_in(small, "operator", "sesame"), kOk);
  EXPECT_EQ(exported(small).substr(0, 300), factory.substr(0, 300));
}

TEST(ConfigImport, AnotherOneEndsIt) {
  TestBox box;
  std::string begin =
      R"({"command":"config_import","offset":0,"length":10,"adopt":false,"piece":"{ "})";
  EXPECT_EQ(box.command(begin), R"({"ok":true,"import":1})");
  EXPECT_EQ(box.command(begin), R"({"ok":true,"import":2})");
  EXPECT_EQ(
      box.command(R"({"command":"config_import","offset":2,"import":1,"piece":" }"})"),
      R"({"ok":false,"error":"/import: 1 has ended, as another client began one; expected to begin )"
      R"(again at offset 0"})");
  EXPECT_EQ(box.command(R"({"command":"config_import","offset":3,"import":2,"piece":" }"})"),
            R"({"ok":false,"error":"/offset: is 3 for 2 bytes; expected 2 and at most 8 bytes"})");
  EXPECT_EQ(box.command(R"({"command":"config_import","offset":2,"import":2,"piece":"123456789"})"),
            R"({"ok":false,"error":"/offset: is 2 for 9 bytes; expected 2 and at most 8 bytes"})");
  EXPECT_EQ(box.command(R"({"command":"config_import","offset":2,"import":2,"piece":"       }"})"),
            R"({"ok":false,"error":"/topology: is missing"})");
}

TEST(ConfigImport, HasALargestLength) {
  TestBox box;
  EXPECT_EQ(
      box.command(
          R"({"command":"config_import","offset":0,"length":67108865,"adopt":false,"piece":"{"})"),
      R"({"ok":false,"error":"/length: is 67108865; expected an integer from 1 to 67108864"})");
  EXPECT_EQ(
      box.command(
          R"({"command":"config_import","offset":0,"length":67108864,"adopt":false,"piece":"{"})"),
      R"({"ok":true,"import":1})");
}

TEST(ConfigImport, NestsOnlySoDeep) {
  TestBox box;
  std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
  EXPECT_EQ(refusal(box, deep), "nests deeper than state does");
}

TEST(ConfigTransfer, ShowsNothingInTraces) {
  SmallPon box;
  set_things(box);
  std::string text = exported(box);
  box.trace.clear();
  imported(box, text);
  box.command("{\"command\":\"config_import\",\"piece\":\"sesame");
  box.command(R"({"command":"fault_list"})");
  ASSERT_GE(box.trace.size(), 3U);
  EXPECT_TRUE(holds(box.trace.front(), " control: request ")) << box.trace.front();
  EXPECT_TRUE(holds(box.trace.front(), " [**...], status 0 ok, reply ")) << box.trace.front();
  EXPECT_TRUE(holds(box.trace[box.trace.size() - 2], " [**], status 0 ok")) << box.trace.back();
  EXPECT_TRUE(holds(box.trace.back(), "request 24 [7b22636f6d6d616e64")) << box.trace.back();
}

TEST(ConfigTransfer, APasswordMayLookLikeTheMask) {
  TestBox box;
  add_user(box, "operator", "********");
  EXPECT_EQ(box.status(kSaveConfig), kOk);
  box.restart();
  EXPECT_EQ(log_in(box, "operator", "********"), kOk);
  EXPECT_EQ(refusal(box, exported(box)), "taken");
  EXPECT_EQ(log_in(box, "operator", "********"), kOk);
}

}  // namespace

}  // namespace olt::test
