/// What an operation's result means.
#ifndef OLT_CLI_CALL_RESULT_TEXT_H
#define OLT_CLI_CALL_RESULT_TEXT_H

#include <cstdint>
#include <optional>
#include <string>

#include "catalog/layout.h"
#include "catalog/operation.h"

namespace olt::cli {

/// The parts of a result: the transport result in the upper half, the module's status in the lower.
struct ResultParts {
  std::optional<std::string> transport;  ///< why the exchange failed
  std::optional<uint16_t> status;        ///< nothing when none came
};

ResultParts take_apart(int32_t result);

/// What the result means for that operation.
/// @param reason Call::reason() of the result
std::string describe_result(const catalog::Operation &operation, int32_t result, int32_t reason,
                            const catalog::Layout &layout = catalog::Layout::box());

/// "result 5 (0x00000005): status 5 (oltbox: exists already)"
std::string describe_result(int32_t result, const catalog::Layout &layout = catalog::Layout::box());

}  // namespace olt::cli

#endif
