// The client's side of the message service: one connection per thread and module, kept between
// exchanges and dropped by the first that fails.
#include <pthread.h>
#include <unistd.h>

#include <exception>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "base/accounts.h"
#include "base/descriptor.h"
#include "platform/connection.h"
#include "platform/credentials.h"
#include "platform/deadline.h"
#include "platform/log.h"
#include "platform/olthost.h"
#include "platform/replies.h"

namespace olt::platform {

namespace {

struct Watcher {
  olt_watcher call = nullptr;
  void *context = nullptr;
};
constinit Watcher watcher;

/// Raised when the way to the modules changes: connections of an earlier way are not used again.
constinit unsigned way_to_modules = 0;

/// The connections of one thread.
struct Kept {
  std::map<uint32_t, std::unique_ptr<Connection>> by_module;
  unsigned way = 0;
};

// Owned by a thread-specific key rather than by a thread_local object: the main thread may make
// exchanges while it runs exit handlers, when its thread_local objects are already gone.
thread_local Kept *kept_of_thread = nullptr;

void drop_all(void *kept) {
  kept_of_thread = nullptr;
  delete static_cast<Kept *>(kept);
}

struct ThreadKey {
  pthread_key_t key{};
  const bool made = pthread_key_create(&key, drop_all) == 0;
};
const ThreadKey thread_key;

Kept &kept() {
  if (kept_of_thread == nullptr) {
    auto fresh = std::make_unique<Kept>();
    if (!thread_key.made || pthread_setspecific(thread_key.key, fresh.get()) != 0) {
      throw std::bad_alloc();
    }
    kept_of_thread = fresh.release();
  }
  if (kept_of_thread->way != way_to_modules) {
    kept_of_thread->by_module.clear();
    kept_of_thread->way = way_to_modules;
  }
  return *kept_of_thread;
}

int32_t open(uint32_t module, const Deadline &deadline, std::unique_ptr<Connection> &connection) {
  Descriptor socket;
  int32_t result = connect_to_module(module, deadline, socket);
  if (result == OLT_TRANSPORT_OK) connection = std::make_unique<Connection>(std::move(socket));
  return result;
}

// Sends over the kept connection, or over a new one when there is none or its module closed it
// before it took a byte: the module was started anew since the last exchange.
int32_t send(uint32_t module, const Request &request, const Deadline &deadline,
             std::unique_ptr<Connection> &connection) {
  Sent sent = Sent::kNothing;
  if (connection && connection->is_open()) sent = connection->send(request, deadline);
  if (sent == Sent::kNothing) {
    connection.reset();
    if (int32_t result = open(module, deadline, connection)) return result;
    sent = connection->send(request, deadline);
  }
  switch (sent) {
    case Sent::kTooLate:
      return OLT_TRANSPORT_TIMED_OUT;
    case Sent::kNoResources:
      return OLT_TRANSPORT_NO_RESOURCES;
    default:
      // A module that closed the stream may have left a word why: receiving tells.
      return OLT_TRANSPORT_OK;
  }
}

int32_t exchange(uint32_t module, const Request &request, const Deadline &deadline,
                 Answer &answer) {
  std::unique_ptr<Connection> &connection = kept().by_module[module];
  int32_t result = send(module, request, deadline, connection);
  if (result == OLT_TRANSPORT_OK) {
    result = connection->receive(request.no_reply, deadline, answer);
    if (result == OLT_TRANSPORT_REFUSED) {
      complain("module " + std::to_string(module) + " does not accept user " +
               user_name(geteuid()));
    }
  }
  if (result != OLT_TRANSPORT_OK) connection.reset();
  return result;
}

/// What an exchange brings its caller.
struct Outcome {
  int32_t result;
  uint16_t status = 0;
  uint16_t reply_length = 0;
  void *reply = nullptr;
  uint32_t reply_handle = 0;
};

// A non-zero status brings no reply: callers release replies of accepted requests only.
Outcome exchange_for_caller(uint32_t module, const Request &request, const Deadline &deadline) {
  try {
    Answer answer;
    if (int32_t result = exchange(module, request, deadline, answer)) {
      return {.result = result};
    }
    if (answer.status != 0 || !answer.reply) {
      return {.result = OLT_TRANSPORT_OK, .status = answer.status};
    }
    void *reply = answer.reply.get();
    return {.result = OLT_TRANSPORT_OK,
            .reply_length = answer.length,
            .reply = reply,
            .reply_handle = hand_out(std::move(answer.reply))};
  } catch (const std::exception &) {
    return {.result = OLT_TRANSPORT_NO_RESOURCES};
  }
}

}  // namespace
}  // namespace olt::platform

int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t timeout) {
  using namespace olt::platform;
  bool wants_reply = no_reply == 0;
  if (status == nullptr || (request == nullptr && request_length > 0) ||
      (wants_reply && (reply == nullptr || reply_length == nullptr || reply_handle == nullptr))) {
    return OLT_TRANSPORT_BAD_CALL;
  }
  if (request_length > OLT_REQUEST_LIMIT) return OLT_TRANSPORT_TOO_LONG;
  Deadline deadline(timeout);
  Outcome outcome = exchange_for_caller(module,
                                        {.message_type = message_type,
                                         .data = request,
                                         .length = request_length,
                                         .no_reply = !wants_reply},
                                        deadline);
  if (outcome.result == OLT_TRANSPORT_OK) {
    *status = outcome.status;
    if (wants_reply) {
      *reply = outcome.reply;
      *reply_length = outcome.reply_length;
      *reply_handle = outcome.reply_handle;
    }
  }
  if (watcher.call != nullptr) {
    olt_exchange seen{.module = module,
                      .message_type = message_type,
                      .request = request,
                      .request_length = request_length,
                      .no_reply = no_reply,
                      .timeout = timeout,
                      .result = outcome.result,
                      .status = outcome.status,
                      .reply_length = outcome.reply_length,
                      .reply = outcome.reply,
                      .elapsed_ns = static_cast<uint64_t>(deadline.elapsed().count())};
    watcher.call(watcher.context, &seen);
  }
  return outcome.result;
}

void olt_watch_exchanges(olt_watcher watcher, void *context) {
  olt::platform::watcher = {.call = watcher, .context = context};
}

void olt_connect_through(olt_connector connector, void *context) {
  using namespace olt::platform;
  set_connector(connector, context);
  ++way_to_modules;
}
