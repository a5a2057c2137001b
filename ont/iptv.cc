#include <stddef.h>
#include <string.h>

#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_iptv_channel) == 56);

namespace {

constexpr uint32_t kNameLength = 32;

/// Writes the name without a terminating zero, as long as it is.
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

int32_t create_iptv_profile(const char *name) {
  return post_profile(name, kCall<NamedCall(157, __func__)>);
}

int32_t clear_iptv_profile(const char *name) {
  return post_profile(name, kCall<NamedCall(158, __func__)>);
}

int32_t delete_iptv_channel(const char *name, const olt_iptv_channel *channel) {
  return post_channel(name, channel, kCall<NamedCall(159, __func__)>);
}

int32_t add_iptv_channel(const char *name, const olt_iptv_channel *channel) {
  return post_channel(name, channel, kCall<NamedCall(160, __func__)>);
}

/// A name of 32 characters leaves no zero in what is sent.
int32_t show_iptv_byprofile(const char *name, char out[32]) {
  char request[kNameLength + 1] = {};
  strcpy(request, name);
  return fetch(request, out, {kNameLength, kLeadingName}, 161);
}

int32_t set_ont_iptv_profile(const olt_ont_target *target, const char *name) {
  constexpr uint32_t kLength = kTargetLength + kNameLength;
  const Call &call = kCall<NamedCall(155, __func__)>;
  char *block = open_target(target, name, static_cast<uint32_t>(strlen(name)), kLength, call);
  return post_block(block, kLength, call);
}

int32_t clear_ont_iptv_profile(const olt_ont_target *target) {
  return post(156, *target);
}

/// On the wire c comes behind a and b.
int32_t add_iptv_user_channel(const olt_mac *user_address, uint32_t c, uint32_t a, uint32_t b,
                              uint32_t d) {
  return post_user_channel(user_address, c, a, b, d, kCall<NamedCall(162, __func__)>);
}

/// On the wire c comes behind a and b.
int32_t delete_iptv_user_channel(const olt_mac *user_address, uint32_t c, uint32_t a, uint32_t b,
                                 uint32_t d) {
  return post_user_channel(user_address, c, a, b, d, kCall<NamedCall(163, __func__)>);
}
