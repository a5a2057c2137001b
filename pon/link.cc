#include <stddef.h>
#include <string.h>

#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_global_parameter) == 32 &&
              offsetof(olt_global_parameter, p2p_function) == 16 &&
              offsetof(olt_global_parameter, link_security_a) == 20 &&
              offsetof(olt_global_parameter, link_security_b) == 24 &&
              offsetof(olt_global_parameter, ponport_function) == 28);
static_assert(sizeof(olt_link_dba) == 20 && offsetof(olt_link_dba, granted) == 12);

namespace {

struct FeatureRequest {
  olt_ont_target target;
  olt_onu_feature feature;
};
static_assert(sizeof(FeatureRequest) == 136);

/// Sends target words, kind, address if there is one, and feature; the rest of the request is
/// uninitialized. @return -1, after logging it, if there is no memory.
int32_t post_feature(const uint32_t (&target)[3], const olt_onu_feature *feature,
                     const olt_mac *mac, const Call &call) {
  auto *block = static_cast<FeatureRequest *>(open_block(sizeof(FeatureRequest), call));
  if (block == nullptr) return log_no_memory("less of momery", call);
  memcpy(block->target.target, target, sizeof target);
  block->target.target_kind = 1;
  if (mac != nullptr) block->target.mac = *mac;
  block->feature = *feature;
  return post_block(block, sizeof *block, call);
}

}  // namespace

// The next three leave the rest of the request uninitialized.

int32_t set_ont_p2p_function(uint32_t p2p_function) {
  olt_global_parameter request;
  request.p2p_function = p2p_function;
  return post(76, request);
}

int32_t set_ponport_function(uint32_t ponport_function) {
  olt_global_parameter request;
  request.ponport_function = ponport_function;
  return post(77, request);
}

int32_t set_ont_linkSecurityEncryption(uint32_t link_security_a, uint32_t link_security_b) {
  olt_global_parameter request;
  request.link_security_a = link_security_a;
  request.link_security_b = link_security_b;
  return post(78, request);
}

int32_t process_olt_global_paramter(olt_global_parameter *parameter) {
  return fetch_over(79, *parameter);
}

/// A setter with a reply: only the two granted words are copied back.
int32_t set_ont_linkdba(const olt_ont_target *ont, olt_link_dba *dba) {
  constexpr uint32_t kLength = kTargetLength + sizeof *dba;
  constexpr Range kGranted{offsetof(olt_link_dba, granted), sizeof dba->granted};
  const Call &call = OLT_CALL(54, 3524, 3533);
  char *block = open_target(ont, dba, sizeof *dba, kLength, call);
  return block == nullptr ? -1 : fetch_block(block, kLength, dba->granted, kGranted, call);
}

int32_t tkonu_ont_default(const olt_ont_target *ont) {
  return post(169, *ont);
}

int32_t tkonu_ont_reboot(const olt_ont_target *ont) {
  return post(168, *ont);
}

int32_t ctconu_ont_reboot(const olt_ont_target *ont) {
  return post(107, *ont);
}

int32_t clear_onu_node(const olt_ont_target *ont) {
  return post(43, *ont);
}

int32_t delete_ont_description(const olt_ont_target *ont) {
  return post(45, *ont);
}

int32_t set_ont_usertraffic(const olt_ont_target *ont) {
  return post(46, *ont);
}

int32_t set_onu_basic_feature_force(uint32_t target_a, uint32_t target_b, uint32_t target_c,
                                    const olt_onu_feature *feature) {
  return post_feature({target_a, target_b, target_c}, feature, nullptr, OLT_CALL(49, 3785, 3804));
}

int32_t set_onu_basic_feature_f(uint32_t target_a, uint32_t target_b, uint32_t target_c,
                                const olt_onu_feature *feature, const olt_mac *mac) {
  return post_feature({target_a, target_b, target_c}, feature, mac, OLT_CALL(42, 3821, 3841));
}

int32_t add_ont_description(const olt_target_words *target, const olt_onu_feature *description) {
  return post_feature(target->words, description, nullptr, OLT_CALL(44, 3965, 3984));
}
