#include "serving/program.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "base/accounts.h"
#include "base/bad_input.h"
#include "base/descriptor.h"

namespace olt::serving {

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
constexpr uint32_t kEventsPerSecond = 100;

std::string default_run_dir() {
  char path[4096];
  if (olt_run_dir(path, sizeof path) != 0) throw BadInput("the run directory's path is too long");
  return path;
}

/// Whether the text is a number of at least that much.
template <typename Number>
bool is_number(const std::string &text, Number min) {
  const char *end = text.data() + text.size();
  Number number = 0;
  auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && number >= min;
}

/// @return what is wrong with a number of bytes; empty when nothing is.
std::string check_limit(const std::string &text) {
  if (is_number<uint32_t>(text, 1)) return "";
  return fmt::format("'{}' given; expected a number of bytes from 1 to {}", text, UINT32_MAX);
}

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

struct ServerRelease {
  void operator()(olt_server *server) const { olt_server_destroy(server); }
};
using Server = std::unique_ptr<olt_server, ServerRelease>;

Server create_server(const Access &access, Console &console) {
  olt_server_options options = {};
  options.run_dir = access.run_dir.c_str();
  options.group = access.group.empty() ? nullptr : access.group.c_str();
  options.pending_limit = access.pending_limit;
  options.context = &console;
  options.on_event = [](void *context, const char *line) {
    static_cast<Console *>(context)->warn(line);
  };
  char error[256] = "";
  Server server(olt_server_create(&options, error));
  if (!server) throw std::runtime_error(error);
  return server;
}

int fail(Console &console, const char *reason, int status) {
  console.warn(reason);
  return status;
}

}  // namespace

Console::Console(const std::string &program)
    : program_(program),
      output_(STDOUT_FILENO, program),
      errors_(STDERR_FILENO, program, kEventsPerSecond) {}

void Console::tell(std::string_view line) {
  output_.write(fmt::format("{}: {}", program_, line));
}

void Console::warn(std::string_view line) {
  errors_.write(fmt::format("{}: {}", program_, line));
}

std::optional<gid_t> Access::group_id() const {
  if (group.empty()) return std::nullopt;
  if (auto found = find_group(group)) return found;
  throw BadInput("--group " + group + ": is no group; expected the name or number of one");
}

CommandLine::CommandLine(const Console &console, const char *description)
    : app_(std::make_unique<CLI::App>(description, console.program())) {
  app_->set_help_flag(option::kHelp.name, option::kHelp.summary);
  app_->set_version_flag(option::kVersion.name, console.program() + " " + OLTMGMT_VERSION,
                         option::kVersion.summary);
}

CommandLine::~CommandLine() = default;

void CommandLine::add(const Option &option, std::string &value) {
  app_->add_option(option.name, value, option.summary)->type_name(option.value);
}

void CommandLine::add(const Option &option, std::vector<std::string> &values) {
  app_->add_option(option.name, values, option.summary)
      ->type_name(option.value)
      ->allow_extra_args(false);
}

void CommandLine::add(const Option &option, bool &flag) {
  app_->add_flag(option.name, flag, option.summary);
}

void CommandLine::add_limit(const Option &option, uint32_t &value) {
  app_->add_option(option.name, value, option.summary)->type_name(option.value)->check(check_limit);
}

void CommandLine::add_limit(const Option &option, uint64_t &value, uint64_t min) {
  auto check = [min](const std::string &text) {
    if (is_number(text, min)) return std::string();
    return fmt::format("'{}' given; expected a number of bytes, at least {}", text, min);
  };
  app_->add_option(option.name, value, option.summary)->type_name(option.value)->check(check);
}

void CommandLine::add(Access &access) {
  add(option::kRunDir, access.run_dir);
  add(option::kGroup, access.group);
  add_limit(option::kPendingLimit, access.pending_limit);
  access_ = &access;
}

void CommandLine::add_words(const char *name, const char *summary,
                            std::vector<std::string> &words) {
  app_->add_option(name, words, summary)->required()->type_name("");
}

void CommandLine::parse(int argc, char **argv) {
  try {
    app_->parse(argc, argv);
  } catch (const CLI::Success &request) {
    app_->exit(request);
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("cannot write the output");
    std::exit(0);
  } catch (const CLI::ParseError &error) {
    throw BadInput(error.what());
  }
  if (access_->run_dir.empty()) access_->run_dir = default_run_dir();
}

void serve(const Access &access, std::string_view modules, Console &console,
           const std::function<void(olt_server *)> &add_modules) {
  Server server = create_server(access, console);
  StopOnSignals stopping(server.get());
  add_modules(server.get());
  console.tell(fmt::format("serving modules {} in {}", modules, access.run_dir));
  char error[256] = "";
  if (olt_server_run(server.get(), error) != 0) throw std::runtime_error(error);
}

int run_program(const char *name, const std::function<void(Console &)> &body) {
  fill_standard_streams();
  // A file size limit, or a reader that went away, fails the write and does not end the program.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  Console console(name);
  try {
    body(console);
    return 0;
  } catch (const BadInput &error) {
    return fail(console, error.what(), kWrongUsage);
  } catch (const std::exception &error) {
    return fail(console, error.what(), kFailed);
  }
}

}  // namespace olt::serving
