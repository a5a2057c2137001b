#include "tests/box/onu_support.h"

namespace olt::test {

SmallPon::SmallPon() {
  options.topology_file = folder.write(
      "box.json",
      R"({"pon":{"interfaces":2,"onus_per_interface":4,"uni_ports_per_onu":2,"onu_restart_seconds":3}})");
}

std::string SmallPon::list_interface(uint32_t type, uint32_t interface) {
  return listing(reply(type, listed_interface(interface)), kListingNameAt);
}

std::string SmallPon::list_target(uint32_t type, const Bytes &target) {
  return listing(reply(type, target), 0);
}

Bytes target(uint32_t interface, uint32_t onu, uint32_t part) {
  Bytes bytes(kTargetSize, 0xEE);
  put(bytes, 0, words({1, interface, onu, 1, part}));

  return bytes;
}

Bytes target_with(const Bytes &target, const Bytes &tail) {
  Bytes bytes = target;
  bytes.insert(bytes.end(), tail.begin(), tail.end());
  return bytes;
}

Bytes interface_record(uint32_t interface) {
  return record(kInterfaceSize, {{0, word(1)}, {4, word(interface)}});
}

Bytes listed_interface(uint32_t interface) {
  return record(kInterfaceSize, {{4, word(1)}, {8, word(interface)}});
}

Bytes mode_record(uint32_t interface, uint32_t mode) {
  return record(kInterfaceSize, {{0, word(1)}, {4, word(interface)}, {kAuthModeAt, word(mode)}});
}

Bytes auth_entry(std::string_view mac, std::string_view loid, std::string_view password) {
  return record(kAuthEntrySize,
                {{0, hex(mac)}, {kLoidAt, text(loid)}, {kLoidPasswordAt, text(password)}});
}

Bytes auth_entries(uint32_t interface, std::initializer_list<Bytes> entries) {
  Bytes bytes(kInterfaceSize, 0xEE);
  put(bytes, 0, slice(interface_record(interface), 0, 8));
  for (const Bytes &entry : entries) bytes.insert(bytes.end(), entry.begin(), entry.end());
  return bytes;
}

}  // namespace olt::test
