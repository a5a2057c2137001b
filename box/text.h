/// Bytes as text.
#ifndef OLT_BOX_TEXT_H
#define OLT_BOX_TEXT_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace olt::box {

using TimePoint = std::chrono::system_clock::time_point;
using Clock = std::function<TimePoint()>;

/// "0a1bff".
std::string to_hex(std::span<const uint8_t> bytes);
/// Nothing when the text is not an even number of hex digits.
std::optional<std::vector<uint8_t>> from_hex(std::string_view text);

/// The text on one line, without control characters or bytes beyond ASCII: those as \xNN.
std::string printable(std::string_view text);

/// Any bytes as UTF-8, one character a byte, so that JSON can hold them.
std::string bytes_to_utf8(std::string_view bytes);
/// The way back; nothing when a character stands for no byte.
std::optional<std::string> utf8_to_bytes(std::string_view text);

/// "2026-01-31T23:59:59Z".
std::string utc_seconds(TimePoint time);
/// "2026-01-31T23:59:59.123456Z".
std::string utc_microseconds(TimePoint time);

}  // namespace olt::box

#endif
