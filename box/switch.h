/// The families of the Ethernet switch, one source file each.
#ifndef OLT_BOX_SWITCH_H
#define OLT_BOX_SWITCH_H

#include <memory>
#include <vector>

#include "box/chassis.h"
#include "box/switch_state.h"

namespace olt::box {

using SharedSwitch = std::shared_ptr<SwitchState>;

std::unique_ptr<Family> make_switch_vlan(Chassis &chassis, SharedSwitch state);
std::unique_ptr<Family> make_switch_port(Chassis &chassis, SharedSwitch state);
std::unique_ptr<Family> make_switch_statistics(Chassis &chassis, SharedSwitch state);
std::unique_ptr<Family> make_switch_mac(Chassis &chassis, SharedSwitch state);
std::unique_ptr<Family> make_switch_rstp(Chassis &chassis, SharedSwitch state);
std::unique_ptr<Family> make_switch_multicast(Chassis &chassis);

/// Adds all of them, in the order in which listings show them.
void add_switch_families(Chassis &chassis, const SharedSwitch &state,
                         std::vector<std::unique_ptr<Family>> &families);

}  // namespace olt::box

#endif
