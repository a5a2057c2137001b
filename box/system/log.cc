// The log listing, and the settings of the log.

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "base/clock.h"
#include "box/system/families.h"

namespace olt::box {

namespace {

constexpr uint32_t kAllModules = 0;
constexpr auto kLastLevel = static_cast<uint32_t>(Level::kDebug);
/// Upper bound for the bytes of a row without the event's text.
constexpr size_t kRowBytes = 64;

struct LogSettings {
  uint32_t module;
  uint32_t size_kib = 1024;
  uint32_t level = static_cast<uint32_t>(Level::kInformational);
};

class SystemLog final : public Family {
 public:
  explicit SystemLog(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "system-log"; }

  std::vector<Message> messages() override {
    std::vector<Message> messages = {
        {kLogModule, 81, "log", exactly(4), on(this, &SystemLog::list)}};
    for (LogSettings *settings : {&log_, &main_}) {
      messages.push_back({settings->module, 82, "log-size", exactly(4),
                          [settings](const Request &request, Reply &) {
                            if (request.word() == 0) return Status::kBadValue;
                            settings->size_kib = request.word();
                            return Status::kOk;
                          }});
      messages.push_back({settings->module, 83, "log-level", exactly(4),
                          [settings](const Request &request, Reply &) {
                            if (request.word() > kLastLevel) return Status::kBadValue;
                            settings->level = request.word();
                            return Status::kOk;
                          }});
    }
    return messages;
  }

  void configuration(Archive &archive) override {
    for (auto [key, settings] : {std::pair("log", &log_), std::pair("main", &main_)}) {
      archive.object(key, [&archive, settings = settings] {
        archive.number("size_kib", settings->size_kib, {1, UINT32_MAX});
        archive.number("level", settings->level, {0, kLastLevel});
      });
    }
  }

  void restore_factory() override {
    log_ = {kLogModule};
    main_ = {kMainModule};
  }

  void describe_configuration(Report &report) const override {
    report.section("Log", {"Module", "Size in KiB", "Level"});
    for (const LogSettings &settings : {log_, main_}) {
      report.row(
          {fmt::to_string(settings.module), fmt::to_string(settings.size_kib),
           fmt::format("{} {}", settings.level, level_name(static_cast<Level>(settings.level)))});
    }
  }

  size_t footprint() const override {
    size_t bytes = sizeof *this;
    for (const Event &event : hardware_.events().events())
      bytes += sizeof event + event.text.size();
    return bytes;
  }

 private:
  Status list(const Request &request, Reply &reply) {
    uint32_t module = request.word();
    bool known = module == kAllModules ||
                 std::find(std::begin(kModules), std::end(kModules), module) != std::end(kModules);
    if (!known) return Status::kNotFound;
    Report report(module == kAllModules ? "Log of all modules"
                                        : fmt::format("Log of module {}", module));
    report.section(fmt::format("Level {} {} and more severe", log_.level,
                               level_name(static_cast<Level>(log_.level))),
                   {"Time", "Level", "Module", "Event"});
    for (const Event *event : newest(module)) {
      report.row({utc_seconds(event->time), std::string(level_name(event->level)),
                  fmt::to_string(event->module), event->text});
    }
    return hardware_.list_at_start("log", report.text(), reply);
  }

  /// The newest events of a module that fit the size of the log, oldest first.
  std::vector<const Event *> newest(uint32_t module) {
    const auto &events = hardware_.events().events();
    std::vector<const Event *> shown;
    uint64_t room = uint64_t{log_.size_kib} * 1024;
    for (size_t i = events.size(); i-- > 0;) {
      const Event &event = events[i];
      if (static_cast<uint32_t>(event.level) > log_.level) continue;
      if (module != kAllModules && event.module != module) continue;
      uint64_t row = kRowBytes + event.text.size();
      if (row > room) break;
      room -= row;
      shown.push_back(&event);
    }
    std::reverse(shown.begin(), shown.end());
    return shown;
  }

  Hardware &hardware_;
  LogSettings log_ = {kLogModule};
  LogSettings main_ = {kMainModule};
};

}  // namespace

std::unique_ptr<Family> make_system_log(Hardware &hardware) {
  return std::make_unique<SystemLog>(hardware);
}

}  // namespace olt::box
