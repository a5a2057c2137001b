/// The row readers of the SNMP tables.
#ifndef OLT_BOX_SNMP_FAMILIES_H
#define OLT_BOX_SNMP_FAMILIES_H

#include <memory>

#include "box/core/hardware.h"
#include "box/ont/iptv_state.h"
#include "box/pon/admission.h"
#include "box/pon/onu_family.h"
#include "box/switch/families.h"

namespace olt::box {

/// Whether the word is a RowSelector.
inline bool is_selector(uint32_t word) {
  return word == kThisRow || word == kNextRow;
}

std::unique_ptr<Family> make_snmp_onu_rows(Hardware &hardware, OnuState &onus, IptvState &iptv);
std::unique_ptr<Family> make_snmp_olt_rows(Hardware &hardware, SwitchState &ethernet,
                                           OnuState &onus, PonAdmission &admission);

}  // namespace olt::box

#endif
