#include "box/core/topology.h"

#include <algorithm>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/state/files.h"
#include "box/state/json.h"

namespace olt::box {

namespace {

constexpr size_t kMaxText = 31;

std::string read_text(ObjectReader &object, std::string_view key, const std::string &fallback) {
  std::string text = object.text(key, fallback);
  if (text.empty() || text.size() > kMaxText || text != printable_ascii(text)) {
    refuse(object.place_of(key), text, "1 to 31 printable ASCII characters");
  }
  return text;
}

Mac read_mac(ObjectReader &object, const Mac &fallback) {
  const Json *member = object.find("mac");
  if (member == nullptr) return fallback;
  auto mac = to_mac(member->is_string() ? member->get<std::string>() : "");
  if (!mac || ((*mac)[0] & 1) != 0) {
    refuse(object.place_of("mac"), *member,
           "the MAC address of one device, such as \"02:00:00:00:00:01\"");
  }
  return *mac;
}

void read_number(ObjectReader &object, std::string_view key, NumberRange range, uint32_t &field) {
  field = static_cast<uint32_t>(object.number(key, range, field));
}

uint32_t read_speed(ObjectReader &port, uint32_t fallback) {
  auto speed = static_cast<uint32_t>(port.number("speed", kAnyU32, fallback));
  if (speed != 10 && speed != 100 && speed != 1000 && speed != 10'000) {
    refuse(port.place_of("speed"), speed, "10, 100, 1000 or 10000");
  }
  return speed;
}

bool read_full_duplex(ObjectReader &port) {
  std::string duplex = port.text("duplex", "full");
  if (duplex != "full" && duplex != "half") {
    refuse(port.place_of("duplex"), duplex, R"("full" or "half")");
  }
  return duplex == "full";
}

void read_port(const Json &value, const std::string &place, Topology &topology) {
  ObjectReader port(value, place);
  auto number = static_cast<uint32_t>(port.number("port", {1, topology.ethernet_ports}));
  PortHardware hardware;
  hardware.speed = read_speed(port, hardware.speed);
  hardware.full_duplex = read_full_duplex(port);
  if (port.find("plugged") != nullptr) hardware.plugged = port.flag("plugged");
  read_number(port, "stations", {0, 64}, hardware.stations);
  port.finish();
  if (!topology.special_ports.emplace(number, hardware).second) {
    refuse(port.place_of("port"), number, "each port once");
  }
}

void read_olt(const Json &value, Topology &topology) {
  ObjectReader olt(value, "/olt");
  topology.name = read_text(olt, "name", topology.name);
  topology.mac = read_mac(olt, topology.mac);
  topology.serial = read_text(olt, "serial", topology.serial);
  topology.software_version = read_text(olt, "software_version", topology.software_version);
  read_number(olt, "oam_support", kAnyU32, topology.oam_support);
  read_number(olt, "ethernet_ports", {1, 64}, topology.ethernet_ports);
  if (const Json *ports = olt.find("ports")) {
    for_each_element(*ports, olt.place_of("ports"),
                     [&topology](const Json &element, const std::string &at) {
                       read_port(element, at, topology);
                     });
  }
  olt.finish();
}

void read_pon(const Json &value, Topology &topology) {
  ObjectReader pon(value, "/pon");
  read_number(pon, "interfaces", {1, 16}, topology.pon_interfaces);
  read_number(pon, "onus_per_interface", {1, 1024}, topology.onus_per_interface);
  read_number(pon, "uni_ports_per_onu", {1, 32}, topology.uni_ports_per_onu);
  read_number(pon, "voice_lines_per_onu", {0, 8}, topology.voice_lines_per_onu);
  auto restart = static_cast<uint64_t>(topology.onu_restart.count());
  auto longest = static_cast<uint64_t>(kMaxRestart.count());
  topology.onu_restart =
      std::chrono::seconds(pon.number("onu_restart_seconds", {0, longest}, restart));
  pon.finish();
}

}  // namespace

PortHardware Topology::port(uint32_t number) const {
  auto special = special_ports.find(number);
  return special == special_ports.end() ? PortHardware() : special->second;
}

Topology parse_topology(std::string_view text) {
  Json value = parse_json(text);
  ObjectReader root(value, "");
  Topology topology;
  root.number("version", {1, 1}, 1);
  if (const Json *olt = root.find("olt")) read_olt(*olt, topology);
  if (const Json *pon = root.find("pon")) read_pon(*pon, topology);
  root.finish();
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
