// The archive, its readable form, and the seal of state files.

#include "box/state/archive.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>
#include <vector>

#include "base/bad_input.h"
#include "base/clock.h"
#include "base/text.h"
#include "box/state/json_form.h"
#include "box/state/seal.h"

namespace olt::test {

namespace {

using namespace std::string_literals;
using box::Archive;
using box::from_json_text;
using box::seal;
using box::Secrets;
using box::to_json_text;
using box::unseal;

struct Account {
  std::string name;
  std::string password;
  uint32_t level = 0;
};

struct Kept {
  std::vector<Account> accounts;
  std::array<uint8_t, 3> record{};
  bool is_on = false;
  uint16_t count = 0;
  TimePoint since{};
  std::map<std::string, Bytes> rows;
};

void describe(Archive &archive, Kept &kept) {
  archive.list("accounts", kept.accounts, 3, [&](Account &account) {
    archive.text("name", account.name, 4);
    archive.text("password", account.password, 8);
    archive.number("level", account.level, {1, 15});
  });
  archive.bytes("record", kept.record);
  archive.object("more", [&] {
    archive.flag("on", kept.is_on);
    if (archive.has("count")) archive.number("count", kept.count);
    archive.moment("since", kept.since);
  });
  archive.entries(
      "rows",
      [&] {
        for (const auto &[name, value] : kept.rows) archive.entry(name, value);
      },
      [&](std::string_view name, ByteView value) {
        if (value.empty()) throw BadInput("has no bytes; expected some");
        kept.rows.emplace(name, Bytes(value.begin(), value.end()));
      });
}

Kept sample() {
  Kept kept;
  kept.accounts = {{"ad\xFFn", "pass\0rd"s, 1}, {"", "", 15}};
  kept.record = {0, 0x1B, 0xFF};
  kept.is_on = true;
  kept.count = 65'535;
  kept.since = TimePoint(std::chrono::milliseconds(1'769'860'800'123));
  kept.rows = {{"1/2/3", {1, 2}}, {"1/2/3:4", {0xAB}}};
  return kept;
}

std::string written(Kept kept) {
  Archive archive;
  describe(archive, kept);
  return archive.take();
}

Kept read(const std::string &data) {
  Archive archive(data);
  Kept kept;
  describe(archive, kept);
  archive.finish();
  return kept;
}

/// Why the text is refused; empty when it is not.
std::string refusal(std::string_view json) {
  try {
    read(from_json_text(json));
    return "";
  } catch (const BadInput &error) {
    return error.what();
  }
}

const std::string kReadable = R"({
 "accounts": [
  {
   "name": "adÿn",
   "password": "pass\u0000rd",
   "level": 1
  },
  {
   "name": "",
   "password": "",
   "level": 15
  }
 ],
 "record": "001bff",
 "more": {
  "on": true,
  "count": 65535,
  "since": 1769860800123
 },
 "rows": {
  "1/2/3": "0102",
  "1/2/3:4": "ab"
 }
}
)";

/// The readable form with the first such text in it replaced.
std::string with(std::string_view text, std::string_view replacement) {
  std::string changed = kReadable;
  changed.replace(changed.find(text), text.size(), replacement);
  return changed;
}

TEST(Archive, IsReadBackAsItWasWritten) {
  Kept kept = read(written(sample()));
  ASSERT_EQ(kept.accounts.size(), 2U);
  EXPECT_EQ(kept.accounts[0].name, "ad\xFFn");
  EXPECT_EQ(kept.accounts[0].password, "pass\0rd"s);
  EXPECT_EQ(kept.accounts[0].level, 1U);
  EXPECT_EQ(kept.accounts[1].level, 15U);
  EXPECT_EQ(kept.record, (std::array<uint8_t, 3>{0, 0x1B, 0xFF}));
  EXPECT_TRUE(kept.is_on);
  EXPECT_EQ(kept.count, 65'535U);
  EXPECT_EQ(kept.since.time_since_epoch(), std::chrono::milliseconds(1'769'860'800'123));
  EXPECT_EQ(kept.rows, sample().rows);
}

TEST(Archive, HasAReadableForm) {
  EXPECT_EQ(to_json_text(written(sample()), Secrets::kShown), kReadable);
  EXPECT_EQ(to_json_text(written(read(from_json_text(kReadable))), Secrets::kShown), kReadable);
}

TEST(Archive, ItsReadableFormCannotCommandATerminal) {
  Archive archive;
  std::string name = "a\x7f\x9b\xa0\xff";
  archive.text("name", name, 5);
  const std::string data = archive.take();
  std::string text = box::to_json_text(data, box::Secrets::kShown);
  EXPECT_EQ(text, "{\n \"name\": \"a\\u007f\\u009b\xc2\xa0\xc3\xbf\"\n}\n");
  EXPECT_EQ(box::from_json_text(text), data);
}

TEST(Archive, MasksSecretsUnlessAskedForThem) {
  std::string masked = to_json_text(written(sample()), Secrets::kMasked);
  EXPECT_EQ(masked.find("pass\\u0000rd"), std::string::npos);
  EXPECT_NE(masked.find(R"("password": "********")"), std::string::npos);
  EXPECT_EQ(refusal(masked), "/accounts/0/password: is masked; expected a text of at most 8 bytes");
}

TEST(Archive, TakesMembersInAnyOrder) {
  EXPECT_EQ(refusal(R"({"rows":{},"more":{"since":0,"on":false},"record":"010203","accounts":[]})"),
            "");
}

TEST(Archive, SaysWhereAndWhatIsWrong) {
  const struct {
    std::string json;
    std::string refusal;
  } kMistakes[] = {
      {with("\"level\": 15", "\"level\": 16"),
       "/accounts/1/level: is 16; expected an integer from 1 to 15"},
      {with("\"level\": 1\n", "\"level\": \"1\"\n"),
       "/accounts/0/level: is \"1\"; expected an integer from 1 to 15"},
      {with("\"adÿn\"", "\"admin\""),
       "/accounts/0/name: is \"admin\"; expected a text of at most 4 bytes"},
      {with("\"adÿn\"", "\"a€\""),
       R"(/accounts/0/name: is "a\xe2\x82\xac"; expected a text of at most 4 bytes)"},
      {with("pass\\u0000rd", "much too long"),
       "/accounts/0/password: is not as it should be; expected a text of at most 8 bytes"},
      {with("\"pass\\u0000rd\"", "-12345"),
       "/accounts/password: is not as it should be; expected a number from 0"},
      {with("001bff", "001b"), "/record: is \"001b\"; expected 3 bytes in hex"},
      {with("\"on\": true", "\"on\": 1"), "/more/on: is 1; expected true or false"},
      {with("  \"on\": true,\n", ""), "/more/on: is missing"},
      {with("\"on\"", "\"off\": 1, \"on\""),
       "/more/off: is unknown; expected one of on, count, since"},
      {with("\"on\"", "\"on\": true, \"on\""), "/more/on: is given twice; expected once"},
      {with("\"ab\"", "\"\""), "/rows/1~12~13:4: has no bytes; expected some"},
      {with("\"ab\"", "7"), "/rows/1~12~13:4: is 7; expected bytes in hex"},
      {with("65535", "65536"), "/more/count: is 65536; expected an integer from 0 to 65535"},
      {with("65535", "-1"), "/more/count: is -1; expected a number from 0"},
      {with("65535", "1.5"), "/more/count: is 1.5; expected an integer"},
      {with("65535", "null"),
       "/more/count: is null; expected a number, a text, true, false, or what holds them"},
      {with("\"rows\": {", "\"rows\": ["), "21:10: is not JSON; expected ']'"},
      {"[]", "/: is an array; expected an object"},
      {"{} {}", "1:4: is not JSON; expected end of input"},
      {R"({"accounts":[{},{},{},{}]})", "/accounts/0/name: is missing"},
  };
  for (const auto &mistake : kMistakes) EXPECT_EQ(refusal(mistake.json), mistake.refusal);
}

TEST(Archive, LimitsTheLengthOfLists) {
  std::string account = R"({"name":"a","password":"","level":1})";
  std::string list = account + ',' + account + ',' + account;
  std::string rest = R"(],"record":"010203","more":{"on":true,"since":0},"rows":{}})";
  EXPECT_EQ(refusal(R"({"accounts":[)" + list + rest), "");
  EXPECT_EQ(refusal(R"({"accounts":[)" + list + ',' + account + rest),
            "/accounts/3: is one too many; expected at most 3 elements");
}

TEST(Archive, LeavesOutWhatDoesNotFitWhenItAdopts) {
  std::string data = from_json_text(with("\"level\": 15", "\"level\": 16"));
  Archive archive(data);
  archive.adopt();
  Kept kept;
  describe(archive, kept);
  archive.finish();
  EXPECT_EQ(kept.accounts.size(), 1U);
  EXPECT_EQ(kept.rows.size(), 2U);
  EXPECT_EQ(
      archive.left_out(),
      (std::vector<std::string>{"/accounts/1/level: is 16; expected an integer from 1 to 15"}));
}

TEST(Archive, RefusesAnyCutAndNeverReadsBeyond) {
  std::string data = written(sample());
  for (size_t length = 0; length < data.size(); ++length) {
    std::string cut = data.substr(0, length);
    EXPECT_THROW(read(cut), BadInput) << length;
    EXPECT_THROW(to_json_text(cut, Secrets::kShown), BadInput) << length;
  }
}

TEST(Archive, NestsOnlySoDeep) {
  std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
  EXPECT_THROW(to_json_text(from_json_text(deep), Secrets::kShown), BadInput);
}

TEST(Seal, LooksAsDocumented) {
  std::string sealed = seal("abc");
  EXPECT_EQ(sealed.substr(0, 23), "OLTSTATE\1\0\0\0\3\0\0\0\0\0\0\0abc"s);
  EXPECT_EQ(sealed.size(), 27U);
  EXPECT_EQ(unseal(sealed), "abc");
  EXPECT_EQ(unseal(seal("")), "");
}

TEST(Seal, EndsWithCrc32c) {
  // Computed a bit at a time, which takes no table.
  std::string sealed = seal("123456789");
  uint32_t sum = UINT32_MAX;
  for (size_t i = 0; i < sealed.size() - 4; ++i) {
    sum ^= static_cast<uint8_t>(sealed[i]);
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? 0x82F63B78U : 0U);
  }
  sum = ~sum;
  std::string expected;
  for (int shift = 0; shift < 32; shift += 8) expected += static_cast<char>(sum >> shift);
  EXPECT_EQ(sealed.substr(sealed.size() - 4), expected);
}

TEST(Seal, ReportsEachFlippedBitAndEachCut) {
  std::string sealed = seal(written(sample()));
  for (size_t bit = 0; bit < sealed.size() * 8; ++bit) {
    std::string damaged = sealed;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ 1 << bit % 8);
    EXPECT_THROW(unseal(damaged), BadInput) << bit;
  }
  for (size_t length = 0; length < sealed.size(); ++length) {
    EXPECT_THROW(unseal(std::string_view(sealed).substr(0, length)), BadInput) << length;
  }
  EXPECT_THROW(unseal(sealed + '\0'), BadInput);
  EXPECT_THROW(unseal(sealed + sealed), BadInput);
}

TEST(Seal, SaysWhatIsWrong) {
  auto refusal_of = [](std::string_view file) -> std::string {
    try {
      unseal(file);
      return "";
    } catch (const BadInput &error) {
      return error.what();
    }
  };
  std::string sealed = seal("abc");
  EXPECT_EQ(refusal_of(""), "is empty; expected saved state");
  EXPECT_EQ(refusal_of("{\"format\":"), "is damaged or no state file: it does not begin as one");
  EXPECT_EQ(refusal_of("OLTST"), "is damaged: it is cut off");
  EXPECT_EQ(refusal_of(sealed + "d"), "is damaged: it has 4 bytes; expected 3 by its head");
  sealed[20] = 'A';
  EXPECT_EQ(refusal_of(sealed), "is damaged: its checksum does not match");
}

}  // namespace

}  // namespace olt::test
