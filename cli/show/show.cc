#include "cli/show/show.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "catalog/message_fields.h"
#include "cli/call/exchange_printer.h"
#include "cli/output/format.h"
#include "cli/text/field_forms.h"

namespace olt::cli {

using capture::Exchange;
using capture::Packet;
using catalog::Field;
using catalog::Layout;
using catalog::Operation;
using nlohmann::ordered_json;

namespace {

std::string cut_text(const char *what, const std::optional<Packet> &packet) {
  if (!packet || packet->record.size() == packet->record_length) return "";
  return fmt::format("  {} cut: {} of {} bytes\n", what, packet->record.size(),
                     packet->record_length);
}

/// The trace of an exchange without that of a packet that is missing.
std::string trace_of(const Exchange &exchange, const std::string &whole) {
  size_t answer = whole.find("\n< ") + 1;
  if (!exchange.request) return "> not in the capture\n" + whole.substr(answer);
  return exchange.answer ? whole : whole.substr(0, answer) + "< not in the capture\n";
}

using Secrets = std::span<const catalog::WireSecret>;

std::string text_of(const Exchange &exchange, std::span<const Operation *const> operations,
                    Secrets secrets) {
  const Packet &packet = exchange.any();
  const Packet nothing;
  const Packet &request = exchange.request ? *exchange.request : nothing;
  const Packet &answer = exchange.answer ? *exchange.answer : nothing;
  olt_exchange traced = {.module = packet.module,
                         .message_type = packet.message_type,
                         .request = request.record.data(),
                         .request_length = static_cast<uint32_t>(request.record.size()),
                         .no_reply = packet.no_reply ? 1U : 0U,
                         .timeout = packet.timeout,
                         .result = static_cast<int32_t>(answer.result),
                         .status = answer.status,
                         .reply_length = static_cast<uint16_t>(answer.record.size()),
                         .reply = answer.record.data(),
                         .elapsed_ns = answer.duration};
  std::string lost =
      packet.lost == 0 ? "" : fmt::format("{} lost\n", counted(packet.lost, "exchange"));
  return fmt::format(
      "{}{}\n{}{}{}\n", lost, title_of(exchange, operations),
      trace_of(exchange,
               trace_text(traced, secrets, operations.empty() ? nullptr : operations.front())),
      cut_text("request", exchange.request), cut_text("reply", exchange.answer));
}

ordered_json fields_json(const Operation &operation, const catalog::Message &message,
                         ByteView record) {
  ordered_json object = ordered_json::object();
  for (const catalog::MessageField &placed : fields_of(operation, message)) {
    Field field = placed.field;
    if (field.offset + field.width > record.size()) continue;
    if (field.width == Field::kToTheEnd)
      field.width = static_cast<uint32_t>(record.size()) - field.offset;
    object[field.name] =
        field.holds_secret()
            ? ordered_json("********")
            : form_of(field.kind).json(field, record.subspan(field.offset, field.width));
  }
  return object;
}

std::string masked_hex(ByteView record, uint32_t message_type, Secrets secrets) {
  std::string text = to_hex(record);
  for (const catalog::WireSecret &secret : secrets) {
    if (secret.message_type != message_type) continue;
    Hidden hidden = {secret.offset, secret.length, secret.stride};
    for (size_t i = 0; i < record.size(); ++i)
      if (hidden.covers(i)) std::fill_n(text.begin() + static_cast<ptrdiff_t>(2 * i), 2, '*');
  }
  return text;
}

ordered_json record_json(const Packet &packet, const Operation *operation, Secrets secrets) {
  bool has_fields = operation != nullptr && (!packet.is_answer || !packet.record.empty());
  return {
      {"length", packet.record_length},
      {"cut", packet.record.size() < packet.record_length},
      {"bytes", masked_hex(packet.record, packet.message_type, secrets)},
      {"fields", has_fields ? fields_json(*operation,
                                          packet.is_answer ? operation->reply : operation->request,
                                          packet.record)
                            : ordered_json()}};
}

std::string json_of(const Exchange &exchange, std::span<const Operation *const> operations,
                    Secrets secrets) {
  const Packet &packet = exchange.any();
  const std::optional<Packet> &answer = exchange.answer;
  const Operation *operation = operations.empty() ? nullptr : operations.front();
  auto of_answer = [&answer](auto value) {
    return answer ? ordered_json(value(*answer)) : ordered_json();
  };
  ordered_json object = {{"version", kJsonVersion}};
  object.update(head_json(exchange, operations));
  object.update(
      {{"lost", packet.lost},
       {"timeout", packet.timeout},
       {"no_reply", packet.no_reply},
       {"masked", packet.is_masked},
       {"result", of_answer([](const Packet &one) { return static_cast<int32_t>(one.result); })},
       {"status", of_answer([](const Packet &one) { return one.status; })},
       {"duration_ns", of_answer([](const Packet &one) { return one.duration; })},
       {"request",
        exchange.request ? record_json(*exchange.request, operation, secrets) : ordered_json()},
       {"reply", answer ? record_json(*answer, operation, secrets) : ordered_json()}});
  return json_line(object);
}

}  // namespace

void show_capture(capture::Reader &reader, const SelectedExchanges &shown, const Layout &layout,
                  bool as_json, const std::function<void(const std::string &)> &print) {
  std::vector<catalog::WireSecret> secrets = catalog::wire_secrets(layout.families());
  capture::Exchanges exchanges(reader);
  while (std::optional<Exchange> exchange = exchanges.next()) {
    std::vector<const Operation *> operations = operations_of(*exchange, layout);
    if (!fits(*exchange, operations, shown)) continue;
    print(as_json ? json_of(*exchange, operations, secrets)
                  : text_of(*exchange, operations, secrets));
  }
}

}  // namespace olt::cli
