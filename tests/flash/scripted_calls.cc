#include "tests/flash/scripted_calls.h"

#include <sys/types.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iomanip>
#include <sstream>

#include "flash_device/system_calls.h"

namespace olt::test {
namespace {

thread_local ScriptedCalls *active = nullptr;

std::string hexadecimal(uint64_t value, int digits) {
  std::ostringstream text;
  text << " 0x" << std::hex << std::setfill('0') << std::setw(digits) << value;
  return text.str();
}

std::string decimal(int64_t value) {
  return " " + std::to_string(value);
}

/// The active script, suspended while it runs: its own calls go to the system.
class Script {
 public:
  Script() : script_(active) { active = nullptr; }
  Script(const Script &) = delete;
  Script &operator=(const Script &) = delete;
  ~Script() { active = script_; }
  explicit operator bool() const { return script_ != nullptr; }
  ScriptedCalls *operator->() const { return script_; }
  ScriptedCalls &operator*() const { return *script_; }

 private:
  ScriptedCalls *script_;
};

ssize_t scripted_read(ScriptedCalls &script, int descriptor, void *buffer, size_t length) {
  const size_t max = std::min(length, script.contents.size());
  const int64_t result =
      script.take("read" + decimal(descriptor) + decimal(static_cast<int64_t>(length)),
                  static_cast<int64_t>(max));
  if (result > 0) std::memcpy(buffer, script.contents.data(), static_cast<size_t>(result));
  return static_cast<ssize_t>(result);
}

ssize_t scripted_write(ScriptedCalls &script, int descriptor, const void *data, size_t length) {
  const auto *first = static_cast<const uint8_t *>(data);
  script.written.emplace_back(first, first + length);
  return static_cast<ssize_t>(
      script.take("write" + decimal(descriptor) + decimal(static_cast<int64_t>(length)),
                  static_cast<int64_t>(length)));
}

int scripted_ioctl(ScriptedCalls &script, int descriptor, unsigned long request,
                   const void *argument) {
  std::array<uint32_t, 2> fields;
  std::memcpy(fields.data(), argument, sizeof fields);
  const auto number = static_cast<uint32_t>(request);
  return static_cast<int>(script.take("ioctl" + decimal(descriptor) + hexadecimal(number, 8) +
                                          hexadecimal(fields[0], 6) + hexadecimal(fields[1], 6),
                                      0));
}

}  // namespace

ScriptedCalls::ScriptedCalls() {
  active = this;
}

ScriptedCalls::~ScriptedCalls() {
  active = nullptr;
}

ScriptedCalls &ScriptedCalls::answer(size_t place, int result) {
  answers_[place] = result;
  return *this;
}

int64_t ScriptedCalls::take(const std::string &line, int64_t result) {
  const auto found = answers_.find(lines.size());
  lines.push_back(line);
  return found == answers_.end() ? result : found->second;
}

}  // namespace olt::test

// With names of their own, because the C library declares the real names with attributes.
extern "C" {
int scripted_open_call(const char *path, int flags, mode_t mode) __asm__("open");
int scripted_ioctl_call(int descriptor, unsigned long request, void *argument) __asm__("ioctl");
off_t scripted_lseek_call(int descriptor, off_t offset, int whence) __asm__("lseek");
ssize_t scripted_read_call(int descriptor, void *buffer, size_t length) __asm__("read");
ssize_t scripted_write_call(int descriptor, const void *data, size_t length) __asm__("write");
int scripted_close_call(int descriptor) __asm__("close");
}

using olt::test::decimal;
using olt::test::hexadecimal;
using olt::test::Script;
namespace next = olt::flash_device::next;

int scripted_open_call(const char *path, int flags, mode_t mode) {
  const Script script;
  if (!script) return next::open(path, flags, mode);
  return static_cast<int>(
      script->take("open " + std::string(path) + hexadecimal(static_cast<uint32_t>(flags), 1), 7));
}

int scripted_ioctl_call(int descriptor, unsigned long request, void *argument) {
  const Script script;
  if (!script) return next::ioctl(descriptor, request, argument);
  return olt::test::scripted_ioctl(*script, descriptor, request, argument);
}

off_t scripted_lseek_call(int descriptor, off_t offset, int whence) {
  const Script script;
  if (!script) return next::lseek(descriptor, offset, whence);
  const auto place = static_cast<uint64_t>(offset);
  return static_cast<off_t>(script->take(
      "lseek" + decimal(descriptor) + hexadecimal(place, 6) + decimal(whence), offset));
}

ssize_t scripted_read_call(int descriptor, void *buffer, size_t length) {
  const Script script;
  if (!script) return next::read(descriptor, buffer, length);
  return olt::test::scripted_read(*script, descriptor, buffer, length);
}

ssize_t scripted_write_call(int descriptor, const void *data, size_t length) {
  const Script script;
  if (!script) return next::write(descriptor, data, length);
  return olt::test::scripted_write(*script, descriptor, data, length);
}

int scripted_close_call(int descriptor) {
  const Script script;
  if (!script) return next::close(descriptor);
  return static_cast<int>(script->take("close" + decimal(descriptor), 0));
}
