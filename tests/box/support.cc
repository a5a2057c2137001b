#include "tests/box/support.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <numeric>
#include <stdexcept>

namespace olt::tests {

Bytes hex(std::string_view text) {
  Bytes bytes;
  std::string digits;
  for (char c : text) {
    if (c == ' ') continue;
    digits += c;
    if (digits.size() < 2) continue;
    bytes.push_back(static_cast<uint8_t>(std::stoi(digits, nullptr, 16)));
    digits.clear();
  }
  return bytes;
}

Bytes record(size_t size, std::initializer_list<std::pair<size_t, Bytes>> fields) {
  Bytes bytes(size);
  for (const auto &[offset, field] : fields) {
    std::copy(field.begin(), field.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  return bytes;
}

Bytes text(std::string_view characters) {
  return {characters.begin(), characters.end()};
}

Bytes word(uint32_t value) {
  return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
          static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
}

Bytes counting(size_t size, uint8_t from) {
  Bytes bytes(size);
  std::iota(bytes.begin(), bytes.end(), from);
  return bytes;
}

Bytes slice(const Bytes &bytes, size_t begin, size_t end) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(begin),
          bytes.begin() + static_cast<std::ptrdiff_t>(end)};
}

std::string characters(const Bytes &bytes) {
  return {bytes.begin(), bytes.end()};
}

TestBox::TestBox() {
  options.state_dir = folder / "state";
  options.listing_dir = folder / "run";
}

void TestBox::start() {
  box::Options copy = options;
  if (traced) copy.trace = [this](std::string_view line) { trace.emplace_back(line); };
  simulator_ = std::make_unique<box::Simulator>(
      copy, [this] { return now_; }, std::chrono::milliseconds(50));
}

void TestBox::restart() {
  end();
  start();
}

box::Answer TestBox::ask(uint32_t module, uint32_t type, const Bytes &request) {
  if (!simulator_) start();
  return simulator_->handle(module, type, request);
}

uint32_t TestBox::status(uint32_t module, uint32_t type, const Bytes &request) {
  return ask(module, type, request).status;
}

Bytes TestBox::reply(uint32_t module, uint32_t type, const Bytes &request) {
  box::Answer answer = ask(module, type, request);
  EXPECT_EQ(answer.status, 0) << "module " << module << ", type " << type;
  return answer.reply;
}

std::string TestBox::command(std::string_view json) {
  return characters(reply(1000, 1, text(json)));
}

std::string TestBox::listing(const Bytes &reply, size_t offset) const {
  std::string name = characters(slice(reply, offset, offset + 32));
  EXPECT_EQ(name.back(), '\0');
  return read_file(options.listing_dir / name.c_str());
}

}  // namespace olt::tests
