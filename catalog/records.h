/// The named fields of the records that operations take. A record that is not listed is opaque.
#ifndef OLT_CATALOG_RECORDS_H
#define OLT_CATALOG_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "box/wire/records.h"
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
template <>
inline constexpr FieldKind kFieldKindOf<uint8_t[6]> = FieldKind::kMac;
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

constexpr Field row_name(Field field) {
  field.role = Role::kRowName;
  return field;
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
inline constexpr FieldKind kFormOf = WordsOnly<Record> ? FieldKind::kWords : FieldKind::kBytes;
template <>
inline constexpr FieldKind kFormOf<olt_mac> = FieldKind::kMac;
template <>
inline constexpr FieldKind kFormOf<olt_ont_target> = FieldKind::kOnt;
template <>
inline constexpr FieldKind kFormOf<olt_target_words> = FieldKind::kOnt;

template <typename Record>
inline constexpr std::span<const Field> kFieldsOf{};

inline constexpr Field kUserFields[] = {
    OLT_FIELD(olt_user, user_op),
    OLT_FIELD(olt_user, user_index),
    row_name(OLT_FIELD(olt_user, user_name)),
    secret(OLT_FIELD(olt_user, user_password)),
    OLT_FIELD(olt_user, level_a),
    OLT_FIELD(olt_user, level_b),
};
static_assert(fill<olt_user>(kUserFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_user> = kUserFields;

inline constexpr Field kDebugValueFields[] = {
    selector(OLT_FIELD(olt_debug_value, debug_op)),
    reserved(OLT_FIELD(olt_debug_value, reserved_04)),
    OLT_FIELD(olt_debug_value, debug_value),
};
static_assert(fill<olt_debug_value>(kDebugValueFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_debug_value> = kDebugValueFields;

inline constexpr Field kSwitchDebugFields[] = {
    selector(OLT_FIELD(olt_switch_debug, debug_op)),
    reserved(OLT_FIELD(olt_switch_debug, reserved_04)),
    OLT_FIELD(olt_switch_debug, debug_value),
    reserved(OLT_FIELD(olt_switch_debug, reserved_1a)),
};
static_assert(fill<olt_switch_debug>(kSwitchDebugFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_switch_debug> = kSwitchDebugFields;

inline constexpr Field kPortFields[] = {
    row_name(OLT_FIELD(olt_port_attributes, slot)),
    row_name(OLT_FIELD(olt_port_attributes, port)),
    reserved(OLT_FIELD(olt_port_attributes, reserved_08)),
    OLT_FIELD(olt_port_attributes, sfp_module),
    OLT_FIELD(olt_port_attributes, port_enable),
    OLT_FIELD(olt_port_attributes, link_speed),
    OLT_FIELD(olt_port_attributes, link_duplex),
    OLT_FIELD(olt_port_attributes, vlanmode_second),
    OLT_FIELD(olt_port_attributes, vlanmode_first),
    reserved(OLT_FIELD(olt_port_attributes, reserved_24)),
    OLT_FIELD(olt_port_attributes, flowcontrol),
    OLT_FIELD(olt_port_attributes, ingressfilter_first),
    OLT_FIELD(olt_port_attributes, ingressfilter_second),
    OLT_FIELD(olt_port_attributes, ratecontrol_first),
    OLT_FIELD(olt_port_attributes, ratecontrol_second),
    OLT_FIELD(olt_port_attributes, rstp_state),
    OLT_FIELD(olt_port_attributes, link_state),
    reserved(OLT_FIELD(olt_port_attributes, reserved_44)),
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
    row_name(OLT_FIELD(olt_ont_target, target)),
    row_name(OLT_FIELD(olt_ont_target, target_kind)),
    reserved(OLT_FIELD(olt_ont_target, reserved_10)),
    row_name(OLT_FIELD(olt_ont_target, mac)),
    reserved(OLT_FIELD(olt_ont_target, reserved_22)),
    row_name(OLT_FIELD(olt_ont_target, mac_word)),
    reserved(OLT_FIELD(olt_ont_target, reserved_28)),
};
static_assert(fill<olt_ont_target>(kOntTargetFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_ont_target> = kOntTargetFields;

inline constexpr Field kGlobalParameterFields[] = {
    reserved(OLT_FIELD(olt_global_parameter, reserved_00)),
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

// What the bytes of these records mean to the simulated box. The library only carries them.

inline constexpr Field kAuthEntryFields[] = {
    OLT_FIELD(box::AuthEntry, mac),
    padded(OLT_FIELD(box::AuthEntry, loid)),
    secret(padded(OLT_FIELD(box::AuthEntry, password))),
};
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_auth_entry> = kAuthEntryFields;

inline constexpr Field kWanConnectionFields[] = {
    selector(OLT_FIELD(box::WanConnection, operation)),
    row_name(OLT_FIELD(box::WanConnection, number)),
    OLT_FIELD(box::WanConnection, settings),
};
static_assert(fill<box::WanConnection>(kWanConnectionFields) &&
              sizeof(box::WanConnection) == sizeof(olt_wan_connection));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_wan_connection> = kWanConnectionFields;

inline constexpr Field kIptvChannelFields[] = {
    selector(OLT_FIELD(box::IptvChannelRow, selector)),
    row_name(padded(OLT_FIELD(box::IptvChannelRow, profile))),
    row_name(OLT_FIELD(box::IptvChannelRow, number)),
    OLT_FIELD(box::IptvChannelRow, settings),
};
static_assert(fill<box::IptvChannelRow>(kIptvChannelFields) &&
              sizeof(box::IptvChannelRow) == sizeof(olt_iptv_channel_row));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_iptv_channel_row> = kIptvChannelFields;

/// The same record: the profile is an argument beside it.
inline constexpr Field kIptvChannelSettings[] = {
    {"reserved_00", 0, offsetof(box::IptvChannelRow, number), FieldKind::kBytes, Role::kReserved},
    row_name(OLT_FIELD(box::IptvChannelRow, number)),
    OLT_FIELD(box::IptvChannelRow, settings),
};
static_assert(fill<box::IptvChannelRow>(kIptvChannelSettings) &&
              sizeof(box::IptvChannelRow) == sizeof(olt_iptv_channel));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_iptv_channel> = kIptvChannelSettings;

inline constexpr Field kIptvProfileFields[] = {
    selector(OLT_FIELD(box::IptvProfileRow, selector)),
    row_name(padded(OLT_FIELD(box::IptvProfileRow, profile))),
    OLT_FIELD(box::IptvProfileRow, channels),
};
static_assert(fill<box::IptvProfileRow>(kIptvProfileFields) &&
              sizeof(box::IptvProfileRow) == sizeof(olt_iptv_profile_row));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_iptv_profile_row> = kIptvProfileFields;

/// Of the two records that share a type.
inline constexpr Field kOnuInfoFields[] = {
    OLT_FIELD(box::OnuInfoRow, slot),
    OLT_FIELD(box::OnuInfoRow, interface),
    OLT_FIELD(box::OnuInfoRow, onu),
    reserved(OLT_FIELD(box::OnuInfoRow, reserved_0c)),
    OLT_FIELD(box::OnuInfoRow, mac),
    reserved(OLT_FIELD(box::OnuInfoRow, reserved_16)),
    OLT_FIELD(box::OnuInfoRow, state),
    OLT_FIELD(box::OnuInfoRow, seconds),
    OLT_FIELD(box::OnuInfoRow, uni_ports),
    OLT_FIELD(box::OnuInfoRow, voice_lines),
    OLT_FIELD(box::OnuInfoRow, wan_connections),
    reserved(OLT_FIELD(box::OnuInfoRow, reserved_2c)),
    padded(OLT_FIELD(box::OnuInfoRow, loid)),
    padded(OLT_FIELD(box::OnuInfoRow, description)),
    reserved(OLT_FIELD(box::OnuInfoRow, reserved_78)),
};
static_assert(fill<box::OnuInfoRow>(kOnuInfoFields));

inline constexpr Field kLinkInfoFields[] = {
    OLT_FIELD(box::LinkInfoRow, slot),     OLT_FIELD(box::LinkInfoRow, interface),
    OLT_FIELD(box::LinkInfoRow, onu),      reserved(OLT_FIELD(box::LinkInfoRow, reserved_0c)),
    OLT_FIELD(box::LinkInfoRow, mac),      reserved(OLT_FIELD(box::LinkInfoRow, reserved_16)),
    OLT_FIELD(box::LinkInfoRow, state),    OLT_FIELD(box::LinkInfoRow, seconds),
    OLT_FIELD(box::LinkInfoRow, dba),      OLT_FIELD(box::LinkInfoRow, user_traffic),
    OLT_FIELD(box::LinkInfoRow, features),
};
static_assert(fill<box::LinkInfoRow>(kLinkInfoFields));

/// A head, and what its last word counts.
inline constexpr Field kGlobalInfoFields[] = {
    OLT_FIELD(box::GlobalInfoHead, slot),
    OLT_FIELD(box::GlobalInfoHead, interface),
    OLT_FIELD(box::GlobalInfoHead, onu),
    reserved(OLT_FIELD(box::GlobalInfoHead, reserved_0c)),
    OLT_FIELD(box::GlobalInfoHead, mac),
    reserved(OLT_FIELD(box::GlobalInfoHead, reserved_16)),
    OLT_FIELD(box::GlobalInfoHead, state),
    reserved(OLT_FIELD(box::GlobalInfoHead, reserved_1c)),
    padded(OLT_FIELD(box::GlobalInfoHead, loid)),
    OLT_FIELD(box::GlobalInfoHead, length),
    {"parts", sizeof(box::GlobalInfoHead), Field::kToTheEnd, FieldKind::kBytes},
};

/// A head, and what its last word counts.
inline constexpr Field kWanInfoFields[] = {
    OLT_FIELD(box::WanInfoHead, slot),
    OLT_FIELD(box::WanInfoHead, interface),
    OLT_FIELD(box::WanInfoHead, onu),
    reserved(OLT_FIELD(box::WanInfoHead, reserved_0c)),
    OLT_FIELD(box::WanInfoHead, count),
    OLT_FIELD(box::WanInfoHead, record_size),
    reserved(OLT_FIELD(box::WanInfoHead, reserved_18)),
    OLT_FIELD(box::WanInfoHead, length),
    {"connections", sizeof(box::WanInfoHead), Field::kToTheEnd, FieldKind::kBytes},
};

inline constexpr Field kIadInfoFields[] = {
    OLT_FIELD(box::IadInfoRow, slot),
    OLT_FIELD(box::IadInfoRow, interface),
    OLT_FIELD(box::IadInfoRow, onu),
    reserved(OLT_FIELD(box::IadInfoRow, reserved_0c)),
    OLT_FIELD(box::IadInfoRow, mac),
    reserved(OLT_FIELD(box::IadInfoRow, reserved_16)),
    OLT_FIELD(box::IadInfoRow, state),
    OLT_FIELD(box::IadInfoRow, voice_lines),
    padded(OLT_FIELD(box::IadInfoRow, wan_interface)),
    OLT_FIELD(box::IadInfoRow, lines_on),
    OLT_FIELD(box::IadInfoRow, accounts),
    OLT_FIELD(box::IadInfoRow, registered),
    reserved(OLT_FIELD(box::IadInfoRow, reserved_4c)),
};
static_assert(fill<box::IadInfoRow>(kIadInfoFields) &&
              sizeof(box::IadInfoRow) == sizeof(olt_iad_info));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_iad_info> = kIadInfoFields;

inline constexpr Field kVoiceLineFields[] = {
    OLT_FIELD(box::VoiceLineRow, slot),        OLT_FIELD(box::VoiceLineRow, interface),
    OLT_FIELD(box::VoiceLineRow, onu),         OLT_FIELD(box::VoiceLineRow, line),
    OLT_FIELD(box::VoiceLineRow, line_status), OLT_FIELD(box::VoiceLineRow, state),
    OLT_FIELD(box::VoiceLineRow, account),     reserved(OLT_FIELD(box::VoiceLineRow, reserved_1c)),
};
static_assert(fill<box::VoiceLineRow>(kVoiceLineFields) &&
              sizeof(box::VoiceLineRow) == sizeof(olt_voip_line_status));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_voip_line_status> = kVoiceLineFields;

inline constexpr Field kVoiceBindingFields[] = {
    OLT_FIELD(box::VoiceBindingRow, slot),
    OLT_FIELD(box::VoiceBindingRow, interface),
    OLT_FIELD(box::VoiceBindingRow, onu),
    reserved(OLT_FIELD(box::VoiceBindingRow, reserved_0c)),
    OLT_FIELD(box::VoiceBindingRow, bound),
    padded(OLT_FIELD(box::VoiceBindingRow, wan_interface)),
    reserved(OLT_FIELD(box::VoiceBindingRow, reserved_34)),
};
static_assert(fill<box::VoiceBindingRow>(kVoiceBindingFields) &&
              sizeof(box::VoiceBindingRow) == sizeof(olt_voip_binding));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_voip_binding> = kVoiceBindingFields;

inline constexpr Field kUniPortInfoFields[] = {
    OLT_FIELD(box::UniPortInfoRow, slot),  OLT_FIELD(box::UniPortInfoRow, interface),
    OLT_FIELD(box::UniPortInfoRow, onu),   OLT_FIELD(box::UniPortInfoRow, port),
    OLT_FIELD(box::UniPortInfoRow, info),  OLT_FIELD(box::UniPortInfoRow, loopback),
    OLT_FIELD(box::UniPortInfoRow, alarm),
};
static_assert(fill<box::UniPortInfoRow>(kUniPortInfoFields) &&
              sizeof(box::UniPortInfoRow) == sizeof(olt_uni_port_info));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_uni_port_info> = kUniPortInfoFields;

/// A target in which a limit comes back.
inline constexpr Field kGroupLimitFields[] = {
    row_name(OLT_FIELD(box::GroupLimitTarget, target)),
    row_name(OLT_FIELD(box::GroupLimitTarget, target_kind)),
    OLT_FIELD(box::GroupLimitTarget, port),
    OLT_FIELD(box::GroupLimitTarget, group_limit),
    reserved(OLT_FIELD(box::GroupLimitTarget, reserved_18)),
    row_name(OLT_FIELD(box::GroupLimitTarget, mac)),
    reserved(OLT_FIELD(box::GroupLimitTarget, reserved_22)),
    row_name(OLT_FIELD(box::GroupLimitTarget, mac_word)),
    reserved(OLT_FIELD(box::GroupLimitTarget, reserved_28)),
};
static_assert(fill<box::GroupLimitTarget>(kGroupLimitFields));

inline constexpr Field kVlanRowFields[] = {
    selector(OLT_FIELD(box::VlanRow, selector)),  row_name(OLT_FIELD(box::VlanRow, vlan)),
    padded(OLT_FIELD(box::VlanRow, description)), OLT_FIELD(box::VlanRow, tagged_ports),
    OLT_FIELD(box::VlanRow, untagged_ports),      OLT_FIELD(box::VlanRow, members),
};
static_assert(fill<box::VlanRow>(kVlanRowFields) &&
              sizeof(box::VlanRow) == sizeof(olt_vlan_id_row));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_vlan_id_row> = kVlanRowFields;

inline constexpr Field kBasicPortFields[] = {
    selector(OLT_FIELD(box::BasicPortRow, selector)), row_name(OLT_FIELD(box::BasicPortRow, slot)),
    row_name(OLT_FIELD(box::BasicPortRow, port)),     OLT_FIELD(box::BasicPortRow, port_enable),
    OLT_FIELD(box::BasicPortRow, link_state),         OLT_FIELD(box::BasicPortRow, link_speed),
    OLT_FIELD(box::BasicPortRow, link_duplex),        OLT_FIELD(box::BasicPortRow, vlanmode_first),
    OLT_FIELD(box::BasicPortRow, vlanmode_second),    OLT_FIELD(box::BasicPortRow, flowcontrol),
    OLT_FIELD(box::BasicPortRow, rstp_state),         OLT_FIELD(box::BasicPortRow, max_link),
};
static_assert(fill<box::BasicPortRow>(kBasicPortFields) &&
              sizeof(box::BasicPortRow) == sizeof(olt_basic_port_row));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_basic_port_row> = kBasicPortFields;

inline constexpr Field kAuthRowFields[] = {
    selector(OLT_FIELD(box::AuthRow, selector)),
    row_name(OLT_FIELD(box::AuthRow, slot)),
    row_name(OLT_FIELD(box::AuthRow, interface)),
    OLT_FIELD(box::AuthRow, auth_mode),
    OLT_FIELD(box::AuthRow, allowed_macs),
    OLT_FIELD(box::AuthRow, allowed_loids),
    OLT_FIELD(box::AuthRow, allowed_mac_loids),
    OLT_FIELD(box::AuthRow, onus),
    OLT_FIELD(box::AuthRow, onus_up),
    OLT_FIELD(box::AuthRow, onus_away),
    OLT_FIELD(box::AuthRow, onus_blocked),
    reserved(OLT_FIELD(box::AuthRow, reserved_2c)),
};
static_assert(fill<box::AuthRow>(kAuthRowFields) && sizeof(box::AuthRow) == sizeof(olt_auth_row));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_auth_row> = kAuthRowFields;

// Records that operations compose of their arguments.

inline constexpr Field kListingRequestFields[] = {
    reserved(OLT_FIELD(box::ListingRequest, reserved_00)),
    row_name(OLT_FIELD(box::ListingRequest, slot)),
    row_name(OLT_FIELD(box::ListingRequest, number)),
    OLT_FIELD(box::ListingRequest, vlan),
    reserved(OLT_FIELD(box::ListingRequest, reserved_10)),
};
static_assert(fill<box::ListingRequest>(kListingRequestFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::ListingRequest> = kListingRequestFields;

inline constexpr Field kListingReplyFields[] = {
    reserved(OLT_FIELD(box::ListingReply, reserved_00)),
    listing(OLT_FIELD(box::ListingReply, name)),
};
static_assert(fill<box::ListingReply>(kListingReplyFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::ListingReply> = kListingReplyFields;

/// A reply that is the name alone.
inline constexpr Field kListingNameFields[] = {listing(OLT_FIELD(box::ListingName, name))};
template <>
inline constexpr std::span<const Field> kFieldsOf<box::ListingName> = kListingNameFields;

inline constexpr Field kUplinkAggregationFields[] = {
    reserved(OLT_FIELD(box::UplinkAggregation, reserved_00)),
    OLT_FIELD(box::UplinkAggregation, upport_agg),
    reserved(OLT_FIELD(box::UplinkAggregation, reserved_0c)),
};
static_assert(fill<box::UplinkAggregation>(kUplinkAggregationFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::UplinkAggregation> =
    kUplinkAggregationFields;

inline constexpr Field kVlanQueryFields[] = {
    selector(OLT_FIELD(box::VlanQuery, kind)), row_name(OLT_FIELD(box::VlanQuery, slot)),
    row_name(OLT_FIELD(box::VlanQuery, port)), reserved(OLT_FIELD(box::VlanQuery, reserved_0c)),
    OLT_FIELD(box::VlanQuery, description),
};
static_assert(fill<box::VlanQuery>(kVlanQueryFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::VlanQuery> = kVlanQueryFields;

inline constexpr Field kTrunkFields[] = {
    row_name(OLT_FIELD(box::TrunkHead, slot)),
    row_name(OLT_FIELD(box::TrunkHead, port)),
    OLT_FIELD(box::TrunkHead, trunk_value),
    reserved(OLT_FIELD(box::TrunkHead, reserved_0c)),
};
static_assert(fill<box::TrunkHead>(kTrunkFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::TrunkHead> = kTrunkFields;

inline constexpr Field kPonInterfaceFields[] = {
    row_name(OLT_FIELD(box::PonInterface, slot)),
    row_name(OLT_FIELD(box::PonInterface, interface)),
    reserved(OLT_FIELD(box::PonInterface, reserved_08)),
    OLT_FIELD(box::PonInterface, auth_mode),
    reserved(OLT_FIELD(box::PonInterface, reserved_28)),
};
static_assert(fill<box::PonInterface>(kPonInterfaceFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::PonInterface> = kPonInterfaceFields;

inline constexpr Field kBoxTargetFields[] = {
    row_name(OLT_FIELD(box::OntTarget, slot)),
    row_name(OLT_FIELD(box::OntTarget, interface)),
    row_name(OLT_FIELD(box::OntTarget, onu)),
    selector(OLT_FIELD(box::OntTarget, target_kind)),
    row_name(OLT_FIELD(box::OntTarget, part)),
    reserved(OLT_FIELD(box::OntTarget, reserved_14)),
    OLT_FIELD(box::OntTarget, mac),
    reserved(OLT_FIELD(box::OntTarget, reserved_22)),
    OLT_FIELD(box::OntTarget, mac_word),
    OLT_FIELD(box::OntTarget, user_traffic),
};
static_assert(fill<box::OntTarget>(kBoxTargetFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::OntTarget> = kBoxTargetFields;

inline constexpr Field kFeatureRequestFields[] = {
    row_name(OLT_FIELD(box::FeatureRequest, slot)),
    row_name(OLT_FIELD(box::FeatureRequest, interface)),
    row_name(OLT_FIELD(box::FeatureRequest, onu)),
    selector(OLT_FIELD(box::FeatureRequest, target_kind)),
    reserved(OLT_FIELD(box::FeatureRequest, reserved_10)),
    OLT_FIELD(box::FeatureRequest, mac),
    reserved(OLT_FIELD(box::FeatureRequest, reserved_22)),
    OLT_FIELD(box::FeatureRequest, feature),
};
static_assert(fill<box::FeatureRequest>(kFeatureRequestFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::FeatureRequest> = kFeatureRequestFields;

/// The same record: the target is one argument.
inline constexpr Field kDescriptionRequestFields[] = {
    {"ont", 0, offsetof(box::FeatureRequest, target_kind), FieldKind::kOnt, Role::kRowName},
    selector(OLT_FIELD(box::FeatureRequest, target_kind)),
    {"description", offsetof(box::FeatureRequest, feature), sizeof(box::FeatureRequest::feature),
     FieldKind::kPadded},
};

inline constexpr Field kChannelRequestFields[] = {
    OLT_FIELD(box::ChannelRequest, channel),
    row_name(padded(OLT_FIELD(box::ChannelRequest, profile))),
};
static_assert(fill<box::ChannelRequest>(kChannelRequestFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::ChannelRequest> = kChannelRequestFields;

inline constexpr Field kProfileNameFields[] = {
    {"profile", 0, sizeof(box::ProfileName), FieldKind::kPadded, Role::kRowName},
};
template <>
inline constexpr std::span<const Field> kFieldsOf<box::ProfileName> = kProfileNameFields;

inline constexpr Field kOntProfileFields[] = {
    {"ont", 0, sizeof(box::OntTarget), FieldKind::kOnt, Role::kRowName},
    {"profile", sizeof(box::OntTarget), sizeof(box::ProfileName), FieldKind::kPadded},
};

inline constexpr Field kOntInterfaceNameFields[] = {
    {"ont", 0, sizeof(box::OntTarget), FieldKind::kOnt, Role::kRowName},
    {"interface_name", sizeof(box::OntTarget), sizeof(box::InterfaceName), FieldKind::kText},
};

/// Two bytes shorter than what the reply fills.
inline constexpr Field kOntStripFields[] = {
    {"ont", 0, sizeof(box::OntTarget), FieldKind::kOnt, Role::kRowName},
    {"strip", sizeof(box::OntTarget), sizeof(box::UniStripRow::strip), FieldKind::kBytes},
};

inline constexpr Field kUserChannelFields[] = {
    {"user_address", offsetof(box::UserChannelRecord, user), sizeof(box::UserChannelRecord::user),
     FieldKind::kMac, Role::kRowName},
    reserved(OLT_FIELD(box::UserChannelRecord, reserved_06)),
    OLT_FIELD(box::UserChannelRecord, a),
    OLT_FIELD(box::UserChannelRecord, b),
    OLT_FIELD(box::UserChannelRecord, c),
    OLT_FIELD(box::UserChannelRecord, d),
};
static_assert(fill<box::UserChannelRecord>(kUserChannelFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::UserChannelRecord> = kUserChannelFields;

}  // namespace olt::catalog

#endif
