/// The families of the Ethernet switch, one source file each.
#ifndef OLT_BOX_SWITCH_FAMILIES_H
#define OLT_BOX_SWITCH_FAMILIES_H

#include <memory>
#include <vector>

#include "box/core/hardware.h"
#include "box/switch/switch_state.h"

namespace olt::box {

using SharedSwitch = std::shared_ptr<SwitchState>;

std::unique_ptr<Family> make_switch_vlan(Hardware &hardware, SharedSwitch state);
std::unique_ptr<Family> make_switch_port(Hardware &hardware, SharedSwitch state);
std::unique_ptr<Family> make_switch_statistics(Hardware &hardware, SharedSwitch state);
std::unique_ptr<Family> make_switch_mac(Hardware &hardware, SharedSwitch state);
std::unique_ptr<Family> make_switch_rstp(Hardware &hardware, SharedSwitch state);
std::unique_ptr<Family> make_switch_multicast(Hardware &hardware);

/// Adds all of them, in the order in which listings show them.
void add_switch_families(Hardware &hardware, const SharedSwitch &state,
                         std::vector<std::unique_ptr<Family>> &families);

}  // namespace olt::box

#endif
