// Processes that fork between exchanges, and in the middle of those of other threads.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "tests/platform/support.h"

namespace olt::test {

namespace {

class Fork : public testing::Test {
 protected:
  TemporaryRunDir dir_;
  ServerProcess server_{dir_.path()};
};

int count_sockets() {
  int sockets = 0;
  for (int number = 0; number < 256; ++number) {
    int type = 0;
    socklen_t size = sizeof type;
    sockets += getsockopt(number, SOL_SOCKET, SO_TYPE, &type, &size) == 0 ? 1 : 0;
  }
  return sockets;
}

TEST_F(Fork, TheChildStartsWithoutTheConnectionsOfItsParent) {
  std::atomic<bool> connected{false};
  std::atomic<bool> done{false};
  int before = count_sockets();
  std::thread other([&] {
    EXPECT_EQ(post(2, kEcho, {}).result, 0);
    connected = true;
    while (!done) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(post(2, kEcho, {}).result, 0);
  });
  EXPECT_EQ(post(2, kEcho, {}).result, 0);
  while (!connected) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_EQ(count_sockets(), before + 2);
  // Not through exit: a leak check would find what the other thread had allocated.
  ChildResult child = run_in_child([&]() -> int { _exit(count_sockets() - before); });
  EXPECT_EQ(child.status, 0) << child.errors;
  EXPECT_EQ(count_sockets(), before + 2);
  done = true;
  other.join();
}

// Other threads open and close connections all the time; none of them may stay open in a child.
TEST_F(Fork, NoConnectionLeaksWhereverAnotherThreadIs) {
  int before = count_sockets();
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([&done] {
      while (!done) std::thread([] { post(2, kEcho, {}); }).join();
    });
  }
  int leaked = 0;
  for (int i = 0; i < 1000; ++i) {
    pid_t child = fork();
    if (child == 0) _exit(count_sockets() - before);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    leaked += status == 0 ? 0 : 1;
  }
  done = true;
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(leaked, 0);
}

TEST_F(Fork, ParentAndChildGetTheirOwnAnswers) {
  EXPECT_EQ(exchange_bytes(2, kEcho, text("before")), text("before"));
  pid_t child = fork();
  const char *const name = child == 0 ? "child" : "parent";
  int wrong = 0;
  for (int i = 0; i < 500; ++i) wrong += exchange_bytes(2, kEcho, text(name)) == text(name) ? 0 : 1;
  if (child == 0) _exit(wrong == 0 ? 0 : 1);
  EXPECT_EQ(wrong, 0);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(Fork, TheParentsConnectionSurvivesTheChildsEnd) {
  EXPECT_EQ(post(2, kCounted, {}).result, 0);
  EXPECT_EQ(run_in_child([] { return post(2, kCounted, {}).result; }).status, 0);
  EXPECT_EQ(post(2, kCounted, {}).result, 0);
  EXPECT_EQ(exchange_bytes(2, kCount, {}), word(3));
}

TEST_F(Fork, AReplyOfTheParentMayBeReleasedInBoth) {
  Exchanged all = exchange(2, kEcho, text("kept"));
  ChildResult child = run_in_child([&] {
    bool right = all.bytes() == text("kept");
    IPC_Free(all.handle);
    return right ? 0 : 1;
  });
  EXPECT_EQ(child.status, 0);
  EXPECT_EQ(child.errors, "");
  EXPECT_EQ(all.bytes(), text("kept"));
  IPC_Free(all.handle);
}

// The locks of the platform are in use most of the time here; a child that inherited one of them
// locked would hang.
TEST_F(Fork, ForksAmidTheExchangesOfOtherThreads) {
  setenv("OLT_ALLOC_DEBUG", "1", 1);
  std::atomic<bool> done{false};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (uint32_t id = 0; id < 4; ++id) {
    threads.emplace_back([&, id] {
      for (uint32_t i = 0; !done; ++i) {
        Bytes request = pattern(100, id * 100000 + i);
        wrong += exchange_bytes(2, kEcho, request) == request ? 0 : 1;
        ___FREE(___MALLOC(16, "fork", 1), "fork", 2);
      }
    });
  }
  for (int i = 0; i < 40; ++i) {
    pid_t child = fork();
    if (child == 0) {
      alarm(30);
      Bytes request = pattern(50, 7);
      void *block = ___MALLOC(16, "fork", 3);
      ___FREE(block, "fork", 4);
      _exit(exchange_bytes(2, kEcho, request) == request ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  done = true;
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace olt::test
