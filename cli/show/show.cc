#include "cli/show/show.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <utility>

#include "base/clock.h"
#include "base/text.h"
#include "catalog/message_fields.h"
#include "cli/call/exchange_printer.h"
#include "cli/output/format.h"
#include "cli/text/error.h"
#include "cli/text/field_forms.h"
#include "cli/text/number_text.h"

namespace olt::cli {

using capture::Packet;
using catalog::Field;
using catalog::Layout;
using catalog::Operation;
using catalog::Part;
using nlohmann::ordered_json;

namespace {

/// Requests that wait for their answer, at most: in a whole capture, there is one.
constexpr size_t kMaxWaiting = 1'000;

constexpr uint64_t kNanoseconds = 1'000'000'000;

/// Both packets; one may be missing.
struct Exchange {
  std::optional<Packet> request;
  std::optional<Packet> answer;

  const Packet &any() const { return request ? *request : *answer; }
};

// Operations

bool holds_constants(const Operation &operation, ByteView request) {
  std::span<const Part> parts = operation.request.parts();
  return std::all_of(parts.begin(), parts.end(), [request](const Part &part) {
    if (part.origin != catalog::Origin::kConstant) return true;
    for (size_t i = 0; i < part.width && part.offset + i < request.size(); ++i) {
      uint32_t byte = i < sizeof part.constant ? part.constant >> (8 * i) & 0xFFU : 0;
      if (request[part.offset + i] != byte) return false;
    }
    return true;
  });
}

bool may_send(const Operation &operation, const Packet &packet, const Exchange &exchange) {
  const catalog::Address &address = operation.address;
  bool is_module = address.module == catalog::Address::kNamedByCaller ||
                   address.module == packet.module || address.second_module == packet.module;
  if (!address.sends() || address.message_type != packet.message_type || !is_module) return false;
  if (!exchange.request) return true;
  uint32_t fixed = operation.request.fixed_length();
  bool is_open =
      operation.request.part_count > 0 && operation.request.parts().back().reaches_the_end();
  uint32_t length = exchange.request->record_length;
  return (is_open ? length >= fixed : length == fixed) &&
         holds_constants(operation, exchange.request->record);
}

/// Those that may have made the exchange.
std::vector<const Operation *> operations_of(const Exchange &exchange, const Layout &layout) {
  std::vector<const Operation *> found;
  for (const catalog::Family &family : layout.families()) {
    for (const Operation &operation : family.operations)
      if (may_send(operation, exchange.any(), exchange)) found.push_back(&operation);
  }
  return found;
}

// Filters

/// "2026-01-31T23:59:59Z", with up to nine digits after a point.
std::optional<uint64_t> nanoseconds_in(const std::string &text) {
  tm parts = {};
  const char *rest = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
  if (rest == nullptr) return std::nullopt;
  uint64_t fraction = 0;
  if (*rest == '.') {
    uint64_t unit = kNanoseconds;
    for (++rest; *rest >= '0' && *rest <= '9' && unit > 1; ++rest) {
      unit /= 10;
      fraction += unit * static_cast<uint64_t>(*rest - '0');
    }
  }
  time_t seconds = timegm(&parts);
  if (std::string_view(rest) != "Z" || seconds < 0) return std::nullopt;
  return static_cast<uint64_t>(seconds) * kNanoseconds + fraction;
}

[[noreturn]] void refuse(std::string_view name, std::string_view value, const char *expected) {
  wrong_usage("show: {}: '{}' given; expected {}", name, printable(value), expected);
}

struct Filter {
  const char *name;
  const char *expected;
  /// @return false when the value is not what is expected
  bool (*set)(ShownExchanges &shown, const std::string &value, const Layout &layout);
};

bool set_time(uint64_t &time, const std::string &value) {
  std::optional<uint64_t> given = nanoseconds_in(value);
  time = given.value_or(0);
  return given.has_value();
}

constexpr const char *kTime = "a time such as 2026-01-31T23:59:59Z";

constexpr Filter kFilters[] = {
    {"operation", "an operation that 'oltctl list' names",
     [](ShownExchanges &shown, const std::string &value, const Layout &layout) {
       shown.operation = value;
       return layout.find(value) != nullptr;
     }},
    {"module", "a number from 0 to 4294967295",
     [](ShownExchanges &shown, const std::string &value, const Layout & /*layout*/) {
       shown.module = number_in(value, UINT32_MAX);
       return shown.module.has_value();
     }},
    {"status", "a number from 0 to 65535, or failed",
     [](ShownExchanges &shown, const std::string &value, const Layout & /*layout*/) {
       shown.failed = value == "failed";
       if (!shown.failed) shown.status = number_in(value, UINT16_MAX);
       return shown.failed || shown.status;
     }},
    {"from", kTime,
     [](ShownExchanges &shown, const std::string &value, const Layout & /*layout*/) {
       return set_time(shown.from, value);
     }},
    {"to", kTime,
     [](ShownExchanges &shown, const std::string &value, const Layout & /*layout*/) {
       return set_time(shown.to, value);
     }},
};

bool has_failed(const Exchange &exchange) {
  return !exchange.answer || exchange.answer->result != 0 || exchange.answer->status != 0;
}

bool has_status(const Exchange &exchange, uint32_t status) {
  return exchange.answer && exchange.answer->result == 0 && exchange.answer->status == status;
}

/// Without a look at the operation.
bool fits(const Exchange &exchange, const ShownExchanges &shown) {
  const Packet &packet = exchange.any();
  if (shown.module && packet.module != *shown.module) return false;
  if (shown.failed && !has_failed(exchange)) return false;
  if (shown.status && !has_status(exchange, *shown.status)) return false;
  return packet.time >= shown.from && packet.time <= shown.to;
}

bool has_operation(std::span<const Operation *const> operations, const ShownExchanges &shown) {
  return !shown.operation ||
         std::any_of(operations.begin(), operations.end(), [&shown](const Operation *operation) {
           return operation->name == *shown.operation;
         });
}

// Text and JSON

/// "2026-01-31T23:59:59.123456789Z".
std::string time_text(uint64_t nanoseconds) {
  std::string text = utc_seconds(TimePoint(std::chrono::seconds(nanoseconds / kNanoseconds)));
  text.pop_back();
  return fmt::format("{}.{:09}Z", text, nanoseconds % kNanoseconds);
}

std::string names_of(std::span<const Operation *const> operations) {
  std::vector<std::string_view> names;
  for (const Operation *operation : operations) names.emplace_back(operation->name);
  return names.empty() ? "an unknown operation" : fmt::format("{}", fmt::join(names, " or "));
}

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
      "{}{} {} {}/{} #{} {}\n{}{}{}\n", lost, time_text(packet.time),
      packet.program.empty() ? "-" : printable(packet.program), packet.process, packet.thread,
      packet.exchange, names_of(operations),
      trace_of(exchange,
               trace_text(traced, secrets, operations.empty() ? nullptr : operations.front())),
      cut_text("request", exchange.request), cut_text("reply", exchange.answer));
}

bool has_secret(const Field &field) {
  return field.secret || std::any_of(field.record.begin(), field.record.end(), has_secret);
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
        has_secret(field)
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
  ordered_json names = ordered_json::array();
  for (const Operation *one : operations) names.push_back(one->name);
  auto of_answer = [&answer](auto value) {
    return answer ? ordered_json(value(*answer)) : ordered_json();
  };
  return json_line(
      {{"version", kJsonVersion},
       {"time", time_text(packet.time)},
       {"program", packet.program},
       {"run", packet.run},
       {"process", packet.process},
       {"thread", packet.thread},
       {"exchange", packet.exchange},
       {"lost", packet.lost},
       {"module", packet.module},
       {"message_type", packet.message_type},
       {"operations", names},
       {"timeout", packet.timeout},
       {"no_reply", packet.no_reply},
       {"masked", packet.is_masked},
       {"result", of_answer([](const Packet &one) { return static_cast<int32_t>(one.result); })},
       {"status", of_answer([](const Packet &one) { return one.status; })},
       {"duration_ns", of_answer([](const Packet &one) { return one.duration; })},
       {"request",
        exchange.request ? record_json(*exchange.request, operation, secrets) : ordered_json()},
       {"reply", answer ? record_json(*answer, operation, secrets) : ordered_json()}});
}

/// Puts the packets of an exchange together.
class Pairs {
 public:
  explicit Pairs(capture::Reader &reader) : reader_(reader) {}

  std::optional<Exchange> next() {
    while (waiting_.size() <= kMaxWaiting) {
      std::optional<Packet> packet = reader_.next();
      if (!packet) break;
      auto request = waiting_.find(packet->identity());
      if (!packet->is_answer) {
        waiting_.insert_or_assign(packet->identity(), std::move(*packet));
      } else if (request == waiting_.end()) {
        return Exchange{std::nullopt, std::move(packet)};
      } else {
        Exchange exchange{std::move(request->second), std::move(packet)};
        waiting_.erase(request);
        return exchange;
      }
    }
    if (waiting_.empty()) return std::nullopt;
    Exchange unanswered{std::move(waiting_.begin()->second), std::nullopt};
    waiting_.erase(waiting_.begin());
    return unanswered;
  }

 private:
  capture::Reader &reader_;
  std::map<Packet::Identity, Packet> waiting_;
};

}  // namespace

ShownExchanges shown_exchanges(std::span<const std::string> words, const Layout &layout) {
  ShownExchanges shown;
  for (const std::string &word : words) {
    size_t equals = std::min(word.find('='), word.size());
    std::string name = word.substr(0, equals);
    const auto *filter = std::find_if(std::begin(kFilters), std::end(kFilters),
                                      [&name](const Filter &one) { return name == one.name; });
    if (filter == std::end(kFilters) || equals == word.size()) {
      wrong_usage("show: '{}' given; expected {}VALUE", printable(word),
                  fmt::join(names_of_filters(), "VALUE, "));
    }
    std::string value = word.substr(equals + 1);
    if (!filter->set(shown, value, layout)) refuse(name, value, filter->expected);
  }
  return shown;
}

std::vector<std::string> names_of_filters() {
  std::vector<std::string> names;
  for (const Filter &filter : kFilters) names.push_back(fmt::format("{}=", filter.name));
  return names;
}

void show_capture(capture::Reader &reader, const ShownExchanges &shown, const Layout &layout,
                  bool as_json, const std::function<void(const std::string &)> &print) {
  std::vector<catalog::WireSecret> secrets = catalog::wire_secrets(layout.families());
  Pairs pairs(reader);
  while (std::optional<Exchange> exchange = pairs.next()) {
    if (!fits(*exchange, shown)) continue;
    std::vector<const Operation *> operations = operations_of(*exchange, layout);
    if (!has_operation(operations, shown)) continue;
    print(as_json ? json_of(*exchange, operations, secrets)
                  : text_of(*exchange, operations, secrets));
  }
}

}  // namespace olt::cli
