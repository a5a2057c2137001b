// Connects to a module: through its socket in the run directory, or the process's connector.
#include <fcntl.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <optional>
#include <string>

#include "base/accounts.h"
#include "base/failure.h"
#include "platform/connection.h"
#include "platform/credentials.h"
#include "platform/log.h"
#include "platform/run_dir.h"

namespace olt::platform {

namespace {

using namespace std::chrono_literals;

struct Connector {
  olt_connector call = nullptr;
  void *context = nullptr;
};
constinit Connector connector;

int32_t result_of(int error) {
  switch (error) {
    case EACCES:
    case EPERM:
      return OLT_TRANSPORT_REFUSED;
    case EMFILE:
    case ENFILE:
    case ENOBUFS:
    case ENOMEM:
      return OLT_TRANSPORT_NO_RESOURCES;
    default:
      return OLT_TRANSPORT_NO_MODULE;
  }
}

// Nothing signals when a full queue of the module's socket has room again, so try periodically.
int32_t connect_through_run_dir(uint32_t module, const Deadline &deadline, ProcessSocket &socket) {
  std::string path = socket_path(selected_run_dir(), module);
  auto address = socket_address(path);
  if (!address) {
    log_exchange_error(too_long_for_socket(path));
    return OLT_TRANSPORT_NO_MODULE;
  }
  if (!socket.create()) return result_of(errno);
  while (connect(socket.get(), reinterpret_cast<const sockaddr *>(&*address), sizeof *address)) {
    if (errno != EAGAIN && errno != EINTR) {
      int32_t result = result_of(errno);
      if (result == OLT_TRANSPORT_REFUSED) {
        log_exchange_error("\"" + path + "\" is closed to user " + user_name(geteuid()) +
                           "; expected its owner, root or a member of its group");
      }
      return result;
    }
    if (!deadline.sleep(2ms)) return OLT_TRANSPORT_TIMED_OUT;
  }
  return OLT_TRANSPORT_OK;
}

int32_t connect_through_connector(uint32_t module, ProcessSocket &socket) {
  return socket.adopt(connector.call(connector.context, module)) ? OLT_TRANSPORT_OK
                                                                 : result_of(errno);
}

std::optional<gid_t> allowed_group() {
  const char *group = environment("OLT_GROUP");
  if (group == nullptr) return std::nullopt;
  try {
    return require_group(group);
  } catch (const Failure &failure) {
    log_exchange_error(std::string("OLT_GROUP: ") + failure.what() + "; using none");
    return std::nullopt;
  }
}

}  // namespace

int32_t connect_to_module(uint32_t module, const Deadline &deadline, ProcessSocket &socket) {
  int32_t result = connector.call != nullptr ? connect_through_connector(module, socket)
                                             : connect_through_run_dir(module, deadline, socket);
  if (result != OLT_TRANSPORT_OK) return result;
  if (std::string refusal = refusal_of_peer(socket.get(), allowed_group()); !refusal.empty()) {
    log_exchange_error("module " + std::to_string(module) + ": " + refusal);
    return OLT_TRANSPORT_REFUSED;
  }
  fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
  // A socket that stays non-blocking works, too, but costs a poll for each answer.
  if (int flags = fcntl(socket.get(), F_GETFL); flags >= 0) {
    fcntl(socket.get(), F_SETFL, flags & ~O_NONBLOCK);
  }
  return OLT_TRANSPORT_OK;
}

void set_connector(olt_connector call, void *context) {
  connector = {.call = call, .context = context};
}

}  // namespace olt::platform
