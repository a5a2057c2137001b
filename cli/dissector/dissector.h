/// A dissector of captures for Wireshark.
#ifndef OLT_CLI_DISSECTOR_DISSECTOR_H
#define OLT_CLI_DISSECTOR_DISSECTOR_H

#include <string>

#include "catalog/layout.h"

namespace olt::cli {

/// A Lua script that Wireshark loads: tables of the catalog, and the code that uses them.
std::string dissector_of(const catalog::Layout &layout);

}  // namespace olt::cli

#endif
