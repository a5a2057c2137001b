/// The readers of SNMP tables, one source file for each side.
#ifndef OLT_BOX_SNMP_H
#define OLT_BOX_SNMP_H

#include <memory>
#include <vector>

#include "box/chassis.h"
#include "box/iptv_state.h"
#include "box/onu_family.h"
#include "box/pon_admission.h"
#include "box/switch.h"

namespace olt::box {

std::unique_ptr<Family> make_snmp_onu_rows(Chassis &chassis, SharedOnus onus, SharedIptv iptv);
std::unique_ptr<Family> make_snmp_olt_rows(Chassis &chassis, SharedSwitch ethernet, SharedOnus onus,
                                           SharedAdmission admission);

/// Adds both.
void add_snmp_families(Chassis &chassis, const SharedSwitch &ethernet, const SharedOnus &onus,
                       const SharedAdmission &admission, const SharedIptv &iptv,
                       std::vector<std::unique_ptr<Family>> &families);

}  // namespace olt::box

#endif
