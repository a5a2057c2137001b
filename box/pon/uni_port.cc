// Settings of the UNI ports of ONUs.

#include <fmt/format.h>

#include "box/pon/families.h"
#include "box/pon/onu_listing.h"

namespace olt::box {

namespace {

class PonUniPort final : public OnuFamily {
 public:
  PonUniPort(Hardware &hardware, OnuState &state)
      : OnuFamily(
            "pon-uni-port", state,
            {state.records.port_alarm, state.records.port_loopback, state.records.port_vlan_mode,
             state.records.port_down_rate, state.records.port_policing, state.records.port_info,
             state.records.port_description}),
        hardware_(hardware) {}

  std::vector<Message> messages() override {
    OnuRecords &records = state().records;
    return {
        set_message(state(), 84, "describe-uni-port", records.port_description),
        listing_message(hardware_, state(), 104, "uni-port-alarm", Scope::kUniPort, "portalarm",
                        "Alarm setting of UNI port", on(this, &PonUniPort::show_alarm)),
        set_message(state(), 105, "set-uni-port-alarm", records.port_alarm),
        set_message(state(), 117, "set-uni-port-loopback", records.port_loopback),
        set_message(state(), 118, "set-uni-port-down-rate", records.port_down_rate),
        read_message(state(), 119, "uni-port-down-rate", records.port_down_rate),
        listing_message(hardware_, state(), 128, "uni-port-vlan-mode", Scope::kUniPort,
                        "portvlanmode", "VLAN mode of UNI port",
                        on(this, &PonUniPort::show_vlan_mode)),
        set_message(state(), 129, "set-uni-port-vlan-mode", records.port_vlan_mode),
        set_message(state(), 130, "set-uni-port-policing", records.port_policing),
        read_message(state(), 131, "uni-port-policing", records.port_policing),
        set_message(state(), 132, "set-uni-port-info", records.port_info),
        listing_message(hardware_, state(), 133, "uni-port-info", Scope::kUniPort, "portbasic",
                        "Basic information of UNI port", on(this, &PonUniPort::show_info)),
    };
  }

 private:
  /// Adds a row that shows one of the port's records.
  static void add(Report &report, std::string_view name, const RecordTable &table,
                  const OnuPart &port) {
    std::string shown = table.show(table.at(port));
    report.row({std::string(name), shown.empty() ? "-" : shown});
  }

  Status show_alarm(const OnuPart &port, Report &report) const {
    report.section("Alarm");
    add(report, "Setting", state().records.port_alarm, port);
    return Status::kOk;
  }

  Status show_vlan_mode(const OnuPart &port, Report &report) const {
    auto record = state().records.port_vlan_mode.at(port);
    report.section("VLAN mode");
    report.row({"Mode", vlan_mode_name(Request(record).record<UniVlanMode>().mode)});
    report.section("Record");
    report.dump(record);
    return Status::kOk;
  }

  /// The usual modes of EPON.
  static std::string vlan_mode_name(uint32_t mode) {
    constexpr std::string_view kNames[] = {"transparent", "tag", "translation", "aggregation",
                                           "trunk"};
    return mode < std::size(kNames) ? std::string(kNames[mode]) : fmt::to_string(mode);
  }

  Status show_info(const OnuPart &port, Report &report) const {
    const OnuRecords &records = state().records;
    report.section("State");
    report.row({"ONU", presence_name(state().find(port)->presence(hardware_.now()))});
    report.section("Settings");
    add(report, "Description", records.port_description, port);
    add(report, "Alarm", records.port_alarm, port);
    add(report, "Loopback", records.port_loopback, port);
    add(report, "Downstream rate", records.port_down_rate, port);
    add(report, "Policing", records.port_policing, port);
    report.section("Basic information as set");
    report.dump(records.port_info.at(port));
    return Status::kOk;
  }

  Hardware &hardware_;
};

}  // namespace

std::unique_ptr<Family> make_pon_uni_port(Hardware &hardware, OnuState &state) {
  return std::make_unique<PonUniPort>(hardware, state);
}

}  // namespace olt::box
