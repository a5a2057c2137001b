// What a server's watcher is told.
#include <gtest/gtest.h>
#include <unistd.h>

#include <mutex>
#include <thread>
#include <vector>

#include "tests/platform/support.h"

namespace olt::test {

namespace {

using std::chrono::milliseconds;

struct Served {
  uint32_t module, type;
  Bytes request;
  uint32_t no_reply;
  uint32_t end;
  uint16_t status;
  Bytes reply;
  uint64_t began, elapsed;
  uint32_t process;
  uint64_t connection;
};

Bytes bytes_at(const void *begin, size_t length) {
  const auto *bytes = static_cast<const uint8_t *>(begin);
  return {bytes, bytes + length};
}

class Watched : public testing::Test {
 protected:
  /// What was told so far, after at least that many exchanges or two seconds.
  std::vector<Served> served(size_t count) {
    std::unique_lock guard(lock_);
    for (int i = 0; i < 200 && served_.size() < count; ++i) {
      guard.unlock();
      std::this_thread::sleep_for(milliseconds(10));
      guard.lock();
    }
    return served_;
  }

  static void note(void *context, const olt_served_exchange *exchange) {
    auto *test = static_cast<Watched *>(context);
    std::lock_guard guard(test->lock_);
    test->served_.push_back({exchange->module, exchange->message_type,
                             bytes_at(exchange->request, exchange->request_length),
                             exchange->no_reply, static_cast<uint32_t>(exchange->end),
                             exchange->status, bytes_at(exchange->reply, exchange->reply_length),
                             exchange->began_ns, exchange->elapsed_ns, exchange->process,
                             exchange->connection});
  }

  std::mutex lock_;
  std::vector<Served> served_;
  TemporaryRunDir dir_;
  ServerThread server_{
      {.run_dir = dir_.path().c_str(), .stall_ms = 150, .modules = {2, 18}, .before_run = [this] {
         olt_server_watch(server_.server(), note, this);
       }}};
};

TEST_F(Watched, AnswersHaveBothRecordsTheProcessAndTheConnection) {
  auto now = std::chrono::system_clock::now().time_since_epoch();
  EXPECT_EQ(exchange_bytes(2, kEcho, text("first")), text("first"));
  EXPECT_EQ(exchange_bytes(18, kEcho, text("second")), text("second"));
  RawClient client(dir_.socket(2));
  ASSERT_TRUE(client.send(request_frame(2, kStatus, word(5))));
  client.receive(22);
  std::vector<Served> all = served(3);
  ASSERT_EQ(3u, all.size());
  EXPECT_EQ(2u, all[0].module);
  EXPECT_EQ(1u, all[0].type);
  EXPECT_EQ(text("first"), all[0].request);
  EXPECT_EQ(0u, all[0].no_reply);
  EXPECT_EQ(0u, all[0].end);
  EXPECT_EQ(0u, all[0].status);
  EXPECT_EQ(text("first"), all[0].reply);
  EXPECT_GE(all[0].began, static_cast<uint64_t>(std::chrono::nanoseconds(now).count()));
  EXPECT_LT(all[0].elapsed, 2'000'000'000u);
  EXPECT_EQ(static_cast<uint32_t>(getpid()), all[0].process);
  EXPECT_EQ(18u, all[1].module);
  EXPECT_EQ(text("second"), all[1].reply);
  EXPECT_NE(all[0].connection, all[1].connection);
  EXPECT_EQ(5u, all[2].status);
}

TEST_F(Watched, ARequestBehindADelayedOneIsToldAfterIt) {
  RawClient client(dir_.socket(2));
  Bytes both = request_frame(1, kDelayedEcho, word(100));
  Bytes second = request_frame(2, kEcho, text("second"));
  both.insert(both.end(), second.begin(), second.end());
  ASSERT_TRUE(client.send(both));
  EXPECT_EQ(client.receive(42), hex("4f4c4131 01000000 0000 0000 04000000 64000000"
                                    "4f4c4131 02000000 0000 0000 06000000 7365636f6e64"));
  std::vector<Served> all = served(2);
  ASSERT_EQ(2u, all.size());
  EXPECT_EQ(word(100), all[0].request);
  EXPECT_EQ(word(100), all[0].reply);
  EXPECT_GE(all[0].elapsed, 100'000'000u);
  EXPECT_EQ(text("second"), all[1].request);
  EXPECT_EQ(all[0].connection, all[1].connection);
}

TEST_F(Watched, ALongAnswerThatIsReadSlowlyIsWhole) {
  RawClient client(dir_.socket(2));
  Bytes requests;
  for (uint32_t i = 0; i < 16; ++i) {
    Bytes frame = request_frame(i, kPattern, word(65535));
    requests.insert(requests.end(), frame.begin(), frame.end());
  }
  ASSERT_TRUE(client.send(requests));
  for (uint32_t i = 0; i < 16; ++i) ASSERT_EQ(65551u, client.receive(65551).size());
  std::vector<Served> all = served(16);
  ASSERT_EQ(16u, all.size());
  for (const Served &one : all) {
    EXPECT_EQ(word(65535), one.request);
    EXPECT_EQ(pattern(65535, 6), one.reply);
  }
}

TEST_F(Watched, ExchangesThatFailAreToldWithTheirEnd) {
  RawClient silent(dir_.socket(2));
  ASSERT_TRUE(silent.send(request_frame(1, kSilence, text("a"))));
  EXPECT_EQ(1u, served(1).back().end);
  RawClient hung_up(dir_.socket(2));
  ASSERT_TRUE(hung_up.send(request_frame(1, kHangUp, word(20))));
  EXPECT_TRUE(hung_up.is_closed());
  EXPECT_EQ(2u, served(2).back().end);
  RawClient gone(dir_.socket(2));
  ASSERT_TRUE(gone.send(request_frame(1, kDelayedEcho, word(60000))));
  std::this_thread::sleep_for(milliseconds(50));
  gone.close();
  EXPECT_EQ(3u, served(3).back().end);
  EXPECT_EQ(word(60000), served(3).back().request);
  EXPECT_EQ(Bytes(), served(3).back().reply);
  RawClient failing(dir_.socket(2));
  ASSERT_TRUE(failing.send(request_frame(1, kThrow, {})));
  failing.receive(16);
  EXPECT_EQ(0u, served(4).back().end);
  EXPECT_EQ(0xFFFFu, served(4).back().status);
  RawClient half(dir_.socket(2));
  ASSERT_TRUE(half.send(hex("4f4c5131 01000000 01000000 00000000 0a000000 61")));
  half.close();
  EXPECT_TRUE(server_.reaches(&olt_server_counters::vanished_clients, 2));
  EXPECT_EQ(4u, served(4).size()) << "half a request is no exchange";
}

TEST_F(Watched, ARequestWithoutAReplyHasNone) {
  RawClient client(dir_.socket(2));
  ASSERT_TRUE(client.send(hex("4f4c5131 01000000 01000000 01000000 03000000 616263")));
  EXPECT_EQ(client.receive(16), hex("4f4c4131 01000000 0000 0000 00000000"));
  std::vector<Served> all = served(1);
  ASSERT_EQ(1u, all.size());
  EXPECT_EQ(1u, all[0].no_reply);
  EXPECT_EQ(text("abc"), all[0].request);
  EXPECT_EQ(Bytes(), all[0].reply);
}

}  // namespace

}  // namespace olt::test
