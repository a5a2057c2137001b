// oltctl as a user runs it, with its embedded box.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

TEST(OltctlRun, OneInvocationSetsAndTheNextReads) {
  Oltctl oltctl;
  Finished added =
      oltctl({"add_user_level", "name=operator", "password=secret", "level_a=1", "level_b=0x20"});
  EXPECT_EQ(added.status, 0) << added.errors;
  EXPECT_EQ(added.output, "");
  Finished read = oltctl({"get_user_level", "operator", "secret"});
  EXPECT_EQ(read.status, 0) << read.errors;
  EXPECT_EQ(read.output, "level_a = 1\nlevel_b = 32\n");
  EXPECT_EQ(read.errors, "");
}

TEST(OltctlRun, FreshStartsAnew) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"add_user_level", "operator", "secret", "1", "2"}).status, 0);
  EXPECT_EQ(oltctl({"--fresh", "get_user_level", "operator", "secret"}).status, 1);
  EXPECT_EQ(oltctl({"get_user_level", "operator", "secret"}).status, 1);
}

TEST(OltctlRun, RecordsAreSetAndReadBack) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"set_snmp_param", "0:0102,0x87:ff"}).status, 0);
  EXPECT_EQ(oltctl({"--raw", "--all", "--show-secrets", "get_snmp_param"}).output,
            "read_community = \\x01\\x02\n"
            "write_community = \n"
            "trap_community = \n"
            "traps = 0\n"
            "trap_host = 00 00 00 00\n"
            "trap_port = 0\n"
            "reserved_6c = 28 bytes\n"
            "  0000  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................\n"
            "  0010  00 00 00 00 00 00 00 00 00 00 00 ff              ............\n");

  EXPECT_EQ(oltctl({"set_system_ipaddress", "address=192.0.2.7", "mask=255.255.255.0", "vlan=20",
                    "name=Box 1"})
                .status,
            0);
  Finished read = oltctl({"--json", "get_system_network"});
  EXPECT_EQ(read.output, R"({"version":1,"operation":"get_system_network","result":0,)"
                         R"("failed":false,"transport":null,"status":0,"outputs":{"network":)"
                         R"({"address":"192.0.2.7","mask":"255.255.255.0","gateway":"0.0.0.0",)"
                         R"("vlan":20,"dns_first":"0.0.0.0","dns_second":"0.0.0.0",)"
                         R"("name":"Box 1"}},"listing":null})"
                         "\n");

  std::string file = oltctl.folder().write("record", std::string(196, 'i'));
  EXPECT_EQ(oltctl({"set_snmp_systeminfo", "info=@" + file}).status, 0);
  EXPECT_TRUE(holds(oltctl({"get_snmp_systeminfo"}).output, "services = 1768515945\n"));
}

TEST(OltctlRun, RecordsWithFieldsAreShownByField) {
  Oltctl oltctl;
  Finished written = oltctl({"process_switchdebug_value", "debug_op=1", "debug_value=0x1234"});
  EXPECT_EQ(written.status, 0) << written.errors;
  EXPECT_EQ(oltctl({"process_switchdebug_value"}).output, "debug_value = 4660\n");
  EXPECT_EQ(oltctl({"--all", "process_switchdebug_value"}).output,
            "debug_op = read\n"
            "reserved_04 = 20 bytes\n"
            "  0000  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................\n"
            "  0010  00 00 00 00                                      ....\n"
            "debug_value = 4660\n"
            "reserved_1a = 00 00\n");
  EXPECT_EQ(oltctl({"--all", "--raw", "process_switchdebug_value"}).output.substr(0, 13),
            "debug_op = 0\n");
}

TEST(OltctlRun, ListingsAreShownBehindTheirName) {
  Oltctl oltctl;
  Finished shown = oltctl({"get_system_basicinfofile"});
  EXPECT_EQ(shown.status, 0) << shown.errors;
  EXPECT_EQ(shown.output.substr(0, 7), "name = ");
  std::string name = shown.output.substr(7, shown.output.find('\n') - 7);
  std::string listing = read_file(oltctl.folder().path() + "/oltmgmt/embedded/listings/" + name);
  EXPECT_FALSE(listing.empty());
  EXPECT_EQ(shown.output, "name = " + name + "\n" + listing);
  Finished json = oltctl({"--json", "show_memory_info", "18"});
  EXPECT_TRUE(holds(json.output, R"("listing":{"name":")")) << json.output;
  EXPECT_TRUE(holds(json.output, R"(","text":")")) << json.output;
}

TEST(OltctlRun, StreamsComeBackAsBlocks) {
  Oltctl oltctl;
  std::string image = oltctl.folder().write(
      "image", std::string("\x00\x10\x00\x00\x00\x00\x00\x00", 8) + std::string(4096, 'e'));
  Finished sent = oltctl({"do_handle_epon_updatestream", "@" + image});
  EXPECT_EQ(sent.status, 0) << sent.errors;
  EXPECT_EQ(sent.output, "received = 4096 bytes\nprogress = complete\n");
  EXPECT_EQ(oltctl({"get_card_updatestatus"}).output, "value = complete\n");
  EXPECT_EQ(oltctl({"--raw", "get_card_updatestatus"}).output, "value = 100\n");
}

TEST(OltctlRun, AFailureIsOneLineAndStatusOne) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"fault", "add", "type=12", "status=5", "from=2", "count=1"}).output,
            "id = 1\n");
  EXPECT_EQ(oltctl({"get_olt_mac"}).status, 0);
  Finished failed = oltctl({"get_olt_mac"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.output, "");
  EXPECT_EQ(failed.errors,
            "get_olt_mac failed: result 5 (0x00000005): status 5 (oltbox: exists already)\n");
  EXPECT_EQ(oltctl({"get_olt_mac"}).status, 0);
}

TEST(OltctlRun, ALostExchangeSaysHow) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"fault", "add", "type=get_olt_mac", "action=drop"}).status, 0);
  Finished failed = oltctl({"--json", "get_olt_mac"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.errors.substr(0, 55), "get_olt_mac failed: result 196608 (0x00030000): the mod");
  EXPECT_TRUE(holds(failed.output, R"("result":196608,"failed":true,"transport":")"))
      << failed.output;
  EXPECT_TRUE(holds(failed.output, R"(","status":null,"outputs":{})")) << failed.output;
}

TEST(OltctlRun, AResultOfMinusOneSaysWhy) {
  Oltctl oltctl;
  const std::vector<std::string> call = {"set_ont_port_alarmsetting", "1/2/3:44", "1"};
  EXPECT_EQ(oltctl(call).errors,
            "set_ont_port_alarmsetting failed: result -1 (0xffffffff): status 4 (oltbox: not "
            "found)\n");
  EXPECT_EQ(oltctl({"--json", call[0], call[1], call[2]}).output,
            R"({"version":1,"operation":"set_ont_port_alarmsetting","result":-1,"failed":true,)"
            R"("transport":null,"status":4,"outputs":{},"listing":null})"
            "\n");
  ASSERT_EQ(oltctl({"fault", "add", "type=set_ont_port_alarmsetting", "drop"}).status, 0);
  Finished dropped = oltctl({"--json", call[0], call[1], call[2]});
  EXPECT_TRUE(holds(dropped.output, R"("result":-1,"failed":true,"transport":"the module)"))
      << dropped.output;
  EXPECT_TRUE(holds(dropped.output, R"(","status":null,)")) << dropped.output;
  EXPECT_EQ(dropped.errors.substr(0, 64),
            "set_ont_port_alarmsetting failed: result -1 (0xffffffff): the mo");
  EXPECT_EQ(oltctl({"--json", "get_snmp_olt_port_status", "slot=2", "port=3"}).errors,
            "get_snmp_olt_port_status failed: result -1 (0xffffffff): slot or port is out of "
            "range\n");
}

TEST(OltctlRun, TextsAreTexts) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"add_ont_description", "1/2/3", "description=Smith house"}).status, 0);
  EXPECT_TRUE(
      holds(oltctl({"process_snmp_onubasicinfo", "1/2/3"}).output, "description = Smith house\n"));
  EXPECT_EQ(oltctl({"add_ont_description", "1/2/4", "0a0b"}).status, 0);
  EXPECT_TRUE(holds(oltctl({"process_snmp_onubasicinfo", "1/2/4"}).output, "description = 0a0b\n"));
  EXPECT_EQ(oltctl({"set_ont_port_description", "1/2/3:1", "Kitchen: left, 2nd"}).status, 0);
}

TEST(OltctlRun, AnImageWithoutAHeadSaysWhatIsMissing) {
  Oltctl oltctl;
  std::string image = oltctl.folder().write("image", "not a piece");
  EXPECT_EQ(oltctl({"do_handle_epon_updatestream", "@" + image}).errors,
            "do_handle_epon_updatestream failed: result 3 (0x00000003): status 3 (oltbox: bad "
            "value); expected request to hold total, offset, image\n");
}

TEST(OltctlRun, FaultsAreListedAndCleared) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"fault", "list"}).output, "faults: none\n");
  ASSERT_EQ(oltctl({"fault", "add", "type=set_system_loglevel", "module=22", "delay_ms=1",
                    "action=status"})
                .output,
            "id = 1\n");
  ASSERT_EQ(oltctl({"fault", "add", "type=7", "status=0xffff"}).output, "id = 2\n");
  std::string list = oltctl({"fault", "list"}).output;
  EXPECT_TRUE(holds(list, "  id=1 module=22 type=83 operations=set_system_loglevel ")) << list;
  EXPECT_TRUE(holds(list, " module=any type=7 operations=do_reboot_system status=65535 ")) << list;
  EXPECT_TRUE(
      holds(oltctl({"--json", "fault", "list"}).output,
            R"("module":"any","type":7,"operations":["do_reboot_system"],"status":65535,)"));
  EXPECT_EQ(oltctl({"fault", "clear", "1"}).output, "cleared = 1\n");
  Finished gone = oltctl({"fault", "clear", "1"});
  EXPECT_EQ(gone.status, 1);
  EXPECT_EQ(gone.errors.substr(0, 20), "fault_clear failed: ");
  EXPECT_EQ(oltctl({"fault", "clear"}).output, "cleared = 1\n");
  EXPECT_EQ(oltctl({"--json", "fault", "list"}).output,
            "{\"version\":1,\"command\":\"fault_list\",\"faults\":[]}\n");
}

TEST(OltctlRun, CountersTellWhatHappened) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"get_olt_mac"}).status, 0);
  std::string counters = oltctl({"counters"}).output;
  EXPECT_TRUE(holds(counters, "exchanges = ")) << counters;
  EXPECT_TRUE(holds(counters, "  module=2 type=12 exchanges=1 ")) << counters;
}

TEST(OltctlRun, TracesOnStandardErrorWithoutSecrets) {
  Oltctl oltctl;
  Finished traced = oltctl({"--trace", "add_user_level", "operator", "s3cret", "1", "2"});
  EXPECT_EQ(traced.output, "");
  EXPECT_TRUE(holds(traced.errors, "> type 10 to module 2, 80 bytes\n")) << traced.errors;
  EXPECT_TRUE(holds(traced.errors,
                    "  0000  01 00 00 00 00 00 00 00 6f 70 65 72 61 74 6f 72  ........operator\n"
                    "  0010  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................\n"
                    "  0020  00 00 00 00 00 00 00 00 ** ** ** ** ** ** ** **  ........********\n"
                    "  0030  ** ** ** ** ** ** ** ** ** ** ** ** ** ** ** **  ****************\n"
                    "  0040  ** ** ** ** ** ** ** ** 01 00 00 00 02 00 00 00  ********........\n"
                    "  user_op=add user_index=0 user_name=operator user_password=** level_a=1 "
                    "level_b=2\n"
                    "< status 0 after "))
      << traced.errors;
  Finished next = oltctl({"--trace", "--show-secrets", "get_system_next_user", "user_name=admin"});
  EXPECT_TRUE(holds(next.output, "user_password = s3cret\n")) << next.output;
  EXPECT_FALSE(holds(next.errors, "s3cret")) << next.errors;
  EXPECT_FALSE(holds(next.errors, "73 33 63")) << next.errors;
}

TEST(OltctlRun, SecretsAreMaskedInResults) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"add_user_level", "operator", "s3cret", "1", "2"}).status, 0);
  EXPECT_EQ(oltctl({"get_system_user_byindex", "user_index=1"}).output,
            "user_index = 1\n"
            "user_name = operator\n"
            "user_password = ********\n"
            "level_a = 1\n"
            "level_b = 2\n");
  EXPECT_FALSE(
      holds(oltctl({"--json", "get_system_user_byindex", "user_index=1"}).output, "s3cret"));
}

TEST(OltctlRun, APasswordIsReadFromStandardInput) {
  Oltctl oltctl;
  EXPECT_EQ(
      oltctl({"add_user_level", "operator", "password=-", "1", "2"}, "s3 cret\nmore\n").status, 0);
  EXPECT_EQ(oltctl({"get_user_level", "operator", "s3 cret"}).status, 0);
  Finished ended = oltctl({"get_user_level", "operator", "-"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.errors, "password: standard input ended; expected a line with it\n");
  Finished longer = oltctl({"get_user_level", "operator", "-"}, std::string(32, 'p') + "\n");
  EXPECT_EQ(longer.errors,
            "get_user_level: password: 32 bytes given; expected text of at most 31 bytes\n");
}

struct Wrong {
  std::vector<std::string> arguments;
  std::string line;
};

TEST(OltctlRun, WrongUsageIsOneLineAndStatusTwo) {
  const Wrong wrongs[] = {
      {{},
       "oltctl: no operation is given; expected one, for example get_olt_mac; see oltctl --help "
       "and oltctl list"},
      {{"get_olt_mca"}, "oltctl: there is no operation 'get_olt_mca'; did you mean get_olt_mac?"},
      {{"--jsn", "get_olt_mac"},
       "oltctl: there is no option '--jsn'; expected one that 'oltctl --help' shows, or "
       "NAME=--jsn for a value"},
      {{"--box"}, "oltctl: --box: 1 required DIR missing; expected what oltctl --help says"},
      {{"--box", "/nowhere", "--fresh", "get_olt_mac"},
       "oltctl: --fresh and --topology are for the embedded box, but the box in /nowhere is used; "
       "expected --box embedded beside them"},
      {{"delete_user_level"},
       "delete_user_level: name is missing; expected text of at most 31 bytes"},
      {{"get_user_level", "operator"},
       "get_user_level: password is missing; expected text of at most 31 bytes, or '-' to read it "
       "from standard input"},
      {{"delete_user_level", "name=12345678901234567890123456789012"},
       "delete_user_level: name: 32 bytes given; expected text of at most 31 bytes"},
      {{"set_debug_enable", "2", "on"}, "set_debug_enable: value: 'on' given; expected a number"},
      {{"set_system_dns", "00"},
       "set_system_dns: network: 1 byte given; expected 172 bytes as HEX, @FILE or "
       "OFFSET:HEX[,OFFSET:HEX...]"},
      {{"add_vlan_list", "vlans=10,20-"},
       "add_vlan_list: vlans: item 2: '20-' is a range with one end; expected VLANs from 1 to 4094 "
       "as 10,20-25, or @FILE with one a line"},
      {{"help", "VLAN"},
       "oltctl: there is no operation 'VLAN'; 'oltctl list VLAN' shows those about it"},
      {{"shell", "x"}, "shell: not possible here; expected the command line 'oltctl shell', alone"},
      {{"list", "a", "b"}, "list: 'b' is one argument too many; expected at most one"},
      {{"list", "nonsense"},
       "list: no operation is about 'nonsense'; expected another word, or none for all"},
      {{"help", "get_olt_mca"},
       "oltctl: there is no operation 'get_olt_mca'; did you mean get_olt_mac?"},
      {{"completion"}, "completion: '' given; expected bash, zsh or fish"},
      {{"get_mac"},
       "oltctl: there is no operation 'get_mac'; did you mean get_olt_mac or "
       "get_onu_basic_mac_byindex or get_dynmac_file_by_interface?"},
      {{"get_statistics"},
       "oltctl: there is no operation 'get_statistics'; did you mean "
       "get_statics_file_by_interface?"},
      {{"add_authallowed_loid", "1/1", "loid=x password=y"},
       "add_authallowed_loid: 'loid' is a field of the items of entries; expected "
       "entries='loid=... ...'"},
      {{"get_port_link_speed", "1/1", "1"},
       "get_port_link_speed: '1' is one argument too many; expected: slot, port"},
      {{"get_port_link_speed", "1/"}, "get_port_link_speed: port is missing; expected a number"},
      {{"fault"}, "fault: '' given; expected add, list or clear"},
      {{"fault", "remove"}, "fault: 'remove' given; expected add, list or clear"},
      {{"fault", "add", "type=get_olt_mca"},
       "fault add: fault \"type=get_olt_mca\": type: is \"get_olt_mca\"; expected a message type "
       "or "
       "an operation that sends"},
      {{"fault", "clear", "x"}, "fault clear: 'x' given; expected a number from 0 to 4294967295"},
      {{"fault", "list", "x"}, "fault list: 'x' is one argument too many; expected none"},
      {{"counters", "x"}, "counters: 'x' is one argument too many; expected none"},
  };
  Oltctl oltctl;
  for (const Wrong &wrong : wrongs) {
    Finished finished = oltctl(wrong.arguments);
    EXPECT_EQ(finished.status, 2) << wrong.line;
    EXPECT_EQ(finished.errors, wrong.line + "\n");
    EXPECT_EQ(finished.output, "");
  }
  EXPECT_FALSE(std::filesystem::exists(oltctl.folder().path() + "/oltmgmt/embedded"));
}

TEST(OltctlRun, FaultsAreReadAsTheBoxReadsThem) {
  // The words of the message are the box's.
  const Wrong wrongs[] = {
      {{"fault", "add"}, ": type: is missing"},
      {{"fault", "add", "12"}, "\"12\""},
      {{"fault", "add", "type=12", "status=65536"}, ": status: is 65536"},
      {{"fault", "add", "type=12", "action=explode"}, ": action: is "},
      {{"fault", "add", "type=12", "type=13"}, "type is given twice"},
      {{"fault", "add", "type=12", "kind=12", "status=1"}, "kind"},
      {{"fault", "add", "type=12"}, "no effect"},
  };
  Oltctl oltctl;
  for (const Wrong &wrong : wrongs) {
    Finished finished = oltctl(wrong.arguments);
    EXPECT_EQ(finished.status, 2) << wrong.line;
    EXPECT_TRUE(finished.errors.starts_with("fault add: fault \"")) << finished.errors;
    EXPECT_TRUE(holds(finished.errors, wrong.line)) << finished.errors;
    EXPECT_EQ(finished.errors.find('\n'), finished.errors.size() - 1);
    EXPECT_EQ(finished.output, "");
  }
  EXPECT_FALSE(std::filesystem::exists(oltctl.folder().path() + "/oltmgmt/embedded"));
}

TEST(OltctlRun, HelpNeedsNoBox) {
  Oltctl oltctl;
  Finished help = oltctl({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.output.substr(0, 55), "Usage: oltctl [OPTION...] OPERATION [ARGUMENT...]\n     ");
  EXPECT_TRUE(holds(help.output, "\nExamples:\n  oltctl get_system_basicinfofile\n"));
  EXPECT_FALSE(holds(help.output, "--timeout"));
  EXPECT_EQ(oltctl({"--version"}).output.substr(0, 7), "oltctl ");
  EXPECT_EQ(oltctl({"--version"}).output.back(), '\n');
  EXPECT_EQ(oltctl({"list"}).status, 0);
  EXPECT_EQ(oltctl({"help", "get_olt_mac"}).status, 0);
  EXPECT_EQ(oltctl({"completion", "bash"}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(oltctl.folder().path() + "/oltmgmt"));
  EXPECT_TRUE(holds(help.output,
                    "\n  oltctl walk [READER] [COLUMN=VALUE...] [OPTION...]\n"
                    "                                  Prints the rows of a table\n"))
      << help.output;
}

TEST(OltctlRun, ARunDirectoryIsTakenFromTheEnvironment) {
  Oltctl oltctl;
  auto environment = private_environment(oltctl.folder());
  environment.push_back("OLT_RUN_DIR=" + oltctl.folder().path() + "/run");
  Finished missing = run({OLTCTL, "get_olt_mac"}, environment);
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.errors.substr(0, 48), "get_olt_mac failed: result 131072 (0x00020000): ");
  EXPECT_TRUE(holds(missing.errors, "; expected a box that was started with 'oltbox --run-dir " +
                                        oltctl.folder().path() + "/run', or --box embedded\n"))
      << missing.errors;
  Finished other = oltctl({"show_memory_info", "module=7"});
  EXPECT_EQ(other.errors.substr(0, 53), "show_memory_info failed: result 131072 (0x00020000): ");
  EXPECT_FALSE(holds(other.errors, "expected a box")) << other.errors;
  EXPECT_EQ(run({OLTCTL, "--box", "embedded", "get_olt_mac"}, environment).status, 0);
}

TEST(OltctlRun, TheEmbeddedBoxNeedsAPlace) {
  Finished lost = run({"env", "-u", "HOME", "-u", "XDG_STATE_HOME", OLTCTL, "get_olt_mac"}, {});
  EXPECT_EQ(lost.status, 1);
  EXPECT_EQ(lost.errors,
            "oltctl: no place for state; expected XDG_STATE_HOME or HOME to name an "
            "absolute path\n");
  Oltctl oltctl;
  std::string file = oltctl.folder().write("file", "");
  Finished refused = run({OLTCTL, "get_olt_mac"}, {"XDG_STATE_HOME=" + file});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.errors, "oltctl: cannot create " + file + "/oltmgmt: Not a directory\n");
}

TEST(OltctlRun, ABadTopologyIsOneLine) {
  Oltctl oltctl;
  std::string file = oltctl.folder().write("topology", "{\"ports\": }");
  Finished refused = oltctl({"--topology", file, "get_olt_mac"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.errors.substr(0, 41), "oltctl: the embedded box does not start: ");
  EXPECT_EQ(refused.errors.find('\n'), refused.errors.size() - 1);
}

TEST(OltctlRun, TakesAnInterfaceForTwoArguments) {
  Oltctl oltctl;
  Finished traced = oltctl({"--trace", "get_port_link_speed", "1/2"});
  EXPECT_EQ(traced.status, 0);
  EXPECT_TRUE(holds(traced.errors, "slot=1 port=2 ")) << traced.errors;
  EXPECT_EQ(oltctl({"set_port_enable", "1/2", "0"}).status, 0);
  EXPECT_EQ(oltctl({"get_port_enable", "slot=1", "port=2"}).output,
            oltctl({"get_port_enable", "1/2"}).output);
  EXPECT_EQ(oltctl({"set_olt_auth_mode", "1/1", "mac"}).status, 0);
  EXPECT_EQ(oltctl({"get_olt_auth_mode", "1", "1"}).output, "auth_mode = mac\n");
}

TEST(OltctlRun, ListsShowNamesInUtf8) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"add_vlan_list", "10"}).status, 0);
  EXPECT_EQ(oltctl({"add_vlan_descr_list", "vlans=10:Zo\xC3\xAB"}).status, 0);
  std::string list = oltctl({"get_vlan_all"}).output;
  EXPECT_TRUE(holds(list, "Zo\xC3\xAB")) << list;
}

TEST(OltctlRun, EndsQuietlyWhenNobodyReadsAndKeepsWhatWasSet) {
  Oltctl oltctl;
  // The first line comes after the reader has ended.
  std::string script = "add_user_level kept pw 3 4\n";
  for (int i = 0; i < 3; ++i) script += "get_olt_mac\n";
  std::string path = oltctl.folder().write("script", script);
  Finished done =
      run({"bash", "-c",
           std::string("exec 3> >(true); wait $!; ") + OLTCTL + " -f " + path + " >&3; echo $?"},
          private_environment(oltctl.folder()));
  EXPECT_EQ(done.output, "141\n");
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(oltctl({"get_user_level", "kept", "pw"}).output, "level_a = 3\nlevel_b = 4\n");
}

// bash counts in units of 1024 bytes.
TEST(OltctlRun, AFileSizeLimitFailsTheCallAndKeepsTheOldState) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"add_user_level", "kept", "pw", "3", "4"}).status, 0);
  auto limited = [&oltctl](const std::string &words) {
    return run({"bash", "-c", "ulimit -f 1; exec " OLTCTL " " + words},
               private_environment(oltctl.folder()));
  };
  std::string line = "oltctl: the embedded box cannot keep its state: " + oltctl.folder().path() +
                     "/oltmgmt/embedded/.new: File too large\n";
  Finished changed = limited("add_user_level lost pw 3 4");
  EXPECT_EQ(changed.status, 1);
  EXPECT_EQ(changed.errors, line);
  Finished saved = limited("save_system_config");
  EXPECT_EQ(saved.status, 1);
  EXPECT_TRUE(
      saved.errors.starts_with(line + "save_system_config failed: result 8 (0x00000008): status 8"))
      << saved.errors;
  EXPECT_EQ(oltctl({"get_user_level", "kept", "pw"}).status, 0);
  EXPECT_EQ(oltctl({"get_user_level", "lost", "pw"}).status, 1);
}

TEST(OltctlRun, OutputThatCannotBeWrittenIsAFailure) {
  Oltctl oltctl;
  Finished closed =
      run({"sh", "-c", OLTCTL " get_olt_mac >&-"}, private_environment(oltctl.folder()));
  EXPECT_EQ(closed.status, 1);
  EXPECT_EQ(closed.errors, "oltctl: cannot write the output: Bad file descriptor\n");
  for (const char *arguments : {"get_olt_mac", "list", "help", "--help", "--version"}) {
    Finished full = run({"sh", "-c", std::string(OLTCTL) + " " + arguments + " >/dev/full"},
                        private_environment(oltctl.folder()));
    EXPECT_EQ(full.status, 1) << arguments;
    EXPECT_EQ(full.errors, "oltctl: cannot write the output: No space left on device\n");
  }
  Finished full = run({"sh", "-c", OLTBOX " --help >/dev/full"});
  EXPECT_EQ(full.status, 1);
  EXPECT_EQ(full.errors, "oltbox: cannot write the output\n");
}

}  // namespace

}  // namespace olt::test
