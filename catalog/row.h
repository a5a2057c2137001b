/// How a row of the catalog is written: the function and the names of its arguments. The type of a
/// parameter says what its argument is; marks say the rest.
#ifndef OLT_CATALOG_ROW_H
#define OLT_CATALOG_ROW_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include "catalog/composition.h"
#include "catalog/operation.h"
#include "catalog/records.h"

namespace olt::catalog {

/// An argument's name, and what its type does not say.
struct Mark {
  constexpr Mark(const char *argument) : name(argument) {}

  const char *name;
  uint32_t max = UINT32_MAX;
  bool is_secret = false;
  bool is_optional = false;
  std::optional<Direction> direction{};
  std::optional<Kind> kind{};
  std::optional<FieldKind> form{};
  uint32_t size = 0;
  std::span<const Field> fields{};
  std::span<const ValueName> values{};
  const char *unit = nullptr;
  std::string_view record_name{};
  const char *example = nullptr;
};

/// A text of at most that many bytes, a word up to that value: what the library or the record
/// takes.
constexpr Mark up_to(uint32_t max, Mark mark) {
  mark.max = max;
  return mark;
}

constexpr Mark secret(Mark mark) {
  mark.is_secret = true;
  return mark;
}

constexpr Mark optional(Mark mark) {
  mark.is_optional = true;
  return mark;
}

/// A record that the library may write to, but that holds nothing new afterwards.
constexpr Mark in(Mark mark) {
  mark.direction = Direction::kIn;
  return mark;
}

/// A record that is sent unchanged and filled from the reply.
constexpr Mark in_out(Mark mark) {
  mark.direction = Direction::kInOut;
  return mark;
}

/// Room for a text of that many bytes with its zero.
constexpr Mark text(uint32_t size, Mark mark) {
  mark.form = FieldKind::kText;
  mark.size = size;
  return mark;
}

/// A block whose head of that many bytes ends with a word that counts the bytes after it.
constexpr Mark headed(uint32_t size, Mark mark) {
  mark.kind = Kind::kHeadedBlock;
  mark.size = size;
  return mark;
}

/// A block that copies the whole reply.
constexpr Mark whole_reply(Mark mark) {
  mark.kind = Kind::kReplyBlock;
  return mark;
}

/// A block whose fields take at least so many bytes.
constexpr Mark sized(uint32_t size, Mark mark) {
  mark.size = size;
  return mark;
}

/// A record, item or block with fields other than those of its type.
constexpr Mark laid_out(std::string_view record_name, std::span<const Field> fields, Mark mark) {
  mark.record_name = record_name;
  mark.fields = fields;
  return mark;
}

/// A record that is one text.
constexpr Mark as_text(Mark mark) {
  mark.form = FieldKind::kPadded;
  return mark;
}

/// An argument of which the manual shows this example.
constexpr Mark such_as(const char *example, Mark mark) {
  mark.example = example;
  return mark;
}

/// A number that has names.
constexpr Mark named(std::span<const ValueName> values, Mark mark) {
  mark.values = values;
  return mark;
}

constexpr Mark in_unit(const char *unit, Mark mark) {
  mark.unit = unit;
  return mark;
}

/// What the type of a parameter says.
struct Parameter {
  Kind kind;
  Direction direction;
  uint32_t size = 0;
  FieldKind form = FieldKind::kBytes;
  std::span<const Field> fields{};
  std::string_view record_name{};
  std::span<const Field> named_fields{};
};

template <typename Type>
struct ParameterOf;

template <>
struct ParameterOf<const char *> {
  static constexpr Parameter kValue{Kind::kValue, Direction::kIn, 0, FieldKind::kText};
};
template <>
struct ParameterOf<uint32_t> {
  static constexpr Parameter kValue{Kind::kValue, Direction::kIn, sizeof(uint32_t),
                                    FieldKind::kNumber};
};
template <>
struct ParameterOf<int32_t> {
  static constexpr Parameter kValue{Kind::kValue, Direction::kIn, sizeof(int32_t),
                                    FieldKind::kNumber};
};
template <>
struct ParameterOf<uint32_t *> {
  static constexpr Parameter kValue{Kind::kValue, Direction::kOut, sizeof(uint32_t),
                                    FieldKind::kNumber};
};
template <>
struct ParameterOf<char *> {
  static constexpr Parameter kValue{Kind::kValue, Direction::kOut, 32, FieldKind::kListing};
};
template <>
struct ParameterOf<const void *> {
  static constexpr Parameter kValue{Kind::kStream, Direction::kIn};
};
template <>
struct ParameterOf<void *> {
  static constexpr Parameter kValue{Kind::kBuffer, Direction::kOut};
};
template <>
struct ParameterOf<const olt_vlan_list *> {
  static constexpr Parameter kValue{
      Kind::kVlans,        Direction::kIn,     sizeof(box::VlanElement),
      FieldKind::kRecords, kVlanElementFields, "vlan_range"};
};
template <>
struct ParameterOf<const uint16_t *> {
  static constexpr Parameter kValue{Kind::kIds, Direction::kIn, sizeof(uint16_t),
                                    FieldKind::kVlans};
};
template <>
struct ParameterOf<const olt_auth_entry *> {
  static constexpr Parameter kValue{Kind::kEntries,
                                    Direction::kIn,
                                    sizeof(olt_auth_entry),
                                    FieldKind::kRecords,
                                    kFieldsOf<olt_auth_entry>,
                                    name_of_type<olt_auth_entry>()};
};
template <>
struct ParameterOf<void **> {
  static constexpr Parameter kValue{Kind::kBlock, Direction::kOut};
};
template <typename Record>
struct ParameterOf<const Record *> {
  static constexpr Parameter kValue{
      Kind::kValue,      Direction::kIn,         sizeof(Record),        kFormOf<Record>,
      kFieldsOf<Record>, name_of_type<Record>(), kNamedFieldsOf<Record>};
};
template <typename Record>
struct ParameterOf<Record *> {
  static constexpr Parameter kValue{
      Kind::kValue,      Direction::kOut,        sizeof(Record),        kFormOf<Record>,
      kFieldsOf<Record>, name_of_type<Record>(), kNamedFieldsOf<Record>};
};

template <typename Type>
Type from_slot(void *slot) {
  if constexpr (std::is_pointer_v<Type>) {
    return static_cast<Type>(slot);
  } else {
    return *static_cast<Type *>(slot);
  }
}

constexpr Argument argument(const Parameter &parameter, const Mark &mark) {
  return {.name = mark.name,
          .kind = mark.kind.value_or(parameter.kind),
          .direction = mark.direction.value_or(parameter.direction),
          .size = mark.size != 0 ? mark.size : parameter.size,
          .form = mark.form.value_or(parameter.form),
          .fields = mark.fields.empty() ? parameter.fields : mark.fields,
          .max = mark.max,
          .secret = mark.is_secret,
          .optional = mark.is_optional,
          .values = mark.values,
          .unit = mark.unit,
          .record_name = mark.record_name.empty() ? parameter.record_name : mark.record_name,
          .record_type = parameter.record_name,
          .named_fields = parameter.named_fields,
          .example = mark.example};
}

template <auto Function>
struct Binding;

template <typename... Parameters, int32_t (*Function)(Parameters...)>
struct Binding<Function> {
  /// A throw stops the compiler: a row that does not fit its function does not compile.
  static constexpr Operation row(const char *name, Address address, const char *summary,
                                 std::initializer_list<Mark> marks = {},
                                 const Composition &request = {}, const Composition &reply = {}) {
    Operation operation{.name = name, .summary = summary, .call = call, .address = address};
    const std::array<Parameter, kCount> parameters{ParameterOf<Parameters>::kValue...};
    const Mark *mark = marks.begin();
    for (size_t i = 0; i < kCount; ++i) {
      if (mark == marks.end()) throw "a parameter without a name";
      if (i + 1 < kCount && is_counted(parameters[i + 1].kind)) {
        if (!is_word(parameters[i], Direction::kIn)) throw "a list without its count";
        ++i;
      }
      const Argument taken = argument(parameters[i], *mark++);
      operation.argument_room[operation.argument_count++] = taken;
      if (taken.kind != Kind::kStream && taken.kind != Kind::kBlock) continue;
      if (++i == kCount || !is_word(parameters[i], taken.direction)) {
        throw "bytes without their length";
      }
    }
    if (mark != marks.end()) throw "a name without a parameter";
    if (address.sends()) {
      operation.request = request_of(operation, request);
      operation.reply = reply_of(operation, reply);
      adopt_meanings(operation, operation.request, request.record);
      adopt_limits(operation);
      adopt_meanings(operation, operation.reply, reply.record);
    }
    return operation;
  }

 private:
  static constexpr size_t kCount = sizeof...(Parameters);

  static constexpr bool is_counted(Kind kind) {
    return kind == Kind::kIds || kind == Kind::kEntries;
  }

  static constexpr bool is_word(const Parameter &parameter, Direction direction) {
    return parameter.form == FieldKind::kNumber && parameter.direction == direction;
  }

  static int32_t call(void *const *slots) {
    return [slots]<size_t... I>(std::index_sequence<I...>) {
      static_cast<void>(slots);  // a function without parameters does not look at them
      return Function(from_slot<Parameters>(slots[I])...);
    }
    (std::index_sequence_for<Parameters...>{});
  }
};

inline constexpr Outcome kNotBuilt{"the request could not be built"};

/// The row, with what its results mean.
constexpr Operation with(Outcome outcome, Operation operation) {
  operation.outcome = outcome;
  return operation;
}

/// The row of an operation that sets what the getter reads: an argument, or the field of one. The
/// getter's inputs are those of the same names, and what names a row.
constexpr Operation sets(const char *what, const char *getter, Operation operation) {
  operation.present = {getter, what};
  return operation;
}

/// The same with a getter that reads the row after the one it is given.
constexpr Operation sets_row(const char *what, const char *getter, Operation operation) {
  operation.present = {getter, what, true};
  return operation;
}

/// The row of an operation that sets what no other reads: all fields must be given.
constexpr Operation takes_all(Operation operation) {
  operation.takes_all = true;
  return operation;
}

constexpr Operation destructive(Operation operation) {
  operation.destructive = true;
  return operation;
}

constexpr Operation keeps_reply(Operation operation) {
  operation.keeps_reply = true;
  return operation;
}

/// The row, with a text that it reports where the probe fails.
constexpr Operation falls_back(const char *text, const char *probe, Operation operation) {
  operation.fallback = {text, probe};
  return operation;
}

/// The row, with an example of its own.
constexpr Operation example(const char *arguments, Operation operation) {
  operation.example = arguments;
  return operation;
}

/// The row, with the commands that must come before its example.
constexpr Operation after(const char *commands, Operation operation) {
  operation.example_after = commands;
  return operation;
}

/// A UNI port of an ONT, or a voice line.
inline constexpr Mark kUniPort = such_as("1/2/3:4", "ont");

}  // namespace olt::catalog

/// One row: the function, its address, a summary, and the names of its arguments in braces.
#define OLT_OPERATION(function, ...) olt::catalog::Binding<&function>::row(#function, __VA_ARGS__)

#endif
