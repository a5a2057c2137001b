#include "cli/options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <utility>

#include "base/text.h"
#include "cli/commands.h"
#include "cli/layout/layouts.h"
#include "cli/text/error.h"
#include "cli/text/file.h"
#include "oltmgmt.h"

namespace olt::cli {

namespace {

constexpr const char *kUsage =
    "Usage: oltctl [OPTION...] OPERATION [ARGUMENT...]\n"
    "       oltctl [OPTION...] -f FILE\n"
    "\n"
    "Calls the management operations of an OLT. Without a running box it uses a simulated one "
    "inside\n"
    "its own process, whose state lasts from one call to the next.\n"
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

class HelpLayout : public CLI::Formatter {
 public:
  explicit HelpLayout(std::string commands) : commands_(std::move(commands)) {}

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
  const Command *command = words.empty() ? nullptr : find_command(words[0]);
  if (command != nullptr && command->options != nullptr) return words;
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
  bool may_import =
      options.script ||
      (!options.words.empty() && (options.words[0] == "config" || options.words[0] == "shell"));
  if (!box.run_dir.empty() && box.adopt && !may_import) {
    wrong_usage(
        "oltctl: --adopt is for the embedded box and for config import, but the box in {} is used;"
        " expected --box embedded beside it",
        box.run_dir);
  }
  if (!options.script && (options.echo || options.keep_going)) {
    wrong_usage("oltctl: {} is for scripts; expected -f FILE beside it",
                options.echo ? "--echo" : "--keep-going");
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

/// What the options on the command line set.
struct Given {
  Options options;
  std::string box;
  std::string script;
  std::optional<std::string> format;
  bool json = false;
};

Format format_of(const Given &given) {
  if (!given.format) return given.json ? Format::kJson : Format::kText;
  const auto *found =
      std::find_if(kFormats.begin(), kFormats.end(),
                   [&given](const FormatName &format) { return format.name == *given.format; });
  if (found == kFormats.end()) {
    wrong_usage("oltctl: there is no format '{}'; expected text, json or csv",
                printable(*given.format));
  }
  auto format = static_cast<Format>(found - kFormats.begin());
  if (given.json && format != Format::kJson) {
    wrong_usage("oltctl: both --json and --format {} are given; expected one of them",
                *given.format);
  }
  return format;
}

void define_options(CLI::App &app, Given &given) {
  BoxOptions &box = given.options.box;
  app.set_help_flag("-h,--help", "This text");
  app.set_version_flag("--version", "oltctl " OLTMGMT_VERSION, "The version");
  app.add_option("--box", given.box,
                 "The box: 'embedded', or the run directory of a running oltbox;\n"
                 "default: the one that OLT_RUN_DIR names, else embedded")
      ->type_name("DIR");
  app.add_flag("--fresh", box.fresh, "Embedded box: forget what was set before");
  app.add_option("--topology", box.topology, "Embedded box: ports and ONUs from a JSON file")
      ->type_name("FILE");
  app.add_option("-f,--file", given.script, "Run one command per line; '-' reads standard input")
      ->type_name("FILE");
  app.add_flag("--echo", given.options.echo, "Script: show each command on standard error");
  app.add_flag("--keep-going", given.options.keep_going,
               "Script: go on after a command that fails; exit with status 1 at the end");
  app.add_flag("--adopt", box.adopt,
               "Embedded box, config import: keep what fits another topology");
  app.add_option("--layout", given.options.layout,
                 "What bytes mean: 'box', 'none', or a layout by its name or file;\n"
                 "default: the one that OLT_LAYOUT names, else box")
      ->type_name("FILE");
  app.add_option("--format", given.format, "Results as text, json or csv; default: text")
      ->type_name("FORMAT");
  app.add_flag("--json", given.json, "Short for --format json: one object a line");
  app.add_flag("--trace", given.options.trace, "Show each exchange on standard error");
  app.add_flag("--show-secrets", given.options.detail.secrets, "Show passwords in results");
  app.add_flag("--all", given.options.detail.all,
               "Show reserved fields, and those that say what was asked for;\n"
               "compare: send requests that may change the box, too");
  app.add_flag("--raw", given.options.detail.raw, "Show numbers and hex instead of names");
  app.add_flag("--yes", given.options.yes, "Answer yes to questions before a call");
  app.add_flag("--zero", given.options.zero,
               "Send zeros for fields that are not given, instead of what they are now");
  app.add_flag("--real-flash", box.real_flash, "Flash operations use this machine's own /dev/mtd0");
}

}  // namespace

std::vector<OptionName> option_names() {
  CLI::App app;
  Given given;
  define_options(app, given);
  std::vector<OptionName> names;
  for (const CLI::Option *option : app.get_options()) {
    std::string value = option->get_expected_max() == 0 ? "" : option->get_type_name();
    for (const std::string &name : option->get_lnames()) names.push_back({"--" + name, value});
    for (const std::string &name : option->get_snames()) names.push_back({"-" + name, value});
  }
  return names;
}

std::optional<Options> parse_options(int argc, const char *const *argv,
                                     const std::string &commands) {
  CLI::App app;
  Given given;
  app.allow_extras();
  app.formatter(std::make_shared<HelpLayout>(commands));
  app.footer(kExamples);
  define_options(app, given);
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
  Options options = std::move(given.options);
  if (app.count("--file") > 0) options.script = given.script;
  options.format = format_of(given);
  options.words = words_of(app);
  options.box.run_dir = run_dir(given.box);
  options.layout = layout_in_use(options.layout);
  check(options);
  return options;
}

}  // namespace olt::cli
