/// What a call brought, as text or as JSON. docs/oltctl.md describes both forms.
#ifndef OLT_CLI_PRINTER_H
#define OLT_CLI_PRINTER_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>

#include "base/text.h"
#include "cli/call.h"

namespace olt::cli {

/// The version that every JSON object carries.
inline constexpr int kJsonVersion = 1;

struct Shown {
  const Call &call;
  int32_t result;
  std::optional<std::string> listing;  ///< the listing's text, once it could be read
  bool secrets;                        ///< show them, or mask them
};

/// Lines for the outputs and the listing. Of a call that succeeded.
std::string as_text(const Shown &shown);

/// One object, outputs only when the call succeeded.
nlohmann::ordered_json as_json(const Shown &shown);

/// The value of a record's field. The record may be a block.
nlohmann::ordered_json field_as_json(const catalog::Field &field, ByteView record, bool secrets);

/// The object on one line. Bytes that are not UTF-8 become U+FFFD.
std::string json_line(const nlohmann::ordered_json &object);

}  // namespace olt::cli

#endif
