#include "cli/manual.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "catalog/catalog.h"
#include "cli/commands.h"
#include "cli/text/error.h"
#include "tests/cli/program.h"

namespace olt::test {

namespace {

using olt::cli::help_text;
using olt::cli::list_text;
using olt::cli::operation_named;

std::string error_of(const std::string &name) {
  try {
    operation_named(name);
  } catch (const olt::cli::Error &error) {
    EXPECT_EQ(error.status(), 2);
    return error.what();
  }
  return "no error";
}

TEST(Manual, SuggestsNearNames) {
  EXPECT_EQ(error_of("get_olt_mca"),
            "oltctl: there is no operation 'get_olt_mca'; did you mean get_olt_mac?");
  EXPECT_EQ(error_of("GET_OLT_MAC"),
            "oltctl: there is no operation 'GET_OLT_MAC'; did you mean get_olt_mac?");
  EXPECT_EQ(error_of("set_snmp_parm"),
            "oltctl: there is no operation 'set_snmp_parm'; did you mean set_snmp_param or "
            "get_snmp_param?");
  EXPECT_EQ(error_of("hlep"), "oltctl: there is no operation 'hlep'; did you mean help?");
  EXPECT_EQ(error_of("add_vlan"),
            "oltctl: there is no operation 'add_vlan'; 'oltctl list add_vlan' shows those about "
            "it");
  EXPECT_EQ(error_of("frobnicate"),
            "oltctl: there is no operation 'frobnicate'; 'oltctl list' shows all of them");
}

TEST(Manual, ListsByFamilyWhatHasTheWord) {
  EXPECT_EQ(list_text("SNTP"),
            "System control\n"
            "  Cl_Set_SntpCfg_apply                      Applies an SNTP configuration\n");
  EXPECT_EQ(list_text("which OAM"),
            "Log and debug controls\n"
            "  get_olt_support_oam                       Reads which OAM the OLT supports\n");
  std::string all = list_text("");
  EXPECT_NE(all.find("\n\nUser accounts\n  get_user_level "), std::string::npos);
  EXPECT_NE(all.find("\n\nFirmware update\n"), std::string::npos);
  EXPECT_THROW(list_text("nothing like it"), olt::cli::Error);
}

void expect_listed(const char *word, const char *name) {
  EXPECT_NE(list_text(word).find(std::string("  ") + name + " "), std::string::npos) << word;
}

TEST(Manual, ListsWhatIsSpeltOtherwise) {
  expect_listed("statistics", "get_statics_file_by_interface");
  expect_listed("Upgrade", "do_handle_epon_updatestream");
  expect_listed("firmware", "get_card_updatestatus");
  expect_listed("multicast", "get_ont_port_muticastgrounp");
  expect_listed("transceiver", "getonu_ont_opticalfile");
}

TEST(Manual, ListsByFamilyAndByArgument) {
  expect_listed("voice", "banding_ont_voipinterface");
  expect_listed("flash storage", "read_olt_serial");
  expect_listed("dynmac_arg", "get_dynmac_file_by_interface");
  expect_listed("link_security_a", "set_ont_linkSecurityEncryption");
}

TEST(Manual, SaysWhatAnOperationTakes) {
  EXPECT_EQ(help_text("get_user_level"),
            "get_user_level name password\n"
            "  Checks a user's name and password and reads the levels.\n"
            "\n"
            "Arguments:\n"
            "  name            text of at most 31 bytes\n"
            "  password        text of at most 31 bytes; '-' reads it without echo\n"
            "\n"
            "Results:\n"
            "  level_a         a number\n"
            "  level_b         a number\n"
            "\n"
            "Sends message type 10 to module 2.\n"
            "\n"
            "Example:\n"
            "  oltctl get_user_level name=admin password=admin\n");
  EXPECT_EQ(help_text("process_switchdebug_value"),
            "process_switchdebug_value [value]\n"
            "  Writes (debug_op not 0) or reads a debug value of the switch.\n"
            "\n"
            "Arguments:\n"
            "  value           28 bytes as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]; zeros when "
            "left out\n"
            "    debug_op        read, write, or a number\n"
            "    reserved_04     20 bytes as HEX\n"
            "    debug_value     a number from 0 to 65535\n"
            "    reserved_1a     2 bytes as HEX\n"
            "\n"
            "Results:\n"
            "  value           the record's fields\n"
            "\n"
            "Sends message type 40 to module 2.\n"
            "\n"
            "Example:\n"
            "  oltctl process_switchdebug_value debug_op=read\n");
  EXPECT_EQ(help_text("set_system_loglevel"),
            "set_system_loglevel value\n"
            "  Sets the level from which messages are logged.\n"
            "\n"
            "Arguments:\n"
            "  value           emergency, alert, critical, error, warning, notice, info, debug, or "
            "a number\n"
            "\n"
            "Sends message type 83 to module 22, then to module 2.\n"
            "\n"
            "Example:\n"
            "  oltctl set_system_loglevel value=debug\n");
}

TEST(Manual, SaysWhatBecomesOfFieldsThatAreNotGiven) {
  EXPECT_NE(help_text("set_rstp_config")
                .find("\nWhat is not given stays as it is: get_rstp_config reads it before. --zero "
                      "sends zeros instead.\n"
                      "At a terminal it shows the change and asks; --yes answers.\n"
                      "\n"
                      "Sends message type 172 to module 2.\n"),
            std::string::npos);
  EXPECT_NE(help_text("process_olt_port_mac")
                .find("\nAll fields must be given, since no operation reads them. --zero sends "
                      "zeros for the others.\n"
                      "\n"
                      "Sends message type 55 to module 2.\n"),
            std::string::npos);
}

TEST(Manual, ShowsTheShortFormsOfArguments) {
  EXPECT_EQ(help_text("add_ont_port_muticastvlan"),
            "add_ont_port_muticastvlan ont vlans\n"
            "  Adds multicast VLANs to a UNI port.\n"
            "\n"
            "Arguments:\n"
            "  ont             an ONT as 1/2/3, its UNI port as 1/2/3:4, or 88 bytes as HEX, @FILE "
            "or OFFSET:HEX[,OFFSET:HEX...]\n"
            "    target          an ONT as 1/2/3\n"
            "    target_kind     this, next, or a number\n"
            "    part            a number\n"
            "    reserved_14     8 bytes as HEX\n"
            "    mac             an address as 02:00:00:00:00:01\n"
            "    reserved_22     2 bytes as HEX\n"
            "    mac_word        a number\n"
            "    reserved_28     48 bytes as HEX\n"
            "  vlans           VLANs from 1 to 4094 as 10,20-25, or @FILE with one a line\n"
            "\n"
            "Sends message type 124 to module 2.\n"
            "\n"
            "Example:\n"
            "  oltctl add_ont_port_muticastvlan ont=1/2/3:4 vlans=10,20-25\n");
  std::string entries = help_text("add_authallowed_loid");
  EXPECT_NE(entries.find("  entries         entries as FIELD=VALUE with the fields mac (an address "
                         "as 02:00:00:00:00:01), loid (text of at most 24 bytes), password (text "
                         "of at most 12 bytes), or 44 bytes as HEX, separated by ';', or @FILE "
                         "with one a line\n"),
            std::string::npos)
      << entries;
  EXPECT_NE(entries.find(" entries=loid=onu-1-2-3\n"), std::string::npos);
}

TEST(Manual, SaysWhatWorksOnTheFlash) {
  EXPECT_EQ(help_text("erase_to_flash"),
            "erase_to_flash region [unused_a] [unused_b]\n"
            "  Erases a whole region.\n"
            "\n"
            "Arguments:\n"
            "  region          a number\n"
            "  unused_a        a number; 0 when left out\n"
            "  unused_b        a number; 0 when left out\n"
            "\n"
            "At a terminal it asks before it acts; --yes answers.\n"
            "\n"
            "Works on the flash device and sends nothing: with the embedded box on a simulated\n"
            "device, with --real-flash on this machine's /dev/mtd0.\n"
            "\n"
            "Example:\n"
            "  oltctl erase_to_flash region=1\n");
  EXPECT_NE(help_text("read_from_flash")
                .find("  buffer          the bytes; buffer=@FILE writes them to a file\n"),
            std::string::npos);
}

TEST(Manual, SaysWhatComesBack) {
  EXPECT_EQ(help_text("do_reboot_system"),
            "do_reboot_system\n"
            "  Reboots the box.\n"
            "\n"
            "At a terminal it asks before it acts; --yes answers.\n"
            "\n"
            "Sends message type 7 to module 2.\n"
            "\n"
            "Example:\n"
            "  oltctl do_reboot_system\n");
  EXPECT_EQ(help_text("show_memory_info"),
            "show_memory_info module\n"
            "  Lists one module's use of memory.\n"
            "\n"
            "Arguments:\n"
            "  module          main, oam, log, rstp, or a number from 0 to 255\n"
            "\n"
            "Results:\n"
            "  name            the name of a listing, followed by its text\n"
            "\n"
            "Sends message type 3 to the module that the first argument names.\n"
            "\n"
            "Example:\n"
            "  oltctl show_memory_info module=main\n");
  EXPECT_EQ(help_text("do_handle_epon_updatestream"),
            "do_handle_epon_updatestream request\n"
            "  Sends a piece of an OLT firmware update.\n"
            "\n"
            "Arguments:\n"
            "  request         bytes as HEX or @FILE: total, offset, image\n"
            "\n"
            "Results:\n"
            "  answer          the reply's fields\n"
            "\n"
            "At a terminal it asks before it acts; --yes answers.\n"
            "\n"
            "Sends message type 11 to module 2.\n"
            "\n"
            "Example:\n"
            "  oltctl do_handle_epon_updatestream request=040000000000000001020304\n");
}

TEST(Manual, AlignsFieldsWithLongNames) {
  std::string help = help_text("set_snmp_olt_port_basic_info");
  EXPECT_NE(help.find("\n    slot                  a number\n"), std::string::npos) << help;
  EXPECT_NE(help.find("\n    ingressfilter_second  a number\n"), std::string::npos);
}

TEST(Manual, ExamplesNameAWholePortAndNeedNoFile) {
  auto example = [](const char *operation) {
    std::string help = help_text(operation);
    return help.substr(help.find("Example:\n") + 9);
  };
  EXPECT_EQ(example("get_snmp_olt_port_basic_info"),
            "  oltctl get_snmp_olt_port_basic_info slot=1 port=1\n");
  EXPECT_EQ(example("deal_wan_connection"),
            "  oltctl deal_wan_connection ont=1/2/3 operation=add number=1\n");
  EXPECT_EQ(example("add_iptv_channel"),
            "  oltctl create_iptv_profile profile=basic\n"
            "  oltctl add_iptv_channel profile=basic number=1\n");
  EXPECT_EQ(example("process_snmp_vlan_id"),
            "  oltctl process_snmp_vlan_id selector=this vlan=1\n");
  EXPECT_EQ(example("get_rstp_brief"), "  oltctl get_rstp_brief slot=1 port=1\n");
  EXPECT_EQ(example("get_rstp_port_config"), "  oltctl get_rstp_port_config slot=1 port=1\n");
  EXPECT_EQ(example("get_vlan_information_file_bydescprtion"),
            "  oltctl get_vlan_information_file_bydescprtion description=uplink\n");
}

class Examples : public testing::TestWithParam<size_t> {};

/// The commands of an example, without "oltctl" before them.
std::string commands_of(const std::string &help) {
  std::string commands;
  std::istringstream lines(help.substr(help.find("Example:\n") + 9));
  for (std::string line; std::getline(lines, line);) {
    EXPECT_EQ(line.substr(0, 9), "  oltctl ") << line;
    commands += line.substr(9) + '\n';
  }
  return commands;
}

TEST_P(Examples, SucceedOnAFreshBox) {
  const auto &family = olt::catalog::families()[GetParam()];
  for (const auto &operation : family.operations) {
    Oltctl oltctl;
    std::string commands = commands_of(help_text(operation.name));
    Finished finished = oltctl({"-f", "-"}, commands);
    EXPECT_EQ(finished.status, 0) << commands << finished.errors;
    EXPECT_EQ(finished.errors, "") << commands;
  }
}

INSTANTIATE_TEST_SUITE_P(AllFamilies, Examples,
                         testing::Range<size_t>(0, olt::catalog::families().size()));

TEST(Manual, SaysWhatACommandTakes) {
  EXPECT_EQ(help_text("counters"), "counters\n  Shows what has happened in the box\n");
  EXPECT_EQ(
      help_text("fault"),
      "fault add NAME=VALUE...\n"
      "fault list\n"
      "fault clear [ID]\n"
      "  Has the box refuse a request, answer late or not at all\n"
      "  'fault clear' alone ends all. 'fault add' takes:\n"
      "    type=TYPE|OPERATION         the message type of the requests; must be given\n"
      "    module=N                    their module; any when left out\n"
      "    status=N                    the status to answer with\n"
      "    delay_ms=N                  milliseconds to wait before the answer\n"
      "    action=status|silence|drop  silence never answers, drop closes the connection\n"
      "    from=N                      the first such request that it affects; 1 when left out\n"
      "    count=N                     how many it affects; 0, as when left out: all that follow\n"
      "  Example: fault add type=get_olt_mac status=5 count=1\n");
  std::string all = help_text("");
  EXPECT_NE(all.find("fault add NAME=VALUE...\nfault list\n"), std::string::npos);
  EXPECT_NE(all.find("list [WORD]\n"), std::string::npos);
}

TEST(Manual, SummarizesTheCommandsForTheOptionHelp) {
  std::string summaries = olt::cli::command_summaries();
  EXPECT_NE(summaries.find("  oltctl list [WORD]              Lists the operations, or those about "
                           "WORD\n"),
            std::string::npos)
      << summaries;
  EXPECT_NE(summaries.find("\n  oltctl fault add NAME=VALUE...  Has the box refuse"),
            std::string::npos)
      << summaries;
}

}  // namespace

}  // namespace olt::test
