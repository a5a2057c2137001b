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

using olt::cli::Completion;

Completion completion(const Words &before, std::string_view word) {
  return olt::cli::complete_word(olt::cli::commands(), before, word);
}

Words candidates(const Words &before, std::string_view word) {
  return completion(before, word).words;
}

TEST(Completion, OffersOperationsAndCommandsFirst) {
  EXPECT_EQ(candidates(Words{}, "get_olt"),
            (Words{"get_olt_mac", "get_olt_support_oam", "get_olt_auth_mode"}));
  EXPECT_EQ(candidates(Words{}, "co"), (Words{"config", "compare", "counters", "completion"}));
  size_t operations = 0;
  for (const auto &family : olt::catalog::families()) operations += family.operations.size();
  EXPECT_EQ(candidates(Words{}, "").size(), operations + 15U);
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
  EXPECT_EQ(candidates(Words{"set_system_loglevel"}, "v"), Words{"value="});
  EXPECT_EQ(candidates(Words{"no_such_operation"}, ""), Words{});
}

TEST(Completion, OffersTheWordsOfACommand) {
  EXPECT_EQ(candidates(Words{"fault"}, ""), (Words{"add", "list", "clear"}));
  EXPECT_EQ(candidates(Words{"fault", "add"}, "d"), Words{"delay_ms="});
  EXPECT_EQ(candidates(Words{"fault", "list"}, ""), Words{});
  EXPECT_EQ(candidates(Words{"config"}, ""), (Words{"export", "import", "diff"}));
  EXPECT_EQ(candidates(Words{"help"}, "get_olt_m"), Words{"get_olt_mac"});
  EXPECT_EQ(candidates(Words{"walk"}, "process_snmp_v"), Words{"process_snmp_vlan_id"});
  EXPECT_EQ(candidates(Words{"walk"}, "").size(), 44U);
  EXPECT_EQ(candidates(Words{"walk", "process_snmp_vlan_id"}, ""), Words{});
  EXPECT_EQ(candidates(Words{"completion"}, ""), (Words{"bash", "zsh", "fish"}));
  EXPECT_EQ(candidates(Words{"counters"}, ""), Words{});
  EXPECT_EQ(candidates(Words{"capture", "x"}, "operation=get_olt_m"),
            Words{"operation=get_olt_mac"});
}

TEST(Completion, OffersTheOptionsOfACommand) {
  EXPECT_EQ(candidates(Words{"capture", "x"}, "-"), (Words{"--count", "--seconds"}));
  EXPECT_EQ(candidates(Words{"compare", "x"}, "--"),
            (Words{"--all", "--yes", "--ignore", "--files", "--count", "--junit"}));
  EXPECT_EQ(candidates(Words{"watch", "get_olt_mac"}, "--"), (Words{"--every", "--count"}));
  EXPECT_EQ(candidates(Words{"walk", "onus"}, "--"), (Words{"--columns", "--sort", "--reverse"}));
  EXPECT_EQ(candidates(Words{"counters"}, "-"), Words{});
  // Words after an option are its value.
  EXPECT_EQ(candidates(Words{"watch", "--every", "2"}, "get_olt_m"), Words{"get_olt_mac"});
  EXPECT_EQ(candidates(Words{"watch", "--every"}, "get_olt_m"), Words{});
  EXPECT_EQ(candidates(Words{"compare", "--all", "x", "--count", "2"}, "mod"), Words{"module="});
}

TEST(Completion, OffersNamedValues) {
  EXPECT_EQ(candidates(Words{"set_system_loglevel"}, "value=e"),
            (Words{"value=emergency", "value=error"}));
  EXPECT_EQ(candidates(Words{"set_system_loglevel"}, "e"), (Words{"emergency", "error"}));
  EXPECT_EQ(candidates(Words{"set_system_loglevel", "error"}, "e"), Words{});
  EXPECT_EQ(candidates(Words{"fault", "add"}, "action="),
            (Words{"action=status", "action=silence", "action=drop"}));
  EXPECT_EQ(candidates(Words{"fault", "add"}, "type=get_olt_m"), Words{"type=get_olt_mac"});
  EXPECT_EQ(candidates(Words{"fault", "add"}, "type=read_olt"), Words{});
}

void expect_path(const Completion &found, Completion::Kind kind, const std::string &before) {
  EXPECT_EQ(found.kind, kind);
  EXPECT_EQ(found.before, before);
  EXPECT_EQ(found.words, Words{});
}

TEST(Completion, OffersPaths) {
  constexpr auto kFiles = Completion::Kind::kFiles;
  expect_path(completion(Words{"config", "import"}, "si"), kFiles, "");
  expect_path(completion(Words{"config", "diff", "a"}, ""), kFiles, "");
  expect_path(completion(Words{"layout", "check"}, ""), kFiles, "");
  expect_path(completion(Words{"add_authallowed_mac", "1", "1"}, "entries=@si"), kFiles,
              "entries=@");
  expect_path(completion(Words{"add_authallowed_mac", "1", "1"}, "@si"), kFiles, "@");
  expect_path(completion(Words{"config", "import", "a"}, ""), Completion::Kind::kWords, "");
  expect_path(completion(Words{"compare", "--ignore", "x"}, "si"), kFiles, "");
  expect_path(completion(Words{"compare", "a", "--junit"}, "si"), kFiles, "");
  expect_path(completion(Words{"compare", "a"}, "--junit=si"), kFiles, "--junit=");
  expect_path(completion(Words{"compare", "a", "--files"}, ""), Completion::Kind::kDirectories, "");
}

/// The words that completion_answer() offers, without their summaries.
Words answered(const std::string &line) {
  Words words;
  std::istringstream lines(olt::cli::completion_answer(line));
  std::string word;
  std::getline(lines, word);
  EXPECT_EQ(word, "words");
  while (std::getline(lines, word)) words.push_back(word.substr(0, word.find('\t')));
  return words;
}

TEST(Completion, AnswersShells) {
  using olt::cli::completion_answer;
  EXPECT_EQ(completion_answer("oltctl --json get_olt_m"),
            "words\nget_olt_mac\tReads the OLT's MAC address\n");
  EXPECT_EQ(completion_answer("oltctl --topology "), "files \n");
  EXPECT_EQ(completion_answer("oltctl --topology=si"), "files --topology=\n");
  EXPECT_EQ(completion_answer("oltctl --box /tmp"), "directories \n");
  EXPECT_EQ(completion_answer("oltctl -f a --tr"), "words\n--trace\n");
  EXPECT_EQ(completion_answer("oltctl --box x add_user_level 'two words' pa"),
            "words\npassword=\n");
  EXPECT_EQ(completion_answer("oltctl add_user_level 'open "), "words\n");
  EXPECT_EQ(completion_answer("/usr/bin/oltbox --run-dir "), "directories \n");
  EXPECT_EQ(completion_answer("oltbox --fr"), "words\n--fresh\n");
  EXPECT_EQ(completion_answer("oltbox --fresh get"), "words\n");
  EXPECT_EQ(completion_answer("oltctl --box x compare a --fi"), "words\n--file\n--files\n");
  EXPECT_EQ(completion_answer("oltctl compare a --files "), "directories \n");
  EXPECT_EQ(completion_answer("oltctl compare --ignore mac "), "files \n");
  EXPECT_EQ(completion_answer("oltctl compare a --al"), "words\n--all\n");
  EXPECT_EQ(completion_answer("oltctl watch get_olt_mac --ev"), "words\n--every\n");
  EXPECT_EQ(completion_answer("oltctl get_olt_mac --ev"), "words\n");
  EXPECT_EQ(completion_answer("oltreplay --files "), "directories \n");
  EXPECT_EQ(completion_answer("oltreplay --st"), "words\n--strict\n");
  EXPECT_EQ(completion_answer("oltreplay --strict /tmp/a"), "files \n");
  EXPECT_EQ(completion_answer("oltsnmp --agentx "), "files \n");
  EXPECT_EQ(completion_answer("oltsnmp --config=/etc"), "files --config=\n");
  EXPECT_EQ(completion_answer("oltsnmp --box /tmp"), "directories \n");
  EXPECT_EQ(completion_answer("oltsnmp --writable --pa"), "words\n--pace\n");
  EXPECT_EQ(completion_answer("oltsnmp get"), "words\n");
}

/// An option with two names is "--one,--other".
std::set<std::string> options_in(std::string text) {
  std::replace(text.begin(), text.end(), ',', ' ');
  std::set<std::string> options;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    size_t begin = word.find("--");
    if (begin == 0 && word.size() > 2) options.insert(word);
  }
  return options;
}

TEST(Completion, OffersTheOptionsThatThereAre) {
  Words offered = answered("oltctl -");
  EXPECT_EQ(offered.size(), 19U);
  EXPECT_EQ(std::set<std::string>(offered.begin(), offered.end()),
            options_in(run({OLTCTL, "--help"}, {}).output));
  Words of_box = answered("oltbox -");
  EXPECT_EQ(of_box.size(), 15U);
  EXPECT_EQ(std::set<std::string>(of_box.begin(), of_box.end()),
            options_in(run({OLTBOX, "--help"}, {}).output));
  Words of_replay = answered("oltreplay -");
  EXPECT_EQ(of_replay.size(), 12U);
  EXPECT_EQ(std::set<std::string>(of_replay.begin(), of_replay.end()),
            options_in(run({OLTREPLAY, "--help"}, {}).output));
}

TEST(Completion, OffersTheOptionsThatTheHelpOfACommandNames) {
  Words all = answered("oltctl -");
  for (const char *command : {"capture", "compare", "walk", "watch"}) {
    std::set<std::string> own;
    for (const std::string &option : candidates(Words{command, "x"}, "--")) own.insert(option);
    std::string helped;
    std::istringstream lines(run({OLTCTL, "help", command}).output);
    for (std::string line; std::getline(lines, line);)
      if (line.starts_with("    --")) helped += line.substr(0, line.find(' ', 4)) + '\n';
    EXPECT_EQ(own, options_in(helped)) << command;
    std::set<std::string> expected(all.begin(), all.end());
    expected.insert(own.begin(), own.end());
    Words offered = answered(std::string("oltctl ") + command + " x -");
    EXPECT_EQ(offered.size(), expected.size());
    EXPECT_EQ(std::set<std::string>(offered.begin(), offered.end()), expected);
  }
}

/// A shell in which oltctl is found.
class ShellCompletion : public testing::Test {
 protected:
  Words environment() const {
    Words all = private_environment(folder_);
    all.insert(all.end(), {std::string("PATH=") + OLTCTL_FOLDER + ":" + OLTBOX_FOLDER +
                               ":/usr/local/bin:/usr/bin:/bin",
                           "PS1=ready> ", "HISTFILE=/dev/null", "HOME=" + folder_.path()});
    return all;
  }

  Folder folder_;
};

/// An interactive bash; completion is loaded by the command.
class BashCompletion : public ShellCompletion {
 protected:
  void load(const std::string &command) {
    ASSERT_TRUE(bash_.shows("ready> "));
    bash_.type(command + "\r");
    ASSERT_TRUE(bash_.shows("ready> "));
  }

  Terminal bash_{{"bash", "--norc", "--noprofile", "-i"}, environment()};
};

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
  bash_.type("5 action=si\t");
  EXPECT_TRUE(bash_.shows("action=silence "));
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
  bash_.type("\x15oltctl add_authallowed_mac 1 1 entries=@topo\t");
  EXPECT_TRUE(bash_.shows("entries=@topology-file.json "));
  bash_.type("\x15oltbox --adopt --topo\t");
  EXPECT_TRUE(bash_.shows("--topology "));
  bash_.type("\x15oltctl compare topo\t");
  EXPECT_TRUE(bash_.shows("topology-file.json"));
  bash_.type("--ju\t");
  EXPECT_TRUE(bash_.shows("--junit "));
  bash_.type("\x15oltctl watch get_olt_mac --ev\t");
  EXPECT_TRUE(bash_.shows("--every "));
  bash_.type("\x15oltsnmp --open\t");
  EXPECT_TRUE(bash_.shows("--open-interfaces "));
}

TEST_F(BashCompletion, IsLoadedByThePackagedFile) {
  load("source " PACKAGED_COMPLETION "/oltctl.bash");
  bash_.type("oltctl get_card\t");
  EXPECT_TRUE(bash_.shows("get_card_updatestatus "));
}

/// An interactive zsh without start-up files.
class ZshCompletion : public ShellCompletion {
 protected:
  void load(const std::string &command) {
    ASSERT_TRUE(zsh_.shows("ready> "));
    zsh_.type("unsetopt prompt_cr prompt_sp; autoload -Uz compinit; " + command +
              "; PS1='loaded> '\r");
    ASSERT_TRUE(zsh_.shows("\nloaded> ")) << zsh_.transcript();
  }

  Terminal zsh_{{"zsh", "-f", "-i"}, environment()};
};

TEST_F(ZshCompletion, CompletesOperationsArgumentsAndValues) {
  folder_.write("topology-file.json", "{}");
  load("compinit -u -D; eval \"$(oltctl completion zsh)\"; cd " + folder_.path());
  zsh_.type("oltctl --json get_olt_m\t");
  EXPECT_TRUE(zsh_.shows("get_olt_mac")) << zsh_.transcript();
  zsh_.type("\x15oltctl add_user_level na\top pass\t");
  EXPECT_TRUE(zsh_.shows("name=op password=")) << zsh_.transcript();
  zsh_.type("\x15oltctl fault add action=si\t");
  EXPECT_TRUE(zsh_.shows("action=silence")) << zsh_.transcript();
  zsh_.type("\x15oltctl --topo\ttopo\t");
  EXPECT_TRUE(zsh_.shows("topology-file.json")) << zsh_.transcript();
  zsh_.type("\x15oltctl add_authallowed_mac 1 1 entries=@topo\t");
  EXPECT_TRUE(zsh_.shows("entries=@topology-file.json")) << zsh_.transcript();
  zsh_.type("\x15oltbox --ado\t");
  EXPECT_TRUE(zsh_.shows("--adopt")) << zsh_.transcript();
  zsh_.type("\x15oltctl compare topo\t--ju\t");
  EXPECT_TRUE(zsh_.shows("--junit")) << zsh_.transcript();
  zsh_.type("\x15oltctl watch get_olt_mac --ev\t");
  EXPECT_TRUE(zsh_.shows("--every")) << zsh_.transcript();
  zsh_.type("\x15oltsnmp --open\t");
  EXPECT_TRUE(zsh_.shows("--open-interfaces")) << zsh_.transcript();
}

TEST_F(ZshCompletion, IsLoadedByThePackagedFile) {
  load("fpath=(" PACKAGED_COMPLETION " $fpath); compinit -u -D");
  zsh_.type("oltctl get_card\t");
  EXPECT_TRUE(zsh_.shows("get_card_updatestatus")) << zsh_.transcript();
}

class FishCompletion : public ShellCompletion {
 protected:
  /// What fish offers at the end of the line, without the summaries.
  Words offered(const std::string &load, const std::string &line) const {
    Finished done = run({"fish", "--no-config", "-c",
                         "cd " + folder_.path() + "; " + load + "; complete -C '" + line + "'"},
                        environment());
    EXPECT_EQ(done.errors, "");
    Words words;
    std::istringstream lines(done.output);
    for (std::string word; std::getline(lines, word);) {
      words.push_back(word.substr(0, word.find('\t')));
    }
    return words;
  }

  const std::string load_ = "oltctl completion fish | source";
};

TEST_F(FishCompletion, CompletesOperationsArgumentsAndValues) {
  folder_.write("topology-file.json", "{}");
  EXPECT_EQ(offered(load_, "oltctl --json get_olt_m"), Words{"get_olt_mac"});
  EXPECT_EQ(offered(load_, "oltctl add_user_level name=op pass"), Words{"password="});
  EXPECT_EQ(offered(load_, "oltctl fault add action=si"), Words{"action=silence"});
  EXPECT_EQ(offered(load_, "oltctl --topology topo"), Words{"topology-file.json"});
  EXPECT_EQ(offered(load_, "oltctl add_authallowed_mac 1 1 entries=@topo"),
            Words{"entries=@topology-file.json"});
  EXPECT_EQ(offered(load_, "oltctl --tra"), Words{"--trace"});
  EXPECT_EQ(offered(load_, "oltbox --ado"), Words{"--adopt"});
  EXPECT_EQ(offered(load_, "oltctl compare topology-file.json --ju"), Words{"--junit"});
  EXPECT_EQ(offered(load_, "oltctl watch get_olt_mac --ev"), Words{"--every"});
  EXPECT_EQ(offered(load_, "oltsnmp --open"), Words{"--open-interfaces"});
}

TEST_F(FishCompletion, IsLoadedByThePackagedFile) {
  EXPECT_EQ(offered("source " PACKAGED_COMPLETION "/oltctl.fish", "oltctl get_card"),
            Words{"get_card_updatestatus"});
}

TEST_F(FishCompletion, CompletesAtTheTabKey) {
  Terminal fish(
      {"fish", "--no-config", "-i", "-C", load_ + "; function fish_prompt; echo 'ready> '; end"},
      environment());
  ASSERT_TRUE(fish.shows("ready> ")) << fish.transcript();
  fish.type("oltctl get_olt_m\t");
  EXPECT_TRUE(fish.shows("get_olt_mac")) << fish.transcript();
}

}  // namespace

}  // namespace olt::test
