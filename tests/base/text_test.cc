#include "base/text.h"

#include <gtest/gtest.h>

#include "base/mac.h"

namespace {

using olt::Bytes;
using olt::counted;
using olt::from_hex;
using olt::hex_dump;
using olt::printable;
using olt::to_hex;
using olt::to_mac;
using olt::to_spaced_hex;

TEST(BytesText, ReadsHexDigitsInPairs) {
  EXPECT_EQ(from_hex("02005eFf"), (Bytes{0x02, 0x00, 0x5E, 0xFF}));
  EXPECT_EQ(from_hex("02 00  5e"), (Bytes{0x02, 0x00, 0x5E}));
  EXPECT_EQ(from_hex(""), Bytes{});
  for (const char *bad : {"0", "020", "0g", "g0", "0 2", "-1", "+1", "0x02", "02,03"}) {
    EXPECT_FALSE(from_hex(bad)) << bad;
  }
}

TEST(BytesText, ReadsMacAddresses) {
  EXPECT_EQ(to_mac("02:00:5e:Ff:00:01"), (olt::Mac{0x02, 0x00, 0x5E, 0xFF, 0x00, 0x01}));
  for (const char *bad :
       {"", "02:00:5e:ff:00", "02:00:5e:ff:00:0", "02:00:5e:ff:00:0g", "02-00-5e-ff-00-01",
        "02 00 5e ff 00 01", "02:00:5e:ff: 0:01", "02:00:5e:ff:00:01:02", "02:00:5e:ff:  :01"}) {
    EXPECT_FALSE(to_mac(bad)) << bad;
  }
}

TEST(BytesText, WritesHex) {
  Bytes bytes = {0x02, 0x00, 0xFE};
  EXPECT_EQ(to_hex(bytes), "0200fe");
  EXPECT_EQ(to_spaced_hex(bytes), "02 00 fe");
}

TEST(BytesText, DumpsSixteenBytesALine) {
  Bytes bytes;
  for (uint8_t i = 0; i < 18; ++i) bytes.push_back(static_cast<uint8_t>(0x3A + i * 4));
  EXPECT_EQ(hex_dump(bytes),
            "  0000  3a 3e 42 46 4a 4e 52 56 5a 5e 62 66 6a 6e 72 76  :>BFJNRVZ^bfjnrv\n"
            "  0010  7a 7e                                            z~\n");
  EXPECT_EQ(hex_dump({}), "");
}

TEST(BytesText, DumpHidesRanges) {
  constexpr olt::Hidden kHidden[] = {{2, 2}, {4, 1}};
  Bytes bytes = {'a', 'b', 's', 'e', 'c', 'd', 0x00, 0x7F};
  EXPECT_EQ(hex_dump(bytes, kHidden),
            "  0000  61 62 ** ** ** 64 00 7f                          ab***d..\n");
}

TEST(BytesText, ControlCharactersAreSpelledOut) {
  EXPECT_EQ(printable("a\x1b[2J\n\x7f é"), "a\\x1b[2J\\x0a\\x7f é");
  EXPECT_EQ(printable("\xC2\x9B"
                      "2J\xC2\x80\xC2\x9F\xC2\xA0\xC2"),
            "\\xc2\\x9b2J\\xc2\\x80\\xc2\\x9f\xC2\xA0\\xc2");
}

TEST(BytesText, MarksThatTurnTextOrEndLinesAreSpelledOut) {
  EXPECT_EQ(printable("\xE2\x80\xAE \xE2\x81\xA6 \xD8\x9C \xE2\x80\xA8"),
            "\\xe2\\x80\\xae \\xe2\\x81\\xa6 \\xd8\\x9c \\xe2\\x80\\xa8");
  EXPECT_EQ(printable("\xE2\x80\x93 \xE2\x81\xAA"), "\xE2\x80\x93 \xE2\x81\xAA");
}

TEST(BytesText, BytesThatAreNotUtf8AreSpelledOut) {
  EXPECT_EQ(printable("\xff\xfe \x80"), "\\xff\\xfe \\x80");
  EXPECT_EQ(printable("\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"),
            "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
  // Cut off, overlong, a surrogate, beyond the last character.
  EXPECT_EQ(printable("\xE2\x82"), "\\xe2\\x82");
  EXPECT_EQ(printable("\xE2\x82x"), "\\xe2\\x82x");
  EXPECT_EQ(printable("\xC1\xBF"), "\\xc1\\xbf");
  EXPECT_EQ(printable("\xED\xA0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(printable("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
}

TEST(Text, CountsNouns) {
  EXPECT_EQ(counted(0, "VLAN"), "0 VLANs");
  EXPECT_EQ(counted(1, "VLAN"), "1 VLAN");
  EXPECT_EQ(counted(1, "address"), "1 address");
  EXPECT_EQ(counted(2, "address"), "2 addresses");
  EXPECT_EQ(counted(2, "reply"), "2 replies");
}

}  // namespace
