// The simulated box as a daemon.

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "base/accounts.h"
#include "base/bad_input.h"
#include "base/descriptor.h"
#include "base/folders.h"
#include "base/line_writer.h"
#include "box/box.h"
#include "box/oltbox_options.h"

namespace {

using olt::BadInput;
using olt::LineWriter;
using olt::box::Box;
using olt::box::Options;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
constexpr uint32_t kEventsPerSecond = 100;
/// Bytes in the path of the folder of a capture's listings.
constexpr size_t kMaxFolder = 199;

/// The standard streams. A reader that is slow, or gone, does not hold up the box.
struct Console {
  LineWriter output{STDOUT_FILENO, "oltbox"};
  LineWriter errors{STDERR_FILENO, "oltbox", kEventsPerSecond};
};

struct Arguments {
  std::string run_dir;
  std::string group;
  bool trace = false;
  uint32_t pending_limit = 0;
  olt::capture::CaptureFileOptions capture;  ///< none when the path is empty
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

/// @return what is wrong with a number of bytes; empty when nothing is.
std::string check_limit(const std::string &text) {
  const char *end = text.data() + text.size();
  uint32_t number = 0;
  auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && stop == end && number > 0) return "";
  return fmt::format("'{}' given; expected a number of bytes from 1 to {}", text, UINT32_MAX);
}

/// @return what is wrong with a number of bytes that a capture may take; empty when nothing is.
std::string check_capture_limit(const std::string &text) {
  constexpr uint64_t kMin = olt::capture::CaptureFileOptions::kMinLimit;
  const char *end = text.data() + text.size();
  uint64_t number = 0;
  auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && stop == end && number >= kMin) return "";
  return fmt::format("'{}' given; expected a number of bytes, at least {}", text, kMin);
}

/// Completes what was given for the capture. Throws BadInput.
void complete(olt::capture::CaptureFileOptions &capture) {
  if (capture.path.empty()) {
    if (capture.limit == 0 && capture.listings.empty()) return;
    throw BadInput(
        "--capture-limit and --capture-files are for a capture; expected --capture beside them");
  }
  if (capture.listings.size() > kMaxFolder) {
    throw BadInput(fmt::format("--capture-files: a path of {} bytes given; expected at most {}",
                               capture.listings.size(), kMaxFolder));
  }
  const char *secrets = std::getenv("OLT_CAPTURE_SECRETS");
  capture.with_secrets = secrets != nullptr && std::string_view(secrets) == "1";
  capture.report = [](std::string_view line) {
    // Also called from the thread of the capture, so the line has a writer of its own.
    LineWriter(STDERR_FILENO, "oltbox").write(fmt::format("oltbox: {}", line));
  };
}

/// Throws CLI::ParseError and BadInput.
Arguments parse(int argc, char **argv, Console &console) {
  Arguments arguments;
  std::string state_dir;
  std::string topology;
  CLI::App app("The simulated OLT: serves its management modules until SIGTERM or SIGINT.",
               "oltbox");
  using namespace olt::box::option;
  auto add = [&app](const auto &option, auto &value) {
    return app.add_option(option.name, value, option.summary)->type_name(option.value);
  };
  auto add_flag = [&app](const auto &option, bool &value) {
    app.add_flag(option.name, value, option.summary);
  };
  app.set_help_flag(kHelp.name, kHelp.summary);
  app.set_version_flag(kVersion.name, std::string("oltbox ") + OLTMGMT_VERSION, kVersion.summary);
  add(kRunDir, arguments.run_dir);
  add(kStateDir, state_dir);
  add(kTopology, topology);
  add(kGroup, arguments.group);
  add(kFault, arguments.box.faults)->allow_extra_args(false);
  add_flag(kTrace, arguments.trace);
  add_flag(kFresh, arguments.box.fresh);
  add_flag(kAdopt, arguments.box.adopt);
  add(kPendingLimit, arguments.pending_limit)->check(check_limit);
  add(kListingLimit, arguments.box.listing_limit)->check(check_limit);
  add(kCapture, arguments.capture.path);
  add(kCaptureLimit, arguments.capture.limit)->check(check_capture_limit);
  add(kCaptureFiles, arguments.capture.listings);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success &request) {
    app.exit(request);
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("cannot write the output");
    std::exit(0);
  }
  if (arguments.run_dir.empty()) arguments.run_dir = default_run_dir();
  arguments.box.state_dir =
      state_dir.empty() ? olt::state_folder() / "box" : std::filesystem::path(state_dir);
  arguments.box.listing_dir = arguments.run_dir;
  arguments.box.topology_file = topology;
  if (!arguments.group.empty()) arguments.box.listing_group = group_id(arguments.group);
  arguments.box.notice = [&console](std::string_view line) {
    console.errors.write(fmt::format("oltbox: {}", line));
  };
  complete(arguments.capture);
  if (!arguments.capture.path.empty()) arguments.box.capture = arguments.capture;
  if (arguments.trace) {
    arguments.box.trace = [&console](std::string_view line) { console.output.write(line); };
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

Server create_server(const Arguments &arguments, Console &console) {
  olt_server_options options = {};
  options.run_dir = arguments.run_dir.c_str();
  options.group = arguments.group.empty() ? nullptr : arguments.group.c_str();
  options.pending_limit = arguments.pending_limit;
  options.context = &console.errors;
  options.on_event = [](void *errors, const char *line) {
    static_cast<LineWriter *>(errors)->write(fmt::format("oltbox: {}", line));
  };
  char error[256] = "";
  Server server(olt_server_create(&options, error));
  if (!server) throw std::runtime_error(error);
  return server;
}

void serve(const Arguments &arguments, Console &console) {
  Box box(arguments.box);
  Server server = create_server(arguments, console);
  StopOnSignals stopping(server.get());
  box.serve(server.get());
  console.output.write(
      fmt::format("oltbox: serving modules 2, 18, 22, 23 in {}", arguments.run_dir));
  char error[256] = "";
  if (olt_server_run(server.get(), error) != 0) throw std::runtime_error(error);
}

int fail(Console &console, const char *reason, int status) {
  console.errors.write(fmt::format("oltbox: {}", reason));
  return status;
}

}  // namespace

int main(int argc, char **argv) {
  olt::fill_standard_streams();
  // A file size limit, or a reader that went away, fails the write and does not end the box.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  Console console;
  try {
    serve(parse(argc, argv, console), console);
    return 0;
  } catch (const CLI::ParseError &error) {
    return fail(console, error.what(), kWrongUsage);
  } catch (const BadInput &error) {
    return fail(console, error.what(), kWrongUsage);
  } catch (const std::exception &error) {
    return fail(console, error.what(), kFailed);
  }
}
