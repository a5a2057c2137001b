// Commands for the whole box.

#include "box/system/families.h"

namespace olt::box {

namespace {

class SystemControl final : public Family {
 public:
  explicit SystemControl(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "system-control"; }

  std::vector<Message> messages() override {
    return {
        {kMainModule, 5, "in-service", exactly(0), on(this, &SystemControl::enter_service)},
        {kMainModule, 6, "will-start", exactly(0), on(this, &SystemControl::announce_start)},
        {kMainModule, 7, "reboot", exactly(0), on(this, &SystemControl::reboot_box)},
        {kMainModule, 8, "save", exactly(0), on(this, &SystemControl::save)},
        {kMainModule, 9, "default", exactly(0), on(this, &SystemControl::restore)},
    };
  }

  void running(Archive &archive) override {
    archive.flag("in_service", in_service_);
    archive.flag("start_announced", start_announced_);
  }

  void reboot() override {
    in_service_ = false;
    start_announced_ = false;
  }

  void describe_running(Report &report) const override {
    report.section("State");
    report.row({"Micro-kernel in service", in_service_ ? "yes" : "no"});
    report.row({"Start of the system announced", start_announced_ ? "yes" : "no"});
  }

  size_t footprint() const override { return sizeof *this; }

 private:
  Status enter_service() {
    in_service_ = true;
    return Status::kOk;
  }

  Status announce_start() {
    start_announced_ = true;
    return Status::kOk;
  }

  Status reboot_box() {
    hardware_.reboot();
    hardware_.events().record(Level::kNotice, kMainModule, "rebooted");
    return Status::kOk;
  }

  Status save() {
    hardware_.save();
    hardware_.events().record(Level::kNotice, kMainModule, "configuration saved");
    return Status::kOk;
  }

  Status restore() {
    hardware_.restore_factory();
    hardware_.events().record(Level::kNotice, kMainModule, "factory configuration restored");
    return Status::kOk;
  }

  Hardware &hardware_;
  bool in_service_ = false;
  bool start_announced_ = false;
};

}  // namespace

std::unique_ptr<Family> make_system_control(Hardware &hardware) {
  return std::make_unique<SystemControl>(hardware);
}

}  // namespace olt::box
