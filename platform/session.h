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
#include <string>
#include <vector>

#include "base/descriptor.h"
#include "platform/frame.h"
#include "platform/ledger.h"
#include "platform/olthost.h"

namespace olt::platform {

/// Status of the answer when a handler failed: it threw, or its reply cannot be sent.
inline constexpr uint16_t kHandlerFailed = 0xffff;

struct Service {
  uint32_t module;
  olt_handler handler;
  void *context;
};

/// Reads a request, has it answered, and only then reads the next one. Lives as long as it waits
/// for something: for bytes, for room to send, or for the time of a delayed answer.
class Session : public std::enable_shared_from_this<Session> {
 public:
  Session(asio::io_context &loop, Descriptor socket, const Service &service, Ledger &ledger,
          std::chrono::milliseconds stall_limit);

  void start() { attempt(&Session::serve); }

 private:
  void attempt(void (Session::*step)());
  void serve();
  void await_bytes();
  void make_room(size_t frame_size);
  void consume(size_t frame_size);

  /// @return false when the answer has not left yet, or never will
  bool answer(const RequestHeader &header);
  olt_answer call_handler(const RequestHeader &header);
  bool send(const std::array<std::byte, kAnswerHeaderSize> &header, const std::byte *reply,
            size_t length);
  void send_later(const std::array<std::byte, kAnswerHeaderSize> &header, const std::byte *reply,
                  size_t length, std::chrono::milliseconds delay);
  void flush();
  void answered();
  void await_hangup();
  void notice_hangup();

  void after(std::chrono::milliseconds delay, void (Session::*then)());
  void stop_timer();

  void end();
  void stalled();
  void drop(Ledger::Counter counter, const std::string &what);
  void close();

  asio::local::stream_protocol::socket socket_;
  asio::steady_timer timer_;
  const Service &service_;
  Ledger &ledger_;
  const std::chrono::milliseconds stall_limit_;

  std::vector<std::byte> buffer_;
  size_t filled_ = 0;
  std::vector<std::byte> outgoing_;
  size_t sent_ = 0;
  bool owes_answer_ = false;
  bool timer_runs_ = false;
  uint32_t timer_turn_ = 0;  ///< tells an expiry that was overtaken by its cancellation
};

}  // namespace olt::platform

#endif
