/// Numbers as people write them.
#ifndef OLT_CLI_TEXT_NUMBER_TEXT_H
#define OLT_CLI_TEXT_NUMBER_TEXT_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace olt::cli {

/// A decimal or 0x number from 0 to most.
std::optional<uint32_t> number_in(std::string_view text, uint32_t max);

}  // namespace olt::cli

#endif
