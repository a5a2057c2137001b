/// The box's own controls: faults and counters.
#ifndef OLT_CLI_CONTROL_CLIENT_H
#define OLT_CLI_CONTROL_CLIENT_H

#include <nlohmann/json.hpp>

#include <span>
#include <string>

namespace olt::cli {

/// The request for the words "fault add type=12 status=5", "fault list", "fault clear 3" or
/// "counters". Throws Error.
nlohmann::ordered_json control_request(std::span<const std::string> words);

/// Sends the request to the box and gives its reply. Throws Error when either side fails.
nlohmann::ordered_json ask_box(const nlohmann::ordered_json &request);

/// A reply as lines.
std::string control_text(const nlohmann::ordered_json &reply);

/// A reply as the object that --json prints.
nlohmann::ordered_json control_json(const nlohmann::ordered_json &request,
                                    const nlohmann::ordered_json &reply);

}  // namespace olt::cli

#endif
