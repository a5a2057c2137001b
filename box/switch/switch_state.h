/// What the families of the Ethernet switch share: its ports, its VLANs and who is in them.
#ifndef OLT_BOX_SWITCH_SWITCH_STATE_H
#define OLT_BOX_SWITCH_SWITCH_STATE_H

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "base/text.h"
#include "box/core/topology.h"
#include "box/message/id_set.h"
#include "box/message/message.h"

namespace olt::box {

/// The one slot that holds the Ethernet ports.
inline constexpr uint32_t kEthernetSlot = 1;

/// A word of the port attribute record that can be set.
struct PortSetting {
  size_t offset;
  std::string_view key;
  std::string_view heading;
  uint32_t most;
  uint32_t factory;
};

inline constexpr size_t kPortRecord = 80;
inline constexpr size_t kPortEnableAt = 16;
inline constexpr size_t kVlanModeSecondAt = 28;
inline constexpr size_t kVlanModeFirstAt = 32;
inline constexpr size_t kRstpStateAt = 60;

inline constexpr PortSetting kPortSettings[] = {
    {kPortEnableAt, "port_enable", "Enabled", 1, 1},
    {12, "sfp_module", "SFP", UINT32_MAX, 0},
    {kVlanModeFirstAt, "vlanmode_first", "VLAN mode", UINT32_MAX, 0},
    {kVlanModeSecondAt, "vlanmode_second", "(second)", UINT32_MAX, 0},
    {40, "flowcontrol", "Flow control", UINT32_MAX, 0},
    {44, "ingressfilter_first", "Ingress filter", UINT32_MAX, 0},
    {48, "ingressfilter_second", "(second)", UINT32_MAX, 0},
    {52, "ratecontrol_first", "Rate control", UINT32_MAX, 0},
    {56, "ratecontrol_second", "(second)", UINT32_MAX, 0},
    {kRstpStateAt, "rstp_state", "RSTP", UINT8_MAX, 1},
    {76, "max_link", "Max links", UINT32_MAX, 0},
};

/// Null when no setting stands at the offset.
const PortSetting *find_port_setting(size_t offset);

/// A port, its settings and its link.
class EthernetPort {
 public:
  EthernetPort(uint32_t number, const PortHardware &hardware, TimePoint now);

  uint32_t number() const { return number_; }
  const PortHardware &hardware() const { return hardware_; }
  /// "1/3".
  std::string name() const;

  uint32_t setting(size_t offset) const { return words_[offset / 4]; }
  void set(size_t offset, uint32_t value, TimePoint now);
  void restore_factory(TimePoint now);
  void reboot(TimePoint now);
  /// Writes the port attribute record.
  void show(TimePoint now, Reply &reply) const;

  bool link_up(TimePoint now) const;
  uint32_t link_speed(TimePoint now) const { return link_up(now) ? hardware_.speed : 0; }
  /// When the link came up, or is to come up.
  TimePoint link_from() const { return link_from_; }
  /// When RSTP was last switched on or off on the port.
  TimePoint rstp_from() const { return rstp_from_; }

  /// How long the link was up since the counters were cleared.
  std::chrono::milliseconds counted(TimePoint now) const;
  void clear_counters(TimePoint now);

  Json running() const;
  /// Takes what running gave, from behind the port's number. Throws BadInput.
  void resume(ObjectReader &reader);

 private:
  uint32_t number_;
  PortHardware hardware_;
  std::array<uint32_t, kPortRecord / 4> words_ = {};
  TimePoint link_from_;
  TimePoint rstp_from_;
  TimePoint counted_from_;
  std::chrono::milliseconds counted_before_{0};
};

/// The VLANs that a port is in. None is in both sets.
struct Membership {
  uint32_t trunk_value = 0;
  IdSet tagged;
  IdSet untagged;
};

struct SwitchState {
  SwitchState(const Topology &topology, TimePoint now);

  /// Null when there is no such port.
  EthernetPort *find(uint32_t slot, uint32_t port);
  EthernetPort *find(const Request &request, size_t slot_at);

  /// The number of a port as the member "port" gives it. Throws BadInput.
  uint32_t read_port(ObjectReader &reader) const;

  std::vector<EthernetPort> ports;
  std::vector<Membership> memberships;  ///< in the order of the ports
  IdSet vlans;
  std::map<uint16_t, std::string> descriptions;
};

}  // namespace olt::box

#endif
