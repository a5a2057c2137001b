#include "box/core/topology.h"

#include <algorithm>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/state/files.h"
#include "box/state/json_form.h"

namespace olt::box {

namespace {

constexpr size_t kMaxTopologyText = 31;

/// Describes a member that may be missing.
void optional_number(Archive &archive, std::string_view key, uint32_t &value, NumberRange range) {
  if (archive.has(key)) archive.number(key, value, range);
}

void describe_text(Archive &archive, std::string_view key, std::string &value) {
  if (!archive.has(key)) return;
  archive.text(key, value, kMaxTopologyText);
  if (value.empty() || value != printable_ascii(value)) {
    archive.refuse(key, "1 to 31 printable ASCII characters");
  }
}

void describe_mac(Archive &archive, Mac &mac) {
  if (!archive.has("mac")) return;
  std::string text = mac_text(mac);
  archive.text("mac", text, text.size());
  auto read = to_mac(text);
  if (!read || ((*read)[0] & 1) != 0) {
    archive.refuse("mac", "the MAC address of one device, such as \"02:00:00:00:00:01\"");
  }
  mac = *read;
}

void describe_hardware(Archive &archive, PortHardware &hardware) {
  if (archive.has("speed")) {
    archive.number("speed", hardware.speed);
    bool known = hardware.speed == 10 || hardware.speed == 100 || hardware.speed == 1000 ||
                 hardware.speed == 10'000;
    if (!known) archive.refuse("speed", "10, 100, 1000 or 10000");
  }
  if (archive.has("duplex")) {
    std::string duplex = hardware.full_duplex ? "full" : "half";
    archive.text("duplex", duplex, kMaxTopologyText);
    if (duplex != "full" && duplex != "half") archive.refuse("duplex", R"("full" or "half")");
    hardware.full_duplex = duplex == "full";
  }
  if (archive.has("plugged")) archive.flag("plugged", hardware.plugged);
  optional_number(archive, "stations", hardware.stations, {0, 64});
}

void describe_ports(Archive &archive, Topology &topology) {
  if (!archive.has("ports")) return;
  if (archive.is_reading()) topology.special_ports.clear();
  NumberRange ports = {1, topology.ethernet_ports};
  archive.list(
      "ports", topology.ethernet_ports,
      [&] {
        for (auto &[key, hardware] : topology.special_ports) {
          archive.element([&, number = key, &hardware = hardware]() mutable {
            archive.number("port", number, ports);
            describe_hardware(archive, hardware);
          });
        }
      },
      [&] {
        uint32_t number = 0;
        PortHardware hardware;
        archive.number("port", number, ports);
        describe_hardware(archive, hardware);
        if (!topology.special_ports.emplace(number, hardware).second) {
          archive.refuse("port", "each port once");
        }
      });
}

void describe_olt(Archive &archive, Topology &topology) {
  describe_text(archive, "name", topology.name);
  describe_mac(archive, topology.mac);
  describe_text(archive, "serial", topology.serial);
  describe_text(archive, "software_version", topology.software_version);
  optional_number(archive, "oam_support", topology.oam_support, {0, UINT32_MAX});
  optional_number(archive, "ethernet_ports", topology.ethernet_ports, {1, 64});
  describe_ports(archive, topology);
}

void describe_pon(Archive &archive, Topology &topology) {
  optional_number(archive, "interfaces", topology.pon_interfaces, {1, 16});
  optional_number(archive, "onus_per_interface", topology.onus_per_interface, {1, 1024});
  optional_number(archive, "uni_ports_per_onu", topology.uni_ports_per_onu, {1, 32});
  optional_number(archive, "voice_lines_per_onu", topology.voice_lines_per_onu, {0, 8});
  auto restart = static_cast<uint32_t>(topology.onu_restart.count());
  auto longest = static_cast<uint64_t>(kMaxRestart.count());
  optional_number(archive, "onu_restart_seconds", restart, {0, longest});
  topology.onu_restart = std::chrono::seconds(restart);
}

}  // namespace

void Topology::describe(Archive &archive) {
  uint32_t version = 1;
  optional_number(archive, "version", version, {1, 1});
  if (archive.has("olt")) archive.object("olt", [&] { describe_olt(archive, *this); });
  if (archive.has("pon")) archive.object("pon", [&] { describe_pon(archive, *this); });
}

PortHardware Topology::port(uint32_t number) const {
  auto special = special_ports.find(number);
  return special == special_ports.end() ? PortHardware() : special->second;
}

Topology parse_topology(std::string_view text) {
  std::string data = from_json_text(text);
  Archive archive(data);
  Topology topology;
  topology.describe(archive);
  archive.finish();
  return topology;
}

Topology load_topology(const std::filesystem::path &file) {
  if (file.empty()) return {};
  try {
    return parse_topology(read_file(file));
  } catch (const std::exception &error) {
    throw BadInput(file.string() + ": " + error.what());
  }
}

}  // namespace olt::box
