#include "tests/platform/support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "base/descriptor.h"
#include "base/text.h"

namespace olt::test {

namespace {

uint32_t parameter(const olt_request &request, size_t index) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4 && 4 * index + i < request.length; ++i) {
    value |= static_cast<uint32_t>(static_cast<const uint8_t *>(request.data)[4 * index + i])
             << (8 * i);
  }
  return value;
}

void reply_with(olt_answer *answer, Bytes bytes) {
  thread_local Bytes kept;
  kept = std::move(bytes);
  answer->reply = kept.data();
  answer->reply_length = static_cast<uint32_t>(kept.size());
}

void echo(const olt_request &request, olt_answer *answer) {
  answer->reply = request.data;
  answer->reply_length = request.length;
}

size_t failed_opens(size_t count) {
  std::vector<Descriptor> files;
  for (size_t i = 0; i < count; ++i) files.emplace_back(open("/dev/null", O_RDONLY | O_CLOEXEC));
  return static_cast<size_t>(std::count_if(files.begin(), files.end(),
                                           [](const Descriptor &file) { return !file.is_open(); }));
}

sockaddr_un address_of(const std::string &path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw std::runtime_error("socket path too long: " + path);
  }
  path.copy(address.sun_path, path.size());
  return address;
}

bool readable_within(int socket, int milliseconds) {
  pollfd watched{.fd = socket, .events = POLLIN, .revents = 0};
  return poll(&watched, 1, milliseconds) == 1;
}

int exit_status(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

Exchanged timed_exchange(uint32_t module, uint32_t type, Bytes request, uint32_t timeout,
                         uint32_t no_reply) {
  Exchanged all{};
  auto start = Clock::now();
  all.result = platmsg_syn_result(type, module, request.empty() ? nullptr : request.data(),
                                  static_cast<uint32_t>(request.size()), &all.reply, &all.length,
                                  &all.handle, &all.status, no_reply, timeout);
  all.seconds = seconds_since(start);
  return all;
}

}  // namespace

double seconds_since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

Bytes pattern(size_t length, uint32_t seed) {
  Bytes bytes(length);
  uint32_t state = seed * 2654435761u + 1;
  for (uint8_t &byte : bytes) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<uint8_t>(state >> 24);
  }
  return bytes;
}

Bytes digest(const uint8_t *data, size_t length) {
  uint32_t sum = 2166136261u;
  for (size_t i = 0; i < length; ++i) sum = (sum ^ data[i]) * 16777619u;
  Bytes bytes = word(static_cast<uint32_t>(length));
  Bytes tail = word(sum);
  bytes.insert(bytes.end(), tail.begin(), tail.end());
  return bytes;
}

TemporaryRunDir::TemporaryRunDir() {
  setenv("OLT_RUN_DIR", path_.c_str(), 1);
  drop_connections();
}

void act(void * /*context*/, const olt_request *request, olt_answer *answer) {
  static std::atomic<uint32_t> counted{0};
  switch (request->message_type) {
    case kEcho:
      return echo(*request, answer);
    case kStatus:
      answer->status = static_cast<uint16_t>(parameter(*request, 0));
      return reply_with(answer, text("reason"));
    case kDelayedEcho:
      answer->delay_ms = parameter(*request, 0);
      return echo(*request, answer);
    case kSilence:
      answer->action = OLT_ANSWER_WITHHOLD;
      return;
    case kHangUp:
      answer->action = OLT_ANSWER_DISCONNECT;
      answer->delay_ms = parameter(*request, 0);
      return;
    case kProcess:
      return reply_with(answer, word(request->process));
    case kPattern:
      return reply_with(answer, pattern(parameter(*request, 0), 6));
    case kDigest:
      return reply_with(answer,
                        digest(static_cast<const uint8_t *>(request->data), request->length));
    case kThrow:
      throw std::runtime_error("no such slot");
    case kTooLong:
      return reply_with(answer, Bytes(65536));
    case kDie:
      raise(SIGKILL);
      return;
    case kCount:
      return reply_with(answer, word(counted));
    case kCounted:
      ++counted;
      return;
    case kNullReply:
      answer->reply_length = 4;
      return;
    case kNoReplyFlag:
      answer->status = static_cast<uint16_t>(request->no_reply);
      return;
    case kBusy:
      std::this_thread::sleep_for(std::chrono::milliseconds(parameter(*request, 0)));
      return;
    case kOpenFiles:
      answer->status = static_cast<uint16_t>(failed_opens(parameter(*request, 0)));
      return;
    default:
      answer->status = 99;
  }
}

ServerThread::ServerThread(const Setup &setup) {
  olt_server_options options{.run_dir = setup.run_dir,
                             .group = setup.group,
                             .stall_ms = setup.stall_ms,
                             .on_event = note,
                             .context = this,
                             .pending_limit = setup.pending_limit};
  char error[256] = "";
  server_ = olt_server_create(&options, error);
  if (server_ == nullptr) throw std::runtime_error(error);
  for (uint32_t module : setup.modules) {
    if (olt_server_add(server_, module, setup.handler, nullptr, error) != 0) {
      olt_server_destroy(server_);
      throw std::runtime_error(error);
    }
  }
  thread_ = std::thread([this, before_run = setup.before_run] {
    before_run();
    char line[256] = "";
    EXPECT_EQ(olt_server_run(server_, line), 0) << line;
  });
}

ServerThread::~ServerThread() {
  olt_server_stop(server_);
  thread_.join();
  olt_server_destroy(server_);
}

void ServerThread::note(void *context, const char *line) {
  auto *self = static_cast<ServerThread *>(context);
  std::lock_guard guard(self->lock_);
  self->events_ += line;
  self->events_ += '\n';
}

olt_server_counters ServerThread::counters() const {
  olt_server_counters counters{};
  olt_server_count(server_, &counters);
  return counters;
}

bool ServerThread::reaches(uint64_t olt_server_counters::*counter, uint64_t value) const {
  for (int i = 0; i < 1000 && counters().*counter != value; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return counters().*counter == value;
}

std::string ServerThread::events() const {
  std::lock_guard guard(lock_);
  return events_;
}

ServerProcess::ServerProcess(const std::string &run_dir, const std::vector<uint32_t> &modules,
                             const char *group, const std::function<void()> &prepare) {
  int ready[2];
  if (pipe(ready) != 0) throw std::runtime_error("pipe failed");
  pid_ = fork();
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    close(ready[0]);
    prepare();
    olt_server_options options{.run_dir = run_dir.c_str(), .group = group};
    char error[256] = "";
    olt_server *server = olt_server_create(&options, error);
    for (uint32_t module : modules) {
      if (server == nullptr || olt_server_add(server, module, act, nullptr, error) != 0) {
        dprintf(STDERR_FILENO, "%s\n", error);
        _exit(1);
      }
    }
    [[maybe_unused]] const ssize_t written = write(ready[1], "r", 1);
    close(ready[1]);
    _exit(olt_server_run(server, error) == 0 ? 0 : 1);
  }
  close(ready[1]);
  char sign = 0;
  ssize_t got = read(ready[0], &sign, 1);
  close(ready[0]);
  if (got != 1) throw std::runtime_error("the server process did not start");
}

void ServerProcess::kill() {
  if (pid_ > 0) {
    ::kill(pid_, SIGKILL);
    exit_status(pid_);
    pid_ = -1;
  }
}

int listen_at(const std::string &socket_path, int backlog) {
  std::filesystem::create_directories(std::filesystem::path(socket_path).parent_path());
  sockaddr_un address = address_of(socket_path);
  int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
      listen(listener, backlog) != 0) {
    throw std::runtime_error("cannot listen at " + socket_path);
  }
  return listener;
}

FakeModule::FakeModule(const std::string &socket_path, std::function<void(int)> script)
    : listener_(listen_at(socket_path, 16)) {
  thread_ = std::thread([this, script = std::move(script)] {
    started_.count_down();
    for (;;) {
      int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (client < 0) return;
      {
        std::lock_guard guard(lock_);
        ++connections_;
      }
      script(client);
      close(client);
    }
  });
  started_.wait();
}

FakeModule::~FakeModule() {
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
}

int FakeModule::connections() const {
  std::lock_guard guard(lock_);
  return connections_;
}

RawClient::RawClient(const std::string &socket_path)
    : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_un address = address_of(socket_path);
  if (connect(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot connect to " + socket_path);
  }
}

void RawClient::close() {
  if (socket_ >= 0) {
    ::close(socket_);
    socket_ = -1;
  }
}

bool RawClient::send(const Bytes &bytes) const {
  return ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
         static_cast<ssize_t>(bytes.size());
}

Bytes RawClient::receive(size_t length) const {
  return receive_bytes(socket_, length);
}

bool RawClient::is_closed() const {
  char byte = 0;
  return readable_within(socket_, 5000) && recv(socket_, &byte, 1, 0) <= 0;
}

void send_bytes(int socket, const Bytes &bytes) {
  for (size_t sent = 0; sent < bytes.size();) {
    ssize_t count = send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<size_t>(count);
  }
}

Bytes receive_bytes(int socket, size_t length) {
  Bytes bytes(length);
  size_t filled = 0;
  while (filled < length && readable_within(socket, 5000)) {
    ssize_t count = recv(socket, bytes.data() + filled, length - filled, 0);
    if (count <= 0) break;
    filled += static_cast<size_t>(count);
  }
  bytes.resize(filled);
  return bytes;
}

Bytes answer_frame(const Bytes &request, std::string_view rest) {
  Bytes frame = text("OLA1");
  frame.insert(frame.end(), request.begin() + 4, request.begin() + 8);
  Bytes tail = hex(rest);
  frame.insert(frame.end(), tail.begin(), tail.end());
  return frame;
}

Bytes request_frame(uint32_t sequence, uint32_t type, const Bytes &data, uint32_t flags) {
  Bytes frame = text("OLQ1");
  for (uint32_t value : {sequence, type, flags, static_cast<uint32_t>(data.size())}) {
    Bytes bytes = word(value);
    frame.insert(frame.end(), bytes.begin(), bytes.end());
  }
  frame.insert(frame.end(), data.begin(), data.end());
  return frame;
}

Bytes Exchanged::bytes() const {
  const auto *start = static_cast<const uint8_t *>(reply);
  return Bytes(start, start + length);
}

Exchanged exchange(uint32_t module, uint32_t type, Bytes request, uint32_t timeout) {
  return timed_exchange(module, type, std::move(request), timeout, 0);
}

Bytes exchange_bytes(uint32_t module, uint32_t type, const Bytes &request, uint32_t timeout) {
  Exchanged all = exchange(module, type, request, timeout);
  if (all.result != 0 || all.status != 0) return {};
  Bytes bytes = all.bytes();
  IPC_Free(all.handle);
  return bytes;
}

Exchanged post(uint32_t module, uint32_t type, Bytes request, uint32_t timeout) {
  return timed_exchange(module, type, std::move(request), timeout, 1);
}

ChildResult run_in_child(const std::function<int()> &body) {
  int errors[2];
  if (pipe(errors) != 0) throw std::runtime_error("pipe failed");
  pid_t child = fork();
  if (child == 0) {
    dup2(errors[1], STDERR_FILENO);
    close(errors[0]);
    close(errors[1]);
    std::exit(body());
  }
  close(errors[1]);
  ChildResult result;
  char piece[4096];
  for (ssize_t count = 0; (count = read(errors[0], piece, sizeof piece)) > 0;) {
    result.errors.append(piece, static_cast<size_t>(count));
  }
  close(errors[0]);
  result.status = exit_status(child);
  return result;
}

size_t open_descriptors() {
  return open_descriptors_of(getpid());
}

size_t open_descriptors_of(pid_t process) {
  std::filesystem::directory_iterator entries("/proc/" + std::to_string(process) + "/fd");
  return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

void drop_connections() {
  olt_connect_through(nullptr, nullptr);
  post(4294967295u, 0, {}, 0);
}

}  // namespace olt::test
