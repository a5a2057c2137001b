/// oltsnmp: the SNMP agent of an OLT, a subagent under snmpd.

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "agent/mib.h"
#include "agent/objects.h"
#include "agent/oltsnmp_options.h"
#include "agent/subagent.h"
#include "base/bad_input.h"
#include "base/descriptor.h"
#include "base/failure.h"
#include "base/text.h"
#include "catalog/layout.h"
#include "cli/layout/layouts.h"
#include "cli/text/error.h"
#include "oltmgmt.h"

namespace {

using olt::BadInput;
using olt::printable;
using olt::agent::Subagent;
using olt::agent::SubagentOptions;
using olt::serving::Option;
namespace option = olt::agent::option;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
constexpr int kShortestPace = 10;

struct Arguments {
  SubagentOptions subagent{.socket = "unix:/var/agentx/master"};
  std::string root{olt::agent::kDefaultRoot};
  std::string box;
  std::string layout_name;
  std::shared_ptr<const olt::catalog::Layout> layout;
  bool check = false;
  bool prints_mib = false;
};

olt::agent::Oid root_of(const std::string &text) {
  std::optional<olt::agent::Oid> root = olt::agent::to_oid(text);
  // An OID has 128 arcs at most; 64 of them leave room for every index.
  if (root && root->size() >= 2 && root->size() <= 64 && (*root)[0] <= 2) return *root;
  throw BadInput(fmt::format(
      "oltsnmp: --root {}: no object identifier; expected 2 to 64 numbers with dots between them",
      printable(text)));
}

/// A path is a Unix socket.
std::string socket_of(const std::string &text) {
  return text.starts_with('/') ? "unix:" + text : text;
}

std::shared_ptr<const olt::catalog::Layout> layout_of(const std::string &name) {
  try {
    return olt::cli::layout_named(olt::cli::layout_in_use(name));
  } catch (const olt::cli::Error &error) {
    throw BadInput(fmt::format("oltsnmp: {}", error.what()));
  }
}

/// Throws CLI::ParseError and BadInput.
Arguments parse(int argc, char **argv) {
  Arguments arguments;
  int pace = 20;
  CLI::App app(
      "The SNMP agent of an OLT: a subagent that serves snmpd until SIGTERM or SIGINT. SIGHUP "
      "reads "
      "the configuration file again.",
      "oltsnmp");
  app.footer("Exit status: 0 done, 1 failed, 2 wrong usage.");
  app.set_help_flag(option::kHelp.name, option::kHelp.summary);
  app.set_version_flag(option::kVersion.name, std::string("oltsnmp ") + OLTMGMT_VERSION,
                       option::kVersion.summary);
  app.set_config(option::kConfig.name, "", option::kConfig.summary)
      ->type_name(option::kConfig.value);
  app.allow_config_extras(CLI::config_extras_mode::error);
  auto add = [&app](const Option &option, auto &value) {
    return app.add_option(option.name, value, option.summary)->type_name(option.value);
  };
  auto add_flag = [&app](const Option &option, bool &flag) {
    return app.add_flag(option.name, flag, option.summary);
  };
  add(option::kAgentx, arguments.subagent.socket);
  add(option::kBox, arguments.box);
  add(option::kRoot, arguments.root);
  add(option::kLayout, arguments.layout_name);
  add(option::kContext, arguments.subagent.context);
  add_flag(option::kOpenInterfaces, arguments.subagent.is_host_replaced);
  add_flag(option::kWritable, arguments.subagent.is_writable);
  add(option::kPace, pace)->check(CLI::Range(0, 1000));
  add_flag(option::kCheck, arguments.check)->configurable(false);
  add_flag(option::kMib, arguments.prints_mib)->configurable(false);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success &request) {
    app.exit(request);
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("oltsnmp: cannot write the output");
    std::exit(0);
  }
  if (pace != 0 && pace < kShortestPace) {
    throw BadInput(fmt::format("oltsnmp: --pace {}: too fast; expected 0, or {} to 1000", pace,
                               kShortestPace));
  }
  arguments.subagent.pace = std::chrono::milliseconds(pace);
  arguments.layout = layout_of(arguments.layout_name);
  arguments.subagent.root = root_of(arguments.root);
  arguments.subagent.socket = socket_of(arguments.subagent.socket);
  return arguments;
}

void report(const std::string &line) {
  static_cast<void>(std::fprintf(stderr, "%s\n", line.c_str()));
}

/// One line for what is wrong with the command line or the configuration file.
std::string line_of(const CLI::ParseError &error) {
  std::string text = printable(error.what());
  return fmt::format("oltsnmp: {}; expected what oltsnmp --help shows", text);
}

/// Before a new start with the same command line: a mistake in the file must not end the service.
bool is_right(int argc, char **argv) {
  try {
    parse(argc, argv);
    return true;
  } catch (const CLI::ParseError &error) {
    report(line_of(error));
  } catch (const BadInput &error) {
    report(error.what());
  }
  return false;
}

void print_mib(const Arguments &arguments) {
  if (!olt::agent::is_mib_root(arguments.subagent.root)) {
    throw BadInput(fmt::format(
        "oltsnmp: --root {}: no place for a MIB module; expected one below 1.3.6.1.4.1 or "
        "1.3.6.1.3",
        printable(arguments.root)));
  }
  std::cout << olt::agent::mib_module(*arguments.layout, arguments.subagent.root) << std::flush;
  if (!std::cout) throw std::runtime_error("oltsnmp: cannot write the output");
}

int run(int argc, char **argv) {
  Arguments arguments = parse(argc, argv);
  if (arguments.check) return 0;
  if (arguments.prints_mib) {
    print_mib(arguments);
    return 0;
  }
  // The host platform says why each call failed; one line for an outage is enough here.
  setenv("OLT_LOG", "none", 0);
  const char *named = std::getenv("OLT_RUN_DIR");
  std::optional<std::string> before;
  if (named != nullptr) before = named;
  if (!arguments.box.empty()) setenv("OLT_RUN_DIR", arguments.box.c_str(), 1);
  auto subagent = std::make_unique<Subagent>(arguments.subagent, *arguments.layout);
  int signal = subagent->run([argc, argv] { return is_right(argc, argv); });
  if (signal == SIGHUP) {
    before ? setenv("OLT_RUN_DIR", before->c_str(), 1) : unsetenv("OLT_RUN_DIR");
    execv("/proc/self/exe", argv);
    throw olt::system_failure("oltsnmp: cannot start again", errno);
  }
  // A call without an answer cannot be ended: its thread ends with the process.
  if (!subagent->is_idle()) std::_Exit(0);
  return 0;
}

}  // namespace

int main(int argc, char **argv) {
  try {
    olt::fill_standard_streams();
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));  // a limit on files fails the write alone
    return run(argc, argv);
  } catch (const CLI::ParseError &error) {
    report(line_of(error));
    return kWrongUsage;
  } catch (const BadInput &error) {
    report(error.what());
    return kWrongUsage;
  } catch (const std::exception &error) {
    report(error.what());
    return kFailed;
  }
}
