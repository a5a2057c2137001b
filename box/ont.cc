#include "box/ont.h"

namespace olt::box {

void add_ont_families(Chassis &chassis, const SharedOnus &state, const SharedIptv &iptv,
                      std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_ont_voice(chassis, state));
  families.push_back(make_ont_wan(chassis, state));
  families.push_back(make_ont_iptv(chassis, state, iptv));
}

}  // namespace olt::box
