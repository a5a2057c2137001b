#include "capture/reader.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace olt::capture {

namespace {

constexpr uint32_t kSectionBlock = 0x0A0D0D0A;
constexpr uint32_t kInterfaceBlock = 1;
constexpr uint32_t kPacketBlock = 6;
constexpr uint32_t kPaddingBlock = 0x804F4C54;
constexpr uint32_t kLittleEndian = 0x1A2B3C4D;
constexpr uint32_t kBigEndian = 0x4D3C2B1A;
constexpr uint16_t kOurLinkType = 252;
constexpr uint16_t kEndOfOptions = 0;
constexpr uint16_t kProgramOption = 4;
constexpr uint16_t kDescriptionOption = 3;
constexpr uint16_t kResolutionOption = 9;
constexpr uint16_t kDissectorTag = 12;

constexpr uint32_t kMinBlock = 12;
constexpr uint32_t kMaxBlock = 16U << 20;
constexpr size_t kBeforePayload = 28;
constexpr size_t kHeaderSize = 64;
constexpr std::string_view kHeaderMagic = "OLT1";
constexpr std::string_view kOurDissector = "olt";
constexpr uint64_t kNanoseconds = 1'000'000'000;

uint16_t half_at(ByteView bytes, size_t offset) {
  return static_cast<uint16_t>(bytes[offset] | bytes[offset + 1] << 8U);
}

uint32_t word_at(ByteView bytes, size_t offset) {
  return half_at(bytes, offset) | static_cast<uint32_t>(half_at(bytes, offset + 2)) << 16U;
}

uint16_t big_endian_half_at(ByteView bytes, size_t offset) {
  return static_cast<uint16_t>(bytes[offset] << 8U | bytes[offset + 1]);
}

/// What is wrong with a file that begins with this word.
const char *kind_without_section(uint32_t word) {
  for (uint32_t pcap : {0xA1B2C3D4U, 0xD4C3B2A1U, 0xA1B23C4DU, 0x4D3CB2A1U})
    if (word == pcap) return "a pcap file; expected a pcapng file, as 'editcap FILE NEW' makes it";
  if ((word & 0xFFFFU) == 0x8B1FU)
    return "a compressed file; expected a pcapng file, as gunzip makes it";
  return "no pcapng section; expected a capture of libolttrace";
}

constexpr size_t padded(size_t length) {
  return (length + 3) / 4 * 4;
}

/// The value of an option; empty when there is none.
ByteView option_in(ByteView options, uint16_t wanted) {
  while (options.size() >= 4) {
    uint16_t code = half_at(options, 0);
    size_t length = half_at(options, 2);
    if (code == kEndOfOptions || length > options.size() - 4) break;
    if (code == wanted) return options.subspan(4, length);
    options = options.subspan(std::min(options.size(), 4 + padded(length)));
  }
  return {};
}

/// What follows the tags of a payload that is for our dissector.
std::optional<ByteView> behind_tags(ByteView payload) {
  bool is_ours = false;
  while (payload.size() >= 4) {
    uint16_t tag = big_endian_half_at(payload, 0);
    size_t length = big_endian_half_at(payload, 2);
    if (length > payload.size() - 4) return std::nullopt;
    ByteView value = payload.subspan(4, length);
    payload = payload.subspan(4 + length);
    if (tag == 0) return is_ours ? std::optional(payload) : std::nullopt;
    if (tag == kDissectorTag) is_ours = text_in(value) == kOurDissector;
  }
  return std::nullopt;
}

/// A header and the record after it.
template <typename Fail>
Packet packet_in(ByteView header, const Fail &fail) {
  if (header.size() < kHeaderSize || characters(header.first(4)) != kHeaderMagic) {
    fail(
        fmt::format("no header before the record; expected OLT1 and {} bytes in all", kHeaderSize));
  }
  size_t header_size = half_at(header, 6);
  if (header_size < kHeaderSize || header_size > header.size()) {
    fail(fmt::format("a header of {} bytes; expected {} to {}", header_size, kHeaderSize,
                     header.size()));
  }
  if (header[4] != 1 && header[4] != 2)
    fail(fmt::format("a packet of kind {}; expected 1 or 2", header[4]));
  ByteView record = header.subspan(header_size);
  uint32_t record_length = word_at(header, 36);
  if (record.size() > record_length) {
    fail(fmt::format("a record of {} bytes; expected at most {}", record.size(), record_length));
  }
  return Packet{.is_answer = header[4] == 2,
                .no_reply = (header[5] & 1) != 0,
                .is_masked = (header[5] & 2) != 0,
                .run = word_at(header, 8),
                .process = word_at(header, 12),
                .thread = word_at(header, 16),
                .exchange = word_at(header, 20),
                .module = word_at(header, 24),
                .message_type = word_at(header, 28),
                .timeout = word_at(header, 32),
                .lost = word_at(header, 56),
                .result = word_at(header, 40),
                .status = half_at(header, 44),
                .duration = static_cast<uint64_t>(word_at(header, 52)) << 32U | word_at(header, 48),
                .record_length = record_length,
                .record = Bytes(record.begin(), record.end())};
}

}  // namespace

Reader::Reader(std::string name, Source source)
    : name_(std::move(name)), source_(std::move(source)) {}

template <typename Failure, typename... Args>
void Reader::fail(const char *reason, Args... args) const {
  throw Failure(fmt::format("{}: at byte {}: {}", printable(name_), place_,
                            fmt::format(fmt::runtime(reason), args...)));
}

uint32_t Reader::word(size_t offset) const {
  return word_at(block_, offset);
}

std::optional<Packet> Reader::next() {
  while (read_block()) {
    if (type_ == kSectionBlock) read_section();
    if (type_ == kInterfaceBlock) add_interface();
    if (type_ != kPacketBlock) continue;
    if (std::optional<Packet> found = packet()) {
      has_packet_ = true;
      return found;
    }
    if (!foreign_) foreign_ = place_;
  }
  if (foreign_ && !has_packet_) {
    place_ = *foreign_;
    fail("a packet of something else; expected a capture of libolttrace");
  }
  return std::nullopt;
}

/// @return false when the file ends before
bool Reader::skip(size_t size) {
  Bytes some(std::min<size_t>(size, 1U << 16U));
  while (size > 0) {
    size_t count = source_(some.data(), std::min(size, some.size()));
    if (count == 0) return false;
    size -= count;
  }
  return true;
}

void Reader::read_whole(uint8_t *buffer, size_t size) {
  size_t count = source_(buffer, size);
  if (count < size) fail<CutShort>("cut short; expected {}", counted(size - count, "more byte"));
}

/// @return false at the end
bool Reader::read_block() {
  place_ = next_;
  uint8_t head[8];
  size_t count = source_(head, sizeof head);
  if (count == 0) return false;
  type_ = count < 4 ? 0 : word_at(head, 0);
  if (!has_section_ && type_ != kSectionBlock) fail(kind_without_section(type_));
  if (count < sizeof head && type_ == kPaddingBlock) return false;
  if (count < sizeof head)
    fail<CutShort>("cut short; expected {}", counted(sizeof head - count, "more byte"));
  uint32_t length = word_at(head, 4);
  uint8_t magic[4] = {};
  if (type_ == kSectionBlock) {
    read_whole(magic, sizeof magic);
    if (word_at(magic, 0) == kBigEndian) fail("a big-endian section; expected a little-endian one");
    if (word_at(magic, 0) != kLittleEndian)
      fail("no pcapng section; expected a capture of libolttrace");
    if (length < kMinBlock + 16) fail("a section of {} bytes; expected at least 28", length);
  }
  bool fits = length >= kMinBlock && length <= kMaxBlock && length % 4 == 0;
  if (!fits) {
    fail("a block of {} bytes; expected a multiple of 4 from {} to {}", length, kMinBlock,
         kMaxBlock);
  }
  next_ = place_ + length;
  if (type_ == kPaddingBlock) return skip(length - sizeof head);  // it may be longer than the file
  block_.resize(length);
  std::copy_n(head, sizeof head, block_.begin());
  size_t done = sizeof head;
  if (type_ == kSectionBlock) {
    std::copy_n(magic, sizeof magic, block_.begin() + sizeof head);
    done += sizeof magic;
  }
  read_whole(block_.data() + done, length - done);
  uint32_t again = word(length - 4);
  if (again != length) fail("a block of {} bytes that ends as one of {}", length, again);
  return true;
}

void Reader::read_section() {
  has_section_ = true;
  interfaces_.clear();
  ByteView options = ByteView(block_).subspan(24, block_.size() - 28);
  ByteView program = option_in(options, kProgramOption);
  program_.assign(program.begin(), program.end());
}

void Reader::add_interface() {
  if (block_.size() < 20) fail("an interface of {} bytes; expected at least 20", block_.size());
  ByteView options = ByteView(block_).subspan(16, block_.size() - 20);
  ByteView resolution = option_in(options, kResolutionOption);
  ByteView program = option_in(options, kDescriptionOption);
  uint64_t ticks = 1;
  int digits = resolution.empty() ? 6 : resolution[0];
  bool is_ours = half_at(block_, 8) == kOurLinkType;
  if (is_ours && digits > 9) fail("times in units of 10^-{} s; expected at most 10^-9 s", digits);
  for (int i = 0; is_ours && i < digits; ++i) ticks *= 10;
  interfaces_.push_back(
      {is_ours, ticks, program.empty() ? program_ : std::string(program.begin(), program.end())});
}

uint64_t Reader::nanoseconds(const Interface &interface, uint64_t ticks) const {
  uint64_t scale = kNanoseconds / interface.ticks_per_second;
  if (ticks > INT64_MAX / scale) fail("a time after the year 2262");
  return ticks * scale;
}

/// Nothing when it is of something else.
std::optional<Packet> Reader::packet() const {
  if (block_.size() < kBeforePayload + 4)
    fail("a packet of {} bytes; expected at least 32", block_.size());
  if (word(8) >= interfaces_.size())
    fail("a packet of interface {}; expected one of {}", word(8), interfaces_.size());
  const Interface &interface = interfaces_[word(8)];
  uint32_t captured = word(20);
  if (captured > block_.size() - kBeforePayload - 4)
    fail("{} bytes in a packet of {}", captured, block_.size());
  if (!interface.is_ours) return std::nullopt;
  uint64_t ticks = static_cast<uint64_t>(word(12)) << 32U | word(16);
  return packet_of(ByteView(block_).subspan(kBeforePayload, captured),
                   nanoseconds(interface, ticks), interface.program);
}

std::optional<Packet> Reader::packet_of(ByteView payload, uint64_t time,
                                        const std::string &program) const {
  std::optional<ByteView> header = behind_tags(payload);
  if (!header) return std::nullopt;
  Packet packet = packet_in(*header, [this](const std::string &reason) { fail("{}", reason); });
  packet.place = place_ + kBeforePayload + (payload.size() - header->size());
  packet.time = time;
  packet.program = program;
  return packet;
}

Reader read_capture(const std::string &path) {
  auto refuse = [path](int error) {
    throw BadInput(fmt::format("{}: cannot be read: {}", printable(path), std::strerror(error)));
  };
  std::shared_ptr<std::FILE> file(std::fopen(path.c_str(), "rbe"), [](std::FILE *opened) {
    if (opened != nullptr) static_cast<void>(std::fclose(opened));
  });
  if (!file) refuse(errno);
  return {path, [file, refuse](uint8_t *buffer, size_t size) {
            size_t count = std::fread(buffer, 1, size, file.get());
            if (count < size && std::ferror(file.get()) != 0) refuse(errno);
            return count;
          }};
}

Packet read_packet(const std::string &name, int file, uint64_t place) {
  auto fail = [&name, place](const std::string &reason) {
    throw BadInput(fmt::format("{}: at byte {}: {}", printable(name), place, reason));
  };
  constexpr size_t kEnoughForMost = 512;
  Bytes bytes(kEnoughForMost);
  auto fill = [&] {
    ssize_t count = pread(file, bytes.data(), bytes.size(), static_cast<off_t>(place));
    bytes.resize(static_cast<size_t>(std::max<ssize_t>(count, 0)));
  };
  fill();
  if (bytes.size() < kHeaderSize) fail("the packet is gone");
  size_t size = size_t{half_at(bytes, 6)} + word_at(bytes, 36);
  if (size > kMaxBlock) fail("the packet is gone");
  bool is_whole = size <= bytes.size();
  bytes.resize(size);
  if (!is_whole) fill();
  if (bytes.size() < size) fail("the packet is gone");
  return packet_in(bytes, fail);
}

}  // namespace olt::capture
