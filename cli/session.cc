#include "cli/session.h"

#include <optional>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "base/text.h"
#include "cli/box/configuration.h"
#include "cli/box/flash_progress.h"
#include "cli/call/call.h"
#include "cli/call/exchanges.h"
#include "cli/call/result_text.h"
#include "cli/confirmation.h"
#include "cli/input/argument_parser.h"
#include "cli/input/present_values.h"
#include "cli/layout/layouts.h"
#include "cli/output/listing_reader.h"
#include "cli/text/error.h"
#include "cli/text/file.h"
#include "cli/text/question.h"
#include "cli/text/words.h"
#include "cli/update/display.h"
#include "cli/walk/walk.h"

namespace olt::cli {

using catalog::Operation;
using nlohmann::ordered_json;

namespace {

/// What a module that refused bytes of any length expected of them, for the end of an error line.
std::string expected_streams(const Result &result) {
  if (take_apart(result.reason).transport) return "";
  for (const catalog::Argument &argument : result.operation.arguments()) {
    if (argument.kind != catalog::Kind::kStream || argument.fields.empty()) continue;
    std::vector<std::string_view> names;
    for (const catalog::Field &field : argument.fields) names.emplace_back(field.name);
    return fmt::format("; expected {} to hold {}", argument.name, fmt::join(names, ", "));
  }
  return "";
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

Session::Session(const Options &options)
    : options_(options), box_(options.box), formatter_(make_formatter(options.format)) {
  watch_exchanges(false);
}

const catalog::Layout &Session::layout() {
  if (layout_ == nullptr) {
    layout_ = layout_named(options_.layout);
    if (options_.trace) watch_exchanges(true, catalog::wire_secrets(layout_->families()));
  }
  return *layout_;
}

Session::Consent Session::consent_in(std::vector<std::string> &words) const {
  Consent consent{options_.yes, options_.zero};
  if (std::erase(words, "--yes") > 0) consent.yes = true;
  if (std::erase(words, "--zero") > 0) consent.zero = true;
  return consent;
}

std::optional<Changes> Session::prepare(Call &call, const Consent &consent) {
  const Operation &operation = call.operation();
  bool asks = !options_.script && can_confirm();
  if (!consent.zero) require_all_fields(call);
  if (operation.destructive && asks && !consent.yes) confirm_act(operation);
  if (operation.address.sends()) {
    box_.open();
  } else {
    box_.open_flash(operation.name);
  }
  if (!operation.sets_present() || consent.zero) return std::nullopt;
  std::optional<SetBytes> set = keep_present_values(call, layout());
  if (!set) return std::nullopt;
  Changes changes = changes_of(call, set->place, set->before, options_.detail);
  if (asks) confirm_changes(operation, changes, consent.yes);
  return changes;
}

bool Session::fell_back(const Result &result) {
  const catalog::Fallback &fallback = result.operation.fallback;
  if (fallback.text == nullptr || result.failed()) return false;
  const auto &value = std::get<NamedValue>(result.outputs.front().content);
  if (value.text() != fallback.text) return false;
  std::vector<std::string> probe = split_words(fallback.probe);
  Call call(*layout().find(probe[0]));
  read_arguments(call, std::span(probe).subspan(1));
  return !call.operation().succeeded(call.make());
}

void Session::run_operation(const Operation &operation, std::span<const std::string> given) {
  std::vector<std::string> words(given.begin(), given.end());
  Consent consent = consent_in(words);
  Call call(operation);
  read_arguments(call, words);
  std::optional<Changes> changes = prepare(call, consent);
  std::optional<FlashProgress> progress;
  if (!operation.address.sends()) progress.emplace(operation.name);
  int32_t code = call.make();
  progress.reset();
  Result result = result_of(call, code, options_.detail);
  result.changes = std::move(changes);
  result.is_fallback = fell_back(result);
  if (!result.failed()) write_files(call);
  std::optional<Error> unread;
  if (result.listing) {
    try {
      result.listing->text = read_listing(box_.listing_dir(), result.listing->name);
    } catch (const Error &error) {
      unread = error;
    }
  }
  print(formatter_->result(result));
  if (result.failed()) {
    fail("{} failed: {}{}{}", operation.name,
         describe_result(operation, code, result.reason, layout()), box_.advice(result.reason),
         expected_streams(result));
  }
  if (result.is_fallback) {
    fmt::print(stderr,
               "{}: the flash cannot be read, {} is the library's fallback; expected a device with "
               "a board record\n",
               operation.name, operation.fallback.text);
  }
  if (unread) throw Error(*unread);
}

void Session::run_walk(Query query) {
  Walk walk(box_, layout(), query.reader(), options_.detail);
  query.check(walk.columns(), options_.detail);
  std::vector<NamedValues> kept;
  bool has_rows = false;
  try {
    while (auto row = walk.next()) {
      if (!query.takes(*row)) continue;
      has_rows = true;
      if (query.sorts()) {
        kept.push_back(std::move(*row));
      } else {
        print(formatter_->row(walk.reader(), query.shown(*row)));
      }
    }
  } catch (const Error &) {
    if (has_rows) print_rows(walk.reader(), query, kept);
    throw;
  }
  print_rows(walk.reader(), query, kept);
}

/// Prints rows that had to be kept, and what the format prints at the end.
void Session::print_rows(const std::string &reader, const Query &query,
                         std::vector<NamedValues> &kept) {
  query.sort(kept);
  for (const NamedValues &row : kept) print(formatter_->row(reader, query.shown(row)));
  print(formatter_->end_of_rows());
}

void Session::run_watch(const WatchPlan &plan) {
  Watch(box_, layout(), options_.detail, options_.format).run(plan);
}

void Session::run_compare(ComparePlan plan) {
  plan.all = plan.all || options_.detail.all;
  plan.asks = plan.asks && !options_.yes && !options_.script && can_confirm();
  Compare(box_, layout(), options_.detail, options_.format).run(plan);
}

void Session::run_config_export(const std::string &path) {
  box_.open();
  std::string text = export_configuration(options_.detail.secrets);
  if (path.empty()) {
    print(text);
    return;
  }
  mode_t mask = options_.detail.secrets ? 0600 : 07777;
  if (std::error_code error = write_file(path, as_bytes(text), mask)) {
    fail("config export: cannot write {}: {}", printable(path), error.message());
  }
}

void Session::run_config_import(const std::string &path) {
  std::string text = read_configuration("config import", path);
  box_.open();
  ordered_json reply;
  try {
    reply = import_configuration(text, options_.box.adopt);
  } catch (const Error &error) {
    throw Error(error.status(), fmt::format("{}: {}", printable(path), error.what()));
  }
  reply.erase("import");
  print(formatter_->control("config_import", reply));
}

void Session::run_config_diff(const std::string &from, const std::string &to) {
  std::vector<Difference> differences;
  try {
    std::string first = from.empty() ? "" : read_configuration("config diff", from);
    std::string second = read_configuration("config diff", to);
    if (from.empty()) {
      box_.open();
      first = export_configuration(true);
    }
    differences = compare_configurations(first, second, options_.detail.secrets);
  } catch (const Error &error) {
    throw Error(kWrongUsage, error.what());
  }
  if (options_.format == Format::kJson) {
    print(formatter_->control("config_diff", differences_json(differences)));
  } else {
    print(differences_text(differences));
  }
  if (!differences.empty()) fail("config diff: {}", counted(differences.size(), "difference"));
}

void Session::run_update(const UpdateTarget &target, const std::string &path,
                         std::span<const std::string> fields) {
  Update update(target, layout(), path, fields);
  bool asks = !options_.yes && !options_.script && can_confirm();
  if (asks && !confirm(fmt::format("update {}: {} of {} replace the firmware. Go on?", target.name,
                                   counted(update.image().size(), "byte"), printable(path)))) {
    fail("update {}: not confirmed, nothing was sent; expected y, or --yes", target.name);
  }
  box_.open();
  std::unique_ptr<UpdateDisplay> display =
      make_update_display(options_.format, target.name, update.image().size());
  try {
    update.run(box_, *display);
  } catch (const Error &error) {
    display->failed(error, update.sent());
    throw;
  }
  display->complete();
}

void Session::run_control(const ControlRequest &request) {
  layout();  // before the first exchange, which may be traced
  box_.open();
  print(formatter_->control(request["command"], ask_box(request)));
}

}  // namespace olt::cli
