#ifndef OLT_CLI_LAYOUT_WRITER_H
#define OLT_CLI_LAYOUT_WRITER_H

#include <string>

#include "catalog/layout.h"

namespace olt::cli {

/// The layout as parse_layout() reads it, except that a built-in one has a name that it refuses.
std::string layout_text(const catalog::Layout &layout);

}  // namespace olt::cli

#endif
