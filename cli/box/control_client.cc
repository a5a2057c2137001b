#include "cli/box/control_client.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/box.h"
#include "catalog/catalog.h"
#include "cli/call/result_text.h"
#include "cli/text/error.h"
#include "platform/olthost.h"

namespace olt::cli {

using nlohmann::ordered_json;

namespace {

constexpr uint32_t kControlType = 1;
constexpr uint32_t kControlTimeout = 10;
/// Reading and taking a large configuration takes a few seconds.
constexpr uint32_t kTransferTimeout = 120;
/// Fits into a request even if each of its bytes takes two in JSON.
constexpr size_t kPieceSize = 32'000;

[[noreturn]] void fail_not_understood(const std::string &command) {
  fail("{} failed: the box's answer is not understood; expected a box of the same version",
       command);
}

ordered_json ask(const ControlRequest &request, uint32_t timeout) {
  std::string text = request.dump();
  std::string command = request["command"];
  void *data = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  int32_t result = platmsg_syn_result(kControlType, box::kControlModule, text.data(),
                                      static_cast<uint32_t>(text.size()), &data, &length, &handle,
                                      &status, 0, timeout);
  if (result != 0 || status != 0) fail("{} failed: {}", command, describe_result(result | status));
  const auto *reply_text = static_cast<const char *>(data);
  ordered_json reply = ordered_json::parse(reply_text, reply_text + length, nullptr, false);
  IPC_Free(handle);
  if (!reply.is_object() || !reply.contains("ok")) fail_not_understood(command);
  if (reply["ok"] != true) fail("{} failed: {}", command, printable(reply.value("error", "")));
  reply.erase("ok");
  return reply;
}

/// Says of a fault which operations' requests it affects, and that it does those to any module.
void name_operations(ordered_json &fault) {
  ordered_json named;
  for (const auto &[key, value] : fault.items()) {
    named[key] = key == "module" && value == 0 ? ordered_json("any") : value;
    if (key != "type") continue;
    named["operations"] = ordered_json::array();
    for (const catalog::Family &family : catalog::families()) {
      for (const catalog::Operation &operation : family.operations) {
        bool sends_it = operation.address.sends() && operation.address.message_type == value;
        if (sends_it) named["operations"].push_back(operation.name);
      }
    }
  }
  fault = named;
}

}  // namespace

ControlRequest fault_add_request(std::span<const std::string> words) {
  try {
    return ordered_json::parse(box::fault_add_command(fmt::format("{}", fmt::join(words, " "))));
  } catch (const BadInput &error) {
    wrong_usage("fault add: {}", error.what());
  }
}

ControlRequest fault_list_request() {
  return {{"command", "fault_list"}};
}

ControlRequest fault_clear_request(std::optional<uint32_t> id) {
  ControlRequest request = {{"command", "fault_clear"}};
  if (id) request["id"] = *id;
  return request;
}

ControlRequest counters_request() {
  return {{"command", "counters"}};
}

ordered_json ask_box(const ControlRequest &request) {
  ordered_json reply = ask(request, kControlTimeout);
  if (reply.contains("faults")) {
    for (ordered_json &fault : reply["faults"]) name_operations(fault);
  }
  return reply;
}

std::string export_configuration(bool with_secrets) {
  ControlRequest request = {{"command", "config_export"}, {"offset", 0}, {"secrets", with_secrets}};
  std::string text;
  for (;;) {
    ordered_json reply = ask(request, kTransferTimeout);
    auto piece = utf8_to_bytes(reply.value("piece", ""));
    if (!piece || piece->empty()) fail_not_understood(request["command"]);
    text += *piece;
    if (text.size() >= reply.value("length", size_t{0})) return text;
    request = {{"command", request["command"]},
               {"offset", text.size()},
               {"export", reply.value("export", 0)}};
  }
}

ordered_json import_configuration(std::string_view text, bool adopts) {
  ControlRequest request = {{"command", "config_import"},
                            {"offset", 0},
                            {"length", text.size()},
                            {"adopt", adopts},
                            {"piece", bytes_to_utf8(text.substr(0, kPieceSize))}};
  for (size_t offset = kPieceSize;; offset += kPieceSize) {
    ordered_json reply = ask(request, kTransferTimeout);
    if (offset >= text.size()) return reply;
    request = {{"command", request["command"]},
               {"offset", offset},
               {"import", reply.value("import", 0)},
               {"piece", bytes_to_utf8(text.substr(offset, kPieceSize))}};
  }
}

}  // namespace olt::cli
