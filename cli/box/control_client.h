/// The box's own controls: faults and counters.
#ifndef OLT_CLI_BOX_CONTROL_CLIENT_H
#define OLT_CLI_BOX_CONTROL_CLIENT_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace olt::cli {

/// Requests for the box's controls, each with its command's name in the member "command".
using ControlRequest = nlohmann::ordered_json;

/// Adds the fault that words NAME=VALUE describe. Throws Error.
ControlRequest fault_add_request(std::span<const std::string> words);
ControlRequest fault_list_request();
/// Ends one fault, or all.
ControlRequest fault_clear_request(std::optional<uint32_t> id);
ControlRequest counters_request();

/// Sends the request to the box and returns its reply. Throws Error when either side fails.
nlohmann::ordered_json ask_box(const ControlRequest &request);

}  // namespace olt::cli

#endif
