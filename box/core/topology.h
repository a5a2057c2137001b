/// The hardware that the box simulates.
#ifndef OLT_BOX_CORE_TOPOLOGY_H
#define OLT_BOX_CORE_TOPOLOGY_H

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "base/mac.h"
#include "box/state/archive.h"

namespace olt::box {

/// An Ethernet port and what is plugged into it.
struct PortHardware {
  uint32_t speed = 1000;  ///< of the link, in Mbit/s
  bool full_duplex = true;
  bool plugged = true;
  uint32_t stations = 4;  ///< devices that send through the port
};

inline constexpr std::chrono::seconds kMaxRestart{3600};

struct Topology {
  /// Describes it as topology files do; what a file lacks stays as it is.
  void describe(Archive &archive);
  /// The port with the given number, from 1 on.
  PortHardware port(uint32_t number) const;

  std::string name = "olt";
  Mac mac = {0x02, 0x00, 0x00, 0x00, 0x00, 0x01};
  std::string serial = "OLT0000000001";
  std::string software_version = "1.0.0";
  uint32_t oam_support = 1;
  uint32_t ethernet_ports = 4;
  std::map<uint32_t, PortHardware>
      special_ports;  ///< ports that differ from the default, by number
  uint32_t pon_interfaces = 16;
  uint32_t onus_per_interface = 64;
  uint32_t uni_ports_per_onu = 4;
  uint32_t voice_lines_per_onu = 2;
  std::chrono::seconds onu_restart{3};  ///< how long a rebooting ONU is away
};

/// Throws BadInput, whose one line has the place, what is wrong and what is expected.
Topology parse_topology(std::string_view text);

/// The default topology for an empty path. Throws BadInput; the line begins with the path.
Topology load_topology(const std::filesystem::path &file);

}  // namespace olt::box

#endif
