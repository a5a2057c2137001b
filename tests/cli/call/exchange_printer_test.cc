#include "cli/call/exchange_printer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "catalog/catalog.h"

namespace olt::test {

namespace {

using olt::cli::trace_text;

olt_exchange exchange(uint32_t type, const std::string &request, const std::string &reply) {
  olt_exchange made{};
  made.module = 2;
  made.message_type = type;
  made.request = request.data();
  made.request_length = static_cast<uint32_t>(request.size());
  made.reply = reply.data();
  made.reply_length = static_cast<uint16_t>(reply.size());
  made.elapsed_ns = 1'234'567;
  return made;
}

TEST(Trace, ShowsBothWaysByteByByte) {
  EXPECT_EQ(trace_text(exchange(12, "ab", "\x02\x01")),
            "> type 12 to module 2, 2 bytes\n"
            "  0000  61 62                                            ab\n"
            "< status 0, 2 bytes after 1.235 ms\n"
            "  0000  02 01                                            ..\n");
}

TEST(Trace, NamesTheFieldsOfAnOperation) {
  const auto *sets = olt::catalog::find("set_port_enable");
  std::string request = std::string("\x01\0\0\0\x02\0\0\0", 8) + std::string(72, '\0');
  std::string text = trace_text(exchange(14, request, ""), {}, sets);
  EXPECT_NE(text.find("\n  slot=1 port=2 sfp_module=0 port_enable=off link_speed=0 Mbit/s "),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(" max_link=0\n< status 0, 0 bytes after"), std::string::npos) << text;

  const auto *reads = olt::catalog::find("get_card_updatestatus");
  text = trace_text(exchange(61, "", std::string("\x2a\0\0\0", 4)), {}, reads);
  EXPECT_TRUE(text.ends_with("\n  value=42 %\n")) << text;
}

TEST(Trace, NamesNoFieldWithASecret) {
  std::string user(80, '\0');
  user.replace(8, 3, "bob").replace(40, 3, "SSS");
  const auto *adds = olt::catalog::find("add_user_level");
  std::string text = trace_text(exchange(10, user, ""), {}, adds);
  EXPECT_NE(text.find(" user_name=bob user_password=** level_a=0"), std::string::npos) << text;

  std::string entries = std::string(80, '\0') + std::string(44, 'S');
  const auto *allows = olt::catalog::find("add_authallowed_loid");
  text = trace_text(exchange(110, entries, ""), olt::catalog::wire_secrets(), allows);
  EXPECT_NE(text.find(" entries=**\n"), std::string::npos) << text;
}

TEST(Trace, ShowsHowAnExchangeFailed) {
  olt_exchange refused = exchange(7, "", "");
  refused.no_reply = 1;
  refused.status = 5;
  EXPECT_EQ(trace_text(refused), "> type 7 to module 2, 0 bytes\n< status 5 after 1.235 ms\n");
  olt_exchange timed_out = exchange(7, "", "");
  timed_out.result = 0x00010000;
  timed_out.status = 77;
  std::string text = trace_text(timed_out);
  EXPECT_EQ(text.find("status"), std::string::npos);
  EXPECT_EQ(text.substr(0, 32), "> type 7 to module 2, 0 bytes\n< ");
}

TEST(Trace, MasksPiecesOfAConfiguration) {
  std::string text = trace_text(exchange(1, R"({"a":1,"piece":"SS)", R"({"piece":"SSSS"})"));
  EXPECT_EQ(text,
            "> type 1 to module 2, 18 bytes\n"
            "  0000  7b 22 61 22 3a 31 2c 22 70 69 65 63 65 22 3a 22  {\"a\":1,\"piece\":\"\n"
            "  0010  ** **                                            **\n"
            "< status 0, 16 bytes after 1.235 ms\n"
            "  0000  7b 22 70 69 65 63 65 22 3a 22 ** ** ** ** ** **  {\"piece\":\"******\n");
}

TEST(Trace, MasksPasswordsBothWays) {
  std::string record(80, 'x');
  record.replace(40, 32, 32, 'S');
  for (uint32_t type : {10U, 62U, 63U}) {
    std::string text = trace_text(exchange(type, record, record));
    EXPECT_EQ(text.find('S'), std::string::npos);
    EXPECT_EQ(text.find("53"), std::string::npos);
    EXPECT_NE(
        text.find("  0020  78 78 78 78 78 78 78 78 ** ** ** ** ** ** ** **  xxxxxxxx********\n"
                  "  0030  ** ** ** ** ** ** ** ** ** ** ** ** ** ** ** **  ****************\n"
                  "  0040  ** ** ** ** ** ** ** ** 78 78 78 78 78 78 78 78  ********xxxxxxxx\n"),
        std::string::npos);
  }
  EXPECT_NE(trace_text(exchange(58, record, record)).find("SSSSSSSS"), std::string::npos);
}

TEST(Trace, MasksSnmpCommunitiesBothWays) {
  std::string record = std::string(96, 'S') + std::string(40, 'x');
  for (uint32_t type : {56U, 57U}) {
    std::string text = trace_text(exchange(type, record, record));
    EXPECT_EQ(text.find('S'), std::string::npos) << text;
    EXPECT_EQ(text.find(" 53"), std::string::npos) << text;
    EXPECT_NE(
        text.find("  0050  ** ** ** ** ** ** ** ** ** ** ** ** ** ** ** **  ****************\n"
                  "  0060  78 78 78 78 78 78 78 78 78 78 78 78 78 78 78 78  xxxxxxxxxxxxxxxx\n"),
        std::string::npos)
        << text;
  }
}

TEST(Trace, MasksThePasswordOfEachEntryWithAndWithoutAHead) {
  std::string entries;
  for (int i = 0; i < 3; ++i) entries += std::string(32, 'e') + std::string(12, 'S');
  for (uint32_t type : {41U, 108U, 109U, 110U, 111U, 112U, 113U}) {
    std::string text = trace_text(exchange(type, std::string(80, 'h') + entries, entries));
    EXPECT_EQ(text.find('S'), std::string::npos) << text;
    EXPECT_EQ(text.find(" 53"), std::string::npos) << text;
    EXPECT_NE(text.find("  0060  65 65 65 65 65 65 65 65 65 65 65 65 65 65 65 65  "
                        "eeeeeeeeeeeeeeee\n"
                        "  0070  ** ** ** ** ** ** ** ** ** ** ** ** "),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("  0020  ** ** ** ** ** ** ** ** ** ** ** ** 65 65 65 65  "
                        "************eeee\n"),
              std::string::npos)
        << text;
  }
}

TEST(Trace, CutsWhatIsLong) {
  std::string text = trace_text(exchange(11, std::string(1000, 'a'), ""));
  EXPECT_NE(text.find("> type 11 to module 2, 1000 bytes\n"), std::string::npos);
  EXPECT_NE(text.find("\n  00f0  61 61"), std::string::npos);
  EXPECT_NE(text.find("\n  ... 744 more bytes\n< status 0, 0 bytes"), std::string::npos);
  EXPECT_EQ(text.find("\n  0100 "), std::string::npos);
}

}  // namespace

}  // namespace olt::test
