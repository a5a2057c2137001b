// Topology files. One that is taken describes a box within its limits, and can be written down
// again.
#include "box/core/topology.h"

#include <algorithm>
#include <string>

#include "base/bad_input.h"
#include "box/state/json_form.h"
#include "fuzz/target.h"

namespace {

using olt::box::Topology;
using olt::fuzz::Input;
using olt::fuzz::require;

bool is_name(const std::string &text) {
  bool plain = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  return plain && !text.empty() && text.size() <= 31;
}

bool is_within(uint64_t value, uint64_t min, uint64_t max) {
  return value >= min && value <= max;
}

void require_limits(const Topology &topology) {
  require(is_name(topology.name) && is_name(topology.serial) && is_name(topology.software_version),
          "texts of a topology are printable and fit into their fields");
  require((topology.mac[0] & 1) == 0, "a box has the address of one device");
  require(is_within(topology.ethernet_ports, 1, 64) && is_within(topology.pon_interfaces, 1, 16) &&
              is_within(topology.onus_per_interface, 1, 1024) &&
              is_within(topology.uni_ports_per_onu, 1, 32) &&
              is_within(topology.voice_lines_per_onu, 0, 8) &&
              topology.onu_restart <= olt::box::kMaxRestart,
          "the numbers of a topology are within their limits");
  for (const auto &[number, port] : topology.special_ports) {
    require(is_within(number, 1, topology.ethernet_ports), "a described port exists");
    require(port.stations <= 64 && is_within(port.speed, 10, 10'000),
            "the hardware of a port is within its limits");
  }
}

std::string written(Topology topology) {
  olt::box::Archive archive;
  topology.describe(archive);
  return olt::box::to_json_line(archive.take());
}

}  // namespace

// The input is the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  try {
    Topology topology = olt::box::parse_topology(Input(data, size).text());
    require_limits(topology);
    std::string text = written(topology);
    require(written(olt::box::parse_topology(text)) == text,
            "a topology that is written down is read as it was", text);
  } catch (const olt::BadInput &error) {
    olt::fuzz::require_line(error.what());
  }
  return 0;
}
