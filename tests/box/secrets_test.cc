// Secrets of every kind, each a text of its own, are in the box. Nothing that somebody reads
// without asking for them shows one.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <set>

#include "base/text.h"
#include "box/state/seal.h"
#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

constexpr std::string_view kSecrets[] = {
    "USERsecret", "AUTHpw", "PAIRpw", "COMMUNITYsecret", "VOICEsecret", "SIPsecret", "PPPOEsecret",
};

Bytes filled(size_t size, std::string_view secret) {
  return record(size, {{size - secret.size(), text(secret)}});
}

void plant(TestBox &box) {
  auto expect = [&](uint32_t type, const Bytes &request) {
    EXPECT_EQ(box.status(type, request), kOk) << type;
  };
  expect(kUserAccount, record(kUserSize, {{0, word(1)},
                                          {kUserNameAt, text("operator")},
                                          {kPasswordAt, text("USERsecret")}}));
  expect(kAllowLoids, auth_entries(1, {auth_entry("", "site", "AUTHpw")}));
  expect(kAllowMacLoids, auth_entries(1, {auth_entry("020000000009", "site", "PAIRpw")}));
  // Within the bytes that a trace shows, and in one line of a dump.
  expect(kSetSnmpParam, record(kSnmpParamSize, {{16, text("COMMUNITYsecret")}}));
  expect(kSetVoiceAccount,
         target_with(target(1, 2, 1), record(kVoiceAccountSize, {{16, text("VOICEsecret")}})));
  expect(kSetSipConfig, target_with(target(1, 2), filled(kSipConfigSize, "SIPsecret")));
  expect(
      kWanConnection,
      target_with(target(1, 2), record(kWanConnectionSize,
                                       {{0, word(1)}, {4, word(1)}, {16, text("PPPOEsecret")}})));
}

/// The secrets that the text shows, as characters or in hex.
std::set<std::string_view> shown_in(const std::string &text_shown) {
  std::set<std::string_view> found;
  for (std::string_view secret : kSecrets) {
    if (holds(text_shown, secret) || holds(text_shown, to_hex(as_bytes(secret)))) {
      found.insert(secret);
    }
  }
  return found;
}

const std::set<std::string_view> kNothing;

TEST(Secrets, AreReadByTheOperationsThatReturnThem) {
  SmallPon box;
  plant(box);
  auto reply_of = [&](uint32_t type, const Bytes &request) {
    return shown_in(characters(box.reply(type, request)));
  };
  EXPECT_EQ(reply_of(kGetNextUser, record(kUserSize, {{kUserNameAt, text("admin")}})),
            std::set<std::string_view>{"USERsecret"});
  EXPECT_EQ(reply_of(kGetSnmpParam, {}), std::set<std::string_view>{"COMMUNITYsecret"});
  EXPECT_EQ(reply_of(kGetVoiceAccount, target(1, 2, 1)), std::set<std::string_view>{"VOICEsecret"});
  EXPECT_EQ(reply_of(kWanInfoRow, target(1, 2)), std::set<std::string_view>{"PPPOEsecret"});
  // These listings exist to show the settings.
  EXPECT_EQ(shown_in(box.list_target(kListSipConfig, target(1, 2))),
            std::set<std::string_view>{"SIPsecret"});
  EXPECT_EQ(shown_in(box.list_target(kListWanConnections, target(1, 2))),
            std::set<std::string_view>{"PPPOEsecret"});
}

TEST(Secrets, AreNotInOtherListings) {
  SmallPon box;
  plant(box);
  box.status(kUserAccount,
             record(kUserSize, {{kUserNameAt, text("operator")}, {kPasswordAt, text("AUTHpw")}}));
  std::set<uint32_t> show_settings = {kListVoice, kListSipConfig, kListWanConnections};
  size_t listings = 0;
  auto require_none = [&](Module module, uint32_t type, const Bytes &request, size_t name_at) {
    box::Answer answer = box.ask(module, type, request);
    if (answer.status != kOk || answer.reply.size() < name_at + kListingNameSize) return;
    ++listings;
    EXPECT_EQ(shown_in(box.listing(answer.reply, name_at)), kNothing) << type;
  };
  require_none(kMainModule, kListRunningConfig, {}, kListingNameAt);
  require_none(kMainModule, kListBasicInfo, {}, kListingNameAt);
  require_none(kLogModule, kListLog, word(0), 0);
  for (uint32_t type : {kListOnus, kListLinks, kListBlocked, kListAuth}) {
    require_none(kMainModule, type, listed_interface(1), kListingNameAt);
  }
  for (uint32_t type : {kListOnuInfo, kListOnuConfig, kListOptics, kListVoiceLines, kListFaxModes,
                        kListVoiceBinding, kListMulticastGroups}) {
    require_none(kMainModule, type, target(1, 2), 0);
  }
  EXPECT_EQ(listings, 14U);
  std::string config = box.list_target(kListOnuConfig, target(1, 2));
  EXPECT_TRUE(holds(config, "\nVoice user accounts\n1/1/2:1  **\n")) << config;
  EXPECT_TRUE(holds(config, "\nSIP settings\n1/1/2  **\n")) << config;
  EXPECT_TRUE(holds(config, "\nWAN connections\n1/1/2:1  **\n")) << config;
}

TEST(Secrets, AreNotInTraces) {
  SmallPon box;
  plant(box);
  box.reply(kGetNextUser, record(kUserSize, {{kUserNameAt, text("admin")}}));
  box.reply(kGetSnmpParam);
  box.reply(kGetVoiceAccount, target(1, 2, 1));
  box.reply(kVoiceAccountRow, target(1, 2, 1));
  box.reply(kSipConfigRow, target(1, 2));
  box.reply(kWanInfoRow, target(1, 2));
  // A wrong module or length does not reveal one either.
  box.status(kOamModule, kSetSnmpParam, record(kSnmpParamSize, {{16, text("COMMUNITYsecret")}}));
  box.status(kSetSnmpParam, record(40, {{16, text("COMMUNITYsecret")}}));
  box.status(kUserAccount, record(72, {{32, text("USERsecret")}}));
  box.status(kOamModule, kUserAccount, record(72, {{32, text("USERsecret")}}));
  // Nor do entries without the interface before them.
  for (uint32_t type : {41U, 108U, 109U, 110U, 111U, 112U, 113U}) {
    box.status(type, record(132, {{32, text("AUTHpw")}, {76, text("PAIRpw")}}));
    box.status(type, record(88, {{32, text("AUTHpw")}, {76, text("PAIRpw")}}));
  }
  box.command(R"({"command":"config_export","offset":0,"secrets":true})");
  ASSERT_EQ(box.trace.size(), 32U);
  for (const std::string &line : box.trace) EXPECT_EQ(shown_in(line), kNothing) << line;
  EXPECT_TRUE(holds(box.trace[3], "request 136 [**...], status 0")) << box.trace[3];
  EXPECT_TRUE(holds(box.trace[9], " reply 80 [**...]")) << box.trace[9];
}

TEST(Secrets, AreNotInMaskedExports) {
  SmallPon box;
  plant(box);
  std::string masked = box.command(R"({"command":"config_export","offset":0,"secrets":false})");
  EXPECT_EQ(shown_in(masked), kNothing);
  std::string all = box.command(R"({"command":"config_export","offset":0,"secrets":true})");
  EXPECT_EQ(shown_in(all).size(), std::size(kSecrets));
}

TEST(Secrets, AreNotInTheLinesAboutDamagedFiles) {
  SmallPon box;
  box.options.keep_running_state = true;
  plant(box);
  EXPECT_EQ(box.status(kSaveConfig), kOk);
  box.keep();
  box.end();
  std::mt19937 random(20'260'131);
  size_t refused = 0;
  for (const char *name : {"saved.state", "running.state"}) {
    std::string path = box.options.state_dir / name;
    const std::string sound = read_file(path);
    const std::string content(box::unseal(sound));
    EXPECT_EQ(shown_in(characters(as_bytes(content))).size(), std::size(kSecrets));
    for (int i = 0; i < 1500; ++i) {
      // Half of them with a seal that fits, so that the damage is met behind it.
      bool sealed = i % 2 == 0;
      std::string damaged = sealed ? content : sound;
      damaged[random() % damaged.size()] = static_cast<char>(random());
      write_file(path, sealed ? box::seal(damaged) : damaged);
      try {
        box.restart();
      } catch (const std::exception &error) {
        ++refused;
        EXPECT_EQ(shown_in(error.what()), kNothing) << error.what();
      }
      box.end();
    }
    write_file(path, sound);
  }
  EXPECT_GT(refused, 2000U);
}

}  // namespace

}  // namespace olt::test
