// RSTP: the settings of the bridge and of its ports, kept byte for byte, and what comes of them.
// The box has no neighbour that speaks RSTP: it is the root, and its ports go by the timers.

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/clock.h"
#include "base/text.h"
#include "box/state/moment.h"
#include "box/switch/families.h"

namespace olt::box {

namespace {

using std::chrono::seconds;

constexpr size_t kBridgeRecord = 33;
constexpr size_t kBridgeEnabledAt = 0;
constexpr size_t kBridgeVersionAt = 1;
constexpr size_t kBridgePriorityAt = 2;
constexpr size_t kMaxAgeAt = 4;
constexpr size_t kHelloTimeAt = 6;
constexpr size_t kForwardDelayAt = 8;
constexpr size_t kHoldCountAt = 10;

constexpr size_t kPortRecordSize = 27;
constexpr size_t kPortStateAt = 8;
constexpr size_t kOwnAt = 9;  ///< from here on the family keeps the record itself
constexpr size_t kPriorityAt = 9;
constexpr size_t kPathCostAt = 10;
constexpr size_t kEdgeAt = 14;
constexpr size_t kPointToPointAt = 15;

constexpr size_t kBrief = 40;

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

using Bridge = std::array<uint8_t, kBridgeRecord>;
using PortBytes = std::array<uint8_t, kPortRecordSize - kOwnAt>;

constexpr Bridge kFactoryBridge = {0, 2, 0x00, 0x80, 20, 0, 2, 0, 15, 0, 6};
constexpr PortBytes kFactoryPort = {128, 0, 0, 0, 0, 0, 1};

class SwitchRstp final : public Family {
 public:
  SwitchRstp(Hardware &hardware, SharedSwitch state)
      : hardware_(hardware),
        state_(std::move(state)),
        ports_(state_->ports.size(), kFactoryPort),
        bridge_from_(hardware_.now()) {}

  std::string_view name() const override { return "switch-rstp"; }

  std::vector<Message> messages() override {
    return {
        {kMainModule, 170, "rstp-bridge", exactly(0), on(this, &SwitchRstp::bridge)},
        {kMainModule, 171, "rstp-port", exactly(kPortRecordSize), on(this, &SwitchRstp::port)},
        {kMainModule, 172, "set-rstp-bridge", exactly(kBridgeRecord),
         on(this, &SwitchRstp::set_bridge)},
        {kMainModule, 173, "set-rstp-port", exactly(kPortRecordSize),
         on(this, &SwitchRstp::set_port)},
        {kRstpModule, 174, "rstp-brief", exactly(kBrief), on(this, &SwitchRstp::brief)},
    };
  }

  Json configuration() const override {
    Json ports = Json::array();
    for (const EthernetPort &port : state_->ports) {
      ports.push_back({{"port", port.number()}, {"settings", to_hex(own(port))}});
    }
    return {{"bridge", to_hex(bridge_)}, {"ports", ports}};
  }

  void configure(const Json &value, const std::string &place) override {
    ObjectReader reader(value, place);
    Bridge bridge;
    reader.hex("bridge", bridge);
    take_bridge(bridge);
    for_each_element(reader.get("ports"), reader.place_of("ports"),
                     [this](const Json &element, const std::string &at) {
                       ObjectReader port(element, at);
                       port.hex("settings", ports_[state_->read_port(port) - 1]);
                       port.finish();
                     });
    reader.finish();
  }

  void restore_factory() override {
    take_bridge(kFactoryBridge);
    std::fill(ports_.begin(), ports_.end(), kFactoryPort);
  }

  Json running() const override { return {{"bridge_from", to_milliseconds(bridge_from_)}}; }

  void resume(const Json &value, const std::string &place) override {
    ObjectReader reader(value, place);
    bridge_from_ = read_time(reader, "bridge_from");
    reader.finish();
  }

  void reboot() override { bridge_from_ = hardware_.now(); }

  void describe_configuration(Report &report) const override {
    report.section("RSTP bridge");
    report.row({"Enabled", bridge_[kBridgeEnabledAt] == 0 ? "no" : "yes"});
    report.row({"Version", fmt::to_string(bridge_[kBridgeVersionAt])});
    report.row({"Priority", fmt::to_string(bridge_word(kBridgePriorityAt))});
    report.row({"Max age in s", fmt::to_string(bridge_word(kMaxAgeAt))});
    report.row({"Hello time in s", fmt::to_string(bridge_word(kHelloTimeAt))});
    report.row({"Forward delay in s", fmt::to_string(bridge_word(kForwardDelayAt))});
    report.row({"Transmit hold count", fmt::to_string(bridge_[kHoldCountAt])});
    report.section("RSTP ports",
                   {"Port", "Enabled", "Priority", "Path cost", "Edge", "Point to point"});
    for (const EthernetPort &port : state_->ports) {
      uint32_t cost = configured_cost(port);
      report.row({port.name(), port.setting(kRstpStateAt) == 0 ? "no" : "yes",
                  fmt::to_string(byte_of(port, kPriorityAt)),
                  cost == 0 ? "by speed" : fmt::to_string(cost),
                  byte_of(port, kEdgeAt) == 0 ? "no" : "yes",
                  byte_of(port, kPointToPointAt) == 0 ? "no" : "yes"});
    }
  }

  void describe_running(Report &report) const override {
    report.section("RSTP", {"Port", "Role", "State"});
    for (const EthernetPort &port : state_->ports) {
      Standing standing = standing_of(port);
      report.row({port.name(), standing.role == Role::kDesignated ? "designated" : "disabled",
                  state_name(standing.state)});
    }
  }

  size_t footprint() const override { return sizeof *this + ports_.capacity() * sizeof(PortBytes); }

 private:
  struct Standing {
    Role role;
    State state;
    seconds since;
  };

  Status bridge(Reply &reply) {
    reply.bytes(0, bridge_);
    return Status::kOk;
  }

  Status set_bridge(const Request &request, Reply & /*reply*/) {
    Bridge bridge;
    auto bytes = request.bytes(0, kBridgeRecord);
    std::copy(bytes.begin(), bytes.end(), bridge.begin());
    take_bridge(bridge);
    hardware_.events().record(Level::kNotice, kMainModule, "RSTP settings of the bridge set");
    return Status::kOk;
  }

  void take_bridge(const Bridge &bridge) {
    bool toggled = (bridge[kBridgeEnabledAt] == 0) != (bridge_[kBridgeEnabledAt] == 0);
    if (toggled) bridge_from_ = hardware_.now();
    bridge_ = bridge;
  }

  Status port(const Request &request, Reply &reply) {
    const EthernetPort *port = state_->find(request, 0);
    if (port == nullptr) return Status::kNotFound;
    reply.u32(0, kEthernetSlot);
    reply.u32(4, port->number());
    auto state = static_cast<uint8_t>(port->setting(kRstpStateAt));
    reply.bytes(kPortStateAt, {&state, 1});
    reply.bytes(kOwnAt, own(*port));
    return Status::kOk;
  }

  Status set_port(const Request &request, Reply & /*reply*/) {
    EthernetPort *port = state_->find(request, 0);
    if (port == nullptr) return Status::kNotFound;
    port->set(kRstpStateAt, request.bytes(kPortStateAt, 1)[0], hardware_.now());
    auto bytes = request.bytes(kOwnAt, sizeof(PortBytes));
    std::copy(bytes.begin(), bytes.end(), ports_[port->number() - 1].begin());
    hardware_.events().record(Level::kNotice, kMainModule,
                              fmt::format("port {}: RSTP settings set", port->name()));
    return Status::kOk;
  }

  Status brief(const Request &request, Reply &reply) {
    const EthernetPort *port = state_->find(request, 0);
    if (port == nullptr) return Status::kNotFound;
    Standing standing = standing_of(*port);
    const uint32_t words[] = {
        kEthernetSlot,
        port->number(),
        is_active(*port) ? 1U : 0U,
        static_cast<uint32_t>(standing.role),
        static_cast<uint32_t>(standing.state),
        byte_of(*port, kPriorityAt),
        path_cost(*port),
        bridge_word(kBridgePriorityAt),
        byte_of(*port, kEdgeAt) == 0 ? 0U : 1U,
        static_cast<uint32_t>(standing.since.count()),
    };
    for (size_t i = 0; i < std::size(words); ++i) reply.u32(4 * i, words[i]);
    return Status::kOk;
  }

  bool is_active(const EthernetPort &port) const {
    return bridge_[kBridgeEnabledAt] != 0 && port.setting(kRstpStateAt) != 0;
  }

  Standing standing_of(const EthernetPort &port) const {
    TimePoint now = hardware_.now();
    if (!port.link_up(now)) return {Role::kDisabled, State::kDown, seconds(0)};
    TimePoint begin = std::max({port.link_from(), port.rstp_from(), bridge_from_});
    auto elapsed = std::max(std::chrono::duration_cast<seconds>(now - begin), seconds(0));
    if (!is_active(port)) return {Role::kDisabled, State::kForwarding, elapsed};
    seconds delay(byte_of(port, kEdgeAt) == 0 ? bridge_word(kForwardDelayAt) : 0);
    if (elapsed < delay) return {Role::kDesignated, State::kDiscarding, elapsed};
    if (elapsed < 2 * delay) return {Role::kDesignated, State::kLearning, elapsed - delay};
    return {Role::kDesignated, State::kForwarding, elapsed - 2 * delay};
  }

  uint16_t bridge_word(size_t at) const { return Request(bridge_).u16(at); }
  uint32_t configured_cost(const EthernetPort &port) const {
    return Request(own(port)).u32(kPathCostAt - kOwnAt);
  }

  uint32_t path_cost(const EthernetPort &port) const {
    uint32_t cost = configured_cost(port);
    return cost == 0 ? 20'000'000 / port.hardware().speed : cost;
  }

  const PortBytes &own(const EthernetPort &port) const { return ports_[port.number() - 1]; }
  uint8_t byte_of(const EthernetPort &port, size_t at) const { return own(port)[at - kOwnAt]; }

  Hardware &hardware_;
  SharedSwitch state_;
  Bridge bridge_ = kFactoryBridge;
  std::vector<PortBytes> ports_;
  TimePoint bridge_from_;  ///< when RSTP was last switched on or off as a whole
};

}  // namespace

std::unique_ptr<Family> make_switch_rstp(Hardware &hardware, SharedSwitch state) {
  return std::make_unique<SwitchRstp>(hardware, std::move(state));
}

}  // namespace olt::box
