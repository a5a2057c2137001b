/* Layout of all records of the public header, in C and in C++. check_records.sh finds gaps. */
#include <assert.h>
#include <stdalign.h>
#include <stddef.h>

#include "oltmgmt.h"

#define ASSERT_RECORD(type, size, alignment)    \
  static_assert(sizeof(type) == (size), #type); \
  static_assert(alignof(type) == (alignment), #type)
#define ASSERT_FIELD(type, field, offset, size)             \
  static_assert(offsetof(type, field) == (offset), #field); \
  static_assert(sizeof(((type *)0)->field) == (size), #field)

ASSERT_RECORD(olt_system_network, 172, 1);
ASSERT_FIELD(olt_system_network, bytes, 0, 172);

ASSERT_RECORD(olt_sntp_config, 88, 1);
ASSERT_FIELD(olt_sntp_config, bytes, 0, 88);

ASSERT_RECORD(olt_user, 80, 4);
ASSERT_FIELD(olt_user, user_op, 0, 4);
ASSERT_FIELD(olt_user, user_index, 4, 4);
ASSERT_FIELD(olt_user, user_name, 8, 32);
ASSERT_FIELD(olt_user, user_password, 40, 32);
ASSERT_FIELD(olt_user, level_a, 72, 4);
ASSERT_FIELD(olt_user, level_b, 76, 4);

ASSERT_RECORD(olt_mac, 6, 1);
ASSERT_FIELD(olt_mac, bytes, 0, 6);

ASSERT_RECORD(olt_snmp_param, 136, 1);
ASSERT_FIELD(olt_snmp_param, bytes, 0, 136);

ASSERT_RECORD(olt_snmp_systeminfo, 196, 1);
ASSERT_FIELD(olt_snmp_systeminfo, bytes, 0, 196);

ASSERT_RECORD(olt_debug_value, 12, 4);
ASSERT_FIELD(olt_debug_value, debug_op, 0, 4);
ASSERT_FIELD(olt_debug_value, reserved_04, 4, 4);
ASSERT_FIELD(olt_debug_value, debug_value, 8, 4);

ASSERT_RECORD(olt_switch_debug, 28, 4);
ASSERT_FIELD(olt_switch_debug, debug_op, 0, 4);
ASSERT_FIELD(olt_switch_debug, reserved_04, 4, 20);
ASSERT_FIELD(olt_switch_debug, debug_value, 24, 2);
ASSERT_FIELD(olt_switch_debug, reserved_1a, 26, 2);

ASSERT_RECORD(olt_vlan_node, 48, sizeof(void *));
/* NOLINTNEXTLINE(bugprone-sizeof-expression): a pointer is what is measured */
ASSERT_FIELD(olt_vlan_node, next, 0, sizeof(void *));
ASSERT_FIELD(olt_vlan_node, reserved, sizeof(void *), 12 - sizeof(void *));
ASSERT_FIELD(olt_vlan_node, vlan_first, 12, 2);
ASSERT_FIELD(olt_vlan_node, vlan_second, 14, 2);
ASSERT_FIELD(olt_vlan_node, vlan_descr, 16, 32);

ASSERT_RECORD(olt_vlan_list, sizeof(void *) == 8 ? 24 : 20, sizeof(void *));
/* NOLINTNEXTLINE(bugprone-sizeof-expression): a pointer is what is measured */
ASSERT_FIELD(olt_vlan_list, head, 0, sizeof(void *));
ASSERT_FIELD(olt_vlan_list, reserved, sizeof(void *), 16 - sizeof(void *));
ASSERT_FIELD(olt_vlan_list, count, 16, 4);

ASSERT_RECORD(olt_port_attributes, 80, 4);
ASSERT_FIELD(olt_port_attributes, slot, 0, 4);
ASSERT_FIELD(olt_port_attributes, port, 4, 4);
ASSERT_FIELD(olt_port_attributes, reserved_08, 8, 4);
ASSERT_FIELD(olt_port_attributes, sfp_module, 12, 4);
ASSERT_FIELD(olt_port_attributes, port_enable, 16, 4);
ASSERT_FIELD(olt_port_attributes, link_speed, 20, 4);
ASSERT_FIELD(olt_port_attributes, link_duplex, 24, 4);
ASSERT_FIELD(olt_port_attributes, vlanmode_second, 28, 4);
ASSERT_FIELD(olt_port_attributes, vlanmode_first, 32, 4);
ASSERT_FIELD(olt_port_attributes, reserved_24, 36, 4);
ASSERT_FIELD(olt_port_attributes, flowcontrol, 40, 4);
ASSERT_FIELD(olt_port_attributes, ingressfilter_first, 44, 4);
ASSERT_FIELD(olt_port_attributes, ingressfilter_second, 48, 4);
ASSERT_FIELD(olt_port_attributes, ratecontrol_first, 52, 4);
ASSERT_FIELD(olt_port_attributes, ratecontrol_second, 56, 4);
ASSERT_FIELD(olt_port_attributes, rstp_state, 60, 4);
ASSERT_FIELD(olt_port_attributes, link_state, 64, 4);
ASSERT_FIELD(olt_port_attributes, reserved_44, 68, 8);
ASSERT_FIELD(olt_port_attributes, max_link, 76, 4);

ASSERT_RECORD(olt_port_mac, 16, 1);
ASSERT_FIELD(olt_port_mac, bytes, 0, 16);

ASSERT_RECORD(olt_rstp_bridge, 33, 1);
ASSERT_FIELD(olt_rstp_bridge, bytes, 0, 33);

ASSERT_RECORD(olt_rstp_port, 27, 1);
ASSERT_FIELD(olt_rstp_port, bytes, 0, 27);

ASSERT_RECORD(olt_rstp_brief, 40, 4);
ASSERT_FIELD(olt_rstp_brief, keys, 0, 8);
ASSERT_FIELD(olt_rstp_brief, values, 8, 32);

ASSERT_RECORD(olt_igmpproxy, 24, 4);
ASSERT_FIELD(olt_igmpproxy, words, 0, 24);

ASSERT_RECORD(olt_auth_entry, 44, 1);
ASSERT_FIELD(olt_auth_entry, bytes, 0, 44);

ASSERT_RECORD(olt_ont_target, 88, 4);
ASSERT_FIELD(olt_ont_target, target, 0, 12);
ASSERT_FIELD(olt_ont_target, target_kind, 12, 4);
ASSERT_FIELD(olt_ont_target, reserved_10, 16, 12);
ASSERT_FIELD(olt_ont_target, mac, 28, 6);
ASSERT_FIELD(olt_ont_target, reserved_22, 34, 2);
ASSERT_FIELD(olt_ont_target, mac_word, 36, 4);
ASSERT_FIELD(olt_ont_target, reserved_28, 40, 48);

ASSERT_RECORD(olt_onu_feature, 48, 4);
ASSERT_FIELD(olt_onu_feature, words, 0, 48);

ASSERT_RECORD(olt_global_parameter, 32, 4);
ASSERT_FIELD(olt_global_parameter, reserved_00, 0, 16);
ASSERT_FIELD(olt_global_parameter, p2p_function, 16, 4);
ASSERT_FIELD(olt_global_parameter, link_security_a, 20, 4);
ASSERT_FIELD(olt_global_parameter, link_security_b, 24, 4);
ASSERT_FIELD(olt_global_parameter, ponport_function, 28, 4);

ASSERT_RECORD(olt_link_dba, 20, 4);
ASSERT_FIELD(olt_link_dba, requested, 0, 12);
ASSERT_FIELD(olt_link_dba, granted, 12, 8);

ASSERT_RECORD(olt_target_words, 12, 4);
ASSERT_FIELD(olt_target_words, words, 0, 12);

ASSERT_RECORD(olt_uni_vlan_mode, 36, 1);
ASSERT_FIELD(olt_uni_vlan_mode, bytes, 0, 36);

ASSERT_RECORD(olt_uni_downrate, 12, 4);
ASSERT_FIELD(olt_uni_downrate, words, 0, 12);

ASSERT_RECORD(olt_uni_policing, 16, 4);
ASSERT_FIELD(olt_uni_policing, words, 0, 16);

ASSERT_RECORD(olt_uni_block, 44, 4);
ASSERT_FIELD(olt_uni_block, words, 0, 44);

ASSERT_RECORD(olt_uni_strip, 34, 1);
ASSERT_FIELD(olt_uni_strip, bytes, 0, 34);

ASSERT_RECORD(olt_voip_user, 80, 4);
ASSERT_FIELD(olt_voip_user, words, 0, 80);

ASSERT_RECORD(olt_fax_mode, 2, 1);
ASSERT_FIELD(olt_fax_mode, bytes, 0, 2);

ASSERT_RECORD(olt_sip_config, 45, 1);
ASSERT_FIELD(olt_sip_config, bytes, 0, 45);

ASSERT_RECORD(olt_wan_connection, 125, 1);
ASSERT_FIELD(olt_wan_connection, bytes, 0, 125);

ASSERT_RECORD(olt_iptv_channel, 56, 1);
ASSERT_FIELD(olt_iptv_channel, bytes, 0, 56);

ASSERT_RECORD(olt_onu_info, 148, 4);
ASSERT_FIELD(olt_onu_info, words, 0, 148);

ASSERT_RECORD(olt_iad_info, 92, 4);
ASSERT_FIELD(olt_iad_info, words, 0, 92);

ASSERT_RECORD(olt_voip_line_status, 32, 4);
ASSERT_FIELD(olt_voip_line_status, words, 0, 32);

ASSERT_RECORD(olt_voip_binding, 88, 4);
ASSERT_FIELD(olt_voip_binding, words, 0, 88);

ASSERT_RECORD(olt_uni_port_info, 68, 4);
ASSERT_FIELD(olt_uni_port_info, words, 0, 68);

ASSERT_RECORD(olt_uni_strip_row, 36, 1);
ASSERT_FIELD(olt_uni_strip_row, bytes, 0, 36);

ASSERT_RECORD(olt_uni_muticast_vlans, 129, 1);
ASSERT_FIELD(olt_uni_muticast_vlans, bytes, 0, 129);

ASSERT_RECORD(olt_iptv_profile_row, 40, 4);
ASSERT_FIELD(olt_iptv_profile_row, words, 0, 40);

ASSERT_RECORD(olt_iptv_channel_row, 56, 4);
ASSERT_FIELD(olt_iptv_channel_row, words, 0, 56);

ASSERT_RECORD(olt_vlan_id_row, 52, 4);
ASSERT_FIELD(olt_vlan_id_row, words, 0, 52);

ASSERT_RECORD(olt_basic_port_row, 48, 4);
ASSERT_FIELD(olt_basic_port_row, words, 0, 48);

ASSERT_RECORD(olt_auth_row, 60, 4);
ASSERT_FIELD(olt_auth_row, words, 0, 60);
