#include "box/switch/families.h"

namespace olt::box {

void add_switch_families(Hardware &hardware, const SharedSwitch &state,
                         std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_switch_port(hardware, state));
  families.push_back(make_switch_vlan(hardware, state));
  families.push_back(make_switch_statistics(hardware, state));
  families.push_back(make_switch_mac(hardware, state));
  families.push_back(make_switch_rstp(hardware, state));
  families.push_back(make_switch_multicast(hardware));
}

}  // namespace olt::box
