#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_onu_info) == 148 && sizeof(olt_iad_info) == 92 &&
              sizeof(olt_voip_line_status) == 32 && sizeof(olt_voip_binding) == 88 &&
              sizeof(olt_uni_port_info) == 68 && sizeof(olt_uni_strip_row) == 36 &&
              sizeof(olt_uni_muticast_vlans) == 129 && sizeof(olt_iptv_profile_row) == 40 &&
              sizeof(olt_iptv_channel_row) == 56);

namespace {

/// Reads a row by target and information record; the latter comes back filled. No memory for the
/// request is told as success.
[[gnu::noinline]] int32_t fetch_info(const olt_ont_target *target, olt_onu_info *info,
                                     const Call &call) {
  constexpr uint32_t kLength = kTargetLength + sizeof *info;
  char *block = open_target(target, info, sizeof *info, kLength, call);
  return block == nullptr ? 0 : fetch_block(block, kLength, info, {0, sizeof *info}, call);
}

/// Hands over a head that ends with a length word, and as many bytes behind it.
[[gnu::noinline]] int32_t fetch_counted(const olt_ont_target *target, void **out,
                                        uint32_t length_word, const Call &call) {
  Reply reply;
  if (int32_t result = ask(target, kTargetLength, call, reply)) return result;
  uint32_t length = word_at(reply, length_word) + length_word + 4;
  return hand_over(reply, length, out, call);
}

struct StripRow {
  olt_ont_target target;
  olt_uni_strip_row strip;
};
static_assert(sizeof(StripRow) == 124);

}  // namespace

int32_t process_snmp_onubasicinfo(const olt_ont_target *target, olt_onu_info *info) {
  return fetch_info(target, info, kCall<NamedCall(85, __func__)>);
}

int32_t process_snmp_linkbasicinfo(const olt_ont_target *target, olt_onu_info *info) {
  return fetch_info(target, info, kCall<NamedCall(86, __func__)>);
}

int32_t process_snmp_onuglobalinfo(const olt_ont_target *target, void **out_block) {
  return fetch_counted(target, out_block, 56, kCall<NamedCall(87, __func__)>);
}

int32_t process_snmp_iadinfo(const olt_ont_target *target, olt_iad_info *out) {
  return fetch(88, *target, out);
}

int32_t process_snmp_onusipparaminfo(olt_ont_target *target, olt_sip_config *out) {
  return fetch_row(89, target, out);
}

int32_t process_snmp_onusipuserinfo(const olt_ont_target *target, olt_voip_user *out) {
  return fetch(90, *target, out);
}

int32_t process_snmpvoip_faxmode(olt_ont_target *target, olt_fax_mode *out) {
  return fetch_row(91, target, out);
}

int32_t process_voip_linestatus(const olt_ont_target *target, olt_voip_line_status *out) {
  return fetch(92, *target, out);
}

int32_t process_snmp_hguwaninfo(const olt_ont_target *target, void **out_block) {
  return fetch_counted(target, out_block, 84, kCall<NamedCall(93, __func__)>);
}

int32_t process_snmp_hguvoipbandinginfo(const olt_ont_target *target, olt_voip_binding *out) {
  return fetch(94, *target, out);
}

int32_t process_onu_portinfo(const olt_ont_target *target, olt_uni_port_info *out) {
  return fetch(95, *target, out);
}

int32_t process_onu_portpolicying(olt_ont_target *target, olt_uni_policing *out) {
  return fetch_row(96, target, out);
}

int32_t process_onu_portdownrate(olt_ont_target *target, olt_uni_downrate *out) {
  return fetch_row(97, target, out);
}

int32_t process_onu_portvlanmode(olt_ont_target *target, olt_uni_vlan_mode *out) {
  return fetch_row(98, target, out);
}

/// 34 bytes go out, 36 come back.
int32_t process_onu_portstrip(olt_ont_target *target, olt_uni_strip_row *strip) {
  const Call &call = kCall<NamedCall(99, __func__)>;
  constexpr uint32_t kSent = sizeof(olt_uni_strip);
  constexpr uint32_t kLength = kTargetLength + kSent;
  char *block = open_target(target, strip, kSent, kLength, call);
  if (block == nullptr) return -1;
  StripRow row;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  int32_t result = fetch_block(block, kLength, &row, {0, sizeof row}, call);
  if (result != 0) return result;
  *target = row.target;
  *strip = row.strip;
  return 0;
}

int32_t process_onu_portmuticastvlan(olt_ont_target *target, olt_uni_muticast_vlans *out) {
  return fetch_row(100, target, out);
}

int32_t process_onu_portmuticastmaxgroup(olt_ont_target *target) {
  return fetch_over(101, *target);
}

int32_t process_snmp_iptv_profile(olt_iptv_profile_row *row) {
  return fetch_over(164, *row);
}

int32_t process_snmp_iptv_profile_channel(olt_iptv_channel_row *row) {
  return fetch_over(165, *row);
}
