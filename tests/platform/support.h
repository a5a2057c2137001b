// What the tests of the host platform share: private run directories, modules that act on request,
// raw sockets, and child processes whose standard error is read.
#ifndef OLT_TESTS_PLATFORM_SUPPORT_H
#define OLT_TESTS_PLATFORM_SUPPORT_H

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <latch>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "base/clock.h"
#include "platform/olthost.h"
#include "tests/support/bytes.h"
#include "tests/support/folder.h"

namespace olt::test {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start);

/// Bytes in which a shift, a repetition or a swap shows.
Bytes pattern(size_t length, uint32_t seed);
/// Length and a sum that depends on every byte and its place, as the module of act() computes it.
Bytes digest(const uint8_t *data, size_t length);

/// A private directory, removed with everything in it, and OLT_RUN_DIR pointing to "run" in it.
class TemporaryRunDir {
 public:
  TemporaryRunDir();

  const std::string &base() const { return folder_.path(); }
  const std::string &path() const { return path_; }
  std::string socket(uint32_t module) const { return path_ + "/module-" + std::to_string(module); }

 private:
  const Folder folder_;
  const std::string path_ = folder_ / "run";
};

/// What act() does with a request, which begins with the parameters, as words.
enum Act : uint32_t {
  kEcho = 1,          ///< the request comes back
  kStatus = 2,        ///< the first parameter is the status; the reply is "reason"
  kDelayedEcho = 3,   ///< the request comes back after that many milliseconds
  kSilence = 4,       ///< no answer
  kHangUp = 5,        ///< the connection is closed after that many milliseconds
  kPattern = 6,       ///< a reply of that many bytes of pattern(length, 6)
  kDigest = 7,        ///< the digest of the request
  kThrow = 8,         ///< the handler throws
  kTooLong = 9,       ///< a reply of 65,536 bytes
  kDie = 10,          ///< the serving process is killed
  kCount = 11,        ///< number of requests of type kCounted so far
  kCounted = 12,      ///< status 0
  kNullReply = 13,    ///< a reply length without a reply
  kNoReplyFlag = 14,  ///< status is the request's no-reply flag
  kBusy = 15,         ///< the handler itself takes that many milliseconds
  kOpenFiles = 16,    ///< opens that many files at once; the status is the number that failed
  kProcess = 17       ///< the client's process, a word
};
void act(void *context, const olt_request *request, olt_answer *answer);

/// A server on a thread of this process.
class ServerThread {
 public:
  struct Setup {
    const char *run_dir = nullptr;
    const char *group = nullptr;
    uint32_t stall_ms = 0;
    uint32_t pending_limit = 0;
    std::vector<uint32_t> modules{2};
    olt_handler handler = act;
    std::function<void()> before_run = [] {};
  };
  explicit ServerThread(const Setup &setup);
  ServerThread(const ServerThread &) = delete;
  ServerThread &operator=(const ServerThread &) = delete;
  ~ServerThread();

  olt_server *server() const { return server_; }
  olt_server_counters counters() const;
  /// Waits until the counter has the value, for at most two seconds.
  bool reaches(uint64_t olt_server_counters::*counter, uint64_t value) const;
  std::string events() const;

 private:
  static void note(void *context, const char *line);

  mutable std::mutex lock_;
  std::string events_;
  olt_server *server_ = nullptr;
  std::thread thread_;
};

/// A server in a process of its own, with act() behind each module. The constructor returns when
/// it serves; prepare runs in the child first.
class ServerProcess {
 public:
  explicit ServerProcess(
      const std::string &run_dir, const std::vector<uint32_t> &modules = {2},
      const char *group = nullptr, const std::function<void()> &prepare = [] {});
  ServerProcess(const ServerProcess &) = delete;
  ServerProcess &operator=(const ServerProcess &) = delete;
  ~ServerProcess() { kill(); }

  pid_t pid() const { return pid_; }
  /// Kills it and waits for its end.
  void kill();

 private:
  pid_t pid_ = -1;
};

/// A module without olt_server: passes one connection after the other to the script. Its thread
/// has started when the constructor returns: a child forked while AddressSanitizer's allocator
/// serves another thread would wait for ever.
class FakeModule {
 public:
  FakeModule(const std::string &socket_path, std::function<void(int socket)> script);
  FakeModule(const FakeModule &) = delete;
  FakeModule &operator=(const FakeModule &) = delete;
  ~FakeModule();

  int connections() const;

 private:
  mutable std::mutex lock_;
  int connections_ = 0;
  int listener_;
  std::latch started_{1};
  std::thread thread_;
};

/// A plain client socket.
class RawClient {
 public:
  explicit RawClient(const std::string &socket_path);
  explicit RawClient(int socket) : socket_(socket) {}
  RawClient(const RawClient &) = delete;
  RawClient &operator=(const RawClient &) = delete;
  ~RawClient() { close(); }

  int get() const { return socket_; }
  void close();
  bool send(const Bytes &bytes) const;
  /// Receives up to length bytes; fewer at the end of the stream or after five seconds.
  Bytes receive(size_t length) const;
  /// Whether the stream ends within five seconds without another byte.
  bool is_closed() const;

 private:
  int socket_;
};

int listen_at(const std::string &socket_path, int backlog);
void send_bytes(int socket, const Bytes &bytes);
Bytes receive_bytes(int socket, size_t length);

/// The answer to a request frame: its sequence number, then the digits from the status on.
Bytes answer_frame(const Bytes &request, std::string_view rest);

/// A request frame, composed byte by byte.
Bytes request_frame(uint32_t sequence, uint32_t type, const Bytes &data, uint32_t flags = 0);

/// One exchange and all that it wrote.
struct Exchanged {
  int32_t result;
  uint16_t status = 0xabcd;
  void *reply = nullptr;
  uint16_t length = 0xabcd;
  uint32_t handle = 0xabcdabcd;
  double seconds = 0;

  Bytes bytes() const;
};
/// Asks for a reply; the out-values start as above, with reply as a null pointer.
Exchanged exchange(uint32_t module, uint32_t type, Bytes request, uint32_t timeout = 10);
/// The same, released; empty when the exchange failed.
Bytes exchange_bytes(uint32_t module, uint32_t type, const Bytes &request, uint32_t timeout = 10);
/// Asks for the status alone.
Exchanged post(uint32_t module, uint32_t type, Bytes request, uint32_t timeout = 10);

struct ChildResult {
  int status = -1;  ///< exit status, or 128 and the signal
  std::string errors;
};
/// Runs the body in a child process, which exits with its result.
ChildResult run_in_child(const std::function<int()> &body);

size_t open_descriptors();
size_t open_descriptors_of(pid_t process);

/// Makes the next exchange of this thread start with a new connection.
void drop_connections();

}  // namespace olt::test

#endif
