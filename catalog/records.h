/// The named fields of the records that operations take. A record that is not listed is opaque.
#ifndef OLT_CATALOG_RECORDS_H
#define OLT_CATALOG_RECORDS_H

#include <cstddef>
#include <span>

#include "box/wire/records.h"
#include "catalog/fields.h"
#include "catalog/value_names.h"

namespace olt::catalog {

inline constexpr Field kUserFields[] = {
    selector(named(kUserOperations, OLT_FIELD(olt_user, user_op))),
    OLT_FIELD(olt_user, user_index),
    row_name(OLT_FIELD(olt_user, user_name)),
    required(secret(OLT_FIELD(olt_user, user_password))),
    OLT_FIELD(olt_user, level_a),
    OLT_FIELD(olt_user, level_b),
};
static_assert(fill<olt_user>(kUserFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_user> = kUserFields;

inline constexpr Field kDebugValueFields[] = {
    selector(named(kReadWrite, OLT_FIELD(olt_debug_value, debug_op))),
    reserved(OLT_FIELD(olt_debug_value, reserved_04)),
    OLT_FIELD(olt_debug_value, debug_value),
};
static_assert(fill<olt_debug_value>(kDebugValueFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_debug_value> = kDebugValueFields;

inline constexpr Field kSwitchDebugFields[] = {
    selector(named(kReadWrite, OLT_FIELD(olt_switch_debug, debug_op))),
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
    named(kOffOn, OLT_FIELD(olt_port_attributes, port_enable)),
    in_unit("Mbit/s", OLT_FIELD(olt_port_attributes, link_speed)),
    named(kDuplex, OLT_FIELD(olt_port_attributes, link_duplex)),
    OLT_FIELD(olt_port_attributes, vlanmode_second),
    OLT_FIELD(olt_port_attributes, vlanmode_first),
    reserved(OLT_FIELD(olt_port_attributes, reserved_24)),
    OLT_FIELD(olt_port_attributes, flowcontrol),
    OLT_FIELD(olt_port_attributes, ingressfilter_first),
    OLT_FIELD(olt_port_attributes, ingressfilter_second),
    OLT_FIELD(olt_port_attributes, ratecontrol_first),
    OLT_FIELD(olt_port_attributes, ratecontrol_second),
    named(kOffOn, OLT_FIELD(olt_port_attributes, rstp_state)),
    named(kDownUp, OLT_FIELD(olt_port_attributes, link_state)),
    reserved(OLT_FIELD(olt_port_attributes, reserved_44)),
    OLT_FIELD(olt_port_attributes, max_link),
};
static_assert(fill<olt_port_attributes>(kPortFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_port_attributes> = kPortFields;

inline constexpr Field kRstpBriefFields[] = {
    row_name(OLT_FIELD(box::RstpBrief, slot)),
    row_name(OLT_FIELD(box::RstpBrief, port)),
    named(kNoYes, OLT_FIELD(box::RstpBrief, active)),
    named(kRstpRoles, OLT_FIELD(box::RstpBrief, role)),
    named(kRstpStates, OLT_FIELD(box::RstpBrief, state)),
    OLT_FIELD(box::RstpBrief, priority),
    OLT_FIELD(box::RstpBrief, path_cost),
    OLT_FIELD(box::RstpBrief, bridge_priority),
    named(kNoYes, OLT_FIELD(box::RstpBrief, edge)),
    of_kind(FieldKind::kDuration, OLT_FIELD(box::RstpBrief, seconds)),
};
static_assert(fill<box::RstpBrief>(kRstpBriefFields) &&
              sizeof(box::RstpBrief) == sizeof(olt_rstp_brief));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_rstp_brief> = kRstpBriefFields;

inline constexpr Field kRstpBridgeFields[] = {
    named(kOffOn, OLT_FIELD(box::RstpBridge, enabled)),
    named(kRstpVersions, OLT_FIELD(box::RstpBridge, version)),
    OLT_FIELD(box::RstpBridge, priority),
    in_unit("s", OLT_FIELD(box::RstpBridge, max_age)),
    in_unit("s", OLT_FIELD(box::RstpBridge, hello_time)),
    in_unit("s", OLT_FIELD(box::RstpBridge, forward_delay)),
    OLT_FIELD(box::RstpBridge, hold_count),
    reserved(OLT_FIELD(box::RstpBridge, reserved_0b)),
};
static_assert(fill<box::RstpBridge>(kRstpBridgeFields) &&
              sizeof(box::RstpBridge) == sizeof(olt_rstp_bridge));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_rstp_bridge> = kRstpBridgeFields;

inline constexpr Field kRstpPortFields[] = {
    row_name(OLT_FIELD(box::RstpPort, slot)),
    row_name(OLT_FIELD(box::RstpPort, port)),
    named(kOffOn, OLT_FIELD(box::RstpPort, rstp_state)),
    OLT_FIELD(box::RstpPort, priority),
    named(kPathCosts, OLT_FIELD(box::RstpPort, path_cost)),
    named(kNoYes, OLT_FIELD(box::RstpPort, edge)),
    named(kNoYes, OLT_FIELD(box::RstpPort, point_to_point)),
    reserved(OLT_FIELD(box::RstpPort, reserved_10)),
};
static_assert(fill<box::RstpPort>(kRstpPortFields) &&
              sizeof(box::RstpPort) == sizeof(olt_rstp_port));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_rstp_port> = kRstpPortFields;

inline constexpr Field kIgmpProxyFields[] = {
    named(kOffOn, OLT_FIELD(box::IgmpProxy, enabled)),
    in_unit("s", OLT_FIELD(box::IgmpProxy, query_interval)),
    in_unit("s", OLT_FIELD(box::IgmpProxy, response_time)),
    OLT_FIELD(box::IgmpProxy, robustness),
    in_unit("s", OLT_FIELD(box::IgmpProxy, last_member_query_interval)),
    named(kOffOn, OLT_FIELD(box::IgmpProxy, fast_leave)),
};
static_assert(fill<box::IgmpProxy>(kIgmpProxyFields) &&
              sizeof(box::IgmpProxy) == sizeof(olt_igmpproxy));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_igmpproxy> = kIgmpProxyFields;

inline constexpr Field kVlanElementFields[] = {
    vlan(OLT_FIELD(box::VlanElement, first)),
    vlan(named(kSameVlan, OLT_FIELD(box::VlanElement, last))),
};
static_assert(fill<box::VlanElement>(kVlanElementFields));

inline constexpr Field kDescribedVlanFields[] = {
    vlan(OLT_FIELD(box::DescribedVlan, first)),
    vlan(named(kSameVlan, OLT_FIELD(box::DescribedVlan, last))),
    padded(OLT_FIELD(box::DescribedVlan, description)),
};
static_assert(fill<box::DescribedVlan>(kDescribedVlanFields));

inline constexpr auto kIgmpProxyDumpFields = extended(
    kIgmpProxyFields, Field{"ranges", sizeof(box::IgmpProxy), sizeof(uint32_t), FieldKind::kNumber},
    records<box::VlanElement>("vlans", box::kIgmpProxyDumpHead, kVlanElementFields));

inline constexpr Field kPortMacFields[] = {
    row_name(OLT_FIELD(box::PortMac, slot)),
    row_name(OLT_FIELD(box::PortMac, port)),
    selector(named(kMacOperations, OLT_FIELD(box::PortMac, operation))),
    vlan(OLT_FIELD(box::PortMac, vlan)),
    OLT_FIELD(box::PortMac, mac),
    reserved(OLT_FIELD(box::PortMac, reserved_0e)),
};
static_assert(fill<box::PortMac>(kPortMacFields) && sizeof(box::PortMac) == sizeof(olt_port_mac));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_port_mac> = kPortMacFields;

inline constexpr Field kSystemNetworkFields[] = {
    of_kind(FieldKind::kIpv4, OLT_FIELD(box::SystemNetwork, address)),
    of_kind(FieldKind::kIpv4, OLT_FIELD(box::SystemNetwork, mask)),
    of_kind(FieldKind::kIpv4, OLT_FIELD(box::SystemNetwork, gateway)),
    vlan(OLT_FIELD(box::SystemNetwork, vlan)),
    of_kind(FieldKind::kIpv4, OLT_FIELD(box::SystemNetwork, dns_first)),
    of_kind(FieldKind::kIpv4, OLT_FIELD(box::SystemNetwork, dns_second)),
    padded(OLT_FIELD(box::SystemNetwork, name)),
    reserved(OLT_FIELD(box::SystemNetwork, reserved_38)),
};
static_assert(fill<box::SystemNetwork>(kSystemNetworkFields) &&
              sizeof(box::SystemNetwork) == sizeof(olt_system_network));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_system_network> = kSystemNetworkFields;

inline constexpr Field kSntpFields[] = {
    named(kOffOn, OLT_FIELD(box::SntpConfig, enabled)),
    of_kind(FieldKind::kIpv4, OLT_FIELD(box::SntpConfig, server_first)),
    of_kind(FieldKind::kIpv4, OLT_FIELD(box::SntpConfig, server_second)),
    of_kind(FieldKind::kDuration, OLT_FIELD(box::SntpConfig, interval)),
    in_unit("min", of_kind(FieldKind::kSigned, OLT_FIELD(box::SntpConfig, utc_offset))),
    reserved(OLT_FIELD(box::SntpConfig, reserved_14)),
};
static_assert(fill<box::SntpConfig>(kSntpFields) &&
              sizeof(box::SntpConfig) == sizeof(olt_sntp_config));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_sntp_config> = kSntpFields;

inline constexpr Field kSnmpParamFields[] = {
    secret(padded(OLT_FIELD(box::SnmpParam, read_community))),
    secret(padded(OLT_FIELD(box::SnmpParam, write_community))),
    secret(padded(OLT_FIELD(box::SnmpParam, trap_community))),
    named(kOffOn, OLT_FIELD(box::SnmpParam, traps)),
    of_kind(FieldKind::kIpv4, OLT_FIELD(box::SnmpParam, trap_host)),
    OLT_FIELD(box::SnmpParam, trap_port),
    reserved(OLT_FIELD(box::SnmpParam, reserved_6c)),
};
static_assert(fill<box::SnmpParam>(kSnmpParamFields) &&
              sizeof(box::SnmpParam) == sizeof(olt_snmp_param));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_snmp_param> = kSnmpParamFields;

inline constexpr Field kSnmpSystemInfoFields[] = {
    padded(OLT_FIELD(box::SnmpSystemInfo, contact)),
    padded(OLT_FIELD(box::SnmpSystemInfo, name)),
    padded(OLT_FIELD(box::SnmpSystemInfo, location)),
    OLT_FIELD(box::SnmpSystemInfo, services),
};
static_assert(fill<box::SnmpSystemInfo>(kSnmpSystemInfoFields) &&
              sizeof(box::SnmpSystemInfo) == sizeof(olt_snmp_systeminfo));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_snmp_systeminfo> = kSnmpSystemInfoFields;

/// The head of a piece of a firmware image, and its bytes.
inline constexpr Field kUpdatePieceFields[] = {
    in_unit("bytes", OLT_FIELD(box::UpdatePiece, total)),
    in_unit("bytes", OLT_FIELD(box::UpdatePiece, offset)),
    {"image", sizeof(box::UpdatePiece), Field::kToTheEnd, FieldKind::kBytes},
};

inline constexpr Field kUpdateAnswerFields[] = {
    in_unit("bytes", OLT_FIELD(box::UpdateProgress, received)),
    in_unit("%", named(kUpdateProgress, OLT_FIELD(box::UpdateProgress, progress))),
    {"reserved_08", sizeof(box::UpdateProgress), Field::kToTheEnd, FieldKind::kBytes,
     Role::kReserved},
};

inline constexpr Field kOntTargetFields[] = {
    row_name(of_kind(FieldKind::kOnt, OLT_FIELD(olt_ont_target, target))),
    selector(named(kRows, OLT_FIELD(olt_ont_target, target_kind))),
    row_name(OLT_FIELD(box::OntTarget, part)),
    reserved(OLT_FIELD(box::OntTarget, reserved_14)),
    row_name(OLT_FIELD(olt_ont_target, mac)),
    reserved(OLT_FIELD(olt_ont_target, reserved_22)),
    row_name(OLT_FIELD(olt_ont_target, mac_word)),
    reserved(OLT_FIELD(olt_ont_target, reserved_28)),
};
static_assert(fill<olt_ont_target>(kOntTargetFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_ont_target> = kOntTargetFields;

/// Only the reader of an ONU's MAC address says whether it is up.
inline constexpr auto kMacTargetFields = naming("mac_word", kDownUp, kOntTargetFields);
inline constexpr auto kVoiceTargetFields = naming("part", kVoiceLines, kOntTargetFields);

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
    in_unit("kbit/s", OLT_FIELD(olt_link_dba, requested)),
    in_unit("kbit/s", OLT_FIELD(olt_link_dba, granted)),
};
static_assert(fill<olt_link_dba>(kLinkDbaFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_link_dba> = kLinkDbaFields;

// What the public header itself says.

template <>
inline constexpr std::span<const Field> kNamedFieldsOf<olt_user> = kWithoutMeaning<kUserFields>;
template <>
inline constexpr std::span<const Field> kNamedFieldsOf<olt_debug_value> =
    kWithoutMeaning<kDebugValueFields>;
template <>
inline constexpr std::span<const Field> kNamedFieldsOf<olt_switch_debug> =
    kWithoutMeaning<kSwitchDebugFields>;
template <>
inline constexpr std::span<const Field> kNamedFieldsOf<olt_port_attributes> =
    kWithoutMeaning<kPortFields>;
template <>
inline constexpr std::span<const Field> kNamedFieldsOf<olt_global_parameter> =
    kWithoutMeaning<kGlobalParameterFields>;
template <>
inline constexpr std::span<const Field> kNamedFieldsOf<olt_link_dba> =
    kWithoutMeaning<kLinkDbaFields>;

inline constexpr Field kRstpBriefNames[] = {
    row_name(OLT_FIELD(olt_rstp_brief, keys)),
    OLT_FIELD(olt_rstp_brief, values),
};
static_assert(fill<olt_rstp_brief>(kRstpBriefNames));
template <>
inline constexpr std::span<const Field> kNamedFieldsOf<olt_rstp_brief> = kRstpBriefNames;

inline constexpr Field kOntTargetNames[] = {
    row_name(OLT_FIELD(olt_ont_target, target)),      OLT_FIELD(olt_ont_target, target_kind),
    reserved(OLT_FIELD(olt_ont_target, reserved_10)), OLT_FIELD(olt_ont_target, mac),
    reserved(OLT_FIELD(olt_ont_target, reserved_22)), OLT_FIELD(olt_ont_target, mac_word),
    reserved(OLT_FIELD(olt_ont_target, reserved_28)),
};
static_assert(fill<olt_ont_target>(kOntTargetNames));
template <>
inline constexpr std::span<const Field> kNamedFieldsOf<olt_ont_target> = kOntTargetNames;

// What the bytes of these records mean to the simulated box. The library only carries them.

inline constexpr Field kAuthEntryFields[] = {
    OLT_FIELD(box::AuthEntry, mac),
    reserved(OLT_FIELD(box::AuthEntry, reserved_06)),
    padded(OLT_FIELD(box::AuthEntry, loid)),
    secret(padded(OLT_FIELD(box::AuthEntry, password))),
};
static_assert(fill<box::AuthEntry>(kAuthEntryFields) &&
              sizeof(box::AuthEntry) == sizeof(olt_auth_entry));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_auth_entry> = kAuthEntryFields;

inline constexpr Field kWanConnectionFields[] = {
    selector(named(kWanOperations, OLT_FIELD(box::WanConnection, operation))),
    row_name(OLT_FIELD(box::WanConnection, number)),
    OLT_FIELD(box::WanConnection, settings),
};
static_assert(fill<box::WanConnection>(kWanConnectionFields) &&
              sizeof(box::WanConnection) == sizeof(olt_wan_connection));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_wan_connection> = kWanConnectionFields;

inline constexpr Field kIptvChannelFields[] = {
    selector(named(kRows, OLT_FIELD(box::IptvChannelRow, selector))),
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
    selector(named(kRows, OLT_FIELD(box::IptvProfileRow, selector))),
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
    named(kOnuStates, OLT_FIELD(box::OnuInfoRow, state)),
    of_kind(FieldKind::kDuration, OLT_FIELD(box::OnuInfoRow, seconds)),
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
    OLT_FIELD(box::LinkInfoRow, slot),
    OLT_FIELD(box::LinkInfoRow, interface),
    OLT_FIELD(box::LinkInfoRow, onu),
    reserved(OLT_FIELD(box::LinkInfoRow, reserved_0c)),
    OLT_FIELD(box::LinkInfoRow, mac),
    reserved(OLT_FIELD(box::LinkInfoRow, reserved_16)),
    named(kOnuStates, OLT_FIELD(box::LinkInfoRow, state)),
    of_kind(FieldKind::kDuration, OLT_FIELD(box::LinkInfoRow, seconds)),
    OLT_FIELD(box::LinkInfoRow, dba),
    OLT_FIELD(box::LinkInfoRow, user_traffic),
    OLT_FIELD(box::LinkInfoRow, features),
};
static_assert(fill<box::LinkInfoRow>(kLinkInfoFields));

inline constexpr Field kGlobalInfoPartFields[] = {
    named(kPartKinds, OLT_FIELD(box::GlobalInfoPart, kind)),
    OLT_FIELD(box::GlobalInfoPart, number),
    OLT_FIELD(box::GlobalInfoPart, value),
};
static_assert(fill<box::GlobalInfoPart>(kGlobalInfoPartFields));

/// A head, and what its last word counts.
inline constexpr Field kGlobalInfoFields[] = {
    OLT_FIELD(box::GlobalInfoHead, slot),
    OLT_FIELD(box::GlobalInfoHead, interface),
    OLT_FIELD(box::GlobalInfoHead, onu),
    reserved(OLT_FIELD(box::GlobalInfoHead, reserved_0c)),
    OLT_FIELD(box::GlobalInfoHead, mac),
    reserved(OLT_FIELD(box::GlobalInfoHead, reserved_16)),
    named(kOnuStates, OLT_FIELD(box::GlobalInfoHead, state)),
    reserved(OLT_FIELD(box::GlobalInfoHead, reserved_1c)),
    padded(OLT_FIELD(box::GlobalInfoHead, loid)),
    OLT_FIELD(box::GlobalInfoHead, length),
    records<box::GlobalInfoPart>("parts", sizeof(box::GlobalInfoHead), kGlobalInfoPartFields),
};

/// Connections that are kept, with what was last done to them.
inline constexpr auto kKeptConnectionFields = [] {
  auto fields = std::to_array(kWanConnectionFields);
  fields[0].role = Role::kPlain;
  return fields;
}();

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
    records<box::WanConnection>("connections", sizeof(box::WanInfoHead), kKeptConnectionFields),
};

inline constexpr Field kIadInfoFields[] = {
    OLT_FIELD(box::IadInfoRow, slot),
    OLT_FIELD(box::IadInfoRow, interface),
    OLT_FIELD(box::IadInfoRow, onu),
    reserved(OLT_FIELD(box::IadInfoRow, reserved_0c)),
    OLT_FIELD(box::IadInfoRow, mac),
    reserved(OLT_FIELD(box::IadInfoRow, reserved_16)),
    named(kOnuStates, OLT_FIELD(box::IadInfoRow, state)),
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
    OLT_FIELD(box::VoiceLineRow, slot),
    OLT_FIELD(box::VoiceLineRow, interface),
    OLT_FIELD(box::VoiceLineRow, onu),
    OLT_FIELD(box::VoiceLineRow, line),
    named(kOffOn, OLT_FIELD(box::VoiceLineRow, line_status)),
    named(kVoiceStates, OLT_FIELD(box::VoiceLineRow, state)),
    named(kNoYes, OLT_FIELD(box::VoiceLineRow, account)),
    reserved(OLT_FIELD(box::VoiceLineRow, reserved_1c)),
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
    named(kNoYes, OLT_FIELD(box::VoiceBindingRow, bound)),
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
    row_name(of_kind(FieldKind::kOnt, OLT_FIELD(box::GroupLimitTarget, target))),
    selector(named(kRows, OLT_FIELD(box::GroupLimitTarget, target_kind))),
    OLT_FIELD(box::GroupLimitTarget, port),
    named(kNoLimit, OLT_FIELD(box::GroupLimitTarget, group_limit)),
    reserved(OLT_FIELD(box::GroupLimitTarget, reserved_18)),
    row_name(OLT_FIELD(box::GroupLimitTarget, mac)),
    reserved(OLT_FIELD(box::GroupLimitTarget, reserved_22)),
    row_name(OLT_FIELD(box::GroupLimitTarget, mac_word)),
    reserved(OLT_FIELD(box::GroupLimitTarget, reserved_28)),
};
static_assert(fill<box::GroupLimitTarget>(kGroupLimitFields));

inline constexpr Field kVlanRowFields[] = {
    selector(named(kRows, OLT_FIELD(box::VlanRow, selector))),
    row_name(vlan(OLT_FIELD(box::VlanRow, vlan))),
    padded(OLT_FIELD(box::VlanRow, description)),
    of_kind(FieldKind::kPorts, OLT_FIELD(box::VlanRow, tagged_ports)),
    of_kind(FieldKind::kPorts, OLT_FIELD(box::VlanRow, untagged_ports)),
    OLT_FIELD(box::VlanRow, members),
};
static_assert(fill<box::VlanRow>(kVlanRowFields) &&
              sizeof(box::VlanRow) == sizeof(olt_vlan_id_row));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_vlan_id_row> = kVlanRowFields;

inline constexpr Field kBasicPortFields[] = {
    selector(named(kRows, OLT_FIELD(box::BasicPortRow, selector))),
    row_name(OLT_FIELD(box::BasicPortRow, slot)),
    row_name(OLT_FIELD(box::BasicPortRow, port)),
    named(kOffOn, OLT_FIELD(box::BasicPortRow, port_enable)),
    named(kDownUp, OLT_FIELD(box::BasicPortRow, link_state)),
    in_unit("Mbit/s", OLT_FIELD(box::BasicPortRow, link_speed)),
    named(kDuplex, OLT_FIELD(box::BasicPortRow, link_duplex)),
    OLT_FIELD(box::BasicPortRow, vlanmode_first),
    OLT_FIELD(box::BasicPortRow, vlanmode_second),
    OLT_FIELD(box::BasicPortRow, flowcontrol),
    named(kOffOn, OLT_FIELD(box::BasicPortRow, rstp_state)),
    OLT_FIELD(box::BasicPortRow, max_link),
};
static_assert(fill<box::BasicPortRow>(kBasicPortFields) &&
              sizeof(box::BasicPortRow) == sizeof(olt_basic_port_row));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_basic_port_row> = kBasicPortFields;

inline constexpr Field kAuthRowFields[] = {
    selector(named(kRows, OLT_FIELD(box::AuthRow, selector))),
    row_name(OLT_FIELD(box::AuthRow, slot)),
    row_name(OLT_FIELD(box::AuthRow, interface)),
    named(kAuthModes, OLT_FIELD(box::AuthRow, auth_mode)),
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

inline constexpr Field kUniVlanModeFields[] = {
    named(kVlanModes, OLT_FIELD(box::UniVlanMode, mode)),
    OLT_FIELD(box::UniVlanMode, settings),
};
static_assert(fill<box::UniVlanMode>(kUniVlanModeFields) &&
              sizeof(box::UniVlanMode) == sizeof(olt_uni_vlan_mode));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_uni_vlan_mode> = kUniVlanModeFields;

inline constexpr Field kMulticastVlansFields[] = {
    OLT_FIELD(box::MulticastVlans, count),
    of_kind(FieldKind::kVlans, OLT_FIELD(box::MulticastVlans, vlans)),
};
static_assert(fill<box::MulticastVlans>(kMulticastVlansFields) &&
              sizeof(box::MulticastVlans) == sizeof(olt_uni_muticast_vlans));
template <>
inline constexpr std::span<const Field> kFieldsOf<olt_uni_muticast_vlans> = kMulticastVlansFields;

// Records that operations compose of their arguments.

inline constexpr Field kListingRequestFields[] = {
    reserved(OLT_FIELD(box::ListingRequest, reserved_00)),
    row_name(OLT_FIELD(box::ListingRequest, slot)),
    row_name(OLT_FIELD(box::ListingRequest, number)),
    vlan(named(kAllVlans, OLT_FIELD(box::ListingRequest, vlan))),
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
    selector(named(kVlanQueries, OLT_FIELD(box::VlanQuery, kind))),
    row_name(OLT_FIELD(box::VlanQuery, slot)),
    row_name(OLT_FIELD(box::VlanQuery, port)),
    reserved(OLT_FIELD(box::VlanQuery, reserved_0c)),
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
    named(kAuthModes, OLT_FIELD(box::PonInterface, auth_mode)),
    reserved(OLT_FIELD(box::PonInterface, reserved_28)),
};
static_assert(fill<box::PonInterface>(kPonInterfaceFields));
template <>
inline constexpr std::span<const Field> kFieldsOf<box::PonInterface> = kPonInterfaceFields;

inline constexpr Field kBoxTargetFields[] = {
    row_name(OLT_FIELD(box::OntTarget, slot)),
    row_name(OLT_FIELD(box::OntTarget, interface)),
    row_name(OLT_FIELD(box::OntTarget, onu)),
    selector(named(kRows, OLT_FIELD(box::OntTarget, target_kind))),
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
    selector(named(kRows, OLT_FIELD(box::FeatureRequest, target_kind))),
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
    selector(named(kRows, OLT_FIELD(box::FeatureRequest, target_kind))),
    {"reserved_10", offsetof(box::FeatureRequest, reserved_10),
     offsetof(box::FeatureRequest, feature) - offsetof(box::FeatureRequest, reserved_10),
     FieldKind::kBytes, Role::kReserved},
    {"description", offsetof(box::FeatureRequest, feature), sizeof(box::FeatureRequest::feature),
     FieldKind::kPadded},
};
static_assert(fill<box::FeatureRequest>(kDescriptionRequestFields));

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
