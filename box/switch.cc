#include "box/switch.h"

namespace olt::box {

void add_switch_families(Chassis &chassis, const SharedSwitch &state,
                         std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_switch_port(chassis, state));
  families.push_back(make_switch_vlan(chassis, state));
  families.push_back(make_switch_statistics(chassis, state));
  families.push_back(make_switch_mac(chassis, state));
  families.push_back(make_switch_rstp(chassis, state));
  families.push_back(make_switch_multicast(chassis));
}

}  // namespace olt::box
