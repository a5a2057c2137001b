#include <string.h>

#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_voip_user) == 80 && sizeof(olt_fax_mode) == 2 &&
              sizeof(olt_sip_config) == 45);

int32_t show_voip_info(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(134, ont, name);
}

int32_t show_voip_useraccount(const olt_ont_target *ont, olt_voip_user *account) {
  return fetch(135, *ont, account);
}

int32_t show_ont_voipline(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(137, ont, name);
}

int32_t set_voip_linestatus(const olt_ont_target *ont, uint32_t line_status) {
  return post_target_word(ont, line_status, OLT_CALL(138));
}

int32_t show_ont_faxmode(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(139, ont, name);
}

int32_t show_ont_sipconfiguration(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(140, ont, name);
}

int32_t set_ont_fax(const olt_ont_target *ont, const olt_fax_mode *fax_mode) {
  return post_target(ont, *fax_mode, OLT_CALL_IF_MEMORY(141));
}

int32_t set_ont_sipconfiguration(const olt_ont_target *ont, const olt_sip_config *sip_config) {
  return post_target(ont, *sip_config, OLT_CALL_IF_MEMORY(142));
}

/// The name is copied without a length check; bytes after its zero are uninitialized.
int32_t banding_ont_voipinterface(const olt_ont_target *ont, const char *interface_name) {
  constexpr uint32_t kLength = kTargetLength + 32;
  const Call &call = OLT_CALL(143);
  char *block = open_target(ont, interface_name, static_cast<uint32_t>(strlen(interface_name)) + 1,
                            kLength, call);
  return post_block(block, kLength, call);
}

int32_t show_ont_bandinginterface(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(144, ont, name);
}

int32_t set_voip_useraccount(const olt_ont_target *ont, const olt_voip_user *account) {
  return post_target(ont, *account, OLT_CALL_IF_MEMORY(136));
}
