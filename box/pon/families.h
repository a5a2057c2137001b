/// The families of the PON interfaces and their ONUs, one source file each.
#ifndef OLT_BOX_PON_FAMILIES_H
#define OLT_BOX_PON_FAMILIES_H

#include <memory>

#include "box/core/hardware.h"
#include "box/pon/admission.h"
#include "box/pon/onu_family.h"

namespace olt::box {

std::unique_ptr<Family> make_pon_authentication(Hardware &hardware, OnuState &state,
                                                PonAdmission &admission);
std::unique_ptr<Family> make_pon_inventory(Hardware &hardware, OnuState &state);
std::unique_ptr<Family> make_pon_link(Hardware &hardware, OnuState &state, PonAdmission &admission);
std::unique_ptr<Family> make_pon_uni_port(Hardware &hardware, OnuState &state);
std::unique_ptr<Family> make_pon_multicast(Hardware &hardware, OnuState &state);

}  // namespace olt::box

#endif
