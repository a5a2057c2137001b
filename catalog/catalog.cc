#include "catalog/catalog.h"

#include "catalog/system.h"

namespace olt::catalog {

namespace {

constexpr Family kFamilies[] = {
    {"System control", kSystemControl},
    {"User accounts", kUserAccounts},
    {"System information and network settings", kSystemInformation},
    {"Log and debug controls", kLogAndDebug},
    {"Firmware update", kFirmwareUpdate},
};

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
    return operation.address.message_type == message_type;
  });
}

std::span<const WireSecret> wire_secrets() {
  return kUserPasswords;
}

}  // namespace olt::catalog
