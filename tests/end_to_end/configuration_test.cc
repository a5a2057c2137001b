// oltctl takes the configuration of a running oltbox from one box to another.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/end_to_end/running_box.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

TEST(Configuration, MovesFromOneBoxToAnother) {
  std::string text;
  Folder folder;
  std::string file = folder / "site.json";
  {
    RunningBox box;
    box.start();
    ASSERT_EQ(box.oltctl({"add_user_level", "operator", "sesame", "1", "2"}).status, 0);
    ASSERT_EQ(box.oltctl({"add_vlan_list", "vlans=10,20-25"}).status, 0);
    ASSERT_EQ(box.oltctl({"set_voip_useraccount", "ont=1/2/3:1", "account=0:6162"}).status, 0);
    Finished exported = box.oltctl({"config", "export", file, "--show-secrets"});
    ASSERT_EQ(exported.status, 0) << exported.errors;
    text = read_file(file);
  }
  EXPECT_TRUE(holds(text, "\"name\": \"operator\",\n     \"password\": \"sesame\"")) << text;
  RunningBox other;
  other.start();
  Finished differs = other.oltctl({"config", "diff", file});
  EXPECT_EQ(differs.status, 1);
  EXPECT_TRUE(holds(differs.output, "\n+ {\"1/2/3:1\":\"********\"}\n") ||
              holds(differs.output, "/1~12~13:1\n+ \"********\"\n"))
      << differs.output;
  Finished imported = other.oltctl({"config", "import", file});
  EXPECT_EQ(imported.status, 0) << imported.errors;
  EXPECT_EQ(other.oltctl({"config", "export", "--show-secrets"}).output, text);
  EXPECT_EQ(other.oltctl({"config", "diff", file}).status, 0);
  EXPECT_EQ(other.oltctl({"get_user_level", "operator", "sesame"}).output,
            "level_a = 1\nlevel_b = 2\n");
}

// Pieces of two clients do not mix: whoever is overtaken gets an error or a whole configuration.
TEST(Configuration, OfManyPiecesIsWholeForEachOfManyClients) {
  RunningBox box;
  Folder folder;
  std::string topology = folder.write("box.json", R"({"pon":{"interfaces":16}})");
  box.start({"--topology", topology});
  std::string script;
  for (int interface = 1; interface <= 16; ++interface) {
    for (int onu = 1; onu <= 64; ++onu) {
      script += "add_ont_description ont=1/" + std::to_string(interface) + "/" +
                std::to_string(onu) + " description=0:61\n";
    }
  }
  ASSERT_EQ(box.oltctl({"-f", folder.write("script", script)}).status, 0);
  std::string whole = box.oltctl({"config", "export"}).output;
  ASSERT_GT(whole.size(), 100'000U);
  std::string out = folder / "out";
  run({"/bin/sh", "-c",
       "for i in 1 2 3 4 5 6; do " OLTCTL " --box " + box.run_dir() + " config export " + out +
           "$i 2>" + out + "$i.error & done; wait"});
  for (int i = 1; i <= 6; ++i) {
    std::string text = read_file(out + std::to_string(i));
    std::string error = read_file(out + std::to_string(i) + ".error");
    EXPECT_TRUE(text == whole
                    ? error.empty()
                    : text.empty() && holds(error, " has ended, as another client began "))
        << i << ": " << text.size() << " bytes; " << error;
  }
}

}  // namespace

}  // namespace olt::test
