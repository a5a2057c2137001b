// What oltsnmp says to its options and its configuration file.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace olt::test {

namespace {

Finished oltsnmp(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), OLTSNMP);
  return run(arguments);
}

TEST(Oltsnmp, SaysWhatItIs) {
  EXPECT_EQ(oltsnmp({"--version"}).output, "oltsnmp 0.1.0\n");
  Finished help = oltsnmp({"--help"});
  EXPECT_EQ(help.status, 0);
  for (const char *part : {"--agentx SOCKET", "--box DIR", "--root OID", "--context NAME",
                           "--writable", "--pace MS", "--config FILE", "--check", "Exit status:"}) {
    EXPECT_NE(help.output.find(part), std::string::npos) << part;
  }
}

TEST(Oltsnmp, HasTheOptionsOfItsDocumentAndItsCompletion) {
  const std::string page = read_file(OLT_DOCS "/snmp.md");
  const std::string offered = run({OLTCTL, "__complete", "oltsnmp -"}).output;
  const std::string help = oltsnmp({"--help"}).output;
  const std::regex option(R"(\n  (--[a-z-]+))");
  size_t count = 0;
  for (std::sregex_iterator one(help.begin(), help.end(), option), end; one != end; ++one) {
    EXPECT_NE(page.find("`" + (*one)[1].str()), std::string::npos) << (*one)[1];
    EXPECT_NE(offered.find("\n" + (*one)[1].str() + "\n"), std::string::npos) << (*one)[1];
    ++count;
  }
  EXPECT_EQ(count, 13u);
  EXPECT_EQ(std::count(offered.begin(), offered.end(), '\n'), 1 + 13);
}

TEST(Oltsnmp, PrintsTheMibOfARootAndALayout) {
  EXPECT_EQ(oltsnmp({"--mib"}).output, read_file(MIB_MODULE));
  Folder folder;
  const std::string layout =
      folder.write("acme.json", R"({"version": 1, "name": "acme", "base": "box", "records": {
        "olt_snmp_systeminfo": [{"name": "rack", "offset": 0, "width": 4, "kind": "number",
                                 "unit": "HE"}]}})");
  Finished finished = oltsnmp({"--mib", "--root", "1.3.6.1.4.1.99999", "--layout", layout});
  EXPECT_EQ(finished.status, 0) << finished.errors;
  EXPECT_NE(finished.output.find("::= { enterprises 99999 }"), std::string::npos);
  EXPECT_NE(finished.output.find("oltSystemRack OBJECT-TYPE\n    SYNTAX      Unsigned32\n    UNITS "
                                 "      \"HE\"\n"),
            std::string::npos);
  EXPECT_EQ(finished.output.find("oltSystemContact"), std::string::npos);
  Finished refused = oltsnmp({"--mib", "--root", "1.3.6.1.2.1"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.output, "");
  EXPECT_EQ(refused.errors,
            "oltsnmp: --root 1.3.6.1.2.1: no place for a MIB module; expected one below "
            "1.3.6.1.4.1 or 1.3.6.1.3\n");
}

/// By its name, in a folder of layouts, in this order: option, file, environment.
TEST(Oltsnmp, TakesTheLayoutThatTheEnvironmentNames) {
  Folder home;
  std::filesystem::create_directories(home / ".config/oltmgmt/layouts.d");
  home.write(".config/oltmgmt/layouts.d/acme.json",
             R"({"version": 1, "name": "acme", "base": "box", "records": {
                "olt_snmp_systeminfo": [{"name": "rack", "offset": 0, "width": 4,
                                         "kind": "number"}]}})");
  const std::string file = home.write("configuration", "layout=acme\n");
  const std::vector<std::string> at_home = {"HOME=" + home.path()};
  const std::vector<std::string> named = {"HOME=" + home.path(), "OLT_LAYOUT=acme"};
  auto has_rack = [](const std::vector<std::string> &options,
                     const std::vector<std::string> &environment) {
    std::vector<std::string> command = {OLTSNMP, "--mib"};
    command.insert(command.end(), options.begin(), options.end());
    Finished printed = run(command, environment);
    EXPECT_EQ(printed.status, 0) << printed.errors;
    return printed.output.find("oltSystemRack") != std::string::npos;
  };
  EXPECT_FALSE(has_rack({}, at_home));
  EXPECT_TRUE(has_rack({"--layout", "acme"}, at_home));
  EXPECT_TRUE(has_rack({"--config", file}, at_home));
  EXPECT_TRUE(has_rack({}, named));
  EXPECT_FALSE(has_rack({"--layout", "box"}, named));
}

TEST(Oltsnmp, SaysInOneLineWhatIsWrong) {
  Folder folder;
  const std::string unknown = folder.write("unknown", "rot=1.3\n");
  const std::string bad = folder.write("bad", "root=1.3.x\n");
  const std::vector<std::pair<std::vector<std::string>, std::string>> kWrong = {
      {{"--nope"}, "--nope"},
      {{"word"}, "word"},
      {{"--root", "1.3.x"}, "oltsnmp: --root 1.3.x: no object identifier; expected "},
      {{"--root", "1"}, "--root 1:"},
      {{"--root", "3.1"}, "--root 3.1:"},
      {{"--layout", "nope"}, "oltsnmp: layout: there is no layout 'nope'; expected "},
      {{"--layout", folder / "no.json"}, "/no.json: cannot be read: "},
      {{"--pace", "9"}, "--pace 9: too fast; expected 0, or 10 to 1000"},
      {{"--pace", "1001"}, "--pace"},
      {{"--config", folder / "none"}, folder / "none"},
      {{"--config", unknown}, "rot"},
      {{"--config", bad}, "--root 1.3.x:"},
  };
  for (auto [arguments, part] : kWrong) {
    arguments.emplace_back("--check");
    Finished refused = oltsnmp(arguments);
    EXPECT_EQ(refused.status, 2) << part;
    EXPECT_EQ(refused.output, "") << part;
    EXPECT_TRUE(refused.errors.starts_with("oltsnmp: ")) << refused.errors;
    EXPECT_NE(refused.errors.find(part), std::string::npos) << refused.errors;
    EXPECT_NE(refused.errors.find("; expected "), std::string::npos) << refused.errors;
    EXPECT_EQ(refused.errors.find('\n'), refused.errors.size() - 1) << refused.errors;
  }
}

// bash counts in units of 1024 bytes.
TEST(Oltsnmp, AFileSizeLimitIsAFailure) {
  Folder folder;
  Finished limited =
      run({"bash", "-c", "ulimit -f 1; exec " OLTSNMP " --mib >" + (folder / "module")});
  EXPECT_EQ(limited.status, 1);
  EXPECT_EQ(limited.errors, "oltsnmp: cannot write the output\n");
}

TEST(Oltsnmp, ChecksAConfigurationFile) {
  Folder folder;
  const std::string file = folder.write(
      "right", "# The enterprise number is ours.\nroot=1.3.6.1.4.1.99999\nwritable=true\n");
  Finished checked = oltsnmp({"--check", "--config", file});
  EXPECT_EQ(checked.status, 0) << checked.errors;
  EXPECT_EQ(checked.output + checked.errors, "");
}

}  // namespace

}  // namespace olt::test
