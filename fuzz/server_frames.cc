// What a client may send to the server of modules, in pieces of any length. The answers, the
// counters and the events are compared with a plain model of the protocol.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <numeric>
#include <vector>

#include "base/text.h"
#include "fuzz/target.h"
#include "platform/olthost.h"
#include "tests/support/bytes.h"

namespace {

using olt::fuzz::Input;
using olt::fuzz::require;
using olt::fuzz::require_line;
using olt::test::Bytes;
using olt::test::word_at;
using View = std::span<const uint8_t>;

constexpr uint32_t kModule = 7;
constexpr std::array<uint8_t, 4> kRequestMagic = {'O', 'L', 'Q', '1'};
constexpr std::array<uint8_t, 4> kAnswerMagic = {'O', 'L', 'A', '1'};
constexpr size_t kHeader = 20;

/// What the handler does with a request follows from its message type.
struct Orders {
  explicit Orders(uint32_t type)
      : action(static_cast<uint8_t>(type)), reply_length((type >> 16) + (type >> 31)) {}

  /// Whatever the action: a reply that is too long makes the request fail.
  bool fails() const { return reply_length > OLT_REPLY_LIMIT; }
  bool withholds() const { return action == 0xFE; }
  bool disconnects() const { return action == 0xFD; }
  bool delays() const { return action == 0xFC; }

  uint8_t action;
  uint32_t reply_length;  ///< up to one byte more than may be sent
};

/// At most one byte more than may be sent.
View reply_of(uint32_t length) {
  static const Bytes pattern = [] {
    Bytes bytes(OLT_REPLY_LIMIT + 1);
    std::iota(bytes.begin(), bytes.end(), uint8_t{1});
    return bytes;
  }();
  return View(pattern).first(length);
}

/// So that a request that arrives damaged changes the answer.
uint16_t status_of(uint32_t type, View record) {
  return static_cast<uint16_t>(std::accumulate(record.begin(), record.end(), type & 0xFFFF));
}

void handle(void * /*context*/, const olt_request *request, olt_answer *answer) {
  require(request->module == kModule, "a request comes to its module");
  Orders orders(request->message_type);
  answer->status = status_of(request->message_type,
                             {static_cast<const uint8_t *>(request->data), request->length});
  answer->reply = reply_of(orders.reply_length).data();
  answer->reply_length = orders.reply_length;
  if (orders.withholds()) answer->action = OLT_ANSWER_WITHHOLD;
  if (orders.disconnects()) answer->action = OLT_ANSWER_DISCONNECT;
  if (orders.delays()) answer->delay_ms = 1;
}

template <typename Value>
void append(Bytes &bytes, Value value) {
  const auto *from = reinterpret_cast<const uint8_t *>(&value);
  bytes.insert(bytes.end(), from, from + sizeof value);
}

/// How a connection comes to its end.
struct Ending {
  uint64_t broken = 0;
  uint64_t least_vanished = 0;
  uint64_t most_vanished = 0;
};

class Model {
 public:
  explicit Model(View stream) { walk(stream); }

  const Bytes &answers() const { return answers_; }
  uint64_t exchanges() const { return exchanges_; }
  const Ending &ending() const { return ending_; }

 private:
  void walk(View stream) {
    while (!stream.empty()) {
      size_t magic = std::min(stream.size(), kRequestMagic.size());
      if (!std::equal(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(magic),
                      kRequestMagic.begin())) {
        ending_ = {.broken = 1};
        return;
      }
      if (stream.size() < kHeader) break;
      uint32_t length = word_at(stream, 16);
      if (word_at(stream, 12) > 1 || length > OLT_REQUEST_LIMIT) {
        ending_ = {.broken = 1};
        return;
      }
      if (stream.size() - kHeader < length) break;
      if (!take(stream.first(kHeader + length))) return;
      stream = stream.subspan(kHeader + length);
    }
    uint64_t vanished = owes_ || !stream.empty() ? 1 : 0;
    ending_ = {.least_vanished = vanished, .most_vanished = vanished};
  }

  /// @return whether the connection goes on
  bool take(View frame) {
    uint32_t type = word_at(frame, 8);
    Orders orders(type);
    if (orders.withholds() && !orders.fails()) {
      owes_ = true;
      return true;
    }
    if (orders.disconnects() && !orders.fails()) {
      // A client that has left may be noticed before the connection is closed.
      ending_ = {.most_vanished = 1};
      return false;
    }
    owes_ = false;
    ++exchanges_;
    answer(frame, orders);
    return true;
  }

  void answer(View frame, const Orders &orders) {
    bool no_reply = orders.fails() || word_at(frame, 12) == 1;
    uint32_t length = no_reply ? 0 : orders.reply_length;
    uint16_t status =
        orders.fails() ? 0xFFFF : status_of(word_at(frame, 8), frame.subspan(kHeader));
    answers_.insert(answers_.end(), kAnswerMagic.begin(), kAnswerMagic.end());
    append(answers_, word_at(frame, 4));
    append(answers_, status);
    append(answers_, uint16_t{0});
    append(answers_, length);
    View reply = reply_of(length);
    answers_.insert(answers_.end(), reply.begin(), reply.end());
  }

  Bytes answers_;
  Ending ending_;
  uint64_t exchanges_ = 0;
  bool owes_ = false;
};

olt_server *server() {
  static olt_server *instance = [] {
    olt_server_options options{};
    options.on_event = [](void *, const char *line) { require_line(line); };
    char error[256] = "";
    olt_server *created = olt_server_create(&options, error);
    require(created != nullptr, "a server can be created", error);
    require(olt_server_add(created, kModule, handle, nullptr, error) == 0, "a module can be added",
            error);
    return created;
  }();
  return instance;
}

olt_server_counters counters() {
  olt_server_counters counted{};
  olt_server_count(server(), &counted);
  return counted;
}

/// A client on the same thread: the server runs a little after each piece.
class Client {
 public:
  Client() : socket_(olt_server_connect(server(), kModule)) {
    require(socket_ >= 0, "a server without a run directory can be reached");
  }
  Client(const Client &) = delete;
  Client &operator=(const Client &) = delete;
  ~Client() { close(socket_); }

  void send(View piece) {
    while (!piece.empty() && !ended_) {
      ssize_t taken = ::send(socket_, piece.data(), piece.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
      if (taken > 0) piece = piece.subspan(static_cast<size_t>(taken));
      if (taken < 0 && errno == EPIPE) return;
      turn();
    }
  }

  void await(size_t count) {
    await([this, count] { return received_.size() >= count; }, "requests are answered");
  }

  /// What has come until the server closed the connection, too.
  const Bytes &leave() {
    shutdown(socket_, SHUT_WR);
    await([] { return false; }, "the server closes a connection that has ended");
    return received_;
  }

 private:
  template <typename Condition>
  void await(Condition condition, const char *rule) {
    using Time = std::chrono::steady_clock;
    Time::time_point late = Time::now() + std::chrono::seconds(10);
    while (!ended_ && !condition()) {
      turn();
      require(Time::now() < late, rule);
    }
  }

  void turn() {
    char error[256] = "";
    olt_server_stop(server());
    require(olt_server_run(server(), error) == 0, "the server runs", error);
    std::array<uint8_t, 16 * 1024> piece;
    for (;;) {
      ssize_t count = recv(socket_, piece.data(), piece.size(), MSG_DONTWAIT);
      if (count < 0 && errno == EAGAIN) return;
      if (count <= 0) {
        ended_ = true;
        return;
      }
      received_.insert(received_.end(), piece.begin(), piece.begin() + count);
    }
  }

  int socket_;
  Bytes received_;
  bool ended_ = false;
};

void require_prefix(const Bytes &received, const Bytes &answers) {
  require(received.size() <= answers.size() &&
              std::equal(received.begin(), received.end(), answers.begin()),
          "requests are answered one by one");
}

void require_model(const Model &model, const Bytes &received, const olt_server_counters &before) {
  require(received.size() == model.answers().size(), "every request is answered");
  olt_server_counters after = counters();
  const Ending &ending = model.ending();
  uint64_t vanished = after.vanished_clients - before.vanished_clients;
  require(after.connections - before.connections == 1, "a connection is counted");
  require(after.exchanges - before.exchanges == model.exchanges(), "exchanges are counted");
  require(after.broken_frames - before.broken_frames == ending.broken,
          "what is no request is counted");
  require(vanished >= ending.least_vanished && vanished <= ending.most_vanished,
          "clients that leave early are counted");
  require(after.stalled_clients == before.stalled_clients, "nobody has stalled");
  require(after.refused_peers == before.refused_peers, "nobody was refused");
}

}  // namespace

// The first byte is the length of the pieces, 0 for one piece; with its highest bit the client does
// not wait for answers. Then comes what it sends.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input input(data, size);
  unsigned how = input.u8();
  size_t step = how & 0x7F;
  bool waits = how == step;
  View stream = input.rest();
  const Model model(stream);
  const olt_server_counters before = counters();
  Client client;
  for (View left = stream; !left.empty();) {
    size_t count = step == 0 ? left.size() : std::min(step, left.size());
    client.send(left.first(count));
    left = left.subspan(count);
  }
  if (waits) client.await(model.answers().size());
  const Bytes &received = client.leave();
  require_prefix(received, model.answers());
  if (waits) require_model(model, received, before);
  return 0;
}
