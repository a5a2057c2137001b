#include "tests/box/support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "box/state/json_form.h"
#include "box/state/seal.h"

namespace olt::test {

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

box::Answer TestBox::ask(Module module, uint32_t type, const Bytes &request) {
  if (!simulator_) start();
  return simulator_->handle(module, type, request);
}

box::Answer TestBox::ask(uint32_t type, const Bytes &request) {
  return ask(kMainModule, type, request);
}

uint32_t TestBox::status(Module module, uint32_t type, const Bytes &request) {
  return ask(module, type, request).status;
}

uint32_t TestBox::status(uint32_t type, const Bytes &request) {
  return status(kMainModule, type, request);
}

Bytes TestBox::reply(Module module, uint32_t type, const Bytes &request) {
  box::Answer answer = ask(module, type, request);
  EXPECT_EQ(answer.status, kOk) << "module " << module << ", type " << type;
  return answer.reply;
}

Bytes TestBox::reply(uint32_t type, const Bytes &request) {
  return reply(kMainModule, type, request);
}

std::string TestBox::command(std::string_view json) {
  return characters(reply(kControlModule, kControlCommand, text(json)));
}

std::string TestBox::listing(const Bytes &reply, size_t offset) const {
  std::string name = characters(slice(reply, offset, offset + kListingNameSize));
  EXPECT_EQ(name.back(), '\0');
  return read_file(options.listing_dir / name.c_str());
}

std::string TestBox::running_config() {
  return listing(reply(kListRunningConfig), kListingNameAt);
}

std::string TestBox::basic_info() {
  return listing(reply(kListBasicInfo), kListingNameAt);
}

Bytes words(std::initializer_list<uint32_t> values) {
  Bytes bytes;
  for (uint32_t value : values) {
    const Bytes one = word(value);
    bytes.insert(bytes.end(), one.begin(), one.end());
  }
  return bytes;
}

void put(Bytes &bytes, size_t offset, const Bytes &field) {
  if (offset + field.size() > bytes.size()) throw std::out_of_range("field of a record");
  std::copy(field.begin(), field.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

Bytes port_record(uint32_t number, std::initializer_list<std::pair<size_t, Bytes>> fields) {
  Bytes bytes = record(kPortSize, fields);
  put(bytes, 0, word(1));
  put(bytes, 4, word(number));
  return bytes;
}

std::string TestBox::state(std::string_view name) const {
  std::string file = read_file(options.state_dir / (std::string(name) + ".state"));
  return box::to_json_text(box::unseal(file), box::Secrets::kShown);
}

void TestBox::damage_state(std::string_view name, std::string_view text,
                           std::string_view replacement) {
  std::string json = state(name);
  size_t at = json.find(text);
  if (at == std::string::npos) throw std::runtime_error(json + " lacks " + std::string(text));
  json.replace(at, text.size(), replacement);
  write_file(options.state_dir / (std::string(name) + ".state"),
             box::seal(box::from_json_text(json)));
}

}  // namespace olt::test
