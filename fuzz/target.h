/// What the fuzz targets share: the function that takes an input, and checks of rules.
#ifndef OLT_FUZZ_TARGET_H
#define OLT_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace olt::fuzz {

/// Ends the program and prints the rule and what broke it, unless the rule holds.
void require(bool holds, std::string_view rule, std::string_view broken_by = {});

/// A message to a user: one line, not empty, without anything that moves a terminal's cursor.
void require_line(std::string_view line);

/// Lines that end with a newline, each as above but perhaps empty.
void require_lines(std::string_view text);

/// Reads an input from its beginning. Past its end it reads zeros.
class Input {
 public:
  Input(const uint8_t *data, size_t size) : data_(data, size) {}

  bool empty() const { return data_.empty(); }
  uint8_t u8();
  uint16_t u16();
  uint32_t u32();
  /// At most so many bytes.
  std::span<const uint8_t> bytes(size_t max);
  std::span<const uint8_t> rest() { return bytes(data_.size()); }
  std::string_view text();

 private:
  std::span<const uint8_t> data_;
};

}  // namespace olt::fuzz

#endif
