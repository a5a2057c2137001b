/// The families of system administration, one source file each.
#ifndef OLT_BOX_SYSTEM_FAMILIES_H
#define OLT_BOX_SYSTEM_FAMILIES_H

#include <memory>

#include "box/core/hardware.h"

namespace olt::box {

std::unique_ptr<Family> make_system_control(Hardware &hardware);
std::unique_ptr<Family> make_system_users(Hardware &hardware);
std::unique_ptr<Family> make_system_settings(Hardware &hardware);
std::unique_ptr<Family> make_system_information(Hardware &hardware);
std::unique_ptr<Family> make_system_debug(Hardware &hardware);
std::unique_ptr<Family> make_system_log(Hardware &hardware);
std::unique_ptr<Family> make_system_update(Hardware &hardware);

}  // namespace olt::box

#endif
