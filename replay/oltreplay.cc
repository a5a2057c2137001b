// Serves modules from captures.

#include <fmt/format.h>

#include <charconv>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/bad_input.h"
#include "base/text.h"
#include "cli/layout/layouts.h"
#include "cli/text/error.h"
#include "replay/options.h"
#include "replay/replay.h"
#include "serving/program.h"

namespace {

using olt::BadInput;
using olt::replay::Index;
using olt::replay::ListingFiles;
using olt::replay::Order;
using olt::replay::Replay;
using olt::replay::Settings;
using olt::serving::Access;
using olt::serving::CommandLine;
using olt::serving::Console;

constexpr uint64_t kMaxSpeed = 1'000'000;

struct Arguments {
  Access access;
  std::vector<std::string> captures;
  bool match = false;
  bool last = false;
  bool strict = false;
  bool trace = false;
  std::string timing = "fast";
  std::string files;
  std::string layout;
};

/// Throws BadInput.
Arguments parse(int argc, char **argv, const Console &console) {
  Arguments arguments;
  CommandLine line(console,
                   "Serves the modules in captures of libolttrace until SIGTERM or SIGINT.");
  using namespace olt::replay::option;
  line.add_words("FILE", "Captures; their exchanges are put in the order of time",
                 arguments.captures);
  line.add(kMatch, arguments.match);
  line.add(kLast, arguments.last);
  line.add(kStrict, arguments.strict);
  line.add(kTiming, arguments.timing);
  line.add(kFiles, arguments.files);
  line.add(kLayout, arguments.layout);
  line.add(kTrace, arguments.trace);
  line.add(arguments.access);
  line.parse(argc, argv);
  return arguments;
}

Order order_of(const Arguments &arguments) {
  if (arguments.strict && (arguments.match || arguments.last))
    throw BadInput("--strict: given with --match or --last; expected one of them");
  if (arguments.strict) return Order::kByClient;
  return arguments.last ? Order::kLast : Order::kInTurn;
}

/// As in Settings::speed.
uint64_t speed_of(const std::string &timing) {
  if (timing == "fast") return 0;
  if (timing == "real") return 1;
  uint64_t speed = 0;
  const char *end = timing.data() + timing.size();
  if (timing.starts_with('x')) {
    auto [stop, error] = std::from_chars(timing.data() + 1, end, speed);
    if (error == std::errc() && stop == end && speed >= 1 && speed <= kMaxSpeed) return speed;
  }
  throw BadInput(fmt::format("--timing: '{}' given; expected fast, real or xN with N from 1 to {}",
                             olt::printable(timing), kMaxSpeed));
}

std::shared_ptr<const olt::catalog::Layout> layout_of(const Arguments &arguments) {
  try {
    return olt::cli::layout_named(olt::cli::layout_in_use(arguments.layout));
  } catch (const olt::cli::Error &error) {
    throw BadInput(error.what());
  }
}

Settings settings_of(const Arguments &arguments, Console &console) {
  Settings settings;
  settings.order = order_of(arguments);
  settings.speed = speed_of(arguments.timing);
  settings.layout = layout_of(arguments);
  if (!arguments.files.empty()) {
    settings.listings = std::make_unique<ListingFiles>(
        arguments.files, arguments.access.run_dir, arguments.access.group_id(), *settings.layout);
  }
  settings.complain = [&console](const std::string &complaint) { console.warn(complaint); };
  if (arguments.trace)
    settings.trace = [&console](const std::string &exchange) { console.print(exchange); };
  return settings;
}

void replay(const Arguments &arguments, Console &console) {
  Settings settings = settings_of(arguments, console);
  Index index(arguments.captures, settings.order);
  for (const std::string &note : index.notes()) console.warn(note);
  std::string modules = fmt::format("{}", fmt::join(index.modules(), ", "));
  Replay replay(std::move(index), std::move(settings));
  olt::serving::serve(arguments.access, modules, console,
                      [&replay](olt_server *server) { replay.serve(server); });
  for (const std::string &line : replay.summary()) console.tell(line);
}

}  // namespace

int main(int argc, char **argv) {
  return olt::serving::run_program(
      "oltreplay", [=](Console &console) { replay(parse(argc, argv, console), console); });
}
