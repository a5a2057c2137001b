#include <stddef.h>
#include <string.h>

#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_iptv_channel) == 56);

namespace {

constexpr uint32_t kNameLength = 32;

/// Copies the name without its terminating zero and without a length check.
void put_name(char *field, const char *name) {
  memcpy(field, name, strlen(name));  // NOLINT(bugprone-not-null-terminated-result)
}

[[gnu::noinline]] int32_t post_profile(const char *name, const Call &call) {
  auto *block = static_cast<char *>(open_block(kNameLength, call));
  if (block != nullptr) put_name(block, name);
  return post_block(block, kNameLength, call);
}

[[gnu::noinline]] int32_t post_channel(const char *name, const olt_iptv_channel *channel,
                                       const Call &call) {
  constexpr uint32_t kLength = sizeof *channel + kNameLength;
  auto *block = static_cast<char *>(open_block(kLength, call));
  if (block != nullptr) {
    memcpy(block, channel, sizeof *channel);
    put_name(block + sizeof *channel, name);
  }
  return post_block(block, kLength, call);
}

struct UserChannel {
  olt_mac user_address;
  uint16_t reserved_06;
  uint32_t channel_param_a;
  uint16_t channel_param_b;
  uint16_t channel_param_c;
  uint32_t channel_param_d;
};
static_assert(sizeof(UserChannel) == 20 && offsetof(UserChannel, channel_param_a) == 8 &&
              offsetof(UserChannel, channel_param_c) == 14);

[[gnu::noinline]] int32_t post_user_channel(const olt_mac *user_address, uint32_t c, uint32_t a,
                                            uint32_t b, uint32_t d, const Call &call) {
  auto *channel = static_cast<UserChannel *>(open_block(sizeof(UserChannel), call));
  if (channel != nullptr) {
    channel->channel_param_a = a;
    channel->channel_param_b = static_cast<uint16_t>(b);
    channel->channel_param_c = static_cast<uint16_t>(c);
    channel->channel_param_d = d;
    channel->user_address = *user_address;
  }
  return post_block(channel, sizeof *channel, call);
}

}  // namespace

int32_t create_iptv_profile(const char *profile) {
  return post_profile(profile, OLT_CALL(157));
}

int32_t clear_iptv_profile(const char *profile) {
  return post_profile(profile, OLT_CALL(158));
}

int32_t delete_iptv_channel(const char *profile, const olt_iptv_channel *channel) {
  return post_channel(profile, channel, OLT_CALL(159));
}

int32_t add_iptv_channel(const char *profile, const olt_iptv_channel *channel) {
  return post_channel(profile, channel, OLT_CALL(160));
}

/// Of a name of 32 characters, the terminating zero is not sent.
int32_t show_iptv_byprofile(const char *profile, char name[32]) {
  char request[kNameLength + 1] = {};
  strcpy(request, profile);
  return fetch(request, name, {kNameLength, kLeadingName}, 161);
}

int32_t set_ont_iptv_profile(const olt_ont_target *ont, const char *profile) {
  constexpr uint32_t kLength = kTargetLength + kNameLength;
  const Call &call = OLT_CALL(155);
  char *block = open_target(ont, profile, static_cast<uint32_t>(strlen(profile)), kLength, call);
  return post_block(block, kLength, call);
}

int32_t clear_ont_iptv_profile(const olt_ont_target *ont) {
  return post(156, *ont);
}

/// In the request, c comes after a and b.
int32_t add_iptv_user_channel(const olt_mac *user_address, uint32_t c, uint32_t a, uint32_t b,
                              uint32_t d) {
  return post_user_channel(user_address, c, a, b, d, OLT_CALL(162));
}

/// In the request, c comes after a and b.
int32_t delete_iptv_user_channel(const olt_mac *user_address, uint32_t c, uint32_t a, uint32_t b,
                                 uint32_t d) {
  return post_user_channel(user_address, c, a, b, d, OLT_CALL(163));
}
