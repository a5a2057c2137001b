#include "cli/input/argument_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/text.h"
#include "catalog/catalog.h"
#include "catalog/row.h"
#include "cli/text/error.h"
#include "tests/cli/program.h"

namespace olt::test {

namespace {

using olt::Bytes;
using olt::to_hex;
using olt::catalog::up_to;
using olt::cli::Call;
using olt::cli::read_arguments;
using Words = std::vector<std::string>;

std::string seen;

int32_t takes_text_and_words(const char *text, uint32_t first, uint32_t second) {
  seen = std::string(text) + "/" + std::to_string(first) + "/" + std::to_string(second);
  return 0;
}
constexpr auto kPlain =
    OLT_OPERATION(takes_text_and_words, 1, "", {up_to(5, "text"), "first", "second"});

int32_t takes_record(const olt_debug_value * /*record*/) {
  return 0;
}
constexpr auto kRecord = OLT_OPERATION(takes_record, 1, "", {"record"});

int32_t takes_two_records(const olt_debug_value * /*one*/, const olt_debug_value * /*other*/) {
  return 0;
}
constexpr auto kTwoRecords = OLT_OPERATION(takes_two_records, 1, "", {"one", "other"});

std::string plain_call(const Words &words) {
  Call call(kPlain);
  read_arguments(call, words);
  call.make();
  return seen;
}

std::string record_of(const Words &words) {
  Call call(kRecord);
  read_arguments(call, words);
  return to_hex(call.bytes(0));
}

template <typename Function>
std::string error_of(Function fn) {
  try {
    fn();
  } catch (const olt::cli::Error &error) {
    EXPECT_EQ(error.status(), 2);
    return error.what();
  }
  return "no error";
}

std::string error_for(const olt::catalog::Operation &operation, const Words &words) {
  return error_of([&] {
    Call call(operation);
    read_arguments(call, words);
  });
}

TEST(Arguments, AreTakenByPositionAndByName) {
  EXPECT_EQ(plain_call({"ab", "1", "2"}), "ab/1/2");
  EXPECT_EQ(plain_call({"second=2", "first=1", "text=ab"}), "ab/1/2");
  EXPECT_EQ(plain_call({"first=1", "ab", "2"}), "ab/1/2");
  EXPECT_EQ(plain_call({"text=a=b", "0x10", "0XfF"}), "a=b/16/255");
  EXPECT_EQ(plain_call({"", "0", "4294967295"}), "/0/4294967295");
  EXPECT_EQ(plain_call({"text=", "0xffffffff", "007"}), "/4294967295/7");
  EXPECT_EQ(plain_call({"1=2", "3", "4"}), "1=2/3/4");
}

TEST(Arguments, NumbersHaveARange) {
  EXPECT_EQ(error_for(kPlain, {"ab", "4294967296", "2"}),
            "takes_text_and_words: first: '4294967296' is too large; expected a number");
  for (const char *bad : {"0x100000000", "-1", "+1", "1.5", "", "0x", "12a", " 1"}) {
    EXPECT_EQ(error_for(kPlain, {"ab", bad, "2"}),
              "takes_text_and_words: first: '" + std::string(bad) + "' given; expected a number");
  }
}

TEST(Arguments, TextsHaveALength) {
  EXPECT_EQ(plain_call({"abcde", "1", "2"}), "abcde/1/2");
  EXPECT_EQ(error_for(kPlain, {"abcdef", "1", "2"}),
            "takes_text_and_words: text: 6 bytes given; expected text of at most 5 bytes");
}

TEST(Arguments, MustFitTheOperation) {
  EXPECT_EQ(error_for(kPlain, {"ab", "1"}),
            "takes_text_and_words: second is missing; expected a number");
  EXPECT_EQ(error_for(kPlain, {"ab", "1", "2", "3"}),
            "takes_text_and_words: '3' is one argument too many; expected: text, first, second");
  EXPECT_EQ(error_for(kPlain, {"txet=ab", "1", "2"}),
            "takes_text_and_words: there is no argument 'txet'; expected: text, first, second");
  EXPECT_EQ(error_for(kPlain, {"ab", "first=1", "first=2"}),
            "takes_text_and_words: first is given twice; expected once");
  EXPECT_EQ(error_for(*olt::catalog::find("get_olt_mac"), {"x"}),
            "get_olt_mac: 'x' is one argument too many; expected: none");
  EXPECT_EQ(error_for(*olt::catalog::find("get_olt_support_oam"), {"value=1"}),
            "get_olt_support_oam: there is no argument 'value'; expected: none");
}

TEST(Records, AreTakenAsHexOfTheirSize) {
  EXPECT_EQ(record_of({"0102030405060708090a0b0c"}), "0102030405060708090a0b0c");
  EXPECT_EQ(record_of({"record=01020304 05060708 090a0b0c"}), "0102030405060708090a0b0c");
  EXPECT_EQ(error_for(kRecord, {"010203"}),
            "takes_record: record: 3 bytes given; expected 12 bytes as HEX, @FILE or "
            "OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(error_for(kRecord, {"01020304050607080910111g"}),
            "takes_record: record: '01020304050607080910111g' is not pairs of hex digits; expected "
            "12 bytes as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]");
}

TEST(Records, AreTakenFromAFile) {
  Folder folder;
  std::string right = folder.write("right", "abcdefghijkl");
  std::string wrong = folder.write("wrong", "abcdefghijklm");
  EXPECT_EQ(record_of({"@" + right}), "6162636465666768696a6b6c");
  EXPECT_EQ(error_for(kRecord, {"record=@" + wrong}),
            "takes_record: record: 13 bytes given; expected 12 bytes as HEX, @FILE or "
            "OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(error_for(kRecord, {"@" + folder.path() + "/none"}),
            "takes_record: record: cannot read '" + folder.path() +
                "/none': No such file or directory; expected 12 bytes as HEX, @FILE or "
                "OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(error_for(kRecord, {"@" + folder.path()}),
            "takes_record: record: cannot read '" + folder.path() +
                "': Is a directory; expected 12 bytes as HEX, @FILE or "
                "OFFSET:HEX[,OFFSET:HEX...]");
}

TEST(Records, ArePatchedOntoZeros) {
  EXPECT_EQ(record_of({"4:aabb,0x0b:01"}), "00000000aabb000000000001");
  EXPECT_EQ(record_of({"record=0:ff"}), "ff0000000000000000000000");
  EXPECT_EQ(
      error_for(kRecord, {"11:0102"}),
      "takes_record: record: 2 bytes at offset 11: beyond the end of the record; expected 12 bytes "
      "as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(
      error_for(kRecord, {"4294967295:01"}),
      "takes_record: record: 1 byte at offset 4294967295: beyond the end of the record; expected "
      "12 bytes as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(error_for(kRecord, {"0:01,02"}),
            "takes_record: record: '02' has no offset; expected 12 bytes as HEX, @FILE or "
            "OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(error_for(kRecord, {"x:01"}),
            "takes_record: record: 'x' given; expected 12 bytes as HEX, @FILE or "
            "OFFSET:HEX[,OFFSET:HEX...]");
}

TEST(Records, ErrorsShowNoControlCharacters) {
  EXPECT_EQ(error_for(kRecord, {"record=8:01,\x1b[2J"}),
            "takes_record: record: '\\x1b[2J' has no offset; expected 12 bytes as HEX, @FILE or "
            "OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(error_for(kRecord, {"record=@/\x1b[2J"}),
            "takes_record: record: cannot read '/\\x1b[2J': No such file or directory; expected "
            "12 bytes as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]");
}

TEST(Records, AreTakenFieldByField) {
  EXPECT_EQ(record_of({"debug_value=0x01020304", "debug_op=5"}), "050000000000000004030201");
  EXPECT_EQ(record_of({"record.debug_op=5"}), "050000000000000000000000");
  EXPECT_EQ(record_of({"debug_op=5", "record=000000000000000000000009"}),
            "050000000000000000000009");
  EXPECT_EQ(error_for(kRecord, {}),
            "takes_record: record is missing; expected 12 bytes as HEX, @FILE or "
            "OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(error_for(kRecord, {"debug=1"}),
            "takes_record: there is no argument 'debug'; expected: record, debug_op, reserved_04, "
            "debug_value");
  EXPECT_EQ(error_for(kRecord, {"debug_op=1", "record.debug_op=2"}),
            "takes_record: debug_op is given twice; expected once");
}

TEST(Records, AreTakenAsJson) {
  EXPECT_EQ(record_of({R"({"debug_op":"write","debug_value":7})"}), "010000000000000007000000");
  EXPECT_EQ(record_of({R"(record={"debug_value":7})", "debug_op=5"}), "050000000000000007000000");
  EXPECT_EQ(record_of({"\"01020304 05060708 090a0b0c\""}), "0102030405060708090a0b0c");
  EXPECT_EQ(error_for(kRecord, {R"({"debug_op":"write","size":7})"}),
            "takes_record: record: there is no field 'size'; expected: debug_op, reserved_04, "
            "debug_value");
  EXPECT_EQ(error_for(kRecord, {R"({"debug_op":"wriet"})"}),
            "takes_record: debug_op: 'wriet' given; expected read, write, or a number");
  EXPECT_EQ(error_for(kRecord, {R"({"debug_op":)"}),
            "takes_record: record: is no object in JSON; expected one with the record's fields");
}

TEST(Records, ThatHaveAFieldOfTheirNameAreTakenAsJson) {
  Call call(*olt::catalog::find("set_rstp_port_config"));
  Words words = {R"(port={"slot":1,"port":2,"edge":"yes"})"};
  read_arguments(call, words);
  EXPECT_EQ(to_hex(call.bytes(0).first(16)), "01000000020000000000000000000100");
}

TEST(Records, KeepASecretThatIsMasked) {
  Call call(*olt::catalog::find("set_snmp_param"));
  Words words = {R"({"read_community":"********","trap_community":"abc"})"};
  read_arguments(call, words);
  EXPECT_FALSE(call.is_given(0, 0, 32));
  EXPECT_FALSE(call.is_given(0, 32, 32));
  EXPECT_TRUE(call.is_given(0, 64, 32));
}

TEST(Lists, InJsonAreChecked) {
  const auto &add = *olt::catalog::find("add_vlan_list");
  EXPECT_TRUE(error_for(add, {R"([{"first":10},{"first":5,"last":4}])"})
                  .starts_with("add_vlan_list: vlans: item 2: '5-4' ends before it begins; "));
  EXPECT_TRUE(error_for(add, {R"([{"first":0}])"})
                  .starts_with("add_vlan_list: vlans: item 1: '0' is not a VLAN id; "));
  EXPECT_TRUE(error_for(add, {R"([{"id":7}])"})
                  .starts_with("add_vlan_list: vlans: there is no field 'id'; "));
}

TEST(Records, OfOneCallAreToldApart) {
  Call call(kTwoRecords);
  Words words = {"one.debug_op=1", "other.debug_value=2"};
  read_arguments(call, words);
  EXPECT_EQ(to_hex(call.bytes(0)), "010000000000000000000000");
  EXPECT_EQ(to_hex(call.bytes(1)), "000000000000000002000000");
  EXPECT_EQ(error_for(kTwoRecords, {"debug_op=1"}),
            "takes_two_records: debug_op is a field of several records; expected one.debug_op or "
            "other.debug_op");
}

TEST(Records, FieldsHaveTheirRanges) {
  const auto &next_user = *olt::catalog::find("get_system_next_user");
  const auto &switch_debug = *olt::catalog::find("process_switchdebug_value");
  EXPECT_EQ(error_for(next_user, {"user_name=12345678901234567890123456789012"}),
            "get_system_next_user: user_name: 32 bytes given; expected text of at most 31 bytes");
  EXPECT_EQ(
      error_for(switch_debug, {"debug_value=65536"}),
      "process_switchdebug_value: debug_value: '65536' is too large; expected a number from 0 to "
      "65535");
  EXPECT_EQ(error_for(switch_debug, {"reserved_1a=01"}),
            "process_switchdebug_value: reserved_1a: 1 byte given; expected 2 bytes as HEX");

  Call call(switch_debug);
  Words words = {"debug_value=65535", "reserved_1a=0a0b", "debug_op=1"};
  read_arguments(call, words);
  EXPECT_EQ(to_hex(call.bytes(0)),
            "01000000"
            "0000000000000000000000000000000000000000"
            "ffff0a0b");
}

TEST(Records, ATextFieldReplacesAllOfAnEarlierText) {
  Call call(*olt::catalog::find("get_system_next_user"));
  Words words = {"user=8:6161616161", "user_name=b"};
  read_arguments(call, words);
  EXPECT_EQ(to_hex(call.bytes(0).subspan(8, 6)), "620000000000");
}

TEST(Streams, AreTakenAsHexOrFromAFile) {
  const auto &stream = *olt::catalog::find("do_handle_epon_updatestream");
  EXPECT_EQ(error_for(stream, {}),
            "do_handle_epon_updatestream: request is missing; expected bytes as HEX or "
            "@FILE: total, offset, image");
  EXPECT_EQ(
      error_for(stream, {"request=xyz"}),
      "do_handle_epon_updatestream: request: 'xyz' is not pairs of hex digits; expected bytes "
      "as HEX or @FILE: total, offset, image");
  EXPECT_EQ(error_for(stream, {"request="}), "no error");
  EXPECT_EQ(
      error_for(stream, {"request=@/dev/zero"}),
      "do_handle_epon_updatestream: request: cannot read '/dev/zero': File too large; expected "
      "bytes as HEX or @FILE: total, offset, image");
}

}  // namespace

}  // namespace olt::test
