/// Fields as text and as JSON, in both directions: one row per kind of field.
#ifndef OLT_CLI_TEXT_FIELD_FORMS_H
#define OLT_CLI_TEXT_FIELD_FORMS_H

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "catalog/operation.h"

namespace olt::cli {

/// What is wrong with the text of a value: "'x' given".
class BadValue : public std::runtime_error {
 public:
  template <typename... Args>
  explicit BadValue(fmt::format_string<Args...> reason, Args &&...args)
      : std::runtime_error(fmt::format(reason, std::forward<Args>(args)...)) {}
};

struct FieldForm {
  catalog::FieldKind kind;
  const char *name;
  const char *json_type;  ///< of json(), except that a number that has a name is a string

  /// What an input takes: "a number from 0 to 4294967295".
  std::string (*expected)(const catalog::Field &);
  /// What an output is: "a number".
  std::string (*described)(const catalog::Field &);
  std::string (*example)(const catalog::Field &);

  /// The bytes of a field, as many as it is wide. Throws BadValue.
  Bytes (*parse)(const catalog::Field &, std::string_view text);
  /// What the bytes hold, on one line, as parse() takes it.
  std::string (*text)(const catalog::Field &, ByteView bytes);
  nlohmann::ordered_json (*json)(const catalog::Field &, ByteView bytes);

  /// Records only: whether the text is in this form, and not hex, a file or a patch. Null for kinds
  /// that have only this form.
  bool (*fits)(std::string_view text);
};

std::span<const FieldForm> field_forms();
const FieldForm &form_of(catalog::FieldKind kind);

/// The bytes of a field from its text or its JSON form. Throws BadValue.
Bytes parse_field(const catalog::Field &field, std::string_view text);

/// The bytes of a field from its JSON form. Throws BadValue.
Bytes parse_json(const catalog::Field &field, const nlohmann::ordered_json &json);

/// The field as a plain number, or as bytes in hex.
catalog::Field without_meaning(catalog::Field field);

/// Bytes from pairs of hex digits, or from a dump. Throws BadValue.
Bytes parse_hex(std::string_view text);

/// A number up to the limit. Throws BadValue.
uint32_t parse_number(std::string_view text, uint32_t max);

/// The bytes when they are as many as expected. Throws BadValue.
Bytes of_size(size_t size, Bytes bytes);

}  // namespace olt::cli

#endif
