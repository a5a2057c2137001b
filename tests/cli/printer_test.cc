#include "cli/printer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "catalog/catalog.h"
#include "catalog/row.h"
#include "oltplatform.h"

namespace {

using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::cli::as_json;
using olt::cli::as_text;
using olt::cli::Call;
using olt::cli::json_line;

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

TEST(Printer, WritesWordsAsNumbers) {
  Call call(kWords);
  int32_t result = call.make();
  EXPECT_EQ(as_text({call, result, {}, false}),
            "rates = 10,20,4294967295\n"
            "requested = 1,2,3\n"
            "granted = 4,5\n"
            "feature = 48 bytes\n"
            "  0000  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................\n"
            "  0010  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................\n"
            "  0020  00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00  ................\n");
  EXPECT_EQ(as_json({call, result, {}, false})["outputs"].dump(),
            R"({"rates":[10,20,4294967295],"dba":{"requested":[1,2,3],"granted":[4,5]},)"
            R"("feature":[0,0,0,0,0,0,0,0,0,0,0,1]})");
}

int32_t reads_a_row(olt_iptv_profile_row *row, olt_auth_row *words) {
  *row = {{2, 'b', 0, 0, 0, 0, 0, 0, 0, 7}};
  words->words[1] = 1;
  return 0;
}
constexpr Field kSomeFields[] = {{"first", 0, 4, FieldKind::kWord},
                                 {"rest", 4, Field::kToTheEnd, FieldKind::kBytes}};
constexpr auto kRow =
    OLT_OPERATION(reads_a_row, 1, "", {"row", olt::catalog::laid_out(kSomeFields, "words")});

TEST(Printer, WritesRecordsOfWordsByFieldWhereTheyHaveSome) {
  Call call(kRow);
  int32_t result = call.make();
  EXPECT_EQ(
      as_json({call, result, {}, false})["outputs"].dump(),
      R"({"row":{"selector":2,"profile":"b","channels":7},"words":{"first":0,"rest":"01000000)" +
          std::string(104, '0') + "\"}}");
  EXPECT_EQ(as_text({call, result, {}, false}).substr(0, 48),
            "selector = 2\nprofile = b\nchannels = 7\nfirst = 0\n");
}

TEST(Printer, WritesALinePerOutput) {
  Call call(kAllKinds);
  int32_t result = call.make();
  EXPECT_EQ(as_text({call, result, {}, false}),
            "word = 4294967295\n"
            "mac = 02 00 5e 10 00 01\n"
            "user_op = 0\n"
            "user_index = 3\n"
            "user_name = bob\n"
            "user_password = ********\n"
            "level_a = 0\n"
            "level_b = 9\n"
            "answer = 17 bytes\n"
            "  0000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  0123456789abcdef\n"
            "  0010  67                                               g\n");
}

TEST(Printer, ShowsSecretsOnRequestOnly) {
  Call call(kAllKinds);
  int32_t result = call.make();
  EXPECT_NE(as_text({call, result, {}, true}).find("user_password = secret\n"), std::string::npos);
  EXPECT_EQ(json_line(as_json({call, result, {}, false})).find("secret"), std::string::npos);
  EXPECT_NE(json_line(as_json({call, result, {}, true})).find("\"user_password\":\"secret\""),
            std::string::npos);
}

TEST(Printer, WritesJson) {
  Call call(kAllKinds);
  int32_t result = call.make();
  EXPECT_EQ(json_line(as_json({call, result, {}, false})),
            R"({"version":1,"operation":"reads_all_kinds","result":0,"failed":false,)"
            R"("transport":null,"status":0,"outputs":{"word":4294967295,"mac":"02005e100001",)"
            R"("user":{"user_op":0,"user_index":3,"user_name":"bob","user_password":"********",)"
            R"("level_a":0,"level_b":9},"answer":"3031323334353637383961626364656667"},)"
            R"("listing":null})"
            "\n");
}

TEST(Printer, WritesTheListingBehindItsName) {
  Call call(kListing);
  int32_t result = call.make();
  EXPECT_EQ(as_text({call, result, "one\ntwo", false}),
            "name = 0123456789012345678901234567890\\x1b\none\ntwo\n");
  EXPECT_EQ(json_line(as_json({call, result, "one\n\xff", false})),
            R"({"version":1,"operation":"names_a_listing","result":0,"failed":false,)"
            R"("transport":null,"status":0,)"
            R"("outputs":{"name":"0123456789012345678901234567890\u001b"},)"
            R"("listing":{"name":"0123456789012345678901234567890\u001b","text":"one\n)"
            "\xef\xbf\xbd\"}}\n");
}

TEST(Printer, AFailureHasNoOutputs) {
  Call call(kListing);
  EXPECT_EQ(json_line(as_json({call, 5, {}, false})),
            R"({"version":1,"operation":"names_a_listing","result":5,"failed":true,)"
            R"("transport":null,"status":5,"outputs":{},"listing":null})"
            "\n");
  EXPECT_EQ(json_line(as_json({call, -1, {}, false})),
            R"({"version":1,"operation":"names_a_listing","result":-1,"failed":true,)"
            R"("transport":null,"status":null,"outputs":{},"listing":null})"
            "\n");
  auto lost = as_json({call, 0x00030002, {}, false});
  EXPECT_TRUE(lost["transport"].is_string());
  EXPECT_EQ(lost["status"], 2);
}

}  // namespace
