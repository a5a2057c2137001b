// The identity of the box, and its two overview listings.

#include <fmt/format.h>

#include "base/mac.h"
#include "box/system/families.h"

namespace olt::box {

namespace {

class SystemInformation final : public Family {
 public:
  explicit SystemInformation(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "system-information"; }

  std::vector<Message> messages() override {
    return {
        {kOamModule, 4, "oam-support", exactly(0), on(this, &SystemInformation::oam_support)},
        {kMainModule, 12, "olt-mac", exactly(0), on(this, &SystemInformation::mac)},
        {kMainModule, 33, "running-config", exactly(0),
         on(this, &SystemInformation::list_configuration)},
        {kMainModule, 53, "basic-info", exactly(0), on(this, &SystemInformation::list_basics)},
    };
  }

  void describe_running(Report &report) const override {
    const Topology &box = hardware_.topology();
    auto up = hardware_.uptime().count();
    report.section("OLT");
    report.row({"Name", box.name});
    report.row({"MAC address", mac_text(box.mac)});
    report.row({"Serial number", box.serial});
    report.row({"Software version", box.software_version});
    report.row({"OAM support", fmt::to_string(box.oam_support)});
    report.row({"Ethernet ports", fmt::to_string(box.ethernet_ports)});
    report.row({"PON interfaces", fmt::to_string(box.pon_interfaces)});
    report.row({"ONUs per PON interface", fmt::to_string(box.onus_per_interface)});
    report.row({"UNI ports per ONU", fmt::to_string(box.uni_ports_per_onu)});
    report.row({"Voice lines per ONU", fmt::to_string(box.voice_lines_per_onu)});
    report.row({"Uptime", fmt::format("{} d {:02}:{:02}:{:02}", up / 86400, up / 3600 % 24,
                                      up / 60 % 60, up % 60)});
  }

  size_t footprint() const override { return sizeof *this + sizeof(Topology); }

 private:
  Status oam_support(Reply &reply) {
    reply.record(hardware_.topology().oam_support);
    return Status::kOk;
  }

  Status mac(Reply &reply) {
    reply.record(hardware_.topology().mac);
    return Status::kOk;
  }

  Status list_configuration(Reply &reply) {
    Report report("Running configuration of " + hardware_.topology().name);
    for (const auto &family : hardware_.families()) family->describe_configuration(report);
    return hardware_.list_behind_header("runningconfig", report.text(), reply);
  }

  Status list_basics(Reply &reply) {
    Report report("Basic information of " + hardware_.topology().name);
    for (const auto &family : hardware_.families()) family->describe_running(report);
    return hardware_.list_behind_header("basicinfo", report.text(), reply);
  }

  Hardware &hardware_;
};

}  // namespace

std::unique_ptr<Family> make_system_information(Hardware &hardware) {
  return std::make_unique<SystemInformation>(hardware);
}

}  // namespace olt::box
