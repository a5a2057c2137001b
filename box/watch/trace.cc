#include "box/watch/trace.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"

namespace olt::box {

namespace {

constexpr size_t kShownBytes = 64;

/// " [hex]" with "**" for secret bytes and "..." for a cut-off end; empty when there are no bytes.
std::string shown(std::span<const uint8_t> bytes, ByteRange secret) {
  if (bytes.empty()) return "";
  size_t end = std::min(bytes.size(), kShownBytes);
  size_t hidden_begin = std::min(secret.begin, end);
  size_t hidden_end = std::min(secret.end, end);
  std::string text = " [" + to_hex(bytes.first(hidden_begin));
  if (hidden_end > hidden_begin) text += "**";
  text += to_hex(bytes.subspan(hidden_end, end - hidden_end));
  if (bytes.size() > end) text += "...";
  return text + ']';
}

std::string outcome(const Answer &answer, ByteRange secret) {
  switch (answer.action) {
    case Answer::Action::kWithhold:
      return "no answer";
    case Answer::Action::kDisconnect:
      return "disconnected";
    case Answer::Action::kSend:
      break;
  }
  return fmt::format("status {} {}, reply {}{}", answer.status, status_text(answer.status),
                     answer.reply.size(), shown(answer.reply, secret));
}

}  // namespace

std::string trace_line(const Exchange &exchange, const Answer &answer) {
  std::string line = fmt::format(
      "{} module {} type {} {}: request {}{}, {}", utc_microseconds(exchange.time), exchange.module,
      exchange.type, exchange.name.empty() ? "unserved" : exchange.name, exchange.request.size(),
      shown(exchange.request, exchange.secret.request), outcome(answer, exchange.secret.reply));
  if (answer.delay_ms != 0) line += fmt::format(", after {} ms", answer.delay_ms);
  if (exchange.fault != nullptr) {
    line += fmt::format(", fault {} {}", exchange.fault->id, action_name(exchange.fault->action));
  }
  return line;
}

}  // namespace olt::box
