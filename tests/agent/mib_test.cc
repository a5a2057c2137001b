// The MIB module, by its text and by the parsers of net-snmp, libsmi, Erlang and PySMI.

#include "agent/mib.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>
#include <string_view>

#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace olt::test {

namespace {

using agent::Oid;
using catalog::Field;
using catalog::FieldKind;
using catalog::Layout;
using catalog::ValueName;

const Oid kRoot{1, 3, 6, 1, 4, 1, 32473};
constexpr const char *kFile = "OLTMGMT-MIB.txt";

/// As one with names and units that SMIv2 does not take as they are.
const Layout &awkward_layout() {
  static const Layout layout = [] {
    static const ValueName kSpeeds[] = {
        {0, "Auto"}, {1, "base-2.5"}, {2, "base25"}, {0xffffffff, "off"}};
    static const ValueName kModes[] = {{0, "no"}, {1, "yes"}};
    static const ValueName kOtherModes[] = {{1, "no"}, {2, "yes"}};
    Layout made("awkward", Layout::box());
    made.set_fields(
        "onu_info",
        {{"slot", 0, 4, FieldKind::kNumber},
         {"interface", 4, 4, FieldKind::kNumber},
         {"onu", 8, 4, FieldKind::kNumber},
         {.name = "power",
          .offset = 12,
          .width = 2,
          .kind = FieldKind::kSigned,
          .decimals = 2,
          .unit = "dBm \"\xc2\xb5\""},
         {"Power", 14, 1, FieldKind::kNumber},
         {"entry", 15, 1, FieldKind::kBytes},
         {.name = "speed", .offset = 16, .width = 4, .kind = FieldKind::kNumber, .values = kSpeeds},
         {.name = "mode", .offset = 20, .width = 4, .kind = FieldKind::kNumber, .values = kModes},
         {.name = "mode_b",
          .offset = 24,
          .width = 4,
          .kind = FieldKind::kNumber,
          .values = kOtherModes},
         {.name = "mode_c",
          .offset = 28,
          .width = 4,
          .kind = FieldKind::kNumber,
          .values = kOtherModes},
         {"parts", 32, 3, FieldKind::kBytes},
         {"rest", 35, 113, FieldKind::kBytes}});
    return made;
  }();
  return layout;
}

/// The clauses of a definition, without the spaces between its words.
std::string definition(const std::string &module, const std::string &name) {
  size_t begin = module.find("\n" + name + " ");
  if (begin == std::string::npos) return "no " + name;
  size_t end = module.find("\n\n", begin + 1);
  std::string text = module.substr(begin + 1, end - begin - 1);
  return std::regex_replace(text, std::regex("\\s+"), " ");
}

TEST(Mib, DefinesTheObjectsOfTheModules) {
  std::string module = agent::mib_module(Layout::box(), kRoot);
  EXPECT_EQ(definition(module, "oltOnuState"),
            "oltOnuState OBJECT-TYPE SYNTAX OltUpAwayBlocked MAX-ACCESS read-only STATUS current "
            "DESCRIPTION \"state: bytes 24 to 27 of what process_snmp_onubasicinfo returns.\" "
            "::= { oltOnuEntry 34 }");
  EXPECT_EQ(definition(module, "OltUpAwayBlocked"),
            "OltUpAwayBlocked ::= TEXTUAL-CONVENTION STATUS current "
            "DESCRIPTION \"Values that several objects share.\" "
            "SYNTAX INTEGER { up(1), away(2), blocked(3) }");
  EXPECT_EQ(definition(module, "oltOnuDescription"),
            "oltOnuDescription OBJECT-TYPE SYNTAX SnmpAdminString (SIZE (0..48)) "
            "MAX-ACCESS read-write STATUS current DESCRIPTION \"description: bytes 72 to 119 of "
            "what process_snmp_onubasicinfo returns.\" ::= { oltOnuEntry 82 }");
  EXPECT_EQ(definition(module, "oltOnuEntry"),
            "oltOnuEntry OBJECT-TYPE SYNTAX OltOnuEntry MAX-ACCESS not-accessible STATUS current "
            "DESCRIPTION \"A row of oltOnuTable.\" INDEX { oltOnuSlot, oltOnuInterface, oltOnuOnu "
            "} ::= { oltOnuTable 1 }");
  EXPECT_EQ(definition(module, "oltPortLinkSpeed"),
            "oltPortLinkSpeed OBJECT-TYPE SYNTAX Unsigned32 UNITS \"Mbit/s\" MAX-ACCESS read-only "
            "STATUS current DESCRIPTION \"link_speed: bytes 20 to 23 of what "
            "get_snmp_olt_port_basic_info returns.\" ::= { oltPortEntry 30 }");
  EXPECT_EQ(definition(module, "oltRstpPortPriority"),
            "oltRstpPortPriority OBJECT-TYPE SYNTAX Unsigned32 (0..255) MAX-ACCESS read-write "
            "STATUS current DESCRIPTION \"priority: bytes 9 to 9 of what get_rstp_port_config "
            "returns.\" ::= { oltRstpPortEntry 19 }");
  EXPECT_EQ(definition(module, "oltIptvProfileProfile"),
            "oltIptvProfileProfile OBJECT-TYPE SYNTAX OltPaddedName (SIZE (32)) MAX-ACCESS "
            "not-accessible STATUS current DESCRIPTION \"The name of the profile, padded with "
            "zeros.\" ::= { oltIptvProfileEntry 1 }");
}

TEST(Mib, DefinesNotificationsAndTheAgentsOwnObjects) {
  std::string module = agent::mib_module(Layout::box(), kRoot);
  EXPECT_EQ(definition(module, "oltOnuAway"),
            "oltOnuAway NOTIFICATION-TYPE OBJECTS { oltOnuState } STATUS current DESCRIPTION \"An "
            "ONU went away.\" ::= { oltNotifications 2 }");
  EXPECT_EQ(definition(module, "oltModuleBack"),
            "oltModuleBack NOTIFICATION-TYPE OBJECTS { oltAgentModule } STATUS current DESCRIPTION "
            "\"A management module answers again.\" ::= { oltNotifications 8 }");
  EXPECT_EQ(definition(module, "oltAgentReads"),
            "oltAgentReads OBJECT-TYPE SYNTAX Counter32 MAX-ACCESS read-only STATUS current "
            "DESCRIPTION \"Rows that the agent read from the modules.\" ::= { oltOwnObjects 1 }");
  EXPECT_EQ(definition(module, "oltAgentModule"),
            "oltAgentModule OBJECT-TYPE SYNTAX Unsigned32 MAX-ACCESS accessible-for-notify STATUS "
            "current DESCRIPTION \"The number of a management module.\" ::= { oltOwnObjects 8 }");
}

TEST(Mib, MakesNamesThatSmiTakes) {
  std::string module = agent::mib_module(awkward_layout(), kRoot);
  EXPECT_EQ(definition(module, "oltOnuPower"),
            "oltOnuPower OBJECT-TYPE SYNTAX OltDecimals2 UNITS \"dBm '?'\" MAX-ACCESS read-only "
            "STATUS current DESCRIPTION \"power: bytes 12 to 13 of what process_snmp_onubasicinfo "
            "returns.\" ::= { oltOnuEntry 22 }");
  EXPECT_EQ(definition(module, "oltOnuUp"), "no oltOnuUp") << "the layout has no state of ONUs";
  EXPECT_EQ(definition(module, "oltPortUp").substr(0, 27), "oltPortUp NOTIFICATION-TYPE");
  EXPECT_EQ(definition(module, "oltOnuPowerx").substr(0, 24), "oltOnuPowerx OBJECT-TYPE");
  EXPECT_EQ(definition(module, "oltOnuEntryx").substr(0, 24), "oltOnuEntryx OBJECT-TYPE");
  EXPECT_NE(
      definition(module, "oltOnuSpeed").find("INTEGER { off(-1), auto(0), base25(1), base25x(2) }"),
      std::string::npos);
  EXPECT_NE(module.find("OltDecimals2 ::= TEXTUAL-CONVENTION\n    DISPLAY-HINT \"d-2\"\n"),
            std::string::npos);
  EXPECT_NE(module.find("INTEGER { no(0), yes(1) }"), std::string::npos);
  EXPECT_NE(module.find("INTEGER { no(1), yes(2) }"), std::string::npos);
}

TEST(Mib, StandsBelowOtherRootsToo) {
  std::string module = agent::mib_module(Layout::contract(), {1, 3, 6, 1, 3, 9999, 5, 7});
  EXPECT_NE(module.find("    experimental\n        FROM SNMPv2-SMI\n"), std::string::npos);
  EXPECT_NE(module.find("    ::= { oltRoot2 7 }\n"), std::string::npos);
  EXPECT_NE(module.find("\noltRoot1 OBJECT IDENTIFIER ::= { experimental 9999 }\n"
                        "oltRoot2 OBJECT IDENTIFIER ::= { oltRoot1 5 }\n"),
            std::string::npos);
  EXPECT_TRUE(agent::is_mib_root({1, 3, 6, 1, 4, 1, 0}));
  EXPECT_TRUE(agent::is_mib_root({1, 3, 6, 1, 3, 1}));
  EXPECT_FALSE(agent::is_mib_root({1, 3, 6, 1, 4, 1}));
  EXPECT_FALSE(agent::is_mib_root({1, 3, 6, 1, 2, 1, 17}));
  EXPECT_FALSE(agent::is_mib_root({1, 3}));
}

/// With OLT_RENEW_SAMPLES writes the file instead of comparing it.
TEST(Mib, StandsInTheTree) {
  std::string module = agent::mib_module(Layout::box(), kRoot);
  if (std::getenv("OLT_RENEW_SAMPLES") != nullptr) {
    write_file(MIB_MODULE, module);
  } else {
    EXPECT_TRUE(read_file(MIB_MODULE) == module)
        << "if the change is meant, ./dev renew records it";
  }
}

class ParsedMib : public testing::TestWithParam<std::pair<const Layout *, Oid>> {
 protected:
  ParsedMib() : text_(agent::mib_module(*GetParam().first, GetParam().second)) {
    folder_.write(kFile, text_);
  }

  /// What a parser says about the module in the folder.
  Finished run_there(const std::vector<std::string> &command,
                     const std::vector<std::string> &environment = {}) const {
    std::vector<std::string> shell = {"/bin/sh", "-c", "cd \"$1\" && shift && exec \"$@\"", "sh",
                                      folder_.path()};
    shell.insert(shell.end(), command.begin(), command.end());
    return run(shell, environment);
  }

  /// It exits with 0 even when it finds errors.
  std::string lint() const {
    Finished finished =
        run_there({SMILINT, "-l", "6", std::string("./") + kFile}, {"SMIPATH=" BASE_MIBS});
    return finished.output + finished.errors;
  }

  Folder folder_;
  std::string text_;
};

TEST_P(ParsedMib, BySmilint) {
  EXPECT_EQ(lint(), "");
  text_.replace(text_.find("oltUpdateProgress OBJECT-TYPE"), 3, "alt");
  folder_.write(kFile, text_);
  EXPECT_NE(lint().find("unknown object identifier label `oltUpdateProgress'"), std::string::npos)
      << lint();
}

TEST_P(ParsedMib, ByNetSnmp) {
  std::filesystem::create_directory(folder_ / "cert_indexes");  // which it would tell of
  Finished finished = run_there({SNMPTRANSLATE, "-M", BASE_MIBS ":.", "-m", "OLTMGMT-MIB", "-On",
                                 "OLTMGMT-MIB::oltUpdateProgress"},
                                {"SNMP_PERSISTENT_DIR=" + folder_.path()});
  EXPECT_EQ(finished.errors, "");
  EXPECT_EQ(finished.output, "." + agent::oid_text(GetParam().second) + ".1.61.10\n");
}

TEST_P(ParsedMib, ByErlang) {
  folder_.write("OLTMGMT-MIB.mib", text_);
  Finished finished = run_there({ERLC, "-I", BASE_MIBS "/../priv/mibs", "OLTMGMT-MIB.mib"});
  EXPECT_EQ(finished.status, 0) << finished.output << finished.errors;
  EXPECT_NE(read_file(folder_ / "OLTMGMT-MIB.bin"), "");
}

TEST_P(ParsedMib, ByPySmi) {
  Finished finished =
      run_there({MIBDUMP, "--mib-source=file://" + folder_.path(), "--mib-source=file://" BASE_MIBS,
                 "--destination-format=json", "--destination-directory=json", "OLTMGMT-MIB"});
  EXPECT_EQ(finished.status, 0) << finished.output << finished.errors;
  EXPECT_NE(read_file(folder_ / "json/OLTMGMT-MIB.json").find("\"oltUpdateProgress\": {"),
            std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Mib, ParsedMib,
                         testing::Values(std::pair(&Layout::box(), kRoot),
                                         std::pair(&Layout::contract(),
                                                   Oid{1, 3, 6, 1, 4, 1, 9999, 5, 7}),
                                         std::pair(&awkward_layout(), Oid{1, 3, 6, 1, 3, 9999})),
                         [](const testing::TestParamInfo<ParsedMib::ParamType> &parameter) {
                           return parameter.param.first->name();
                         });

}  // namespace

}  // namespace olt::test
