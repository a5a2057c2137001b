#include "platform/session.h"

#include <asio/buffer.hpp>
#include <asio/error.hpp>
#include <asio/post.hpp>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <system_error>
#include <utility>

#include "platform/credentials.h"

namespace olt::platform {

namespace {

using std::chrono::milliseconds;

constexpr size_t kFirstBuffer = 4096;

bool is_transient(const std::error_code &error) {
  return error == asio::error::would_block || error == asio::error::try_again ||
         error == asio::error::interrupted;
}

}  // namespace

Session::Session(asio::io_context &loop, Descriptor socket, const Service &service,
                 ServerStatistics &statistics, PendingBudget &budget, milliseconds stall_limit,
                 const Watch &watch, uint64_t connection)
    : socket_(loop, asio::local::stream_protocol(), socket.get()),
      timer_(loop),
      service_(service),
      process_(process_of_peer(socket_.native_handle())),
      statistics_(statistics),
      stall_limit_(stall_limit),
      budget_share_(budget, [this] { give_way(); }),
      buffer_(kFirstBuffer),
      watch_(watch),
      connection_(connection) {
  socket.release();
  socket_.non_blocking(true);
}

// A session that cannot go on closes its socket, which ends all its waits.
void Session::run_step(void (Session::*step)()) {
  try {
    (this->*step)();
  } catch (...) {
    close();
    throw;
  }
}

// One request at a time: other connections take their turns before the next one.
void Session::serve() {
  if (!may_be_request(buffer_.data(), filled_)) {
    return drop(&olt_server_counters::broken_frames, "sent what is not a request; dropped");
  }
  if (filled_ < kRequestHeaderSize) return await_bytes();
  auto header = decode_request(buffer_.data());
  if (!header) {
    return drop(&olt_server_counters::broken_frames,
                "sent a request with unknown flags or of more than " +
                    std::to_string(OLT_REQUEST_LIMIT) + " bytes; dropped");
  }
  size_t frame_size = kRequestHeaderSize + header->length;
  if (filled_ < frame_size) {
    if (make_room(frame_size)) await_bytes();
    return;
  }
  budget_share_.end_waiting();
  begin_watched(*header);
  bool goes_on = answer(*header);
  if (!watched_) consume(frame_size);
  if (goes_on) continue_serving();
}

void Session::continue_serving() {
  if (filled_ == 0) return await_bytes();
  asio::post(socket_.get_executor(), [self = shared_from_this()] {
    if (self->socket_.is_open()) self->run_step(&Session::serve);
  });
}

void Session::await_bytes() {
  if (filled_ > 0) {
    after(stall_limit_, &Session::stalled);
    budget_share_.begin_waiting();
  }
  socket_.async_receive(asio::buffer(&buffer_[filled_], buffer_.size() - filled_),
                        [self = shared_from_this()](const std::error_code &error, size_t count) {
                          if (!self->socket_.is_open()) return;
                          self->stop_timer();
                          if (error) return self->end();
                          self->filled_ += count;
                          self->run_step(&Session::serve);
                        });
}

// Grows with the bytes received, not with the length claimed.
bool Session::make_room(size_t frame_size) {
  if (filled_ < buffer_.size()) return true;
  size_t size = std::min(frame_size, 2 * buffer_.size());
  if (!budget_share_.reserve(size - buffer_.size())) {
    drop_over_limit();
    return false;
  }
  buffer_.reserve(size);
  buffer_.resize(size);
  return true;
}

void Session::give_way() {
  drop_over_limit();
  buffer_ = std::vector<std::byte>();
  budget_share_.release();
}

void Session::consume(size_t frame_size) {
  std::copy(buffer_.begin() + static_cast<ptrdiff_t>(frame_size),
            buffer_.begin() + static_cast<ptrdiff_t>(filled_), buffer_.begin());
  filled_ -= frame_size;
  if (filled_ > 0 || buffer_.size() == kFirstBuffer) return;
  buffer_ = std::vector<std::byte>(kFirstBuffer);
  budget_share_.release();
}

bool Session::answer(const RequestHeader &header) {
  owes_answer_ = true;
  olt_answer answer = call_handler(header);
  milliseconds delay(answer.delay_ms);
  if (answer.action == OLT_ANSWER_WITHHOLD) {
    end_watched(OLT_SERVED_WITHHELD);
    return true;
  }
  if (answer.action == OLT_ANSWER_DISCONNECT) {
    await_hangup();
    after(delay, &Session::disconnect);
    return false;
  }
  uint32_t length = header.no_reply ? 0 : answer.reply_length;
  if (watched_) watched_->status = answer.status;
  auto bytes = encode(AnswerHeader{
      .sequence = header.sequence, .status = answer.status, .refused = false, .length = length});
  const auto *reply = static_cast<const std::byte *>(answer.reply);
  if (delay.count() > 0) {
    send_later(bytes, reply, length, delay);
    return false;
  }
  return send(bytes, reply, length);
}

olt_answer Session::call_handler(const RequestHeader &header) {
  olt_request request{.module = service_.module,
                      .message_type = header.message_type,
                      .data = &buffer_[kRequestHeaderSize],
                      .length = header.length,
                      .no_reply = header.no_reply ? 1u : 0u,
                      .process = process_};
  std::string fault;
  try {
    olt_answer answer{};
    service_.handler(service_.context, &request, &answer);
    if (answer.reply_length <= OLT_REPLY_LIMIT &&
        (answer.reply != nullptr || answer.reply_length == 0)) {
      return answer;
    }
    fault = answer.reply == nullptr
                ? "gave no reply record for a length of "
                : "gave a reply longer than " + std::to_string(OLT_REPLY_LIMIT) + " bytes: ";
    fault += std::to_string(answer.reply_length);
  } catch (const std::exception &exception) {
    fault = std::string("threw an exception: ") + exception.what();
  }
  statistics_.report("module " + std::to_string(service_.module) +
                     ": the handler of message type " + std::to_string(header.message_type) + " " +
                     fault);
  return {.status = kHandlerFailed};
}

bool Session::send(const std::array<std::byte, kAnswerHeaderSize> &header, const std::byte *reply,
                   size_t length) {
  std::error_code error;
  std::array<asio::const_buffer, 2> pieces{asio::buffer(header), asio::buffer(reply, length)};
  size_t count = socket_.send(pieces, 0, error);
  if (!error && count == header.size() + length) {
    answered(reply, length);
    return true;
  }
  send_later(header, reply, length, milliseconds(0));
  sent_ = error ? 0 : count;
  return false;
}

void Session::send_later(const std::array<std::byte, kAnswerHeaderSize> &header,
                         const std::byte *reply, size_t length, milliseconds delay) {
  outgoing_.assign(header.begin(), header.end());
  outgoing_.insert(outgoing_.end(), reply, reply + length);
  sent_ = 0;
  await_hangup();
  after(delay, &Session::flush);
}

void Session::flush() {
  std::error_code error;
  sent_ += socket_.send(asio::buffer(outgoing_) + sent_, 0, error);
  if (error && !is_transient(error)) return end();
  if (sent_ < outgoing_.size()) {
    after(stall_limit_, &Session::stalled);
    socket_.async_wait(asio::socket_base::wait_write,
                       [self = shared_from_this()](const std::error_code &failure) {
                         if (!failure && self->socket_.is_open()) {
                           self->stop_timer();
                           self->run_step(&Session::flush);
                         }
                       });
    return;
  }
  hangup_ends_ = false;
  bool holds_request = watched_.has_value();
  size_t request_length = holds_request ? watched_->request_length : 0;
  answered(outgoing_.data() + kAnswerHeaderSize, outgoing_.size() - kAnswerHeaderSize);
  outgoing_ = std::vector<std::byte>();
  if (holds_request) consume(kRequestHeaderSize + request_length);
  continue_serving();
}

void Session::answered(const std::byte *reply, size_t length) {
  owes_answer_ = false;
  statistics_.count(&olt_server_counters::exchanges);
  end_watched(OLT_SERVED_ANSWERED, reply, length);
}

void Session::begin_watched(const RequestHeader &header) {
  if (watch_.watcher == nullptr) return;
  auto now = std::chrono::system_clock::now().time_since_epoch();
  watched_ = {.module = service_.module,
              .message_type = header.message_type,
              .request_length = header.length,
              .no_reply = header.no_reply ? 1U : 0U,
              .began_ns = static_cast<uint64_t>(std::chrono::nanoseconds(now).count()),
              .process = process_,
              .connection = connection_};
  watched_since_ = std::chrono::steady_clock::now();
}

void Session::end_watched(olt_served_end end, const std::byte *reply, size_t length) {
  if (!watched_) return;
  olt_served_exchange exchange = *std::exchange(watched_, std::nullopt);
  if (watch_.watcher == nullptr) return;
  exchange.request = buffer_.data() + kRequestHeaderSize;
  exchange.end = end;
  exchange.reply = reply;
  exchange.reply_length = static_cast<uint16_t>(length);
  exchange.elapsed_ns = static_cast<uint64_t>(
      std::chrono::nanoseconds(std::chrono::steady_clock::now() - watched_since_).count());
  watch_.watcher(watch_.context, &exchange);
}

// A connection is closed when its client leaves, not when the delay of its answer is over. The wait
// may last longer than the delay: then the requests that came before the end are served first.
void Session::await_hangup() {
  hangup_ends_ = true;
  socket_.async_wait(asio::socket_base::wait_read,
                     [self = shared_from_this()](const std::error_code &error) {
                       if (!error && self->socket_.is_open() && self->hangup_ends_) {
                         self->notice_hangup();
                       }
                     });
}

void Session::notice_hangup() {
  std::byte next{};
  ssize_t count = recv(socket_.native_handle(), &next, sizeof next, MSG_PEEK | MSG_DONTWAIT);
  if (count == 0 || (count < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) end();
}

void Session::after(milliseconds delay, void (Session::*then)()) {
  timer_runs_ = true;
  timer_.expires_after(delay);
  timer_.async_wait(
      [self = shared_from_this(), then, turn = ++timer_turn_](const std::error_code &) {
        if (turn == self->timer_turn_ && self->socket_.is_open()) {
          self->timer_runs_ = false;
          self->run_step(then);
        }
      });
}

void Session::stop_timer() {
  if (timer_runs_) {
    timer_runs_ = false;
    ++timer_turn_;
    timer_.cancel();
  }
}

void Session::end() {
  if (filled_ > 0 && !owes_answer_) {
    drop(&olt_server_counters::vanished_clients, "vanished in the middle of a request");
  } else if (owes_answer_) {
    drop(&olt_server_counters::vanished_clients, "vanished before its answer");
  } else {
    close();
  }
}

void Session::stalled() {
  drop(&olt_server_counters::stalled_clients,
       std::string("stopped in the middle of ") + (owes_answer_ ? "its answer" : "a request") +
           "; dropped after " + std::to_string(stall_limit_.count()) + " ms");
}

void Session::drop(ServerStatistics::Counter counter, const std::string &what) {
  statistics_.count(counter, "module " + std::to_string(service_.module) + ": a client " + what);
  close();
}

void Session::drop_over_limit() {
  drop(&olt_server_counters::over_limit_clients,
       "sent a request for which the limit on pending requests leaves no memory; dropped");
}

void Session::disconnect() {
  end_watched(OLT_SERVED_DISCONNECTED);
  close();
}

void Session::close() {
  end_watched(OLT_SERVED_VANISHED);
  stop_timer();
  std::error_code ignored;
  socket_.close(ignored);
}

}  // namespace olt::platform
