// The reader of captures, on literal bytes as docs/capture.md describes them.
#include "capture/reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/capture/read_packets.h"
#include "tests/support/bytes.h"

namespace olt::test {
namespace {

using capture::Packet;

Bytes operator+(Bytes left, const Bytes &right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

/// A block around its body, whose length is a multiple of 4.
Bytes block(uint32_t type, const Bytes &body) {
  Bytes length = word(static_cast<uint32_t>(body.size()) + 12);
  return word(type) + length + body + length;
}

const Bytes kSection = block(0x0A0D0D0A, hex("4d3c2b1a 01000000 ffffffffffffffff"
                                             "04000600 6f6c7463746c0000 00000000"));
const Bytes kInterface = block(1, hex("fc000000 00000000 09000100 09000000 00000000"));
const Bytes kPadding = block(0x804F4C54, Bytes(20));

constexpr std::string_view kTags = "000c0004 6f6c7400 00000000";

/// The header of exchange 7 in process 1234, thread 1235, run 1000, message type 12, module 2.
Bytes header(uint8_t kind, uint32_t record_length) {
  Bytes begin = hex("4f4c5431") + Bytes{kind} + hex("004000");
  return begin + hex("e8030000 d2040000 d3040000 07000000 02000000 0c000000 0a000000") +
         word(record_length) + (kind == 2 ? hex("00000000 05000000 8813000000000000") : Bytes(16)) +
         Bytes(8);
}

/// At 1.000000002 s.
Bytes packet(const Bytes &payload, uint32_t interface = 0, const Bytes &options = {}) {
  auto size = static_cast<uint32_t>(payload.size());
  return block(6, word(interface) + hex("00000000 02ca9a3b") + word(size) + word(size) + payload +
                      Bytes((4 - size % 4) % 4) + options);
}

Bytes packet(uint8_t kind, const Bytes &record) {
  return packet(hex(kTags) + header(kind, static_cast<uint32_t>(record.size())) + record);
}

const Bytes kWhole =
    kSection + kInterface + packet(1, {}) + packet(2, hex("020000000001")) + kPadding;

TEST(CaptureReader, ReadsBothPacketsOfAnExchange) {
  ReadPackets found = read_packets(kWhole);
  EXPECT_EQ("", found.error);
  ASSERT_EQ(2U, found.packets.size());
  const Packet &request = found.packets[0];
  EXPECT_FALSE(request.is_answer);
  EXPECT_EQ(1'000'000'002U, request.time);
  EXPECT_EQ("oltctl", request.program);
  EXPECT_EQ(1000U, request.run);
  EXPECT_EQ(1234U, request.process);
  EXPECT_EQ(1235U, request.thread);
  EXPECT_EQ(7U, request.exchange);
  EXPECT_EQ(2U, request.module);
  EXPECT_EQ(12U, request.message_type);
  EXPECT_EQ(10U, request.timeout);
  EXPECT_EQ(Bytes(), request.record);
  const Packet &answer = found.packets[1];
  EXPECT_TRUE(answer.is_answer);
  EXPECT_EQ(0U, answer.result);
  EXPECT_EQ(5U, answer.status);
  EXPECT_EQ(5000U, answer.duration);
  EXPECT_EQ(6U, answer.record_length);
  EXPECT_EQ(hex("020000000001"), answer.record);
  EXPECT_EQ(request.identity(), answer.identity());
}

TEST(CaptureReader, TakesWhatOtherToolsAdd) {
  Bytes named = block(1, hex("fc000000 00000400 02000300 61626300 09000100 09000000"));
  Bytes statistics = block(5, Bytes(16));
  Bytes longer = header(2, 0) + hex("aabbccdd");
  longer[6] = 68;
  Bytes comment_and_flags = hex("0100 0300 61626300 0200 0400 01000000 0000 0000");
  ReadPackets found = read_packets(kSection + named + statistics +
                                   packet(hex(kTags) + longer, 0, comment_and_flags) + kSection +
                                   kInterface + packet(1, {}));
  EXPECT_EQ("", found.error);
  ASSERT_EQ(2U, found.packets.size());
  EXPECT_EQ(Bytes(), found.packets[0].record);
}

TEST(CaptureReader, ScalesTimesOfMicroseconds) {
  Bytes microseconds = block(1, hex("fc000000 00000000"));
  ReadPackets found = read_packets(kSection + microseconds + packet(1, {}));
  ASSERT_EQ(1U, found.packets.size()) << found.error;
  EXPECT_EQ(1'000'000'002'000U, found.packets[0].time);
}

TEST(CaptureReader, SkipsPacketsOfSomethingElse) {
  Bytes ethernet = block(1, hex("01000000 00000000"));
  Bytes foreign = packet(Bytes(60), 1);
  Bytes other_dissector = packet(hex("000c0004 68747470 00000000") + Bytes(8));
  ReadPackets found =
      read_packets(kSection + kInterface + ethernet + foreign + other_dissector + packet(1, {}));
  EXPECT_EQ("", found.error);
  EXPECT_EQ(1U, found.packets.size());
  found = read_packets(kSection + kInterface + ethernet + foreign);
  EXPECT_EQ("file: at byte 96: a packet of something else; expected a capture of libolttrace",
            found.error);
}

/// What a process leaves that is killed while it creates its file.
TEST(CaptureReader, AnEmptyFileHasNoPackets) {
  ReadPackets found = read_packets({});
  EXPECT_EQ("", found.error);
  EXPECT_EQ(0U, found.packets.size());
}

/// What commit_room() of libolttrace leaves at worst: padding that is longer than the file.
TEST(CaptureReader, PaddingMayBeLongerThanTheFile) {
  ReadPackets found = read_packets(kSection + kInterface + packet(1, {}) + packet(2, {}) +
                                   block(0x804F4C54, {}) + packet(1, {}) + packet(2, {}) +
                                   word(0x804F4C54) + word(16'777'216) + Bytes(400));
  EXPECT_EQ("", found.error);
  EXPECT_EQ(4U, found.packets.size());
}

/// A file that is cut anywhere but between blocks, or within padding, is one error line with the
/// place of the block; what comes before it is read.
TEST(CaptureReader, FilesCutAtEveryByte) {
  size_t first = kSection.size() + kInterface.size();
  size_t second = first + packet(1, {}).size();
  size_t padding = kWhole.size() - kPadding.size();
  for (size_t size = 0; size <= kWhole.size(); ++size) {
    ReadPackets found =
        read_packets({kWhole.begin(), kWhole.begin() + static_cast<std::ptrdiff_t>(size)});
    EXPECT_EQ(size < second ? 0U : size < padding ? 1U : 2U, found.packets.size()) << size;
    bool is_whole = size == 0 || size == kSection.size() || size == first || size == second ||
                    (size >= padding && (size == padding || size >= padding + 4));
    EXPECT_EQ(is_whole, found.error.empty()) << size << ": " << found.error;
    size_t place = size < kSection.size() ? 0
                   : size < first         ? kSection.size()
                   : size < second        ? first
                   : size < padding       ? second
                                          : padding;
    if (is_whole) continue;
    EXPECT_TRUE(found.error.starts_with("file: at byte " + std::to_string(place) + ": "))
        << size << ": " << found.error;
  }
}

TEST(CaptureReader, NamesPlaceAndReasonOfDamage) {
  struct Case {
    const char *what;
    Bytes bytes;
    std::string error;
  };
  Bytes swapped = kSection;
  std::reverse(swapped.begin() + 8, swapped.begin() + 12);
  Bytes no_magic = kSection;
  no_magic[8] = 0;
  Bytes other_end = kSection;
  other_end.back() = 1;
  Bytes long_record = hex(kTags) + header(1, 3) + Bytes(4);
  Bytes bad_kind = hex(kTags) + header(3, 0);
  Bytes short_header = hex(kTags) + header(1, 0);
  short_header[12 + 6] = 63;
  Bytes captured = packet(1, {});
  captured[20] = 200;
  const Case cases[] = {
      {"pcap", hex("4d3cb2a1 02000400") + Bytes(16),
       "at byte 0: a pcap file; expected a pcapng file, as 'editcap FILE NEW' makes it"},
      {"big-endian pcap", hex("a1b2c3d4 00020004") + Bytes(16),
       "at byte 0: a pcap file; expected a pcapng file, as 'editcap FILE NEW' makes it"},
      {"gzip", hex("1f8b0800 00000000"),
       "at byte 0: a compressed file; expected a pcapng file, as gunzip makes it"},
      {"one byte", Bytes(1), "at byte 0: no pcapng section; expected a capture of libolttrace"},
      {"text", text("root:x:0:0:"),
       "at byte 0: no pcapng section; expected a capture of libolttrace"},
      {"zeros", Bytes(100), "at byte 0: no pcapng section; expected a capture of libolttrace"},
      {"byte order", swapped, "at byte 0: a big-endian section; expected a little-endian one"},
      {"magic", no_magic, "at byte 0: no pcapng section; expected a capture of libolttrace"},
      {"lengths", other_end, "at byte 0: a block of 44 bytes that ends as one of 16777260"},
      {"no length", kSection + word(6) + word(0),
       "at byte 44: a block of 0 bytes; expected a multiple of 4 from 12 to 16777216"},
      {"odd length", kSection + word(6) + word(13),
       "at byte 44: a block of 13 bytes; expected a multiple of 4 from 12 to 16777216"},
      {"huge", kSection + word(7) + word(0xFFFFFFFC),
       "at byte 44: a block of 4294967292 bytes; expected a multiple of 4 from 12 to 16777216"},
      {"small section", word(0x0A0D0D0A) + word(24) + hex("4d3c2b1a") + Bytes(12),
       "at byte 0: a section of 24 bytes; expected at least 28"},
      {"small interface", kSection + block(1, Bytes(4)),
       "at byte 44: an interface of 16 bytes; expected at least 20"},
      {"units", kSection + block(1, hex("fc000000 00000000 09000100 0a000000")),
       "at byte 44: times in units of 10^-10 s; expected at most 10^-9 s"},
      {"small packet", kSection + kInterface + block(6, Bytes(16)),
       "at byte 76: a packet of 28 bytes; expected at least 32"},
      {"interface", kSection + kInterface + packet({}, 1),
       "at byte 76: a packet of interface 1; expected one of 1"},
      {"captured", kSection + kInterface + captured, "at byte 76: 200 bytes in a packet of 108"},
      {"time",
       kSection + block(1, hex("fc000000 00000000 09000100 00000000")) +
           block(6, hex("00000000 ffffffff ffffffff 00000000 00000000")),
       "at byte 72: a time after the year 2262"},
      {"no header", kSection + kInterface + packet(hex(kTags) + Bytes(64)),
       "at byte 76: no header before the record; expected OLT1 and 64 bytes in all"},
      {"header", kSection + kInterface + packet(short_header),
       "at byte 76: a header of 63 bytes; expected 64 to 64"},
      {"kind", kSection + kInterface + packet(bad_kind),
       "at byte 76: a packet of kind 3; expected 1 or 2"},
      {"record", kSection + kInterface + packet(long_record),
       "at byte 76: a record of 4 bytes; expected at most 3"},
  };
  for (const Case &each : cases)
    EXPECT_EQ("file: " + each.error, read_packets(each.bytes).error) << each.what;
}

}  // namespace
}  // namespace olt::test
