#include "cli/input/present_values.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/call/result_text.h"
#include "cli/text/error.h"
#include "cli/text/field_forms.h"
#include "cli/text/secret.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::Layout;
using catalog::Operation;
using catalog::Part;
using catalog::Role;

namespace {

constexpr size_t kMaxRows = 65'536;

/// Bytes of an argument.
struct Place {
  size_t argument;
  uint32_t offset;
  uint32_t width;
  uint32_t row_size = 0;  ///< of records up to the end, one of which is wanted; else 0
};

bool lies_in(const Field &field, const Place &place) {
  return field.offset >= place.offset && field.offset + field.width <= place.offset + place.width;
}

bool is_selecting(const Field &field) {
  return field.role == Role::kSelector || field.role == Role::kRowName;
}

ByteView bytes_of(const Call &call, size_t place, const Field &field) {
  return call.bytes(place).subspan(field.offset, field.width);
}

/// Whether the module sees what the caller's record has in that field.
bool is_sent(const Operation &operation, size_t place, const Field &field) {
  auto parts = operation.request.parts();
  return std::any_of(parts.begin(), parts.end(), [place, &field](const Part &part) {
    bool is_of_argument = part.origin == catalog::Origin::kArgument && part.argument == place;
    bool ends_after = part.reaches_the_end() || field.offset < part.from + part.width;
    return is_of_argument && field.offset >= part.from && ends_after;
  });
}

/// The fields that are not given, or the bytes of a record without fields.
std::vector<std::string> missing_in(const Call &call, size_t place) {
  const Argument &argument = call.operation().arguments()[place];
  std::vector<std::string> missing;
  for (const Field &field : argument.fields) {
    bool is_wanted = field.role != Role::kReserved && is_sent(call.operation(), place, field);
    if (is_wanted && !call.is_given(place, field.offset, field.width)) {
      missing.emplace_back(field.name);
    }
  }
  if (!argument.fields.empty()) return missing;
  for (uint32_t at = 0; at < argument.size; ++at) {
    if (call.is_given(place, at, 1)) continue;
    uint32_t first = at;
    while (at + 1 < argument.size && !call.is_given(place, at + 1, 1)) ++at;
    missing.push_back(fmt::format("bytes {} to {} of {}", first, at, argument.name));
  }
  return missing;
}

void require_all(const Call &call, size_t place) {
  std::vector<std::string> missing = missing_in(call, place);
  if (missing.empty()) return;
  wrong_usage("{}: missing: {}; expected all fields, or --zero to send zeros for the others",
              call.operation().name, fmt::join(missing, ", "));
}

/// What the operation sets.
std::optional<Place> set_by(const Operation &operation) {
  std::string_view what = operation.present.what;
  for (size_t i = 0; i < operation.argument_count; ++i) {
    const Argument &argument = operation.arguments()[i];
    if (argument.name == what) return Place{i, 0, argument.size};
    for (const Field &field : argument.own_fields()) {
      if (field.name == what) return Place{i, field.offset, field.width};
    }
  }
  return std::nullopt;
}

/// Where the getter reports it: an output of the same type, or of the type of its rows, which begin
/// with it; a field of the same name; one record of several.
std::optional<Place> reported_by(const Operation &getter, const Operation &setter,
                                 const Place &set) {
  const Argument &wanted = setter.arguments()[set.argument];
  bool is_whole = set.width == wanted.size;
  for (size_t i = 0; i < getter.argument_count; ++i) {
    const Argument &output = getter.arguments()[i];
    if (!output.is_output()) continue;
    if (is_whole && output.record_type == wanted.record_type) return Place{i, 0, set.width};
    std::string_view what = setter.present.what;
    if (is_whole && output.record_type == std::string(wanted.record_type) + "_row") {
      return Place{i, 0, set.width};
    }
    for (const Field &field : output.fields) {
      if (field.name == what && field.width == set.width) return Place{i, field.offset, set.width};
      bool has_rows = field.width == Field::kToTheEnd && field.record_size == set.width;
      if (has_rows) return Place{i, field.offset, set.width, field.record_size};
    }
  }
  return std::nullopt;
}

/// Reads the present values of what one call sets.
class PresentReader {
 public:
  PresentReader(const Call &call, const Operation &getter, const Layout &layout, const Place &set,
                const Place &reported)
      : call_(call), getter_(getter), layout_(layout), set_(set), reported_(reported) {}

  Bytes read() const { return call_.operation().present.steps ? read_by_steps() : read_once(); }

 private:
  const Argument &record() const { return call_.operation().arguments()[set_.argument]; }

  Bytes read_once() const {
    Call call(getter_);
    for (size_t i = 0; i < getter_.argument_count; ++i) {
      if (getter_.arguments()[i].is_input()) select(call, i);
    }
    make(call);
    ByteView bytes = call.bytes(reported_.argument);
    if (reported_.row_size != 0) return row_in(bytes.subspan(reported_.offset));
    bytes = bytes.subspan(reported_.offset, reported_.width);
    return {bytes.begin(), bytes.end()};
  }

  /// Says in a getter's input what is read: what the call says in an argument of that name, or what
  /// names a row in the record itself.
  void select(Call &call, size_t input) const {
    bool is_record = getter_.arguments()[input].record_type == record().record_type;
    if (is_record && set_.offset == 0) {
      name_row(call, input);
      return;
    }
    for (size_t i = 0; i < call_.operation().argument_count; ++i) {
      const Argument &argument = call_.operation().arguments()[i];
      if (std::string_view(argument.name) != getter_.arguments()[input].name) continue;
      bool is_set = i == set_.argument;
      if (is_set && set_.offset == 0) continue;
      ByteView bytes = call_.bytes(i);
      size_t count = is_set ? set_.offset : bytes.size();
      call.set_bytes(input, 0, bytes.first(std::min(count, call.bytes(input).size())));
    }
  }

  void name_row(Call &call, size_t input) const {
    if (record().fields.empty()) call.set_bytes(input, 0, call_.bytes(set_.argument));
    for (const Field &field : record().fields) {
      if (field.role != Role::kRowName) continue;
      call.set_bytes(input, field.offset, bytes_of(call_, set_.argument, field));
    }
  }

  /// Zeros when there is none.
  Bytes row_in(ByteView rows) const {
    for (; rows.size() >= reported_.row_size; rows = rows.subspan(reported_.row_size)) {
      ByteView row = rows.first(reported_.row_size);
      if (is_wanted(row)) return {row.begin(), row.end()};
    }
    return Bytes(reported_.row_size);
  }

  Bytes read_by_steps() const {
    Bytes row(call_.bytes(set_.argument).size());
    for (size_t rows = 0; rows < kMaxRows; ++rows) {
      Call step(getter_);
      for (const Field &field : record().fields) {
        ByteView name = ByteView(row).subspan(field.offset, field.width);
        if (field.role == Role::kRowName) step.set_bytes(reported_.argument, field.offset, name);
      }
      int32_t result = step.make();
      if (result != 0 && result == layout_.end_of_table()) break;
      check(step, result);
      ByteView read = step.bytes(reported_.argument);
      row.assign(read.begin(), read.end());
      if (is_wanted(row)) return row;
    }
    std::string names;
    for (const Field &field : record().fields) {
      if (field.role != Role::kRowName) continue;
      names += fmt::format(" {}={}", field.name, text_in_call(field));
    }
    fail("{}: there is no row with{}; expected one that {} reads", call_.operation().name, names,
         getter_.name);
  }

  /// Whether the row has the names that the call has.
  bool is_wanted(ByteView row) const {
    return std::all_of(record().fields.begin(), record().fields.end(), [&](const Field &field) {
      ByteView name = row.subspan(field.offset, field.width);
      return field.role != Role::kRowName ||
             form_of(field.kind).text(field, name) == text_in_call(field);
    });
  }

  std::string text_in_call(const Field &field) const {
    return form_of(field.kind).text(field, bytes_of(call_, set_.argument, field));
  }

  void make(Call &call) const { check(call, call.make()); }

  void check(const Call &call, int32_t result) const {
    if (result != 0) {
      refuse(fmt::format("failed: {}",
                         describe_result(getter_, result, call.reason(result), layout_)));
    }
    // The library does not say how much of a reply there was.
    uint32_t expected = getter_.reply.fixed_length();
    if (call.reply_length() < expected) {
      refuse(fmt::format("reads {}, not {}", counted(call.reply_length(), "byte"), expected));
    }
  }

  [[noreturn]] void refuse(const std::string &reason) const {
    fail(
        "{}: the present values cannot be read: {} {}; expected --zero to send zeros for what is "
        "not given",
        call_.operation().name, getter_.name, reason);
  }

  const Call &call_;
  const Operation &getter_;
  const Layout &layout_;
  const Place &set_;
  const Place &reported_;
};

/// What says which row is set, and what is done, has no present value: it must be given, and zeros
/// follow where only a part of it is.
void require_selection(Call &call, const Place &set) {
  const Operation &operation = call.operation();
  for (const Field &field : operation.arguments()[set.argument].own_fields()) {
    if (!lies_in(field, set) || !is_selecting(field)) continue;
    if (!is_sent(operation, set.argument, field)) continue;
    if (!call.is_any_given(set.argument, field.offset, field.width)) {
      wrong_usage("{}: {} is missing; expected {}", operation.name, field.name,
                  form_of(field.kind).expected(field));
    }
    ByteView bytes = bytes_of(call, set.argument, field);
    call.set_bytes(set.argument, field.offset, Bytes(bytes.begin(), bytes.end()));
  }
}

/// A secret that is not in what was read must come from the user.
void ask_for_secrets(Call &call, const Place &set, ByteView present) {
  const Operation &operation = call.operation();
  for (const Field &field : operation.arguments()[set.argument].own_fields()) {
    if (!lies_in(field, set) || !field.required) continue;
    if (call.is_given(set.argument, field.offset, field.width)) continue;
    if (present[field.offset - set.offset] != 0) continue;
    std::string expected = form_of(field.kind).expected(field);
    if (!can_ask()) {
      wrong_usage(
          "{}: {} is missing and cannot be read; expected {}, or '-' to read it from standard "
          "input",
          operation.name, field.name, expected);
    }
    try {
      Bytes bytes = parse_field(field, read_secret(field.name));
      call.set_bytes(set.argument, field.offset, bytes);
    } catch (const BadValue &bad) {
      wrong_usage("{}: {}: {}; expected {}", operation.name, field.name, bad.what(), expected);
    }
  }
}

}  // namespace

void require_all_fields(const Call &call) {
  const Operation &operation = call.operation();
  if (!operation.takes_all) return;
  for (size_t place = 0; place < operation.argument_count; ++place) {
    if (operation.arguments()[place].is_sent_record()) require_all(call, place);
  }
}

std::optional<SetBytes> keep_present_values(Call &call, const Layout &layout) {
  const Operation &operation = call.operation();
  const Operation &getter = *layout.find(operation.present.getter);
  std::optional<Place> set = set_by(operation);
  std::optional<Place> reported = set ? reported_by(getter, operation, *set) : std::nullopt;
  if (!reported) {
    if (set && operation.arguments()[set->argument].is_sent_record()) {
      require_all(call, set->argument);
    }
    return std::nullopt;
  }
  require_selection(call, *set);
  Bytes present = PresentReader(call, getter, layout, *set, *reported).read();
  ask_for_secrets(call, *set, present);
  call.fill_in(set->argument, set->offset, present);
  ByteView after = call.bytes(set->argument);
  Bytes before(after.begin(), after.end());
  std::copy(present.begin(), present.end(), before.data() + set->offset);
  return SetBytes{set->argument, set->offset, set->width, std::move(before)};
}

}  // namespace olt::cli
