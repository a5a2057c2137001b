/// The rows of system administration.
#ifndef OLT_CATALOG_SYSTEM_H
#define OLT_CATALOG_SYSTEM_H

#include "catalog/catalog.h"
#include "catalog/row.h"
#include "oltmgmt.h"

namespace olt::catalog {

/// Bytes that the library sends of a user's name or password.
inline constexpr uint32_t kUserText = 31;
inline constexpr uint8_t kOamModule = 18;
inline constexpr uint8_t kLogModule = 22;
inline constexpr Mark kModule = named(kModuleNames, such_as("main", "module"));

inline constexpr Operation kSystemControl[] = {
    OLT_OPERATION(do_set_ukernel_inserver, 5, "Sets the micro-kernel in-service state"),
    OLT_OPERATION(do_information_system_running_will_start, 6,
                  "Announces that the system is about to start running"),
    destructive(OLT_OPERATION(do_reboot_system, 7, "Reboots the box")),
    OLT_OPERATION(save_system_config, 8, "Saves the running configuration for the next start"),
    destructive(OLT_OPERATION(default_system_config, 9, "Restores the default configuration")),
    sets("network", "get_system_network",
         OLT_OPERATION(set_system_ipaddress, 50, "Sets the management IP settings", {"network"})),
    sets("network", "get_system_network",
         OLT_OPERATION(set_system_dns, 51, "Sets the DNS settings", {"network"})),
    example(
        "enabled=on server_first=192.0.2.123 server_second=192.0.2.124 interval=1h utc_offset=60",
        takes_all(
            OLT_OPERATION(Cl_Set_SntpCfg_apply, 52, "Applies an SNTP configuration", {"config"}))),
};

inline constexpr Operation kUserAccounts[] = {
    example(
        "name=admin password=admin",
        OLT_OPERATION(
            get_user_level, 10, "Checks a user's name and password and reads the levels",
            {up_to(kUserText, "name"), secret(up_to(kUserText, "password")), "level_a", "level_b"},
            in_record<olt_user>(
                {{"name", "user_name"}, {"password", "user_password"}, constant(0, "user_op")}),
            from_record<olt_user>())),
    example(
        "name=operator password=secret level_a=1 level_b=1",
        OLT_OPERATION(
            add_user_level, 10, "Adds a user",
            {up_to(kUserText, "name"), secret(up_to(kUserText, "password")), "level_a", "level_b"},
            in_record<olt_user>(
                {{"name", "user_name"}, {"password", "user_password"}, constant(1, "user_op")}))),
    after("add_user_level name=operator password=secret level_a=1 level_b=1",
          example(
              "name=operator",
              OLT_OPERATION(delete_user_level, 10, "Deletes a user", {up_to(kUserText, "name")},
                            in_record<olt_user>({{"name", "user_name"}, constant(2, "user_op")})))),
    after("add_user_level name=operator password=secret level_a=1 level_b=1",
          example("user_name=operator level_a=2",
                  sets_row(
                      "user", "get_system_next_user",
                      OLT_OPERATION(modify_user_level, 10, "Changes a user to what the record says",
                                    {in("user")}, in_record<olt_user>({constant(3, "user_op")}))))),
    after("add_user_level name=operator password=secret level_a=1 level_b=1",
          example("user_name=admin",
                  OLT_OPERATION(get_system_next_user, 62,
                                "Reads the user that follows the one in the record",
                                {in_out("user")}, in_record<olt_user>({constant(0, "user_op")}),
                                from_record<olt_user>({{"user", "user_index"},
                                                       {"user", "user_name"},
                                                       {"user", "user_password"},
                                                       {"user", "level_a"},
                                                       {"user", "level_b"}})))),
    example("user_index=0",
            OLT_OPERATION(get_system_user_byindex, 63,
                          "Reads the user at the position in the record", {in_out("user")}, {},
                          from_record<olt_user>({{"user", "user_name"},
                                                 {"user", "user_password"},
                                                 {"user", "level_a"},
                                                 {"user", "level_b"}}))),
};

inline constexpr Operation kSystemInformation[] = {
    OLT_OPERATION(get_olt_mac, 12, "Reads the OLT's MAC address", {"mac"}),
    OLT_OPERATION(show_running_configuration_file, 33, "Lists the running configuration", {"name"}),
    OLT_OPERATION(get_system_basicinfofile, 53, "Lists the basic system information", {"name"}),
    sets("param", "get_snmp_param",
         OLT_OPERATION(set_snmp_param, 56, "Sets the SNMP agent's parameters", {"param"})),
    OLT_OPERATION(get_snmp_param, 57, "Reads the SNMP agent's parameters", {"param"}),
    OLT_OPERATION(get_system_network, 58, "Reads the management network settings",
                  {in_out("network")}),
    sets("info", "get_snmp_systeminfo",
         OLT_OPERATION(set_snmp_systeminfo, 59, "Sets the SNMP system information", {"info"})),
    OLT_OPERATION(get_snmp_systeminfo, 60, "Reads the SNMP system information", {"info"}),
};

inline constexpr Operation kLogAndDebug[] = {
    OLT_OPERATION(set_debug_enable, {2, Address::kNamedByCaller},
                  "Sets the debug switches of one module", {kModule, "value"}),
    OLT_OPERATION(show_memory_info, {3, Address::kNamedByCaller},
                  "Lists one module's use of memory", {kModule, "name"}, {},
                  from_record<box::ListingName>()),
    OLT_OPERATION(get_olt_support_oam, {4, kOamModule}, "Reads which OAM the OLT supports",
                  {"value"}),
    OLT_OPERATION(
        process_debug_value, 39, "Writes (debug_op not 0) or reads a debug value",
        {in_out("value")}, {},
        only_if_zero("debug_op", from_record<olt_debug_value>({{"value", "debug_value"}}))),
    OLT_OPERATION(
        process_switchdebug_value, 40,
        "Writes (debug_op not 0) or reads a debug value of the switch", {in_out("value")}, {},
        only_if_zero("debug_op", from_record<olt_switch_debug>({{"value", "debug_value"}}))),
    OLT_OPERATION(get_system_loginfofile, {81, kLogModule}, "Lists a log",
                  {"name", named(kLogModules, "value")}, {}, from_record<box::ListingName>()),
    OLT_OPERATION(set_system_logfilesize, {82, kLogModule, Address::kMain},
                  "Sets the size of the log files", {in_unit("KiB", "value")}),
    OLT_OPERATION(set_system_loglevel, {83, kLogModule, Address::kMain},
                  "Sets the level from which messages are logged", {named(kLogLevels, "value")}),
};

inline constexpr Operation kFirmwareUpdate[] = {
    example("request=040000000000000001020304",
            destructive(OLT_OPERATION(do_handle_epon_updatestream, within(60, 11),
                                      "Sends a piece of an OLT firmware update",
                                      {laid_out("update_piece", kUpdatePieceFields, "request"),
                                       laid_out("update_answer", kUpdateAnswerFields,
                                                sized(sizeof(box::UpdateProgress), "answer"))}))),
    example("request=040000000000000001020304",
            destructive(OLT_OPERATION(do_handle_epon_updatestream_onu, within(60, 64),
                                      "Sends a piece of an ONU firmware update",
                                      {laid_out("onu_update_piece", kUpdatePieceFields, "request"),
                                       laid_out("update_answer", kUpdateAnswerFields,
                                                sized(sizeof(box::UpdateProgress), "answer"))}))),
    OLT_OPERATION(get_card_updatestatus, 61, "Reads the progress of the card's firmware update",
                  {in_unit("%", named(kUpdateProgress, "value"))}),
};

}  // namespace olt::catalog

#endif
