/// oltctl: the management operations on the command line.

#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>
#include <string_view>

#include "base/descriptor.h"
#include "cli/box/end_signals.h"
#include "cli/commands.h"
#include "cli/completion.h"
#include "cli/options.h"
#include "cli/script.h"
#include "cli/session.h"
#include "cli/shell.h"
#include "cli/text/error.h"
#include "cli/text/file.h"

namespace {

using olt::cli::EndSignals;
using olt::cli::Error;
using olt::cli::Options;
using olt::cli::Session;

void report(const Error &error) {
  static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
}

void keep(Session &session, void (Session::*step)()) {
  try {
    (session.*step)();
  } catch (const Error &error) {
    report(error);
  }
}

bool is_shell(const Options &options) {
  return !options.script && options.words.size() == 1 && options.words[0] == "shell";
}

/// Ends the program as it would have ended without the embedded box.
int end_without_reader() {
  static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
  static_cast<void>(std::raise(SIGPIPE));
  return olt::cli::kFailed;
}

void run(Session &session, const Options &options) {
  if (options.script) {
    run_script(session, *options.script, options.echo, options.keep_going);
  } else if (is_shell(options)) {
    run_shell(session);
  } else {
    run_line(session, options.words);
  }
}

void run(const Options &options) {
  Session session(options);
  std::optional<EndSignals> signals;  // the shell has its own
  if (!is_shell(options)) signals.emplace([&session] { keep(session, &Session::close_for_good); });
  try {
    run(session, options);
  } catch (...) {
    keep(session, &Session::close);  // what earlier commands set
    throw;
  }
  session.close();
}

}  // namespace

int main(int argc, char **argv) {
  olt::fill_standard_streams();
  // A reader that goes away, or a limit on the size of files, must not end the program before the
  // embedded box is kept.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  try {
    if (argc == 3 && std::string_view(argv[1]) == "__complete") {
      olt::cli::print(olt::cli::completion_answer(argv[2]));
      return olt::cli::kDone;
    }
    std::optional<Options> options =
        olt::cli::parse_options(argc, argv, olt::cli::command_summaries());
    if (options) run(*options);
    return olt::cli::kDone;
  } catch (const Error &error) {
    report(error);
    olt::cli::end_by_noted_signal();
    return error.status();
  } catch (const olt::cli::ReaderGone &) {
    return end_without_reader();
  } catch (const std::exception &error) {
    static_cast<void>(std::fprintf(stderr, "oltctl: %s\n", error.what()));
    return olt::cli::kFailed;
  }
}
