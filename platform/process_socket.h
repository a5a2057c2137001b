/// Sockets that belong to one process.
#ifndef OLT_PLATFORM_PROCESS_SOCKET_H
#define OLT_PLATFORM_PROCESS_SOCKET_H

#include "base/descriptor.h"

namespace olt::platform {

/// A socket that is closed in the child of a fork, whenever another thread forks. Its number is
/// above those of the standard streams.
class ProcessSocket {
 public:
  ProcessSocket();
  ProcessSocket(const ProcessSocket &) = delete;
  ProcessSocket &operator=(const ProcessSocket &) = delete;
  ~ProcessSocket();

  /// Creates a non-blocking Unix stream socket. @return false, with errno, when there is none
  bool create();
  /// Takes over a descriptor. @return false, with errno, when it is -1
  bool adopt(int number);

  int get() const { return socket_.get(); }
  bool is_open() const { return socket_.is_open(); }

  /// In the child of a fork.
  static void close_all();

 private:
  Descriptor socket_;
};

}  // namespace olt::platform

#endif
