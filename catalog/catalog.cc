#include "catalog/catalog.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <vector>

#include "catalog/flash.h"
#include "catalog/message_fields.h"
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

constexpr auto kModules = [] {
  std::array<Module, std::size(kModuleNames)> modules{};
  std::transform(std::begin(kModuleNames), std::end(kModuleNames), modules.begin(),
                 [](const ValueName &module) {
                   return Module{static_cast<uint8_t>(module.value), module.name};
                 });
  return modules;
}();

/// Each place once.
class WireSecrets {
 public:
  explicit WireSecrets(std::span<const Family> families) {
    for (const Family &family : families) {
      for (const Operation &operation : family.operations) {
        add(operation, operation.request);
        add(operation, operation.reply);
      }
    }
  }

  std::vector<WireSecret> take() { return std::move(all_); }

 private:
  void add(const Operation &operation, const Message &message) {
    for (const MessageField &placed : fields_of(operation, message)) {
      const Field &field = placed.field;
      if (field.secret) add(operation, field.offset, field, 0);
      for (const Field &inner : field.record) {
        if (!inner.secret) continue;
        add(operation, field.offset + inner.offset, inner, field.record_size);
        add(operation, inner.offset, inner, field.record_size);
      }
    }
  }

  void add(const Operation &operation, uint32_t offset, const Field &field, uint32_t stride) {
    uint32_t length = field.width == Field::kToTheEnd ? UINT16_MAX : field.width;
    WireSecret secret{operation.address.message_type, static_cast<uint16_t>(offset),
                      static_cast<uint16_t>(length), static_cast<uint16_t>(stride)};
    if (std::find(all_.begin(), all_.end(), secret) == all_.end()) all_.push_back(secret);
  }

  std::vector<WireSecret> all_;
};

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

std::span<const Module> modules() {
  return kModules;
}

std::vector<WireSecret> wire_secrets(std::span<const Family> families) {
  return WireSecrets(families).take();
}

std::span<const WireSecret> wire_secrets() {
  static const std::vector<WireSecret> secrets = wire_secrets(kFamilies);
  return secrets;
}

}  // namespace olt::catalog
