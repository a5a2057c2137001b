/// Fields as text, in both directions: one row per kind of field.
#ifndef OLT_CLI_TEXT_FIELD_FORMS_H
#define OLT_CLI_TEXT_FIELD_FORMS_H

#include <fmt/format.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "base/text.h"
#include "catalog/operation.h"

namespace olt::cli {

/// What a field holds. Every output format has its way to show each of these.
using Value = std::variant<uint32_t, std::vector<uint32_t>, std::string, Bytes>;

/// What is wrong with the text of a value: "'x' given".
class BadValue : public std::runtime_error {
 public:
  template <typename... Args>
  explicit BadValue(fmt::format_string<Args...> reason, Args &&...args)
      : std::runtime_error(fmt::format(reason, std::forward<Args>(args)...)) {}
};

struct FieldForm {
  catalog::FieldKind kind;

  /// What an input takes: "a number from 0 to 4294967295".
  std::string (*expected)(const catalog::Field &);
  /// What an output is: "a number".
  std::string (*described)(const catalog::Field &);
  std::string (*example)(const catalog::Field &);

  /// The bytes of a field, as many as it is wide. Throws BadValue.
  Bytes (*parse)(const catalog::Field &, std::string_view text);
  /// What the bytes hold. The formats print it as parse() takes it.
  Value (*value)(ByteView bytes);

  /// Records only: whether the text is in this form, and not hex, a file or a patch. Null for kinds
  /// that have only this form.
  bool (*fits)(std::string_view text);
};

const FieldForm &form_of(catalog::FieldKind kind);

/// Bytes from pairs of hex digits. Throws BadValue.
Bytes parse_hex(std::string_view text);

/// A number up to the limit. Throws BadValue.
uint32_t parse_number(std::string_view text, uint32_t most);

/// The bytes when they are as many as expected. Throws BadValue.
Bytes of_size(size_t size, Bytes bytes);

}  // namespace olt::cli

#endif
