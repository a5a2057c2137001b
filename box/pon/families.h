/// The families of the PON interfaces and of the ONUs behind them, one source file each.
#ifndef OLT_BOX_PON_FAMILIES_H
#define OLT_BOX_PON_FAMILIES_H

#include <memory>
#include <vector>

#include "box/core/hardware.h"
#include "box/pon/admission.h"
#include "box/pon/onu_family.h"

namespace olt::box {

std::unique_ptr<Family> make_pon_authentication(Hardware &hardware, SharedOnus state,
                                                SharedAdmission admission);
std::unique_ptr<Family> make_pon_inventory(Hardware &hardware, SharedOnus state);
std::unique_ptr<Family> make_pon_link(Hardware &hardware, const SharedOnus &state,
                                      SharedAdmission admission);
std::unique_ptr<Family> make_pon_uni_port(Hardware &hardware, const SharedOnus &state);
std::unique_ptr<Family> make_pon_multicast(Hardware &hardware, const SharedOnus &state);

/// Adds all of them, in the order in which listings show them.
void add_pon_families(Hardware &hardware, const SharedOnus &state, const SharedAdmission &admission,
                      std::vector<std::unique_ptr<Family>> &families);

}  // namespace olt::box

#endif
