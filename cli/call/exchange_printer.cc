#include "cli/call/exchange_printer.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

#include "base/text.h"
#include "catalog/message_fields.h"
#include "cli/text/field_forms.h"

namespace olt::cli {

using catalog::Field;
using catalog::FieldKind;
using catalog::Message;
using catalog::Operation;
using catalog::Role;

namespace {

/// Enough for every fixed request and most replies.
constexpr size_t kMaxShown = 256;

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
  std::string text = hex_dump(as_bytes(whole.substr(0, kMaxShown)), hidden);
  if (length > kMaxShown) text += fmt::format("  ... {} more bytes\n", length - kMaxShown);
  return text;
}

/// "  slot=1 port=2": what the dump does not say. Empty when there is nothing.
std::string fields_text(const Operation &operation, const Message &message, ByteView bytes) {
  std::string text;
  for (const catalog::MessageField &placed : fields_of(operation, message)) {
    Field field = placed.field;
    if (field.kind == FieldKind::kBytes || field.role == Role::kReserved) continue;
    if (field.offset + field.width > bytes.size()) continue;
    if (field.width == Field::kToTheEnd) {
      field.width = static_cast<uint32_t>(bytes.size() - field.offset);
    }
    ByteView value = bytes.subspan(field.offset, field.width);
    text += fmt::format(" {}={}", field.name,
                        field.holds_secret() ? "**" : form_of(field.kind).text(field, value));
  }
  return text.empty() ? "" : fmt::format(" {}\n", text);
}

ByteView bytes_at(const void *data, size_t length) {
  return {static_cast<const uint8_t *>(data), length};
}

std::string request_fields(const Operation *operation, const olt_exchange &exchange) {
  if (operation == nullptr) return "";
  return fields_text(*operation, operation->request,
                     bytes_at(exchange.request, exchange.request_length));
}

std::string reply_fields(const Operation *operation, const olt_exchange &exchange) {
  bool is_answered = exchange.result == OLT_TRANSPORT_OK && exchange.status == 0;
  if (operation == nullptr || !is_answered) return "";
  return fields_text(*operation, operation->reply, bytes_at(exchange.reply, exchange.reply_length));
}

std::string answer_text(const olt_exchange &exchange) {
  if (exchange.result != OLT_TRANSPORT_OK) return olt_transport_text(exchange.result);
  if (exchange.no_reply != 0) return fmt::format("status {}", exchange.status);
  return fmt::format("status {}, {} bytes", exchange.status, exchange.reply_length);
}

}  // namespace

std::string trace_text(const olt_exchange &exchange, std::span<const catalog::WireSecret> secrets,
                       const Operation *operation) {
  std::vector<Hidden> hidden = hidden_in(exchange.message_type, secrets);
  return fmt::format(
      "> type {} to module {}, {} bytes\n{}{}< {} after {:.3f} ms\n{}{}", exchange.message_type,
      exchange.module, exchange.request_length,
      dump(exchange.request, exchange.request_length, hidden), request_fields(operation, exchange),
      answer_text(exchange), static_cast<double>(exchange.elapsed_ns) / 1e6,
      dump(exchange.reply, exchange.reply_length, hidden), reply_fields(operation, exchange));
}

}  // namespace olt::cli
