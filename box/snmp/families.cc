#include "box/snmp/families.h"

namespace olt::box {

void add_snmp_families(Hardware &hardware, const SharedSwitch &ethernet, const SharedOnus &onus,
                       const SharedAdmission &admission, const SharedIptv &iptv,
                       std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_snmp_onu_rows(hardware, onus, iptv));
  families.push_back(make_snmp_olt_rows(hardware, ethernet, onus, admission));
}

}  // namespace olt::box
