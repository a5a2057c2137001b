#include "box/watch/event_log.h"

#include "base/text.h"

namespace olt::box {

namespace {

constexpr size_t kCapacity = 256;
constexpr size_t kMaxText = 200;

}  // namespace

std::string_view level_name(Level level) {
  static constexpr std::string_view kNames[] = {"emergency", "alert",  "critical",      "error",
                                                "warning",   "notice", "informational", "debug"};
  return kNames[static_cast<size_t>(level)];
}

void EventLog::record(Level level, uint32_t module, std::string_view text) {
  if (events_.size() == kCapacity) events_.pop_front();
  events_.push_back({clock_(), level, module, printable_ascii(text).substr(0, kMaxText)});
}

Json EventLog::to_json() const {
  Json list = Json::array();
  for (const Event &event : events_) {
    auto time = std::chrono::floor<std::chrono::seconds>(event.time.time_since_epoch());
    list.push_back({{"time", static_cast<uint64_t>(time.count())},
                    {"level", static_cast<uint8_t>(event.level)},
                    {"module", event.module},
                    {"text", event.text}});
  }
  return list;
}

void EventLog::from_json(const Json &value, const std::string &place) {
  std::deque<Event> events;
  for_each_element(value, place, [&](const Json &element, const std::string &at) {
    ObjectReader reader(element, at);
    std::chrono::seconds time(reader.number("time", {0, UINT32_MAX}));
    auto level = static_cast<Level>(reader.number("level", {0, 7}));
    auto module = static_cast<uint32_t>(reader.number("module", kAnyU32));
    events.push_back({TimePoint(time), level, module, printable_ascii(reader.text("text"))});
    reader.finish();
  });
  while (events.size() > kCapacity) events.pop_front();
  events_ = std::move(events);
}

}  // namespace olt::box
