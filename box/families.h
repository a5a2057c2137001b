/// The families of messages that the box serves, and the state that they share.
#ifndef OLT_BOX_FAMILIES_H
#define OLT_BOX_FAMILIES_H

#include <memory>
#include <vector>

#include "base/clock.h"
#include "box/core/hardware.h"
#include "box/core/topology.h"
#include "box/ont/iptv_state.h"
#include "box/pon/admission.h"
#include "box/pon/onu_state.h"
#include "box/switch/switch_state.h"

namespace olt::box {

/// State that more than one family uses.
struct SharedState {
  SharedState(const Topology &topology, TimePoint now)
      : ethernet(topology, now), onus(topology, now), admission(onus) {}

  SwitchState ethernet;
  OnuState onus;
  PonAdmission admission;
  IptvState iptv;
};

/// All families, in the order of the listings. Hardware and state must outlive them.
std::vector<std::unique_ptr<Family>> make_families(Hardware &hardware, SharedState &state);

}  // namespace olt::box

#endif
