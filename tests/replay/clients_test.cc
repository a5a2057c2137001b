// --strict: each client repeats the requests of a recorded process.
#include <unistd.h>

#include <atomic>
#include <thread>

#include "tests/replay/support.h"
#include "tests/support/program.h"

namespace olt::test {

namespace {

const std::vector<std::string> kStrict = {"--strict"};

RecordedExchange one_of(uint32_t process, uint32_t type, const char *reply, uint32_t exchange = 1) {
  return {.type = type,
          .reply = hex(reply),
          .exchange = exchange,
          .process = process,
          .thread = process};
}

/// A request after which two children know that both have arrived.
class Meeting {
 public:
  Meeting() { EXPECT_EQ(pipe(ends_), 0); }
  Meeting(const Meeting &) = delete;
  Meeting &operator=(const Meeting &) = delete;
  ~Meeting() {
    close(ends_[0]);
    close(ends_[1]);
  }

  void arrive() const { EXPECT_EQ(write(ends_[1], "x", 1), 1); }
  void wait() const {
    char byte = 0;
    EXPECT_EQ(read(ends_[0], &byte, 1), 1);
  }

 private:
  int ends_[2] = {};
};

TEST_F(ReplayTest, StrictFollowsTheOrderOfAProcess) {
  serve({one_of(1, 12, "a1", 1), one_of(1, 13, "a2", 2), one_of(1, 12, "a3", 3)}, kStrict);
  EXPECT_EQ(ask(12), reply(hex("a1")));
  EXPECT_EQ(ask(12), status(kNotNext));
  EXPECT_EQ(ask(12), status(kNotNext));
  EXPECT_EQ(ask(14), status(kNotRecorded));
  EXPECT_EQ(ask(13), reply(hex("a2")));
  EXPECT_EQ(ask(12), reply(hex("a3")));
  EXPECT_EQ(ask(12), status(kNotNext));
  EXPECT_EQ(errors(),
            "oltreplay: module 2 type 12 get_olt_mac: out of order; expected module 2 type 13, "
            "exchange 2 of process 1\n"
            "oltreplay: module 2 type 14: not recorded; expected a recorded message type\n"
            "oltreplay: module 2 type 12 get_olt_mac: out of order; expected no more requests\n");
  EXPECT_EQ(
      end(),
      "oltreplay: answered 3 requests; 1 not recorded, 3 out of order\n"
      "oltreplay: 3 of 3 recorded exchanges served\n"
      "oltreplay: 2 times: module 2 type 12 get_olt_mac: out of order; expected module 2 type "
      "13, exchange 2 of process 1\n");
}

TEST_F(ReplayTest, StrictNamesTheFieldsThatDiffer) {
  auto port = [](uint32_t number) { return record(80, {{0, word(1)}, {4, word(number)}}); };
  serve({{.type = 14, .request = port(1), .exchange = 1},
         {.type = 14, .request = port(2), .exchange = 2},
         {.type = 14, .request = port(3), .exchange = 3}},
        kStrict);
  EXPECT_EQ(ask(14, port(1)), status(0));
  EXPECT_EQ(ask(14, port(3)), status(kNotNext));
  EXPECT_EQ(
      errors(),
      "oltreplay: module 2 type 14 set_port_enable: out of order with port=3; expected port=2 "
      "as in exchange 2 of process 1234\n");
}

TEST_F(ReplayTest, StrictHoldsAcrossModulesAndConnections) {
  serve({one_of(1, 12, "a1", 1),
         {.type = 3, .reply = hex("a2"), .module = 22, .exchange = 2, .process = 1, .thread = 1},
         {.type = 5, .result = 0x00030000, .exchange = 3, .process = 1, .thread = 1},
         one_of(1, 13, "a4", 4)},
        kStrict);
  EXPECT_EQ(ask(3, {}, 22), status(kNotNext));
  EXPECT_EQ(ask(12), reply(hex("a1")));
  EXPECT_EQ(ask(3, {}, 22), reply(hex("a2")));
  EXPECT_EQ(ask(5), failure(0x00030000));
  EXPECT_EQ(ask(13), reply(hex("a4")));
  EXPECT_EQ(
      errors(),
      "oltreplay: module 22 type 3 show_memory_info: out of order; expected the first request "
      "of a recorded process that no other client follows\n");
}

TEST_F(ReplayTest, StrictSkipsRequestsThatWereNeverSent) {
  serve({one_of(1, 12, "a1", 1),
         {.type = 13, .result = 0x00020000, .exchange = 2, .process = 1, .thread = 1},
         {.type = 13, .result = 0x00060000, .exchange = 3, .process = 1, .thread = 1},
         one_of(1, 14, "a4", 4)},
        kStrict);
  EXPECT_EQ(ask(12), reply(hex("a1")));
  EXPECT_EQ(ask(14), reply(hex("a4")));
}

/// Two processes that begin alike, at the same time. The second one is served what was recorded of
/// the second as soon as its requests tell which one it is.
TEST_F(ReplayTest, StrictServesSeveralClientsEachTheirOwn) {
  serve({one_of(1, 12, "a1", 1), one_of(2, 12, "a1", 1), one_of(1, 13, "b1", 2),
         one_of(2, 14, "c1", 2), one_of(1, 15, "b2", 3), one_of(2, 15, "c2", 3)},
        kStrict);
  Meeting first;
  Meeting second;
  pid_t one = start_child([&] {
    bool fits = ask(12) == reply(hex("a1"));
    first.arrive();
    second.wait();
    return fits && ask(14) == reply(hex("c1")) && ask(15) == reply(hex("c2"));
  });
  EXPECT_TRUE(in_child([&] {
    first.wait();
    bool fits = ask(12) == reply(hex("a1"));
    second.arrive();
    return fits && ask(13) == reply(hex("b1")) && ask(15) == reply(hex("b2"));
  }));
  EXPECT_EQ(wait_for(one), 0);
  EXPECT_EQ(errors(), "");
  EXPECT_TRUE(
      end().starts_with("oltreplay: answered 6 requests; 0 not recorded, 0 out of order\n"
                        "oltreplay: 6 of 6 recorded exchanges served\n"));
}

TEST_F(ReplayTest, StrictServesARecordedProcessAgainWhenItsClientHasEnded) {
  serve({one_of(1, 12, "a1", 1), one_of(2, 12, "a2", 1), one_of(3, 13, "a3", 1)}, kStrict);
  auto client = [](uint32_t type, const char *expected) {
    return in_child([=] { return ask(type) == reply(hex(expected)); });
  };
  EXPECT_TRUE(client(12, "a1"));
  EXPECT_TRUE(client(12, "a2"));
  EXPECT_TRUE(client(13, "a3"));
  EXPECT_TRUE(client(12, "a1"));
  EXPECT_TRUE(client(12, "a2"));
  EXPECT_EQ(errors(), "");
}

/// Three threads that begin alike; each goes on in its own way.
TEST_F(ReplayTest, StrictServesTheThreadsOfAClient) {
  constexpr uint32_t kThreads = 3;
  std::vector<RecordedExchange> recorded;
  for (uint32_t step = 0; step < 20; ++step) {
    for (uint32_t thread = 0; thread < kThreads; ++thread) {
      recorded.push_back({.type = step == 0 ? 12 : 100 * thread + 200 + step,
                          .reply = step == 0 ? hex("aa") : word(100 * thread + step),
                          .exchange = static_cast<uint32_t>(recorded.size() + 1),
                          .thread = thread + 1});
    }
  }
  serve(recorded, kStrict);
  std::atomic<uint32_t> began{0};
  auto client = [&](uint32_t thread) {
    EXPECT_EQ(ask(12), reply(hex("aa")));
    ++began;
    while (began < kThreads) std::this_thread::yield();
    for (uint32_t step = 1; step < 20; ++step)
      EXPECT_EQ(ask(100 * thread + 200 + step), reply(word(100 * thread + step)));
  };
  std::vector<std::thread> threads;
  for (uint32_t thread = 0; thread < kThreads; ++thread) threads.emplace_back(client, 2 - thread);
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(errors(), "");
}

/// The first thread begins as the second one does; it is not what was recorded first.
TEST_F(ReplayTest, StrictTellsThreadsThatBeginAlikeApart) {
  auto of_thread = [](uint32_t thread, uint32_t type, const char *reply, uint32_t exchange) {
    return RecordedExchange{
        .type = type, .reply = hex(reply), .exchange = exchange, .thread = thread};
  };
  serve({of_thread(1, 12, "a1", 1), of_thread(1, 13, "a2", 2), of_thread(2, 12, "b1", 3),
         of_thread(2, 14, "b2", 4)},
        kStrict);
  EXPECT_EQ(ask(12), reply(hex("a1")));
  EXPECT_EQ(ask(14), reply(hex("b2")));
  EXPECT_EQ(ask(12), reply(hex("a1")));
  EXPECT_EQ(ask(13), reply(hex("a2")));
  EXPECT_EQ(errors(), "");
}

}  // namespace

}  // namespace olt::test
