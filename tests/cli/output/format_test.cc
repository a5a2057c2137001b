#include "cli/output/format.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

#include "catalog/catalog.h"
#include "catalog/row.h"
#include "cli/text/error.h"
#include "oltplatform.h"

namespace olt::test {

namespace {

using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::cli::Call;
using olt::cli::make_csv_formatter;
using olt::cli::make_json_formatter;
using olt::cli::make_text_formatter;
using olt::cli::NamedValue;
using olt::cli::NamedValues;
using olt::cli::Result;

/// A call's result with the text of its listing.
Result shown(const Call &call, int32_t code, const std::optional<std::string> &listing,
             bool secrets) {
  Result result = olt::cli::result_of(call, code, {.secrets = secrets, .all = true});
  if (result.listing) result.listing->text = listing;
  return result;
}

std::string text_of(const Call &call, int32_t code, const std::optional<std::string> &listing = {},
                    bool secrets = false) {
  return make_text_formatter()->result(shown(call, code, listing, secrets));
}

std::string json_of(const Call &call, int32_t code, const std::optional<std::string> &listing = {},
                    bool secrets = false) {
  return make_json_formatter()->result(shown(call, code, listing, secrets));
}

std::string csv_of(const Call &call, int32_t code, const std::optional<std::string> &listing = {},
                   bool secrets = false) {
  return make_csv_formatter()->result(shown(call, code, listing, secrets));
}

std::string outputs_of(const Call &call, int32_t code) {
  return nlohmann::ordered_json::parse(json_of(call, code))["outputs"].dump();
}

int32_t reads_all_kinds(uint32_t *word, olt_mac *mac, olt_user *user, void **answer,
                        uint32_t *answer_length) {
  *word = 4294967295U;
  memcpy(mac->bytes, "\x02\x00\x5e\x10\x00\x01", 6);
  user->user_index = 3;
  strcpy(user->user_name, "bob");
  strcpy(user->user_password, "secret");
  user->level_b = 9;
  *answer = ___MALLOC(17, "reads_all_kinds", __LINE__);
  memcpy(*answer, "0123456789abcdefg", 17);
  *answer_length = 17;
  return 0;
}
constexpr auto kAllKinds = OLT_OPERATION(reads_all_kinds, 1, "", {"word", "mac", "user", "answer"});

int32_t names_a_listing(char name[32]) {
  const char unterminated[] = "0123456789012345678901234567890\x1b";
  for (size_t i = 0; i < 32; ++i) name[i] = unterminated[i];
  return 0;
}
constexpr auto kListing = OLT_OPERATION(names_a_listing, 1, "", {"name"});

int32_t reads_words(olt_uni_downrate *rates, olt_link_dba *dba, olt_onu_feature *feature) {
  *rates = {{10, 20, 4294967295U}};
  *dba = {{1, 2, 3}, {4, 5}};
  feature->words[11] = 1;
  return 0;
}
constexpr auto kWords = OLT_OPERATION(reads_words, 1, "", {"rates", "dba", "feature"});

TEST(Format, WritesWordsAsNumbers) {
  Call call(kWords);
  int32_t result = call.make();
  EXPECT_EQ(text_of(call, result),
            "rates = 10,20,4294967295\n"
            "requested = 1,2,3 kbit/s\n"
            "granted = 4,5 kbit/s\n"
            "feature = 0,0,0,0,0,0,0,0,0,0,0,1\n");
  EXPECT_EQ(outputs_of(call, result),
            R"({"rates":[10,20,4294967295],"dba":{"requested":[1,2,3],"granted":[4,5]},)"
            R"("feature":[0,0,0,0,0,0,0,0,0,0,0,1]})");
}

int32_t reads_a_row(olt_iptv_profile_row *row, olt_auth_row *words) {
  *row = {{2, 'b', 0, 0, 0, 0, 0, 0, 0, 7}};
  words->words[1] = 1;
  return 0;
}
constexpr Field kSomeFields[] = {{"first", 0, 4, FieldKind::kNumber},
                                 {"rest", 4, Field::kToTheEnd, FieldKind::kBytes}};
constexpr auto kRow = OLT_OPERATION(
    reads_a_row, 1, "", {"row", olt::catalog::laid_out("some_record", kSomeFields, "words")});

TEST(Format, WritesRecordsOfWordsByFieldWhereTheyHaveSome) {
  Call call(kRow);
  int32_t result = call.make();
  EXPECT_EQ(
      outputs_of(call, result),
      R"({"row":{"selector":"next","profile":"b","channels":7},"words":{"first":0,"rest":"01000000)" +
          std::string(104, '0') + "\"}}");
  EXPECT_EQ(text_of(call, result).substr(0, 51),
            "selector = next\nprofile = b\nchannels = 7\nfirst = 0\n");
}

constexpr Field kItem[] = {{"step", 0, 1, FieldKind::kNumber, olt::catalog::Role::kSelector},
                           {"reserved_01", 1, 1, FieldKind::kBytes, olt::catalog::Role::kReserved},
                           {"size", 2, 2, FieldKind::kNumber}};
constexpr Field kItems[] = {{.name = "items",
                             .offset = 0,
                             .width = 8,
                             .kind = FieldKind::kRecords,
                             .record_size = 4,
                             .record = kItem},
                            {"rest", 8, 52, FieldKind::kBytes, olt::catalog::Role::kReserved}};
int32_t reads_items(olt_auth_row *items) {
  items->words[0] = 0x00070102;
  return 0;
}
constexpr auto kReadsItems =
    OLT_OPERATION(reads_items, 1, "", {olt::catalog::laid_out("items", kItems, "items")});

TEST(Format, RecordsInRecordsAreShownWithoutWhatIsReservedOrSelects) {
  Call call(kReadsItems);
  int32_t result = call.make();
  EXPECT_EQ(make_text_formatter()->result(olt::cli::result_of(call, result, {})),
            "items = {size=7} {size=0}\n");
  std::string json = make_json_formatter()->result(olt::cli::result_of(call, result, {}));
  EXPECT_EQ(nlohmann::ordered_json::parse(json)["outputs"].dump(),
            R"({"items":{"items":[{"size":7},{"size":0}]}})");
  EXPECT_TRUE(
      text_of(call, result)
          .starts_with(
              "items = {step=2 reserved_01=01 size=7} {step=0 reserved_01=00 size=0}\nrest = "))
      << text_of(call, result);
}

TEST(Format, WritesALinePerOutput) {
  Call call(kAllKinds);
  int32_t result = call.make();
  EXPECT_EQ(text_of(call, result),
            "word = 4294967295\n"
            "mac = 02:00:5e:10:00:01\n"
            "user_op = look-up\n"
            "user_index = 3\n"
            "user_name = bob\n"
            "user_password = ********\n"
            "level_a = 0\n"
            "level_b = 9\n"
            "answer = 17 bytes\n"
            "  0000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  0123456789abcdef\n"
            "  0010  67                                               g\n");
}

TEST(Format, ShowsSecretsOnRequestOnly) {
  Call call(kAllKinds);
  int32_t result = call.make();
  EXPECT_NE(text_of(call, result, {}, true).find("user_password = secret\n"), std::string::npos);
  EXPECT_EQ(json_of(call, result).find("secret"), std::string::npos);
  EXPECT_NE(json_of(call, result, {}, true).find("\"user_password\":\"secret\""),
            std::string::npos);
}

TEST(Format, WritesJson) {
  Call call(kAllKinds);
  int32_t result = call.make();
  EXPECT_EQ(
      json_of(call, result),
      R"({"version":1,"operation":"reads_all_kinds","result":0,"failed":false,)"
      R"("transport":null,"status":0,"outputs":{"word":4294967295,"mac":"02:00:5e:10:00:01",)"
      R"("user":{"user_op":"look-up","user_index":3,"user_name":"bob","user_password":"********",)"
      R"("level_a":0,"level_b":9},"answer":"3031323334353637383961626364656667"},)"
      R"("listing":null})"
      "\n");
}

TEST(Format, WritesTheListingBehindItsName) {
  Call call(kListing);
  int32_t result = call.make();
  EXPECT_EQ(text_of(call, result, "one\ntwo"),
            "name = 0123456789012345678901234567890\\x1b\none\ntwo\n");
  EXPECT_EQ(json_of(call, result, "one\n\xff"),
            R"({"version":1,"operation":"names_a_listing","result":0,"failed":false,)"
            R"("transport":null,"status":0,)"
            R"("outputs":{"name":"0123456789012345678901234567890\u001b"},)"
            R"("listing":{"name":"0123456789012345678901234567890\u001b","text":"one\n)"
            "\xef\xbf\xbd\",\"title\":null,\"sections\":null}}\n");
}

TEST(Format, AFailureHasNoOutputs) {
  Call call(kListing);
  EXPECT_EQ(json_of(call, 5),
            R"({"version":1,"operation":"names_a_listing","result":5,"failed":true,)"
            R"("transport":null,"status":5,"outputs":{},"listing":null})"
            "\n");
  EXPECT_EQ(json_of(call, -1),
            R"({"version":1,"operation":"names_a_listing","result":-1,"failed":true,)"
            R"("transport":null,"status":null,"outputs":{},"listing":null})"
            "\n");
  auto lost = nlohmann::ordered_json::parse(json_of(call, 0x00030002));
  EXPECT_TRUE(lost["transport"].is_string());
  EXPECT_EQ(lost["status"], 2);
}

TEST(Format, AListingCannotCommandATerminal) {
  Call call(kListing);
  int32_t result = call.make();
  EXPECT_EQ(text_of(call, result, "a\tb\x1b[2J\x7f\r\nc\xff\xc2\x9b \xc3\xa9\n"),
            "name = 0123456789012345678901234567890\\x1b\n"
            "a\tb\\x1b[2J\\x7f\\x0d\nc\\xff\\xc2\\x9b \xc3\xa9\n");
}

TEST(Format, JsonHoldsNoControlCharacters) {
  Call call(kListing);
  int32_t result = call.make();
  std::string line = json_of(call, result, "\x1b\x7f\xc2\x9b\xc2\xa0");
  EXPECT_NE(line.find("\"text\":\"\\u001b\\u007f\\u009b\xc2\xa0\""), std::string::npos) << line;
  EXPECT_EQ(nlohmann::json::parse(line)["listing"]["text"], "\x1b\x7f\xc2\x9b\xc2\xa0");
}

NamedValue value(const char *name, FieldKind kind, const std::string &bytes) {
  Field field = {
      .name = name, .offset = 0, .width = static_cast<uint32_t>(bytes.size()), .kind = kind};
  return {field, {bytes.begin(), bytes.end()}};
}

TEST(Format, RowsAreATableOrALineEach) {
  NamedValues row = {
      value("port", FieldKind::kNumber, std::string("\x01\0\0\0", 4)),
      value("name", FieldKind::kPadded, "\x1b\xff"),
      value("bytes", FieldKind::kBytes, "\x01\xab"),
      value("words", FieldKind::kNumbers, std::string("\x0a\0\0\0\x14\0\0\0", 8)),
      value("empty", FieldKind::kPadded, ""),
  };
  auto text = make_text_formatter();
  EXPECT_EQ(text->row("reader", row), "");
  EXPECT_EQ(text->end_of_rows(),
            "port  name      bytes  words  empty\n"
            "1     \\x1b\\xff  01ab   10,20  -\n");
  EXPECT_EQ(text->end_of_rows(), "no rows\n");
  auto json = make_json_formatter();
  EXPECT_EQ(json->row("reader", row),
            R"({"version":1,"reader":"reader","row":{"port":1,"name":"\u001b)"
            "\xef\xbf\xbd"
            R"(","bytes":"01ab","words":[10,20],"empty":""}})"
            "\n");
  EXPECT_EQ(json->end_of_rows(), "");
}

TEST(Format, ALongCellIsCutBetweenCharacters) {
  auto text = make_text_formatter();
  text->row("reader", {value("name", FieldKind::kPadded, std::string(44, 'a') + "\xc3\xa9tail")});
  EXPECT_EQ(text->end_of_rows(), "name\n" + std::string(44, 'a') + "...\n");
}

constexpr char kTables[] =
    "Statistics, \x1b\n"
    "=============\n"
    "\n"
    "Link\n"
    "State  up\n"
    "\n"
    "Counters, all\n"
    "Counter  Sent\n"
    "-------  -----\n"
    "Octets   \"7\",\x1b\n";

TEST(Format, JsonHasTheTablesOfAListing) {
  Call call(kListing);
  int32_t result = call.make();
  EXPECT_EQ(nlohmann::ordered_json::parse(json_of(call, result, kTables))["listing"].dump(),
            R"({"name":"0123456789012345678901234567890\u001b",)"
            R"("text":"Statistics, \u001b\n=============\n\nLink\nState  up\n\nCounters, all\n)"
            R"(Counter  Sent\n-------  -----\nOctets   \"7\",\u001b\n",)"
            R"("title":"Statistics, \u001b","sections":[)"
            R"({"heading":"Link","columns":null,"rows":[["State","up"]]},)"
            R"({"heading":"Counters, all","columns":["Counter","Sent"],)"
            R"("rows":[{"Counter":"Octets","Sent":"\"7\",\u001b"}]}]})");
}

TEST(Format, RowsAreArraysWhereColumnsShareAName) {
  Call call(kListing);
  std::string listing = json_of(call, call.make(), "t\n=\n\nh\na  a  b\n-  -  -\n1     3\n");
  EXPECT_EQ(nlohmann::ordered_json::parse(listing)["listing"]["sections"].dump(),
            R"([{"heading":"h","columns":["a","a","b"],"rows":[["1","","3"]]}])");
}

TEST(Format, CsvHasTheTablesOfAListingBelowEachOther) {
  Call call(kListing);
  int32_t result = call.make();
  EXPECT_EQ(csv_of(call, result, kTables),
            "Link,State,up\n"
            "\n"
            "section,Counter,Sent\n"
            "\"Counters, all\",Octets,\"\"\"7\"\",\\x1b\"\n");
  EXPECT_EQ(csv_of(call, result), "") << "it could not be read";
  try {
    csv_of(call, result, "one\ntwo");
    ADD_FAILURE() << "no error";
  } catch (const cli::Error &error) {
    EXPECT_EQ(error.status(), 1);
    EXPECT_STREQ(error.what(),
                 "names_a_listing: the listing 0123456789012345678901234567890\\x1b is not made of "
                 "tables; expected --format text or json");
  }
}

TEST(Format, CsvHasALineOfNamesAndALineOfValues) {
  Call call(kAllKinds);
  int32_t result = call.make();
  EXPECT_EQ(csv_of(call, result),
            "word,mac,user_op,user_index,user_name,user_password,level_a,level_b,answer\n"
            "4294967295,02:00:5e:10:00:01,look-up,3,bob,********,0,9,"
            "3031323334353637383961626364656667\n");
  EXPECT_NE(csv_of(call, result, {}, true).find(",bob,secret,"), std::string::npos);
  EXPECT_EQ(csv_of(call, 5), "");
  Call words(kWords);
  result = words.make();
  EXPECT_EQ(csv_of(words, result),
            "rates,requested,granted,feature\n"
            "\"10,20,4294967295\",\"1,2,3 kbit/s\",\"4,5 kbit/s\",\"0,0,0,0,0,0,0,0,0,0,0,1\"\n");
}

TEST(Format, CsvOfRowsBeginsWithTheirNames) {
  NamedValue speed = value("speed", FieldKind::kNumber, std::string("\x0a\0\0\0", 4));
  speed.field.unit = "Mbit/s";
  NamedValues row = {speed, value("name", FieldKind::kPadded, "a,\"b\"\x1b"),
                     value("empty", FieldKind::kPadded, ""),
                     value("bytes", FieldKind::kBytes, std::string(60, '\xab'))};
  auto csv = make_csv_formatter();
  std::string hex;
  for (int i = 0; i < 60; ++i) hex += "ab";
  std::string line = "10,\"a,\"\"b\"\"\\x1b\",," + hex + '\n';
  EXPECT_EQ(csv->row("reader", row), "speed,name,empty,bytes\n" + line);
  EXPECT_EQ(csv->row("reader", row), line);
  EXPECT_EQ(csv->end_of_rows(), "");
  EXPECT_EQ(csv->row("reader", {speed}), "speed\n10\n");
}

TEST(Format, CsvOfARepliesTablesBelowEachOther) {
  auto csv = make_csv_formatter();
  nlohmann::ordered_json counters = {
      {"counters",
       {{"exchanges", 5},
        {"server", {{"connections", 1}}},
        {"messages", {{{"module", 2}, {"type", 12}}, {{"module", 18}, {"type", 3}}}}}}};
  EXPECT_EQ(csv->control("counters", counters),
            "exchanges,server.connections\n"
            "5,1\n"
            "\n"
            "module,type\n"
            "2,12\n"
            "18,3\n");
  EXPECT_EQ(csv->control("fault_list", {{"faults", nlohmann::ordered_json::array()}}), "");
  EXPECT_EQ(csv->control("config_import", {{"left_out", {"/a\x1b", "/b,c"}}}),
            "left_out\n"
            "/a\\x1b\n"
            "\"/b,c\"\n");
}

TEST(Format, RepliesOfTheBoxCannotCommandATerminal) {
  nlohmann::ordered_json reply = {{"counters", {{"a\x1b", "b\x1b"}}}};
  EXPECT_EQ(make_text_formatter()->control("counters", reply), "a\\x1b = b\\x1b\n");
  EXPECT_EQ(make_json_formatter()->control("counters", reply),
            R"({"version":1,"command":"counters","counters":{"a\u001b":"b\u001b"}})"
            "\n");
}

}  // namespace

}  // namespace olt::test
