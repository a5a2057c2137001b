// The simulated box as a daemon.

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/bad_input.h"
#include "base/folders.h"
#include "base/line_writer.h"
#include "box/box.h"
#include "box/oltbox_options.h"
#include "serving/program.h"

namespace {

using olt::BadInput;
using olt::LineWriter;
using olt::box::Box;
using olt::box::Options;
using olt::serving::Access;
using olt::serving::CommandLine;
using olt::serving::Console;

/// Bytes in the path of the folder of a capture's listings.
constexpr size_t kMaxFolder = 199;

struct Arguments {
  Access access;
  bool trace = false;
  olt::capture::CaptureFileOptions capture;  ///< none when the path is empty
  Options box;
};

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

/// Throws BadInput.
Arguments parse(int argc, char **argv, Console &console) {
  Arguments arguments;
  std::string state_dir;
  std::string topology;
  CommandLine line(console,
                   "The simulated OLT: serves its management modules until SIGTERM or SIGINT.");
  using namespace olt::box::option;
  line.add(arguments.access);
  line.add(kStateDir, state_dir);
  line.add(kTopology, topology);
  line.add(kFault, arguments.box.faults);
  line.add(kTrace, arguments.trace);
  line.add(kFresh, arguments.box.fresh);
  line.add(kAdopt, arguments.box.adopt);
  line.add_limit(kListingLimit, arguments.box.listing_limit);
  line.add(kCapture, arguments.capture.path);
  line.add_limit(kCaptureLimit, arguments.capture.limit,
                 olt::capture::CaptureFileOptions::kMinLimit);
  line.add(kCaptureFiles, arguments.capture.listings);
  line.parse(argc, argv);
  arguments.box.state_dir =
      state_dir.empty() ? olt::state_folder() / "box" : std::filesystem::path(state_dir);
  arguments.box.listing_dir = arguments.access.run_dir;
  arguments.box.topology_file = topology;
  arguments.box.listing_group = arguments.access.group_id();
  arguments.box.notice = [&console](std::string_view notice) { console.warn(notice); };
  complete(arguments.capture);
  if (!arguments.capture.path.empty()) arguments.box.capture = arguments.capture;
  if (arguments.trace) {
    arguments.box.trace = [&console](std::string_view exchange) { console.print(exchange); };
  }
  return arguments;
}

void serve(const Arguments &arguments, Console &console) {
  Box box(arguments.box);
  olt::serving::serve(arguments.access, "2, 18, 22, 23", console,
                      [&box](olt_server *server) { box.serve(server); });
}

}  // namespace

int main(int argc, char **argv) {
  return olt::serving::run_program(
      "oltbox", [=](Console &console) { serve(parse(argc, argv, console), console); });
}
