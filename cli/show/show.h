/// Captures as text and as JSON.
#ifndef OLT_CLI_SHOW_SHOW_H
#define OLT_CLI_SHOW_SHOW_H

#include <functional>
#include <string>

#include "capture/reader.h"
#include "catalog/layout.h"
#include "cli/show/selection.h"

namespace olt::cli {

/// Prints each exchange that fits, in the order in which they ended. Throws BadInput.
void show_capture(capture::Reader &reader, const SelectedExchanges &shown,
                  const catalog::Layout &layout, bool as_json,
                  const std::function<void(const std::string &)> &print);

}  // namespace olt::cli

#endif
