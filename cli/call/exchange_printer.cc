#include "cli/call/exchange_printer.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

#include "base/text.h"

namespace olt::cli {

namespace {

/// Enough for every fixed request and most replies.
constexpr size_t kMostShown = 256;

/// Everything in requests and replies of the type that may be a secret.
std::vector<Hidden> hidden_in(uint32_t message_type, std::span<const catalog::WireSecret> secrets) {
  std::vector<Hidden> hidden;
  for (const catalog::WireSecret &secret : secrets) {
    if (secret.message_type == message_type) {
      hidden.push_back({secret.offset, secret.length, secret.stride});
    }
  }
  return hidden;
}

std::string dump(const void *data, size_t length, std::vector<Hidden> hidden) {
  // A configuration in a control, which may hold any secret.
  constexpr std::string_view kPiece = "\"piece\":\"";
  std::string_view whole(static_cast<const char *>(data), length);
  size_t piece = whole.find(kPiece);
  if (piece != std::string_view::npos) hidden.push_back({piece + kPiece.size(), length, 0});
  std::string text = hex_dump(as_bytes(whole.substr(0, kMostShown)), hidden);
  if (length > kMostShown) text += fmt::format("  ... {} more bytes\n", length - kMostShown);
  return text;
}

std::string answer_text(const olt_exchange &exchange) {
  if (exchange.result != OLT_TRANSPORT_OK) return olt_transport_text(exchange.result);
  if (exchange.no_reply != 0) return fmt::format("status {}", exchange.status);
  return fmt::format("status {}, {} bytes", exchange.status, exchange.reply_length);
}

}  // namespace

std::string trace_text(const olt_exchange &exchange, std::span<const catalog::WireSecret> secrets) {
  std::vector<Hidden> hidden = hidden_in(exchange.message_type, secrets);
  return fmt::format("> type {} to module {}, {} bytes\n{}< {} after {:.3f} ms\n{}",
                     exchange.message_type, exchange.module, exchange.request_length,
                     dump(exchange.request, exchange.request_length, hidden), answer_text(exchange),
                     static_cast<double>(exchange.elapsed_ns) / 1e6,
                     dump(exchange.reply, exchange.reply_length, hidden));
}

}  // namespace olt::cli
