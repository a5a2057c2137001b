#include "tests/support/capture_bytes.h"

namespace olt::test {

namespace {

constexpr uint32_t kRun = 1000;

void append(std::string &to, std::span<const uint8_t> bytes) {
  to.append(bytes.begin(), bytes.end());
}

void append_word(std::string &to, uint64_t value) {
  for (unsigned shift = 0; shift < 32; shift += 8) to += static_cast<char>(value >> shift & 0xFFU);
}

/// A packet block.
std::string packet(const RecordedExchange &exchange, char kind) {
  bool is_answer = kind == 2;
  const Bytes &record = is_answer ? exchange.reply : exchange.request;
  bool is_masked = is_answer ? exchange.masked_reply : exchange.masked_request;
  uint32_t length = is_answer || exchange.request_length == 0 ? static_cast<uint32_t>(record.size())
                                                              : exchange.request_length;
  size_t captured = 12 + 64 + record.size();
  size_t padding = (4 - captured % 4) % 4;
  size_t block = 32 + captured + padding;
  uint64_t time = exchange.time + (is_answer ? exchange.duration : 0);
  std::string text;
  text.reserve(block);
  append_word(text, 6);
  append_word(text, block);
  append_word(text, 0);
  append_word(text, time >> 32U);
  append_word(text, time);
  append_word(text, captured);
  append_word(text, 12 + 64 + length);
  text.append(std::string_view("\0\x0c\0\x04olt\0\0\0\0\0", 12));
  text += "OLT1";
  text += kind;
  text += static_cast<char>((exchange.no_reply ? 1 : 0) + (is_masked ? 2 : 0));
  text += '\x40';
  text += '\0';
  append_word(text, kRun);
  append_word(text, exchange.process);
  append_word(text, exchange.thread);
  append_word(text, exchange.exchange);
  append_word(text, exchange.module);
  append_word(text, exchange.type);
  append_word(text, exchange.timeout);
  append_word(text, length);
  append_word(text, is_answer ? exchange.result : 0);
  append_word(text, is_answer ? exchange.status : 0);
  append_word(text, is_answer ? exchange.duration : 0);
  append_word(text, is_answer ? exchange.duration >> 32U : 0);
  append_word(text, is_answer ? 0 : exchange.lost);
  append_word(text, 0);
  append(text, record);
  text.append(padding, '\0');
  append_word(text, block);
  return text;
}

}  // namespace

std::string capture_head() {
  std::string head;
  append(head, hex("0a0d0d0a 1c000000 4d3c2b1a 01000000 ffffffffffffffff 1c000000"
                   "01000000 20000000 fc000000 00000000 09000100 09000000 00000000 20000000"));
  return head;
}

std::string request_packet(const RecordedExchange &exchange) {
  return packet(exchange, 1);
}

std::string answer_packet(const RecordedExchange &exchange) {
  return packet(exchange, 2);
}

std::string capture_of(std::span<const RecordedExchange> exchanges) {
  std::string capture = capture_head();
  for (const RecordedExchange &exchange : exchanges)
    capture += request_packet(exchange) + answer_packet(exchange);
  return capture;
}

std::optional<size_t> cut_block(const std::string &capture, size_t left) {
  size_t place = 0;
  for (size_t next = 0; next <= left && next < capture.size();) {
    if (next == left) return std::nullopt;
    place = next;
    const auto *length = reinterpret_cast<const uint8_t *>(capture.data()) + next + 4;
    next += word_at({length, 4}, 0);
  }
  return place;
}

}  // namespace olt::test
