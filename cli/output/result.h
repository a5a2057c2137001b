/// The results of a call by name, as the output formats show them.
#ifndef OLT_CLI_OUTPUT_RESULT_H
#define OLT_CLI_OUTPUT_RESULT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/call/call.h"
#include "cli/text/field_forms.h"

namespace olt::cli {

/// How much of what calls bring is shown, and how.
struct Detail {
  bool secrets = false;  ///< else masked
  bool all = false;      ///< with fields that are reserved or select
  bool raw = false;      ///< as numbers and hex
};

/// A field and its bytes.
struct NamedValue {
  catalog::Field field;
  Bytes bytes;
  bool is_masked = false;

  std::string_view name() const { return field.name; }
  std::string text() const;
  nlohmann::ordered_json json() const;
};

/// The columns of a row, or the fields of a record.
using NamedValues = std::vector<NamedValue>;

/// Bytes that went to a file instead.
struct WrittenFile {
  std::string path;
  size_t length;
};

struct Output {
  std::string_view name;
  std::variant<NamedValue, NamedValues, WrittenFile> content;
};

struct Listing {
  std::string name;
  std::optional<std::string> text;  ///< once it could be read
};

/// What a call makes of a field, or of an argument without fields.
struct Change {
  NamedValue before;
  NamedValue after;
};
using Changes = std::vector<Change>;

struct Result {
  const catalog::Operation &operation;
  int32_t code;    ///< what the operation returned
  int32_t reason;  ///< Call::reason() of it
  std::vector<Output> outputs;
  std::optional<Listing> listing;
  std::optional<Changes> changes;  ///< if the present values were read before the call
  bool is_fallback = false;        ///< nothing could be read

  bool failed() const { return !operation.succeeded(code); }
};

/// Outputs only when the call succeeded.
Result result_of(const Call &call, int32_t code, const Detail &detail);

/// How an argument differs from its bytes before.
Changes changes_of(const Call &call, size_t place, ByteView before, const Detail &detail);

/// The fields of an output that are shown; the whole as one field when it has none.
std::vector<catalog::Field> shown_fields(const catalog::Argument &argument, const Detail &detail);

/// The fields of an output; the whole as one value when it has none.
NamedValues values_of(const catalog::Argument &argument, ByteView bytes, const Detail &detail);

}  // namespace olt::cli

#endif
