#include <stddef.h>
#include <string.h>

#include "oltmgmt.h"
#include "transport/ont_target.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_global_parameter) == 32 &&
              offsetof(olt_global_parameter, p2p_function) == 16 &&
              offsetof(olt_global_parameter, link_security_a) == 20 &&
              offsetof(olt_global_parameter, link_security_b) == 24 &&
              offsetof(olt_global_parameter, ponport_function) == 28);
static_assert(sizeof(olt_link_dba) == 20 && offsetof(olt_link_dba, granted) == 12);

namespace {

using GlobalField = uint32_t olt_global_parameter::*;

/// Sets words of the global parameters; the rest of the request is left as it happens to be.
[[gnu::noinline]] int32_t post_global(uint32_t first, uint32_t second, GlobalField first_field,
                                      GlobalField second_field, Route route) {
  olt_global_parameter request;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  request.*first_field = first;
  request.*second_field = second;
  return post(route, request);
}

struct FeatureRequest {
  olt_ont_target target;
  olt_onu_feature feature;
};
static_assert(sizeof(FeatureRequest) == 136);

/// A block whose target words, kind and feature are written and nothing else. @return null, and a
/// line in the log, when there is no memory.
FeatureRequest *open_feature(CallSite site, int log_line, const uint32_t (&target)[3],
                             const olt_onu_feature &feature) {
  auto *block = static_cast<FeatureRequest *>(open_block(sizeof(FeatureRequest), site));
  if (block == nullptr) {
    log_no_memory("less of momery", log_line, site);
    return nullptr;
  }
  memcpy(block->target.target, target, sizeof target);
  block->target.target_kind = 1;
  block->feature = feature;
  return block;
}

int32_t post_feature(CallSite site, Route route, FeatureRequest *block) {
  return block == nullptr ? -1 : post_block(block, sizeof *block, route, site);
}

}  // namespace

int32_t set_ont_p2p_function(uint32_t p2p_function) {
  return post_global(p2p_function, p2p_function, &olt_global_parameter::p2p_function,
                     &olt_global_parameter::p2p_function, 76);
}

int32_t set_ponport_function(uint32_t ponport_function) {
  return post_global(ponport_function, ponport_function, &olt_global_parameter::ponport_function,
                     &olt_global_parameter::ponport_function, 77);
}

int32_t set_ont_linkSecurityEncryption(uint32_t link_security_a, uint32_t link_security_b) {
  return post_global(link_security_a, link_security_b, &olt_global_parameter::link_security_a,
                     &olt_global_parameter::link_security_b, 78);
}

int32_t process_olt_global_paramter(olt_global_parameter *parameter) {
  return fetch_over(79, *parameter);
}

/// A setter that waits for a reply: the last two words come back as granted.
int32_t set_ont_linkdba(const olt_ont_target *ont, olt_link_dba *dba) {
  constexpr uint32_t kLength = kTargetLength + sizeof *dba;
  CallSite site{__func__, 3524, 3533};
  char *block = open_target(ont, dba, sizeof *dba, kLength, site);
  if (block == nullptr) return -1;
  Reply reply;
  if (int32_t result = ask_block(block, kLength, 54, site, reply)) return result;
  take(reply, {offsetof(olt_link_dba, granted), sizeof dba->granted}, dba->granted);
  release_reply(reply);
  return 0;
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
  CallSite site{__func__, 3785, 3804};
  return post_feature(site, 49, open_feature(site, 3789, {target_a, target_b, target_c}, *feature));
}

int32_t set_onu_basic_feature_f(uint32_t target_a, uint32_t target_b, uint32_t target_c,
                                const olt_onu_feature *feature, const olt_mac *mac) {
  CallSite site{__func__, 3821, 3841};
  FeatureRequest *block = open_feature(site, 3825, {target_a, target_b, target_c}, *feature);
  if (block != nullptr) block->target.mac = *mac;
  return post_feature(site, 42, block);
}

int32_t add_ont_description(const olt_target_words *target, const olt_onu_feature *description) {
  CallSite site{__func__, 3965, 3984};
  return post_feature(site, 44, open_feature(site, 3969, target->words, *description));
}
