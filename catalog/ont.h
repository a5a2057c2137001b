/// The rows of the services on ONTs.
#ifndef OLT_CATALOG_ONT_H
#define OLT_CATALOG_ONT_H

#include "catalog/catalog.h"
#include "catalog/row.h"
#include "oltmgmt.h"

namespace olt::catalog {

/// Bytes of an interface's name; a zero ends it in the request.
inline constexpr uint32_t kInterfaceName = 31;
/// Bytes of a profile's name, which needs no zero.
inline constexpr uint32_t kProfileName = 32;

inline constexpr Mark kProfile = such_as("basic", up_to(kProfileName, "profile"));

inline constexpr Mark kVoiceLine = laid_out("voice_target", kVoiceTargetFields, "ont");

inline constexpr Operation kOntVoice[] = {
    OLT_OPERATION(show_voip_info, 134, "Lists the voice summary of an ONT", {"ont", "name"}),
    OLT_OPERATION(show_voip_useraccount, 135, "Reads the voice user account of an ONT",
                  {kVoiceLine, "account"}),
    OLT_OPERATION(show_ont_voipline, 137, "Lists the voice lines of an ONT", {"ont", "name"}),
    with(kNotBuilt, OLT_OPERATION(set_voip_linestatus, 138, "Sets the status of a voice line",
                                  {kVoiceLine, named(kOffOn, "line_status")})),
    OLT_OPERATION(show_ont_faxmode, 139, "Lists the fax mode of an ONT", {"ont", "name"}),
    OLT_OPERATION(show_ont_sipconfiguration, 140, "Lists the SIP configuration of an ONT",
                  {"ont", "name"}),
    sets("fax_mode", "process_snmpvoip_faxmode",
         OLT_OPERATION(set_ont_fax, 141, "Sets the fax mode of an ONT", {kVoiceLine, "fax_mode"})),
    sets("sip_config", "process_snmp_onusipparaminfo",
         OLT_OPERATION(set_ont_sipconfiguration, 142, "Sets the SIP configuration of an ONT",
                       {"ont", "sip_config"})),
    with(kNotBuilt,
         OLT_OPERATION(
             banding_ont_voipinterface, 143, "Binds an ONT's voice service to a WAN interface",
             {"ont", up_to(kInterfaceName, "interface_name")},
             Composition(kOntInterfaceNameFields,
                         sizeof(box::OntTarget) + sizeof(box::InterfaceName), Origin::kAny, {}))),
    OLT_OPERATION(show_ont_bandinginterface, 144,
                  "Lists the WAN interface of an ONT's voice service", {"ont", "name"}),
    sets("account", "show_voip_useraccount",
         OLT_OPERATION(set_voip_useraccount, 136, "Sets the voice user account of an ONT",
                       {kVoiceLine, "account"})),
};

inline constexpr Operation kOntWan[] = {
    sets("wan_connection", "process_snmp_hguwaninfo",
         OLT_OPERATION(deal_wan_connection, 145,
                       "Creates, changes or deletes a WAN connection of an ONT",
                       {"ont", "wan_connection"})),
    OLT_OPERATION(show_ont_wanconnection, 146, "Lists the WAN connections of an ONT",
                  {"ont", "name"}),
    destructive(
        with(kNotBuilt,
             OLT_OPERATION(do_ont_configuration, 147, "Starts a configuration action on an ONT",
                           {"ont", named(kConfigurationActions, "config_action")}))),
};

inline constexpr Operation kIptv[] = {
    with(kNotBuilt, OLT_OPERATION(create_iptv_profile, 157, "Creates an IPTV profile", {kProfile},
                                  in_memory<box::ProfileName>())),
    after("create_iptv_profile profile=basic",
          with(kNotBuilt, OLT_OPERATION(clear_iptv_profile, 158, "Clears an IPTV profile",
                                        {kProfile}, in_memory<box::ProfileName>()))),
    after("create_iptv_profile profile=basic\nadd_iptv_channel profile=basic number=1",
          with(kNotBuilt,
               OLT_OPERATION(delete_iptv_channel, 159, "Deletes a channel from an IPTV profile",
                             {kProfile, "channel"}, in_memory<box::ChannelRequest>()))),
    after("create_iptv_profile profile=basic",
          with(kNotBuilt, OLT_OPERATION(add_iptv_channel, 160, "Adds a channel to an IPTV profile",
                                        {kProfile, "channel"}, in_memory<box::ChannelRequest>()))),
    after("create_iptv_profile profile=basic",
          OLT_OPERATION(show_iptv_byprofile, 161, "Lists an IPTV profile", {kProfile, "name"},
                        in_record<box::ProfileName>(), from_record<box::ListingName>())),
    after(
        "create_iptv_profile profile=basic",
        with(kNotBuilt, OLT_OPERATION(set_ont_iptv_profile, 155,
                                      "Attaches an IPTV profile to an ONT", {"ont", kProfile},
                                      Composition(kOntProfileFields,
                                                  sizeof(box::OntTarget) + sizeof(box::ProfileName),
                                                  Origin::kAny, {})))),
    after("create_iptv_profile profile=basic\nset_ont_iptv_profile ont=1/2/3 profile=basic",
          OLT_OPERATION(clear_ont_iptv_profile, 156, "Detaches the IPTV profile from an ONT",
                        {"ont"})),
    with(kNotBuilt,
         OLT_OPERATION(add_iptv_user_channel, 162, "Adds a channel for a single user",
                       {"user_address", "c", "a", "b", "d"}, in_memory<box::UserChannelRecord>())),
    after("add_iptv_user_channel user_address=02:00:00:00:00:01 c=1 a=1 b=1 d=1",
          with(kNotBuilt,
               OLT_OPERATION(delete_iptv_user_channel, 163, "Deletes a channel of a single user",
                             {"user_address", "c", "a", "b", "d"},
                             in_memory<box::UserChannelRecord>()))),
};

}  // namespace olt::catalog

#endif
