/// The box's own controls: faults, counters and the configuration.
#ifndef OLT_CLI_BOX_CONTROL_CLIENT_H
#define OLT_CLI_BOX_CONTROL_CLIENT_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/text.h"

namespace olt::cli {

/// Requests for the box's controls, each with its command's name in the member "command".
using ControlRequest = nlohmann::ordered_json;

/// Adds the fault that words NAME=VALUE describe. Throws Error.
ControlRequest fault_add_request(std::span<const std::string> words);
ControlRequest fault_list_request();
/// Ends one fault, or all.
ControlRequest fault_clear_request(std::optional<uint32_t> id);
ControlRequest counters_request();

/// Which exchanges a box captures. Of module, type and count, 0 means any.
struct WantedExchanges {
  uint32_t module = 0;
  uint32_t type = 0;
  uint32_t count = 0;
  bool with_secrets = false;
};

/// Has the box begin a capture; returns its number. Throws Error.
uint32_t start_capture(const WantedExchanges &wanted);
/// Has it add no more exchanges. Throws Error.
void stop_capture(uint32_t capture);

struct CapturePiece {
  bool is_last = false;
  uint32_t exchanges = 0;  ///< so far
  uint32_t lost = 0;
  Bytes bytes;
};

/// What follows in the capture. Throws Error.
CapturePiece read_capture_piece(uint32_t capture);

/// Sends the request to the box and returns its reply. Throws Error when either side fails.
nlohmann::ordered_json ask_box(const ControlRequest &request);

/// The configuration of the box as JSON text. Throws Error.
std::string export_configuration(bool with_secrets);
/// Has the box take a configuration; returns what it says about parts that it left out. Throws
/// Error; the box then has its old configuration.
nlohmann::ordered_json import_configuration(std::string_view text, bool adopts);

}  // namespace olt::cli

#endif
