/// State shared by the families of the Ethernet switch: its ports, its VLANs and their members.
#ifndef OLT_BOX_SWITCH_SWITCH_STATE_H
#define OLT_BOX_SWITCH_SWITCH_STATE_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "base/text.h"
#include "box/core/topology.h"
#include "box/message/id_set.h"
#include "box/state/archive.h"
#include "box/wire/records.h"

namespace olt::box {

/// The slot of all Ethernet ports.
inline constexpr uint32_t kEthernetSlot = 1;

using PortWord = uint32_t PortRecord::*;

/// A word of a port's record that can be set.
struct PortSetting {
  PortWord word;
  std::string_view key;
  std::string_view heading;
  uint32_t max;
  uint32_t factory;
};

inline constexpr PortSetting kPortSettings[] = {
    {&PortRecord::port_enable, "port_enable", "Enabled", 1, 1},
    {&PortRecord::sfp_module, "sfp_module", "SFP", UINT32_MAX, 0},
    {&PortRecord::vlanmode_first, "vlanmode_first", "VLAN mode", UINT32_MAX, 0},
    {&PortRecord::vlanmode_second, "vlanmode_second", "(second)", UINT32_MAX, 0},
    {&PortRecord::flowcontrol, "flowcontrol", "Flow control", UINT32_MAX, 0},
    {&PortRecord::ingressfilter_first, "ingressfilter_first", "Ingress filter", UINT32_MAX, 0},
    {&PortRecord::ingressfilter_second, "ingressfilter_second", "(second)", UINT32_MAX, 0},
    {&PortRecord::ratecontrol_first, "ratecontrol_first", "Rate control", UINT32_MAX, 0},
    {&PortRecord::ratecontrol_second, "ratecontrol_second", "(second)", UINT32_MAX, 0},
    {&PortRecord::rstp_state, "rstp_state", "RSTP", UINT8_MAX, 1},
    {&PortRecord::max_link, "max_link", "Max links", UINT32_MAX, 0},
};

/// The setting for a word that can be set.
const PortSetting &setting_of(PortWord word);

/// A port, its settings and its link.
class EthernetPort {
 public:
  EthernetPort(uint32_t number, const PortHardware &hardware, TimePoint now);

  uint32_t number() const { return number_; }
  const PortHardware &hardware() const { return hardware_; }
  /// "1/3".
  std::string name() const;

  uint32_t setting(PortWord word) const { return settings_.*word; }
  void set(PortWord word, uint32_t value, TimePoint now);
  void restore_factory(TimePoint now);
  void reboot(TimePoint now);
  /// Its settings and the state of its link.
  PortRecord record(TimePoint now) const;

  bool link_up(TimePoint now) const;
  uint32_t link_speed(TimePoint now) const { return link_up(now) ? hardware_.speed : 0; }
  /// When the link came up, or will come up.
  TimePoint link_from() const { return link_from_; }
  /// When RSTP was last enabled or disabled on the port.
  TimePoint rstp_from() const { return rstp_from_; }

  /// How long the link has been up since the counters were cleared.
  std::chrono::milliseconds counted(TimePoint now) const;
  void clear_counters(TimePoint now);

  void describe_running(Archive &archive);

 private:
  uint32_t number_;
  PortHardware hardware_;
  PortRecord settings_ = {};  ///< slot, number and the words of kPortSettings
  TimePoint link_from_;
  TimePoint rstp_from_;
  TimePoint counted_from_;
  std::chrono::milliseconds counted_before_{0};
};

/// The VLANs that a port is in. No VLAN is in both sets.
struct Membership {
  uint32_t trunk_value = 0;
  IdSet tagged;
  IdSet untagged;
};

struct SwitchState {
  SwitchState(const Topology &topology, TimePoint now);

  /// Null when there is no such port.
  EthernetPort *find(uint32_t slot, uint32_t port);

  /// Describes the number of a port, as the member "port".
  void describe_port(Archive &archive, uint32_t &port) const {
    archive.number("port", port, {1, ports.size()});
  }
  /// Describes a list of the ports, with their numbers; the function describes the rest of each.
  void describe_ports(Archive &archive, const std::function<void(EthernetPort &)> &describe);

  std::vector<EthernetPort> ports;
  std::vector<Membership> memberships;  ///< in the order of the ports
  IdSet vlans;
  std::map<uint16_t, std::string> descriptions;
};

}  // namespace olt::box

#endif
