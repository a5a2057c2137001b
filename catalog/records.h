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

// From here on: what the simulated box takes and gives; the library carries the bytes.

inline constexpr Field kAuthEntryFields[] = {
    {"mac", 0, 6, FieldKind::kMac},
    {"loid", 8, 24, FieldKind::kPadded},
    {"password", 32, 12, FieldKind::kPadded, true},
};
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_auth_entry> = kAuthEntryFields;

inline constexpr Field kWanConnectionFields[] = {
    {"operation", 0, 4, FieldKind::kWord},
    {"number", 4, 4, FieldKind::kWord},
    {"settings", 8, 117, FieldKind::kBytes},
};
static_assert(fill<olt_wan_connection>(kWanConnectionFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_wan_connection> = kWanConnectionFields;

inline constexpr Field kIptvChannelFields[] = {
    {"selector", 0, 4, FieldKind::kWord},
    {"profile", 4, 32, FieldKind::kPadded},
    {"number", 36, 4, FieldKind::kWord},
    {"settings", 40, 16, FieldKind::kBytes},
};
static_assert(fill<olt_iptv_channel_row>(kIptvChannelFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_iptv_channel_row> = kIptvChannelFields;

/// The same record: the profile is an argument beside it.
inline constexpr Field kIptvChannelSettings[] = {
    {"reserved_00", 0, 36, FieldKind::kBytes},
    {"number", 36, 4, FieldKind::kWord},
    {"settings", 40, 16, FieldKind::kBytes},
};
static_assert(fill<olt_iptv_channel>(kIptvChannelSettings));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_iptv_channel> = kIptvChannelSettings;

inline constexpr Field kIptvProfileFields[] = {
    {"selector", 0, 4, FieldKind::kWord},
    {"profile", 4, 32, FieldKind::kPadded},
    {"channels", 36, 4, FieldKind::kWord},
};
static_assert(fill<olt_iptv_profile_row>(kIptvProfileFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_iptv_profile_row> = kIptvProfileFields;

/// Of the two records that share a type.
inline constexpr Field kOnuInfoFields[] = {
    {"slot", 0, 4, FieldKind::kWord},
    {"interface", 4, 4, FieldKind::kWord},
    {"onu", 8, 4, FieldKind::kWord},
    {"reserved_0c", 12, 4, FieldKind::kWord},
    {"mac", 16, 6, FieldKind::kMac},
    {"reserved_16", 22, 2, FieldKind::kBytes},
    {"state", 24, 4, FieldKind::kWord},
    {"seconds", 28, 4, FieldKind::kWord},
    {"uni_ports", 32, 4, FieldKind::kWord},
    {"voice_lines", 36, 4, FieldKind::kWord},
    {"wan_connections", 40, 4, FieldKind::kWord},
    {"reserved_2c", 44, 4, FieldKind::kWord},
    {"loid", 48, 24, FieldKind::kPadded},
    {"description", 72, 48, FieldKind::kPadded},
    {"reserved_78", 120, 28, FieldKind::kBytes},
};
static_assert(fill<olt_onu_info>(kOnuInfoFields));

inline constexpr Field kLinkInfoFields[] = {
    {"slot", 0, 4, FieldKind::kWord},         {"interface", 4, 4, FieldKind::kWord},
    {"onu", 8, 4, FieldKind::kWord},          {"reserved_0c", 12, 4, FieldKind::kWord},
    {"mac", 16, 6, FieldKind::kMac},          {"reserved_16", 22, 2, FieldKind::kBytes},
    {"state", 24, 4, FieldKind::kWord},       {"seconds", 28, 4, FieldKind::kWord},
    {"dba", 32, 20, FieldKind::kWords},       {"user_traffic", 52, 48, FieldKind::kWords},
    {"features", 100, 48, FieldKind::kWords},
};
static_assert(fill<olt_onu_info>(kLinkInfoFields));

/// A head of 60 bytes, and what its last word counts.
inline constexpr Field kGlobalInfoFields[] = {
    {"slot", 0, 4, FieldKind::kWord},
    {"interface", 4, 4, FieldKind::kWord},
    {"onu", 8, 4, FieldKind::kWord},
    {"reserved_0c", 12, 4, FieldKind::kWord},
    {"mac", 16, 6, FieldKind::kMac},
    {"reserved_16", 22, 2, FieldKind::kBytes},
    {"state", 24, 4, FieldKind::kWord},
    {"reserved_1c", 28, 4, FieldKind::kWord},
    {"loid", 32, 24, FieldKind::kPadded},
    {"length", 56, 4, FieldKind::kWord},
    {"parts", 60, Field::kToTheEnd, FieldKind::kBytes},
};

/// A head of 88 bytes, and what its last word counts.
inline constexpr Field kWanInfoFields[] = {
    {"slot", 0, 4, FieldKind::kWord},
    {"interface", 4, 4, FieldKind::kWord},
    {"onu", 8, 4, FieldKind::kWord},
    {"reserved_0c", 12, 4, FieldKind::kWord},
    {"count", 16, 4, FieldKind::kWord},
    {"record_size", 20, 4, FieldKind::kWord},
    {"reserved_18", 24, 60, FieldKind::kBytes},
    {"length", 84, 4, FieldKind::kWord},
    {"connections", 88, Field::kToTheEnd, FieldKind::kBytes},
};

inline constexpr Field kIadInfoFields[] = {
    {"slot", 0, 4, FieldKind::kWord},
    {"interface", 4, 4, FieldKind::kWord},
    {"onu", 8, 4, FieldKind::kWord},
    {"reserved_0c", 12, 4, FieldKind::kWord},
    {"mac", 16, 6, FieldKind::kMac},
    {"reserved_16", 22, 2, FieldKind::kBytes},
    {"state", 24, 4, FieldKind::kWord},
    {"voice_lines", 28, 4, FieldKind::kWord},
    {"wan_interface", 32, 32, FieldKind::kPadded},
    {"lines_on", 64, 4, FieldKind::kWord},
    {"accounts", 68, 4, FieldKind::kWord},
    {"registered", 72, 4, FieldKind::kWord},
    {"reserved_4c", 76, 16, FieldKind::kBytes},
};
static_assert(fill<olt_iad_info>(kIadInfoFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_iad_info> = kIadInfoFields;

inline constexpr Field kVoiceLineFields[] = {
    {"slot", 0, 4, FieldKind::kWord},         {"interface", 4, 4, FieldKind::kWord},
    {"onu", 8, 4, FieldKind::kWord},          {"line", 12, 4, FieldKind::kWord},
    {"line_status", 16, 4, FieldKind::kWord}, {"state", 20, 4, FieldKind::kWord},
    {"account", 24, 4, FieldKind::kWord},     {"reserved_1c", 28, 4, FieldKind::kWord},
};
static_assert(fill<olt_voip_line_status>(kVoiceLineFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_voip_line_status> = kVoiceLineFields;

inline constexpr Field kVoiceBindingFields[] = {
    {"slot", 0, 4, FieldKind::kWord},
    {"interface", 4, 4, FieldKind::kWord},
    {"onu", 8, 4, FieldKind::kWord},
    {"reserved_0c", 12, 4, FieldKind::kWord},
    {"bound", 16, 4, FieldKind::kWord},
    {"wan_interface", 20, 32, FieldKind::kPadded},
    {"reserved_34", 52, 36, FieldKind::kBytes},
};
static_assert(fill<olt_voip_binding>(kVoiceBindingFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_voip_binding> = kVoiceBindingFields;

inline constexpr Field kUniPortInfoFields[] = {
    {"slot", 0, 4, FieldKind::kWord},    {"interface", 4, 4, FieldKind::kWord},
    {"onu", 8, 4, FieldKind::kWord},     {"port", 12, 4, FieldKind::kWord},
    {"info", 16, 44, FieldKind::kWords}, {"loopback", 60, 4, FieldKind::kWord},
    {"alarm", 64, 4, FieldKind::kWord},
};
static_assert(fill<olt_uni_port_info>(kUniPortInfoFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_uni_port_info> = kUniPortInfoFields;

/// A target in which a limit comes back.
inline constexpr Field kGroupLimitFields[] = {
    {"target", 0, 12, FieldKind::kWords},       {"target_kind", 12, 4, FieldKind::kWord},
    {"port", 16, 4, FieldKind::kWord},          {"group_limit", 20, 4, FieldKind::kWord},
    {"reserved_18", 24, 4, FieldKind::kBytes},  {"mac", 28, 6, FieldKind::kMac},
    {"reserved_22", 34, 2, FieldKind::kBytes},  {"mac_word", 36, 4, FieldKind::kWord},
    {"reserved_28", 40, 48, FieldKind::kBytes},
};
static_assert(fill<olt_ont_target>(kGroupLimitFields));

inline constexpr Field kVlanRowFields[] = {
    {"selector", 0, 4, FieldKind::kWord},        {"vlan", 4, 4, FieldKind::kWord},
    {"description", 8, 32, FieldKind::kPadded},  {"tagged_ports", 40, 4, FieldKind::kWord},
    {"untagged_ports", 44, 4, FieldKind::kWord}, {"members", 48, 4, FieldKind::kWord},
};
static_assert(fill<olt_vlan_id_row>(kVlanRowFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_vlan_id_row> = kVlanRowFields;

inline constexpr Field kBasicPortFields[] = {
    {"selector", 0, 4, FieldKind::kWord},
    {"slot", 4, 4, FieldKind::kWord},
    {"port", 8, 4, FieldKind::kWord},
    {"port_enable", 12, 4, FieldKind::kWord},
    {"link_state", 16, 4, FieldKind::kWord},
    {"link_speed", 20, 4, FieldKind::kWord},
    {"link_duplex", 24, 4, FieldKind::kWord},
    {"vlanmode_first", 28, 4, FieldKind::kWord},
    {"vlanmode_second", 32, 4, FieldKind::kWord},
    {"flowcontrol", 36, 4, FieldKind::kWord},
    {"rstp_state", 40, 4, FieldKind::kWord},
    {"max_link", 44, 4, FieldKind::kWord},
};
static_assert(fill<olt_basic_port_row>(kBasicPortFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_basic_port_row> = kBasicPortFields;

inline constexpr Field kAuthRowFields[] = {
    {"selector", 0, 4, FieldKind::kWord},           {"slot", 4, 4, FieldKind::kWord},
    {"interface", 8, 4, FieldKind::kWord},          {"auth_mode", 12, 4, FieldKind::kWord},
    {"allowed_macs", 16, 4, FieldKind::kWord},      {"allowed_loids", 20, 4, FieldKind::kWord},
    {"allowed_mac_loids", 24, 4, FieldKind::kWord}, {"onus", 28, 4, FieldKind::kWord},
    {"onus_up", 32, 4, FieldKind::kWord},           {"onus_away", 36, 4, FieldKind::kWord},
    {"onus_blocked", 40, 4, FieldKind::kWord},      {"reserved_2c", 44, 16, FieldKind::kBytes},
};
static_assert(fill<olt_auth_row>(kAuthRowFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_auth_row> = kAuthRowFields;

}  // namespace olt::catalog

#endif
