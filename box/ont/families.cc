#include "box/ont/families.h"

namespace olt::box {

void add_ont_families(Hardware &hardware, const SharedOnus &state, const SharedIptv &iptv,
                      std::vector<std::unique_ptr<Family>> &families) {
  families.push_back(make_ont_voice(hardware, state));
  families.push_back(make_ont_wan(hardware, state));
  families.push_back(make_ont_iptv(hardware, state, iptv));
}

}  // namespace olt::box
