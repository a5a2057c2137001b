#include "cli/call/call.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "base/text.h"
#include "catalog/row.h"
#include "cli/call/result_text.h"
#include "oltmgmt.h"
#include "oltplatform.h"

namespace olt::test {

namespace {

using olt::Bytes;
using olt::catalog::in_out;
using olt::catalog::up_to;
using olt::cli::Call;
using olt::cli::describe_result;

std::string seen;

int32_t takes_inputs(const char *text, uint32_t word, const olt_debug_value *record,
                     const void *data, uint32_t length) {
  seen = std::string(text) + "/" + std::to_string(word) + "/" +
         std::to_string(record->debug_value) + "/" +
         std::string(static_cast<const char *>(data), length);
  return 7;
}

int32_t fills_outputs(uint32_t *word, char name[32], olt_mac *mac, void **answer,
                      uint32_t *answer_length) {
  *word = 0xFFFFFFFF;
  memset(name, 'n', 32);
  memcpy(mac->bytes, "\x02\x00\x5e\x10\x00\x01", 6);
  *answer = ___MALLOC(3, "fills_outputs", __LINE__);
  memcpy(*answer, "xyz", 3);
  *answer_length = 3;
  return 0;
}

int32_t overruns_its_record(olt_user *user) {
  memset(user->user_name, 'A', 4);
  char *text = reinterpret_cast<char *>(user) + 40;
  for (size_t i = 0; i < 65'000; ++i) text[i] = 'P';
  return 0;
}

TEST(Call, HandsInputsToTheirParameters) {
  static constexpr auto kRow =
      OLT_OPERATION(takes_inputs, 1, "", {up_to(5, "text"), "word", "record", "data"});
  Call call(kRow);
  call.set_bytes(0, 0, Bytes{'a', 'b', 'c'});
  call.set_bytes(1, 0, Bytes{0xFF, 0xFF, 0xFF, 0xFF});
  call.set_bytes(2, 8, Bytes{0x10, 0x00, 0x00, 0x00});
  call.set_stream(3, Bytes{'h', 'i'});
  EXPECT_EQ(call.make(), 7);
  EXPECT_EQ(seen, "abc/4294967295/16/hi");
}

TEST(Call, InputsStartAsZerosAndEmptyTexts) {
  static constexpr auto kRow =
      OLT_OPERATION(takes_inputs, 1, "", {up_to(5, "text"), "word", "record", "data"});
  Call call(kRow);
  EXPECT_EQ(call.make(), 7);
  EXPECT_EQ(seen, "/0/0/");
}

TEST(Call, HoldsOutputsAndReleasesTheBlock) {
  static constexpr auto kRow =
      OLT_OPERATION(fills_outputs, 1, "", {"word", "name", "mac", "answer"});
  Call call(kRow);
  EXPECT_EQ(call.bytes(3).size(), 0U);
  EXPECT_EQ(call.make(), 0);
  EXPECT_EQ(olt::to_hex(call.bytes(0)), "ffffffff");
  EXPECT_EQ(call.bytes(1).size(), 32U);
  EXPECT_EQ(olt::to_hex(call.bytes(2)), "02005e100001");
  EXPECT_EQ(olt::to_hex(call.bytes(3)), "78797a");
}

TEST(Call, SurvivesATextThatRunsOverItsRecord) {
  static constexpr auto kRow = OLT_OPERATION(overruns_its_record, 1, "", {in_out("user")});
  Call call(kRow);
  EXPECT_EQ(call.make(), 0);
  ASSERT_EQ(call.bytes(0).size(), 80U);
  EXPECT_EQ(call.bytes(0)[79], 'P');
}

TEST(Result, IsTakenApart) {
  EXPECT_EQ(describe_result(5), "result 5 (0x00000005): status 5 (oltbox: exists already)");
  EXPECT_EQ(describe_result(4), "result 4 (0x00000004): status 4 (oltbox: not found)");
  EXPECT_EQ(describe_result(0xFFFF),
            "result 65535 (0x0000ffff): status 65535 (oltbox: unknown status)");
  EXPECT_EQ(describe_result(-1), "result -1 (0xffffffff): the request could not be built");
  std::string timed_out = describe_result(0x00010000);
  EXPECT_EQ(timed_out.substr(0, 28), "result 65536 (0x00010000): n");
  EXPECT_EQ(timed_out.find("status"), std::string::npos);
  std::string both = describe_result(0x00030007);
  EXPECT_EQ(both.substr(0, 28), "result 196615 (0x00030007): ");
  EXPECT_EQ(both.substr(both.size() - 27), ", status 7 (oltbox: denied)");
}

}  // namespace

}  // namespace olt::test
