#include "agent/poller.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "agent/value.h"

namespace olt::agent {

namespace {

std::optional<size_t> find(const Table &table, std::string_view column) {
  auto found = std::find_if(table.columns.begin(), table.columns.end(),
                            [column](const Column &one) { return one.name == column; });
  if (found == table.columns.end()) return std::nullopt;
  return static_cast<size_t>(found - table.columns.begin());
}

/// The events of values that have these names.
std::map<int64_t, Event> by_label(const std::vector<Table> &tables, std::string_view column,
                                  const std::map<std::string_view, Event> &events) {
  std::map<int64_t, Event> by_value;
  for (const Table &table : tables) {
    auto place = find(table, column);
    if (!place) continue;
    for (const Label &label : table.columns[*place].labels) {
      auto event = events.find(label.name);
      if (event != events.end()) by_value.insert({label.value, event->second});
    }
  }
  return by_value;
}

}  // namespace

Poller::Poller(const std::vector<Table> &tables, const catalog::Layout &layout,
               std::chrono::milliseconds pace)
    : pace_(pace) {
  watch(
      tables, "oltOnuState", "oltOnuSeconds",
      by_label(tables, "oltOnuState",
               {{"up", Event::kOnuUp}, {"away", Event::kOnuAway}, {"blocked", Event::kOnuBlocked}}),
      16);
  watch(tables, "oltBasicPortLinkState", "",
        by_label(tables, "oltBasicPortLinkState",
                 {{"up", Event::kPortUp}, {"down", Event::kPortDown}}),
        2);
  if (layout.olt_update()) {
    watch(tables, "oltUpdateProgress", "",
          {{layout.olt_update()->complete, Event::kUpdateEnded},
           {layout.olt_update()->failed, Event::kUpdateEnded}},
          1);
  }
  watch_other_modules(tables);
}

void Poller::watch(const std::vector<Table> &tables, const char *column, const char *seconds,
                   const std::map<int64_t, Event> &events, unsigned share) {
  for (const Table &table : tables) {
    auto place = find(table, column);
    if (!place || events.empty()) continue;
    turns_.insert(turns_.end(), share, cursors_.size());
    cursors_.push_back({&table, *place, find(table, seconds), events});
  }
}

void Poller::watch_other_modules(const std::vector<Table> &tables) {
  for (const Table &table : tables) {
    const uint8_t module = table.reader->address.module;
    bool is_watched = std::any_of(cursors_.begin(), cursors_.end(), [module](const Cursor &cursor) {
      return cursor.table->reader->address.module == module;
    });
    if (is_watched) continue;
    turns_.push_back(cursors_.size());
    cursors_.push_back({.table = &table});
  }
}

std::optional<Task> Poller::next(Clock::time_point now) {
  if (is_waiting_ || cursors_.empty() || now - last_ < pace_) return std::nullopt;
  is_waiting_ = true;
  last_ = now;
  const Cursor &cursor = cursors_[turns_[turn_]];
  if (cursor.events.empty()) {
    // Any row will do, whether or not there is one.
    Key row(cursor.table->index_length(), cursor.table->is_scalar ? 0 : 1);
    return Task{.table = cursor.table, .key = std::move(row), .is_fresh = true};
  }
  return Task{
      .table = cursor.table, .selection = Selection::kNext, .key = cursor.at, .is_fresh = true};
}

std::optional<Change> Poller::take(const Task &task) {
  is_waiting_ = false;
  Cursor &cursor = cursors_[turns_[turn_]];
  turn_ = (turn_ + 1) % turns_.size();
  if (task.answer.outcome == Outcome::kFailed || cursor.events.empty()) return std::nullopt;
  if (task.answer.outcome == Outcome::kNone) {
    cursor.is_compared = true;
    cursor.at.clear();
    return std::nullopt;
  }
  cursor.at = task.answer.row.key;
  return compare(cursor, task.answer.row);
}

/// A row may have left its value and taken it again in between. Then it has had it for less time
/// than before, and not since it was read. The second condition is for clocks that are set back.
std::optional<Change> Poller::compare(Cursor &cursor, const Row &row) {
  State now{value_of(cursor.table->columns[cursor.column], row.record).number, 0, last_};
  if (cursor.seconds) {
    now.seconds = value_of(cursor.table->columns[*cursor.seconds], row.record).number;
  }
  auto [known, is_new] = cursor.known.insert({row.key, now});
  State before = std::exchange(known->second, now);
  bool is_again =
      now.seconds < before.seconds && std::chrono::seconds(now.seconds) <= now.read - before.read;
  bool is_changed = is_new ? cursor.is_compared : before.value != now.value || is_again;
  auto event = cursor.events.find(now.value);
  if (!is_changed || event == cursor.events.end()) return std::nullopt;
  return Change{event->second, cursor.table, cursor.column, row};
}

void Poller::forget_times() {
  for (Cursor &cursor : cursors_) {
    for (auto &[key, state] : cursor.known) state.seconds = 0;
  }
}

}  // namespace olt::agent
