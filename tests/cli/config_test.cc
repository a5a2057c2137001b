// The commands that export, import and compare configurations, with the embedded box.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "cli/box/configuration.h"
#include "tests/cli/program.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

using olt::cli::compare_configurations;
using olt::cli::differences_text;

std::string differences(std::string_view first, std::string_view second, bool secrets = false) {
  return differences_text(compare_configurations(first, second, secrets));
}

mode_t mode_of(const std::string &path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0 ? found.st_mode & 07777 : 0;
}

TEST(Differences, AreShownByPlace) {
  EXPECT_EQ(differences("{}", "{}"), "");
  EXPECT_EQ(differences(R"({"a":{"b":1,"c":"x"},"d":true})", R"({"d":true,"a":{"c":"x","b":1}})"),
            "");
  EXPECT_EQ(differences(R"({"a":{"b":1,"c":"x"}})", R"({"a":{"b":2,"c":"x"}})"),
            "/a/b\n- 1\n+ 2\n");
  EXPECT_EQ(differences(R"({"a":{"b":1}})", R"({"a":{"c":[1]}})"), "/a/b\n- 1\n/a/c\n+ [1]\n");
  EXPECT_EQ(differences(R"({"1/2:3":"00","~":1})", R"({"1/2:3":"ff","~":2})"),
            "/1~12:3\n- \"00\"\n+ \"ff\"\n/~0\n- 1\n+ 2\n");
  EXPECT_EQ(differences("1", "[]"), "/\n- 1\n+ []\n");
  EXPECT_EQ(differences(R"({"a":"é"})", R"({"a":1})"), "/a\n- \"\\u00e9\"\n+ 1\n");
}

TEST(Differences, OfListsPassOverWhatIsAlikeAtBothEnds) {
  EXPECT_EQ(differences("[1,2,3]", "[1,9,2,3]"), "/1\n+ 9\n");
  EXPECT_EQ(differences("[1,2,3]", "[2,3]"), "/0\n- 1\n");
  EXPECT_EQ(differences("[1,1]", "[1,1,1]"), "/2\n+ 1\n");
  EXPECT_EQ(differences(R"([{"n":1},{"n":2}])", R"([{"n":1},{"n":3},{"n":4}])"),
            "/1/n\n- 2\n+ 3\n/2\n+ {\"n\":4}\n");
}

TEST(Differences, DoNotShowSecrets) {
  std::string first = R"({"users":[{"name":"a","password":"one"}],"sip":{"1/1/1":"0011"}})";
  std::string second = R"({"users":[{"name":"a","password":"two"}],"sip":{"1/1/1":"2233"}})";
  EXPECT_EQ(differences(first, second),
            "/sip/1~11~11\n- \"********\"\n+ \"********\"\n"
            "/users/0/password\n- \"********\"\n+ \"********\"\n");
  EXPECT_EQ(differences(first, second, true),
            "/sip/1~11~11\n- \"0011\"\n+ \"2233\"\n"
            "/users/0/password\n- \"one\"\n+ \"two\"\n");
  EXPECT_EQ(differences(R"({"users":[]})", first),
            "/sip\n+ {\"1/1/1\":\"********\"}\n"
            "/users/0\n+ {\"name\":\"a\",\"password\":\"********\"}\n");
  EXPECT_EQ(differences(R"({"user_account":[["one"]]})", R"({"user_account":1})"),
            "/user_account\n- [[\"********\"]]\n+ \"********\"\n");
}

TEST(Differences, AMaskedSecretEqualsAny) {
  std::string shown = R"({"users":[{"name":"a","password":"one"},{"name":"b"}]})";
  std::string masked = R"({"users":[{"name":"a","password":"********"},{"name":"b"}]})";
  EXPECT_EQ(differences(shown, masked), "");
  EXPECT_EQ(differences(masked, shown), "");
  EXPECT_EQ(differences(R"({"name":"********"})", R"({"name":"x"})"),
            "/name\n- \"********\"\n+ \"x\"\n");
}

/// An embedded box with a user.
class Config : public testing::Test {
 protected:
  Config() {
    Finished added = oltctl_({"add_user_level", "operator", "sesame", "1", "2"});
    EXPECT_EQ(added.status, 0) << added.errors;
  }

  std::string path(const char *name) const { return oltctl_.folder() / name; }
  std::string exported(const char *name) const {
    Finished finished = oltctl_({"config", "export", path(name), "--show-secrets"});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    return read_file(path(name));
  }
  void expect_error(const std::vector<std::string> &arguments, int status,
                    const std::string &line) {
    Finished finished = oltctl_(arguments);
    EXPECT_EQ(finished.status, status);
    EXPECT_EQ(finished.output, "");
    EXPECT_EQ(finished.errors, line + "\n");
  }

  Oltctl oltctl_;
};

TEST_F(Config, IsExportedToStandardOutputOrAFile) {
  std::string masked = oltctl_({"config", "export"}).output;
  EXPECT_TRUE(masked.starts_with("{\n \"topology\": {\n  \"version\": 1,\n")) << masked;
  EXPECT_TRUE(holds(masked, "     \"name\": \"operator\",\n     \"password\": \"********\",\n"));
  EXPECT_EQ(masked.find("sesame"), std::string::npos);
  Finished written = oltctl_({"config", "export", path("masked.json")});
  EXPECT_EQ(written.status, 0) << written.errors;
  EXPECT_EQ(written.output, "");
  EXPECT_EQ(read_file(path("masked.json")), masked);
  std::string shown = oltctl_({"--show-secrets", "config", "export"}).output;
  EXPECT_TRUE(holds(shown, "     \"name\": \"operator\",\n     \"password\": \"sesame\",\n"));
  EXPECT_EQ(exported("shown.json"), shown);
}

TEST_F(Config, AFileWithSecretsIsForTheUserAlone) {
  write_file(path("old.json"), "old");
  ASSERT_EQ(chmod(path("old.json").c_str(), 0664), 0);
  exported("old.json");
  exported("new.json");
  EXPECT_EQ(mode_of(path("old.json")), 0600U);
  EXPECT_EQ(mode_of(path("new.json")), 0600U);
  ASSERT_EQ(chmod(path("old.json").c_str(), 0664), 0);
  EXPECT_EQ(oltctl_({"config", "export", path("old.json")}).status, 0);
  EXPECT_EQ(mode_of(path("old.json")), 0664U);
  expect_error({"config", "export", path("no/such")}, 1,
               "config export: cannot write " + path("no/such") + ": No such file or directory");
}

TEST_F(Config, ComesBackInAFreshBox) {
  std::string text = exported("site.json");
  Finished imported = oltctl_({"--fresh", "config", "import", path("site.json")});
  EXPECT_EQ(imported.status, 0) << imported.errors;
  EXPECT_EQ(imported.output, "left_out_count = 0\nleft_out: none\n");
  EXPECT_EQ(exported("again.json"), text);
  EXPECT_EQ(oltctl_({"get_user_level", "operator", "sesame"}).output, "level_a = 1\nlevel_b = 2\n");
  EXPECT_EQ(oltctl_({"--fresh", "--json", "config", "import", "-"}, text).output,
            "{\"version\":1,\"command\":\"config_import\",\"left_out_count\":0,\"left_out\":[]}\n");
  EXPECT_EQ(exported("again.json"), text);
}

TEST_F(Config, AMaskedSecretStaysOrIsRefused) {
  std::string text = exported("site.json");
  std::string masked = oltctl_({"config", "export"}).output;
  EXPECT_EQ(oltctl_({"config", "import", "-"}, masked).status, 0);
  EXPECT_EQ(exported("again.json"), text);
  Finished refused = oltctl_({"--fresh", "config", "import", "-"}, masked);
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.errors,
            "-: config_import failed: /configuration/system-users/users/1/password: is masked; "
            "expected a text of at most 31 bytes\n");
  EXPECT_EQ(oltctl_({"--adopt", "config", "import", "-"}, masked).output,
            "left_out_count = 1\nleft_out:\n"
            "  reason=/configuration/system-users/users/1/password: is masked; "
            "expected a text of at most 31 bytes\n");
}

TEST_F(Config, BadFilesAreRefused) {
  std::string text = exported("site.json");
  std::string bad = path("bad.json");
  write_file(bad, text.substr(0, text.size() / 2));
  Finished cut = oltctl_({"config", "import", bad});
  EXPECT_EQ(cut.status, 2);
  EXPECT_TRUE(cut.errors.starts_with("config import: " + bad + ": ")) << cut.errors;
  EXPECT_TRUE(holds(cut.errors, ": is not JSON; expected ")) << cut.errors;
  write_file(bad, R"({"topology":{"olt":{"name":"x"}},"configuration":{}})");
  Finished other = oltctl_({"config", "import", bad});
  EXPECT_EQ(other.status, 1);
  EXPECT_TRUE(other.errors.starts_with(
      bad + ": config_import failed: /topology: is another one than that of the box, {\"version\""))
      << other.errors;
  expect_error({"config", "import", path("none")}, 2,
               "config import: cannot read " + path("none") +
                   ": No such file or directory; expected a configuration of at most 64 MiB");
  std::filesystem::resize_file(bad, (size_t{64} << 20) + 1);
  expect_error({"config", "import", bad}, 2,
               "config import: cannot read " + bad +
                   ": File too large; expected a configuration of at most 64 MiB");
  EXPECT_EQ(exported("again.json"), text);
}

TEST_F(Config, DiffersFromAFile) {
  std::string text = exported("site.json");
  Finished same = oltctl_({"config", "diff", path("site.json")});
  EXPECT_EQ(same.status, 0) << same.errors;
  EXPECT_EQ(same.output + same.errors, "");
  ASSERT_EQ(oltctl_({"delete_user_level", "operator"}).status, 0);
  Finished lacks = oltctl_({"config", "diff", path("site.json")});
  EXPECT_EQ(lacks.status, 1);
  EXPECT_EQ(lacks.output,
            "/configuration/system-users/users/1\n"
            "+ {\"level_a\":1,\"level_b\":2,\"name\":\"operator\",\"password\":\"********\"}\n");
  EXPECT_EQ(lacks.errors, "config diff: 1 difference\n");
  exported("later.json");
  Finished files =
      oltctl_({"config", "diff", path("site.json"), path("later.json"), "--show-secrets"});
  EXPECT_EQ(files.status, 1);
  EXPECT_EQ(files.output,
            "/configuration/system-users/users/1\n"
            "- {\"level_a\":1,\"level_b\":2,\"name\":\"operator\",\"password\":\"sesame\"}\n");
  EXPECT_EQ(oltctl_({"--json", "config", "diff", path("site.json"), path("later.json")}).output,
            R"({"version":1,"command":"config_diff","differences":[{"place":)"
            R"("/configuration/system-users/users/1","before":{"level_a":1,"level_b":2,)"
            R"("name":"operator","password":"********"}}]})"
            "\n");
}

TEST_F(Config, TroubleWithADiffIsStatusTwo) {
  write_file(path("bad"), "{\n]");
  expect_error({"config", "diff", path("bad")}, 2,
               "config diff: " + path("bad") + ": 2:1: is not JSON; expected string literal");
  expect_error({"--box", path("none"), "config", "diff", "-"}, 2,
               "config diff: -: 1:1: is not JSON; expected '[', '{', or a literal");
  write_file(path("good"), "{}");
  Finished lost = oltctl_({"--box", path("none"), "config", "diff", path("good")});
  EXPECT_EQ(lost.status, 2);
  EXPECT_TRUE(lost.errors.starts_with("config_export failed: result 131072")) << lost.errors;
}

TEST_F(Config, WrongUsageIsExplained) {
  expect_error({"config"}, 2, "config: '' given; expected export, import or diff");
  expect_error({"config", "dump"}, 2, "config: 'dump' given; expected export, import or diff");
  expect_error({"config", "export", "a", "b"}, 2,
               "config export: 2 files given; expected at most one");
  expect_error({"config", "import"}, 2,
               "config import: 0 files given; expected one, or - for standard input");
  expect_error({"config", "diff"}, 2,
               "config diff: 0 files given; expected one to compare with the box, or two");
}

TEST_F(Config, AnotherTopologyIsAdoptedOnRequest) {
  ASSERT_EQ(oltctl_({"add_ont_description", "ont=1/16/64", "description=0:66"}).status, 0)
      << oltctl_({"help", "add_ont_description"}).output;
  std::string topology = path("small.json");
  write_file(topology, R"({"pon":{"interfaces":1}})");
  Finished refused = oltctl_({"--topology", topology, "get_olt_mac"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_TRUE(refused.errors.starts_with("oltctl: the embedded box does not start: " + topology +
                                         ": the state in "))
      << refused.errors;
  Finished adopted = oltctl_({"--topology", topology, "--adopt", "get_olt_mac"});
  EXPECT_EQ(adopted.status, 0) << adopted.errors;
  EXPECT_EQ(adopted.output, "mac = 02:00:00:00:00:01\n");
  EXPECT_TRUE(holds(adopted.errors, "oltctl: left out: /")) << adopted.errors;
  EXPECT_EQ(oltctl_({"get_user_level", "operator", "sesame"}).status, 0);
  write_file(topology, R"({"pon":{"interfaces":0}})");
  expect_error({"--topology", topology, "get_olt_mac"}, 2,
               "oltctl: the embedded box does not start: " + topology +
                   ": /pon/interfaces: is 0; expected an integer from 1 to 16");
  expect_error({"--box", path("none"), "--adopt", "get_olt_mac"}, 2,
               "oltctl: --adopt is for the embedded box and for config import, but the box in " +
                   path("none") + " is used; expected --box embedded beside it");
}

}  // namespace

}  // namespace olt::test
