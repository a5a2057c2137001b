/// The serving side of one connection.
#ifndef OLT_PLATFORM_SESSION_H
#define OLT_PLATFORM_SESSION_H

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/descriptor.h"
#include "platform/frame.h"
#include "platform/olthost.h"
#include "platform/pending_budget.h"
#include "platform/server_statistics.h"

namespace olt::platform {

/// Status of the answer when a handler failed: it threw, or its reply cannot be sent.
inline constexpr uint16_t kHandlerFailed = 0xffff;

struct Service {
  uint32_t module;
  olt_handler handler;
  void *context;
};

/// Who is told of exchanges; nobody when the watcher is null.
struct Watch {
  olt_server_watcher watcher = nullptr;
  void *context = nullptr;
};

/// Reads a request, has it answered, and only then reads the next one. Lives as long as it waits
/// for something: bytes, room to send, its next turn, or the time of a delayed answer.
class Session : public std::enable_shared_from_this<Session> {
 public:
  Session(asio::io_context &loop, Descriptor socket, const Service &service,
          ServerStatistics &statistics, PendingBudget &budget,
          std::chrono::milliseconds stall_limit, const Watch &watch, uint64_t connection);

  void start() { run_step(&Session::serve); }

 private:
  void run_step(void (Session::*step)());
  void serve();
  void continue_serving();
  void await_bytes();
  /// @return false when the client was dropped instead
  bool make_room(size_t frame_size);
  /// Frees the memory of the half-received request, for another one.
  void give_way();
  void consume(size_t frame_size);

  /// @return false when the answer has not left yet, or never will
  bool answer(const RequestHeader &header);
  olt_answer call_handler(const RequestHeader &header);
  bool send(const std::array<std::byte, kAnswerHeaderSize> &header, const std::byte *reply,
            size_t length);
  void send_later(const std::array<std::byte, kAnswerHeaderSize> &header, const std::byte *reply,
                  size_t length, std::chrono::milliseconds delay);
  void flush();
  void answered(const std::byte *reply, size_t length);
  void await_hangup();
  void notice_hangup();

  void begin_watched(const RequestHeader &header);
  /// Tells the watcher of the exchange that is over.
  void end_watched(olt_served_end end, const std::byte *reply = nullptr, size_t length = 0);

  void after(std::chrono::milliseconds delay, void (Session::*then)());
  void stop_timer();

  void end();
  void stalled();
  void drop(ServerStatistics::Counter counter, const std::string &what);
  void drop_over_limit();
  void disconnect();
  void close();

  asio::local::stream_protocol::socket socket_;
  asio::steady_timer timer_;
  const Service &service_;
  const uint32_t process_;  ///< the client's
  ServerStatistics &statistics_;
  const std::chrono::milliseconds stall_limit_;

  PendingBudget::Share budget_share_;  ///< what buffer_ takes beyond its first size
  std::vector<std::byte> buffer_;
  size_t filled_ = 0;
  std::vector<std::byte> outgoing_;
  size_t sent_ = 0;
  bool owes_answer_ = false;
  bool hangup_ends_ = false;  ///< an answer is delayed: a client that leaves is dropped at once

  const Watch &watch_;
  const uint64_t connection_;
  /// The exchange under way, when it is watched. Its request stays in the buffer.
  std::optional<olt_served_exchange> watched_;
  std::chrono::steady_clock::time_point watched_since_;

  bool timer_runs_ = false;
  uint32_t timer_turn_ = 0;  ///< recognizes an expiry that was already queued when cancelled
};

}  // namespace olt::platform

#endif
