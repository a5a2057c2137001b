#include "capture/writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace olt::capture {

namespace {

constexpr size_t kLongestProgram = 63;
/// Section and interface are shorter.
constexpr size_t kMaxHead = 256;

void append(Bytes &file, const std::array<uint8_t, kMaxHead> &block, uint32_t length) {
  file.insert(file.end(), block.begin(), block.begin() + length);
}

}  // namespace

Writer::Writer(const std::string &program, bool with_secrets)
    : program_(program.substr(0, kLongestProgram)), with_secrets_(with_secrets) {}

void Writer::begin(Bytes &file) {
  interfaces_.clear();
  interface_count_ = 0;
  std::array<uint8_t, kMaxHead> block{};
  append(file, block, put_section(block.data(), program_.c_str()));
}

uint32_t Writer::interface_of(uint32_t process, const std::string &program, Bytes &file) {
  auto known = interfaces_.find({process, program});
  if (known != interfaces_.end()) return known->second;
  std::string description = program.substr(0, kLongestProgram);
  std::string name = fmt::format("{}/{}", description, process);
  std::array<uint8_t, kMaxHead> block{};
  append(file, block, put_interface(block.data(), name.c_str(), description.c_str()));
  uint32_t number = interface_count_++;
  interfaces_.emplace(std::pair(process, program), number);
  return number;
}

size_t Writer::max_size(const WrittenExchange &exchange) {
  return kMaxHead + packet_size(exchange.request_length) + packet_size(exchange.reply_length);
}

void Writer::add(WrittenExchange exchange, const std::string &program, Bytes &file, size_t max) {
  size_t needed = file.size() + max_size(exchange);
  if (needed > max) {
    ++lost_;
    ++just_lost_;
    return;
  }
  if (needed > file.capacity()) file.reserve(std::max(needed, 2 * file.capacity()));
  exchange.interface = interface_of(exchange.process, program, file);
  exchange.lost = std::exchange(just_lost_, 0);
  size_t at = file.size();
  file.resize(at + packet_size(exchange.request_length) + packet_size(exchange.reply_length));
  put_packets(&file[at], &exchange, with_secrets_);
  ++exchanges_;
}

void mask_block(std::span<uint8_t> block, std::span<const catalog::WireSecret> secrets) {
  constexpr size_t kFlags = 45;
  constexpr size_t kMessageType = 68;
  constexpr size_t kRecord = 104;
  auto word_at = [block](size_t offset) {
    uint32_t word = 0;
    std::memcpy(&word, &block[offset], sizeof word);
    return word;
  };
  if (block.size() < kRecord || word_at(0) != kPacketBlock) return;
  size_t captured = word_at(20) + size_t{28};  // to the end of the record
  if (captured < kRecord || captured > block.size()) return;
  std::span<uint8_t> record = block.subspan(kRecord, captured - kRecord);
  uint32_t type = word_at(kMessageType);
  for (const catalog::WireSecret &secret : secrets) {
    if (secret.message_type != type) continue;
    Hidden hidden = {secret.offset, secret.length, secret.stride};
    for (size_t i = 0; i < record.size(); ++i) {
      if (!hidden.covers(i)) continue;
      record[i] = '*';
      block[kFlags] |= 2;
    }
  }
}

}  // namespace olt::capture
