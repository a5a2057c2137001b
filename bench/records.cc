#include "bench/records.h"

#include <oltmgmt.h>

#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/olthost.h"

namespace olt::bench {

namespace {

constexpr uint32_t kOnusPerInterface = 1024;
constexpr uint32_t kPorts = 4;
constexpr uint32_t kRecordsPerPort = 5;

void expect_ok(const char *operation, int32_t result) {
  if (result != 0) fail(std::string(operation) + " failed");
}

olt_ont_target target_of(uint32_t port) {
  const uint32_t words[] = {1, 1 + port / kPorts / kOnusPerInterface,
                            1 + port / kPorts % kOnusPerInterface, 1, 1 + port % kPorts};
  olt_ont_target target{};
  target.target_kind = 1;
  std::memcpy(&target, words, sizeof words);
  return target;
}

/// Sets one of the port's records.
void set_record(const olt_ont_target &port, uint32_t which) {
  olt_uni_downrate rate;
  olt_uni_block block;
  olt_uni_vlan_mode mode;
  std::memset(&rate, 1, sizeof rate);
  std::memset(&block, 'a', sizeof block);
  std::memset(&mode, 1, sizeof mode);
  switch (which) {
    case 0:
      return expect_ok("set_ont_port_loopback", set_ont_port_loopback(&port, 1));
    case 1:
      return expect_ok("set_ont_port_downrate", set_ont_port_downrate(&port, &rate));
    case 2:
      return expect_ok("set_ont_port_basicinfo", set_ont_port_basicinfo(&port, &block));
    case 3:
      return expect_ok("set_ont_port_description", set_ont_port_description(&port, &block));
    default:
      return expect_ok("set_ont_port_vlanmode", set_ont_port_vlanmode(&port, &mode));
  }
}

}  // namespace

LargeBox::LargeBox(std::string state_dir) : state_dir_(std::move(state_dir)) {
  write_file(folder_ / "topology.json",
             R"({"pon": {"interfaces": 16, "onus_per_interface": 1024, "uni_ports_per_onu": 4}})");
  setenv("OLT_RUN_DIR", (folder_ / "run").c_str(), 1);
  start();
}

void LargeBox::start() {
  server_.emplace(std::vector<std::string>{OLTBOX, "--run-dir", folder_ / "run", "--state-dir",
                                           state_dir_, "--topology", folder_ / "topology.json"});
}

void LargeBox::restart() {
  server_.reset();
  olt_connect_through(nullptr, nullptr);
  start();
}

void LargeBox::fill(uint32_t records) {
  for (; records_ < records; ++records_) {
    set_record(target_of(records_ / kRecordsPerPort), records_ % kRecordsPerPort);
  }
}

void LargeBox::allow(uint32_t entries) {
  std::vector<olt_auth_entry> list(entries);
  for (uint32_t i = 0; i < entries; ++i) {
    const uint8_t mac[] = {2, 0, 0, 0, static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i)};
    std::memcpy(list[i].bytes, mac, sizeof mac);
  }
  expect_ok("add_authallowed_mac",
            add_authallowed_mac(1, 1, static_cast<int32_t>(entries), list.data()));
}

void LargeBox::save() {
  expect_ok("save_system_config", save_system_config());
}

void LargeBox::reboot() {
  expect_ok("do_reboot_system", do_reboot_system());
}

}  // namespace olt::bench
