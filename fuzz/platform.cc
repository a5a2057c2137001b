#include "fuzz/platform.h"

#include <algorithm>
#include <utility>

#include "fuzz/target.h"

namespace olt::fuzz {

namespace {

constexpr uint32_t kHandle = 77;
constexpr size_t kRoom = 256;

struct Service {
  uint16_t status = 0;
  std::vector<uint8_t> reply;
  std::vector<uint8_t> sent;
  std::vector<Request> requests;
  olt_exchange last{};
  olt_watcher watcher = nullptr;
  void *context = nullptr;
};

Service &service() {
  static Service instance;
  return instance;
}

}  // namespace

void answer_with(uint16_t status, std::span<const uint8_t> reply) {
  service().status = status;
  service().reply.assign(reply.begin(), reply.end());
}

std::vector<Request> take_requests() {
  return std::exchange(service().requests, {});
}

const olt_exchange &last_exchange() {
  return service().last;
}

}  // namespace olt::fuzz

using olt::fuzz::service;

int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t timeout) {
  olt::fuzz::Service &here = service();
  const auto *bytes = static_cast<const uint8_t *>(request);
  here.requests.push_back({message_type, module, {bytes, bytes + request_length}});
  here.last = {.module = module,
               .message_type = message_type,
               .request = request,
               .request_length = request_length,
               .no_reply = no_reply,
               .timeout = timeout,
               .status = here.status};
  *status = here.status;
  if (no_reply == 0) {
    bool accepted = here.status == 0;
    here.sent = here.reply;
    here.sent.resize(std::max(here.reply.size() + 1, olt::fuzz::kRoom));
    *reply = accepted ? here.sent.data() : nullptr;
    *reply_length = accepted ? static_cast<uint16_t>(here.reply.size()) : 0;
    *reply_handle = accepted ? olt::fuzz::kHandle : 0;
    here.last.reply = *reply;
    here.last.reply_length = *reply_length;
  }
  if (here.watcher != nullptr) here.watcher(here.context, &here.last);
  return 0;
}

void IPC_Free(uint32_t reply_handle) {
  olt::fuzz::require(reply_handle == olt::fuzz::kHandle, "a handle is released that was given");
}

void olt_watch_exchanges(olt_watcher watcher, void *context) {
  service().watcher = watcher;
  service().context = context;
}

uint32_t olt_release_replies() {
  return 0;
}
