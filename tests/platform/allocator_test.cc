// ___MALLOC and ___FREE. Each case runs in a child process: the debug mode is chosen once a
// process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>

#include "tests/platform/support.h"

namespace olt::test {

namespace {

ChildResult run_with_debug(const char *value, const std::function<void()> &body) {
  return run_in_child([&] {
    if (value != nullptr) {
      setenv("OLT_ALLOC_DEBUG", value, 1);
    } else {
      unsetenv("OLT_ALLOC_DEBUG");
    }
    body();
    return 0;
  });
}

void expect_lines(const ChildResult &child, const std::vector<std::string> &lines) {
  EXPECT_EQ(child.status, 0);
  size_t at = 0;
  for (const std::string &line : lines) {
    std::string rest = child.errors.substr(at, line.size() + 1);
    EXPECT_EQ(rest, line + "\n") << child.errors;
    at += line.size() + 1;
  }
  EXPECT_EQ(child.errors.size(), at) << child.errors;
}

void use_blocks() {
  for (uint32_t size : {1u, 15u, 16u, 17u, 147384u}) {
    auto *block = static_cast<uint8_t *>(___MALLOC(size, "add_user_level", 40));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t), 0u);
    std::memset(block, 0x5a, size);
    ___FREE(block, "add_user_level", 41);
  }
}

class EitherMode : public testing::TestWithParam<const char *> {};

TEST_P(EitherMode, GivesBlocksThatMayBeFilled) {
  expect_lines(run_with_debug(GetParam(), use_blocks), {});
}

TEST_P(EitherMode, BlocksBeginAsZerosEvenWhereOthersWereBefore) {
  expect_lines(run_with_debug(GetParam(),
                              [] {
                                for (int round = 0; round < 100; ++round) {
                                  auto *block = static_cast<uint8_t *>(___MALLOC(32, "a", 1));
                                  if (!std::all_of(block, block + 32,
                                                   [](uint8_t byte) { return byte == 0; })) {
                                    _exit(1);
                                  }
                                  std::memset(block, 0x5a, 32);
                                  ___FREE(block, "a", 2);
                                }
                              }),
               {});
}

TEST_P(EitherMode, ABlockOfSizeZeroIsUniqueAndReleased) {
  expect_lines(run_with_debug(GetParam(),
                              [] {
                                void *one = ___MALLOC(0, "a", 1);
                                void *two = ___MALLOC(0, "a", 2);
                                if (one == nullptr || two == nullptr || one == two) _exit(1);
                                ___FREE(one, "a", 3);
                                ___FREE(two, "a", 4);
                              }),
               {});
}

TEST_P(EitherMode, ReleasingNothingIsAllowed) {
  expect_lines(run_with_debug(GetParam(), [] { ___FREE(nullptr, "set_ont_fax", 1); }), {});
}

INSTANTIATE_TEST_SUITE_P(Modes, EitherMode, testing::Values("0", "1"));

TEST(Allocator, IsPlainWithoutTheSwitch) {
  expect_lines(run_with_debug(nullptr,
                              [] {
                                use_blocks();
                                ___FREE(___MALLOC(8, "one", 1), "other", 2);
                              }),
               {});
}

TEST(AllocatorDebug, ReportsAWrongTag) {
  expect_lines(
      run_with_debug("1", [] { ___FREE(___MALLOC(8, "add_user_level", 40), "other", 77); }),
      {"oltmgmt[3] other:77: released under another tag: 8 bytes allocated by \"add_user_level\" "
       "at line 40"});
}

TEST(AllocatorDebug, TakesEqualTagsAtOtherAddressesForTheSame) {
  expect_lines(run_with_debug("1",
                              [] {
                                std::string tag = "do_handle_epon_updatestream";
                                std::string same{tag.begin(), tag.end()};
                                ___FREE(___MALLOC(8, tag.c_str(), 1), same.c_str(), 2);
                              }),
               {});
}

TEST(AllocatorDebug, ReportsASecondRelease) {
  expect_lines(run_with_debug("1",
                              [] {
                                void *block = ___MALLOC(24, "t", 40);
                                ___FREE(block, "t", 41);
                                ___FREE(block, "t", 42);
                              }),
               {"oltmgmt[3] t:42: released a second time: 24 bytes allocated by \"t\" at line 40"});
}

TEST(AllocatorDebug, ReportsASecondReleaseAfterManyOtherBlocks) {
  ChildResult child = run_with_debug("1", [] {
    void *block = ___MALLOC(24, "t", 40);
    ___FREE(block, "t", 41);
    for (int i = 0; i < 1000; ++i) ___FREE(___MALLOC(24, "t", 50), "t", 51);
    ___FREE(block, "t", 42);
  });
  expect_lines(child,
               {"oltmgmt[3] t:42: released a second time: 24 bytes allocated by \"t\" at line 40"});
}

// A byte just outside, through a volatile pointer: the compiler knows the size of the block.
void write_at(void *block, ptrdiff_t offset) {
  volatile uint8_t *byte = static_cast<uint8_t *>(block);
  byte[offset] = 1;
}

TEST(AllocatorDebug, ReportsAnOverrun) {
  expect_lines(run_with_debug("1",
                              [] {
                                void *block = ___MALLOC(7, "t", 40);
                                write_at(block, 7);
                                ___FREE(block, "t", 41);
                              }),
               {"oltmgmt[3] t:41: bytes after the block were overwritten: 7 bytes allocated by "
                "\"t\" at line 40"});
}

TEST(AllocatorDebug, ReportsAnUnderrun) {
  expect_lines(run_with_debug("1",
                              [] {
                                void *block = ___MALLOC(7, "t", 40);
                                write_at(block, -1);
                                ___FREE(block, "t", 41);
                              }),
               {"oltmgmt[3] t:41: bytes before the block were overwritten: 7 bytes allocated by "
                "\"t\" at line 40"});
}

TEST(AllocatorDebug, ReportsABlockOfAnotherAllocator) {
  expect_lines(run_with_debug("1",
                              [] {
                                char own[64] = "";
                                ___FREE(own + 16, "t", 41);
                              }),
               {"oltmgmt[3] t:41: released a block that ___MALLOC did not give"});
}

TEST(AllocatorDebug, ReportsUnreleasedBlocksByTagAtExit) {
  expect_lines(run_with_debug("1",
                              [] {
                                ___MALLOC(100, "set_ont_port_downrate", 1);
                                ___MALLOC(24, "add_user_level", 2);
                                ___MALLOC(11, "set_ont_port_downrate", 3);
                                ___FREE(___MALLOC(5, "released", 4), "released", 5);
                              }),
               {"oltmgmt[3] add_user_level:0: never released: 1 blocks, 24 bytes",
                "oltmgmt[3] set_ont_port_downrate:0: never released: 2 blocks, 111 bytes"});
}

TEST(AllocatorDebug, SurvivesATagThatIsMissing) {
  expect_lines(run_with_debug("1", [] { ___FREE(___MALLOC(8, nullptr, 1), nullptr, 2); }), {});
}

size_t resident_bytes() {
  size_t pages = 0;
  std::ifstream file("/proc/self/statm");
  file >> pages >> pages;
  return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

// The bound leaves room for what a memory checker keeps back itself.
TEST(AllocatorDebug, KeepsBackABoundedAmountOfMemory) {
  ChildResult child = run_in_child([] {
    setenv("OLT_ALLOC_DEBUG", "1", 1);
    size_t before = resident_bytes();
    for (int i = 0; i < 400; ++i) ___FREE(___MALLOC(1024 * 1024, "big", 1), "big", 2);
    return resident_bytes() - before < 340u * 1024 * 1024 ? 0 : 1;
  });
  expect_lines(child, {});
}

TEST(AllocatorDebug, IsUsableFromManyThreads) {
  ChildResult child = run_with_debug("1", [] {
    std::vector<std::thread> threads;
    for (int id = 0; id < 8; ++id) {
      threads.emplace_back([] {
        for (int i = 0; i < 500; ++i) ___FREE(___MALLOC(static_cast<uint32_t>(i), "t", 1), "t", 2);
      });
    }
    for (std::thread &thread : threads) thread.join();
  });
  expect_lines(child, {});
}

TEST(AllocatorDebug, ABadSwitchIsReportedOnceAndIgnored) {
  ChildResult child = run_with_debug("yes", [] {
    ___FREE(___MALLOC(8, "one", 1), "other", 2);
    ___FREE(___MALLOC(8, "one", 1), "other", 2);
  });
  EXPECT_EQ(child.status, 0);
  EXPECT_NE(child.errors.find("OLT_ALLOC_DEBUG is \"yes\"; expected 0 or 1; using 0\n"),
            std::string::npos)
      << child.errors;
  EXPECT_EQ(std::count(child.errors.begin(), child.errors.end(), '\n'), 1) << child.errors;
}

}  // namespace
}  // namespace olt::test
