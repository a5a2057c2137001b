/// How the fields of a record are written down: the member says where a field is and, by its type,
/// what it holds; marks say the rest.
#ifndef OLT_CATALOG_FIELDS_H
#define OLT_CATALOG_FIELDS_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "catalog/operation.h"
#include "oltmgmt.h"

namespace olt::catalog {

template <typename Type>
inline constexpr FieldKind kFieldKindOf = FieldKind::kNumber;
template <size_t size>
inline constexpr FieldKind kFieldKindOf<char[size]> = FieldKind::kText;
template <size_t size>
inline constexpr FieldKind kFieldKindOf<uint8_t[size]> = FieldKind::kBytes;
template <>
inline constexpr FieldKind kFieldKindOf<uint8_t[6]> = FieldKind::kMac;
template <size_t size>
inline constexpr FieldKind kFieldKindOf<uint32_t[size]> = FieldKind::kNumbers;
template <>
inline constexpr FieldKind kFieldKindOf<olt_mac> = FieldKind::kMac;

#define OLT_FIELD(record, field)                              \
  olt::catalog::Field {                                       \
#field, offsetof(record, field), sizeof(record::field),   \
        olt::catalog::kFieldKindOf < decltype(record::field)> \
  }

constexpr Field secret(Field field) {
  field.secret = true;
  return field;
}

/// A field that is never empty: one that reads back empty is not known.
constexpr Field required(Field field) {
  field.required = true;
  return field;
}

constexpr Field padded(Field field) {
  field.kind = FieldKind::kPadded;
  return field;
}

constexpr Field listing(Field field) {
  field.kind = FieldKind::kListing;
  return field;
}

constexpr Field reserved(Field field) {
  field.role = Role::kReserved;
  return field;
}

constexpr Field selector(Field field) {
  field.role = Role::kSelector;
  return field;
}

constexpr Field of_kind(FieldKind kind, Field field) {
  field.kind = kind;
  return field;
}

constexpr Field vlan(Field field) {
  field.kind = FieldKind::kVlan;
  return field;
}

constexpr Field named(std::span<const ValueName> values, Field field) {
  field.values = values;
  return field;
}

constexpr Field in_unit(const char *unit, Field field) {
  field.unit = unit;
  return field;
}

constexpr Field row_name(Field field) {
  field.role = Role::kRowName;
  return field;
}

/// What follows a head: records of one type.
template <typename Record>
constexpr Field records(const char *name, uint32_t offset, std::span<const Field> fields) {
  return {.name = name,
          .offset = offset,
          .width = Field::kToTheEnd,
          .kind = FieldKind::kRecords,
          .record_size = sizeof(Record),
          .record = fields};
}

/// The fields of a record, and more of them after it.
template <size_t count, typename... More>
constexpr std::array<Field, count + sizeof...(More)> extended(const Field (&fields)[count],
                                                              More... more) {
  std::array<Field, count + sizeof...(More)> all{};
  Field *end = std::copy(fields, fields + count, all.data());
  ((*end++ = more), ...);
  return all;
}

/// The fields of a record, with names for the values of one.
template <size_t count>
constexpr std::array<Field, count> naming(std::string_view name, std::span<const ValueName> values,
                                          const Field (&fields)[count]) {
  std::array<Field, count> all = std::to_array(fields);
  auto field =
      std::find_if(all.begin(), all.end(), [name](const Field &f) { return f.name == name; });
  if (field == all.end()) throw "no such field";
  field->values = values;
  return all;
}

/// Whether the fields follow each other without gaps and fill the record.
template <typename Record>
constexpr bool fill(std::span<const Field> fields) {
  size_t end = 0;
  for (const Field &field : fields) {
    if (field.offset != end) return false;
    end += field.width;
  }
  return end == sizeof(Record);
}

template <typename Record>
concept WordsOnly = requires {
  sizeof(Record::words);
};

/// The form of a record as a whole.
template <typename Record>
inline constexpr FieldKind kFormOf = WordsOnly<Record> ? FieldKind::kNumbers : FieldKind::kBytes;
template <>
inline constexpr FieldKind kFormOf<olt_link_dba> = FieldKind::kNumbers;
template <>
inline constexpr FieldKind kFormOf<olt_mac> = FieldKind::kMac;
template <>
inline constexpr FieldKind kFormOf<olt_ont_target> = FieldKind::kOnt;
template <>
inline constexpr FieldKind kFormOf<olt_target_words> = FieldKind::kOnt;

template <typename Record>
inline constexpr std::span<const Field> kFieldsOf{};

/// The fields that the public header names.
template <typename Record>
inline constexpr std::span<const Field> kNamedFieldsOf{};

template <const auto &fields>
inline constexpr auto kWithoutMeaning = [] {
  auto plain = std::to_array(fields);
  for (Field &field : plain) {
    field.values = {};
    field.unit = nullptr;
  }
  return plain;
}();

/// The name of a record's type.
template <typename Record>
constexpr std::string_view name_of_type() {
  std::string_view name = __PRETTY_FUNCTION__;  // "... [with Record = olt_user; ...]"
  constexpr std::string_view kBefore = "Record = ";
  name.remove_prefix(name.find(kBefore) + kBefore.size());
  return name.substr(0, name.find_first_of(";]"));
}

}  // namespace olt::catalog

#endif
