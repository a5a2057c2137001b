// Operations that set a record: what is not given stays as it is.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "catalog/catalog.h"
#include "tests/cli/program.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

using catalog::Argument;
using catalog::Operation;
using nlohmann::ordered_json;

template <typename Function>
void each_operation(Function fn) {
  for (const catalog::Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) fn(operation);
  }
}

bool sends_record(const Operation &operation) {
  auto arguments = operation.arguments();
  return std::any_of(arguments.begin(), arguments.end(),
                     [](const Argument &argument) { return argument.is_sent_record(); });
}

TEST(Setters, EachThatSendsARecordSaysWhatBecomesOfTheRest) {
  std::set<std::string> rules;
  each_operation([&rules](const Operation &operation) {
    if (operation.sets_present()) {
      rules.insert(std::string(operation.name) + " keeps what " + operation.present.getter +
                   " reads");
    } else if (operation.takes_all) {
      rules.insert(std::string(operation.name) + " takes all");
    } else if (sends_record(operation)) {
      rules.insert(std::string(operation.name) + " sends zeros");
    }
  });
  EXPECT_EQ(rules, (std::set<std::string>{
                       "Cl_Set_SntpCfg_apply takes all",
                       "add_iptv_channel sends zeros",  // it is new
                       "deal_wan_connection keeps what process_snmp_hguwaninfo reads",
                       "delete_iptv_channel sends zeros",  // its name is enough
                       "get_rstp_brief sends zeros",
                       "get_rstp_port_config sends zeros",
                       "get_snmp_olt_port_basic_info sends zeros",
                       "get_snmp_olt_port_status sends zeros",
                       "get_system_network sends zeros",
                       "get_system_next_user sends zeros",
                       "get_system_user_byindex sends zeros",
                       "modify_user_level keeps what get_system_next_user reads",
                       "process_debug_value sends zeros",  // it has one field, and reads as well
                       "process_olt_global_paramter takes all",
                       "process_olt_port_mac takes all",
                       "process_onu_portstrip sends zeros",
                       "process_snmp_iptv_profile sends zeros",
                       "process_snmp_iptv_profile_channel sends zeros",
                       "process_snmp_linkbasicinfo sends zeros",
                       "process_snmp_oltauth sends zeros",
                       "process_snmp_oltbasicport sends zeros",
                       "process_snmp_onubasicinfo sends zeros",
                       "process_snmp_vlan_id sends zeros",
                       "process_switchdebug_value sends zeros",  // the same
                       "set_igmpproxy_config keeps what get_igmpproxy_config reads",
                       "set_ont_fax keeps what process_snmpvoip_faxmode reads",
                       "set_ont_linkdba keeps what process_snmp_linkbasicinfo reads",
                       "set_ont_port_basicinfo keeps what process_onu_portinfo reads",
                       "set_ont_port_downrate keeps what get_ont_port_downrate reads",
                       "set_ont_port_muticastrip keeps what process_onu_portstrip reads",
                       "set_ont_port_policying keeps what get_ont_port_policying reads",
                       "set_ont_port_vlanmode keeps what process_onu_portvlanmode reads",
                       "set_ont_sipconfiguration keeps what process_snmp_onusipparaminfo reads",
                       "set_ont_usertraffic keeps what process_snmp_linkbasicinfo reads",
                       "set_onu_basic_feature_f keeps what get_onu_basic_feature_f reads",
                       "set_onu_basic_feature_force keeps what get_onu_basic_feature_f reads",
                       "set_rstp_config keeps what get_rstp_config reads",
                       "set_rstp_port_config keeps what get_rstp_port_config reads",
                       "set_snmp_olt_port_basic_info keeps what get_snmp_olt_port_basic_info reads",
                       "set_snmp_param keeps what get_snmp_param reads",
                       "set_snmp_systeminfo keeps what get_snmp_systeminfo reads",
                       "set_system_dns keeps what get_system_network reads",
                       "set_system_ipaddress keeps what get_system_network reads",
                       "set_voip_useraccount keeps what show_voip_useraccount reads",
                   }));
}

TEST(Setters, EachThatCannotBeTakenBackAsks) {
  std::set<std::string> names;
  each_operation([&names](const Operation &operation) {
    if (operation.destructive) names.insert(operation.name);
  });
  EXPECT_EQ(names,
            (std::set<std::string>{"ctconu_ont_reboot", "default_system_config",
                                   "do_handle_epon_updatestream", "do_handle_epon_updatestream_onu",
                                   "do_ont_configuration", "do_reboot_system", "erase_to_flash",
                                   "save_to_flash", "tkonu_ont_default", "tkonu_ont_reboot"}));
}

TEST(Setters, WordsAreNoWiderThanTheirPlaceInTheRequest) {
  std::set<std::string> limits;
  each_operation([&limits](const Operation &operation) {
    for (const Argument &argument : operation.arguments()) {
      if (!argument.is_word() || !argument.is_input() || argument.max == UINT32_MAX) continue;
      limits.insert(std::string(operation.name) + " " + argument.name + " " +
                    std::to_string(argument.max));
    }
  });
  EXPECT_EQ(limits, (std::set<std::string>{
                        "add_iptv_user_channel b 65535", "add_iptv_user_channel c 65535",
                        "delete_iptv_user_channel b 65535", "delete_iptv_user_channel c 65535",
                        "set_debug_enable module 255", "show_memory_info module 255",
                        "write_oam_type pending 255"}));
  Oltctl oltctl;
  EXPECT_EQ(
      oltctl({"set_debug_enable", "258", "1"}).errors,
      "set_debug_enable: module: '258' is too large; expected main, oam, log, rstp, or a number "
      "from 0 to 255\n");
  EXPECT_EQ(oltctl({"set_debug_enable", "2", "0xffffffff"}).status, 0);
}

/// One field of a setter is set, and only its member in what the getter reads changes.
struct Case {
  const char *before;  ///< fills the record
  const char *set;     ///< one field
  const char *get;
  const char *member;  ///< a JSON pointer into the outputs
  const char *value;
};

const Case kCases[] = {
    {"set_system_ipaddress --zero address=192.0.2.7 mask=255.255.255.0 gateway=192.0.2.1 vlan=20 "
     "dns_first=192.0.2.53 dns_second=192.0.2.54 name=Box network=0x38:0102,0xab:07",
     "set_system_ipaddress vlan=21", "get_system_network", "/network/vlan", "21"},
    {"set_system_dns --zero address=192.0.2.7 mask=255.255.255.0 gateway=192.0.2.1 vlan=20 "
     "dns_first=192.0.2.53 dns_second=192.0.2.54 name=Box",
     "set_system_dns dns_first=192.0.2.99", "get_system_network", "/network/dns_first",
     R"("c0000263")"},
    {"set_snmp_param --zero read_community=a write_community=b trap_community=c traps=on "
     "trap_host=192.0.2.9 trap_port=162",
     "set_snmp_param trap_port=163", "get_snmp_param", "/param/trap_port", "163"},
    {"set_snmp_systeminfo --zero contact=Ann name=box location=cellar services=72",
     "set_snmp_systeminfo location=attic", "get_snmp_systeminfo", "/info/location", R"("attic")"},
    {"add_user_level operator secret 1 2", "modify_user_level user_name=operator level_b=7",
     "get_system_next_user user_name=admin", "/user/level_b", "7"},
    {"set_snmp_olt_port_basic_info slot=1 port=1 max_link=9 vlanmode_first=2 vlanmode_second=7",
     "set_snmp_olt_port_basic_info slot=1 port=1 flowcontrol=1",
     "get_snmp_olt_port_basic_info slot=1 port=1", "/record/flowcontrol", "1"},
    {"set_rstp_config max_age=19 hold_count=5", "set_rstp_config priority=4096", "get_rstp_config",
     "/bridge/priority", "4096"},
    {"set_rstp_port_config slot=1 port=2 priority=64 path_cost=200",
     "set_rstp_port_config slot=1 port=2 edge=yes", "get_rstp_port_config slot=1 port=2",
     "/port/edge", "1"},
    {"set_igmpproxy_config --zero config=1,60,9,3,2,1", "set_igmpproxy_config query_interval=61",
     "get_igmpproxy_config", "/config/query_interval", "61"},
    {"set_ont_linkdba --zero 1/2/3 requested=1,2,3 granted=4,5",
     "set_ont_linkdba 1/2/3 requested=7,8,9", "process_snmp_linkbasicinfo 1/2/3", "/info/dba",
     "[7,8,9,4,5]"},
    {"set_ont_usertraffic --zero 1/2/3 user_traffic=1,2,3,4,5,6,7,8,9,10,11,12",
     "set_ont_usertraffic 1/2/3 user_traffic=9,9", "process_snmp_linkbasicinfo 1/2/3",
     "/info/user_traffic", "[9,9,0,0,0,0,0,0,0,0,0,0]"},
    {"set_onu_basic_feature_force --zero 1 2 3 1,2,3,4,5,6,7,8,9,10,11,12",
     "set_onu_basic_feature_force 1 2 3 4:63", "get_onu_basic_feature_f 1 2 3", "/feature",
     "[1,99,3,4,5,6,7,8,9,10,11,12]"},
    {"set_onu_basic_feature_force --zero 1 2 3 1,2,3,4,5,6,7,8,9,10,11,12",
     "set_onu_basic_feature_f 1 2 3 9,9 02:20:02:00:03:01", "get_onu_basic_feature_f 1 2 3",
     "/feature", "[9,9,3,4,5,6,7,8,9,10,11,12]"},
    {"set_ont_port_vlanmode --zero 1/2/3:4 0:01,4:0102,35:ff",
     "set_ont_port_vlanmode 1/2/3:4 mode=trunk", "process_onu_portvlanmode 1/2/3:4", "/mode/mode",
     "4"},
    {"set_ont_port_downrate --zero 1/2/3:4 10,20,30", "set_ont_port_downrate 1/2/3:4 4:15",
     "get_ont_port_downrate 1/2/3:4", "/rates", "[10,21,30]"},
    {"set_ont_port_basicinfo --zero 1/2/3:4 1,2,3,4,5,6,7,8,9,10,11",
     "set_ont_port_basicinfo 1/2/3:4 8:63", "process_onu_portinfo 1/2/3:4", "/info/info",
     "[1,2,99,4,5,6,7,8,9,10,11]"},
    {"set_ont_port_policying --zero 1/2/3:4 1,2,3,4", "set_ont_port_policying 1/2/3:4 9,8",
     "get_ont_port_policying 1/2/3:4", "/policing", "[9,8,3,4]"},
    {"set_ont_port_muticastrip --zero 1/2/3:4 0:0102,32:0304",
     "set_ont_port_muticastrip 1/2/3:4 1:ff", "process_onu_portstrip 1/2/3:4", "/strip",
     R"("01ff00000000000000000000000000000000000000000000000000000000000003040000")"},
    {"set_ont_fax --zero 1/2/3:1 0102", "set_ont_fax 1/2/3:1 1:07",
     "process_snmpvoip_faxmode 1/2/3:1", "/fax_mode", R"("0107")"},
    {"set_ont_sipconfiguration --zero 1/2/3 0:0102,43:0304", "set_ont_sipconfiguration 1/2/3 1:ff",
     "process_snmp_onusipparaminfo 1/2/3", "/param",
     R"("01ff00000000000000000000000000000000000000000000000000000000000000000000000000000000000304")"},
    {"set_voip_useraccount --zero 1/2/3:1 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20",
     "set_voip_useraccount 1/2/3:1 76:63", "show_voip_useraccount 1/2/3:1", "/account",
     "[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,99]"},
    {"deal_wan_connection --zero 1/2/3 operation=add number=1 wan_connection=8:0a\n"
     "deal_wan_connection --zero 1/2/3 operation=add number=2 wan_connection=8:0b,124:0c",
     "deal_wan_connection 1/2/3 operation=change number=2 wan_connection=9:ff",
     "process_snmp_hguwaninfo 1/2/3", "/info/connections", nullptr},
};

std::vector<ordered_json> lines_of(const std::string &output) {
  std::vector<ordered_json> all;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) all.push_back(ordered_json::parse(line));
  return all;
}

class OneField : public testing::TestWithParam<Case> {};

TEST_P(OneField, LeavesTheOthersAsTheyAre) {
  const Case &one = GetParam();
  std::string script = std::string(one.before) + "\n" + one.get + "\n" + one.set + "\n" + one.get;
  Finished finished =
      Oltctl()({"--fresh", "--json", "--raw", "--all", "--show-secrets", "-f", "-"}, script);
  ASSERT_EQ(finished.status, 0) << finished.errors;
  std::vector<ordered_json> lines = lines_of(finished.output);
  ASSERT_GE(lines.size(), 4U);
  ordered_json before = lines[lines.size() - 3]["outputs"];
  ordered_json after = lines.back()["outputs"];
  const ordered_json::json_pointer member(one.member);
  ordered_json expected = before;
  if (one.value != nullptr) {
    expected[member] = ordered_json::parse(one.value);
  } else {  // the last of the connections, in hex
    std::string hex = before[member];
    hex.replace(hex.size() - 2 * 116, 2, "ff");
    hex.replace(hex.size() - 2 * 125, 2, after[member].get<std::string>().substr(250, 2));
    expected[member] = hex;
  }
  for (ordered_json *outputs : {&expected, &after}) {
    if (outputs->contains("info")) (*outputs)["info"].erase("seconds");
  }
  EXPECT_EQ(after, expected) << one.set;
  EXPECT_NE(after[member], before[member]) << one.set;
  EXPECT_GE(lines[lines.size() - 2]["changes"].size(), 1U) << one.set;
}

/// The words of a call that do not say what is set, by name.
std::string others_of(const Operation &operation, const std::string &call) {
  std::istringstream words(call.substr(call.find(' ')));
  std::string others = operation.name;
  size_t place = 0;
  for (std::string word; words >> word;) {
    if (word.find('=') != std::string::npos) continue;
    std::string name = operation.arguments()[place++].name;
    if (name != operation.present.what) others += " " + name + "=" + word;
  }
  return others;
}

/// What the getter shows as an argument of the setter.
std::string given_back(const Case &one, const Operation &operation, const ordered_json &outputs) {
  std::string what = operation.present.what;
  ordered_json shown = outputs[ordered_json::json_pointer(one.member)];
  if (what == "wan_connection") return " operation=change wan_connection='" + shown[1].dump() + "'";
  for (const Argument &argument : operation.arguments()) {
    if (argument.name == what && !argument.fields.empty() && !shown.is_array()) {
      shown = outputs[what];
    }
  }
  // The reply has two bytes more than the request.
  if (what == "strip") shown = shown.get<std::string>().substr(0, 68);
  return " " + what + "='" + shown.dump() + "'";
}

TEST_P(OneField, TakesWhatIsShown) {
  const Case &one = GetParam();
  std::string set = one.set;
  const Operation &operation = *catalog::find(set.substr(0, set.find(' ')));
  Oltctl oltctl;
  auto outputs_after = [&](const std::string &script) {
    Finished finished = oltctl({"--json", "-f", "-"}, script + "\n" + one.get);
    EXPECT_EQ(finished.status, 0) << script << finished.errors;
    ordered_json outputs = lines_of(finished.output).back()["outputs"];
    if (!outputs.contains("info")) return outputs;
    outputs["info"].erase("seconds");
    if (!outputs["info"].contains("connections")) return outputs;
    for (ordered_json &connection : outputs["info"]["connections"]) connection.erase("operation");
    return outputs;
  };
  ordered_json before = outputs_after(one.before);
  ASSERT_NE(outputs_after(one.set), before);
  std::string back = others_of(operation, one.set) + given_back(one, operation, before);
  EXPECT_EQ(outputs_after(back), before) << back;
}

INSTANTIATE_TEST_SUITE_P(Setters, OneField, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<Case> &case_info) {
                           std::string set = case_info.param.set;
                           return set.substr(0, set.find(' '));
                         });

TEST(Setters, EachThatKeepsIsTriedWithOneField) {
  std::set<std::string> tried;
  for (const Case &one : kCases) {
    std::string set = one.set;
    tried.insert(set.substr(0, set.find(' ')));
  }
  std::set<std::string> keeping;
  each_operation([&keeping](const Operation &operation) {
    if (operation.sets_present()) keeping.insert(operation.name);
  });
  EXPECT_EQ(tried, keeping);
}

TEST(Setters, ChangesAreInTheJsonWithoutSecrets) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"add_user_level", "operator", "secret", "1", "2"}).status, 0);
  EXPECT_EQ(oltctl({"--json", "modify_user_level", "user_name=operator", "user_password=other",
                    "level_a=3"})
                .output,
            R"({"version":1,"operation":"modify_user_level","result":0,"failed":false,)"
            R"("transport":null,"status":0,"outputs":{},"listing":null,"changes":[)"
            R"({"field":"user_password","before":"********","after":"********"},)"
            R"({"field":"level_a","before":1,"after":3}]})"
            "\n");
  EXPECT_EQ(oltctl({"get_user_level", "operator", "other"}).output, "level_a = 3\nlevel_b = 2\n");
  EXPECT_TRUE(
      holds(oltctl({"--json", "modify_user_level", "user_name=operator", "level_a=3"}).output,
            R"("changes":[]})"));
}

TEST(Setters, ZeroSendsZeros) {
  Oltctl oltctl;
  Finished traced = oltctl({"--zero", "--trace", "set_igmpproxy_config", "config=1,60"});
  EXPECT_EQ(traced.status, 0) << traced.errors;
  EXPECT_TRUE(holds(traced.errors,
                    "> type 152 to module 2, 24 bytes\n"
                    "  0000  01 00 00 00 3c 00 00 00 00 00 00 00 00 00 00 00"))
      << traced.errors;
  EXPECT_FALSE(holds(traced.errors, "> type 151 ")) << traced.errors;
  EXPECT_EQ(oltctl({"-f", "-"}, "process_olt_global_paramter --zero ponport_function=1\n").status,
            0);
}

TEST(Setters, ThatNoOperationReadsTakeAllFields) {
  Oltctl oltctl;
  Finished missing = oltctl({"process_olt_port_mac", "slot=1", "port=1", "operation=add"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(
      missing.errors,
      "process_olt_port_mac: missing: vlan, mac; expected all fields, or --zero to send zeros "
      "for the others\n");
  EXPECT_EQ(oltctl({"process_olt_global_paramter"}).errors,
            "process_olt_global_paramter: missing: p2p_function, link_security_a, link_security_b, "
            "ponport_function; expected all fields, or --zero to send zeros for the others\n");
  EXPECT_EQ(
      oltctl({"--layout", "none", "set_ont_port_basicinfo", "1/2/3:1", "0:00,8:00"}).errors,
      "set_ont_port_basicinfo: missing: bytes 1 to 7 of info, bytes 9 to 43 of info; expected "
      "all fields, or --zero to send zeros for the others\n");
  EXPECT_EQ(
      oltctl({"Cl_Set_SntpCfg_apply", "@" + oltctl.folder().write("sntp", std::string(88, 0))})
          .status,
      0);
}

TEST(Setters, NeedWhatSaysWhichRowIsSet) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"set_rstp_port_config", "slot=1", "priority=64"}).errors,
            "set_rstp_port_config: port is missing; expected a number\n");
  Finished unknown = oltctl({"modify_user_level", "user_name=nobody", "level_a=1"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.errors,
            "modify_user_level: there is no row with user_name=nobody; expected one that "
            "get_system_next_user reads\n");
}

TEST(Setters, SendNothingWhenThePresentValuesCannotBeRead) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"fault", "add", "type=get_rstp_config", "status=5"}).status, 0);
  Finished refused = oltctl({"--trace", "set_rstp_config", "priority=4096"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_FALSE(holds(refused.errors, "> type 172 ")) << refused.errors;
  EXPECT_TRUE(holds(refused.errors,
                    "set_rstp_config: the present values cannot be read: get_rstp_config failed: "
                    "result 5 (0x00000005): status 5 (oltbox: exists already); expected --zero to "
                    "send zeros for what is not given\n"))
      << refused.errors;
}

TEST(Setters, ASecretThatCannotBeReadMustBeGiven) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"add_user_level", "operator", "", "1", "2"}).status, 0);
  Finished missing = oltctl({"modify_user_level", "user_name=operator", "level_a=3"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(missing.errors,
            "modify_user_level: user_password is missing and cannot be read; expected text of at "
            "most 31 bytes, or '-' to read it from standard input\n");
  EXPECT_EQ(
      oltctl({"modify_user_level", "user_name=operator", "level_a=3", "user_password=-"}, "new\n")
          .status,
      0);
  EXPECT_EQ(oltctl({"get_user_level", "operator", "new"}).output, "level_a = 3\nlevel_b = 2\n");
}

}  // namespace

}  // namespace olt::test
