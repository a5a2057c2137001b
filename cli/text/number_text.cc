#include "cli/text/number_text.h"

#include <charconv>
#include <system_error>

namespace olt::cli {

std::optional<uint32_t> number_in(std::string_view text, uint32_t max) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  uint32_t number = 0;
  const char *end = text.data() + text.size();
  auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc{} || stop != end || number > max) return std::nullopt;
  return number;
}

}  // namespace olt::cli
