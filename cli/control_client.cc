#include "cli/control_client.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/text.h"
#include "box/box.h"
#include "catalog/catalog.h"
#include "cli/argument_parser.h"
#include "cli/error.h"
#include "cli/printer.h"
#include "cli/result_text.h"
#include "platform/olthost.h"

namespace olt::cli {

using nlohmann::ordered_json;

namespace {

constexpr uint32_t kControlType = 1;
constexpr uint32_t kControlTimeout = 10;

struct Limit {
  const char *name;
  uint32_t most;
};
constexpr Limit kNumbers[] = {
    {"module", 255},      {"status", UINT16_MAX}, {"delay_ms", 600'000},
    {"from", UINT32_MAX}, {"count", UINT32_MAX},
};
constexpr const char *kFaultNames = "module, type, status, delay_ms, action, from, count";

uint32_t message_type(const std::string &value) {
  if (const catalog::Operation *operation = catalog::find(value)) {
    if (!operation->address.sends()) {
      wrong_usage("fault add: type: {} sends nothing; expected an operation that does", value);
    }
    return operation->address.message_type;
  }
  if (!value.empty() && (value[0] < '0' || value[0] > '9')) {
    wrong_usage("fault add: type: '{}' given; expected a message type or an operation's name",
                printable(value));
  }
  return parse_number("fault add: type", value, UINT32_MAX);
}

ordered_json fault_value(const std::string &name, const std::string &value) {
  if (name == "type") return message_type(value);
  if (name == "action") {
    if (value == "status" || value == "silence" || value == "drop") return value;
    wrong_usage("fault add: action: '{}' given; expected status, silence or drop",
                printable(value));
  }
  for (const Limit &limit : kNumbers) {
    if (limit.name == name) return parse_number("fault add: " + name, value, limit.most);
  }
  wrong_usage("fault add: there is no argument '{}'; expected: {}", printable(name), kFaultNames);
}

ordered_json fault_add(std::span<const std::string> words) {
  ordered_json fault = ordered_json::object();
  for (const std::string &word : words) {
    size_t equals = word.find('=');
    if (equals == std::string::npos) {
      wrong_usage("fault add: '{}' given; expected NAME=VALUE with one of: {}", printable(word),
                  kFaultNames);
    }
    std::string name = word.substr(0, equals);
    if (fault.contains(name)) wrong_usage("fault add: {} is given twice; expected once", name);
    fault[name] = fault_value(name, word.substr(equals + 1));
  }
  if (!fault.contains("type")) {
    wrong_usage("fault add: type is missing; expected a message type or an operation's name");
  }
  return {{"command", "fault_add"}, {"fault", fault}};
}

ordered_json fault_clear(std::span<const std::string> words) {
  if (words.empty()) return {{"command", "fault_clear"}};
  return {{"command", "fault_clear"}, {"id", parse_number("fault clear", words[0], UINT32_MAX)}};
}

void expect_at_most(size_t most, std::span<const std::string> words, std::string_view command) {
  if (words.size() > most) {
    wrong_usage("{}: '{}' is one argument too many; see oltctl help {}", command,
                printable(words[most]), command.substr(0, command.find(' ')));
  }
}

bool is_scalar(const ordered_json &value) {
  return !value.is_structured();
}

std::string scalar_text(const ordered_json &value) {
  return value.is_string() ? printable(value.get<std::string>()) : value.dump();
}

/// An object on one line: "id=1 type=12 status=5".
std::string row_text(const ordered_json &object) {
  std::string text;
  for (const auto &[name, value] : object.items()) {
    if (!text.empty()) text += ' ';
    text += fmt::format("{}={}", name, scalar_text(value));
  }
  return text + '\n';
}

std::string value_text(const std::string &name, const ordered_json &value) {
  std::string text;
  if (is_scalar(value)) return fmt::format("{} = {}\n", name, scalar_text(value));
  if (value.is_array()) {
    if (value.empty()) return fmt::format("{}: none\n", name);
    text = fmt::format("{}:\n", name);
    for (const ordered_json &element : value) text += "  " + row_text(element);
    return text;
  }
  for (const auto &[inner, member] : value.items()) {
    text += value_text(name.empty() ? inner : fmt::format("{}.{}", name, inner), member);
  }
  return text;
}

}  // namespace

ordered_json control_request(std::span<const std::string> words) {
  if (words[0] == "counters") {
    expect_at_most(0, words.subspan(1), "counters");
    return {{"command", "counters"}};
  }
  std::string command = words.size() > 1 ? words[1] : "";
  std::span<const std::string> rest = words.subspan(std::min<size_t>(2, words.size()));
  if (command == "add") return fault_add(rest);
  if (command == "list") {
    expect_at_most(0, rest, "fault list");
    return {{"command", "fault_list"}};
  }
  if (command == "clear") {
    expect_at_most(1, rest, "fault clear");
    return fault_clear(rest);
  }
  wrong_usage("fault: '{}' given; expected add, list or clear", printable(command));
}

ordered_json ask_box(const ordered_json &request) {
  std::string text = request.dump(-1, ' ', true, ordered_json::error_handler_t::replace);
  std::string command = request["command"];
  void *data = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  int32_t result = platmsg_syn_result(kControlType, box::kControlModule, text.data(),
                                      static_cast<uint32_t>(text.size()), &data, &length, &handle,
                                      &status, 0, kControlTimeout);
  if (result != 0 || status != 0) {
    fail("{} failed: {}", command, describe_result(result | status));
  }
  ordered_json reply = ordered_json::parse(
      static_cast<const char *>(data), static_cast<const char *>(data) + length, nullptr, false);
  IPC_Free(handle);
  if (!reply.is_object() || !reply.contains("ok")) {
    fail("{} failed: the box's answer is not understood; is it of the same version?", command);
  }
  if (reply["ok"] != true) fail("{} failed: {}", command, scalar_text(reply["error"]));
  reply.erase("ok");
  return reply;
}

std::string control_text(const ordered_json &reply) {
  std::string text;
  for (const auto &[name, value] : reply.items()) {
    text += value_text(name == "counters" ? "" : name, value);
  }
  return text;
}

ordered_json control_json(const ordered_json &request, const ordered_json &reply) {
  ordered_json object = {{"version", kJsonVersion}, {"command", request["command"]}};
  object.update(reply);
  return object;
}

}  // namespace olt::cli
