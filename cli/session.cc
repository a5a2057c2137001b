#include "cli/session.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "base/text.h"
#include "cli/argument_parser.h"
#include "cli/call.h"
#include "cli/completion.h"
#include "cli/control_client.h"
#include "cli/error.h"
#include "cli/exchanges.h"
#include "cli/file.h"
#include "cli/listing_reader.h"
#include "cli/manual.h"
#include "cli/printer.h"
#include "cli/result_text.h"
#include "cli/walk.h"

namespace olt::cli {

using catalog::Kind;
using catalog::Operation;

namespace {

void print(const std::string &text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    fail("oltctl: cannot write the output: {}", std::strerror(errno));
  }
}

std::string only_word(std::span<const std::string> words) {
  if (words.size() > 2) {
    wrong_usage("{}: '{}' is one argument too many; expected at most one", words[0],
                printable(words[2]));
  }
  return words.size() == 2 ? words[1] : "";
}

std::string completion_for(const std::string &shell) {
  if (shell != "bash") wrong_usage("completion: '{}' given; expected bash", printable(shell));
  return bash_completion();
}

/// The name of the listing that the call brought.
std::optional<std::string> named_listing(const Call &call) {
  for (size_t place = 0; place < call.operation().argument_count; ++place) {
    if (call.operation().arguments()[place].kind == Kind::kName) {
      return listing_name(call.bytes(place));
    }
  }
  return std::nullopt;
}

/// Writes the outputs for which a file was given.
void write_files(const Call &call) {
  for (size_t place = 0; place < call.operation().argument_count; ++place) {
    const std::string &path = call.file(place);
    if (path.empty()) continue;
    if (std::error_code error = write_file(path, call.bytes(place))) {
      fail("{}: cannot write {}: {}", call.operation().name, printable(path), error.message());
    }
  }
}

}  // namespace

Session::Session(const Options &options) : options_(options), box_(options) {
  watch_exchanges(options.trace);
}

void Session::run(std::span<const std::string> words) {
  const std::string &first = words[0];
  if (first == "list") {
    print(list_text(only_word(words)));
  } else if (first == "help") {
    print(help_text(only_word(words)));
  } else if (first == "completion") {
    print(completion_for(only_word(words)));
  } else if (first == "walk") {
    run_walk(only_word(words));
  } else if (first == "fault" || first == "counters") {
    run_control(words);
  } else if (first == "shell") {
    wrong_usage("shell: not possible here; expected the command line 'oltctl shell', alone");
  } else {
    run_operation(operation_named(first), words.subspan(1));
  }
}

void Session::run_operation(const Operation &operation, std::span<const std::string> words) {
  Call call(operation);
  read_arguments(call, words);
  if (operation.address.sends()) {
    box_.open();
  } else {
    box_.open_flash(operation.name);
  }
  Shown shown{call, call.make(), {}, options_.show_secrets};
  bool succeeded = operation.succeeded(shown.result);
  std::optional<Error> unread;
  if (succeeded) {
    write_files(call);
    try {
      if (auto name = named_listing(call)) shown.listing = read_listing(box_.listing_dir(), *name);
    } catch (const Error &error) {
      unread = error;
    }
  }
  if (options_.json) {
    print(json_line(as_json(shown)));
  } else if (succeeded) {
    print(as_text(shown));
  }
  if (!succeeded) {
    fail("{} failed: {}{}", operation.name, describe_result(operation, shown.result),
         box_.advice(shown.result));
  }
  if (unread) throw Error(*unread);
}

void Session::run_walk(const std::string &reader) {
  if (reader.empty()) {
    print(help_text("walk"));
    return;
  }
  Walk walk(box_, reader, options_.show_secrets);
  std::vector<Row> rows;
  try {
    while (auto row = walk.next()) {
      if (options_.json) {
        print(row_line(reader, *row));
      } else {
        rows.push_back(std::move(*row));
      }
    }
  } catch (const Error &) {
    if (!rows.empty()) print(rows_text(rows));
    throw;
  }
  if (!options_.json) print(rows_text(rows));
}

void Session::run_control(std::span<const std::string> words) {
  nlohmann::ordered_json request = control_request(words);
  box_.open();
  nlohmann::ordered_json reply = ask_box(request);
  print(options_.json ? json_line(control_json(request, reply)) : control_text(reply));
}

}  // namespace olt::cli
