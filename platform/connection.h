/// The client's end of a stream to a module.
#ifndef OLT_PLATFORM_CONNECTION_H
#define OLT_PLATFORM_CONNECTION_H

#include <cstddef>
#include <cstdint>

#include "platform/deadline.h"
#include "platform/olthost.h"
#include "platform/process_socket.h"
#include "platform/replies.h"

namespace olt::platform {

struct Request {
  uint32_t message_type;
  const void *data;
  uint32_t length;
  bool no_reply;
};

struct Answer {
  uint16_t status = 0;
  uint16_t length = 0;
  ReplyBlock reply;  ///< null when only the status was wanted
};

/// How much of a request the kernel took.
enum class Sent {
  kAll,
  kPart,     ///< the module closed the stream after taking a part
  kNothing,  ///< the module had closed the stream before
  kTooLate,  ///< the deadline passed
  kNoResources,
};

/// One stream, used by one thread at a time. Closed in the child of a fork.
class Connection {
 public:
  /// Connects to a module and checks who serves it. @return OLT_TRANSPORT_OK, or why it cannot
  int32_t connect(uint32_t module, const Deadline &deadline);

  /// False in the child of a fork, for a connection of its parent.
  bool is_open() const { return socket_.is_open(); }

  /// Whether the module has sent bytes that answer no request.
  bool has_unsolicited_bytes() const;

  /// Sends a request; never sends a byte twice.
  Sent send(const Request &request, const Deadline &deadline);

  /// Receives the answer to the request sent last.
  /// @return OLT_TRANSPORT_OK, or why there is no answer; the connection must then be dropped
  int32_t receive(bool no_reply, const Deadline &deadline, Answer &answer);

 private:
  int32_t receive_some(std::byte *into, size_t limit, const Deadline &deadline, size_t &received);

  ProcessSocket socket_;
  bool recv_may_block_ = false;  ///< the time-out of recv is set
  uint32_t sequence_ = 0;        ///< of the last request; starts at random
};

/// Connects through the run directory of the environment or the process's connector, and checks who
/// serves the module.
/// @return OLT_TRANSPORT_OK and an open socket, or why there is none
int32_t connect_to_module(uint32_t module, const Deadline &deadline, ProcessSocket &socket);

/// Sets the process's connector; null returns to the run directory.
void set_connector(olt_connector call, void *context);

}  // namespace olt::platform

#endif
