#include "catalog/catalog.h"

#include <array>
#include <cstddef>

#include "catalog/flash.h"
#include "catalog/ont.h"
#include "catalog/pon.h"
#include "catalog/snmp.h"
#include "catalog/switch.h"
#include "catalog/system.h"

namespace olt::catalog {

namespace {

constexpr Family kFamilies[] = {
    {"Flash storage", kFlash},
    {"System control", kSystemControl},
    {"User accounts", kUserAccounts},
    {"System information and network settings", kSystemInformation},
    {"Log and debug controls", kLogAndDebug},
    {"Firmware update", kFirmwareUpdate},
    {"VLAN tables", kVlanTables},
    {"Trunk VLAN membership", kTrunkVlans},
    {"OLT ports", kOltPorts},
    {"Port statistics and MAC tables", kPortStatistics},
    {"RSTP", kRstp},
    {"IGMP proxy and multicast VLANs", kIgmpProxy},
    {"ONU authentication", kOnuAuthentication},
    {"ONU inventory", kOnuInventory},
    {"ONU links and features", kOnuLinks},
    {"ONT UNI ports", kUniPorts},
    {"ONT multicast", kOntMulticast},
    {"ONT voice", kOntVoice},
    {"ONT WAN connections", kOntWan},
    {"IPTV profiles and channels", kIptv},
    {"SNMP tables of ONUs and their services", kSnmpOnuTables},
    {"SNMP tables of the OLT", kSnmpOltTables},
};

template <size_t... sizes>
constexpr auto joined(const WireSecret (&...groups)[sizes]) {
  std::array<WireSecret, (sizes + ...)> all{};
  size_t count = 0;
  auto append = [&all, &count](std::span<const WireSecret> group) {
    for (const WireSecret &secret : group) all[count++] = secret;
  };
  (append(groups), ...);
  return all;
}

constexpr auto kWireSecrets = joined(kUserPasswords, kEntryPasswords);

template <typename Predicate>
const Operation *first(Predicate matches) {
  for (const Family &family : kFamilies) {
    for (const Operation &operation : family.operations) {
      if (matches(operation)) return &operation;
    }
  }
  return nullptr;
}

}  // namespace

std::span<const Family> families() {
  return kFamilies;
}

const Operation *find(std::string_view name) {
  return first([name](const Operation &operation) { return operation.name == name; });
}

const Operation *find_sender(uint32_t message_type) {
  return first([message_type](const Operation &operation) {
    return operation.address.sends() && operation.address.message_type == message_type;
  });
}

std::span<const WireSecret> wire_secrets() {
  return kWireSecrets;
}

}  // namespace olt::catalog
