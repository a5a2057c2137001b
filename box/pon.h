/// The families of the PON interfaces and of the ONUs behind them, one source file each.
#ifndef OLT_BOX_PON_H
#define OLT_BOX_PON_H

#include <memory>
#include <vector>

#include "box/chassis.h"
#include "box/onu_family.h"
#include "box/pon_admission.h"

namespace olt::box {

std::unique_ptr<Family> make_pon_authentication(Chassis &chassis, SharedOnus state,
                                                SharedAdmission admission);
std::unique_ptr<Family> make_pon_inventory(Chassis &chassis, SharedOnus state);
std::unique_ptr<Family> make_pon_link(Chassis &chassis, const SharedOnus &state,
                                      SharedAdmission admission);
std::unique_ptr<Family> make_pon_uni_port(Chassis &chassis, const SharedOnus &state);
std::unique_ptr<Family> make_pon_multicast(Chassis &chassis, const SharedOnus &state);

/// Adds all of them, in the order in which listings show them.
void add_pon_families(Chassis &chassis, const SharedOnus &state, const SharedAdmission &admission,
                      std::vector<std::unique_ptr<Family>> &families);

}  // namespace olt::box

#endif
