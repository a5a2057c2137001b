#include "cli/options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <utility>

#include "base/text.h"
#include "cli/text/error.h"
#include "cli/text/file.h"

namespace olt::cli {

namespace {

constexpr const char *kUsage =
    "Usage: oltctl [OPTION...] OPERATION [ARGUMENT...]\n"
    "       oltctl [OPTION...] -f FILE\n"
    "\n"
    "Calls the management operations of an OLT. Without a running box it brings its own simulated\n"
    "one along, which remembers until the next call what was set.\n"
    "\n";

constexpr const char *kExamples =
    "Examples:\n"
    "  oltctl get_system_basicinfofile\n"
    "      asks the box for its basic information and prints the listing\n"
    "  oltctl add_user_level name=operator password=- level_a=1 level_b=2\n"
    "      adds a user; '-' reads the password without echo\n"
    "  oltctl --trace get_olt_mac\n"
    "      shows the request and the answer byte by byte\n"
    "\n"
    "Exit status: 0 done, 1 the operation failed, 2 wrong usage.";

class Layout : public CLI::Formatter {
 public:
  explicit Layout(std::string commands) : commands_(std::move(commands)) {}

  std::string make_usage(const CLI::App * /*app*/, std::string /*name*/) const override {
    return kUsage + commands_;
  }

 private:
  std::string commands_;
};

/// Which box: --box, else the environment, else the embedded one.
std::string run_dir(const std::string &box) {
  if (box == "embedded") return "";
  if (!box.empty()) return box;
  const char *directory = std::getenv("OLT_RUN_DIR");
  return directory != nullptr ? directory : "";
}

std::vector<std::string> words_of(const CLI::App &app) {
  std::vector<std::string> words = app.remaining();
  for (const std::string &word : words) {
    if (word.size() > 1 && word.starts_with('-')) {
      wrong_usage(
          "oltctl: there is no option '{}'; expected one that 'oltctl --help' shows, or NAME={}"
          " for a value",
          printable(word), printable(word));
    }
  }
  return words;
}

void check(const Options &options) {
  const BoxOptions &box = options.box;
  if (!box.run_dir.empty() && (box.fresh || !box.topology.empty())) {
    wrong_usage(
        "oltctl: --fresh and --topology are for the embedded box, but the box in {} is"
        " used; expected --box embedded beside them",
        box.run_dir);
  }
  if (options.script && !options.words.empty()) {
    wrong_usage("oltctl: both -f {} and an operation are given; expected one of them",
                *options.script);
  }
  if (!options.script && options.words.empty()) {
    wrong_usage(
        "oltctl: no operation is given; expected one, for example get_olt_mac; see oltctl"
        " --help and oltctl list");
  }
}

}  // namespace

std::optional<Options> parse_options(int argc, const char *const *argv,
                                     const std::string &commands) {
  Options options;
  std::string box;
  std::string script;
  bool json = false;
  CLI::App app;
  app.allow_extras();
  app.formatter(std::make_shared<Layout>(commands));
  app.footer(kExamples);
  app.set_help_flag("-h,--help", "This text");
  app.set_version_flag("--version", "oltctl " OLTMGMT_VERSION, "The version");
  app.add_option("--box", box,
                 "The box: 'embedded', or the run directory of a running oltbox;\n"
                 "default: the one that OLT_RUN_DIR names, else embedded")
      ->type_name("DIR");
  app.add_flag("--fresh", options.box.fresh, "Embedded box: forget what was set before");
  app.add_option("--topology", options.box.topology,
                 "Embedded box: ports and ONUs from a JSON file")
      ->type_name("FILE");
  auto *file = app.add_option("-f,--file", script,
                              "Run a command a line; '-' reads them from standard input")
                   ->type_name("FILE");
  app.add_flag("--json", json, "Results as JSON, one object a line");
  app.add_flag("--trace", options.trace, "Show each exchange on standard error");
  app.add_flag("--show-secrets", options.show_secrets, "Show passwords in results");
  app.add_flag("--real-flash", options.box.real_flash,
               "Flash operations use this machine's own /dev/mtd0");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    if (error.get_exit_code() != 0) {
      wrong_usage("oltctl: {}; expected what oltctl --help says", error.what());
    }
    std::ostringstream text;
    app.exit(error, text);
    print(text.str());
    return std::nullopt;
  }
  if (file->count() > 0) options.script = script;
  options.words = words_of(app);
  options.box.run_dir = run_dir(box);
  if (json) options.format = Format::kJson;
  check(options);
  return options;
}

}  // namespace olt::cli
