#include "cli/completion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/catalog.h"
#include "cli/commands.h"
#include "tests/cli/program.h"
#include "tests/cli/terminal.h"

namespace olt::test {

namespace {

using Words = std::vector<std::string>;

Words candidates(const Words &before, std::string_view prefix) {
  return olt::cli::candidates(olt::cli::commands(), before, prefix);
}

TEST(Completion, OffersOperationsAndCommandsFirst) {
  EXPECT_EQ(candidates(Words{}, "get_olt"),
            (Words{"get_olt_mac", "get_olt_support_oam", "get_olt_auth_mode"}));
  EXPECT_EQ(candidates(Words{}, "co"), (Words{"config", "counters", "completion"}));
  size_t operations = 0;
  for (const auto &family : olt::catalog::families()) operations += family.operations.size();
  EXPECT_EQ(candidates(Words{}, "").size(), operations + 12U);
  EXPECT_EQ(candidates(Words{}, "x"), Words{});
}

TEST(Completion, OffersTheArgumentsOfAnOperation) {
  EXPECT_EQ(candidates(Words{"add_user_level"}, ""),
            (Words{"name=", "password=", "level_a=", "level_b="}));
  EXPECT_EQ(candidates(Words{"get_user_level", "name=x"}, ""), (Words{"name=", "password="}));
  EXPECT_EQ(candidates(Words{"process_debug_value"}, "debug_"),
            (Words{"debug_op=", "debug_value="}));
  EXPECT_EQ(candidates(Words{"add_authallowed_mac"}, ""),
            (Words{"iface_a=", "iface_b=", "entries="}));
  EXPECT_EQ(candidates(Words{"read_from_flash"}, ""), (Words{"region=", "buffer=", "length="}));
  EXPECT_EQ(candidates(Words{"get_olt_mac"}, ""), Words{});
  EXPECT_EQ(candidates(Words{"no_such_operation"}, ""), Words{});
}

TEST(Completion, OffersTheWordsOfACommand) {
  EXPECT_EQ(candidates(Words{"fault"}, ""), (Words{"add", "list", "clear"}));
  EXPECT_EQ(candidates(Words{"fault", "add"}, "d"), Words{"delay_ms="});
  EXPECT_EQ(candidates(Words{"fault", "list"}, ""), Words{});
  EXPECT_EQ(candidates(Words{"config"}, ""), (Words{"export", "import", "diff"}));
  EXPECT_EQ(candidates(Words{"config", "export"}, ""), Words{});
  EXPECT_EQ(candidates(Words{"help"}, "get_olt_m"), Words{"get_olt_mac"});
  EXPECT_EQ(candidates(Words{"walk"}, "process_snmp_v"), Words{"process_snmp_vlan_id"});
  EXPECT_EQ(candidates(Words{"walk"}, "").size(), 44U);
  EXPECT_EQ(candidates(Words{"walk", "process_snmp_vlan_id"}, ""), Words{});
  EXPECT_EQ(candidates(Words{"completion"}, ""), Words{"bash"});
  EXPECT_EQ(candidates(Words{"counters"}, ""), Words{});
}

/// An interactive bash in which oltctl is found and its completion is loaded by the command.
class BashCompletion : public testing::Test {
 protected:
  void load(const std::string &command) {
    ASSERT_TRUE(bash_.shows("ready> "));
    bash_.type(command + "\r");
    ASSERT_TRUE(bash_.shows("ready> "));
  }

  Words environment() const {
    Words all = private_environment(folder_);
    all.insert(all.end(), {std::string("PATH=") + OLTCTL_FOLDER + ":/usr/bin:/bin", "PS1=ready> ",
                           "HISTFILE=/dev/null"});
    return all;
  }

  Folder folder_;
  Terminal bash_{{"bash", "--norc", "--noprofile", "-i"}, environment()};
};

TEST_F(BashCompletion, IsValidBash) {
  EXPECT_EQ(run({"bash", "-n", "-c",
                 olt::cli::bash_completion(olt::cli::commands(), olt::cli::option_names())},
                {})
                .status,
            0);
}

TEST_F(BashCompletion, CompletesOperationsAndArguments) {
  load("eval \"$(oltctl completion bash)\"");
  bash_.type("oltctl --json get_olt_m\t");
  EXPECT_TRUE(bash_.shows("get_olt_mac "));
  bash_.type("\x15oltctl add_user_level na\t");
  EXPECT_TRUE(bash_.shows("name="));
  bash_.type("op level_a\t");
  EXPECT_TRUE(bash_.shows("level_a="));
  bash_.type("1 pass\t");
  EXPECT_TRUE(bash_.shows("password="));
  bash_.type("\x15oltctl fault ad\t");
  EXPECT_TRUE(bash_.shows("add "));
  bash_.type("sta\t");
  EXPECT_TRUE(bash_.shows("status="));
  bash_.type("\x15oltctl walk process_snmp_v\t");
  EXPECT_TRUE(bash_.shows("process_snmp_vlan_id "));
  bash_.type("\x15oltctl help save_s\t");
  EXPECT_TRUE(bash_.shows("save_system_config "));
}

TEST_F(BashCompletion, CompletesFilesAndOptions) {
  folder_.write("topology-file.json", "{}");
  load("eval \"$(oltctl completion bash)\"; cd " + folder_.path());
  bash_.type("oltctl --topo\t");
  EXPECT_TRUE(bash_.shows("--topology "));
  bash_.type("topo\t");
  EXPECT_TRUE(bash_.shows("topology-file.json"));
}

/// An option with two names is "--one,--other".
std::set<std::string> options_in(std::string text) {
  std::replace(text.begin(), text.end(), ',', ' ');
  std::set<std::string> options;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    size_t begin = word.find("--");
    if (begin != std::string::npos) options.insert(word.substr(begin));
  }
  return options;
}

TEST(Completion, OffersTheOptionsThatThereAre) {
  std::string offered = olt::cli::bash_completion(olt::cli::commands(), olt::cli::option_names());
  offered.erase(0, offered.find("options='--") + 9);
  offered.erase(offered.find('\''));
  std::set<std::string> options = options_in(offered);
  EXPECT_EQ(options.size(), 17U);
  EXPECT_EQ(options, options_in(run({OLTCTL, "--help"}, {}).output));
}

TEST_F(BashCompletion, IsLoadedByThePackagedFile) {
  EXPECT_EQ(read_file(PACKAGED_COMPLETION).find("get_"), std::string::npos);
  load(std::string("source ") + PACKAGED_COMPLETION);
  bash_.type("oltctl get_card\t");
  EXPECT_TRUE(bash_.shows("get_card_updatestatus "));
}

}  // namespace

}  // namespace olt::test
