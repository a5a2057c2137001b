// Requests of every type and length to the simulated box, one after the other on one box.
#include <algorithm>
#include <initializer_list>
#include <vector>

#include "fuzz/small_box.h"
#include "fuzz/target.h"

namespace {

using olt::box::Answer;
using olt::fuzz::Input;
using olt::fuzz::message_rows;
using olt::fuzz::MessageRow;
using olt::fuzz::SmallBox;
using Bytes = std::vector<uint8_t>;

constexpr size_t kMaxOperations = 64;
constexpr size_t kLongestRequest = 4096;
constexpr std::chrono::seconds kStep{7};

/// How a request is composed, in the bits of a byte.
enum Composition : uint8_t {
  kMinLength = 0,
  kMoreThanLeast = 1,
  kMaxLength = 2,
  kAnyLength = 3,
  kPatches = 4,        ///< words at offsets, instead of bytes from the start
  kFromLastReply = 8,  ///< over the last reply instead of over zeros
};

class Sequence {
 public:
  explicit Sequence(Input input) : input_(input) {}

  void run() {
    bool persists = (input_.u8() & 1) != 0;
    for (size_t i = 0; i < kMaxOperations && !input_.empty(); ++i) step();
    box_.require_counters();
    if (persists) box_.require_persistence();
    SmallBox::require_listings();
  }

 private:
  void step() {
    uint32_t type = input_.u8();
    uint8_t how = input_.u8();
    if (type != 0) return ask(type, how);
    if (how == UINT8_MAX) return box_.restart();
    box_.advance(kStep * how);
  }

  void ask(uint32_t type, uint8_t how) {
    MessageRow row = row_of(type, how >> 6);
    Bytes request = (how & kFromLastReply) != 0 ? last_reply_ : Bytes();
    request.resize(length(row, how));
    fill(request, (how & kPatches) != 0);
    Answer answer = box_.ask(row.module, row.type, request);
    if (answer.status == 0) last_reply_ = std::move(answer.reply);
  }

  /// One of the modules that serve the type; the main module for a type that none serves.
  static MessageRow row_of(uint32_t type, size_t which) {
    std::vector<const MessageRow *> rows;
    for (const MessageRow &row : message_rows()) {
      if (row.type == type) rows.push_back(&row);
    }
    if (rows.empty()) return {olt::box::kMainModule, type, "", {0, 0}};
    return *rows[which % rows.size()];
  }

  size_t length(const MessageRow &row, uint8_t how) {
    switch (how & kAnyLength) {
      case kMinLength:
        return row.request.min;
      case kMoreThanLeast:
        return row.request.min + input_.u8();
      case kMaxLength:
        return std::min(row.request.max, kLongestRequest);
      default:
        return std::min<size_t>(input_.u16(), kLongestRequest);
    }
  }

  void fill(Bytes &request, bool patches) {
    size_t count = input_.u8();
    if (!patches) {
      std::span<const uint8_t> bytes = input_.bytes(std::min(count, request.size()));
      std::copy(bytes.begin(), bytes.end(), request.begin());
      return;
    }
    for (; count > 0 && !input_.empty(); --count) {
      size_t offset = input_.u8();
      uint8_t value = input_.u8();
      if (offset < request.size()) request[offset] = value;
    }
  }

  Input input_;
  SmallBox box_;
  Bytes last_reply_;
};

/// Every message at every length near its limits, with the same byte everywhere.
void sweep() {
  constexpr size_t kNear = 12;
  for (uint8_t byte : std::initializer_list<uint8_t>{0x00, 0x01, 0xFF}) {
    SmallBox box;
    for (const MessageRow &row : message_rows()) {
      auto [min, max] = row.request;
      for (size_t length = 0; length <= max + 1; ++length) {
        if (length > 1 && length + kNear < min) length = min - kNear;
        if (length > min + kNear && length + kNear < max) length = max - kNear;
        box.ask(row.module, row.type, Bytes(length, byte));
      }
    }
    box.require_counters();
    box.require_persistence();
    SmallBox::require_listings();
  }
}

}  // namespace

// The first byte says whether the box is to be saved and restarted at the end. Operations
// follow: a message type (0: time passes, or a restart), a composition, and what it asks for.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const bool swept = (sweep(), true);
  static_cast<void>(swept);
  Sequence(Input(data, size)).run();
  return 0;
}
