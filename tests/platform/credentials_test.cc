// Who is accepted at the other end, on both sides.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "tests/platform/support.h"

namespace {

/// Replaces the credentials that the kernel reports on this thread, to test the rules without a
/// second user.
struct FakePeer {
  uid_t user;
  gid_t group;
  std::vector<gid_t> groups;
};
thread_local std::optional<FakePeer> fake_peer;

int give(const void *from, size_t size, void *to, socklen_t *room) {
  bool fits = *room >= size;
  *room = static_cast<socklen_t>(size);
  if (!fits) {
    errno = ERANGE;
    return -1;
  }
  if (size > 0) std::memcpy(to, from, size);
  return 0;
}

}  // namespace

// The program's definition comes before the C library's.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" [[gnu::visibility("default")]] int getsockopt(int socket, int level, int option,
                                                         void *value, socklen_t *size) noexcept {
  if (fake_peer && level == SOL_SOCKET && option == SO_PEERCRED) {
    ucred peer{.pid = 1, .uid = fake_peer->user, .gid = fake_peer->group};
    return give(&peer, sizeof peer, value, size);
  }
  if (fake_peer && level == SOL_SOCKET && option == SO_PEERGROUPS) {
    return give(fake_peer->groups.data(), fake_peer->groups.size() * sizeof(gid_t), value, size);
  }
  return static_cast<int>(syscall(SYS_getsockopt, socket, level, option, value, size));
}

namespace olt::test {

namespace {

constexpr int32_t kRefused = 0x00040000;
constexpr uid_t kStranger = 54321;
constexpr gid_t kStrangersGroup = 54322;
constexpr gid_t kAllowedGroup = 54323;
constexpr char kAllowedGroupText[] = "54323";

Exchanged ask_as_client_of(const FakePeer &server) {
  fake_peer = server;
  Exchanged all = post(2, kEcho, {});
  fake_peer.reset();
  return all;
}

class Credentials : public testing::Test {
 protected:
  void SetUp() override { unsetenv("OLT_GROUP"); }
  void TearDown() override { unsetenv("OLT_GROUP"); }

  TemporaryRunDir dir_;
};

TEST_F(Credentials, TheClientRefusesAModuleOfAnotherUser) {
  ServerThread server({.run_dir = dir_.path().c_str()});
  testing::internal::CaptureStderr();
  Exchanged all = ask_as_client_of({kStranger, kStrangersGroup, {}});
  std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_EQ(all.result, kRefused);
  EXPECT_EQ(all.status, 0xabcd);
  EXPECT_NE(errors.find("module 2: user 54321 is refused; expected user "), std::string::npos)
      << errors;
  EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
  EXPECT_EQ(post(2, kEcho, {}).result, 0);
}

TEST_F(Credentials, TheClientAcceptsRootAndTheOwnUser) {
  ServerThread server({.run_dir = dir_.path().c_str()});
  EXPECT_EQ(ask_as_client_of({0, kStrangersGroup, {}}).result, 0);
  drop_connections();
  EXPECT_EQ(ask_as_client_of({geteuid(), kStrangersGroup, {}}).result, 0);
}

TEST_F(Credentials, TheClientAcceptsAMemberOfTheAllowedGroup) {
  ServerThread server({.run_dir = dir_.path().c_str()});
  std::vector<gid_t> many(100, kStrangersGroup);
  EXPECT_EQ(ask_as_client_of({kStranger, kAllowedGroup, {}}).result, kRefused);
  setenv("OLT_GROUP", kAllowedGroupText, 1);
  EXPECT_EQ(ask_as_client_of({kStranger, kStrangersGroup, many}).result, kRefused);
  EXPECT_EQ(ask_as_client_of({kStranger, kAllowedGroup, {}}).result, 0);
  drop_connections();
  many.push_back(kAllowedGroup);
  EXPECT_EQ(ask_as_client_of({kStranger, kStrangersGroup, many}).result, 0);
}

TEST_F(Credentials, AnUnknownGroupIsReportedAndAllowsNobody) {
  ServerThread server({.run_dir = dir_.path().c_str()});
  setenv("OLT_GROUP", "no such group", 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(ask_as_client_of({kStranger, kStrangersGroup, {}}).result, kRefused);
  std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_NE(errors.find("OLT_GROUP: group \"no such group\" is not known; expected the name or the "
                        "number of a group; using none\n"),
            std::string::npos)
      << errors;
}

TEST_F(Credentials, ASocketWithoutAUserIsRefused) {
  int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  olt_connect_through([](void *context, uint32_t) { return dup(*static_cast<int *>(context)); },
                      const_cast<int *>(&listener));
  EXPECT_EQ(post(2, kEcho, {}).result, kRefused);
  olt_connect_through(nullptr, nullptr);
  close(listener);
}

/// A server that sees all its clients as somebody.
ServerThread::Setup serving(const std::string &dir, const FakePeer &client,
                            const char *group = nullptr) {
  return {.run_dir = dir.c_str(), .group = group, .before_run = [client] { fake_peer = client; }};
}

TEST_F(Credentials, TheServerRefusesAClientOfAnotherUserAndTellsIt) {
  ServerThread server(serving(dir_.path(), {kStranger, kStrangersGroup, {}}));
  for (uint64_t i = 1; i <= 3; ++i) {
    testing::internal::CaptureStderr();
    Exchanged all = post(2, kEcho, {});
    std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(all.result, kRefused);
    EXPECT_NE(errors.find("module 2 does not accept user "), std::string::npos) << errors;
    EXPECT_TRUE(server.reaches(&olt_server_counters::refused_peers, i));
  }
  EXPECT_EQ(server.counters().connections, 0u);
  EXPECT_EQ(server.counters().exchanges, 0u);
  EXPECT_NE(server.events().find("module 2: user 54321 is refused; expected user "),
            std::string::npos)
      << server.events();
}

TEST_F(Credentials, TheRefusalIsAFrameAndTheEnd) {
  ServerThread server(serving(dir_.path(), {kStranger, kStrangersGroup, {}}));
  RawClient client(dir_.socket(2));
  EXPECT_EQ(client.receive(100), hex("4f4c4131 00000000 0000 0100 00000000"));
  EXPECT_TRUE(client.is_closed());
}

TEST_F(Credentials, TheServerRefusesALargeRequestOfAnotherUserToo) {
  ServerThread server(serving(dir_.path(), {kStranger, kStrangersGroup, {}}));
  EXPECT_EQ(post(2, kEcho, Bytes(8 * 1024 * 1024)).result, kRefused);
}

TEST_F(Credentials, TheServerAcceptsAMemberOfTheAllowedGroup) {
  // The group must be one that this user can give the socket to.
  std::string group = geteuid() == 0 ? kAllowedGroupText : std::to_string(getegid());
  auto number = static_cast<gid_t>(std::stoul(group));
  {
    ServerThread server(serving(dir_.path(), {kStranger, number, {}}, group.c_str()));
    EXPECT_EQ(post(2, kEcho, {}).result, 0);
  }
  {
    ServerThread server(
        serving(dir_.path(), {kStranger, kStrangersGroup, {1, 2, number}}, group.c_str()));
    EXPECT_EQ(post(2, kEcho, {}).result, 0);
  }
  ServerThread server(serving(dir_.path(), {kStranger, kStrangersGroup, {1, 2}}, group.c_str()));
  EXPECT_EQ(post(2, kEcho, {}).result, kRefused);
  EXPECT_TRUE(server.reaches(&olt_server_counters::refused_peers, 1));
  EXPECT_NE(server.events().find(" or a member of group "), std::string::npos) << server.events();
}

TEST_F(Credentials, TheServerAcceptsRoot) {
  ServerThread server(serving(dir_.path(), {0, kStrangersGroup, {}}));
  EXPECT_EQ(post(2, kEcho, {}).result, 0);
}

int become_stranger(gid_t group) {
  return setgroups(0, nullptr) == 0 && setgid(group) == 0 && setuid(kStranger) == 0 ? 0 : -1;
}

/// With two real users, where this process may become the second one.
class TwoUsers : public Credentials {
 protected:
  // Gives the stranger access to the parent of the run directory.
  void open_the_way() { ASSERT_EQ(chmod(dir_.base().c_str(), 0755), 0); }

  static ChildResult as_stranger(gid_t group, const std::function<int()> &body) {
    return run_in_child([&] {
      drop_connections();
      return become_stranger(group) == 0 ? body() : 99;
    });
  }
  static bool may_become_another() { return geteuid() == 0; }
};

int ask_for_status() {
  return post(2, kEcho, {}).result >> 16;
}

TEST_F(TwoUsers, AStrangerIsKeptOutByTheDirectory) {
  ServerProcess server(dir_.path());
  open_the_way();
  if (may_become_another()) {
    ChildResult child = as_stranger(kStrangersGroup, ask_for_status);
    EXPECT_EQ(child.status, 4) << child.errors;
    EXPECT_NE(child.errors.find("/module-2\" is closed to user 54321; expected its owner"),
              std::string::npos)
        << child.errors;
  } else {
    EXPECT_EQ(chmod(dir_.path().c_str(), 0), 0);
    EXPECT_EQ(post(2, kEcho, {}).result, kRefused);
    EXPECT_EQ(chmod(dir_.path().c_str(), 0700), 0);
  }
}

TEST_F(TwoUsers, AStrangerBeforeAnOpenDoorIsRefusedByTheServer) {
  ServerProcess server(dir_.path());
  open_the_way();
  ASSERT_EQ(chmod(dir_.path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(dir_.socket(2).c_str(), 0666), 0);
  ChildResult child = may_become_another() ? as_stranger(kStrangersGroup, ask_for_status)
                                           : run_in_child(ask_for_status);
  EXPECT_EQ(child.status, may_become_another() ? 4 : 0) << child.errors;
}

TEST_F(TwoUsers, AMemberOfTheGroupIsServed) {
  std::string group = may_become_another() ? kAllowedGroupText : std::to_string(getegid());
  ServerProcess server(dir_.path(), {2}, group.c_str());
  open_the_way();
  ChildResult child = may_become_another() ? as_stranger(kAllowedGroup, ask_for_status)
                                           : run_in_child(ask_for_status);
  EXPECT_EQ(child.status, 0) << child.errors;
}

TEST_F(TwoUsers, RootDoesNotTrustAModuleOfAnotherUser) {
  open_the_way();
  ASSERT_EQ(chmod(dir_.base().c_str(), 01777), 0);
  ServerProcess server(dir_.path(), {2}, nullptr, [] {
    if (may_become_another() && become_stranger(kAllowedGroup) != 0) _exit(1);
  });
  EXPECT_EQ(post(2, kEcho, {}).result, may_become_another() ? kRefused : 0);
  setenv("OLT_GROUP", kAllowedGroupText, 1);
  EXPECT_EQ(post(2, kEcho, {}).result, 0);
}

}  // namespace
}  // namespace olt::test
