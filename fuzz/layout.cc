// Layouts. One that is taken can be written down and read again, gives the same fields then, and
// shows any bytes; one that is refused gets a line with its place.
#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/bad_input.h"
#include "base/text.h"
#include "cli/layout/reader.h"
#include "cli/layout/writer.h"
#include "cli/output/result.h"
#include "cli/text/field_forms.h"
#include "fuzz/target.h"

namespace {

using olt::Bytes;
using olt::catalog::Argument;
using olt::catalog::Family;
using olt::catalog::Field;
using olt::catalog::Kind;
using olt::catalog::Layout;
using olt::catalog::Operation;
using olt::fuzz::Input;
using olt::fuzz::require;

/// Every byte belongs to one field.
void require_no_gaps(const Argument &argument) {
  uint32_t end = 0;
  bool has_end = true;
  for (const Field &field : argument.fields) {
    require(has_end && field.offset == end, "fields follow each other", field.name);
    has_end = field.width != Field::kToTheEnd;
    end = field.offset + field.width;
  }
  bool is_fixed = argument.kind == Kind::kValue || argument.kind == Kind::kEntries;
  require(!is_fixed || (has_end && end == argument.size), "fields fill a record", argument.name);
}

void show(const Argument &argument, const Bytes &bytes) {
  for (const olt::cli::NamedValue &value :
       olt::cli::values_of(argument, bytes, {.secrets = true, .all = true})) {
    olt::fuzz::require_line(fmt::format("{}={}", value.name(), value.text()));
    require(!value.json().is_discarded(), "a value is JSON");
  }
}

void try_fields(const Layout &layout, const Bytes &sample) {
  for (const Family &family : layout.families()) {
    for (const Operation &operation : family.operations) {
      for (const Argument &argument : operation.arguments()) {
        bool is_open = argument.kind != Kind::kValue && argument.kind != Kind::kEntries;
        if (argument.fields.empty() || argument.kind == Kind::kVlans) continue;
        require_no_gaps(argument);
        Bytes bytes(is_open ? argument.size + sample.size() : argument.size);
        std::copy_n(sample.begin(), std::min(sample.size(), bytes.size()), bytes.begin());
        show(argument, bytes);
      }
    }
  }
  for (const auto &[status, text] : layout.statuses()) olt::fuzz::require_line(text);
}

}  // namespace

// The input is the file, and what records hold.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  try {
    Layout layout = olt::cli::parse_layout(Input(data, size).text());
    try_fields(layout, {data, data + size});
    std::string text = olt::cli::layout_text(layout);
    require(olt::cli::layout_text(olt::cli::parse_layout(text)) == text,
            "a layout that is written down is read as it was", text);
  } catch (const olt::BadInput &error) {
    olt::fuzz::require_line(error.what());
  }
  return 0;
}
