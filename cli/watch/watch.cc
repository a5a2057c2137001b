#include "cli/watch/watch.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>
#include <variant>

#include "base/clock.h"
#include "base/table.h"
#include "cli/box/end_signals.h"
#include "cli/call/result_text.h"
#include "cli/output/listing_reader.h"
#include "cli/text/error.h"
#include "cli/text/file.h"

namespace olt::cli {

using catalog::FieldKind;
using nlohmann::ordered_json;
using std::chrono::steady_clock;

namespace {

constexpr auto kLongestSleep = std::chrono::milliseconds(50);

/// @return whether the moment came before a signal. Only in the shell are signals left to wait.
bool sleep_until(steady_clock::time_point moment) {
  for (;;) {
    if (has_pending_end()) return false;
    steady_clock::time_point now = steady_clock::now();
    if (now >= moment) return true;
    std::this_thread::sleep_for(std::min<steady_clock::duration>(moment - now, kLongestSleep));
  }
}

/// A listing has another name each time.
bool names_listing(const Output &output) {
  const auto *value = std::get_if<NamedValue>(&output.content);
  return value != nullptr && value->field.kind == FieldKind::kListing;
}

FrameLine plain_line(std::string text) {
  return {{{std::move(text), false}}, false};
}

}  // namespace

Watch::Watch(Access &box, const catalog::Layout &layout, const Detail &detail, Format format)
    : box_(box), layout_(layout), detail_(detail), format_(format) {}

void Watch::run(const WatchPlan &plan) {
  open(plan);
  HeldSignals held;
  bool draws = format_ == Format::kText && isatty(STDOUT_FILENO) != 0;
  std::optional<Screen> screen;
  if (draws) screen.emplace();
  std::vector<History> histories(plan.items.size());
  std::string error;
  for (uint64_t round = 1;; ++round) {
    steady_clock::time_point start = steady_clock::now();
    error.clear();
    std::vector<FrameLine> frame = {plain_line(
        fmt::format("every {} s  round {}  {}", std::chrono::duration<double>(plan.every).count(),
                    round, utc_seconds(std::chrono::system_clock::now())))};
    for (size_t i = 0; i < plan.items.size(); ++i) {
      Seen seen = call(*plan.items[i].call, histories[i]);
      if (!seen.error.empty()) error = seen.error;
      if (draws) {
        add_lines(frame, plan.items[i].title, seen, histories[i]);
      } else {
        print(json_of(seen, round, histories[i]));
      }
    }
    if (draws) screen->show(frame);
    if (round == plan.rounds || !sleep_until(start + plan.every)) break;
  }
  if (!error.empty()) throw Error(kFailed, error);
}

void Watch::open(const WatchPlan &plan) {
  for (const WatchPlan::Item &item : plan.items) {
    const catalog::Operation &operation = item.call->operation();
    if (operation.address.sends()) {
      box_.open();
    } else {
      box_.open_flash(operation.name);
    }
  }
}

Watch::Seen Watch::call(const Call &prepared, History &history) {
  Call call(prepared);
  int32_t code = call.make();
  Seen seen = {result_of(call, code, detail_), "", "", {}};
  Result &result = seen.result;
  const catalog::Operation &operation = result.operation;
  if (result.failed()) {
    seen.error = fmt::format("{} failed: {}{}", operation.name,
                             describe_result(operation, code, result.reason, layout_),
                             box_.advice(result.reason));
  }
  if (result.listing) {
    try {
      result.listing->text = read_listing(box_.listing_dir(), result.listing->name);
    } catch (const Error &error) {
      seen.error = error.what();
    }
  }
  Result shown = result;
  std::erase_if(shown.outputs, names_listing);
  seen.content = text_->result(shown);
  seen.rates = history.rates.next(counters_of(result), steady_clock::now());
  return seen;
}

void Watch::add_lines(std::vector<FrameLine> &frame, const std::string &title, const Seen &seen,
                      History &history) {
  frame.push_back(plain_line(""));
  frame.push_back(plain_line(title));
  std::string text = seen.content;
  if (!seen.error.empty()) text += seen.error + '\n';
  for (FrameLine &line : history.changes.next(text)) frame.push_back(std::move(line));
  if (seen.rates.empty()) return;
  std::vector<TableRow> table = {{"counter", "per second"}};
  for (const Rate &rate : seen.rates) {
    table.push_back({rate.name, fmt::format("{:.1f}", rate.per_second)});
  }
  frame.push_back(plain_line(""));
  std::string lines = table_text(table);
  for (size_t begin = 0, end = 0; begin < lines.size(); begin = end + 1) {
    end = lines.find('\n', begin);
    frame.push_back(plain_line(lines.substr(begin, end - begin)));
  }
}

std::string Watch::json_of(const Seen &seen, uint64_t round, History &history) {
  ordered_json object = result_json(seen.result);
  object["error"] = seen.error.empty() ? ordered_json() : ordered_json(seen.error);
  object["round"] = round;
  object["time"] = utc_microseconds(std::chrono::system_clock::now());
  object["changed"] = history.content ? ordered_json(*history.content != seen.content)  //
                                      : ordered_json();
  object["rates"] = ordered_json::object();
  for (const Rate &rate : seen.rates) {
    object["rates"][rate.name] = std::round(rate.per_second * 10) / 10;
  }
  history.content = seen.content;
  return json_line(object);
}

}  // namespace olt::cli
