// The simulated box as a daemon.

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "base/accounts.h"
#include "base/bad_input.h"
#include "base/folders.h"
#include "box/box.h"

namespace {

using olt::BadInput;
using olt::box::Box;
using olt::box::Options;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

struct Arguments {
  std::string run_dir;
  std::string group;
  bool trace = false;
  Options box;
};

std::string default_run_dir() {
  char path[4096];
  if (olt_run_dir(path, sizeof path) != 0) throw BadInput("the run directory's path is too long");
  return path;
}

gid_t group_id(const std::string &name_or_number) {
  if (auto group = olt::find_group(name_or_number)) return *group;
  throw BadInput("--group " + name_or_number + ": is no group; expected the name or number of one");
}

/// The box goes on even if nobody reads the line.
void print_line(std::FILE *stream, const std::string &line) {
  static_cast<void>(std::fputs((line + '\n').c_str(), stream));
  static_cast<void>(std::fflush(stream));
}

/// Throws CLI::ParseError and BadInput.
Arguments parse(int argc, char **argv) {
  Arguments arguments;
  std::string state_dir;
  std::string topology;
  CLI::App app("The simulated OLT: serves its management modules until SIGTERM or SIGINT.",
               "oltbox");
  app.set_version_flag("--version", std::string("oltbox ") + OLTMGMT_VERSION);
  app.add_option("--run-dir", arguments.run_dir, "Directory of the sockets and the listings");
  app.add_option("--state-dir", state_dir, "Directory of the saved configuration");
  app.add_option("--topology", topology, "JSON file that says what the box is made of");
  app.add_option("--group", arguments.group, "Group whose members may use the box too");
  app.add_option("--fault", arguments.box.faults,
                 "Fault to arm, such as \"type=12 status=5 from=2 count=3\"; may be repeated")
      ->allow_extra_args(false);
  app.add_flag("--trace", arguments.trace, "Print a line per exchange");
  app.add_flag("--fresh", arguments.box.fresh, "Forget the saved configuration first");
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success &request) {
    std::exit(app.exit(request));
  }
  if (arguments.run_dir.empty()) arguments.run_dir = default_run_dir();
  arguments.box.state_dir =
      state_dir.empty() ? olt::state_folder() / "box" : std::filesystem::path(state_dir);
  arguments.box.listing_dir = arguments.run_dir;
  arguments.box.topology_file = topology;
  if (!arguments.group.empty()) arguments.box.listing_group = group_id(arguments.group);
  if (arguments.trace) {
    arguments.box.trace = [](std::string_view line) { print_line(stdout, std::string(line)); };
  }
  return arguments;
}

struct ServerRelease {
  void operator()(olt_server *server) const { olt_server_destroy(server); }
};
using Server = std::unique_ptr<olt_server, ServerRelease>;

/// While it exists, SIGTERM and SIGINT stop the server.
class StopOnSignals {
 public:
  explicit StopOnSignals(olt_server *server) {
    stopped = server;
    on_signal(SIGTERM, stop);
    on_signal(SIGINT, stop);
    // The reader of the trace may exit; the box goes on.
    on_signal(SIGPIPE, SIG_IGN);
  }
  StopOnSignals(const StopOnSignals &) = delete;
  StopOnSignals &operator=(const StopOnSignals &) = delete;
  ~StopOnSignals() {
    on_signal(SIGTERM, SIG_IGN);
    on_signal(SIGINT, SIG_IGN);
  }

 private:
  static void stop(int /*signal*/) { olt_server_stop(stopped); }

  static void on_signal(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigaction(signal, &action, nullptr);
  }

  static inline olt_server *stopped = nullptr;
};

Server create_server(const Arguments &arguments) {
  olt_server_options options = {};
  options.run_dir = arguments.run_dir.c_str();
  options.group = arguments.group.empty() ? nullptr : arguments.group.c_str();
  options.on_event = [](void *, const char *line) {
    print_line(stderr, fmt::format("oltbox: {}", line));
  };
  char error[256] = "";
  Server server(olt_server_create(&options, error));
  if (!server) throw std::runtime_error(error);
  return server;
}

void serve(const Arguments &arguments) {
  Box box(arguments.box);
  Server server = create_server(arguments);
  StopOnSignals stopping(server.get());
  box.serve(server.get());
  print_line(stdout, fmt::format("oltbox: serving modules 2, 18, 22, 23 in {}", arguments.run_dir));
  char error[256] = "";
  if (olt_server_run(server.get(), error) != 0) throw std::runtime_error(error);
}

int complain(const char *reason, int status) {
  print_line(stderr, fmt::format("oltbox: {}", reason));
  return status;
}

}  // namespace

int main(int argc, char **argv) {
  try {
    serve(parse(argc, argv));
    return 0;
  } catch (const CLI::ParseError &error) {
    return complain(error.what(), kWrongUsage);
  } catch (const BadInput &error) {
    return complain(error.what(), kWrongUsage);
  } catch (const std::exception &error) {
    return complain(error.what(), kFailed);
  }
}
