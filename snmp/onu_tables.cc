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

/// Reads the row that ont and info select into info. Returns 0 if the request cannot be allocated.
[[gnu::noinline]] int32_t fetch_info(const olt_ont_target *ont, olt_onu_info *info,
                                     const Call &call) {
  constexpr uint32_t kLength = kTargetLength + sizeof *info;
  char *block = open_target(ont, info, sizeof *info, kLength, call);
  return block == nullptr ? 0 : fetch_block(block, kLength, info, {0, sizeof *info}, call);
}

/// Returns a copy of the reply: a head whose last word counts the bytes after it, and those bytes.
[[gnu::noinline]] int32_t fetch_counted(const olt_ont_target *ont, void **out, uint32_t length_word,
                                        const Call &call) {
  Reply reply;
  if (int32_t result = ask(ont, kTargetLength, call, reply)) return result;
  uint32_t length = word_at(reply, length_word) + length_word + 4;
  return hand_over(reply, length, out, call);
}

struct StripRow {
  olt_ont_target target;
  olt_uni_strip_row strip;
};
static_assert(sizeof(StripRow) == 124);

}  // namespace

int32_t process_snmp_onubasicinfo(const olt_ont_target *ont, olt_onu_info *info) {
  return fetch_info(ont, info, OLT_CALL(85));
}

int32_t process_snmp_linkbasicinfo(const olt_ont_target *ont, olt_onu_info *info) {
  return fetch_info(ont, info, OLT_CALL(86));
}

int32_t process_snmp_onuglobalinfo(const olt_ont_target *ont, void **info) {
  return fetch_counted(ont, info, 56, OLT_CALL(87));
}

int32_t process_snmp_iadinfo(const olt_ont_target *ont, olt_iad_info *info) {
  return fetch(88, *ont, info);
}

int32_t process_snmp_onusipparaminfo(olt_ont_target *ont, olt_sip_config *param) {
  return fetch_row(89, ont, param);
}

int32_t process_snmp_onusipuserinfo(const olt_ont_target *ont, olt_voip_user *user) {
  return fetch(90, *ont, user);
}

int32_t process_snmpvoip_faxmode(olt_ont_target *ont, olt_fax_mode *fax_mode) {
  return fetch_row(91, ont, fax_mode);
}

int32_t process_voip_linestatus(const olt_ont_target *ont, olt_voip_line_status *line_status) {
  return fetch(92, *ont, line_status);
}

int32_t process_snmp_hguwaninfo(const olt_ont_target *ont, void **info) {
  return fetch_counted(ont, info, 84, OLT_CALL(93));
}

int32_t process_snmp_hguvoipbandinginfo(const olt_ont_target *ont, olt_voip_binding *binding) {
  return fetch(94, *ont, binding);
}

int32_t process_onu_portinfo(const olt_ont_target *ont, olt_uni_port_info *info) {
  return fetch(95, *ont, info);
}

int32_t process_onu_portpolicying(olt_ont_target *ont, olt_uni_policing *policing) {
  return fetch_row(96, ont, policing);
}

int32_t process_onu_portdownrate(olt_ont_target *ont, olt_uni_downrate *rates) {
  return fetch_row(97, ont, rates);
}

int32_t process_onu_portvlanmode(olt_ont_target *ont, olt_uni_vlan_mode *mode) {
  return fetch_row(98, ont, mode);
}

/// Of strip, 34 bytes are sent and 36 received.
int32_t process_onu_portstrip(olt_ont_target *ont, olt_uni_strip_row *strip) {
  const Call &call = OLT_CALL(99);
  constexpr uint32_t kSent = sizeof(olt_uni_strip);
  constexpr uint32_t kLength = kTargetLength + kSent;
  char *block = open_target(ont, strip, kSent, kLength, call);
  if (block == nullptr) return -1;
  StripRow row;
  int32_t result = fetch_block(block, kLength, &row, {0, sizeof row}, call);
  if (result != 0) return result;
  *ont = row.target;
  *strip = row.strip;
  return 0;
}

int32_t process_onu_portmuticastvlan(olt_ont_target *ont, olt_uni_muticast_vlans *vlans) {
  return fetch_row(100, ont, vlans);
}

int32_t process_onu_portmuticastmaxgroup(olt_ont_target *ont) {
  return fetch_over(101, *ont);
}

int32_t process_snmp_iptv_profile(olt_iptv_profile_row *row) {
  return fetch_over(164, *row);
}

int32_t process_snmp_iptv_profile_channel(olt_iptv_channel_row *row) {
  return fetch_over(165, *row);
}
