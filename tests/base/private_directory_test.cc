// Directories that other users cannot reach, as seen by this user, and by others where the tests
// run as root.

#include "base/private_directory.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

namespace olt::test {

namespace {

namespace fs = std::filesystem;

constexpr uid_t kUser = 54321;
constexpr uid_t kAttacker = 54322;

mode_t mode_of(const std::string &path) {
  struct stat found {};
  EXPECT_EQ(lstat(path.c_str(), &found), 0) << path;
  return found.st_mode & 07777;
}

class PrivateDirectoryTest : public testing::Test {
 protected:
  PrivateDirectoryTest() : base_(fs::temp_directory_path() / "olt-private.XXXXXX") {
    EXPECT_NE(mkdtemp(base_.data()), nullptr);
    EXPECT_EQ(chmod(base_.c_str(), 0755), 0);
  }
  ~PrivateDirectoryTest() override { fs::remove_all(base_); }

  std::string make(const std::string &name, mode_t mode, uid_t user = geteuid()) const {
    std::string path = base_ + "/" + name;
    EXPECT_EQ(mkdir(path.c_str(), 0700), 0) << path;
    EXPECT_EQ(chmod(path.c_str(), mode), 0);
    if (user != geteuid()) {
      EXPECT_EQ(chown(path.c_str(), user, user), 0);
    }
    return path;
  }

  std::string link_to(const std::string &target, const std::string &name) const {
    std::string path = base_ + "/" + name;
    fs::create_symlink(target, path);
    return path;
  }

  /// @return the error line; empty when the directory was opened and is the one at the path.
  static std::string complaint(const PrivateDirectory &wanted) {
    try {
      Descriptor directory = open_private_directory(wanted);
      struct stat opened {};
      struct stat named {};
      EXPECT_EQ(fstat(directory.get(), &opened), 0);
      EXPECT_EQ(stat(wanted.path.c_str(), &named), 0);
      EXPECT_EQ(opened.st_ino, named.st_ino);
      EXPECT_NE(fcntl(directory.get(), F_GETFD) & FD_CLOEXEC, 0);
      return {};
    } catch (const std::exception &failure) {
      EXPECT_EQ(std::string(failure.what()).find('\n'), std::string::npos);
      return failure.what();
    }
  }

  static std::string complaint(const std::string &path) {
    return complaint({.what = "directory", .path = path});
  }

  void expect_refused(const std::string &path, const std::string &reason) const {
    std::string line = complaint(path);
    EXPECT_EQ(line.find("directory \"" + path + "\""), 0U) << line;
    EXPECT_NE(line.find(reason), std::string::npos) << line;
  }

  /// Runs the body as another user in a child process, whose failures it prints.
  static void as_user(uid_t user, const std::function<void()> &body) {
    pid_t child = fork();
    if (child == 0) {
      if (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0) _exit(99);
      body();
      _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }

  std::string base_;
};

TEST_F(PrivateDirectoryTest, IsCreatedForTheOwnUser) {
  mode_t before = umask(0);
  EXPECT_EQ(complaint(base_ + "/new"), "");
  umask(before);
  EXPECT_EQ(mode_of(base_ + "/new"), 0700U);
  EXPECT_EQ(complaint(base_ + "/new/"), "");
  EXPECT_EQ(complaint(base_ + "/./new//."), "");
  expect_refused(base_ + "/new/..", "is not empty and has mode 0755");
}

TEST_F(PrivateDirectoryTest, NeedsItsParentsUnlessToldToCreateThem) {
  std::string path = base_ + "/one/two/three";
  EXPECT_EQ(complaint(path),
            "directory \"" + path + "\" cannot be reached: No such file or directory");
  EXPECT_EQ(complaint({.what = "directory", .path = path, .create_parents = true}), "");
  EXPECT_EQ(mode_of(base_ + "/one"), 0700U);
  EXPECT_EQ(mode_of(base_ + "/one/two"), 0700U);
}

TEST_F(PrivateDirectoryTest, MayBeRelative) {
  int before = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(chdir(base_.c_str()), 0);
  EXPECT_EQ(complaint("relative"), "");
  ASSERT_EQ(chdir("relative"), 0);
  EXPECT_EQ(complaint("."), "");
  expect_refused("..", "is not empty and has mode 0755");
  EXPECT_EQ(complaint(""), "directory \"\" cannot be reached: No such file or directory");
  ASSERT_EQ(fchdir(before), 0);
  close(before);
  EXPECT_EQ(mode_of(base_ + "/relative"), 0700U);
}

TEST_F(PrivateDirectoryTest, FollowsNoLinkInTheLastComponent) {
  std::string target = make("target", 0755);
  std::string link = link_to(target, "link");
  for (const char *end : {"", "/", "//", "/."}) expect_refused(link + end, "cannot be used");
  EXPECT_EQ(mode_of(target), 0755U);
}

TEST_F(PrivateDirectoryTest, FollowsOwnLinksAboveIt) {
  make("real", 0755);
  link_to(base_ + "/real", "absolute");
  link_to("./absolute", "relative");
  EXPECT_EQ(complaint(base_ + "/absolute/one"), "");
  EXPECT_EQ(complaint(base_ + "/relative/two"), "");
  EXPECT_EQ(mode_of(base_ + "/real/one"), 0700U);
  EXPECT_EQ(mode_of(base_ + "/real/two"), 0700U);
  link_to("loop", "loop");
  expect_refused(base_ + "/loop/three", "cannot be reached: Too many levels of symbolic links");
}

TEST_F(PrivateDirectoryTest, RefusesParentsThatOthersCanWriteTo) {
  for (mode_t mode : {0777U, 0775U, 0757U}) {
    fs::remove_all(base_ + "/open");
    std::string open_one = make("open", mode);
    expect_refused(open_one + "/run", "\"" + open_one + "\" has mode 0");
    EXPECT_FALSE(fs::exists(open_one + "/run"));
  }
  EXPECT_EQ(complaint(make("sticky", 01777) + "/run"), "");
  link_to(base_ + "/open", "link");
  expect_refused(base_ + "/link/run", "expected a directory that only its owner can write to");
}

TEST_F(PrivateDirectoryTest, RefusesAFileInItsPlaceOrAbove) {
  close(open((base_ + "/file").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  expect_refused(base_ + "/file", "cannot be used: Not a directory");
  expect_refused(base_ + "/file/run", ": Not a directory");
}

TEST_F(PrivateDirectoryTest, GivesModeAndGroup) {
  PrivateDirectory wanted = {
      .what = "directory", .path = base_ + "/run", .group = getegid(), .mode = 0750};
  EXPECT_EQ(complaint(wanted), "");
  EXPECT_EQ(mode_of(wanted.path), 0750U);
  wanted.group.reset();
  wanted.mode = 0700;
  EXPECT_EQ(complaint(wanted), "");
  EXPECT_EQ(mode_of(wanted.path), 0700U);
}

TEST_F(PrivateDirectoryTest, TightensAnEmptyOneAndRefusesAFullOne) {
  std::string path = make("run", 0755);
  EXPECT_EQ(complaint(path), "");
  EXPECT_EQ(mode_of(path), 0700U);
  ASSERT_EQ(chmod(path.c_str(), 0770), 0);
  ASSERT_EQ(mkdir((path + "/something").c_str(), 0700), 0);
  expect_refused(path, "is not empty and has mode 0770");
  EXPECT_EQ(mode_of(path), 0770U);
}

TEST_F(PrivateDirectoryTest, RefusesAnotherUsersDirectory) {
  if (geteuid() != 0) {
    expect_refused("/", "belongs to user");
    return;
  }
  std::string path = make("run", 0700, kUser);
  expect_refused(path, "belongs to user 54321; expected ");
  as_user(kUser, [&] { EXPECT_EQ(complaint(path), ""); });
  as_user(kAttacker, [&] { expect_refused(path, "cannot be used: Permission denied"); });
}

/// Enters a user namespace in which no other user has a number, as a user that is not root.
bool enter_own_namespace() {
  if (geteuid() == 0 && setuid(kUser) != 0) return false;
  std::string map = "1000 " + std::to_string(geteuid()) + " 1";
  if (prctl(PR_SET_DUMPABLE, 1) != 0 || unshare(CLONE_NEWUSER) != 0) return false;
  Descriptor file(open("/proc/self/uid_map", O_WRONLY | O_CLOEXEC));
  return write(file.get(), map.data(), map.size()) == static_cast<ssize_t>(map.size());
}

// There, "/" belongs to nobody whom the system knows.
TEST_F(PrivateDirectoryTest, RefusesParentsOfAUserItDoesNotKnow) {
  constexpr int kNoNamespace = 77;
  pid_t child = fork();
  if (child == 0) {
    if (!enter_own_namespace()) _exit(kNoNamespace);
    EXPECT_EQ(geteuid(), 1000U);
    std::string path = base_ + "/run";
    std::string line = complaint(path);
    EXPECT_EQ(line.find("directory \"" + path + "\": \"/\" belongs to user "), 0U) << line;
    EXPECT_FALSE(fs::exists(path));
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kNoNamespace) {
    GTEST_SKIP() << "the system allows no user namespaces";
  }
  EXPECT_EQ(status, 0);
}

TEST_F(PrivateDirectoryTest, RefusesAnotherUsersParentsAndLinks) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root: files and links of two other users";
  std::string theirs = make("theirs", 0755, kAttacker);
  expect_refused(theirs + "/run", "\"" + theirs + "\" belongs to user 54322; expected root or ");
  as_user(kUser, [&] { expect_refused(theirs + "/run", "belongs to user 54322"); });
  as_user(kAttacker, [&] { EXPECT_EQ(complaint(theirs + "/run"), ""); });

  std::string shared = make("shared", 01777);
  std::string own = make("own", 0755, kUser);
  as_user(kAttacker, [&] { link_to(own, "shared/planted"); });
  as_user(kUser, [&] {
    expect_refused(shared + "/planted/run", "\"" + shared + "/planted\" belongs to user 54322");
    EXPECT_EQ(complaint(shared + "/run"), "");
  });
  EXPECT_FALSE(fs::exists(own + "/run"));
}

// The attacker swaps a directory of the user's with a link, again and again. What the link leads to
// keeps its mode.
TEST_F(PrivateDirectoryTest, ARenameMeanwhileRedirectsNothing) {
  std::string victim = make("victim", 0755);
  std::string arena = make("arena", 0755);
  fs::create_directory(arena + "/a");
  fs::create_symlink(victim, arena + "/b");
  pid_t attacker = fork();
  if (attacker == 0) {
    for (;;) {
      renameat2(AT_FDCWD, (arena + "/a").c_str(), AT_FDCWD, (arena + "/b").c_str(),
                RENAME_EXCHANGE);
    }
  }
  int opened = 0;
  for (int i = 0; i < 3000; ++i) {
    try {
      open_private_directory({.what = "directory", .path = arena + "/a"});
      ++opened;
    } catch (const std::exception &) {
    }
    ASSERT_EQ(mode_of(victim), 0755U);
  }
  kill(attacker, SIGKILL);
  waitpid(attacker, nullptr, 0);
  EXPECT_GT(opened, 0);
  EXPECT_LT(opened, 3000);
}

}  // namespace

}  // namespace olt::test
