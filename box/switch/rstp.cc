// RSTP: settings and state of the bridge and its ports. No neighbour speaks RSTP, so the box is the
// root bridge, and timers alone move its ports from state to state.

#include <fmt/format.h>

#include <algorithm>

#include "base/clock.h"
#include "box/switch/families.h"

namespace olt::box {

namespace {

using std::chrono::seconds;

enum class Role : uint8_t { kDisabled = 0, kDesignated = 2 };
enum class State : uint8_t { kDown, kDiscarding, kLearning, kForwarding };

const char *state_name(State state) {
  switch (state) {
    case State::kDown:
      return "down";
    case State::kDiscarding:
      return "discarding";
    case State::kLearning:
      return "learning";
    case State::kForwarding:
      break;
  }
  return "forwarding";
}

constexpr RstpBridge kFactoryBridge = {.version = 2,
                                       .priority = 32'768,
                                       .max_age = 20,
                                       .hello_time = 2,
                                       .forward_delay = 15,
                                       .hold_count = 6};
constexpr RstpPort kFactoryPort = {.priority = 128, .point_to_point = 1};

/// The part of a port's record that this family keeps: from the priority on.
std::span<uint8_t> settings_in(RstpPort &record) {
  return bytes_of(record).subspan(offsetof(RstpPort, priority));
}

class SwitchRstp final : public Family {
 public:
  SwitchRstp(Hardware &hardware, SwitchState &state)
      : hardware_(hardware),
        state_(state),
        ports_(state_.ports.size(), kFactoryPort),
        bridge_from_(hardware_.now()) {}

  std::string_view name() const override { return "switch-rstp"; }

  std::vector<Message> messages() override {
    return {
        {kMainModule, 170, "rstp-bridge", exactly(0), on(this, &SwitchRstp::bridge)},
        {kMainModule, 171, "rstp-port", exactly(sizeof(RstpPort)), on(this, &SwitchRstp::port)},
        {kMainModule, 172, "set-rstp-bridge", exactly(sizeof(RstpBridge)),
         on(this, &SwitchRstp::set_bridge)},
        {kMainModule, 173, "set-rstp-port", exactly(sizeof(RstpPort)),
         on(this, &SwitchRstp::set_port)},
        {kRstpModule, 174, "rstp-brief", exactly(sizeof(RstpBrief)), on(this, &SwitchRstp::brief)},
    };
  }

  void configuration(Archive &archive) override {
    RstpBridge bridge = bridge_;
    archive.bytes("bridge", bytes_of(bridge));
    if (archive.is_reading()) take_bridge(bridge);
    state_.describe_ports(archive, [&](EthernetPort &port) {
      archive.bytes("settings", settings_in(ports_[port.number() - 1]));
    });
  }

  void restore_factory() override {
    take_bridge(kFactoryBridge);
    std::fill(ports_.begin(), ports_.end(), kFactoryPort);
  }

  void running(Archive &archive) override { archive.moment("bridge_from", bridge_from_); }

  void reboot() override { bridge_from_ = hardware_.now(); }

  void describe_configuration(Report &report) const override {
    report.section("RSTP bridge");
    auto number = [](uint32_t value) { return fmt::to_string(value); };
    report.row({"Enabled", bridge_.enabled == 0 ? "no" : "yes"});
    report.row({"Version", number(bridge_.version)});
    report.row({"Priority", number(bridge_.priority)});
    report.row({"Max age in s", number(bridge_.max_age)});
    report.row({"Hello time in s", number(bridge_.hello_time)});
    report.row({"Forward delay in s", number(bridge_.forward_delay)});
    report.row({"Transmit hold count", number(bridge_.hold_count)});
    report.section("RSTP ports",
                   {"Port", "Enabled", "Priority", "Path cost", "Edge", "Point to point"});
    for (const EthernetPort &port : state_.ports) {
      const RstpPort &settings = settings_of(port);
      report.row({port.name(), port.setting(&PortRecord::rstp_state) == 0 ? "no" : "yes",
                  number(settings.priority),
                  settings.path_cost == 0 ? "by speed" : number(settings.path_cost),
                  settings.edge == 0 ? "no" : "yes", settings.point_to_point == 0 ? "no" : "yes"});
    }
  }

  void describe_running(Report &report) const override {
    report.section("RSTP", {"Port", "Role", "State"});
    for (const EthernetPort &port : state_.ports) {
      Standing standing = standing_of(port);
      report.row({port.name(), standing.role == Role::kDesignated ? "designated" : "disabled",
                  state_name(standing.state)});
    }
  }

  size_t footprint() const override { return sizeof *this + ports_.capacity() * sizeof(RstpPort); }

 private:
  struct Standing {
    Role role;
    State state;
    seconds since;
  };

  Status bridge(Reply &reply) {
    reply.record(bridge_);
    return Status::kOk;
  }

  Status set_bridge(const Request &request) {
    take_bridge(request.record<RstpBridge>());
    hardware_.events().record(Level::kNotice, kMainModule, "RSTP settings of the bridge set");
    return Status::kOk;
  }

  void take_bridge(const RstpBridge &bridge) {
    bool toggled = (bridge.enabled == 0) != (bridge_.enabled == 0);
    if (toggled) bridge_from_ = hardware_.now();
    bridge_ = bridge;
  }

  Status port(const Request &request, Reply &reply) {
    auto record = request.record<RstpPort>();
    const EthernetPort *port = state_.find(record.slot, record.port);
    if (port == nullptr) return Status::kNotFound;
    record = settings_of(*port);
    record.slot = kEthernetSlot;
    record.port = port->number();
    record.rstp_state = static_cast<uint8_t>(port->setting(&PortRecord::rstp_state));
    reply.record(record);
    return Status::kOk;
  }

  Status set_port(const Request &request) {
    auto record = request.record<RstpPort>();
    EthernetPort *port = state_.find(record.slot, record.port);
    if (port == nullptr) return Status::kNotFound;
    port->set(&PortRecord::rstp_state, record.rstp_state, hardware_.now());
    ports_[port->number() - 1] = record;
    hardware_.events().record(Level::kNotice, kMainModule,
                              fmt::format("port {}: RSTP settings set", port->name()));
    return Status::kOk;
  }

  Status brief(const Request &request, Reply &reply) {
    auto key = request.record<RstpBrief>();
    const EthernetPort *port = state_.find(key.slot, key.port);
    if (port == nullptr) return Status::kNotFound;
    Standing standing = standing_of(*port);
    const RstpPort &settings = settings_of(*port);
    reply.record(RstpBrief{
        .slot = kEthernetSlot,
        .port = port->number(),
        .active = is_active(*port) ? 1U : 0U,
        .role = static_cast<uint32_t>(standing.role),
        .state = static_cast<uint32_t>(standing.state),
        .priority = settings.priority,
        .path_cost = path_cost(*port),
        .bridge_priority = bridge_.priority,
        .edge = settings.edge == 0 ? 0U : 1U,
        .seconds = static_cast<uint32_t>(standing.since.count()),
    });
    return Status::kOk;
  }

  bool is_active(const EthernetPort &port) const {
    return bridge_.enabled != 0 && port.setting(&PortRecord::rstp_state) != 0;
  }

  Standing standing_of(const EthernetPort &port) const {
    TimePoint now = hardware_.now();
    if (!port.link_up(now)) return {Role::kDisabled, State::kDown, seconds(0)};
    TimePoint begin = std::max({port.link_from(), port.rstp_from(), bridge_from_});
    auto elapsed = std::max(std::chrono::duration_cast<seconds>(now - begin), seconds(0));
    if (!is_active(port)) return {Role::kDisabled, State::kForwarding, elapsed};
    seconds delay(settings_of(port).edge == 0 ? bridge_.forward_delay : 0);
    if (elapsed < delay) return {Role::kDesignated, State::kDiscarding, elapsed};
    if (elapsed < 2 * delay) return {Role::kDesignated, State::kLearning, elapsed - delay};
    return {Role::kDesignated, State::kForwarding, elapsed - 2 * delay};
  }

  uint32_t path_cost(const EthernetPort &port) const {
    uint32_t cost = settings_of(port).path_cost;
    return cost == 0 ? 20'000'000 / port.hardware().speed : cost;
  }

  const RstpPort &settings_of(const EthernetPort &port) const { return ports_[port.number() - 1]; }

  Hardware &hardware_;
  SwitchState &state_;
  RstpBridge bridge_ = kFactoryBridge;
  std::vector<RstpPort> ports_;  ///< from the priority on
  TimePoint bridge_from_;        ///< when RSTP was last enabled or disabled on the bridge
};

}  // namespace

std::unique_ptr<Family> make_switch_rstp(Hardware &hardware, SwitchState &state) {
  return std::make_unique<SwitchRstp>(hardware, state);
}

}  // namespace olt::box
