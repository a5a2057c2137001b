// The writer of captures against literal bytes, as docs/capture.md describes them, and what the
// reader makes of them.
#include "capture/writer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/capture/planted_messages.h"
#include "tests/capture/read_packets.h"
#include "tests/support/bytes.h"

namespace olt::test {
namespace {

using capture::Writer;
using capture::WrittenExchange;

constexpr uint8_t kMac[] = {2, 0, 0, 0, 0, 1};

WrittenExchange exchange(uint32_t process, uint32_t number) {
  return {.message_type = 12,
          .module = 2,
          .reply = kMac,
          .reply_length = 6,
          .began = 1'000'000'002,
          .duration = 5000,
          .run = 1000,
          .process = process,
          .number = number};
}

TEST(CaptureWriter, WritesAnInterfaceForEachProcess) {
  Writer writer("oltbox", false);
  Bytes file;
  writer.begin(file);
  Bytes section =
      hex("0a0d0d0a 2c000000 4d3c2b1a 01000000 ffffffff ffffffff"
          "0400 0600 6f6c74626f78 0000 00000000 2c000000");
  EXPECT_EQ(section, file);
  file.clear();
  writer.add(exchange(1234, 7), "front_end", file);
  Bytes header = hex("e8030000 d2040000 00000000 07000000 02000000 0c000000 00000000");
  auto join = [](std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes &part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
  };
  EXPECT_EQ(join({hex("01000000 44000000 fc000000 00000000"
                      "0200 0e00"),
                  text("front_end/1234"), hex("0000 0300 0900"), text("front_end"),
                  hex("000000 0900 0100 09000000 00000000 44000000"),
                  // the request
                  hex("06000000 6c000000 00000000 00000000 02ca9a3b 4c000000 4c000000"
                      "000c0004 6f6c7400 00000000 4f4c5431 01 00 4000"),
                  header, Bytes(28), hex("6c000000"),
                  // the answer
                  hex("06000000 74000000 00000000 00000000 8add9a3b 52000000 52000000"
                      "000c0004 6f6c7400 00000000 4f4c5431 02 00 4000"),
                  header, hex("06000000 00000000 0000 0000 8813000000000000 00000000 00000000"),
                  hex("020000000001 0000 74000000")}),
            file);
  file.clear();
  writer.add(exchange(1234, 8), "front_end", file);
  EXPECT_EQ(108U + 116U, file.size()) << "the process has its interface";
  file.clear();
  writer.add(exchange(1234, 9), "another", file);
  EXPECT_EQ(hex("01000000"), slice(file, 0, 4)) << "the number of the process was used again";
  EXPECT_EQ(hex("01000000"), slice(file, 60 + 8, 60 + 12)) << "the interface of the request";
}

TEST(CaptureWriter, BeginsAFileAnew) {
  Writer writer("oltbox", false);
  Bytes first;
  writer.begin(first);
  writer.add(exchange(1, 1), "one", first);
  writer.add(exchange(2, 2), "two", first);
  Bytes second;
  writer.begin(second);
  writer.add(exchange(2, 3), "two", second);
  ReadPackets found = read_packets(second);
  EXPECT_EQ("", found.error);
  ASSERT_EQ(2U, found.packets.size());
  EXPECT_EQ("two", found.packets[0].program);
  EXPECT_EQ(3U, writer.exchanges());
}

/// Two processes, and one whose program has a long name; the last exchange failed.
Bytes capture_of_three() {
  Writer writer("oltbox", false);
  Bytes file;
  writer.begin(file);
  writer.add(exchange(1234, 1), "front_end", file);
  writer.add(exchange(1235, 2), std::string(100, 'n'), file);
  WrittenExchange failed = exchange(1234, 3);
  failed.reply_length = 0;
  failed.result = 0x00030000;
  writer.add(failed, "front_end", file);
  return file;
}

TEST(CaptureWriter, IsReadWithTheProgramOfEachProcess) {
  ReadPackets found = read_packets(capture_of_three());
  EXPECT_EQ("", found.error);
  ASSERT_EQ(6U, found.packets.size());
  EXPECT_EQ("front_end", found.packets[0].program);
  EXPECT_EQ(1234U, found.packets[1].process);
  EXPECT_EQ(hex("020000000001"), found.packets[1].record);
  EXPECT_EQ(std::string(63, 'n'), found.packets[2].program);
  EXPECT_EQ(1235U, found.packets[3].process);
  EXPECT_EQ("front_end", found.packets[5].program);
  EXPECT_EQ(0x00030000U, found.packets[5].result);
}

/// A capture that is cut anywhere but between blocks is one error line; what comes before is read.
TEST(CaptureWriter, CapturesOfSeveralProcessesCutAtEveryByte) {
  Bytes whole = capture_of_three();
  std::vector<size_t> ends = {0};  // of blocks
  std::vector<size_t> packets = {0};
  while (ends.back() < whole.size()) {
    bool is_packet = word_at(whole, ends.back()) == 6;
    packets.push_back(packets.back() + (is_packet ? 1 : 0));
    ends.push_back(ends.back() + word_at(whole, ends.back() + 4));
  }
  ASSERT_EQ(1U + 1 + 2 + 6, ends.size());
  for (size_t size = 0; size < whole.size(); ++size) {
    ReadPackets found = read_packets(std::span(whole).first(size));
    auto after = std::upper_bound(ends.begin(), ends.end(), size);
    auto block = static_cast<size_t>(after - ends.begin()) - 1;
    EXPECT_EQ(packets[block], found.packets.size()) << size;
    EXPECT_EQ(size == ends[block], found.error.empty()) << size << found.error;
  }
}

TEST(CaptureWriter, CountsWhatDoesNotFitAsLost) {
  Writer writer("oltbox", false);
  Bytes file;
  writer.begin(file);
  writer.add(exchange(1, 1), "one", file, 1000);
  size_t size = file.size();
  writer.add(exchange(1, 2), "one", file, size + 100);
  writer.add(exchange(1, 3), "one", file, size + 100);
  EXPECT_EQ(size, file.size());
  EXPECT_EQ(2U, writer.lost());
  writer.add(exchange(1, 4), "one", file, 2000);
  writer.add(exchange(1, 5), "one", file, 2000);
  EXPECT_EQ(3U, writer.exchanges());
  ReadPackets found = read_packets(file);
  ASSERT_EQ(6U, found.packets.size()) << found.error;
  EXPECT_EQ(0U, found.packets[0].lost);
  EXPECT_EQ(2U, found.packets[2].lost);
  EXPECT_EQ(0U, found.packets[3].lost);
  EXPECT_EQ(0U, found.packets[4].lost);
}

TEST(CaptureWriter, CutsLongRecords) {
  Writer writer("oltbox", false);
  Bytes file;
  writer.begin(file);
  Bytes record(131'073, 'r');
  WrittenExchange long_one = exchange(1, 1);
  long_one.request = record.data();
  long_one.request_length = 131'073;
  writer.add(long_one, "one", file);
  EXPECT_LE(file.size(), Writer::max_size(long_one));
  ReadPackets found = read_packets(file);
  ASSERT_EQ(2U, found.packets.size()) << found.error;
  EXPECT_EQ(131'072U, found.packets[0].record.size());
  EXPECT_EQ(131'073U, found.packets[0].record_length);
}

/// Every message as request and as reply.
std::string capture_of(const PlantedMessages &planted, bool with_secrets) {
  Writer writer("oltbox", with_secrets);
  Bytes file;
  writer.begin(file);
  for (const PlantedMessages::Message &message : planted.messages()) {
    WrittenExchange one = exchange(1, 1);
    one.message_type = message.type;
    one.request = one.reply = message.bytes.data();
    one.request_length = one.reply_length = static_cast<uint32_t>(message.bytes.size());
    writer.add(one, "one", file);
  }
  return characters(file);
}

TEST(CaptureWriter, MasksEverySecretOfEveryMessage) {
  const PlantedMessages planted;
  EXPECT_EQ(12U, planted.types().size());
  std::string masked = capture_of(planted, false);
  EXPECT_EQ(0U, count_of(kPlanted, masked));
  EXPECT_LE(2 * planted.planted(), count_of("*****", masked));
  EXPECT_EQ(2 * planted.planted(), count_of(kPlanted, capture_of(planted, true)));
}

TEST(CaptureWriter, MasksConfigurationsOfTheControlModule) {
  Writer writer("oltbox", false);
  Bytes file;
  writer.begin(file);
  for (std::string_view command :
       {R"({"command":"config_import","offset":0,"piece":"PLANT"})",
        R"({"command": "config_import", "offset": 0, "piece" : "PLANT"})"}) {
    WrittenExchange control = exchange(1, 1);
    control.module = 1000;
    control.message_type = 1;
    control.request = command.data();
    control.request_length = static_cast<uint32_t>(command.size());
    writer.add(control, "oltctl", file);
  }
  EXPECT_EQ(0U, count_of(kPlanted, characters(file)));
  EXPECT_EQ(2U, count_of("config_import", characters(file)));
}

/// Secrets that a layout names, in bytes that the writer did not mask.
TEST(CaptureWriter, MasksMoreInABlock) {
  Writer writer("oltbox", false);
  Bytes file;
  writer.begin(file);
  size_t section = file.size();
  writer.add(exchange(1, 1), "one", file);
  size_t answer = file.size() - 116;
  const catalog::WireSecret secrets[] = {{12, 4, 12}, {13, 0, 6}, {12, 0, 1, 2}};
  Bytes before = file;
  capture::mask_block(std::span(file).first(section), secrets);
  capture::mask_block(std::span(file).subspan(answer), secrets);
  Bytes expected = before;
  expected[answer + 45] = 2;
  for (size_t at : {0U, 2U, 4U, 5U}) expected[answer + 104 + at] = '*';
  EXPECT_EQ(expected, file);
  capture::mask_block(std::span(file).subspan(answer - 108, 108), secrets);
  EXPECT_EQ(expected, file) << "a request without a record";
}

TEST(CaptureWriter, MasksNothingBeyondABlock) {
  Writer writer("oltbox", false);
  Bytes file;
  writer.begin(file);
  writer.add(exchange(1, 1), "one", file);
  const catalog::WireSecret secrets[] = {{12, 0, 1, 2}};
  for (uint8_t byte : {uint8_t{0}, uint8_t{0xFF}}) {
    Bytes damaged(file.begin() + static_cast<ptrdiff_t>(file.size() - 116), file.end());
    std::fill_n(damaged.begin() + 20, 4, byte);
    Bytes before = damaged;
    capture::mask_block(damaged, secrets);
    EXPECT_EQ(before, damaged);
  }
}

}  // namespace
}  // namespace olt::test
