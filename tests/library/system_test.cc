// Tests of the system operations that rows cannot express.
#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <string_view>
#include <thread>

#include "oltmgmt.h"
#include "oltplatform.h"
#include "tests/library/exchange_bytes.h"
#include "tests/library/guarded_memory.h"

namespace olt::test {

namespace {

std::string text_at(const Bytes &bytes, size_t offset, size_t size) {
  return characters(slice(bytes, offset, offset + size));
}

constexpr char kText31[] = "abcdefghijklmnopqrstuvwxyz01234";
constexpr std::string_view kField31("abcdefghijklmnopqrstuvwxyz01234\0", 32);

TEST(UserNames, AreSentWholeUpTo31Bytes) {
  ScriptedPlatform platform;
  uint32_t level_a = 0;
  uint32_t level_b = 0;
  const Bytes reply(80);
  platform.answer(answer_with(reply));
  EXPECT_EQ(get_user_level(kText31, kText31, &level_a, &level_b), 0);
  EXPECT_EQ(text_at(request_of(platform.event(0)), 8, 32), kField31);
  EXPECT_EQ(text_at(request_of(platform.event(0)), 40, 32), kField31);
}

TEST(UserNames, AreCutTo31BytesAndAZero) {
  for (const std::string &tail : {std::string("5"), std::string(200, 'x')}) {
    const std::string name = kText31 + tail;
    ScriptedPlatform platform;
    EXPECT_EQ(add_user_level(name.c_str(), name.c_str(), 1, 2), 0);
    EXPECT_EQ(delete_user_level(name.c_str()), 0);
    const Bytes add = request_of(platform.event(0));
    const Bytes remove = request_of(platform.event(1));
    EXPECT_EQ(text_at(add, 8, 32), kField31);
    EXPECT_EQ(text_at(add, 40, 32), kField31);
    EXPECT_EQ(text_at(add, 72, 8), std::string("\1\0\0\0\2\0\0\0", 8));
    EXPECT_EQ(text_at(remove, 8, 32), kField31);
    EXPECT_EQ(text_at(remove, 40, 40), std::string(40, '\0'));
  }
}

TEST(UserNames, OfLookUpsAreCutTo31BytesAndAZero) {
  ScriptedPlatform platform;
  platform.answer({.status = 1});
  uint32_t levels[2] = {};
  const std::string name = std::string(kText31) + "5";
  EXPECT_EQ(get_user_level(name.c_str(), name.c_str(), &levels[0], &levels[1]), 1);
  EXPECT_EQ(text_at(request_of(platform.event(0)), 8, 32), kField31);
  EXPECT_EQ(text_at(request_of(platform.event(0)), 40, 32), kField31);
}

TEST(UserNames, MayBeEmpty) {
  ScriptedPlatform platform;
  EXPECT_EQ(add_user_level("", "", 0, 0), 0);
  EXPECT_EQ(request_of(platform.event(0)), record(80, {{0, word(1)}}));
}

/// A caller's user record and the memory after it.
class UserReply : public testing::TestWithParam<int32_t (*)(olt_user *)> {
 protected:
  static constexpr uint8_t kOld = 0xAA;

  UserReply() {
    memory_.place(120, 4);
    memset(memory_.data(), kOld, 120);
    for (size_t i = 0; i != reply_.size(); ++i) reply_[i] = static_cast<uint8_t>(0x80 + i % 0x40);
  }

  void end_text_at(size_t offset) { reply_[offset] = 0; }

  void ask() {
    ScriptedPlatform platform;
    platform.answer(answer_with(reply_));
    EXPECT_EQ(GetParam()(reinterpret_cast<olt_user *>(memory_.data())), 0);
    EXPECT_EQ(platform.event_count(), 2u);
    EXPECT_TRUE(memory_.intact());
  }

  static bool fills_index() { return GetParam() == get_system_next_user; }

  /// The caller's memory if it got bytes first to last of the reply, and the levels.
  Bytes expected(size_t first, size_t last) const {
    Bytes bytes(120, kOld);
    for (size_t i = first; i <= last; ++i) bytes[i] = reply_[i];
    for (size_t i = 72; i != 80; ++i) bytes[i] = reply_[i];
    for (size_t i = 0; i != 4 && fills_index(); ++i) {
      bytes[i] = 0;
      bytes[4 + i] = reply_[4 + i];
    }
    return bytes;
  }

  Bytes memory() const { return {memory_.data(), memory_.data() + 120}; }

  Bytes reply_ = Bytes(120);

 private:
  GuardedMemory memory_;
};

TEST_P(UserReply, NameOverrunsThePassword) {
  end_text_at(50);
  ask();
  EXPECT_EQ(memory(), expected(8, 50));
}

TEST_P(UserReply, NameOf32BytesEndsInThePassword) {
  end_text_at(40);
  ask();
  EXPECT_EQ(memory(), expected(8, 40));
}

TEST_P(UserReply, PasswordOverrunsTheLevels) {
  end_text_at(20);
  end_text_at(74);
  ask();
  Bytes expected_memory = expected(8, 20);
  for (size_t i = 40; i != 75; ++i) expected_memory[i] = reply_[i];
  EXPECT_EQ(memory(), expected_memory);
}

TEST_P(UserReply, TextsOverrunTheWholeRecord) {
  end_text_at(100);
  ask();
  EXPECT_EQ(memory(), expected(8, 100));
}

INSTANTIATE_TEST_SUITE_P(System, UserReply,
                         testing::Values(&get_system_next_user, &get_system_user_byindex),
                         [](const auto &reader) {
                           return reader.param == get_system_next_user ? "next" : "byindex";
                         });

TEST(UserList, IsWalkedWithTheRecordOfThePreviousReply) {
  ScriptedPlatform platform;
  const Bytes first = record(80, {{4, word(1)}, {8, text("a")}, {40, text("b")}});
  const Bytes second = record(80, {{4, word(2)}, {8, text("c")}});
  platform.answer(answer_with(first));
  platform.answer(answer_with(second));
  platform.answer({.status = 9});
  olt_user user = {};
  EXPECT_EQ(get_system_next_user(&user), 0);
  EXPECT_EQ(get_system_next_user(&user), 0);
  EXPECT_EQ(get_system_next_user(&user), 9);
  EXPECT_EQ(request_of(platform.event(2)), first);
  EXPECT_EQ(request_of(platform.event(4)), second);
}

TEST(DebugModule, IsTheLowByteOfItsNumber) {
  ScriptedPlatform platform;
  char name[32];
  const Bytes reply(32);
  platform.answer(answer_with(reply));
  EXPECT_EQ(set_debug_enable(0x112, 1), 0);
  EXPECT_EQ(set_debug_enable(0xFFFFFFFF, 1), 0);
  EXPECT_EQ(set_debug_enable(0x100, 1), 0);
  EXPECT_EQ(show_memory_info(0xABCDEF12, name), 0);
  EXPECT_EQ(platform.event(0).module, 0x12u);
  EXPECT_EQ(platform.event(1).module, 0xFFu);
  EXPECT_EQ(platform.event(2).module, 0u);
  EXPECT_EQ(platform.event(3).module, 0x12u);
}

TEST(ListingName, NeedsNoZero) {
  ScriptedPlatform platform;
  const Bytes reply(80, 'n');
  platform.answer(answer_with(reply));
  GuardedMemory name;
  name.place(32, 1);
  EXPECT_EQ(show_running_configuration_file(reinterpret_cast<char *>(name.data())), 0);
  EXPECT_EQ(std::string(32, 'n'), std::string(name.data(), name.data() + 32));
  EXPECT_TRUE(name.intact());
}

using Stream = int32_t (*)(const void *, uint32_t, void **, uint32_t *);

class UpdateStream : public testing::TestWithParam<Stream> {};

TEST_P(UpdateStream, SendsRequestsOfAnyLengthWithoutCopyingThem) {
  for (uint32_t length : {0u, 1u, 65'535u, 65'536u, 1'048'576u}) {
    GuardedMemory request;
    request.place(length, 1);
    const Bytes before = scattered(length);
    if (length != 0) memcpy(request.data(), before.data(), length);

    ScriptedPlatform platform;
    const Bytes reply = {1, 2, 3};
    platform.answer(answer_with(reply));
    void *answer = nullptr;
    uint32_t answer_length = 0;
    EXPECT_EQ(GetParam()(request.data(), length, &answer, &answer_length), 0);
    EXPECT_EQ(platform.event(0).request, request.data());
    EXPECT_TRUE(request_of(platform.event(0)) == before) << length;
    EXPECT_TRUE(request.intact());
    EXPECT_TRUE(Bytes(request.data(), request.data() + length) == before) << length;
    EXPECT_EQ(answer_length, 3u);
    EXPECT_EQ(memcmp(answer, "\1\2\3", 3), 0);
  }
}

TEST_P(UpdateStream, ReturnsTheShortestAndTheLongestAnswer) {
  for (uint32_t length : {1u, 65'535u}) {
    const Bytes reply = scattered(length);
    ScriptedPlatform platform;
    platform.answer(answer_with(reply));
    void *answer = nullptr;
    uint32_t answer_length = 0;
    EXPECT_EQ(GetParam()("x", 1, &answer, &answer_length), 0);
    EXPECT_EQ(answer_length, length);
    EXPECT_EQ(platform.event(1).size, length);
    EXPECT_EQ(memcmp(answer, reply.data(), reply.size()), 0);
  }
}

TEST_P(UpdateStream, WritesTheLengthBeforeItAllocatesTheAnswer) {
  ScriptedPlatform platform;
  const Bytes reply(200, 1);
  platform.answer(answer_with(reply));
  void *answer = nullptr;
  alignas(void *) uint32_t overwritten[sizeof answer / sizeof(uint32_t)] = {};
  EXPECT_EQ(GetParam()("x", 1, reinterpret_cast<void **>(overwritten), overwritten), 0);
  memcpy(&answer, overwritten, sizeof answer);
  EXPECT_EQ(answer, platform.event(1).block);
}

INSTANTIATE_TEST_SUITE_P(System, UpdateStream,
                         testing::Values(&do_handle_epon_updatestream,
                                         &do_handle_epon_updatestream_onu),
                         [](const auto &stream) {
                           return stream.param == do_handle_epon_updatestream ? "olt" : "onu";
                         });

/// Calls repeatedly with bytes that only this thread uses.
void keep_calling(uint8_t mine, bool *went_well) {
  *went_well = true;
  for (int i = 0; i != 100; ++i) {
    ScriptedPlatform platform;
    const Bytes network(172, mine);
    const Bytes user(80, static_cast<uint8_t>(mine + i % 10));
    Bytes ended = user;
    ended[20] = ended[50] = 0;
    platform.answer(answer_with(network));
    platform.answer(answer_with(ended));
    platform.answer(answer_with(user));

    olt_system_network read = {};
    olt_user next = {};
    void *answer = nullptr;
    uint32_t answer_length = 0;
    bool good = get_system_network(&read) == 0 && get_system_next_user(&next) == 0 &&
                do_handle_epon_updatestream(&read, 172, &answer, &answer_length) == 0;
    good = good && memcmp(read.bytes, network.data(), 172) == 0 &&
           memcmp(next.user_name, ended.data() + 8, 13) == 0 && answer_length == 80 &&
           memcmp(answer, user.data(), 80) == 0 && request_of(platform.event(4)) == network;
    *went_well = *went_well && good;
  }
}

TEST(Threads, CallConcurrentlyWithoutInterference) {
  bool went_well[2] = {};
  std::thread other(keep_calling, uint8_t{0x51}, &went_well[0]);
  keep_calling(0xA2, &went_well[1]);
  other.join();
  EXPECT_TRUE(went_well[0]);
  EXPECT_TRUE(went_well[1]);
}

}  // namespace

}  // namespace olt::test
