#include "cli/commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "base/bad_input.h"
#include "base/table.h"
#include "base/text.h"
#include "capture/reader.h"
#include "catalog/catalog.h"
#include "cli/capture_command.h"
#include "cli/catalog_json.h"
#include "cli/compare_command.h"
#include "cli/completion.h"
#include "cli/dissector/dissector.h"
#include "cli/layout/layouts.h"
#include "cli/layout/writer.h"
#include "cli/manual.h"
#include "cli/output/format.h"
#include "cli/search.h"
#include "cli/show/show.h"
#include "cli/text/error.h"
#include "cli/text/file.h"
#include "cli/text/items.h"
#include "cli/text/number_text.h"
#include "cli/walk/readers.h"
#include "cli/watch_command.h"

namespace olt::cli {

using catalog::Layout;
using catalog::Operation;
using nlohmann::ordered_json;

namespace {

/// Where summaries begin after "oltctl ".
constexpr size_t kSummaryColumn = 25;

using Arguments = std::span<const std::string>;
using Words = std::vector<std::string>;

/// The words that describe a fault, as the box takes them.
struct FaultWord {
  const char *name;
  const char *value;
  const char *summary;
};
constexpr const char *kFaultActions = "status|silence|drop";
constexpr FaultWord kFaultWords[] = {
    {"type", "TYPE|OPERATION", "the message type of the requests; must be given"},
    {"module", "N", "their module; any when left out"},
    {"status", "N", "the status to answer with"},
    {"delay_ms", "N", "milliseconds to wait before the answer"},
    {"action", kFaultActions, "silence never answers, drop closes the connection"},
    {"from", "N", "the first such request that it affects; 1 when left out"},
    {"count", "N", "how many it affects; 0, as when left out: all that follow"},
};

/// The word after the command's name, if any; there may be one.
std::string only_word(Arguments words) {
  if (words.size() > 2) {
    wrong_usage("{}: '{}' is one argument too many; expected at most one", words[0],
                printable(words[2]));
  }
  return words.size() == 2 ? words[1] : "";
}

// list, help, shell, completion

void run_list(Session &session, Arguments words) {
  std::string word = only_word(words);
  print(session.wants_json() ? json_line(catalog_json(word, session.layout())) : list_text(word));
}

void run_help(Session &session, Arguments words) {
  std::string name = only_word(words);
  print(session.wants_json() ? json_line(help_json(name, session.layout()))
                             : help_text(name, session.layout()));
}

Words words_of_help(Arguments words) {
  return words.size() == 1 ? first_words(commands()) : Words{};
}

void run_shell_within(Session & /*session*/, Arguments /*words*/) {
  wrong_usage("shell: not possible here; expected the command line 'oltctl shell', alone");
}

std::string details_of_shell() {
  return "  Commands are those of the command line, without 'oltctl' and without options.\n"
         "  Keys:\n"
         "    Tab      completes operations, commands, arguments, values and @FILE\n"
         "    ?        at the beginning of a word: what may come next; in the first word: what\n"
         "             begins like it; in quotes and within other words a plain character\n"
         "    Up       recalls an earlier line\n"
         "    Ctrl-C   drops the line, or ends the command that runs\n"
         "  Output that is longer than the screen is shown by $PAGER, else by less.\n";
}

void run_completion(Session & /*session*/, Arguments words) {
  std::string shell = only_word(words);
  const char *script = completion_script(shell);
  if (script == nullptr) {
    wrong_usage("completion: '{}' given; expected bash, zsh or fish", printable(shell));
  }
  print(script);
}

Words words_of_completion(Arguments words) {
  return words.size() == 1 ? Words{"bash", "zsh", "fish"} : Words{};
}

// walk

ordered_json readers_json() {
  ordered_json list = ordered_json::array();
  for (const Reader &reader : readers()) {
    list.push_back({{"name", reader.name},
                    {"short_name", reader.short_name},
                    {"summary", catalog::find(reader.name)->summary}});
  }
  return {{"version", kJsonVersion}, {"readers", list}};
}

void run_walk(Session &session, Arguments words) {
  Query query(words.subspan(1));
  if (!query.reader().empty()) {
    session.run_walk(std::move(query));
  } else {
    print(session.wants_json() ? json_line(readers_json()) : help_text("walk"));
  }
}

Words words_of_walk(Arguments words) {
  return words.size() == 1 ? reader_names() : Words{};
}

std::string details_of_walk() {
  return "  Names the readers when it is given none. COLUMN=VALUE keeps the rows that have the\n"
         "  value.\n" +
         options_text(Query::options()) +
         "  Example: walk onus interface=2 state=up --columns onu,mac --sort mac\n" +
         readers_text();
}

// layout

/// Where a layout is, or why it cannot be used.
std::string place_of(const FoundLayout &layout) {
  if (layout.path.empty()) return "built in";
  return printable(layout.error.empty() ? layout.path : layout.error);
}

void print_layouts(Session &session) {
  std::vector<TableRow> table = {{"name", "place"}};
  ordered_json list = ordered_json::array();
  for (const FoundLayout &layout : found_layouts()) {
    table.push_back({printable(layout.name), place_of(layout)});
    list.push_back({{"name", layout.name},
                    {"file", layout.path.empty() ? ordered_json() : ordered_json(layout.path)},
                    {"error", layout.error.empty() ? ordered_json() : ordered_json(layout.error)}});
  }
  print(session.wants_json() ? json_line({{"version", kJsonVersion}, {"layouts", list}})
                             : table_text(table));
}

void run_layout(Session &session, Arguments words) {
  std::string verb = words.size() > 1 ? words[1] : "";
  Arguments rest = words.subspan(std::min<size_t>(2, words.size()));
  size_t max = verb == "list" ? 0 : 1;
  if (rest.size() > max) {
    wrong_usage("layout {}: '{}' is one argument too many; expected {}", printable(verb),
                printable(rest[max]), max == 0 ? "none" : "at most one");
  }
  if (verb == "list") {
    print_layouts(session);
  } else if (verb == "check") {
    if (rest.empty()) wrong_usage("layout check: no file is given; expected one");
    print(fmt::format("{}: the layout {}\n", printable(rest[0]), read_layout(rest[0]).name()));
  } else if (verb == "show") {
    print(layout_text(rest.empty() ? session.layout() : *layout_named(rest[0])));
  } else {
    wrong_usage("layout: '{}' given; expected list, check or show", printable(verb));
  }
}

Words words_of_layout(Arguments words) {
  if (words.size() == 1) return {"list", "check", "show"};
  if (words.size() == 2 && words[1] == "check") return {kAnyFile};
  return words.size() == 2 && words[1] == "show" ? Words{"box", "none"} : Words{};
}

std::string details_of_layout() {
  return "  A layout says what the bytes of records, statuses and tables mean. --layout or the\n"
         "  environment variable OLT_LAYOUT chooses one: box, none, a name that 'layout list' "
         "shows,\n"
         "  or a file. 'layout show' prints it as such a file, the one in use without a name.\n"
         "  Example: layout show box\n";
}

// show

void run_show(Session &session, Arguments words) {
  if (words.size() < 2) wrong_usage("show: no file is given; expected a capture");
  SelectedExchanges shown = selected_exchanges("show", words.subspan(2), session.layout());
  try {
    capture::Reader reader = capture::read_capture(words[1]);
    show_capture(reader, shown, session.layout(), session.wants_json(), print);
  } catch (const BadInput &error) {
    fail("{}", error.what());
  }
}

std::string details_of_show() {
  return "  FILE is a capture. Of its exchanges, it prints those that fit all of\n"
         "  operation=NAME, module=N, status=N or status=failed, from=TIME and to=TIME, with times "
         "as\n"
         "  2026-01-31T23:59:59Z.\n"
         "  Example: show 1234.pcapng operation=get_olt_mac status=failed\n";
}

Words words_of_show(Arguments words) {
  return words.size() == 1 ? Words{kAnyFile} : names_of_filters();
}

// dissector

void run_dissector(Session &session, Arguments words) {
  std::string path = only_word(words);
  std::string script = dissector_of(session.layout());
  if (path.empty()) return print(script);
  if (std::error_code error = write_file(path, as_bytes(script)))
    fail("dissector: cannot write {}: {}", printable(path), error.message());
}

std::string details_of_dissector() {
  return "  Prints a Lua script with which Wireshark and tshark show captures, or writes it to "
         "FILE. It\n"
         "  has the fields of the layout in use.\n"
         "  Example: dissector oltmgmt.lua\n";
}

Words words_of_dissector(Arguments words) {
  return words.size() == 1 ? Words{kAnyFile} : Words{};
}

// fault, counters

std::optional<uint32_t> fault_id(const std::string &word) {
  if (word.empty()) return std::nullopt;
  std::optional<uint32_t> id = number_in(word, UINT32_MAX);
  if (!id) {
    wrong_usage("fault clear: '{}' given; expected a number from 0 to {}", printable(word),
                UINT32_MAX);
  }
  return id;
}

void run_fault(Session &session, Arguments words) {
  std::string verb = words.size() > 1 ? words[1] : "";
  Arguments rest = words.subspan(std::min<size_t>(2, words.size()));
  size_t max = verb == "clear" ? 1 : 0;
  if ((verb == "list" || verb == "clear") && rest.size() > max) {
    wrong_usage("fault {}: '{}' is one argument too many; expected {}", verb, printable(rest[max]),
                max == 0 ? "none" : "at most one");
  }
  if (verb == "add") {
    session.run_control(fault_add_request(rest));
  } else if (verb == "list") {
    session.run_control(fault_list_request());
  } else if (verb == "clear") {
    session.run_control(fault_clear_request(fault_id(rest.empty() ? "" : rest[0])));
  } else {
    wrong_usage("fault: '{}' given; expected add, list or clear", printable(verb));
  }
}

Words words_of_fault(Arguments words) {
  if (words.size() == 1) return {"add", "list", "clear"};
  if (words[1] != "add") return {};
  Words names;
  for (const FaultWord &word : kFaultWords) names.push_back(fmt::format("{}=", word.name));
  for (const Item &action : split_items(kFaultActions, '|')) {
    names.push_back(fmt::format("action={}", action.text));
  }
  for (const catalog::Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) {
      if (operation.address.sends()) names.push_back(fmt::format("type={}", operation.name));
    }
  }
  return names;
}

std::string details_of_fault() {
  std::string text = "  'fault clear' alone ends all. 'fault add' takes:\n";
  for (const FaultWord &word : kFaultWords) {
    text +=
        fmt::format("    {:<26}  {}\n", fmt::format("{}={}", word.name, word.value), word.summary);
  }
  return text + "  Example: fault add type=get_olt_mac status=5 count=1\n";
}

void run_counters(Session &session, Arguments words) {
  if (words.size() > 1) {
    wrong_usage("counters: '{}' is one argument too many; expected none", printable(words[1]));
  }
  session.run_control(counters_request());
}

// config

void run_config(Session &session, Arguments words) {
  std::string verb = words.size() > 1 ? words[1] : "";
  Arguments files = words.subspan(std::min<size_t>(2, words.size()));
  auto require = [&](size_t min, size_t max, const char *expected) {
    if (files.size() >= min && files.size() <= max) return;
    wrong_usage("config {}: {} given; expected {}", verb, counted(files.size(), "file"), expected);
  };
  if (verb == "export") {
    require(0, 1, "at most one");
    session.run_config_export(files.empty() ? "" : files[0]);
  } else if (verb == "import") {
    require(1, 1, "one, or - for standard input");
    session.run_config_import(files[0]);
  } else if (verb == "diff") {
    require(1, 2, "one to compare with the box, or two");
    session.run_config_diff(files.size() == 2 ? files[0] : "", files.back());
  } else {
    wrong_usage("config: '{}' given; expected export, import or diff", printable(verb));
  }
}

Words words_of_config(Arguments words) {
  if (words.size() == 1) return {"export", "import", "diff"};
  size_t max = words[1] == "diff" ? 3 : 2;
  return words.size() <= max ? Words{kAnyFile} : Words{};
}

std::string details_of_config() {
  return "  'export' writes the running configuration as JSON, with ******** for secrets unless\n"
         "  --show-secrets is given. 'import' replaces the configuration whole or not at all; a "
         "masked\n"
         "  secret stays as it is in the box, and --adopt keeps what fits of another topology's.\n"
         "  'diff' compares the box with a file, or two files; it exits with status 1 when they\n"
         "  differ, with 2 when it cannot compare.\n"
         "  Example: config export site.json\n";
}

// update

const UpdateTarget &target_named(const std::string &name) {
  for (const UpdateTarget &target : update_targets()) {
    if (target.name == name) return target;
  }
  wrong_usage("update: '{}' given; expected olt or onu", printable(name));
}

void run_update(Session &session, Arguments words) {
  const UpdateTarget &target = target_named(words.size() > 1 ? words[1] : "");
  if (words.size() < 3) wrong_usage("update {}: no file is given; expected one", target.name);
  session.run_update(target, words[2], words.subspan(3));
}

Words words_of_update(Arguments words) {
  if (words.size() == 1) return {"olt", "onu"};
  return words.size() == 2 ? Words{kAnyFile} : Words{};
}

std::string details_of_update() {
  return "  Sends the image in pieces, shows how far it is, and follows the update to its end. "
         "Asks "
         "first\n"
         "  at a terminal unless --yes is given. Ctrl-C ends it between two pieces. FIELD=VALUE "
         "sets a\n"
         "  field in the head of each piece where the layout has one.\n"
         "  Example: --yes update olt image.bin\n";
}

constexpr Command kCommands[] = {
    {"list", "list [WORD]", "Lists the operations, or those about WORD", run_list},
    {"help", "help [OPERATION]", "Says what an operation takes, with an example", run_help,
     words_of_help},
    {"shell", "shell", "Takes operations from the terminal, one after the other", run_shell_within,
     nullptr, details_of_shell},
    {"fault", "fault add NAME=VALUE...\nfault list\nfault clear [ID]",
     "Has the box refuse a request, answer late or not at all", run_fault, words_of_fault,
     details_of_fault},
    {"walk", "walk [READER] [COLUMN=VALUE...] [OPTION...]", "Prints the rows of a table", run_walk,
     words_of_walk, details_of_walk, Query::options},
    {"watch", "watch OPERATION [ARGUMENT...] [+ OPERATION...] [OPTION...]",
     "Calls operations again and again, and shows what changes", run_watch, words_of_watch,
     details_of_watch, options_of_watch},
    {"config", "config export [FILE]\nconfig import FILE\nconfig diff [FILE] FILE",
     "Writes, reads and compares the box's configuration as JSON", run_config, words_of_config,
     details_of_config},
    {"layout", "layout list\nlayout check FILE\nlayout show [LAYOUT]",
     "Lists, checks and shows layouts: what bytes mean", run_layout, words_of_layout,
     details_of_layout},
    {"update", "update olt FILE [FIELD=VALUE...]\nupdate onu FILE [FIELD=VALUE...]",
     "Updates the firmware of the OLT or of ONUs from a file", run_update, words_of_update,
     details_of_update},
    {"show", "show FILE [NAME=VALUE...]", "Prints a capture of exchanges", run_show, words_of_show,
     details_of_show},
    {"capture", "capture FILE [NAME=VALUE...] [OPTION...]",
     "Records the exchanges of a running box", run_capture, words_of_capture, details_of_capture,
     options_of_capture},
    {"compare", "compare FILE [NAME=VALUE...] [OPTION...]",
     "Compares what a capture recorded with what the box answers", run_compare, words_of_compare,
     details_of_compare, options_of_compare},
    {"dissector", "dissector [FILE]", "Writes a dissector of captures for Wireshark", run_dissector,
     words_of_dissector, details_of_dissector},
    {"counters", "counters", "Shows what has happened in the box", run_counters},
    {"completion", "completion bash\ncompletion zsh\ncompletion fish",
     "Prints the completion for a shell: eval \"$(oltctl completion bash)\"", run_completion,
     words_of_completion},
};

ordered_json json_of(const Command &command) {
  ordered_json usage = ordered_json::array();
  for (const Item &form : split_items(command.usage, '\n')) usage.push_back(form.text);
  return {
      {"name", command.name},
      {"usage", usage},
      {"summary", command.summary},
      {"details", command.details == nullptr ? ordered_json() : ordered_json(command.details())}};
}

ordered_json commands_json() {
  ordered_json list = ordered_json::array();
  for (const Command &command : kCommands) list.push_back(json_of(command));
  return {{"version", kJsonVersion}, {"commands", list}};
}

std::string help_of(const Command &command) {
  return fmt::format("{}\n  {}\n{}", command.usage, command.summary,
                     command.details == nullptr ? "" : command.details());
}

std::string overview() {
  std::string text =
      "OPERATION [ARGUMENT...]\n"
      "  Calls an operation; 'list' names them. Arguments are given in order or as NAME=VALUE.\n"
      "  Example: get_vlan_interface_file_byinteface slot=1 port=1\n";
  for (const Command &command : kCommands) {
    text += fmt::format("{}\n  {}\n", command.usage, command.summary);
  }
  return text;
}

}  // namespace

std::span<const Command> commands() {
  return kCommands;
}

const Command *find_command(const std::string &name) {
  for (const Command &command : kCommands) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

void run_line(Session &session, std::span<const std::string> words) {
  if (const Command *command = find_command(words[0])) {
    command->run(session, words);
  } else {
    session.run_operation(operation_named(words[0], session.layout()), words.subspan(1));
  }
}

const Operation &operation_named(const std::string &name, const Layout &layout) {
  if (const Operation *operation = layout.find(name)) return *operation;
  if (name.starts_with("--")) {
    wrong_usage("oltctl: {} is an option; expected it where oltctl is started, and a command here",
                printable(name));
  }
  Words all = first_words(commands());
  Words names = near_names(name, all);
  if (names.empty() && !is_listed(name)) names = names_with_parts(name, all);
  if (!names.empty()) {
    wrong_usage("oltctl: there is no operation '{}'; did you mean {}?", printable(name),
                fmt::join(names, " or "));
  }
  if (is_listed(name)) {
    wrong_usage("oltctl: there is no operation '{0}'; 'oltctl list {0}' shows those about it",
                printable(name));
  }
  wrong_usage("oltctl: there is no operation '{}'; 'oltctl list' shows all of them",
              printable(name));
}

std::string help_text(const std::string &name, const Layout &layout) {
  if (name.empty()) return overview();
  if (const Command *command = find_command(name)) return help_of(*command);
  return help_of(operation_named(name, layout));
}

std::string shell_help_text() {
  return overview() +
         "exit, quit\n"
         "  Ends the shell, as Ctrl-D does on an empty line\n" +
         details_of_shell();
}

ordered_json help_json(const std::string &name, const Layout &layout) {
  if (name.empty()) return commands_json();
  ordered_json object = {{"version", kJsonVersion}};
  const Command *command = find_command(name);
  object.update(command != nullptr ? json_of(*command)
                                   : operation_json(operation_named(name, layout), layout));
  return object;
}

std::string command_summaries() {
  std::string text;
  for (const Command &command : kCommands) {
    std::string usage = command.usage;
    usage = usage.substr(0, usage.find('\n'));
    if (usage.size() < kSummaryColumn) {
      text += fmt::format("  oltctl {:<{}}{}\n", usage, kSummaryColumn, command.summary);
    } else {
      text += fmt::format("  oltctl {}\n         {:<{}}{}\n", usage, "", kSummaryColumn,
                          command.summary);
    }
  }
  return text;
}

}  // namespace olt::cli
