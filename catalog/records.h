/// The named fields of the records that operations take. A record that is not listed is opaque.
#ifndef OLT_CATALOG_RECORDS_H
#define OLT_CATALOG_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "catalog/operation.h"
#include "oltmgmt.h"

namespace olt::catalog {

template <typename Type>
inline constexpr FieldKind kFieldKindOf = FieldKind::kWord;
template <>
inline constexpr FieldKind kFieldKindOf<uint16_t> = FieldKind::kHalfWord;
template <size_t size>
inline constexpr FieldKind kFieldKindOf<char[size]> = FieldKind::kText;
template <size_t size>
inline constexpr FieldKind kFieldKindOf<uint8_t[size]> = FieldKind::kBytes;

#define OLT_FIELD(record, field)                              \
  olt::catalog::Field {                                       \
#field, offsetof(record, field), sizeof(record::field),   \
        olt::catalog::kFieldKindOf < decltype(record::field)> \
  }

constexpr Field secret(Field field) {
  field.secret = true;
  return field;
}

/// Whether the fields lie one behind the other and fill the record.
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
inline constexpr std::span<const Field> kFieldsOf{};

inline constexpr Field kUserFields[] = {
    OLT_FIELD(olt_user, user_op),   OLT_FIELD(olt_user, user_index),
    OLT_FIELD(olt_user, user_name), secret(OLT_FIELD(olt_user, user_password)),
    OLT_FIELD(olt_user, level_a),   OLT_FIELD(olt_user, level_b),
};
static_assert(fill<olt_user>(kUserFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_user> = kUserFields;

inline constexpr Field kDebugValueFields[] = {
    OLT_FIELD(olt_debug_value, debug_op),
    OLT_FIELD(olt_debug_value, reserved_04),
    OLT_FIELD(olt_debug_value, debug_value),
};
static_assert(fill<olt_debug_value>(kDebugValueFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_debug_value> = kDebugValueFields;

inline constexpr Field kSwitchDebugFields[] = {
    OLT_FIELD(olt_switch_debug, debug_op),
    OLT_FIELD(olt_switch_debug, reserved_04),
    OLT_FIELD(olt_switch_debug, debug_value),
    OLT_FIELD(olt_switch_debug, reserved_1a),
};
static_assert(fill<olt_switch_debug>(kSwitchDebugFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_switch_debug> = kSwitchDebugFields;

}  // namespace olt::catalog

#endif
