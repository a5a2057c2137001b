// --files: listings that replies name.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/replay/support.h"

namespace olt::test {

namespace {

/// The reply of get_vlan_all with the name of its listing.
Bytes naming(const std::string &name) {
  return record(80, {{48, text(name)}});
}

class ReplayedListings : public ReplayTest {
 protected:
  /// The requests are those of get_vlan_all.
  RecordedExchange listing(const std::string &name, uint32_t exchange = 7) {
    return {.type = 23, .request = Bytes(80), .reply = naming(name), .exchange = exchange};
  }
  void keep(uint32_t exchange, const std::string &content) {
    kept_.write("1000-1234-1234-" + std::to_string(exchange) + ".listing", content);
  }
  void serve_with_files(const std::vector<RecordedExchange> &exchanges) {
    serve(exchanges, {"--files", kept_.path()});
  }
  std::string in_run_dir(const std::string &name) { return box_.run_dir() + "/" + name; }

  Folder kept_;
};

TEST_F(ReplayedListings, AreInTheRunDirectoryUnderTheirNames) {
  keep(7, "first\n");
  keep(8, "second\n");
  serve_with_files({listing("vlan-00000001.txt", 7), listing("vlan-00000002.txt", 8)});
  EXPECT_EQ(ask(23, Bytes(80)), reply(naming("vlan-00000001.txt")));
  EXPECT_EQ(read_file(in_run_dir("vlan-00000001.txt")), "first\n");
  EXPECT_FALSE(std::filesystem::exists(in_run_dir("vlan-00000002.txt")));
  EXPECT_EQ(ask(23, Bytes(80)), reply(naming("vlan-00000002.txt")));
  EXPECT_EQ(read_file(in_run_dir("vlan-00000002.txt")), "second\n");
  struct stat found {};
  ASSERT_EQ(stat(in_run_dir("vlan-00000002.txt").c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 07777, 0600U);
  end();
  EXPECT_EQ(errors(), "");
  EXPECT_TRUE(std::filesystem::is_empty(box_.run_dir()));
}

TEST_F(ReplayedListings, AreForTheGroupToo) {
  keep(7, "first\n");
  std::string capture = kept_.write(
      "capture", capture_of(std::vector<RecordedExchange>{listing("vlan-00000001.txt")}));
  box_.start_program(OLTREPLAY,
                     {"--files", kept_.path(), "--group", std::to_string(getgid()), capture});
  EXPECT_EQ(ask(23, Bytes(80)), reply(naming("vlan-00000001.txt")));
  struct stat found {};
  ASSERT_EQ(stat(in_run_dir("vlan-00000001.txt").c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 07777, 0640U);
  EXPECT_EQ(found.st_gid, getgid());
}

TEST_F(ReplayedListings, OfOneNameReplaceEachOther) {
  keep(7, "first\n");
  keep(8, "second\n");
  serve_with_files({listing("vlan.txt", 7), listing("vlan.txt", 8)});
  EXPECT_EQ(ask(23, Bytes(80)), reply(naming("vlan.txt")));
  EXPECT_EQ(read_file(in_run_dir("vlan.txt")), "first\n");
  std::filesystem::remove(in_run_dir("vlan.txt"));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(ask(23, Bytes(80)), reply(naming("vlan.txt")));
    EXPECT_EQ(read_file(in_run_dir("vlan.txt")), "second\n");
  }
}

TEST_F(ReplayedListings, OfAPathAreInTheRunDirectoryAsTheReplyThenSays) {
  const Folder near_root;
  keep(7, "first\n");
  std::string capture = near_root.write(
      "c", capture_of(std::vector<RecordedExchange>{listing("/var/tmp/vlans.txt")}));
  box_.start_program(OLTREPLAY, {"--files", kept_.path(), capture});
  std::string path = in_run_dir("vlans.txt");
  Answer answer = ask(23, Bytes(80));
  if (path.size() <= 32) {
    EXPECT_EQ(answer, reply(naming(path)));
    EXPECT_EQ(read_file(path), "first\n");
  } else {
    EXPECT_EQ(answer, status(kNoListing));
    EXPECT_EQ(errors(), "oltreplay: " + path + ": has " + std::to_string(path.size()) +
                            " bytes; expected at most 32: a shorter run directory\n");
  }
  EXPECT_FALSE(std::filesystem::exists("/var/tmp/vlans.txt"));
}

TEST_F(ReplayedListings, ThatCannotBeServedAreOneLineAndAStatus) {
  keep(8, "second\n");
  keep(9, "third\n");
  keep(10, std::string((4 << 20) + 1, 'x'));
  ASSERT_EQ(mkfifo((kept_ / "1000-1234-1234-11.listing").c_str(), 0600), 0);
  std::filesystem::create_directory(box_.run_dir());
  std::filesystem::permissions(box_.run_dir(), std::filesystem::perms::owner_all);
  write_file(in_run_dir("theirs.txt"), "mine\n");
  serve_with_files({listing("missing.txt", 7), listing("theirs.txt", 8), listing("module-2", 9),
                    listing("long.txt", 10), listing("pipe.txt", 11)});
  for (int i = 0; i < 5; ++i) EXPECT_EQ(ask(23, Bytes(80)), status(kNoListing));
  std::string kept = kept_.path() + "/1000-1234-1234-";
  EXPECT_EQ(errors(), "oltreplay: " + kept +
                          "7.listing: cannot be read: No such file or directory\n"
                          "oltreplay: " +
                          in_run_dir("theirs.txt") +
                          ": cannot be created: File exists\n"
                          "oltreplay: module-2: expected the name of a listing\n"
                          "oltreplay: " +
                          kept +
                          "10.listing: cannot be read: File too large\n"
                          "oltreplay: " +
                          kept + "11.listing: is no regular file; expected a kept listing\n");
  EXPECT_EQ(read_file(in_run_dir("theirs.txt")), "mine\n");
  end();
  EXPECT_EQ(read_file(in_run_dir("theirs.txt")), "mine\n");
}

TEST_F(ReplayedListings, TheNewest1024AreKept) {
  std::vector<RecordedExchange> recorded;
  for (uint32_t i = 1; i <= 1025; ++i) {
    recorded.push_back(listing("vlan-" + std::to_string(i), i));
    keep(i, "x");
  }
  serve_with_files(recorded);
  for (uint32_t i = 1; i <= 1025; ++i) ask(23, Bytes(80));
  EXPECT_FALSE(std::filesystem::exists(in_run_dir("vlan-1")));
  EXPECT_TRUE(std::filesystem::exists(in_run_dir("vlan-2")));
  EXPECT_TRUE(std::filesystem::exists(in_run_dir("vlan-1025")));
}

TEST_F(ReplayedListings, TheNewest64MiBAreKept) {
  std::vector<RecordedExchange> recorded;
  for (uint32_t i = 1; i <= 17; ++i) {
    recorded.push_back(listing("vlan-" + std::to_string(i), i));
    keep(i, std::string(4 << 20, 'x'));
  }
  serve_with_files(recorded);
  for (uint32_t i = 1; i <= 17; ++i) ask(23, Bytes(80));
  EXPECT_FALSE(std::filesystem::exists(in_run_dir("vlan-1")));
  for (uint32_t i = 2; i <= 17; ++i)
    EXPECT_TRUE(std::filesystem::exists(in_run_dir("vlan-" + std::to_string(i)))) << i;
}

TEST_F(ReplayedListings, ThatDoNotFitLeaveNothing) {
  keep(7, std::string(2000, 'x'));
  Folder captures;
  std::string capture =
      captures.write("c", capture_of(std::vector<RecordedExchange>{listing("vlan-1")}));
  std::string limited =
      captures.write("limited", "#!/bin/bash\nulimit -f 1\nexec " OLTREPLAY " \"$@\"\n");
  ASSERT_EQ(chmod(limited.c_str(), 0700), 0);
  box_.start_program(limited, {"--files", kept_.path(), capture});
  EXPECT_EQ(ask(23, Bytes(80)), status(kNoListing));
  EXPECT_EQ(errors(), "oltreplay: " + in_run_dir("vlan-1") +
                          ": cannot be written: No space left on device\n");
  EXPECT_FALSE(std::filesystem::exists(in_run_dir("vlan-1")));
}

}  // namespace

}  // namespace olt::test
