// The serving side's C interface: no exception leaves these calls.
#include <cerrno>
#include <cstdio>
#include <exception>
#include <new>

#include "platform/olthost.h"
#include "platform/server.h"

struct olt_server {
  explicit olt_server(const olt_server_options &options) : server(options) {}

  olt::platform::Server server;
};

namespace {

constexpr size_t kErrorSize = 256;

template <typename Action>
int attempt(char *error, Action action) {
  try {
    action();
    return 0;
  } catch (const std::bad_alloc &) {
    std::snprintf(error, kErrorSize, "out of memory");
    return -1;
  } catch (const std::exception &exception) {
    std::snprintf(error, kErrorSize, "%s", exception.what());
    return -1;
  }
}

}  // namespace

olt_server *olt_server_create(const olt_server_options *options, char error[kErrorSize]) {
  olt_server *created = nullptr;
  attempt(error, [&] { created = new olt_server(*options); });
  return created;
}

int olt_server_add(olt_server *server, uint32_t module, olt_handler handler, void *context,
                   char error[kErrorSize]) {
  return attempt(error, [&] {
    server->server.add({.module = module, .handler = handler, .context = context});
  });
}

void olt_server_watch(olt_server *server, olt_server_watcher watcher, void *context) {
  server->server.watch({.watcher = watcher, .context = context});
}

int olt_server_run(olt_server *server, char error[kErrorSize]) {
  return attempt(error, [&] { server->server.run(); });
}

void olt_server_stop(olt_server *server) {
  server->server.stop();
}

int olt_server_connect(olt_server *server, uint32_t module) {
  try {
    return server->server.connect(module);
  } catch (const std::bad_alloc &) {
    errno = ENOMEM;
    return -1;
  }
}

void olt_server_count(const olt_server *server, olt_server_counters *counters) {
  *counters = server->server.counters();
}

void olt_server_destroy(olt_server *server) {
  delete server;
}
