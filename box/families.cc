#include "box/families.h"

#include "box/ont/families.h"
#include "box/pon/families.h"
#include "box/snmp/families.h"
#include "box/switch/families.h"
#include "box/system/families.h"

namespace olt::box {

std::vector<std::unique_ptr<Family>> make_families(Hardware &hardware, SharedState &state) {
  auto &[ethernet, onus, admission, iptv] = state;
  std::unique_ptr<Family> families[] = {
      make_system_information(hardware),
      make_system_control(hardware),
      make_system_users(hardware),
      make_system_settings(hardware),
      make_system_log(hardware),
      make_system_debug(hardware),
      make_system_update(hardware),
      make_switch_port(hardware, ethernet),
      make_switch_vlan(hardware, ethernet),
      make_switch_statistics(hardware, ethernet),
      make_switch_mac(hardware, ethernet),
      make_switch_rstp(hardware, ethernet),
      make_switch_multicast(hardware),
      make_pon_authentication(hardware, onus, admission),
      make_pon_inventory(hardware, onus),
      make_pon_link(hardware, onus, admission),
      make_pon_uni_port(hardware, onus),
      make_pon_multicast(hardware, onus),
      make_ont_voice(hardware, onus),
      make_ont_wan(hardware, onus),
      make_ont_iptv(hardware, onus, iptv),
      make_snmp_onu_rows(hardware, onus, iptv),
      make_snmp_olt_rows(hardware, ethernet, onus, admission),
  };
  return {std::make_move_iterator(std::begin(families)),
          std::make_move_iterator(std::end(families))};
}

}  // namespace olt::box
