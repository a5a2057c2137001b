#include "platform/connection.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

#include "platform/frame.h"

namespace olt::platform {

namespace {

using namespace std::chrono_literals;

// Nearly every answer arrives while recv itself blocks, which saves a poll per exchange. The
// time-out of that wait is coarse (up to an eighth late), so it is short and used far from any
// deadline.
constexpr auto kBlockingWait = 400ms;
constexpr auto kSafeDistance = 2 * kBlockingWait;

// Most answers fit into one piece, received on the stack.
constexpr size_t kFirstPiece = 4096;

bool limit_blocking_wait(int socket) {
  timeval limit{};
  limit.tv_usec = std::chrono::microseconds(kBlockingWait).count();
  return setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit) == 0;
}

bool is_closed_by_peer(int error) {
  return error == EPIPE || error == ECONNRESET || error == ENOTCONN || error == EBADF;
}

bool is_transient(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

}  // namespace

int32_t Connection::connect(uint32_t module, const Deadline &deadline) {
  int32_t result = connect_to_module(module, deadline, socket_);
  if (result != OLT_TRANSPORT_OK) return result;
  recv_may_block_ = limit_blocking_wait(socket_.get());
  // An answer that was sent before its request can match the sequence number by chance only.
  if (getrandom(&sequence_, sizeof sequence_, GRND_NONBLOCK) != ssize_t{sizeof sequence_}) {
    sequence_ = static_cast<uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  }
  return OLT_TRANSPORT_OK;
}

// Cheaper than a recv that peeks. It does not notice that the module closed the stream; send does.
bool Connection::has_unsolicited_bytes() const {
  int count = 0;
  return ioctl(socket_.get(), SIOCINQ, &count) == 0 && count > 0;
}

Sent Connection::send(const Request &request, const Deadline &deadline) {
  auto header = encode(RequestHeader{.sequence = ++sequence_,
                                     .message_type = request.message_type,
                                     .no_reply = request.no_reply,
                                     .length = request.length});
  std::array<iovec, 2> pieces{{{const_cast<std::byte *>(header.data()), header.size()},
                               {const_cast<void *>(request.data), request.length}}};
  msghdr message{};
  message.msg_iov = pieces.data();
  message.msg_iovlen = pieces.size();
  size_t left = header.size() + request.length;
  bool untouched = true;
  for (;;) {
    ssize_t taken = sendmsg(socket_.get(), &message, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (taken >= 0) {
      auto count = static_cast<size_t>(taken);
      left -= count;
      if (left == 0) return Sent::kAll;
      untouched = untouched && count == 0;
      for (iovec &piece : pieces) {
        size_t step = std::min(count, piece.iov_len);
        piece.iov_base = static_cast<std::byte *>(piece.iov_base) + step;
        piece.iov_len -= step;
        count -= step;
      }
    } else if (is_closed_by_peer(errno)) {
      return untouched ? Sent::kNothing : Sent::kPart;
    } else if (!is_transient(errno)) {
      return Sent::kNoResources;
    }
    if (!deadline.wait(socket_.get(), POLLOUT)) return Sent::kTooLate;
  }
}

int32_t Connection::receive_some(std::byte *into, size_t limit, const Deadline &deadline,
                                 size_t &received) {
  int flags = recv_may_block_ && deadline.remaining() > kSafeDistance ? 0 : MSG_DONTWAIT;
  for (;;) {
    ssize_t count = recv(socket_.get(), into, limit, flags);
    if (count > 0) {
      received = static_cast<size_t>(count);
      return OLT_TRANSPORT_OK;
    }
    if (count == 0 || is_closed_by_peer(errno)) return OLT_TRANSPORT_LOST;
    if (!is_transient(errno)) return OLT_TRANSPORT_NO_RESOURCES;
    flags = MSG_DONTWAIT;
    if (!deadline.wait(socket_.get(), POLLIN)) return OLT_TRANSPORT_TIMED_OUT;
  }
}

int32_t Connection::receive(bool no_reply, const Deadline &deadline, Answer &answer) {
  std::array<std::byte, kAnswerHeaderSize + kFirstPiece> first;
  size_t filled = 0;
  while (filled < kAnswerHeaderSize) {
    size_t count = 0;
    if (int32_t result = receive_some(&first[filled], first.size() - filled, deadline, count)) {
      return result;
    }
    filled += count;
  }
  auto header = decode_answer(first.data());
  if (!header) return OLT_TRANSPORT_GARBLED;
  if (header->refused) return OLT_TRANSPORT_REFUSED;
  size_t arrived = filled - kAnswerHeaderSize;
  if (header->sequence != sequence_ || arrived > header->length ||
      (no_reply && header->length > 0)) {
    return OLT_TRANSPORT_GARBLED;
  }
  answer.status = header->status;
  answer.length = static_cast<uint16_t>(header->length);
  if (no_reply) return OLT_TRANSPORT_OK;
  answer.reply = make_reply_block(header->length);
  if (!answer.reply) return OLT_TRANSPORT_NO_RESOURCES;
  std::copy_n(&first[kAnswerHeaderSize], arrived, answer.reply.get());
  while (arrived < header->length) {
    size_t count = 0;
    if (int32_t result =
            receive_some(answer.reply.get() + arrived, header->length - arrived, deadline, count)) {
      return result;
    }
    arrived += count;
  }
  return OLT_TRANSPORT_OK;
}

}  // namespace olt::platform
