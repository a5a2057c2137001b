/// How the rows of the catalog say what a message holds, and how its parts follow from it.
///
/// A message that a row says nothing about is its arguments one after the other: a request those
/// that go in, a reply those that come out. The name of a listing is elsewhere in most replies.
#ifndef OLT_CATALOG_COMPOSITION_H
#define OLT_CATALOG_COMPOSITION_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#include "box/wire/records.h"
#include "catalog/operation.h"
#include "catalog/records.h"
#include "catalog/wire_map.h"

namespace olt::catalog {

/// Which field of a message an argument is, or the constant that is there.
struct Placement {
  constexpr Placement(const char *field_name) : argument(field_name), field(field_name) {}
  constexpr Placement(const char *argument_name, const char *field_name)
      : argument(argument_name), field(field_name) {}

  const char *argument;  ///< null: the constant
  const char *field;
  uint32_t constant = 0;
};

/// A word that the operation sets.
constexpr Placement constant(uint32_t word, const char *field) {
  Placement placement(nullptr, field);
  placement.constant = word;
  return placement;
}

/// A message that is a record. Arguments that have the name of a field need no placement. A list
/// follows the record.
struct Composition {
  constexpr Composition() = default;
  constexpr Composition(std::span<const Field> fields, uint32_t record_size, Origin other_bytes,
                        std::initializer_list<Placement> placed)
      : record(fields),
        size(static_cast<uint16_t>(record_size)),
        others(other_bytes),
        placement_count(placed.size()) {
    std::copy(placed.begin(), placed.end(), placement_room.begin());
  }

  constexpr bool is_given() const { return size != 0; }
  constexpr std::span<const Placement> placements() const {
    return {placement_room.data(), placement_count};
  }

  std::span<const Field> record{};
  uint16_t size = 0;
  Origin others = Origin::kZeros;
  std::array<Placement, 8> placement_room{"", "", "", "", "", "", "", ""};
  size_t placement_count = 0;
  const char *read_if_zero = nullptr;
  std::string_view record_type{};
};

template <typename Record>
constexpr Composition composition_of(Origin others, std::initializer_list<Placement> placements,
                                     std::span<const Field> fields = kFieldsOf<Record>) {
  Composition composition{fields, sizeof(Record), others, placements};
  if (name_of_type<Record>().starts_with("olt_")) composition.record_type = name_of_type<Record>();
  return composition;
}

/// A request in a record of that type, with zeros where no argument is.
template <typename Record>
constexpr Composition in_record(std::initializer_list<Placement> placements = {}) {
  return composition_of<Record>(Origin::kZeros, placements);
}

/// The same, with what memory held where no argument is.
template <typename Record>
constexpr Composition in_memory(std::initializer_list<Placement> placements = {}) {
  return composition_of<Record>(Origin::kAny, placements);
}

/// A reply in a record of that type, of which the operation copies some fields.
template <typename Record>
constexpr Composition from_record(std::initializer_list<Placement> placements = {},
                                  std::span<const Field> fields = kFieldsOf<Record>) {
  return composition_of<Record>(Origin::kAny, placements, fields);
}

constexpr Composition only_if_zero(const char *field, Composition reply) {
  reply.read_if_zero = field;
  return reply;
}

namespace wire {

constexpr const Field &field_named(std::span<const Field> record, std::string_view name) {
  for (const Field &field : record) {
    if (field.name == name) return field;
  }
  throw "a placement in a field that the record does not have";
}

constexpr uint16_t width_of(const Argument &argument) {
  if (argument.is_list() || argument.kind != Kind::kValue) return Part::kToTheEnd;
  return static_cast<uint16_t>(argument.whole().width);
}

/// The parts of a record, found in any order.
class Builder {
 public:
  Builder(const Builder &) = delete;
  constexpr Builder(std::span<const Argument> arguments, const Composition &composition,
                    bool is_reply)
      : arguments_(arguments), composition_(composition), is_reply_(is_reply) {
    for (const Placement &placement : composition_.placements()) {
      if (placement.argument != nullptr) continue;
      add(field_named(composition_.record, placement.field),
          {.origin = Origin::kConstant, .constant = placement.constant});
    }
  }

  /// In the fields that placements give it, else in that of its name.
  constexpr void place(size_t argument) {
    std::string_view name = arguments_[argument].name;
    bool is_placed = false;
    for (const Placement &placement : composition_.placements()) {
      if (placement.argument == nullptr || name != placement.argument) continue;
      put(argument, field_named(composition_.record, placement.field));
      is_placed = true;
    }
    if (is_placed) return;
    if (!is_the_message(argument)) return put(argument, field_named(composition_.record, name));
    for (const Field &field : composition_.record) {
      if (!is_taken(field)) put(argument, field);
    }
  }

  /// All parts, in order, and what is between them.
  constexpr Message message() {
    std::sort(parts_.begin(), parts_.begin() + count_,
              [](const Part &a, const Part &b) { return a.offset < b.offset; });
    Message message{.read_if_zero = composition_.read_if_zero,
                    .record = composition_.record,
                    .record_type = composition_.record_type};
    for (size_t i = 0; i < count_; ++i) {
      if (parts_[i].offset < message.fixed_length()) throw "two arguments in one place";
      fill(message, parts_[i].offset);
      message.append(parts_[i]);
    }
    if (!is_reply_) fill(message, composition_.size);
    return message;
  }

 private:
  /// Such an argument keeps its bytes in their places.
  constexpr bool is_the_message(size_t argument) const {
    return !arguments_[argument].fields.empty() &&
           arguments_[argument].fields.data() == composition_.record.data();
  }

  constexpr bool is_taken(const Field &field) const {
    return std::any_of(parts_.begin(), parts_.begin() + count_,
                       [&field](const Part &part) { return part.offset == field.offset; });
  }

  /// Texts are copied up to their zero, but not those of a record that is sent as it is.
  constexpr void put(size_t argument, const Field &field) {
    bool in_place = is_the_message(argument);
    bool copied = in_place ? is_reply_ : arguments_[argument].form == FieldKind::kText;
    bool ends = copied && field.kind == FieldKind::kText;
    add(field, {.origin = Origin::kArgument,
                .argument = static_cast<uint8_t>(argument),
                .from = static_cast<uint16_t>(in_place ? field.offset : 0),
                .is_text = ends || (copied && field.kind == FieldKind::kPadded),
                .with_zero = ends,
                .rest = others()});
  }

  constexpr void add(const Field &field, Part part) {
    if (count_ == parts_.size()) throw "a message of too many parts";
    part.offset = static_cast<uint16_t>(field.offset);
    part.width = static_cast<uint16_t>(field.width);
    parts_[count_++] = part;
  }

  constexpr Origin others() const { return is_reply_ ? Origin::kAny : composition_.others; }

  constexpr void fill(Message &message, uint32_t end) const {
    uint32_t begin = message.fixed_length();
    if (begin == end) return;
    message.append({.origin = others(),
                    .offset = static_cast<uint16_t>(begin),
                    .width = static_cast<uint16_t>(end - begin)});
  }

  std::span<const Argument> arguments_;
  const Composition &composition_;
  bool is_reply_;
  std::array<Part, Message::kMaxParts> parts_{};
  size_t count_ = 0;
};

/// Which arguments are in a message.
using Wanted = std::array<bool, Operation::kMaxArguments>;

constexpr void append(Message &message, std::span<const Argument> arguments, size_t argument) {
  message.append({.origin = Origin::kArgument,
                  .offset = static_cast<uint16_t>(message.fixed_length()),
                  .width = width_of(arguments[argument]),
                  .argument = static_cast<uint8_t>(argument)});
}

/// The arguments one after the other.
constexpr Message joined(std::span<const Argument> arguments, const Wanted &wanted) {
  Message message;
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (wanted[i]) append(message, arguments, i);
  }
  return message;
}

constexpr Message composed(std::span<const Argument> arguments, const Wanted &wanted,
                           const Composition &composition, bool is_reply) {
  Builder builder(arguments, composition, is_reply);
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (wanted[i] && !arguments[i].is_list()) builder.place(i);
  }
  Message message = builder.message();
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (wanted[i] && arguments[i].is_list()) append(message, arguments, i);
  }
  return message;
}

constexpr Message message(std::span<const Argument> arguments, const Wanted &wanted,
                          const Composition &composition, bool is_reply) {
  return composition.is_given() ? composed(arguments, wanted, composition, is_reply)
                                : joined(arguments, wanted);
}

}  // namespace wire

/// Where the caller names the module, it is the first argument, and is not sent.
constexpr Message request_of(const Operation &operation, const Composition &composition) {
  wire::Wanted inputs{};
  for (size_t i = 0; i < operation.argument_count; ++i) {
    inputs[i] = operation.argument_room[i].is_input();
  }
  if (operation.address.module == Address::kNamedByCaller) inputs[0] = false;
  return wire::message(operation.arguments(), inputs, composition, false);
}

/// Replies with the name of a listing about the OLT have it where box::ListingReply does.
constexpr Message reply_of(const Operation &operation, const Composition &composition) {
  wire::Wanted outputs{};
  size_t count = 0;
  bool is_listing = false;
  for (size_t i = 0; i < operation.argument_count; ++i) {
    const Argument &argument = operation.argument_room[i];
    outputs[i] = argument.is_output();
    if (outputs[i]) ++count;
    is_listing = is_listing || argument.form == FieldKind::kListing;
  }
  bool is_about_an_ont = operation.argument_room[0].form == FieldKind::kOnt;
  bool is_listing_of_the_olt =
      is_listing && count == 1 && !is_about_an_ont && !composition.is_given();
  return wire::message(operation.arguments(), outputs,
                       is_listing_of_the_olt ? from_record<box::ListingReply>() : composition,
                       true);
}

/// A word that becomes a field of a record means what the field does.
constexpr void adopt_meanings(Operation &operation, const Message &message,
                              std::span<const Field> record) {
  for (const Part &part : message.parts()) {
    Argument &argument = operation.argument_room[part.argument];
    if (part.origin != Origin::kArgument || argument.form != FieldKind::kNumber) continue;
    for (const Field &field : record) {
      bool is_number = field.kind == FieldKind::kNumber || field.kind == FieldKind::kVlan;
      if (field.offset != part.offset || !is_number) continue;
      argument.form = field.kind;
      argument.values = field.values;
      argument.unit = field.unit;
    }
  }
}

/// A word takes what its place in the request holds. A module has a byte for its number.
constexpr void adopt_limits(Operation &operation) {
  for (const Part &part : operation.request.parts()) {
    Argument &argument = operation.argument_room[part.argument];
    if (part.origin != Origin::kArgument || !argument.is_word()) continue;
    if (!part.reaches_the_end() && part.width < argument.size) {
      argument.max = std::min(argument.max, (uint32_t{1} << (8 * part.width)) - 1);
    }
  }
  if (operation.address.module == Address::kNamedByCaller) {
    operation.argument_room[0].max = UINT8_MAX;
  }
}

}  // namespace olt::catalog

#endif
