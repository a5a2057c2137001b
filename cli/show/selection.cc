#include "cli/show/selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>

#include "base/clock.h"
#include "base/text.h"
#include "catalog/senders.h"
#include "cli/text/error.h"
#include "cli/text/number_text.h"

namespace olt::cli {

using capture::Exchange;
using capture::Packet;
using catalog::Layout;
using catalog::Operation;

namespace {

constexpr uint64_t kNanoseconds = 1'000'000'000;

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

struct Filter {
  const char *name;
  const char *expected;
  /// @return false when the value is not what is expected
  bool (*set)(SelectedExchanges &selected, const std::string &value, const Layout &layout);
};

bool set_time(uint64_t &time, const std::string &value) {
  std::optional<uint64_t> given = nanoseconds_in(value);
  time = given.value_or(0);
  return given.has_value();
}

constexpr const char *kTime = "a time such as 2026-01-31T23:59:59Z";

constexpr Filter kFilters[] = {
    {"operation", "an operation that 'oltctl list' names",
     [](SelectedExchanges &selected, const std::string &value, const Layout &layout) {
       selected.operation = value;
       return layout.find(value) != nullptr;
     }},
    {"module", "a number from 0 to 4294967295",
     [](SelectedExchanges &selected, const std::string &value, const Layout & /*layout*/) {
       selected.module = number_in(value, UINT32_MAX);
       return selected.module.has_value();
     }},
    {"status", "a number from 0 to 65535, or failed",
     [](SelectedExchanges &selected, const std::string &value, const Layout & /*layout*/) {
       selected.failed = value == "failed";
       if (!selected.failed) selected.status = number_in(value, UINT16_MAX);
       return selected.failed || selected.status;
     }},
    {"from", kTime,
     [](SelectedExchanges &selected, const std::string &value, const Layout & /*layout*/) {
       return set_time(selected.from, value);
     }},
    {"to", kTime,
     [](SelectedExchanges &selected, const std::string &value, const Layout & /*layout*/) {
       return set_time(selected.to, value);
     }},
};

bool has_failed(const Exchange &exchange) {
  return !exchange.answer || exchange.answer->result != 0 || exchange.answer->status != 0;
}

bool has_status(const Exchange &exchange, uint32_t status) {
  return exchange.answer && exchange.answer->result == 0 && exchange.answer->status == status;
}

std::string names_of(std::span<const Operation *const> operations) {
  std::vector<std::string_view> names;
  for (const Operation *operation : operations) names.emplace_back(operation->name);
  return names.empty() ? "an unknown operation" : fmt::format("{}", fmt::join(names, " or "));
}

/// Without a look at the operation.
bool fits(const Exchange &exchange, const SelectedExchanges &selected) {
  const Packet &packet = exchange.any();
  if (selected.module && packet.module != *selected.module) return false;
  if (selected.failed && !has_failed(exchange)) return false;
  if (selected.status && !has_status(exchange, *selected.status)) return false;
  return packet.time >= selected.from && packet.time <= selected.to;
}

}  // namespace

SelectedExchanges selected_exchanges(std::string_view command, std::span<const std::string> words,
                                     const Layout &layout) {
  SelectedExchanges selected;
  for (const std::string &word : words) {
    size_t equals = std::min(word.find('='), word.size());
    std::string name = word.substr(0, equals);
    const auto *filter = std::find_if(std::begin(kFilters), std::end(kFilters),
                                      [&name](const Filter &one) { return name == one.name; });
    if (filter == std::end(kFilters) || equals == word.size()) {
      wrong_usage("{}: '{}' given; expected {}VALUE", command, printable(word),
                  fmt::join(names_of_filters(), "VALUE, "));
    }
    std::string value = word.substr(equals + 1);
    if (!filter->set(selected, value, layout)) {
      wrong_usage("{}: {}: '{}' given; expected {}", command, name, printable(value),
                  filter->expected);
    }
  }
  return selected;
}

std::vector<std::string> names_of_filters() {
  std::vector<std::string> names;
  for (const Filter &filter : kFilters) names.push_back(fmt::format("{}=", filter.name));
  return names;
}

std::vector<const Operation *> operations_of(const Exchange &exchange, const Layout &layout) {
  const Packet &packet = exchange.any();
  if (!exchange.request) return senders_of(packet.module, packet.message_type, layout);
  return senders_of({.module = packet.module,
                     .message_type = packet.message_type,
                     .bytes = packet.record,
                     .length = packet.record_length},
                    layout);
}

bool fits(const Exchange &exchange, std::span<const Operation *const> operations,
          const SelectedExchanges &selected) {
  bool is_selected =
      !selected.operation ||
      std::any_of(operations.begin(), operations.end(), [&selected](const Operation *operation) {
        return operation->name == *selected.operation;
      });
  return is_selected && fits(exchange, selected);
}

std::string time_text(uint64_t nanoseconds) {
  std::string text = utc_seconds(TimePoint(std::chrono::seconds(nanoseconds / kNanoseconds)));
  text.pop_back();
  return fmt::format("{}.{:09}Z", text, nanoseconds % kNanoseconds);
}

std::string title_of(const Exchange &exchange, std::span<const Operation *const> operations) {
  const Packet &packet = exchange.any();
  return fmt::format("{} {} {}/{} #{} {}", time_text(packet.time),
                     packet.program.empty() ? "-" : printable(packet.program), packet.process,
                     packet.thread, packet.exchange, names_of(operations));
}

nlohmann::ordered_json head_json(const Exchange &exchange,
                                 std::span<const Operation *const> operations) {
  const Packet &packet = exchange.any();
  nlohmann::ordered_json names = nlohmann::ordered_json::array();
  for (const Operation *operation : operations) names.push_back(operation->name);
  return {{"time", time_text(packet.time)},
          {"program", packet.program},
          {"run", packet.run},
          {"process", packet.process},
          {"thread", packet.thread},
          {"exchange", packet.exchange},
          {"module", packet.module},
          {"message_type", packet.message_type},
          {"operations", names}};
}

}  // namespace olt::cli
