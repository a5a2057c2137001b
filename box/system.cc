#include "box/system.h"

namespace olt::box {

void add_system_families(Chassis &chassis, std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_system_information(chassis));
  families.push_back(make_system_control(chassis));
  families.push_back(make_system_users(chassis));
  families.push_back(make_system_settings(chassis));
  families.push_back(make_system_log(chassis));
  families.push_back(make_system_debug(chassis));
  families.push_back(make_system_update(chassis));
}

}  // namespace olt::box
