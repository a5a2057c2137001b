#include "box/pon/families.h"

namespace olt::box {

void add_pon_families(Hardware &hardware, const SharedOnus &state, const SharedAdmission &admission,
                      std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_pon_authentication(hardware, state, admission));
  families.push_back(make_pon_inventory(hardware, state));
  families.push_back(make_pon_link(hardware, state, admission));
  families.push_back(make_pon_uni_port(hardware, state));
  families.push_back(make_pon_multicast(hardware, state));
}

}  // namespace olt::box
