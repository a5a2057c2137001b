/// Layouts as JSON. docs/layouts.md describes the members.
#ifndef OLT_CLI_LAYOUT_READER_H
#define OLT_CLI_LAYOUT_READER_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "catalog/layout.h"

namespace olt::cli {

/// Bytes that a layout's file may have.
inline constexpr size_t kLongestLayout = size_t{1} << 20;

/// The version of the form.
inline constexpr uint32_t kLayoutVersion = 1;

/// Reads a layout. Throws BadInput, "PLACE: what is wrong; expected WHAT", where the place is
/// LINE:COLUMN or a JSON pointer.
catalog::Layout parse_layout(std::string_view text);

}  // namespace olt::cli

#endif
