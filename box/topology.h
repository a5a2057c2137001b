/// What the simulated box is made of.
#ifndef OLT_BOX_TOPOLOGY_H
#define OLT_BOX_TOPOLOGY_H

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace olt::box {

struct Topology {
  std::string name = "olt";
  std::array<uint8_t, 6> mac = {0x02, 0x00, 0x00, 0x00, 0x00, 0x01};
  std::string serial = "OLT0000000001";
  std::string software_version = "1.0.0";
  uint32_t oam_support = 1;
  uint32_t ethernet_ports = 4;
  uint32_t pon_interfaces = 2;
  uint32_t onus_per_interface = 32;
  uint32_t uni_ports_per_onu = 4;
};

/// Throws BadInput with one line: place, what is wrong, what is expected.
Topology parse_topology(std::string_view text);

/// The default topology for an empty path. Throws BadInput; the line begins with the path.
Topology load_topology(const std::filesystem::path &file);

}  // namespace olt::box

#endif
