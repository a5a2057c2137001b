#include "oltmgmt.h"
#include "transport/ont_target.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_onu_info) == 148 && sizeof(olt_iad_info) == 92 &&
              sizeof(olt_voip_line_status) == 32 && sizeof(olt_voip_binding) == 88 &&
              sizeof(olt_uni_port_info) == 68 && sizeof(olt_uni_strip_row) == 36 &&
              sizeof(olt_uni_muticast_vlans) == 129 && sizeof(olt_iptv_profile_row) == 40 &&
              sizeof(olt_iptv_channel_row) == 56);

namespace {

/// Reads a row by target and information record; the latter comes back filled. No memory for the
/// request is told as success.
[[gnu::noinline]] int32_t fetch_info(const olt_ont_target *target, olt_onu_info *info, Route route,
                                     CallSite site) {
  constexpr uint32_t kLength = kTargetLength + sizeof *info;
  char *block = open_target(target, info, sizeof *info, kLength, site);
  if (block == nullptr) return 0;
  Reply reply;
  if (int32_t result = ask_block(block, kLength, route, site, reply)) return result;
  take(reply, {0, sizeof *info}, info);
  release_reply(reply);
  return 0;
}

/// Hands over a head that ends with a length word, and as many bytes behind it.
[[gnu::noinline]] int32_t fetch_counted(const olt_ont_target *target, void **out,
                                        uint32_t length_word, Route route, const char *operation) {
  Reply reply;
  if (int32_t result = ask(target, kTargetLength, route, reply)) return result;
  uint32_t length = word_at(reply, length_word) + length_word + 4;
  return hand_over(reply, length, out, operation);
}

}  // namespace

int32_t process_snmp_onubasicinfo(const olt_ont_target *target, olt_onu_info *info) {
  return fetch_info(target, info, 85, {__func__});
}

int32_t process_snmp_linkbasicinfo(const olt_ont_target *target, olt_onu_info *info) {
  return fetch_info(target, info, 86, {__func__});
}

int32_t process_snmp_onuglobalinfo(const olt_ont_target *target, void **out_block) {
  return fetch_counted(target, out_block, 56, 87, __func__);
}

int32_t process_snmp_iadinfo(const olt_ont_target *target, olt_iad_info *out) {
  return fetch(88, *target, out);
}

int32_t process_snmp_onusipparaminfo(olt_ont_target *target, olt_sip_config *out) {
  return fetch_row(target, out, sizeof *out, 89);
}

int32_t process_snmp_onusipuserinfo(const olt_ont_target *target, olt_voip_user *out) {
  return fetch(90, *target, out);
}

int32_t process_snmpvoip_faxmode(olt_ont_target *target, olt_fax_mode *out) {
  return fetch_row(target, out, sizeof *out, 91);
}

int32_t process_voip_linestatus(const olt_ont_target *target, olt_voip_line_status *out) {
  return fetch(92, *target, out);
}

int32_t process_snmp_hguwaninfo(const olt_ont_target *target, void **out_block) {
  return fetch_counted(target, out_block, 84, 93, __func__);
}

int32_t process_snmp_hguvoipbandinginfo(const olt_ont_target *target, olt_voip_binding *out) {
  return fetch(94, *target, out);
}

int32_t process_onu_portinfo(const olt_ont_target *target, olt_uni_port_info *out) {
  return fetch(95, *target, out);
}

int32_t process_onu_portpolicying(olt_ont_target *target, olt_uni_policing *out) {
  return fetch_row(target, out, sizeof *out, 96);
}

int32_t process_onu_portdownrate(olt_ont_target *target, olt_uni_downrate *out) {
  return fetch_row(target, out, sizeof *out, 97);
}

int32_t process_onu_portvlanmode(olt_ont_target *target, olt_uni_vlan_mode *out) {
  return fetch_row(target, out, sizeof *out, 98);
}

/// 34 bytes go out, 36 come back.
int32_t process_onu_portstrip(olt_ont_target *target, olt_uni_strip_row *strip) {
  CallSite site{__func__};
  constexpr uint32_t kSent = sizeof(olt_uni_strip);
  constexpr uint32_t kLength = kTargetLength + kSent;
  char *block = open_target(target, strip, kSent, kLength, site);
  if (block == nullptr) return -1;
  Reply reply;
  if (int32_t result = ask_block(block, kLength, 99, site, reply)) return result;
  take(reply, {0, kTargetLength}, target);
  take(reply, {kTargetLength, sizeof *strip}, strip);
  release_reply(reply);
  return 0;
}

int32_t process_onu_portmuticastvlan(olt_ont_target *target, olt_uni_muticast_vlans *out) {
  return fetch_row(target, out, sizeof *out, 100);
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
