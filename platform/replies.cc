#include "platform/replies.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <utility>

#include "platform/fork_safety.h"
#include "platform/log.h"
#include "platform/olthost.h"

namespace olt::platform {

namespace {

constexpr size_t kSmallestBlock = 256;

struct HeldReply {
  ReplyBlock block;
  std::thread::id receiver;
};

/// Handles are consecutive, so that a released one stays unknown for four billion replies.
struct Replies {
  std::unordered_map<uint32_t, HeldReply> held;
  uint32_t last_handle = 0;
  unsigned wrong_releases = 0;
};

constinit std::mutex replies_lock;
[[maybe_unused]] const int replies_registered = hold_across_fork<replies_lock>();

// Never destroyed: threads may still be in an exchange while the process exits.
Replies &replies() {
  static Replies &instance = *new Replies;
  return instance;
}

}  // namespace

ReplyBlock make_reply_block(size_t length) {
  return ReplyBlock(static_cast<std::byte *>(std::calloc(1, std::max(length + 1, kSmallestBlock))));
}

uint32_t hand_out(ReplyBlock reply) {
  std::lock_guard guard(replies_lock);
  Replies &all = replies();
  do {
    ++all.last_handle;
  } while (all.last_handle == 0 || all.held.contains(all.last_handle));
  all.held.emplace(all.last_handle, HeldReply{std::move(reply), std::this_thread::get_id()});
  return all.last_handle;
}

}  // namespace olt::platform

void IPC_Free(uint32_t reply_handle) {
  using namespace olt::platform;
  std::lock_guard guard(replies_lock);
  Replies &all = replies();
  if (all.held.erase(reply_handle) == 0) {
    char message[96];
    std::snprintf(message, sizeof message,
                  "reply handle %u is unknown or already released (%u such calls so far)",
                  static_cast<unsigned>(reply_handle), ++all.wrong_releases);
    log_log(kErrorLevel, "IPC_Free", __LINE__, message);
  }
}

uint32_t olt_release_replies() {
  using namespace olt::platform;
  std::lock_guard guard(replies_lock);
  return static_cast<uint32_t>(
      std::erase_if(replies().held, [here = std::this_thread::get_id()](const auto &reply) {
        return reply.second.receiver == here;
      }));
}
