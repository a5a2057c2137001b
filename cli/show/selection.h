/// Which exchanges of a capture are meant, and what they are called.
#ifndef OLT_CLI_SHOW_SELECTION_H
#define OLT_CLI_SHOW_SELECTION_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "capture/exchanges.h"
#include "catalog/layout.h"

namespace olt::cli {

/// All exchanges that fit everything that is set.
struct SelectedExchanges {
  std::optional<std::string> operation;
  std::optional<uint32_t> module;
  std::optional<uint32_t> status;
  bool failed = false;  ///< only those
  uint64_t from = 0;    ///< nanoseconds since 1970, of the request
  uint64_t to = UINT64_MAX;
};

/// From NAME=VALUE words of a command. Throws Error.
SelectedExchanges selected_exchanges(std::string_view command, std::span<const std::string> words,
                                     const catalog::Layout &layout);

/// The names that such words begin with.
std::vector<std::string> names_of_filters();

/// The operations that may have made the exchange.
std::vector<const catalog::Operation *> operations_of(const capture::Exchange &exchange,
                                                      const catalog::Layout &layout);

bool fits(const capture::Exchange &exchange, std::span<const catalog::Operation *const> operations,
          const SelectedExchanges &selected);

/// "2026-01-31T23:59:59.123456789Z".
std::string time_text(uint64_t nanoseconds);

/// "2026-01-31T23:59:59.123456789Z front_end 1234/1235 #17 get_olt_mac".
std::string title_of(const capture::Exchange &exchange,
                     std::span<const catalog::Operation *const> operations);

/// The same as members of an object, with module and message type.
nlohmann::ordered_json head_json(const capture::Exchange &exchange,
                                 std::span<const catalog::Operation *const> operations);

}  // namespace olt::cli

#endif
