// What a module may answer to platmsg_syn_result. Result, reply and the caller's memory are
// compared with a plain model of the protocol.
#include <sys/random.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

#include "base/descriptor.h"
#include "fuzz/target.h"
#include "platform/olthost.h"
#include "tests/support/bytes.h"

// Replaces the platform's own, which would write to standard error.
void log_log(int /*level*/, const char *tag, int /*line*/, const char *message) {
  olt::fuzz::require_line(tag);
  olt::fuzz::require_line(message);
}

// Sequence numbers then start at the same value each time.
extern "C" ssize_t getrandom(void *buffer, size_t length, unsigned /*flags*/) {
  std::memset(buffer, 0, length);
  return static_cast<ssize_t>(length);
}

namespace {

using olt::fuzz::Input;
using olt::fuzz::require;
using olt::test::Bytes;
using olt::test::word_at;
using View = std::span<const uint8_t>;

constexpr size_t kHeader = 16;
/// The client reads this many bytes at once, and so notices bytes after the answer among them.
constexpr size_t kFirstPiece = kHeader + 4096;
constexpr uint32_t kTimeout = 5;
constexpr unsigned kExchanges = 3;
constexpr uint32_t kFirstSequence = 1;

/// A module that answers before it is asked. The client drops a connection that has brought
/// unrequested bytes or is closed, so each exchange has its own.
class Module {
 public:
  Module() { olt_connect_through(connect, this); }
  Module(const Module &) = delete;
  Module &operator=(const Module &) = delete;
  ~Module() { olt_connect_through(nullptr, nullptr); }

  /// What the next connection brings; nothing refuses it.
  void offer(std::optional<View> answers) { answers_ = answers; }

 private:
  static int connect(void *context, uint32_t /*module*/) {
    auto *module = static_cast<Module *>(context);
    errno = ECONNREFUSED;
    return module->answers_ ? module->connection_with(*module->answers_) : -1;
  }

  int connection_with(View answers) {
    std::array<int, 2> ends{};
    require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0,
            "sockets can be created");
    require(answers.empty() || send(ends[1], answers.data(), answers.size(), MSG_DONTWAIT) ==
                                   static_cast<ssize_t>(answers.size()),
            "the answers fit into the socket");
    shutdown(ends[1], SHUT_WR);
    own_ends_.emplace_back(ends[1]);
    return ends[0];
  }

  std::optional<View> answers_;
  std::vector<olt::Descriptor> own_ends_;  ///< requests must have somewhere to go
};

class Model {
 public:
  explicit Model(View answers) : left_(answers) {}

  int32_t exchange(bool no_reply) {
    if (closed_) return OLT_TRANSPORT_NO_MODULE;
    int32_t result = receive(no_reply);
    closed_ = result != OLT_TRANSPORT_OK;
    return result;
  }

  /// What the next connection brings.
  std::optional<View> offered() const { return closed_ ? std::nullopt : std::optional(left_); }
  uint16_t status() const { return status_; }
  View reply() const { return reply_; }

 private:
  int32_t receive(bool no_reply) {
    if (left_.size() < kHeader) return OLT_TRANSPORT_LOST;
    const uint32_t status_and_kind = word_at(left_, 8);
    const uint32_t kind = status_and_kind >> 16;
    const uint32_t length = word_at(left_, 12);
    if (std::memcmp(left_.data(), "OLA1", 4) != 0 || kind > 1 || length > OLT_REPLY_LIMIT) {
      return OLT_TRANSPORT_GARBLED;
    }
    if (kind == 1) return OLT_TRANSPORT_REFUSED;
    size_t after = std::min(left_.size(), kFirstPiece) - kHeader;
    if (word_at(left_, 4) != kFirstSequence || after > length || (no_reply && length > 0)) {
      return OLT_TRANSPORT_GARBLED;
    }
    if (left_.size() - kHeader < length) return OLT_TRANSPORT_LOST;
    status_ = static_cast<uint16_t>(status_and_kind);
    reply_ = left_.subspan(kHeader, length);
    left_ = left_.subspan(kHeader + length);
    return OLT_TRANSPORT_OK;
  }

  View left_;
  uint16_t status_ = 0;
  View reply_;
  bool closed_ = false;
};

struct Outputs {
  static constexpr uint16_t kUntouched = 0xA5A5;

  uint16_t status = kUntouched;
  uint16_t length = kUntouched;
  uint32_t handle = kUntouched;
  void *reply = &handle;

  bool are_untouched() const {
    return reply == &handle && length == kUntouched && handle == kUntouched;
  }
};

void check_reply(const Outputs &outputs, const Model &model) {
  if (model.status() != 0) {
    require(outputs.reply == nullptr && outputs.length == 0 && outputs.handle == 0,
            "a refused request brings no reply");
    return;
  }
  View reply = model.reply();
  const auto *bytes = static_cast<const uint8_t *>(outputs.reply);
  require(outputs.handle != 0, "a reply has a handle");
  require(outputs.length == reply.size() && std::equal(reply.begin(), reply.end(), bytes),
          "a reply arrives as it was sent");
  size_t room = std::max<size_t>(reply.size() + 1, 256);
  require(std::all_of(bytes + reply.size(), bytes + room, [](uint8_t byte) { return byte == 0; }),
          "zeros follow a reply");
  IPC_Free(outputs.handle);
}

void exchange(Module &module, Model &model, bool no_reply) {
  module.offer(model.offered());
  Outputs outputs;
  char request[] = "request";
  int32_t result =
      platmsg_syn_result(1, 2, request, sizeof request, &outputs.reply, &outputs.length,
                         &outputs.handle, &outputs.status, no_reply ? 1 : 0, kTimeout);
  require(result == model.exchange(no_reply), "the result tells what became of the exchange",
          olt_transport_text(result));
  if (result != OLT_TRANSPORT_OK) {
    require(outputs.are_untouched() && outputs.status == Outputs::kUntouched,
            "a failed exchange writes nothing");
    return;
  }
  require(outputs.status == model.status(), "the status is that of the answer");
  if (no_reply) {
    require(outputs.are_untouched(), "where only the status is wanted, only it is written");
  } else {
    check_reply(outputs, model);
  }
}

}  // namespace

// The first byte says, bit by bit, which exchanges want only the status. Then comes how many times
// the last byte of the answers is repeated, in two bytes, and the answers.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input input(data, size);
  unsigned no_reply = input.u8();
  size_t repeated = input.u16();
  View rest = input.rest();
  Bytes answers(rest.begin(), rest.end());
  if (!answers.empty()) answers.resize(answers.size() + repeated, answers.back());
  Module module;
  Model model(answers);
  for (unsigned i = 0; i < kExchanges; ++i) exchange(module, model, (no_reply >> i & 1) != 0);
  return 0;
}
