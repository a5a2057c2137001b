/// The families of the Ethernet switch, one source file each.
#ifndef OLT_BOX_SWITCH_FAMILIES_H
#define OLT_BOX_SWITCH_FAMILIES_H

#include <memory>

#include "box/core/hardware.h"
#include "box/switch/switch_state.h"

namespace olt::box {

std::unique_ptr<Family> make_switch_vlan(Hardware &hardware, SwitchState &state);
std::unique_ptr<Family> make_switch_port(Hardware &hardware, SwitchState &state);
std::unique_ptr<Family> make_switch_statistics(Hardware &hardware, SwitchState &state);
std::unique_ptr<Family> make_switch_mac(Hardware &hardware, SwitchState &state);
std::unique_ptr<Family> make_switch_rstp(Hardware &hardware, SwitchState &state);
std::unique_ptr<Family> make_switch_multicast(Hardware &hardware);

}  // namespace olt::box

#endif
