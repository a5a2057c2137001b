/// The families of system administration, one source file each.
#ifndef OLT_BOX_SYSTEM_H
#define OLT_BOX_SYSTEM_H

#include <memory>
#include <vector>

#include "box/chassis.h"

namespace olt::box {

std::unique_ptr<Family> make_system_control(Chassis &chassis);
std::unique_ptr<Family> make_system_users(Chassis &chassis);
std::unique_ptr<Family> make_system_settings(Chassis &chassis);
std::unique_ptr<Family> make_system_information(Chassis &chassis);
std::unique_ptr<Family> make_system_debug(Chassis &chassis);
std::unique_ptr<Family> make_system_log(Chassis &chassis);
std::unique_ptr<Family> make_system_update(Chassis &chassis);

/// Adds all of them, in the order in which listings show them.
void add_system_families(Chassis &chassis, std::vector<std::unique_ptr<Family>> &families);

}  // namespace olt::box

#endif
