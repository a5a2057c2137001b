#include "bench/module.h"

#include <oltmgmt.h>

#include <cstdint>
#include <cstdlib>

#include "platform/olthost.h"

namespace olt::bench {

namespace {

constexpr uint32_t kModule = 2;
/// Offset of the mode in the answer, and what the module says there.
constexpr std::size_t kAuthMode = 36;
constexpr char kMode = 3;

constexpr Reply reply_with_mode() {
  Reply reply{};
  reply[kAuthMode] = kMode;
  return reply;
}

void answer(void * /*context*/, const olt_request *request, olt_answer *answer) {
  static constexpr Reply kReply = reply_with_mode();
  answer->status = request->length == kRequestSize ? 0 : 1;
  answer->reply = kReply.data();
  answer->reply_length = kReplySize;
}

void serve(const std::string &run_dir, int ready) {
  const olt_server_options options{.run_dir = run_dir.c_str()};
  std::array<char, 256> error{};
  olt_server *server = olt_server_create(&options, error.data());
  if (server == nullptr || olt_server_add(server, kModule, answer, nullptr, error.data()) != 0) {
    fail(error.data());
  }
  say_ready(ready);
  if (olt_server_run(server, error.data()) != 0) fail(error.data());
}

}  // namespace

Module::Module(const Folder &folder) : server_([&](int ready) { serve(folder.path(), ready); }) {
  setenv("OLT_RUN_DIR", folder.path().c_str(), 1);
}

void PlatformCall::exchange() {
  Request request{};
  void *reply = nullptr;
  uint16_t reply_length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  const int32_t result = function_(116, kModule, request.data(), request.size(), &reply,
                                   &reply_length, &handle, &status, 0, 10);
  if (result != 0 || status != 0 || reply_length != kReplySize) {
    fail(std::string("an exchange failed: ") + olt_transport_text(result));
  }
  IPC_Free(handle);
}

void Operation::exchange() {
  uint32_t mode = 0;
  if (get_olt_auth_mode(1, 1, &mode) != 0 || mode != kMode) fail("get_olt_auth_mode failed");
}

}  // namespace olt::bench
