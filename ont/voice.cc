#include <string.h>

#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_voip_user) == 80 && sizeof(olt_fax_mode) == 2 &&
              sizeof(olt_sip_config) == 45);

int32_t show_voip_info(const olt_ont_target *target, char name[32]) {
  return fetch_ont_listing(134, target, name);
}

int32_t show_voip_useraccount(const olt_ont_target *target, olt_voip_user *account) {
  return fetch(135, *target, account);
}

int32_t show_ont_voipline(const olt_ont_target *target, char name[32]) {
  return fetch_ont_listing(137, target, name);
}

int32_t set_voip_linestatus(const olt_ont_target *target, uint32_t line_status) {
  return post_target_word(target, line_status, kCall<NamedCall(138, __func__)>);
}

int32_t show_ont_faxmode(const olt_ont_target *target, char name[32]) {
  return fetch_ont_listing(139, target, name);
}

int32_t show_ont_sipconfiguration(const olt_ont_target *target, char name[32]) {
  return fetch_ont_listing(140, target, name);
}

int32_t set_ont_fax(const olt_ont_target *target, const olt_fax_mode *fax_mode) {
  return post_target(target, *fax_mode, kCallIfMemory<NamedCall(141, __func__)>);
}

int32_t set_ont_sipconfiguration(const olt_ont_target *target, const olt_sip_config *sip_config) {
  return post_target(target, *sip_config, kCallIfMemory<NamedCall(142, __func__)>);
}

/// The name is copied as long as it is; behind its end the block keeps what the allocator left.
int32_t banding_ont_voipinterface(const olt_ont_target *target, const char *interface_name) {
  constexpr uint32_t kLength = kTargetLength + 32;
  const Call &call = kCall<NamedCall(143, __func__)>;
  char *block = open_target(target, interface_name,
                            static_cast<uint32_t>(strlen(interface_name)) + 1, kLength, call);
  return post_block(block, kLength, call);
}

int32_t show_ont_bandinginterface(const olt_ont_target *target, char name[32]) {
  return fetch_ont_listing(144, target, name);
}

int32_t set_voip_useraccount(const olt_ont_target *target, const olt_voip_user *account) {
  return post_target(target, *account, kCallIfMemory<NamedCall(136, __func__)>);
}
