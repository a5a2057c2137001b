/// Records that are given in part: the rest keeps its present values.
#ifndef OLT_CLI_INPUT_PRESENT_VALUES_H
#define OLT_CLI_INPUT_PRESENT_VALUES_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/text.h"
#include "catalog/layout.h"
#include "cli/call/call.h"

namespace olt::cli {

/// What a call sets.
struct SetBytes {
  size_t place;
  uint32_t offset;
  uint32_t width;
  Bytes before;  ///< the whole argument, as it is before the call
};

/// Throws Error unless all fields are given of the records that no operation reads.
void require_all_fields(const Call &call);

/// Reads what the call sets with the getter of its operation, and fills in what is not given. Asks
/// for a secret that the getter does not know. Throws Error.
/// @return what is set; nothing when the layout does not say where the present values are, and all
/// fields had to be given
std::optional<SetBytes> keep_present_values(Call &call, const catalog::Layout &layout);

}  // namespace olt::cli

#endif
