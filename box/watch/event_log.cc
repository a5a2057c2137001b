#include "box/watch/event_log.h"

#include "base/text.h"

namespace olt::box {

namespace {

constexpr size_t kCapacity = 256;
constexpr size_t kMaxEventText = 200;

}  // namespace

std::string_view level_name(Level level) {
  static constexpr std::string_view kNames[] = {"emergency", "alert",  "critical",      "error",
                                                "warning",   "notice", "informational", "debug"};
  return kNames[static_cast<size_t>(level)];
}

void EventLog::record(Level level, uint32_t module, std::string_view text) {
  if (events_.size() == kCapacity) events_.pop_front();
  events_.push_back({clock_(), level, module, printable_ascii(text).substr(0, kMaxEventText)});
}

void EventLog::describe(Archive &archive) {
  archive.list("events", events_, kCapacity, [&](Event &event) {
    auto level = static_cast<uint32_t>(event.level);
    archive.moment("time", event.time);
    archive.number("level", level, {0, static_cast<uint64_t>(Level::kDebug)});
    archive.number("module", event.module);
    archive.text("text", event.text, kMaxEventText);
    event.level = static_cast<Level>(level);
    event.text = printable_ascii(event.text);
  });
}

}  // namespace olt::box
