#include "cli/box/embedded_server.h"

#include <csignal>
#include <stdexcept>
#include <string_view>

#include "base/bad_input.h"
#include "box/state/files.h"
#include "cli/box/interruption.h"
#include "cli/text/error.h"

namespace olt::cli {

namespace {

template <typename Step>
auto starting(Step step) {
  try {
    return step();
  } catch (const box::StateInUse &error) {
    fail(
        "oltctl: {} uses the embedded box; expected it to end first, or a running oltbox for both"
        " (--box DIR)",
        error.holder());
  } catch (const BadInput &error) {
    wrong_usage("oltctl: the embedded box does not start: {}", error.what());
  } catch (const std::runtime_error &error) {
    fail("oltctl: the embedded box does not start: {}", error.what());
  }
}

olt_server *make_server() {
  char error[256];
  olt_server_options options{};
  // A connection that the user ends is no event.
  if (exchanges_are_interruptible()) options.on_event = [](void *, const char *) {};
  olt_server *server = olt_server_create(&options, error);
  if (server == nullptr) fail("oltctl: the embedded box does not start: {}", error);
  return server;
}

void note(std::string_view line) {
  fmt::print(stderr, "oltctl: {}\n", line);
}

int connect_to(void *server, uint32_t module) {
  return interruptible(module, olt_server_connect(static_cast<olt_server *>(server), module));
}

/// Signals are for the thread that makes the calls: a thread started meanwhile gets none.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsBlocked(const SignalsBlocked &) = delete;
  SignalsBlocked &operator=(const SignalsBlocked &) = delete;
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

}  // namespace

EmbeddedServer::EmbeddedServer(const std::filesystem::path &folder, const BoxOptions &options)
    : listing_dir_(folder / "listings"),
      box_(starting([&] {
        return std::make_unique<box::Box>(box::Options{.state_dir = folder,
                                                       .listing_dir = listing_dir_,
                                                       .topology_file = options.topology,
                                                       .adopt = options.adopt,
                                                       .keep_running_state = true,
                                                       .fresh = options.fresh,
                                                       .notice = note,
                                                       .trace = {}});
      })),
      server_(make_server(), &olt_server_destroy) {
  starting([this] { box_->serve(server_.get()); });
  SignalsBlocked blocked;
  thread_ = std::thread([server = server_.get()] {
    char error[256];
    if (olt_server_run(server, error) != 0) fmt::print(stderr, "oltctl: {}\n", error);
  });
  olt_connect_through(connect_to, server_.get());
}

EmbeddedServer::~EmbeddedServer() {
  stop();
  olt_connect_through(nullptr, nullptr);
}

void EmbeddedServer::close() {
  stop();
  try {
    box_->keep();
  } catch (const std::runtime_error &error) {
    fail("oltctl: the embedded box cannot keep its state: {}", error.what());
  }
}

void EmbeddedServer::stop() {
  if (!thread_.joinable()) return;
  olt_server_stop(server_.get());
  thread_.join();
}

}  // namespace olt::cli
