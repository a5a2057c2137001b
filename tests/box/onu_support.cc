#include "tests/box/onu_support.h"

#include <gtest/gtest.h>

namespace olt::tests {

SmallPon::SmallPon() {
  options.topology_file = folder.write(
      "box.json",
      R"({"pon":{"interfaces":2,"onus_per_interface":4,"uni_ports_per_onu":2,"onu_restart_seconds":3}})");
}

std::string SmallPon::list_interface(uint32_t type, uint32_t interface) {
  return listing(reply(2, type, listed_interface(interface)), 48);
}

std::string SmallPon::list_target(uint32_t type, const Bytes &target) {
  return listing(reply(2, type, target), 0);
}

Bytes target(uint32_t interface, uint32_t onu, uint32_t part) {
  Bytes bytes(88, 0xEE);
  const uint32_t words[] = {1, interface, onu, 1, part};
  for (size_t i = 0; i < std::size(words); ++i) {
    Bytes field = word(words[i]);
    std::copy(field.begin(), field.end(), bytes.begin() + static_cast<std::ptrdiff_t>(4 * i));
  }
  return bytes;
}

Bytes target_with(const Bytes &target, const Bytes &tail) {
  Bytes bytes = target;
  bytes.insert(bytes.end(), tail.begin(), tail.end());
  return bytes;
}

Bytes interface_record(uint32_t interface) {
  return record(80, {{0, word(1)}, {4, word(interface)}});
}

Bytes listed_interface(uint32_t interface) {
  return record(80, {{4, word(1)}, {8, word(interface)}});
}

Bytes auth_entry(std::string_view mac, std::string_view loid, std::string_view password) {
  return record(44, {{0, hex(mac)}, {8, text(loid)}, {32, text(password)}});
}

Bytes auth_entries(uint32_t interface, std::initializer_list<Bytes> entries) {
  Bytes bytes(80, 0xEE);
  Bytes head = interface_record(interface);
  std::copy_n(head.begin(), 8, bytes.begin());
  for (const Bytes &entry : entries) bytes.insert(bytes.end(), entry.begin(), entry.end());
  return bytes;
}

}  // namespace olt::tests
