// The Ethernet ports: settings, links, and uplink aggregation.

#include <fmt/format.h>

#include <algorithm>

#include "base/clock.h"
#include "box/switch/families.h"

namespace olt::box {

namespace {

class SwitchPort final : public Family {
 public:
  SwitchPort(Hardware &hardware, SwitchState &state) : hardware_(hardware), state_(state) {}

  std::string_view name() const override { return "switch-port"; }

  std::vector<Message> messages() override {
    std::vector<PortWord> all;
    for (const PortSetting &setting : kPortSettings) all.push_back(setting.word);
    return {
        setter(13, "set-sfp-module", {&PortRecord::sfp_module}),
        setter(14, "set-port-enable", {&PortRecord::port_enable}),
        getter(15, "port-enable"),
        getter(16, "link-state"),
        getter(17, "link-duplex"),
        getter(18, "link-speed"),
        setter(24, "set-vlan-mode", {&PortRecord::vlanmode_first, &PortRecord::vlanmode_second}),
        {kMainModule, 34, "set-uplink-aggregation", exactly(sizeof(UplinkAggregation)),
         on(this, &SwitchPort::set_aggregation)},
        setter(66, "set-rate-control",
               {&PortRecord::ratecontrol_first, &PortRecord::ratecontrol_second}),
        setter(67, "set-rstp-state", {&PortRecord::rstp_state}),
        setter(68, "set-ingress-filter",
               {&PortRecord::ingressfilter_first, &PortRecord::ingressfilter_second}),
        setter(69, "set-flow-control", {&PortRecord::flowcontrol}),
        getter(70, "snmp-port"),
        setter(71, "set-snmp-port", all),
        getter(72, "snmp-port-status"),
        {kMainModule, 74, "uplink-aggregation", exactly(0), on(this, &SwitchPort::aggregation)},
        setter(102, "set-max-link", {&PortRecord::max_link}),
    };
  }

  void configuration(Archive &archive) override {
    archive.number("uplink_aggregation", aggregation_);
    state_.describe_ports(archive, [&](EthernetPort &port) {
      for (const PortSetting &setting : kPortSettings) {
        uint32_t value = port.setting(setting.word);
        archive.number(setting.key, value, {0, setting.max});
        port.set(setting.word, value, hardware_.now());
      }
    });
  }

  void restore_factory() override {
    for (EthernetPort &port : state_.ports) port.restore_factory(hardware_.now());
    aggregation_ = 0;
  }

  void running(Archive &archive) override {
    state_.describe_ports(archive, [&](EthernetPort &port) { port.describe_running(archive); });
  }

  void reboot() override {
    for (EthernetPort &port : state_.ports) port.reboot(hardware_.now());
  }

  void describe_configuration(Report &report) const override {
    std::vector<std::string> columns = {"Port"};
    for (const PortSetting &setting : kPortSettings) columns.emplace_back(setting.heading);
    report.section("Ethernet ports", columns);
    for (const EthernetPort &port : state_.ports) {
      std::vector<std::string> row = {port.name()};
      for (const PortSetting &setting : kPortSettings) {
        row.push_back(fmt::to_string(port.setting(setting.word)));
      }
      report.row(std::move(row));
    }
    report.section("Uplinks");
    report.row({"Aggregation", fmt::to_string(aggregation_)});
  }

  void describe_running(Report &report) const override {
    TimePoint now = hardware_.now();
    report.section("Ethernet links", {"Port", "Enabled", "Link", "Speed in Mbit/s", "Duplex"});
    for (const EthernetPort &port : state_.ports) {
      bool up = port.link_up(now);
      const char *duplex = port.hardware().full_duplex ? "full" : "half";
      report.row({port.name(), port.setting(&PortRecord::port_enable) == 0 ? "no" : "yes",
                  up ? "up" : "down", up ? fmt::to_string(port.link_speed(now)) : "-",
                  up ? duplex : "-"});
    }
  }

  size_t footprint() const override {
    return sizeof *this + sizeof(SwitchState) + state_.ports.capacity() * sizeof(EthernetPort);
  }

 private:
  /// A message that sets these words of a port and reads no others.
  Message setter(uint32_t type, std::string_view message, std::vector<PortWord> words) {
    auto set = [this, message, words = std::move(words)](const Request &request, Reply &) {
      auto record = request.record<PortRecord>();
      EthernetPort *port = state_.find(record.slot, record.port);
      if (port == nullptr) return Status::kNotFound;
      bool valid = std::all_of(words.begin(), words.end(), [&record](PortWord word) {
        return record.*word <= setting_of(word).max;
      });
      if (!valid) return Status::kBadValue;
      for (PortWord word : words) port->set(word, record.*word, hardware_.now());
      hardware_.events().record(Level::kNotice, kMainModule,
                                fmt::format("port {}: {}", port->name(), message));
      return Status::kOk;
    };
    return {kMainModule, type, message, exactly(sizeof(PortRecord)), set};
  }

  Message getter(uint32_t type, std::string_view message) {
    auto get = [this](const Request &request, Reply &reply) {
      auto record = request.record<PortRecord>();
      const EthernetPort *port = state_.find(record.slot, record.port);
      if (port == nullptr) return Status::kNotFound;
      reply.record(port->record(hardware_.now()));
      return Status::kOk;
    };
    return {kMainModule, type, message, exactly(sizeof(PortRecord)), get};
  }

  Status set_aggregation(const Request &request) {
    aggregation_ = request.record<UplinkAggregation>().upport_agg;
    return Status::kOk;
  }

  Status aggregation(Reply &reply) {
    reply.record(UplinkAggregation{.upport_agg = aggregation_});
    return Status::kOk;
  }

  Hardware &hardware_;
  SwitchState &state_;
  uint32_t aggregation_ = 0;
};

}  // namespace

std::unique_ptr<Family> make_switch_port(Hardware &hardware, SwitchState &state) {
  return std::make_unique<SwitchPort>(hardware, state);
}

}  // namespace olt::box
