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
template <size_t size>
inline constexpr FieldKind kFieldKindOf<uint32_t[size]> = FieldKind::kWords;
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
concept WordsOnly = requires {
  sizeof(Record::words);
};

template <typename Record>
inline constexpr Form kFormOf = WordsOnly<Record> ? Form::kWords : Form::kBytes;
template <>
inline constexpr Form kFormOf<olt_mac> = Form::kMac;
template <>
inline constexpr Form kFormOf<olt_ont_target> = Form::kOnt;
template <>
inline constexpr Form kFormOf<olt_target_words> = Form::kOnt;

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

inline constexpr Field kPortFields[] = {
    OLT_FIELD(olt_port_attributes, slot),
    OLT_FIELD(olt_port_attributes, port),
    OLT_FIELD(olt_port_attributes, reserved_08),
    OLT_FIELD(olt_port_attributes, sfp_module),
    OLT_FIELD(olt_port_attributes, port_enable),
    OLT_FIELD(olt_port_attributes, link_speed),
    OLT_FIELD(olt_port_attributes, link_duplex),
    OLT_FIELD(olt_port_attributes, vlanmode_second),
    OLT_FIELD(olt_port_attributes, vlanmode_first),
    OLT_FIELD(olt_port_attributes, reserved_24),
    OLT_FIELD(olt_port_attributes, flowcontrol),
    OLT_FIELD(olt_port_attributes, ingressfilter_first),
    OLT_FIELD(olt_port_attributes, ingressfilter_second),
    OLT_FIELD(olt_port_attributes, ratecontrol_first),
    OLT_FIELD(olt_port_attributes, ratecontrol_second),
    OLT_FIELD(olt_port_attributes, rstp_state),
    OLT_FIELD(olt_port_attributes, link_state),
    OLT_FIELD(olt_port_attributes, reserved_44),
    OLT_FIELD(olt_port_attributes, max_link),
};
static_assert(fill<olt_port_attributes>(kPortFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_port_attributes> = kPortFields;

inline constexpr Field kRstpBriefFields[] = {
    OLT_FIELD(olt_rstp_brief, keys),
    OLT_FIELD(olt_rstp_brief, values),
};
static_assert(fill<olt_rstp_brief>(kRstpBriefFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_rstp_brief> = kRstpBriefFields;

inline constexpr Field kOntTargetFields[] = {
    OLT_FIELD(olt_ont_target, target),      OLT_FIELD(olt_ont_target, target_kind),
    OLT_FIELD(olt_ont_target, reserved_10), OLT_FIELD(olt_ont_target, mac),
    OLT_FIELD(olt_ont_target, reserved_22), OLT_FIELD(olt_ont_target, mac_word),
    OLT_FIELD(olt_ont_target, reserved_28),
};
static_assert(fill<olt_ont_target>(kOntTargetFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_ont_target> = kOntTargetFields;

inline constexpr Field kGlobalParameterFields[] = {
    OLT_FIELD(olt_global_parameter, reserved_00),
    OLT_FIELD(olt_global_parameter, p2p_function),
    OLT_FIELD(olt_global_parameter, link_security_a),
    OLT_FIELD(olt_global_parameter, link_security_b),
    OLT_FIELD(olt_global_parameter, ponport_function),
};
static_assert(fill<olt_global_parameter>(kGlobalParameterFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_global_parameter> = kGlobalParameterFields;

inline constexpr Field kLinkDbaFields[] = {
    OLT_FIELD(olt_link_dba, requested),
    OLT_FIELD(olt_link_dba, granted),
};
static_assert(fill<olt_link_dba>(kLinkDbaFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_link_dba> = kLinkDbaFields;

/// What the simulated box takes; the library carries the bytes.
inline constexpr Field kAuthEntryFields[] = {
    {"mac", 0, 6, FieldKind::kMac},
    {"loid", 8, 24, FieldKind::kPadded},
    {"password", 32, 12, FieldKind::kPadded, true},
};
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_auth_entry> = kAuthEntryFields;

}  // namespace olt::catalog

#endif
