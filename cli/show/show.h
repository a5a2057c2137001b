/// Captures as text and as JSON.
#ifndef OLT_CLI_SHOW_SHOW_H
#define OLT_CLI_SHOW_SHOW_H

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "capture/reader.h"
#include "catalog/layout.h"

namespace olt::cli {

/// Which exchanges of a capture are shown: all that fit everything that is set.
struct ShownExchanges {
  std::optional<std::string> operation;
  std::optional<uint32_t> module;
  std::optional<uint32_t> status;
  bool failed = false;  ///< only those
  uint64_t from = 0;    ///< nanoseconds since 1970, of the request
  uint64_t to = UINT64_MAX;
};

/// From NAME=VALUE words. Throws Error.
ShownExchanges shown_exchanges(std::span<const std::string> words, const catalog::Layout &layout);

/// The names that such words begin with.
std::vector<std::string> names_of_filters();

/// Prints each exchange that fits, in the order in which they ended. Throws BadInput.
void show_capture(capture::Reader &reader, const ShownExchanges &shown,
                  const catalog::Layout &layout, bool as_json,
                  const std::function<void(const std::string &)> &print);

}  // namespace olt::cli

#endif
