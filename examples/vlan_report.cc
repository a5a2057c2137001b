// Adds VLANs and prints the listing of all of them.
// usage: vlan_report DIRECTORY VLAN...
// The directory is the one in which the box writes its listings.
#include <oltmgmt.h>
#include <string.h>

#include <charconv>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

void expect_success(const char *operation, int32_t result) {
  if (result == 0) return;
  char text[96];
  std::snprintf(text, sizeof text, "%s failed with result 0x%08x", operation,
                static_cast<unsigned>(result));
  throw std::runtime_error(text);
}

uint16_t parse_vlan(std::string_view text) {
  uint16_t vlan = 0;
  const char *end = text.data() + text.size();
  auto [stop, error] = std::from_chars(text.data(), end, vlan);
  if (error != std::errc() || stop != end || vlan < 1 || vlan > 4094) {
    throw std::invalid_argument("\"" + std::string(text) +
                                "\" is not a VLAN; expected a number from 1 to 4094");
  }
  return vlan;
}

void add_vlans(const std::vector<std::string> &words) {
  std::vector<olt_vlan_node> nodes(words.size());
  for (size_t i = 0; i < nodes.size(); ++i) {
    nodes[i].vlan_first = nodes[i].vlan_second = parse_vlan(words[i]);
    nodes[i].next = i + 1 < nodes.size() ? &nodes[i + 1] : nullptr;
  }
  olt_vlan_list list = {};
  list.head = nodes.data();
  list.count = static_cast<int32_t>(nodes.size());
  expect_success("add_vlan_list", add_vlan_list(&list));
}

void print_listing(const std::string &directory) {
  char name[32];
  expect_success("get_vlan_all", get_vlan_all(name));
  const std::string path = directory + "/" + std::string(name, strnlen(name, sizeof name));
  std::ifstream listing(path);
  if (!listing) throw std::runtime_error(path + " cannot be read");
  std::cout << listing.rdbuf();
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 3) {
    std::cerr << "usage: vlan_report DIRECTORY VLAN...\n";
    return 2;
  }
  try {
    add_vlans({argv + 2, argv + argc});
    print_listing(argv[1]);
    return 0;
  } catch (const std::exception &error) {
    std::cerr << "vlan_report: " << error.what() << '\n';
    return 1;
  }
}
