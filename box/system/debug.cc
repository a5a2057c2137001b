// Debug switches and values, and the memory use of the modules.

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "box/system/families.h"

namespace olt::box {

namespace {

constexpr size_t kMaxValues = 256;

class SystemDebug final : public Family {
 public:
  explicit SystemDebug(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "system-debug"; }

  std::vector<Message> messages() override {
    std::vector<Message> messages = {
        {kMainModule, 39, "debug-value", exactly(sizeof(DebugValue)),
         on(this, &SystemDebug::value)},
        {kMainModule, 40, "switch-debug", exactly(sizeof(SwitchDebug)),
         on(this, &SystemDebug::switch_value)},
    };
    for (uint32_t module : kModules) {
      messages.push_back(
          {module, 2, "debug-enable", exactly(4), [this, module](const Request &request, Reply &) {
             switches_[module] = request.word();
             return Status::kOk;
           }});
      messages.push_back(
          {module, 3, "memory", exactly(0),
           [this, module](const Request &, Reply &reply) { return list_memory(module, reply); }});
    }
    return messages;
  }

  void running(Archive &archive) override {
    describe(archive, "switches", switches_);
    describe(archive, "values", values_);
    archive.number("switch", switch_value_);
  }

  void reboot() override {
    switches_.clear();
    values_.clear();
    switch_value_ = 0;
  }

  void describe_running(Report &report) const override {
    report.section("Debug switches", {"Module", "Switches"});
    for (uint32_t module : kModules) {
      auto found = switches_.find(module);
      report.row({fmt::to_string(module),
                  fmt::format("0x{:08x}", found == switches_.end() ? 0 : found->second)});
    }
    report.section("Debug values", {"Selector", "Value"});
    for (const auto &[selector, debug_value] : values_) {
      report.row({fmt::format("0x{:08x}", selector), fmt::format("0x{:08x}", debug_value)});
    }
    report.row({"switch", fmt::format("0x{:04x}", switch_value_)});
  }

  size_t footprint() const override {
    return sizeof *this + (switches_.size() + values_.size()) * sizeof(Values::value_type);
  }

 private:
  using Values = std::map<uint32_t, uint32_t>;

  static void describe(Archive &archive, std::string_view key, Values &values) {
    if (archive.is_reading()) values.clear();
    archive.list(
        key, kMaxValues,
        [&] {
          for (auto &[key_of, value] : values) {
            archive.element([&, number = key_of, &value = value]() mutable {
              archive.number("key", number);
              archive.number("value", value);
            });
          }
        },
        [&] {
          uint32_t number = 0;
          archive.number("key", number);
          archive.number("value", values[number]);
        });
  }

  Status value(const Request &request, Reply &reply) {
    auto record = request.record<DebugValue>();
    auto found = values_.find(record.selector);
    if (record.debug_op == 0) {
      record.debug_value = found == values_.end() ? 0 : found->second;
      reply.record(record);
      return Status::kOk;
    }
    if (found == values_.end() && values_.size() >= kMaxValues) return Status::kFull;
    values_[record.selector] = record.debug_value;
    return Status::kOk;
  }

  Status switch_value(const Request &request, Reply &reply) {
    auto record = request.record<SwitchDebug>();
    if (record.debug_op != 0) {
      switch_value_ = record.debug_value;
      return Status::kOk;
    }
    record.debug_value = switch_value_;
    reply.record(record);
    return Status::kOk;
  }

  Status list_memory(uint32_t module, Reply &reply) {
    Report report(fmt::format("Memory of module {}", module));
    report.section("State of the module", {"Family", "Bytes"});
    for (const auto &family : hardware_.families()) {
      auto messages = family->messages();
      bool serves = std::any_of(messages.begin(), messages.end(), [module](const Message &message) {
        return message.module == module;
      });
      if (serves) report.row({std::string(family->name()), fmt::to_string(family->footprint())});
    }
    describe_process(report);
    return hardware_.list_at_start("memory", report.text(), reply);
  }

  static void describe_process(Report &report) {
    std::ifstream statm("/proc/self/statm");
    uint64_t pages[6] = {};
    for (uint64_t &figure : pages) statm >> figure;
    auto page = static_cast<uint64_t>(sysconf(_SC_PAGESIZE)) / 1024;
    report.section("Process of the box", {"Memory", "KiB"});
    report.row({"virtual", fmt::to_string(pages[0] * page)});
    report.row({"resident", fmt::to_string(pages[1] * page)});
    report.row({"shared", fmt::to_string(pages[2] * page)});
    report.row({"code", fmt::to_string(pages[3] * page)});
    report.row({"data and stack", fmt::to_string(pages[5] * page)});
  }

  Hardware &hardware_;
  Values switches_;
  Values values_;
  uint16_t switch_value_ = 0;
};

}  // namespace

std::unique_ptr<Family> make_system_debug(Hardware &hardware) {
  return std::make_unique<SystemDebug>(hardware);
}

}  // namespace olt::box
