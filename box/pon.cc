#include "box/pon.h"

namespace olt::box {

void add_pon_families(Chassis &chassis, const SharedOnus &state, const SharedAdmission &admission,
                      std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_pon_authentication(chassis, state, admission));
  families.push_back(make_pon_inventory(chassis, state));
  families.push_back(make_pon_link(chassis, state, admission));
  families.push_back(make_pon_uni_port(chassis, state));
  families.push_back(make_pon_multicast(chassis, state));
}

}  // namespace olt::box
