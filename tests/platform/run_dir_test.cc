// The run directory: where it is, how it is closed to others, who may serve in it.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/platform/support.h"

namespace olt::test {

namespace {

namespace fs = std::filesystem;

unsigned mode_of(const std::string &path) {
  struct stat found {};
  EXPECT_EQ(lstat(path.c_str(), &found), 0) << path;
  return found.st_mode & 07777;
}

gid_t group_of(const std::string &path) {
  struct stat found {};
  EXPECT_EQ(lstat(path.c_str(), &found), 0) << path;
  return found.st_gid;
}

/// A server that does not run; null with a line when it cannot be created.
struct Attempt {
  explicit Attempt(const std::string &run_dir, const char *group = nullptr,
                   const std::vector<uint32_t> &modules = {2}) {
    olt_server_options options{.run_dir = run_dir.c_str(), .group = group};
    server = olt_server_create(&options, error.data());
    for (uint32_t module : modules) {
      added = server != nullptr && olt_server_add(server, module, act, nullptr, error.data()) == 0;
    }
  }
  Attempt(const Attempt &) = delete;
  Attempt &operator=(const Attempt &) = delete;
  ~Attempt() { olt_server_destroy(server); }

  std::string line() const { return error.data(); }

  std::array<char, 256> error{};
  olt_server *server = nullptr;
  bool added = false;
};

class RunDir : public testing::Test {
 protected:
  void make(unsigned mode) {
    fs::create_directory(dir_.path());
    ASSERT_EQ(chmod(dir_.path().c_str(), mode), 0);
  }
  void put_something() { std::ofstream(dir_.path() + "/something") << "x"; }

  TemporaryRunDir dir_;
  const std::string own_group_ = std::to_string(getegid());
};

TEST_F(RunDir, IsCreatedForTheOwnUserAlone) {
  mode_t before = umask(0);
  Attempt attempt(dir_.path());
  umask(before);
  ASSERT_TRUE(attempt.added) << attempt.line();
  EXPECT_EQ(mode_of(dir_.path()), 0700u);
  EXPECT_EQ(mode_of(dir_.socket(2)), 0600u);
}

TEST_F(RunDir, DoesNotSufferFromATightUmask) {
  mode_t before = umask(0077);
  Attempt attempt(dir_.path(), own_group_.c_str());
  umask(before);
  ASSERT_TRUE(attempt.added) << attempt.line();
  EXPECT_EQ(mode_of(dir_.path()), 0750u);
  EXPECT_EQ(mode_of(dir_.socket(2)), 0660u);
}

TEST_F(RunDir, IsOpenedToTheAllowedGroup) {
  std::string group = geteuid() == 0 ? "12345" : own_group_;
  Attempt attempt(dir_.path(), group.c_str());
  ASSERT_TRUE(attempt.added) << attempt.line();
  EXPECT_EQ(mode_of(dir_.path()), 0750u);
  EXPECT_EQ(mode_of(dir_.socket(2)), 0660u);
  EXPECT_EQ(std::to_string(group_of(dir_.path())), group);
  EXPECT_EQ(std::to_string(group_of(dir_.socket(2))), group);
}

TEST_F(RunDir, IsTightenedWhenItIsEmpty) {
  make(0777);
  Attempt attempt(dir_.path());
  ASSERT_TRUE(attempt.added) << attempt.line();
  EXPECT_EQ(mode_of(dir_.path()), 0700u);
}

TEST_F(RunDir, IsRefusedWhenOthersMayHavePutSomethingThere) {
  make(0755);
  put_something();
  Attempt attempt(dir_.path());
  EXPECT_EQ(attempt.server, nullptr);
  EXPECT_NE(attempt.line().find("is not empty and has mode 0755"), std::string::npos)
      << attempt.line();
  EXPECT_NE(attempt.line().find("expected mode 0700"), std::string::npos) << attempt.line();
  EXPECT_EQ(mode_of(dir_.path()), 0755u);
}

TEST_F(RunDir, IsTakenWhenItWasClosedToOthers) {
  make(0700);
  put_something();
  Attempt attempt(dir_.path());
  EXPECT_TRUE(attempt.added) << attempt.line();
  EXPECT_TRUE(fs::exists(dir_.path() + "/something"));
}

TEST_F(RunDir, IsTakenWhenItWasClosedToAllButTheAllowedGroup) {
  make(0750);
  put_something();
  Attempt without(dir_.path());
  EXPECT_EQ(without.server, nullptr);
  Attempt with(dir_.path(), own_group_.c_str());
  EXPECT_TRUE(with.added) << with.line();
}

TEST_F(RunDir, IsRefusedWhenItBelongsToSomebodyElse) {
  std::string foreign = "/";
  if (geteuid() == 0) {
    make(0700);
    foreign = dir_.path();
    ASSERT_EQ(chown(foreign.c_str(), 12345, 12345), 0);
  }
  Attempt attempt(foreign);
  EXPECT_EQ(attempt.server, nullptr);
  EXPECT_NE(attempt.line().find("belongs to user"), std::string::npos) << attempt.line();
}

TEST_F(RunDir, IsRefusedWhenItIsALinkOrNoDirectory) {
  fs::create_directory(dir_.base() + "/elsewhere");
  unsigned mode = mode_of(dir_.base() + "/elsewhere");
  fs::create_symlink(dir_.base() + "/elsewhere", dir_.base() + "/link");
  for (const char *end : {"/link", "/link/", "/link//"}) {
    Attempt link(dir_.base() + end);
    EXPECT_NE(link.line().find("cannot be used"), std::string::npos) << link.line();
  }
  EXPECT_EQ(mode_of(dir_.base() + "/elsewhere"), mode);
  std::ofstream(dir_.base() + "/file") << "x";
  Attempt file(dir_.base() + "/file");
  EXPECT_NE(file.line().find("cannot be used: Not a directory"), std::string::npos) << file.line();
}

TEST_F(RunDir, IsRefusedWhereOthersCanRenameIt) {
  ASSERT_EQ(chmod(dir_.base().c_str(), 0777), 0);
  Attempt attempt(dir_.path());
  EXPECT_EQ(attempt.server, nullptr);
  EXPECT_NE(attempt.line().find("\"" + dir_.base() +
                                "\" has mode 0777; expected a directory that "
                                "only its owner can write to, or one with the sticky bit"),
            std::string::npos)
      << attempt.line();
}

TEST_F(RunDir, NeedsItsParent) {
  Attempt attempt(dir_.base() + "/missing/run");
  EXPECT_NE(attempt.line().find("cannot be reached: No such file or directory"), std::string::npos)
      << attempt.line();
}

TEST_F(RunDir, AnUnknownGroupIsRefused) {
  Attempt attempt(dir_.path(), "no such group");
  EXPECT_EQ(attempt.line(),
            "group \"no such group\" is not known; expected the name or the number of a group");
  EXPECT_FALSE(fs::exists(dir_.path()));
}

TEST_F(RunDir, ATooLongPathIsRefused) {
  std::string longer = dir_.base() + "/" + std::string(100, 'd');
  Attempt attempt(longer);
  EXPECT_FALSE(attempt.added);
  EXPECT_NE(attempt.line().find("socket path \"" + longer), std::string::npos) << attempt.line();
  EXPECT_EQ(std::distance(fs::directory_iterator(longer), {}), 0);
}

TEST_F(RunDir, AModuleIsServedByOneServerOnly) {
  Attempt first(dir_.path());
  ASSERT_TRUE(first.added) << first.line();
  Attempt second(dir_.path());
  EXPECT_FALSE(second.added);
  EXPECT_EQ(second.line().substr(0, 38),
            "module 2 is already being served in \"" + dir_.path().substr(0, 1));
  Attempt other(dir_.path(), nullptr, {18});
  EXPECT_TRUE(other.added) << other.line();
  EXPECT_TRUE(fs::exists(dir_.socket(2)));
}

TEST_F(RunDir, AModuleIsAddedOnce) {
  Attempt attempt(dir_.path(), nullptr, {2, 2});
  EXPECT_FALSE(attempt.added);
  EXPECT_EQ(attempt.line(), "module 2 was added before; expected each module once");
}

TEST_F(RunDir, ASocketOfAKilledServerIsTakenOver) {
  ServerProcess killed(dir_.path());
  killed.kill();
  ASSERT_TRUE(fs::exists(dir_.socket(2)));
  ServerThread server({.run_dir = dir_.path().c_str()});
  EXPECT_EQ(exchange_bytes(2, kEcho, text("new")), text("new"));
}

TEST_F(RunDir, SomethingElseInTheWayIsLeftAlone) {
  make(0700);
  std::ofstream(dir_.socket(2)) << "precious";
  Attempt attempt(dir_.path());
  EXPECT_FALSE(attempt.added);
  EXPECT_NE(attempt.line().find("/module-2\" is in the way; expected a socket or nothing"),
            std::string::npos)
      << attempt.line();
  std::string content;
  std::ifstream(dir_.socket(2)) >> content;
  EXPECT_EQ(content, "precious");
}

TEST_F(RunDir, NothingIsLeftBehindByADestroyedServer) {
  {
    Attempt attempt(dir_.path(), nullptr, {2, 18, 22, 23});
    ASSERT_TRUE(attempt.added) << attempt.line();
    EXPECT_TRUE(fs::exists(dir_.socket(23)));
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_.path()), {}), 0);
}

TEST_F(RunDir, IsChosenByTheEnvironment) {
  char path[64];
  setenv("OLT_RUN_DIR", "/some/where", 1);
  EXPECT_EQ(olt_run_dir(path, sizeof path), 0);
  EXPECT_STREQ(path, "/some/where");
  setenv("OLT_RUN_DIR", "", 1);
  setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
  EXPECT_EQ(olt_run_dir(path, sizeof path), 0);
  EXPECT_STREQ(path, "/run/user/7/oltmgmt");
  unsetenv("OLT_RUN_DIR");
  unsetenv("XDG_RUNTIME_DIR");
  EXPECT_EQ(olt_run_dir(path, sizeof path), 0);
  EXPECT_STREQ(path, "/run/oltmgmt");
}

TEST_F(RunDir, IsNotCutWhenItDoesNotFit) {
  setenv("OLT_RUN_DIR", "/some/where", 1);
  char path[12] = "untouched";
  EXPECT_EQ(olt_run_dir(path, 12), 0);
  EXPECT_STREQ(path, "/some/where");
  EXPECT_EQ(olt_run_dir(path, 11), -1);
  EXPECT_STREQ(path, "");
  EXPECT_EQ(olt_run_dir(nullptr, 0), -1);
}

}  // namespace
}  // namespace olt::test
