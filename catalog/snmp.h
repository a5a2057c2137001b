/// The rows of the readers for SNMP tables.
#ifndef OLT_CATALOG_SNMP_H
#define OLT_CATALOG_SNMP_H

#include "box/wire/records.h"
#include "catalog/catalog.h"
#include "catalog/row.h"
#include "oltmgmt.h"

namespace olt::catalog {

inline constexpr Operation kSnmpOnuTables[] = {
    OLT_OPERATION(process_snmp_onubasicinfo, 85, "Reads the basic information of an ONU",
                  {"ont", laid_out("onu_info", kOnuInfoFields, in_out("info"))}),
    OLT_OPERATION(process_snmp_linkbasicinfo, 86, "Reads the basic information of a link",
                  {"ont", laid_out("link_info", kLinkInfoFields, in_out("info"))}),
    OLT_OPERATION(process_snmp_onuglobalinfo, 87, "Reads the global information of an ONU",
                  {"ont", laid_out("global_info", kGlobalInfoFields,
                                   headed(sizeof(box::GlobalInfoHead), "info"))}),
    OLT_OPERATION(process_snmp_iadinfo, 88, "Reads the information about an IAD", {"ont", "info"}),
    OLT_OPERATION(process_snmp_onusipparaminfo, 89, "Reads the SIP parameters of an ONU",
                  {in_out("ont"), "param"}),
    OLT_OPERATION(process_snmp_onusipuserinfo, 90, "Reads a SIP user of an ONU", {"ont", "user"}),
    OLT_OPERATION(process_snmpvoip_faxmode, 91, "Reads the fax mode of an ONU",
                  {in_out("ont"), "fax_mode"}),
    OLT_OPERATION(process_voip_linestatus, 92, "Reads the status of a VoIP line",
                  {"ont", "line_status"}),
    OLT_OPERATION(
        process_snmp_hguwaninfo, 93, "Reads the WAN information of an HGU",
        {"ont", laid_out("wan_info", kWanInfoFields, headed(sizeof(box::WanInfoHead), "info"))}),
    OLT_OPERATION(process_snmp_hguvoipbandinginfo, 94, "Reads the VoIP binding of an HGU",
                  {"ont", "binding"}),
    OLT_OPERATION(process_onu_portinfo, 95, "Reads the information about a UNI port",
                  {kUniPort, "info"}),
    OLT_OPERATION(process_onu_portpolicying, 96, "Reads a UNI port's policing, with its target",
                  {in_out(kUniPort), "policing"}),
    OLT_OPERATION(process_onu_portdownrate, 97,
                  "Reads a UNI port's downstream rates, with its target",
                  {in_out(kUniPort), "rates"}),
    OLT_OPERATION(process_onu_portvlanmode, 98, "Reads a UNI port's VLAN mode, with its target",
                  {in_out(kUniPort), "mode"}),
    with(kNotBuilt,
         OLT_OPERATION(
             process_onu_portstrip, 99, "Reads a UNI port's multicast stripping",
             {in_out(kUniPort), in_out("strip")},
             Composition(kOntStripFields, sizeof(box::OntTarget) + sizeof(box::UniStripRow::strip),
                         Origin::kAny, {}))),
    OLT_OPERATION(process_onu_portmuticastvlan, 100, "Reads a UNI port's multicast VLANs",
                  {in_out(kUniPort), "vlans"}),
    OLT_OPERATION(process_onu_portmuticastmaxgroup, 101,
                  "Reads a UNI port's limit of multicast groups",
                  {laid_out("group_limit_target", kGroupLimitFields, in_out(kUniPort))}),
    after("create_iptv_profile profile=basic",
          example("selector=this profile=basic",
                  OLT_OPERATION(process_snmp_iptv_profile, 164,
                                "Reads a row of the IPTV profile table", {in_out("row")}))),
    after("create_iptv_profile profile=basic\nadd_iptv_channel profile=basic number=1",
          example(
              "selector=this profile=basic number=1",
              OLT_OPERATION(process_snmp_iptv_profile_channel, 165,
                            "Reads a row of the table of IPTV profile channels", {in_out("row")}))),
};

inline constexpr Operation kSnmpOltTables[] = {
    OLT_OPERATION(process_snmp_vlan_id, 73, "Reads a row of the VLAN table", {in_out("row")}),
    OLT_OPERATION(process_snmp_oltbasicport, 75, "Reads a row of the OLT's basic port table",
                  {in_out("row")}),
    OLT_OPERATION(process_snmp_oltauth, 80, "Reads a row of the ONU authentication settings",
                  {in_out("row")}),
};

}  // namespace olt::catalog

#endif
