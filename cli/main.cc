/// oltctl: the management operations on the command line.

#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>

#include "cli/error.h"
#include "cli/options.h"
#include "cli/script.h"
#include "cli/session.h"
#include "cli/shell.h"

namespace {

using olt::cli::Options;
using olt::cli::Session;

void run(Session &session, const Options &options) {
  if (options.script) {
    run_script(session, *options.script);
  } else if (options.words.size() == 1 && options.words[0] == "shell") {
    run_shell(session);
  } else {
    session.run(options.words);
  }
}

void run(const Options &options) {
  Session session(options);
  try {
    run(session, options);
  } catch (const olt::cli::Error &) {
    session.close();  // what earlier commands set is kept
    throw;
  }
  session.close();
}

}  // namespace

int main(int argc, char **argv) {
  // A reader that goes away must not end the program before the embedded box is kept.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  try {
    std::optional<Options> options = olt::cli::parse_options(argc, argv);
    if (options) run(*options);
    return olt::cli::kDone;
  } catch (const olt::cli::Error &error) {
    static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
    return error.status();
  } catch (const std::exception &error) {
    static_cast<void>(std::fprintf(stderr, "oltctl: %s\n", error.what()));
    return olt::cli::kFailed;
  }
}
