/// The rows of PON interfaces, ONUs and UNI ports.
#ifndef OLT_CATALOG_PON_H
#define OLT_CATALOG_PON_H

#include "box/wire/records.h"
#include "catalog/catalog.h"
#include "catalog/row.h"
#include "oltmgmt.h"

namespace olt::catalog {

inline constexpr Outcome kAnyFailure{"the exchange failed, or the module refused"};

inline constexpr Operation kOnuAuthentication[] = {
    OLT_OPERATION(set_olt_auth_mode, 114, "Sets the authentication mode of a PON interface",
                  {"iface_a", "iface_b", "auth_mode"},
                  in_record<box::PonInterface>({{"iface_a", "slot"}, {"iface_b", "interface"}})),
    OLT_OPERATION(get_olt_auth_mode, 116, "Reads the authentication mode of a PON interface",
                  {"iface_a", "iface_b", "auth_mode"},
                  in_record<box::PonInterface>({{"iface_a", "slot"}, {"iface_b", "interface"}}),
                  from_record<box::PonInterface>()),
    example("iface_a=1 iface_b=2 entries=mac=02:20:02:00:03:01",
            OLT_OPERATION(
                add_authallowed_mac, 112, "Allows ONUs by MAC address",
                {"iface_a", "iface_b", "entries"},
                in_record<box::PonInterface>({{"iface_a", "slot"}, {"iface_b", "interface"}}))),
    after("add_authallowed_mac iface_a=1 iface_b=2 entries=mac=02:20:02:00:03:01",
          example("iface_a=1 iface_b=2 entries=mac=02:20:02:00:03:01",
                  OLT_OPERATION(delete_authallowed_mac, 113, "Deletes ONUs allowed by MAC address",
                                {"iface_a", "iface_b", "entries"},
                                in_memory<box::PonInterface>(
                                    {{"iface_a", "slot"}, {"iface_b", "interface"}})))),
    example("iface_a=1 iface_b=2 entries=loid=onu-1-2-3",
            OLT_OPERATION(
                add_authallowed_loid, 110, "Allows ONUs by LOID", {"iface_a", "iface_b", "entries"},
                in_record<box::PonInterface>({{"iface_a", "slot"}, {"iface_b", "interface"}}))),
    after("add_authallowed_loid iface_a=1 iface_b=2 entries=loid=onu-1-2-3",
          example("iface_a=1 iface_b=2 entries=loid=onu-1-2-3",
                  OLT_OPERATION(delete_authallowed_loid, 111, "Deletes ONUs allowed by LOID",
                                {"iface_a", "iface_b", "entries"},
                                in_memory<box::PonInterface>(
                                    {{"iface_a", "slot"}, {"iface_b", "interface"}})))),
    example("iface_a=1 iface_b=2 entries='mac=02:20:02:00:03:01 loid=onu-1-2-3'",
            OLT_OPERATION(
                add_authallowed_mac_loid, 108, "Allows ONUs by MAC address and LOID",
                {"iface_a", "iface_b", "entries"},
                in_record<box::PonInterface>({{"iface_a", "slot"}, {"iface_b", "interface"}}))),
    after("add_authallowed_mac_loid iface_a=1 iface_b=2 entries='mac=02:20:02:00:03:01 "
          "loid=onu-1-2-3'",
          example(
              "iface_a=1 iface_b=2 entries='mac=02:20:02:00:03:01 loid=onu-1-2-3'",
              OLT_OPERATION(
                  delete_authallowed_mac_loid, 109, "Deletes ONUs allowed by MAC address and LOID",
                  {"iface_a", "iface_b", "entries"},
                  in_memory<box::PonInterface>({{"iface_a", "slot"}, {"iface_b", "interface"}})))),
    after("set_olt_auth_mode iface_a=1 iface_b=2 auth_mode=mac",
          example("iface_a=1 iface_b=2 entries=mac=02:20:02:00:03:01",
                  OLT_OPERATION(delete_blocklist_mac, 41, "Deletes entries from the block list",
                                {"iface_a", "iface_b", "entries"},
                                in_memory<box::PonInterface>(
                                    {{"iface_a", "slot"}, {"iface_b", "interface"}})))),
    OLT_OPERATION(show_autmacmode_file_by_interface, 115,
                  "Lists the authentication modes of a PON interface",
                  {"iface_a", "iface_b", "name"},
                  in_record<box::ListingRequest>({{"iface_a", "slot"}, {"iface_b", "number"}})),
    OLT_OPERATION(get_blocklist_file_byinteface, 37, "Lists the block list of a PON interface",
                  {"iface_a", "iface_b", "name"},
                  in_record<box::ListingRequest>({{"iface_a", "slot"}, {"iface_b", "number"}})),
};

inline constexpr Operation kOnuInventory[] = {
    OLT_OPERATION(get_onulist_file_byinteface, 35, "Lists the ONUs of a PON interface",
                  {"iface_a", "iface_b", "name"},
                  in_record<box::ListingRequest>({{"iface_a", "slot"}, {"iface_b", "number"}})),
    OLT_OPERATION(get_linklist_file_byinteface, 36, "Lists the links of a PON interface",
                  {"iface_a", "iface_b", "name"},
                  in_record<box::ListingRequest>({{"iface_a", "slot"}, {"iface_b", "number"}})),
    OLT_OPERATION(getonu_ont_basicinforfile, 47, "Lists the basic information of an ONT",
                  {"ont", "name"}),
    OLT_OPERATION(show_ont_runningconfig, 48, "Lists the running configuration of an ONT",
                  {"ont", "name"}),
    OLT_OPERATION(getonu_ont_opticalfile, 106, "Lists the optical readings of an ONT",
                  {"ont", "name"}),
    OLT_OPERATION(get_onu_basic_mac_byindex, 65, "Reads the MAC address of an ONU by its index",
                  {in_out("ont")}, {},
                  from_record<olt_ont_target>({{"ont", "mac"}, {"ont", "mac_word"}})),
    OLT_OPERATION(get_onu_basic_feature_f, 38, "Reads the basic feature block of an ONU",
                  {"target_a", "target_b", "target_c", "feature"},
                  in_record<box::OntTarget>({{"target_a", "slot"},
                                             {"target_b", "interface"},
                                             {"target_c", "onu"},
                                             constant(1, "target_kind")})),
};

inline constexpr Operation kOnuLinks[] = {
    OLT_OPERATION(set_ont_p2p_function, 76, "Sets the peer-to-peer function", {"p2p_function"},
                  in_memory<olt_global_parameter>()),
    OLT_OPERATION(set_ponport_function, 77, "Sets the PON port function", {"ponport_function"},
                  in_memory<olt_global_parameter>()),
    OLT_OPERATION(set_ont_linkSecurityEncryption, 78, "Sets the link security encryption",
                  {"link_security_a", "link_security_b"}, in_memory<olt_global_parameter>()),
    example("p2p_function=1 link_security_a=0 link_security_b=0 ponport_function=0",
            takes_all(OLT_OPERATION(process_olt_global_paramter, 79,
                                    "Sends the OLT's global parameters and reads the answer",
                                    {in_out("parameter")}))),
    sets(
        "dba", "process_snmp_linkbasicinfo",
        OLT_OPERATION(set_ont_linkdba, 54, "Sets a link's bandwidth and reads what was granted",
                      {"ont", in_out("dba")}, {}, from_record<olt_link_dba>({{"dba", "granted"}}))),
    destructive(OLT_OPERATION(tkonu_ont_default, 169, "Restores the defaults of an ONU", {"ont"})),
    destructive(OLT_OPERATION(tkonu_ont_reboot, 168,
                              "Reboots an ONU (ctconu_ont_reboot: the other family)", {"ont"})),
    destructive(OLT_OPERATION(ctconu_ont_reboot, 107,
                              "Reboots an ONU (tkonu_ont_reboot: the other family)", {"ont"})),
    OLT_OPERATION(clear_onu_node, 43, "Clears the node of an ONU", {"ont"}),
    OLT_OPERATION(delete_ont_description, 45, "Deletes the description of an ONU", {"ont"}),
    example("ont=1/2/3 user_traffic=1,1",
            sets("user_traffic", "process_snmp_linkbasicinfo",
                 OLT_OPERATION(set_ont_usertraffic, 46, "Sets the user traffic of an ONU",
                               {laid_out("user_traffic_target", kBoxTargetFields, "ont")}))),
    sets("feature", "get_onu_basic_feature_f",
         OLT_OPERATION(set_onu_basic_feature_force, 49,
                       "Sets an ONU's basic features without its MAC address",
                       {"target_a", "target_b", "target_c", "feature"},
                       in_memory<box::FeatureRequest>({{"target_a", "slot"},
                                                       {"target_b", "interface"},
                                                       {"target_c", "onu"},
                                                       constant(1, "target_kind")}))),
    sets("feature", "get_onu_basic_feature_f",
         OLT_OPERATION(set_onu_basic_feature_f, 42,
                       "Sets an ONU's basic features and sends its MAC address",
                       {"target_a", "target_b", "target_c", "feature", "mac"},
                       in_memory<box::FeatureRequest>({{"target_a", "slot"},
                                                       {"target_b", "interface"},
                                                       {"target_c", "onu"},
                                                       constant(1, "target_kind")}))),
    OLT_OPERATION(add_ont_description, 44, "Adds a description to an ONU",
                  {"ont", as_text("description")},
                  Composition(kDescriptionRequestFields, sizeof(box::FeatureRequest), Origin::kAny,
                              {constant(1, "target_kind")})),
};

inline constexpr Operation kUniPorts[] = {
    OLT_OPERATION(get_ont_port_alarmsetting, 104, "Lists the alarm settings of a UNI port",
                  {kUniPort, "name"}),
    with(kAnyFailure,
         OLT_OPERATION(set_ont_port_alarmsetting, 105, "Sets the alarm settings of a UNI port",
                       {kUniPort, "port_value"})),
    with(kAnyFailure, OLT_OPERATION(set_ont_port_loopback, 117, "Sets the loopback of a UNI port",
                                    {kUniPort, "port_value"})),
    OLT_OPERATION(show_ont_port_vlanmode, 128, "Lists the VLAN mode of a UNI port",
                  {kUniPort, "name"}),
    sets("mode", "process_onu_portvlanmode",
         OLT_OPERATION(set_ont_port_vlanmode, 129, "Sets the VLAN mode of a UNI port",
                       {kUniPort, "mode"})),
    with(kAnyFailure,
         OLT_OPERATION(get_ont_port_downrate, 119, "Reads the downstream rate of a UNI port",
                       {kUniPort, "rates"})),
    sets("rates", "get_ont_port_downrate",
         OLT_OPERATION(set_ont_port_downrate, 118, "Sets the downstream rate of a UNI port",
                       {kUniPort, "rates"})),
    sets("info", "process_onu_portinfo",
         OLT_OPERATION(set_ont_port_basicinfo, 132, "Sets the basic information of a UNI port",
                       {kUniPort, "info"})),
    OLT_OPERATION(set_ont_port_description, 84, "Sets the description of a UNI port",
                  {kUniPort, as_text("description")}),
    OLT_OPERATION(show_ont_port_basicinfo, 133, "Lists the basic information of a UNI port",
                  {kUniPort, "name"}),
    sets("policing", "get_ont_port_policying",
         OLT_OPERATION(set_ont_port_policying, 130, "Sets the policing of a UNI port",
                       {kUniPort, "policing"})),
    with(kAnyFailure, OLT_OPERATION(get_ont_port_policying, 131, "Reads the policing of a UNI port",
                                    {kUniPort, "policing"})),
};

inline constexpr Operation kOntMulticast[] = {
    with(kAnyFailure, OLT_OPERATION(get_ont_port_muticastgrounp, 120,
                                    "Reads how many multicast groups a UNI port may have",
                                    {kUniPort, named(kNoLimit, "value")})),
    OLT_OPERATION(set_ont_port_muticastgrounp, 121,
                  "Sets how many multicast groups a UNI port may have",
                  {kUniPort, named(kNoLimit, "value")}),
    OLT_OPERATION(show_ont_port_muticastvlan, 122, "Lists the multicast VLANs of a UNI port",
                  {kUniPort, "name"}),
    OLT_OPERATION(clear_ont_port_muticastvlan, 123, "Clears the multicast VLANs of a UNI port",
                  {kUniPort}),
    OLT_OPERATION(add_ont_port_muticastvlan, 124, "Adds multicast VLANs to a UNI port",
                  {kUniPort, "vlans"}),
    after("add_ont_port_muticastvlan ont=1/2/3:4 vlans=10,20-25",
          OLT_OPERATION(delete_ont_port_muticastvlan, 125,
                        "Deletes multicast VLANs from a UNI port", {kUniPort, "vlans"})),
    OLT_OPERATION(show_ont_port_muticaststrip, 126,
                  "Lists the stripping of multicast tags at a UNI port", {kUniPort, "name"}),
    sets("strip", "process_onu_portstrip",
         OLT_OPERATION(set_ont_port_muticastrip, 127,
                       "Sets the stripping of multicast tags at a UNI port", {kUniPort, "strip"})),
    OLT_OPERATION(show_ont_muticast_group, 148, "Lists the multicast groups of an ONT",
                  {"ont", "name"}),
    OLT_OPERATION(set_ont_fastleave, 154, "Sets the IGMP fast leave of a UNI port",
                  {kUniPort, named(kOffOn, "value")}),
};

}  // namespace olt::catalog

#endif
