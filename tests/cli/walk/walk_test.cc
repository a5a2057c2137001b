// Walks of SNMP tables through oltctl with its embedded box.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/olthost.h"
#include "tests/cli/program.h"
#include "tests/cli/terminal.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

/// Two PON interfaces with two ONUs each, which have two UNI ports and one voice line.
class Walk : public testing::Test {
 protected:
  Finished oltctl(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--topology", topology_});
    return oltctl_(arguments);
  }

  Oltctl oltctl_;
  std::string topology_ = oltctl_.folder().write(
      "box.json",
      R"({"pon":{"interfaces":2,"onus_per_interface":2,"uni_ports_per_onu":2,"voice_lines_per_onu":1}})");
};

TEST_F(Walk, PrintsATableOfAllRowsWithTheirIndexFirst) {
  ASSERT_EQ(oltctl({"set_ont_port_downrate", "1/1/2:1", "10,20,4294967295"}).status, 0);
  Finished walked = oltctl({"walk", "process_onu_portdownrate"});
  EXPECT_EQ(walked.status, 0) << walked.errors;
  EXPECT_EQ(walked.output,
            "slot  interface  onu  port  rates\n"
            "1     1          1    1     0,0,0\n"
            "1     1          1    2     0,0,0\n"
            "1     1          2    1     10,20,4294967295\n"
            "1     1          2    2     0,0,0\n"
            "1     2          1    1     0,0,0\n"
            "1     2          1    2     0,0,0\n"
            "1     2          2    1     0,0,0\n"
            "1     2          2    2     0,0,0\n");
  EXPECT_EQ(walked.errors, "");
}

TEST_F(Walk, WritesALineOfJsonForEachRow) {
  ASSERT_EQ(oltctl({"set_ont_fax", "1/2/1:1", "0aff"}).status, 0);
  EXPECT_EQ(
      oltctl({"--json", "walk", "process_snmpvoip_faxmode"}).output,
      R"({"version":1,"reader":"process_snmpvoip_faxmode","row":{"slot":1,"interface":1,"onu":1,"line":1,"fax_mode":"0000"}})"
      "\n"
      R"({"version":1,"reader":"process_snmpvoip_faxmode","row":{"slot":1,"interface":1,"onu":2,"line":1,"fax_mode":"0000"}})"
      "\n"
      R"({"version":1,"reader":"process_snmpvoip_faxmode","row":{"slot":1,"interface":2,"onu":1,"line":1,"fax_mode":"0aff"}})"
      "\n"
      R"({"version":1,"reader":"process_snmpvoip_faxmode","row":{"slot":1,"interface":2,"onu":2,"line":1,"fax_mode":"0000"}})"
      "\n");
}

TEST_F(Walk, ReadersThatWriteNothingBackGoAlongAnother) {
  ASSERT_EQ(oltctl({"banding_ont_voipinterface", "1/1/2", "wan1.voip"}).status, 0);
  EXPECT_EQ(oltctl({"walk", "process_snmp_hguvoipbandinginfo"}).output,
            "slot  interface  onu  bound  wan_interface\n"
            "1     1          1    no     -\n"
            "1     1          2    yes    wan1.voip\n"
            "1     2          1    no     -\n"
            "1     2          2    no     -\n");
  ASSERT_EQ(oltctl({"set_voip_linestatus", "1/2/2:1", "1"}).status, 0);
  EXPECT_EQ(oltctl({"walk", "process_voip_linestatus"}).output,
            "slot  interface  onu  line  line_status  state           account\n"
            "1     1          1    1     off          off             no\n"
            "1     1          2    1     off          off             no\n"
            "1     2          1    1     off          off             no\n"
            "1     2          2    1     on           not-registered  no\n");
}

TEST_F(Walk, ALimitThatComesBackInTheTargetIsAColumn) {
  ASSERT_EQ(oltctl({"set_ont_port_muticastgrounp", "1/2/1:2", "300"}).status, 0);
  Finished walked = oltctl({"walk", "process_onu_portmuticastmaxgroup"});
  EXPECT_TRUE(holds(walked.output, "slot  interface  onu  port  group_limit\n")) << walked.output;
  EXPECT_TRUE(holds(walked.output, "\n1     2          1    2     300\n")) << walked.output;
}

TEST_F(Walk, RowsOfBlocksShowWhatIsBehindTheirHeads) {
  ASSERT_EQ(oltctl({"deal_wan_connection", "1/1/1", "operation=1", "number=3"}).status, 0);
  std::string rows = oltctl({"--json", "walk", "process_snmp_hguwaninfo"}).output;
  EXPECT_TRUE(holds(rows, R"("onu":1,"count":1,"record_size":125,"length":125,)"
                          R"("connections":[{"operation":"add","number":3,"settings":")" +
                              std::string(234, '0') + "\"}]}}\n"))
      << rows;
  EXPECT_TRUE(holds(rows, R"("count":0,"record_size":125,"length":0,"connections":[]}})")) << rows;
  EXPECT_TRUE(holds(oltctl({"walk", "process_snmp_hguwaninfo"}).output,
                    "{operation=add number=3 settings=000000000000...\n"));
}

TEST_F(Walk, RowRecordsBeginWithTheirIndex) {
  ASSERT_EQ(oltctl({"add_vlan_list", "10"}).status, 0);
  ASSERT_EQ(oltctl({"process_trunk_vlan", "1", "2", "10", "0"}).status, 0);
  EXPECT_EQ(oltctl({"walk", "process_snmp_vlan_id"}).output,
            "vlan  description  tagged_ports  untagged_ports  members\n"
            "1     default      none          1-4             4\n"
            "10    -            2             none            1\n");
  EXPECT_EQ(oltctl({"walk", "process_snmp_oltauth"}).output,
            "slot  interface  auth_mode  allowed_macs  allowed_loids  allowed_mac_loids  onus  "
            "onus_up  onus_away  onus_blocked\n"
            "1     1          any        0             0              0                  2     "
            "2        0          0\n"
            "1     2          any        0             0              0                  2     "
            "2        0          0\n");
}

TEST_F(Walk, ATableMayBeEmpty) {
  EXPECT_EQ(oltctl({"walk", "process_snmp_iptv_profile"}).output, "no rows\n");
  EXPECT_EQ(oltctl({"--json", "walk", "process_snmp_iptv_profile"}).output, "");
  ASSERT_EQ(oltctl({"create_iptv_profile", "basic"}).status, 0);
  ASSERT_EQ(oltctl({"add_iptv_channel", "basic", "number=7"}).status, 0);
  EXPECT_EQ(oltctl({"walk", "process_snmp_iptv_profile"}).output,
            "profile  channels\n"
            "basic    1\n");
  EXPECT_EQ(oltctl({"walk", "process_snmp_iptv_profile_channel"}).output,
            "profile  number  settings\n"
            "basic    7       00000000000000000000000000000000\n");
}

TEST_F(Walk, AFailureInTheMiddleKeepsTheRowsBeforeIt) {
  auto arm = [this] {
    return oltctl({"fault", "add", "type=process_onu_portinfo", "status=6", "from=2", "count=1"})
        .status;
  };
  ASSERT_EQ(arm(), 0);
  Finished json = oltctl({"--json", "walk", "process_onu_portinfo"});
  EXPECT_EQ(json.status, 1);
  EXPECT_EQ(
      json.output.substr(0, 96),
      R"({"version":1,"reader":"process_onu_portinfo","row":{"slot":1,"interface":1,"onu":1,"port":1,"inf)");
  EXPECT_EQ(json.output.find('\n'), json.output.size() - 1);
  EXPECT_TRUE(json.output.ends_with("}}\n"));
  EXPECT_EQ(json.errors,
            "process_onu_portinfo failed: result 6 (0x00000006): status 6 (oltbox: "
            "table full)\n");
  ASSERT_EQ(arm(), 0);
  Finished text = oltctl({"walk", "process_onu_portinfo"});
  EXPECT_EQ(text.status, 1);
  EXPECT_EQ(text.output.substr(0, 26), "slot  interface  onu  port");
  EXPECT_TRUE(holds(text.output, "\n1     1          1    1     0,0,0,0,0,0,0,0,0,0,0  "));
  EXPECT_FALSE(holds(text.output, "\n1     1          1    2"));
  EXPECT_EQ(text.errors, json.errors);
}

TEST_F(Walk, AFailingFirstStepLeavesNoOutput) {
  ASSERT_EQ(oltctl({"fault", "add", "type=process_snmpvoip_faxmode", "status=11"}).status, 0);
  Finished walked = oltctl({"walk", "process_snmp_onusipuserinfo"});
  EXPECT_EQ(walked.status, 1);
  EXPECT_EQ(walked.output, "");
  EXPECT_TRUE(walked.errors.starts_with("process_snmpvoip_faxmode failed: result 11 (0x0000000b)"))
      << walked.errors;
}

/// Answers every request with the first row.
void answer(void *row, const olt_request * /*request*/, olt_answer *answer) {
  answer->reply = row;
  answer->reply_length = 60;
}

TEST_F(Walk, AModuleThatGivesTheSameRowAgainIsNotAskedForever) {
  uint32_t row[15] = {2, 1, 1};
  char error[256];
  std::string run_dir = oltctl_.folder() / "run";
  olt_server_options options{};
  options.run_dir = run_dir.c_str();
  std::unique_ptr<olt_server, decltype(&olt_server_destroy)> server(
      olt_server_create(&options, error), &olt_server_destroy);
  ASSERT_EQ(olt_server_add(server.get(), 2, answer, row, error), 0) << error;
  std::thread thread([&server] {
    char line[256];
    EXPECT_EQ(olt_server_run(server.get(), line), 0) << line;
  });
  Finished walked = oltctl_({"--box", run_dir, "--json", "walk", "process_snmp_oltauth"});
  olt_server_stop(server.get());
  thread.join();
  EXPECT_EQ(walked.status, 1);
  EXPECT_EQ(walked.output.substr(0, 79),
            R"({"version":1,"reader":"process_snmp_oltauth","row":{"slot":1,"interface":1,"aut)");
  EXPECT_EQ(walked.output.find('\n'), walked.output.size() - 1);
  EXPECT_EQ(walked.errors,
            "walk: process_snmp_oltauth returns the same row again; expected the next one\n");
}

TEST_F(Walk, ABoxThatIsNotThereIsReportedWithAdvice) {
  Finished walked = oltctl_({"--box", oltctl_.folder().path(), "walk", "process_snmp_oltauth"});
  EXPECT_EQ(walked.status, 1);
  EXPECT_TRUE(holds(walked.errors, "process_snmp_oltauth failed: result 131072 (0x00020000)"));
  EXPECT_TRUE(holds(walked.errors, "; expected a box that was started with 'oltbox --run-dir "));
}

TEST_F(Walk, AReaderThatDoesNotExistIsRefusedWithAllThatDo) {
  Finished refused = oltctl({"walk", "get_olt_mac"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.output, "");
  EXPECT_TRUE(refused.errors.starts_with(
      "walk: there is no table 'get_olt_mac'; expected one of: onus, links, onu-parts, "))
      << refused.errors;
  EXPECT_TRUE(refused.errors.ends_with(", iptv-channels, vlans, ports, auth\n"));
  EXPECT_EQ(refused.errors.find('\n'), refused.errors.size() - 1);
  EXPECT_EQ(oltctl({"walk", "process_snmp_oltauth", "more"}).errors,
            "walk: 'more' given; expected COLUMN=VALUE or an option\n");
}

TEST_F(Walk, TablesHaveShortNames) {
  EXPECT_EQ(oltctl({"walk", "uni-rates"}).output,
            oltctl({"walk", "process_onu_portdownrate"}).output);
  EXPECT_TRUE(oltctl({"--json", "walk", "vlans"})
                  .output.starts_with(R"({"version":1,"reader":"process_snmp_vlan_id","row":)"));
}

TEST_F(Walk, ConditionsKeepTheRowsThatHaveTheValues) {
  Finished kept = oltctl({"walk", "onus", "interface=0x2", "state=up", "--columns", "onu,mac"});
  EXPECT_EQ(kept.status, 0) << kept.errors;
  EXPECT_EQ(kept.output,
            "onu  mac\n"
            "1    02:20:02:00:01:01\n"
            "2    02:20:02:00:02:01\n");
  EXPECT_EQ(oltctl({"walk", "onus", "mac=02:20:01:00:02:01", "--columns=loid"}).output,
            "loid\n"
            "onu-1-1-2\n");
  EXPECT_EQ(oltctl({"walk", "onus", "state=blocked"}).output, "no rows\n");
  EXPECT_EQ(oltctl({"--json", "walk", "onus", "loid=onu-1-2-1", "--columns", "mac,slot"}).output,
            R"({"version":1,"reader":"process_snmp_onubasicinfo",)"
            R"("row":{"mac":"02:20:02:00:01:01","slot":1}})"
            "\n");
}

TEST_F(Walk, RowsAreSortedByValue) {
  for (const char *vlan : {"10", "9", "200"}) {
    ASSERT_EQ(oltctl({"add_vlan_list", vlan}).status, 0);
    ASSERT_EQ(oltctl({"add_vlan_descr_list", std::string(vlan) + ":v" + vlan}).status, 0);
  }
  EXPECT_EQ(oltctl({"walk", "vlans", "--columns", "vlan", "--sort", "vlan", "--reverse"}).output,
            "vlan\n200\n10\n9\n1\n");
  EXPECT_EQ(oltctl({"--format", "csv", "walk", "vlans", "--columns", "description,vlan", "--sort",
                    "members,description"})
                .output,
            "description,vlan\n"
            "v10,10\n"
            "v200,200\n"
            "v9,9\n"
            "default,1\n");
  EXPECT_TRUE(oltctl({"walk", "vlans", "--reverse"}).output.find("\n200 ") <
              oltctl({"walk", "vlans", "--reverse"}).output.find("\n9 "));
}

TEST_F(Walk, AWrongQueryIsRefusedBeforeAnyRow) {
  auto error = [this](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"walk", "vlans"});
    Finished refused = oltctl(arguments);
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.output, "");
    return refused.errors;
  };
  std::string columns = "vlan, description, tagged_ports, untagged_ports, members\n";
  EXPECT_EQ(error({"lan=1"}), "walk: there is no column 'lan'; expected one of: " + columns);
  EXPECT_EQ(error({"--columns", "vlan,x"}),
            "walk: there is no column 'x'; expected one of: " + columns);
  EXPECT_EQ(error({"--sort=y"}), "walk: there is no column 'y'; expected one of: " + columns);
  EXPECT_EQ(error({"vlan=x"}).substr(0, 32), "walk: vlan: 'x' given; expected ");
  EXPECT_EQ(error({"--sort"}), "walk: --sort is empty; expected names of columns as a,b\n");
  EXPECT_EQ(error({"--columns="}), "walk: --columns is empty; expected names of columns as a,b\n");
  EXPECT_EQ(error({"--srt", "vlan"}),
            "walk: there is no option '--srt'; expected --columns, --sort or --reverse\n");
  EXPECT_EQ(error({"--reverse=1"}),
            "walk: there is no option '--reverse=1'; expected --columns, --sort or --reverse\n");
}

TEST_F(Walk, ANarrowTerminalShowsABlockForEachRow) {
  std::vector<std::string> command = {OLTCTL, "--topology", topology_,   "walk",
                                      "onus", "onu=2",      "--columns", "mac,state,loid"};
  Terminal narrow(command, private_environment(oltctl_.folder()), {24, 31, 0, 0});
  EXPECT_EQ(narrow.end(), 0);
  EXPECT_EQ(narrow.transcript(),
            "mac    02:20:01:00:02:01\r\n"
            "state  up\r\n"
            "loid   onu-1-1-2\r\n"
            "\r\n"
            "mac    02:20:02:00:02:01\r\n"
            "state  up\r\n"
            "loid   onu-1-2-2\r\n");
  Terminal wide(command, private_environment(oltctl_.folder()), {24, 35, 0, 0});
  EXPECT_EQ(wide.end(), 0);
  EXPECT_EQ(wide.transcript(),
            "mac                state  loid\r\n"
            "02:20:01:00:02:01  up     onu-1-1-2\r\n"
            "02:20:02:00:02:01  up     onu-1-2-2\r\n");
}

TEST_F(Walk, TextIsAlignedByDisplayWidth) {
  ASSERT_EQ(oltctl({"add_vlan_list", "10,11"}).status, 0);
  ASSERT_EQ(oltctl({"add_vlan_descr_list", "10:\xe4\xb8\xad\xe6\x96\x87,11:caf\xc3\xa9"}).status,
            0);
  EXPECT_EQ(oltctl({"walk", "vlans", "--columns", "description,members"}).output,
            "description  members\n"
            "default      4\n"
            "\xe4\xb8\xad\xe6\x96\x87         0\n"
            "caf\xc3\xa9         0\n");
}

TEST_F(Walk, WithoutAReaderItNamesThem) {
  Finished named = oltctl({"walk"});
  EXPECT_EQ(named.status, 0) << named.errors;
  EXPECT_TRUE(named.output.starts_with("walk [READER] [COLUMN=VALUE...] [OPTION...]\n"));
  EXPECT_TRUE(holds(named.output,
                    "\nReaders:\n"
                    "  onus                 process_snmp_onubasicinfo          Reads the basic "
                    "information of an ONU\n"))
      << named.output;
  EXPECT_TRUE(named.output.ends_with(
      "  auth                 process_snmp_oltauth               Reads a row of the ONU "
      "authentication settings\n"));
  EXPECT_EQ(oltctl({"help", "walk"}).output, named.output);
}

TEST_F(Walk, RunsInScripts) {
  std::string script = oltctl_.folder().write("script", "walk process_snmp_oltbasicport\n");
  EXPECT_TRUE(oltctl({"-f", script}).output.starts_with("slot  port  port_enable  link_state"));
}

}  // namespace

}  // namespace olt::test
