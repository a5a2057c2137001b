// The tagged allocator. Plain calloc, unless OLT_ALLOC_DEBUG asks for checks of every block.
// Blocks are zeroed: operations leave the rest of a text field, and its terminating zero, unset.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <unordered_map>

#include "platform/fork_safety.h"
#include "platform/log.h"
#include "platform/olthost.h"

namespace olt::platform {

namespace {

constexpr size_t kGuardSize = 16;
constexpr unsigned char kGuardByte = 0xb7;
constexpr unsigned char kReleasedByte = 0xdd;
// Released blocks are kept back, so that a second release is recognized.
constexpr size_t kMaxKeptBlocks = 4096;
constexpr size_t kMaxKeptBytes = size_t{8} * 1024 * 1024;

struct Block {
  std::string tag;
  int line;
  uint32_t size;
  bool released = false;
};

struct AllBlocks {
  std::unordered_map<const unsigned char *, Block> blocks;
  std::deque<unsigned char *> kept;
  size_t kept_bytes = 0;
};

constinit std::mutex blocks_lock;
[[maybe_unused]] const int blocks_registered = hold_across_fork<blocks_lock>();

// Never destroyed: blocks are released up to the very end of the process.
AllBlocks &all_blocks() {
  static AllBlocks &instance = *new AllBlocks;
  return instance;
}

const char *name(const char *tag) {
  return tag != nullptr ? tag : "?";
}

std::string describe(const Block &block) {
  return std::to_string(block.size) + " bytes allocated by \"" + block.tag + "\" at line " +
         std::to_string(block.line);
}

void report(const char *tag, int line, const std::string &message) {
  log_log(kErrorLevel, name(tag), line, message.c_str());
}

bool guard_intact(const unsigned char *guard) {
  return std::all_of(guard, guard + kGuardSize, [](unsigned char c) { return c == kGuardByte; });
}

void *allocate_watched(uint32_t size, const char *tag, int line) {
  size_t total = 0;
  if (__builtin_add_overflow(size, 2 * kGuardSize, &total)) return nullptr;
  auto *start = static_cast<unsigned char *>(std::calloc(1, total));
  if (start == nullptr) return nullptr;
  unsigned char *data = start + kGuardSize;
  std::memset(start, kGuardByte, kGuardSize);
  std::memset(data + size, kGuardByte, kGuardSize);
  try {
    std::lock_guard guard(blocks_lock);
    all_blocks().blocks[data] = {.tag = name(tag), .line = line, .size = size};
  } catch (const std::bad_alloc &) {
    std::free(start);
    return nullptr;
  }
  return data;
}

void keep_back(AllBlocks &all, unsigned char *data, Block &block) {
  std::memset(data, kReleasedByte, block.size);
  block.released = true;
  all.kept.push_back(data);
  all.kept_bytes += block.size;
  while (all.kept.size() > kMaxKeptBlocks || all.kept_bytes > kMaxKeptBytes) {
    unsigned char *oldest = all.kept.front();
    all.kept.pop_front();
    auto found = all.blocks.find(oldest);
    all.kept_bytes -= found->second.size;
    all.blocks.erase(found);
    std::free(oldest - kGuardSize);
  }
}

void release_watched(void *pointer, const char *tag, int line) {
  auto *data = static_cast<unsigned char *>(pointer);
  std::lock_guard guard(blocks_lock);
  AllBlocks &all = all_blocks();
  auto found = all.blocks.find(data);
  if (found == all.blocks.end()) {
    report(tag, line, "released a block that ___MALLOC did not give");
    return;
  }
  Block &block = found->second;
  if (block.released) {
    report(tag, line, "released a second time: " + describe(block));
    return;
  }
  if (block.tag != name(tag)) report(tag, line, "released under another tag: " + describe(block));
  if (!guard_intact(data - kGuardSize)) {
    report(tag, line, "bytes before the block were overwritten: " + describe(block));
  }
  if (!guard_intact(data + block.size)) {
    report(tag, line, "bytes after the block were overwritten: " + describe(block));
  }
  keep_back(all, data, block);
}

bool read_switch() {
  const char *value = environment("OLT_ALLOC_DEBUG");
  if (value == nullptr || std::strcmp(value, "0") == 0) return false;
  if (std::strcmp(value, "1") == 0) return true;
  std::string message =
      std::string("OLT_ALLOC_DEBUG is \"") + value + "\"; expected 0 or 1; using 0";
  log_log(kWarningLevel, "___MALLOC", __LINE__, message.c_str());
  return false;
}

enum class Mode { kUndecided, kPlain, kWatching };

std::atomic<Mode> mode{Mode::kUndecided};

// Decided by the first allocation; the lock keeps two threads from both deciding and warning.
bool watching() {
  Mode now = mode.load(std::memory_order_acquire);
  if (now == Mode::kUndecided) {
    std::lock_guard guard(blocks_lock);
    now = mode.load(std::memory_order_relaxed);
    if (now == Mode::kUndecided) {
      now = read_switch() ? Mode::kWatching : Mode::kPlain;
      mode.store(now, std::memory_order_release);
    }
  }
  return now == Mode::kWatching;
}

struct Unreleased {
  size_t count = 0;
  uint64_t bytes = 0;
};

// A destructor of the library: it runs after those of the programs and libraries that use it.
[[gnu::destructor]] void report_unreleased() {
  if (mode.load() != Mode::kWatching) return;
  std::lock_guard guard(blocks_lock);
  std::map<std::string, Unreleased> by_tag;
  for (const auto &[data, block] : all_blocks().blocks) {
    if (!block.released) {
      Unreleased &sum = by_tag[block.tag];
      ++sum.count;
      sum.bytes += block.size;
    }
  }
  for (const auto &[tag, sum] : by_tag) {
    report(tag.c_str(), 0,
           "never released: " + std::to_string(sum.count) + " blocks, " +
               std::to_string(sum.bytes) + " bytes");
  }
}

}  // namespace
}  // namespace olt::platform

void *___MALLOC(uint32_t size, const char *tag, int line) {
  using namespace olt::platform;
  if (watching()) return allocate_watched(size, tag, line);
  return std::calloc(1, std::max<uint32_t>(size, 1));
}

void ___FREE(void *block, const char *tag, int line) {
  using namespace olt::platform;
  if (block != nullptr && watching()) {
    release_watched(block, tag, line);
  } else {
    std::free(block);
  }
}
