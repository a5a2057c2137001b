#include "tests/library/runner.h"

#include <setjmp.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/library/scripted_platform.h"

namespace olt::test {

namespace {

constexpr size_t kNoExchange = SIZE_MAX;
constexpr uint8_t kBehindReply = 0xEE;

/// One thing that can happen to a call.
struct Case {
  const char *name;
  /// Index of the exchange that is answered with the next four members; all others succeed.
  size_t exchange = kNoExchange;
  int32_t result = 0;
  uint16_t status = 0;
  bool writes_status = true;
  bool writes_reply = true;
  /// Addresses modulo 4; -1: right before inaccessible memory.
  int reply_remainder = -1;
  int buffer_remainder = -1;
  size_t extra_reply = 0;
  bool hides_reply_length = false;
  bool out_of_memory = false;
};

struct Failure {
  const char *name;
  int32_t result;
  uint16_t status;
  bool writes_status;
  bool writes_reply;
};

constexpr Failure kFailures[] = {
    {"transport result 1", 1, 0, true, false},
    {"transport result -1", -1, 0, true, false},
    {"transport result 0x20000", 0x20000, 0, true, true},
    {"transport result -0x80000000", INT32_MIN, 0, true, false},
    {"transport result 1, status not written", 1, 0, false, false},
    {"transport result -5, status not written", -5, 0, false, true},
    {"status 1", 0, 1, true, true},
    {"status 5", 0, 5, true, false},
    {"status 0x8000", 0, 0x8000, true, true},
    {"status 0xFFFF", 0, 0xFFFF, true, true},
    {"transport result 3, status 5", 3, 5, true, true},
    {"transport result -2, status 1", -2, 1, true, false},
    {"transport result 0x10000, status 0xFFFF", 0x10000, 0xFFFF, true, true},
    {"status not written", 0, 0, false, true},
};

size_t exchange_count(const Row &row) {
  size_t count = 0;
  while (count != 2 && row.exchanges[count].type != 0) ++count;
  return count;
}

size_t block_count(const Row &row) {
  size_t count = 0;
  while (count != kMaxBlocks && row.blocks[count].name != nullptr) ++count;
  return count;
}

bool wants_reply(const Row &row) {
  return row.exchanges[0].reply != nullptr || row.exchanges[1].reply != nullptr;
}

bool has_block_at_any_address(const Row &row) {
  for (size_t i = 0; i != block_count(row); ++i)
    if (row.blocks[i].alignment == Alignment::kAny) return true;
  return false;
}

const char *name_of(EventKind kind) {
  switch (kind) {
    case EventKind::kExchange:
      return "platmsg_syn_result";
    case EventKind::kReplyReleased:
      return "IPC_Free";
    case EventKind::kAllocated:
      return "___MALLOC";
    case EventKind::kReleased:
      return "___FREE";
    case EventKind::kLogged:
      return "log_log";
  }
  return "?";
}

const char *name_of(ReplyArguments arguments) {
  switch (arguments) {
    case ReplyArguments::kAllNull:
      return "all null";
    case ReplyArguments::kAllGiven:
      return "all given";
    case ReplyArguments::kMixed:
      return "some of them null";
  }
  return "?";
}

sigjmp_buf g_before_call;
const void *volatile g_fault_address;

void leave_call(int /*signal*/, siginfo_t *info, void * /*context*/) {
  g_fault_address = info->si_addr;
  siglongjmp(g_before_call, 1);
}

constexpr int kSurvived = 0;
constexpr int kDiedElsewhere = 77;

/// Lets the process die of a fault in the first page, where null pointers point.
void die_of_null(int signal_number, siginfo_t *info, void * /*context*/) {
  if (reinterpret_cast<uintptr_t>(info->si_addr) >= 4096) _exit(kDiedElsewhere);
  static_cast<void>(signal(signal_number, SIG_DFL));
}

/// Handles memory faults during its lifetime.
class FaultHandler {
 public:
  explicit FaultHandler(void (*handler)(int, siginfo_t *, void *)) {
    struct sigaction action = {};
    action.sa_sigaction = handler;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    sigaction(SIGSEGV, &action, &old_segv_);
    sigaction(SIGBUS, &action, &old_bus_);
  }
  ~FaultHandler() {
    sigaction(SIGSEGV, &old_segv_, nullptr);
    sigaction(SIGBUS, &old_bus_, nullptr);
  }
  FaultHandler(const FaultHandler &) = delete;
  FaultHandler &operator=(const FaultHandler &) = delete;

 private:
  struct sigaction old_segv_;
  struct sigaction old_bus_;
};

/// @return false if the call touched inaccessible memory.
bool call(const Row &row, const Addresses &addresses, int32_t *result) {
  FaultHandler handler(leave_call);
  if (sigsetjmp(g_before_call, 1) != 0) return false;
  *result = row.call(Caller(addresses));
  return true;
}

[[noreturn]] void call_in_child(const Row &row, const Addresses &addresses) {
  struct rlimit no_core = {0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  if (freopen("/dev/null", "w", stderr) == nullptr) _exit(kDiedElsewhere);
  FaultHandler handler(die_of_null);
  row.call(Caller(addresses));
  _exit(kSurvived);
}

/// A sanitizer may end the process before the memory fault.
bool died_of_null(int wait_status) {
#ifdef OLT_TEST_SANITIZED
  if (WIFEXITED(wait_status))
    return WEXITSTATUS(wait_status) != kSurvived && WEXITSTATUS(wait_status) != kDiedElsewhere;
  return WIFSIGNALED(wait_status);
#else
  return WIFSIGNALED(wait_status) && WTERMSIG(wait_status) == SIGSEGV;
#endif
}

/// What is expected of a row in a case.
struct Outcome {
  int32_t result;
  size_t exchanges;  ///< how many are made
  bool accepted;     ///< whether all of them are
  bool dies;
};

bool allocation_fails(const Case &now, OutOfMemory policy) {
  return now.out_of_memory && policy != OutOfMemory::kAllocatesNothing;
}

Outcome expected_outcome(const Row &row, const Case &now) {
  size_t all = exchange_count(row);
  if (row.results == Results::kRefused) return {-1, 0, false, false};
  if (allocation_fails(now, row.request_block.out_of_memory)) {
    OutOfMemory policy = row.request_block.out_of_memory;
    return {policy == OutOfMemory::kMinusOne ? -1 : 0, 0, false, policy == OutOfMemory::kUntested};
  }
  uint16_t initial_status = row.results == Results::kTransportElseStatus ? 0xFFFF : 0;
  uint16_t status = now.writes_status ? now.status : initial_status;
  if (now.exchange == kNoExchange || (now.result == 0 && status == 0)) {
    bool dies = allocation_fails(now, row.returned_block.out_of_memory) &&
                row.returned_block.out_of_memory == OutOfMemory::kUntested &&
                BytePattern(row.returned_block.bytes, {}).size() != 0;
    return {0, all, true, dies};
  }
  Outcome failed{now.result | status, now.exchange + 1, false, false};
  if (row.results == Results::kTransportElseStatus && now.result != 0) failed.result = now.result;
  if (row.results == Results::kMinusOne) failed.result = -1;
  if (row.results == Results::kAlwaysZero) failed.result = 0;
  return failed;
}

/// One call of a row's operation in one case.
class Run {
 public:
  Run(const Row &row, const Case &now, Findings &findings)
      : row_(row), case_(now), findings_(findings), expected_(expected_outcome(row, now)) {}
  ~Run() {
    for (uint8_t *reply : replies_) free(reply);
  }
  Run(const Run &) = delete;
  Run &operator=(const Run &) = delete;

  void execute() {
    place_blocks();
    prepare_platform();
    if (expected_.dies ? !die() : !survive()) return;
    check_events();
    check_blocks();
  }

 private:
  void place_blocks() {
    for (size_t i = 0; i != block_count(row_); ++i) {
      const CallerBlock &block = row_.blocks[i];
      size_t size = BytePattern(block.before, addresses_).size();
      if (block.alignment == Alignment::kAny && case_.buffer_remainder >= 0) {
        blocks_[i].place(size, 4, static_cast<size_t>(case_.buffer_remainder));
      } else {
        blocks_[i].place(size, static_cast<size_t>(block.alignment));
      }
      addresses_.blocks[i] = blocks_[i].data();
    }
    for (size_t i = 0; i != block_count(row_); ++i) {
      BytePattern before(row_.blocks[i].before, addresses_);
      memcpy(blocks_[i].data(), before.data(), before.size());
    }
  }

  void prepare_platform() {
    for (size_t i = 0; i != exchange_count(row_); ++i) {
      BytePattern bytes(row_.exchanges[i].reply, addresses_);
      size_t length = bytes.size() + case_.extra_reply;
      replies_[i] = static_cast<uint8_t *>(malloc(length + 1));
      memcpy(replies_[i], bytes.data(), bytes.size());
      memset(replies_[i] + bytes.size(), kBehindReply, case_.extra_reply);

      Answer answer;
      answer.reply = replies_[i];
      answer.reply_length = static_cast<uint16_t>(length);
      answer.hides_reply_length = case_.hides_reply_length;
      answer.reply_remainder = case_.reply_remainder;
      answer.reply_is_readable = expected_.accepted;
      if (i == case_.exchange) {
        answer.result = case_.result;
        answer.status = case_.status;
        answer.writes_status = case_.writes_status;
        answer.writes_reply = case_.writes_reply;
      }
      platform_.answer(answer);
    }
    if (case_.out_of_memory) platform_.fail_allocation(1, true);
  }

  bool survive() {
    int32_t result = 0;
    if (!call(row_, addresses_, &result)) {
      report_fault();
      return false;
    }
    if (result != expected_.result)
      findings_.add("result: expected %d, got %d", expected_.result, result);
    return true;
  }

  bool die() {
    pid_t child = fork();
    if (child == 0) call_in_child(row_, addresses_);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
      findings_.add("cannot fork");
      return false;
    }
    if (died_of_null(status)) return true;
    findings_.add("expected to die of writing to null, got wait status 0x%x",
                  static_cast<unsigned>(status));
    return false;
  }

  void report_fault() {
    const void *address = g_fault_address;
    for (size_t i = 0; i != block_count(row_); ++i) {
      if (!blocks_[i].surrounds(address)) continue;
      findings_.add("touched byte %td of the caller's %s, which has %zu",
                    static_cast<const uint8_t *>(address) - blocks_[i].data(), row_.blocks[i].name,
                    blocks_[i].size());
      return;
    }
    const char *place = platform_.describe(address);
    findings_.add("touched %s (%p)", place != nullptr ? place : "inaccessible memory", address);
  }

  // Every operation makes its calls in the same order: it allocates the request block before the
  // exchange, releases it right after the exchange, and releases the reply last.

  void check_events() {
    const void *request_block = nullptr;
    OutOfMemory policy = row_.request_block.out_of_memory;
    if (policy != OutOfMemory::kAllocatesNothing && row_.results != Results::kRefused) {
      BytePattern request(row_.exchanges[0].request, addresses_);
      if (!expect_allocation(request.size(), row_.request_block.allocation_line, &request_block))
        return;
      if (request_block == nullptr && !expect_out_of_memory_events(policy)) return;
    }
    for (size_t i = 0; i != expected_.exchanges; ++i)
      if (!expect_exchange(row_.exchanges[i], request_block)) return;
    if (request_block != nullptr && !expect_release(request_block)) return;
    if (expected_.accepted && wants_reply(row_) && !expect_reply_use()) return;
    if (next_event_ != platform_.event_count())
      findings_.add("expected no further call, got %s", name_of(platform_.event(next_event_).kind));
    if (!platform_.blocks_intact()) findings_.add("wrote outside of a ___MALLOC block");
  }

  bool expect_out_of_memory_events(OutOfMemory policy) {
    if (row_.request_block.log != nullptr && !expect_log()) return false;
    return policy != OutOfMemory::kZeroAndRelease || expect_release(nullptr);
  }

  bool expect_reply_use() {
    const Event *exchange = &platform_.event(next_event_ - 1);
    if (exchange->kind != EventKind::kExchange) exchange = &platform_.event(next_event_ - 2);
    if (row_.returned_block.out_of_memory != OutOfMemory::kAllocatesNothing) {
      BytePattern bytes(row_.returned_block.bytes, addresses_);
      if (!expect_allocation(bytes.size(), 0, &addresses_.returned_block)) return false;
      if (expected_.dies) return true;
      if (addresses_.returned_block != nullptr)
        check_bytes("returned block", bytes,
                    static_cast<const uint8_t *>(addresses_.returned_block));
    }
    if (!row_.releases_reply) return true;
    const Event *event = expect(EventKind::kReplyReleased);
    if (event == nullptr) return false;
    expect_number("reply handle", exchange->handle, event->handle);
    return true;
  }

  const Event *expect(EventKind kind) {
    if (next_event_ == platform_.event_count()) {
      findings_.add("expected %s, got no further call", name_of(kind));
      return nullptr;
    }
    const Event &event = platform_.event(next_event_++);
    if (event.kind == kind) return &event;
    findings_.add("expected %s, got %s", name_of(kind), name_of(event.kind));
    return nullptr;
  }

  bool expect_exchange(const Exchange &expected, const void *request_block) {
    const Event *event = expect(EventKind::kExchange);
    if (event == nullptr) return false;
    bool no_reply = expected.reply == nullptr;
    expect_number("message type", expected.type, event->type);
    expect_number("module", expected.module, event->module);
    expect_number("time-out", expected.timeout, event->timeout);
    expect_number("no-reply flag", no_reply ? 1 : 0, event->no_reply);
    expect_number("initial status", row_.results == Results::kTransportElseStatus ? 0xFFFF : 0,
                  event->initial_status);
    ReplyArguments arguments = no_reply ? ReplyArguments::kAllNull : ReplyArguments::kAllGiven;
    if (event->reply_arguments != arguments)
      findings_.add("reply arguments: expected %s, got %s", name_of(arguments),
                    name_of(event->reply_arguments));
    if (!no_reply && !event->reply_was_cleared)
      findings_.add("reply arguments: expected cleared values, got others");
    check_request(expected, *event, request_block);
    return true;
  }

  void check_request(const Exchange &expected, const Event &event, const void *request_block) {
    if (expected.request == nullptr && event.request != nullptr)
      findings_.add("request: expected a null pointer, got another");
    if (expected.sent_from != kNoBlock && event.request != addresses_.blocks[expected.sent_from])
      findings_.add("request: expected the caller's %s itself, got another address",
                    row_.blocks[expected.sent_from].name);
    if (request_block != nullptr && event.request != request_block)
      findings_.add("request: expected the ___MALLOC block, got another address");
    BytePattern bytes(expected.request, addresses_);
    if (expect_number("request length", bytes.size(), event.request_length))
      check_bytes("request", bytes, event.request_bytes);
  }

  bool expect_allocation(size_t size, int line, const void **block) {
    const Event *event = expect(EventKind::kAllocated);
    if (event == nullptr) return false;
    expect_number("___MALLOC size", size, event->size);
    check_tag(*event, line);
    *block = event->block;
    return true;
  }

  bool expect_release(const void *block) {
    const Event *event = expect(EventKind::kReleased);
    if (event == nullptr) return false;
    if (event->block != block)
      findings_.add("___FREE: expected the request block %p, got %p", block, event->block);
    else if (block != nullptr && !event->block_was_intact)
      findings_.add("wrote outside of the request block");
    check_tag(*event, row_.request_block.release_line);
    return true;
  }

  bool expect_log() {
    const Event *event = expect(EventKind::kLogged);
    if (event == nullptr) return false;
    expect_number("log level", 3, static_cast<size_t>(event->level));
    check_tag(*event, row_.request_block.log_line);
    if (strcmp(row_.request_block.log, event->message) != 0)
      findings_.add("log line: expected >%s<, got >%s<", row_.request_block.log, event->message);
    return true;
  }

  void check_tag(const Event &event, int line) {
    if (strcmp(event.tag, row_.operation) != 0)
      findings_.add("%s tag: expected %s, got %s", name_of(event.kind), row_.operation, event.tag);
    if (line != 0 && line != event.line)
      findings_.add("%s line: expected %d, got %d", name_of(event.kind), line, event.line);
  }

  void check_blocks() {
    for (size_t i = 0; i != block_count(row_); ++i) {
      const CallerBlock &block = row_.blocks[i];
      const char *text = expected_.accepted ? block.after : failed_text(block);
      BytePattern bytes(text != nullptr ? text : block.before, addresses_);
      if (expect_number(block.name, blocks_[i].size(), bytes.size()))
        check_bytes(block.name, bytes, blocks_[i].data());
      if (!blocks_[i].intact()) findings_.add("wrote outside of the caller's %s", block.name);
    }
  }

  /// Without any exchange, the block is unchanged.
  const char *failed_text(const CallerBlock &block) const {
    return expected_.exchanges == 0 ? nullptr : block.after_failure;
  }

  bool expect_number(const char *what, size_t expected, size_t got) {
    if (expected == got) return true;
    findings_.add("%s: expected %zu (0x%zx), got %zu (0x%zx)", what, expected, expected, got, got);
    return false;
  }

  void check_bytes(const char *what, const BytePattern &expected, const uint8_t *got) {
    size_t offset = expected.mismatch(got);
    if (offset == expected.size()) return;
    findings_.add("%s, byte %zu of %zu: expected %02X, got %02X", what, offset, expected.size(),
                  expected.data()[offset], got[offset]);
  }

  const Row &row_;
  const Case &case_;
  Findings &findings_;
  Outcome expected_;
  ScriptedPlatform platform_;
  Addresses addresses_;
  GuardedMemory blocks_[kMaxBlocks];
  uint8_t *replies_[2] = {};
  size_t next_event_ = 0;
};

void run_case(const Row &row, const Case &now, Findings &findings) {
  if (now.reply_remainder >= 0 || now.buffer_remainder >= 0) {
    findings.about(row, "%s, reply at +%d, buffers at +%d", now.name, now.reply_remainder,
                   now.buffer_remainder);
  } else if (now.exchange != kNoExchange) {
    findings.about(row, "exchange %zu: %s", now.exchange + 1, now.name);
  } else {
    findings.about(row, "%s", now.name);
  }
  Run(row, now, findings).execute();
}

void run_addresses(const Row &row, Findings &findings) {
  int last_reply = wants_reply(row) ? 3 : -1;
  int last_buffer = has_block_at_any_address(row) ? 3 : -1;
  for (int reply = -1; reply <= last_reply; ++reply)
    for (int buffer = -1; buffer <= last_buffer; ++buffer)
      run_case(row, {.name = "success", .reply_remainder = reply, .buffer_remainder = buffer},
               findings);
}

void run_failures(const Row &row, Findings &findings) {
  for (size_t i = 0; i != exchange_count(row); ++i)
    for (const Failure &failure : kFailures)
      run_case(row,
               {.name = failure.name,
                .exchange = i,
                .result = failure.result,
                .status = failure.status,
                .writes_status = failure.writes_status,
                .writes_reply = failure.writes_reply},
               findings);
}

}  // namespace

// Arguments as for printf, checked by the compiler. Long lines are truncated.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
void Findings::about(const Row &row, const char *format, ...) {
  int length =
      snprintf(about_, sizeof about_, "%s%s%s, ", row.operation, row.variant != nullptr ? " " : "",
               row.variant != nullptr ? row.variant : "");
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(about_ + length, sizeof about_ - static_cast<size_t>(length), format, arguments);
  va_end(arguments);
}

void Findings::add(const char *format, ...) {
  char text[256];
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  char line[sizeof about_ + sizeof text + 2];
  snprintf(line, sizeof line, "%s: %s", about_, text);
  sink_(context_, line);
  ++count_;
}
// NOLINTEND(clang-analyzer-valist.Uninitialized)

void run_row(const Row &row, Findings &findings) {
  run_addresses(row, findings);
  if (wants_reply(row) && !row.returned_block.whole_reply) {
    run_case(row, {.name = "longer reply", .extra_reply = 64}, findings);
    run_case(row, {.name = "reply length of 0", .hides_reply_length = true}, findings);
  }
  run_failures(row, findings);
  if (row.request_block.out_of_memory != OutOfMemory::kAllocatesNothing ||
      row.returned_block.out_of_memory != OutOfMemory::kAllocatesNothing)
    run_case(row, {.name = "out of memory", .out_of_memory = true}, findings);
}

}  // namespace olt::test
