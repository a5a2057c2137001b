#include "cli/box/control_client.h"

#include <fmt/format.h>

#include <cstring>
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

constexpr uint32_t kControlTimeout = 10;
/// Reading and taking a large configuration takes a few seconds.
constexpr uint32_t kTransferTimeout = 120;
/// Fits into a request even if each of its bytes takes two in JSON.
constexpr size_t kPieceSize = 32'000;

[[noreturn]] void fail_not_understood(const std::string &command) {
  fail("{} failed: the box's answer is not understood; expected a box of the same version",
       command);
}

/// The reply of the control module.
Bytes ask(const std::string &command, uint32_t type, std::string request, uint32_t timeout) {
  void *data = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  int32_t result = platmsg_syn_result(type, box::kControlModule, request.data(),
                                      static_cast<uint32_t>(request.size()), &data, &length,
                                      &handle, &status, 0, timeout);
  if (result != 0 || status != 0) fail("{} failed: {}", command, describe_result(result | status));
  const auto *bytes = static_cast<const uint8_t *>(data);
  Bytes reply(bytes, bytes + length);
  IPC_Free(handle);
  return reply;
}

ordered_json ask(const ControlRequest &request, uint32_t timeout) {
  std::string command = request["command"];
  Bytes text = ask(command, box::kControlCommand, request.dump(), timeout);
  ordered_json reply = ordered_json::parse(text.begin(), text.end(), nullptr, false);
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

uint32_t start_capture(const WantedExchanges &wanted) {
  ordered_json reply = ask({{"command", "capture_start"},
                            {"module", wanted.module},
                            {"type", wanted.type},
                            {"count", wanted.count},
                            {"secrets", wanted.with_secrets}},
                           kControlTimeout);
  return reply.value("capture", 0U);
}

void stop_capture(uint32_t capture) {
  ask({{"command", "capture_stop"}, {"capture", capture}}, kControlTimeout);
}

CapturePiece read_capture_piece(uint32_t capture) {
  uint32_t head[4];
  std::string request(sizeof capture, '\0');
  std::memcpy(request.data(), &capture, sizeof capture);
  Bytes reply = ask("capture", box::kCapturePiece, request, kControlTimeout);
  if (reply.size() < sizeof head) fail_not_understood("capture");
  std::memcpy(head, reply.data(), sizeof head);
  return {.is_last = head[0] != 0,
          .exchanges = head[1],
          .lost = head[2],
          .bytes = Bytes(reply.begin() + sizeof head, reply.end())};
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
