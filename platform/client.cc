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

/// Incremented with each change of the connector: connections made before are not used again.
constinit unsigned connector_generation = 0;

struct ThreadConnections {
  std::map<uint32_t, std::unique_ptr<Connection>> by_module;
  unsigned generation = 0;
};

// Owned by a thread-specific key rather than by a thread_local object: the main thread may make
// exchanges while it runs exit handlers, when its thread_local objects are already gone.
thread_local ThreadConnections *thread_connections = nullptr;

void delete_connections(void *connections) {
  thread_connections = nullptr;
  delete static_cast<ThreadConnections *>(connections);
}

struct ThreadKey {
  pthread_key_t key{};
  const bool made = pthread_key_create(&key, delete_connections) == 0;
};
const ThreadKey thread_key;

ThreadConnections &connections() {
  if (thread_connections == nullptr) {
    auto fresh = std::make_unique<ThreadConnections>();
    if (!thread_key.made || pthread_setspecific(thread_key.key, fresh.get()) != 0) {
      throw std::bad_alloc();
    }
    thread_connections = fresh.release();
  }
  if (thread_connections->generation != connector_generation) {
    thread_connections->by_module.clear();
    thread_connections->generation = connector_generation;
  }
  return *thread_connections;
}

bool is_usable(uint32_t module, const Connection *connection) {
  if (connection == nullptr || !connection->is_open()) return false;
  if (!connection->has_unsolicited_bytes()) return true;
  log_exchange_error("module " + std::to_string(module) +
                     " sent bytes after its answer; expected none before the next request; "
                     "connecting anew");
  return false;
}

// Sends over the kept connection. Uses a new one if there is none or if the kept one fails before
// the module took a byte, for example because the module was restarted.
int32_t send_request(uint32_t module, const Request &request, const Deadline &deadline,
                     std::unique_ptr<Connection> &connection) {
  Sent sent = Sent::kNothing;
  if (is_usable(module, connection.get())) sent = connection->send(request, deadline);
  if (sent == Sent::kNothing) {
    connection.reset();
    connection = std::make_unique<Connection>();
    if (int32_t result = connection->connect(module, deadline)) return result;
    sent = connection->send(request, deadline);
  }
  switch (sent) {
    case Sent::kTooLate:
      return OLT_TRANSPORT_TIMED_OUT;
    case Sent::kNoResources:
      return OLT_TRANSPORT_NO_RESOURCES;
    default:
      // A module that closed the stream may have sent a refusal first: receive reports it.
      return OLT_TRANSPORT_OK;
  }
}

int32_t exchange(uint32_t module, const Request &request, const Deadline &deadline,
                 Answer &answer) {
  std::unique_ptr<Connection> &connection = connections().by_module[module];
  int32_t result = send_request(module, request, deadline, connection);
  if (result == OLT_TRANSPORT_OK) {
    result = connection->receive(request.no_reply, deadline, answer);
    if (result == OLT_TRANSPORT_REFUSED) {
      log_exchange_error("module " + std::to_string(module) + " does not accept user " +
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
    if (int32_t result = exchange(module, request, deadline, answer)) return {.result = result};
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
  ++connector_generation;
}
