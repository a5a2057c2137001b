#include "catalog/catalog.h"

#include <algorithm>
#include <array>
#include <iterator>

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

constexpr auto kWireSecrets = [] {
  std::array<WireSecret, std::size(kUserPasswords) + std::size(kEntryPasswords)> all{};
  std::copy(std::begin(kEntryPasswords), std::end(kEntryPasswords),
            std::copy(std::begin(kUserPasswords), std::end(kUserPasswords), all.begin()));
  return all;
}();

}  // namespace

std::span<const Family> families() {
  return kFamilies;
}

const Operation *find(std::string_view name) {
  for (const Family &family : kFamilies) {
    for (const Operation &operation : family.operations) {
      if (operation.name == name) return &operation;
    }
  }
  return nullptr;
}

std::span<const WireSecret> wire_secrets() {
  return kWireSecrets;
}

}  // namespace olt::catalog
