/// The rows of the Ethernet switch.
#ifndef OLT_CATALOG_SWITCH_H
#define OLT_CATALOG_SWITCH_H

#include "catalog/catalog.h"
#include "catalog/row.h"
#include "oltmgmt.h"

namespace olt::catalog {

inline constexpr uint8_t kRstpModule = 23;
inline constexpr uint32_t kVlanDescription = sizeof(olt_vlan_node::vlan_descr);
/// The longest description in a request for VLANs by description.
inline constexpr uint32_t kDescription = 63;

inline constexpr Operation kVlanTables[] = {
    with(kNotBuilt, OLT_OPERATION(add_vlan_list, 19, "Adds VLANs", {"vlans"})),
    after("add_vlan_list vlans=10,20-25",
          with(kNotBuilt, OLT_OPERATION(delete_vlan_list, 20, "Deletes VLANs", {"vlans"}))),
    after("add_vlan_list vlans=10,20-25",
          with(kNotBuilt, OLT_OPERATION(add_vlan_descr_list, 21, "Adds descriptions of VLANs",
                                        {laid_out("described_vlan", kDescribedVlanFields,
                                                  sized(sizeof(box::DescribedVlan),
                                                        up_to(kVlanDescription, "vlans")))}))),
    after("add_vlan_list vlans=10,20-25\nadd_vlan_descr_list vlans=10:uplink",
          with(kNotBuilt, OLT_OPERATION(delete_vlan_descr_list, 22, "Deletes descriptions of VLANs",
                                        {"vlans"}))),
    OLT_OPERATION(get_vlan_interface_file_byinteface, 23, "Lists the VLANs of an OLT port",
                  {"slot", "port", "name"}, in_record<box::VlanQuery>({constant(0, "kind")})),
    OLT_OPERATION(get_vlan_information_file_bylist, 23, "Lists some VLANs", {"vlans", "name"},
                  in_memory<box::VlanQuery>({constant(1, "kind")})),
    OLT_OPERATION(get_vlan_information_file_bydescprtion, 23, "Lists VLANs by their description",
                  {up_to(kDescription, "description"), "name"},
                  in_record<box::VlanQuery>({constant(2, "kind")})),
    OLT_OPERATION(get_vlan_all, 23, "Lists all VLANs", {"name"},
                  in_record<box::VlanQuery>({constant(3, "kind")})),
};

inline constexpr Operation kTrunkVlans[] = {
    after("add_vlan_list vlans=10,20-25",
          OLT_OPERATION(process_trunk_vlan, within(60, 25),
                        "Sends the tagged trunk VLANs of an OLT port",
                        {"slot", "port", "vlans", "trunk_value"}, in_memory<box::TrunkHead>())),
    after("add_vlan_list vlans=10,20-25",
          OLT_OPERATION(process_trunk_vlan_untag, within(60, 26),
                        "Sends the untagged trunk VLANs of an OLT port",
                        {"slot", "port", "vlans", "trunk_value"}, in_memory<box::TrunkHead>())),
    after("add_vlan_list vlans=10,20-25",
          OLT_OPERATION(process_trunk_vlan_all, within(60, 27),
                        "Sends the tagged trunk VLANs, in the form for all",
                        {"slot", "port", "vlans", "trunk_value"}, in_memory<box::TrunkHead>())),
    after("add_vlan_list vlans=10,20-25",
          OLT_OPERATION(process_trunk_vlan_untag_all, within(60, 28),
                        "Sends the untagged trunk VLANs, in the form for all",
                        {"slot", "port", "vlans", "trunk_value"}, in_memory<box::TrunkHead>())),
};

inline constexpr Outcome kPortIsChecked{"slot or port is out of range"};

inline constexpr Operation kOltPorts[] = {
    OLT_OPERATION(set_uplink_sfp_module, 13, "Sets the SFP module of an uplink port",
                  {"slot", "port", "sfp_module"}, in_record<olt_port_attributes>()),
    OLT_OPERATION(set_port_enable, 14, "Enables or disables a port",
                  {"slot", "port", "port_enable"}, in_record<olt_port_attributes>()),
    keeps_reply(OLT_OPERATION(get_port_enable, 15, "Reads whether a port is enabled",
                              {"slot", "port", "port_enable"}, in_record<olt_port_attributes>(),
                              from_record<olt_port_attributes>())),
    keeps_reply(OLT_OPERATION(get_port_link_state, 16, "Reads the link state of a port",
                              {"slot", "port", "link_state"}, in_record<olt_port_attributes>(),
                              from_record<olt_port_attributes>())),
    keeps_reply(OLT_OPERATION(get_port_link_duplex, 17, "Reads the duplex mode of a port's link",
                              {"slot", "port", "link_duplex"}, in_record<olt_port_attributes>(),
                              from_record<olt_port_attributes>())),
    keeps_reply(OLT_OPERATION(get_port_link_speed, 18, "Reads the speed of a port's link",
                              {"slot", "port", "link_speed"}, in_record<olt_port_attributes>(),
                              from_record<olt_port_attributes>())),
    OLT_OPERATION(Set_port_vlanmode, within(60, 24), "Sets the VLAN mode of a port",
                  {"slot", "port", "first", "second"},
                  in_record<olt_port_attributes>(
                      {{"first", "vlanmode_first"}, {"second", "vlanmode_second"}})),
    OLT_OPERATION(set_olt_port_ratecontrol, 66, "Sets the rate control of a port",
                  {"slot", "port", "first", "second"},
                  in_memory<olt_port_attributes>(
                      {{"first", "ratecontrol_first"}, {"second", "ratecontrol_second"}})),
    OLT_OPERATION(stp_set_port_rstp_state, 67, "Sets the RSTP state of a port",
                  {"slot", "port", "rstp_state"}, in_memory<olt_port_attributes>()),
    OLT_OPERATION(set_olt_port_ingressfilter, 68, "Sets the ingress filter of a port",
                  {"slot", "port", "first", "second"},
                  in_memory<olt_port_attributes>(
                      {{"first", "ingressfilter_first"}, {"second", "ingressfilter_second"}})),
    OLT_OPERATION(set_olt_port_flowcontrol, 69, "Sets the flow control of a port",
                  {"slot", "port", "flowcontrol"}, in_memory<olt_port_attributes>()),
    with(kPortIsChecked,
         OLT_OPERATION(get_snmp_olt_port_basic_info, 70, "Reads the basic information of a port",
                       {in_out("record")})),
    with(kPortIsChecked,
         example("slot=1 port=1 port_enable=on rstp_state=on",
                 sets("record", "get_snmp_olt_port_basic_info",
                      OLT_OPERATION(set_snmp_olt_port_basic_info, 71,
                                    "Sets the basic information of a port", {"record"})))),
    with(kPortIsChecked,
         example("slot=1 port=3", OLT_OPERATION(get_snmp_olt_port_status, 72,
                                                "Reads the status of a port", {in_out("record")}))),
    example("slot=1 port=1 operation=add vlan=1 mac=02:00:00:00:00:09",
            takes_all(OLT_OPERATION(process_olt_port_mac, 55, "Performs a MAC operation on a port",
                                    {"record"}))),
    OLT_OPERATION(set_oltport_maxlink, 102, "Sets the maximum link count of a port",
                  {"slot", "port", "max_link"}, in_record<olt_port_attributes>()),
    OLT_OPERATION(Set_upport_agg, 34, "Sets the aggregation of the uplink ports", {"upport_agg"},
                  in_record<box::UplinkAggregation>()),
    OLT_OPERATION(get_upport_agg, 74, "Reads the aggregation of the uplink ports", {"upport_agg"},
                  {}, from_record<box::UplinkAggregation>()),
};

inline constexpr Operation kPortStatistics[] = {
    OLT_OPERATION(get_statics_file_by_interface, 29, "Lists the traffic counters of an OLT port",
                  {"slot", "port", "name"}, in_record<box::ListingRequest>({{"port", "number"}})),
    OLT_OPERATION(clear_statics_file_by_interface, 30, "Clears the traffic counters of an OLT port",
                  {"slot", "port"}, in_record<olt_port_attributes>()),
    OLT_OPERATION(get_dynmac_file_by_interface, 31,
                  "Lists the learned MAC addresses of an OLT port",
                  {"slot", "port", "dynmac_arg", "name"},
                  in_record<box::ListingRequest>({{"port", "number"}, {"dynmac_arg", "vlan"}})),
    OLT_OPERATION(clear_dynmac_file_by_interface, 32,
                  "Clears the learned MAC addresses of an OLT port", {"slot", "port"},
                  in_record<olt_port_attributes>()),
};

inline constexpr Operation kRstp[] = {
    OLT_OPERATION(get_rstp_config, 170, "Reads the RSTP settings of the bridge", {"bridge"}),
    OLT_OPERATION(get_rstp_port_config, 171, "Reads the RSTP settings of a port", {in_out("port")}),
    example("priority=4096",
            sets("bridge", "get_rstp_config",
                 OLT_OPERATION(set_rstp_config, within(50, 172),
                               "Sets the RSTP settings of the bridge", {"bridge"}))),
    example("slot=1 port=1 rstp_state=on priority=128 point_to_point=yes",
            sets("port", "get_rstp_port_config",
                 OLT_OPERATION(set_rstp_port_config, within(30, 173),
                               "Sets the RSTP settings of a port", {"port"}))),
    OLT_OPERATION(get_rstp_brief, {174, kRstpModule},
                  "Reads the RSTP summary of the port that the keys select", {in_out("brief")}, {},
                  from_record<olt_rstp_brief>({{"brief", "active"},
                                               {"brief", "role"},
                                               {"brief", "state"},
                                               {"brief", "priority"},
                                               {"brief", "path_cost"},
                                               {"brief", "bridge_priority"},
                                               {"brief", "edge"},
                                               {"brief", "seconds"}})),
};

inline constexpr Operation kIgmpProxy[] = {
    with(kNotBuilt, OLT_OPERATION(add_muticastvlan_list, 149, "Adds multicast VLANs", {"vlans"})),
    after("add_muticastvlan_list vlans=10,20-25",
          with(kNotBuilt,
               OLT_OPERATION(delete_muticastvlan_list, 150, "Deletes multicast VLANs", {"vlans"}))),
    OLT_OPERATION(get_igmpproxy_config, within(20, 151), "Reads the IGMP proxy settings",
                  {"config"}),
    example(
        "enabled=on query_interval=125 response_time=10 robustness=2 last_member_query_interval=1",
        sets("config", "get_igmpproxy_config",
             OLT_OPERATION(set_igmpproxy_config, 152, "Sets the IGMP proxy settings", {"config"}))),
    OLT_OPERATION(get_igmpproxy_config_all, within(20, 153),
                  "Reads the whole IGMP proxy configuration",
                  {laid_out("igmpproxy_dump", kIgmpProxyDumpFields,
                            sized(box::kIgmpProxyDumpHead, whole_reply("dump")))}),
};

}  // namespace olt::catalog

#endif
