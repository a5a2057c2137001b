/// An update as oltctl shows it: as text, or as JSON lines.
#ifndef OLT_CLI_UPDATE_DISPLAY_H
#define OLT_CLI_UPDATE_DISPLAY_H

#include <cstdint>
#include <memory>
#include <string>

#include "cli/output/format.h"
#include "cli/update/update.h"

namespace olt::cli {

std::unique_ptr<UpdateDisplay> make_update_display(Format format, const std::string &target,
                                                   uint32_t total);

}  // namespace olt::cli

#endif
