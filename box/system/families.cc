#include "box/system/families.h"

namespace olt::box {

void add_system_families(Hardware &hardware, std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_system_information(hardware));
  families.push_back(make_system_control(hardware));
  families.push_back(make_system_users(hardware));
  families.push_back(make_system_settings(hardware));
  families.push_back(make_system_log(hardware));
  families.push_back(make_system_debug(hardware));
  families.push_back(make_system_update(hardware));
}

}  // namespace olt::box
