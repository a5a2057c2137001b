// Makes exchanges with libolttrace in front of the platform, and checks what it writes into the
// folder of OLT_CAPTURE. Needs only a C library, so that the same checks run on the target.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "oltplatform.h"
#include "tests/target/checks.h"

namespace {

// The offsets and numbers of docs/capture.md.
constexpr uint32_t kSectionBlock = 0x0A0D0D0A;
constexpr uint32_t kInterfaceBlock = 1;
constexpr uint32_t kPacketBlock = 6;
constexpr uint32_t kPaddingBlock = 0x804F4C54;
constexpr uint32_t kHeaderAt = 40;
constexpr uint32_t kRecordAt = 104;
constexpr uint32_t kRequest = 1;

constexpr int kSkipped = 77;
constexpr uint32_t kMaxExchanges = 20'000;

char folder[256];

uint32_t half_at(const uint8_t *bytes) {
  return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8U;
}

uint32_t word_at(const uint8_t *bytes) {
  return half_at(bytes) | half_at(bytes + 2) << 16U;
}

/// What a walk through a capture finds.
struct Capture {
  uint8_t *bytes;
  uint32_t length;
  uint32_t sections, requests, answers;
  uint32_t first, last;    ///< exchange
  bool is_whole;           ///< every block is as long as it says twice; only padding may be cut
  bool ends_with_padding;  ///< that is whole
  uint32_t place[64];      ///< of the first packets
  uint8_t seen[kMaxExchanges + 1];
};

Capture capture;

void count_packet(const uint8_t *block, uint32_t at) {
  const uint32_t packets = capture.requests + capture.answers;
  if (packets < 64) capture.place[packets] = at;
  const uint32_t exchange = word_at(block + kHeaderAt + 20);
  ++(block[kHeaderAt + 4] == kRequest ? capture.requests : capture.answers);
  if (capture.first == 0) capture.first = exchange;
  capture.last = exchange;
  if (exchange <= kMaxExchanges) ++capture.seen[exchange];
}

bool walk() {
  uint32_t at = 0;
  while (at + 12 <= capture.length) {
    const uint8_t *block = capture.bytes + at;
    const uint32_t type = word_at(block);
    const uint32_t length = word_at(block + 4);
    if (type == kPaddingBlock && length > capture.length - at) return true;
    if (length < 12 || length % 4 != 0 || length > capture.length - at) return false;
    if (word_at(block + length - 4) != length) return false;
    if (type == kSectionBlock) ++capture.sections;
    capture.ends_with_padding = type == kPaddingBlock;
    if (type == kPacketBlock) count_packet(block, at);
    if (type != kSectionBlock && type != kPaddingBlock && type != kPacketBlock &&
        type != kInterfaceBlock) {
      return false;
    }
    at += length;
  }
  return at == capture.length;
}

/// Reads the capture with this name in the folder. @return whether there is one
bool read_capture(const char *name) {
  char path[512];
  struct stat status;
  free(capture.bytes);
  memset(&capture, 0, sizeof capture);
  snprintf(path, sizeof path, "%s/%s", folder, name);
  const int file = open(path, O_RDONLY);
  if (file < 0 || fstat(file, &status) != 0) return false;
  capture.bytes = static_cast<uint8_t *>(malloc(static_cast<size_t>(status.st_size) + 1));
  const ssize_t count = read(file, capture.bytes, static_cast<size_t>(status.st_size));
  close(file);
  if (count != status.st_size) return false;
  capture.length = static_cast<uint32_t>(count);
  capture.is_whole = walk();
  return true;
}

bool read_capture_of(int process, const char *suffix = "") {
  char name[64];
  snprintf(name, sizeof name, "%d%s", process, suffix);
  return read_capture(name);
}

bool read_own(const char *suffix = ".pcapng") {
  return read_capture_of(getpid(), suffix);
}

int count_files() {
  int count = 0;
  DIR *entries = opendir(folder);
  while (const dirent *entry = readdir(entries)) count += entry->d_name[0] != '.';
  closedir(entries);
  return count;
}

void find_folder() {
  const char *pattern = getenv("OLT_CAPTURE");
  snprintf(folder, sizeof folder, "%s", pattern == nullptr ? "" : pattern);
  char *slash = strrchr(folder, '/');
  if (slash != nullptr) *slash = 0;
}

void empty_folder() {
  DIR *entries = opendir(folder);
  while (const dirent *entry = entries == nullptr ? nullptr : readdir(entries)) {
    char path[600];
    snprintf(path, sizeof path, "%s/%s", folder, entry->d_name);
    if (strstr(entry->d_name, ".pcapng") != nullptr || strstr(entry->d_name, "listing") != nullptr)
      unlink(path);
  }
  if (entries != nullptr) closedir(entries);
}

struct Answer {
  int32_t result;
  uint16_t status;
  void *reply;
  uint16_t length;
};

Answer exchange(uint32_t type, void *request, uint32_t length, uint32_t no_reply = 0) {
  Answer answer = {.result = 0, .status = 0xEEEE, .reply = nullptr, .length = 0};
  uint32_t handle = 0;
  answer.result = platmsg_syn_result(type, 2, request, length, &answer.reply, &answer.length,
                                     &handle, &answer.status, no_reply, 10);
  return answer;
}

/// Exchanges of 80 bytes each way. @return how many the platform answered
int make_exchanges(int count) {
  char request[80] = "request";
  int answered = 0;
  for (int i = 0; i < count; i++) {
    const Answer answer = exchange(12, request, sizeof request);
    answered += answer.result == 0 && answer.status == 0 && answer.reply == request;
  }
  return answered;
}

/// Sends what is written to standard error to a file in the folder above.
void keep_errors() {
  char path[512];
  snprintf(path, sizeof path, "%s.errors", folder);
  const int file = open(path, O_RDWR | O_CREAT | O_TRUNC, 0600);
  dup2(file, 2);
  close(file);
}

/// All that was written to standard error since.
const char *kept_errors() {
  static char text[1024];
  const ssize_t count = pread(2, text, sizeof text - 1, 0);
  text[count < 0 ? 0 : count] = 0;
  return text;
}

void expect_packet(const char *what, int packet, const char *bytes, uint32_t from, uint32_t size) {
  const uint8_t *block = capture.bytes + capture.place[packet];
  expect(what, 0, memcmp(block + from, bytes, size));
}

// What is recorded

void check_section() {
  // Section header with the option "user application", interface of link type 252 with name and
  // nanoseconds.
  const uint8_t *block = capture.bytes;
  expect("section: magic", 0x1A2B3C4D, word_at(block + 8));
  expect("section: version", 1, word_at(block + 12));
  char program[256] = "";
  const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
  expect("section: option", 4, half_at(block + 24));
  const uint32_t named = half_at(block + 26);
  expect("section: program", 1, named > 0 && length > static_cast<ssize_t>(named));
  expect("section: program", 0, memcmp(block + 28, program + length - named, named));
  expect("section: whole name", '/', program[static_cast<size_t>(length) - named - 1]);
  const uint8_t *interface = block + word_at(block + 4);
  const uint32_t end = 32 + (named + 3) / 4 * 4;
  expect("interface: type", 1, word_at(interface));
  expect("interface: length", end + 16, word_at(interface + 4));
  expect("interface", 0, memcmp(interface + 8, "\xfc\0\0\0\0\0\0\0\2\0\x08\0platform\3\0", 22));
  expect("interface: program", named, half_at(interface + 30));
  expect("interface: program", 0, memcmp(interface + 32, block + 28, named));
  expect("interface: nanoseconds", 0, memcmp(interface + end, "\x09\0\1\0\x09\0\0\0\0\0\0\0", 12));
}

void check_exchanges() {
  char request[5] = "abcd";
  errno = 0;
  const timespec before = [] {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
  }();
  expect("an exchange", 0, exchange(15, request, 5).result);
  expect("errno is the platform's", ENOTTY, errno);
  expect("a transport failure", 0x00010000, exchange(901, request, 2).result);
  expect("a refusal", 5, exchange(902, request, 3).status);
  expect("without a reply", 0, exchange(16, nullptr, 0, 1).status);
  expect("own file", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  expect("sections", 1, capture.sections);
  expect("requests", 4, capture.requests);
  expect("answers", 4, capture.answers);
  check_section();

  // Interface, then in both packets the tag of the dissector, header and record.
  const uint8_t *block = capture.bytes + capture.place[0];
  expect_packet("request: interface", 0, "\0\0\0\0", 8, 4);
  expect("request: captured", 12 + 64 + 5, word_at(block + 20));
  expect("request: original", 12 + 64 + 5, word_at(block + 24));
  expect_packet("request: tag", 0, "\0\x0c\0\4olt\0\0\0\0\0", 28, 12);
  expect_packet("request: header", 0, "OLT1\1\0\x40\0", 40, 8);
  expect("request: process", getpid(), word_at(block + kHeaderAt + 12));
  expect("request: thread", getpid(), word_at(block + kHeaderAt + 16));
  expect_packet("request: numbers", 0, "\1\0\0\0\2\0\0\0\x0f\0\0\0\x0a\0\0\0\5\0\0\0", 60, 20);
  expect_packet("request: no result", 0, "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 80,
                24);
  expect_packet("request: record and end", 0, "abcd\0\0\0\0\x74\0\0\0", kRecordAt, 12);
  const uint64_t time = static_cast<uint64_t>(word_at(block + 12)) << 32U | word_at(block + 16);
  const auto began = static_cast<int64_t>(time / 1'000'000'000);
  expect("request: time", 1, began >= before.tv_sec && began <= before.tv_sec + 60);

  const uint8_t *answer = capture.bytes + capture.place[1];
  expect_packet("answer: header", 1, "OLT1\2\0\x40\0", 40, 8);
  expect_packet("answer: record and end", 1, "abcd\0\0\0\0\x74\0\0\0", kRecordAt, 12);
  const uint64_t end = static_cast<uint64_t>(word_at(answer + 12)) << 32U | word_at(answer + 16);
  const uint64_t duration =
      static_cast<uint64_t>(word_at(answer + 92)) << 32U | word_at(answer + 88);
  expect("answer: time", static_cast<int64_t>(time + duration), static_cast<int64_t>(end));

  const uint8_t *failed = capture.bytes + capture.place[3];
  expect("failure: result", 0x00010000, word_at(failed + kHeaderAt + 40));
  expect("failure: status", 0, half_at(failed + kHeaderAt + 44));
  const uint8_t *refused = capture.bytes + capture.place[5];
  expect("refusal: result", 0, word_at(refused + kHeaderAt + 40));
  expect("refusal: status", 5, half_at(refused + kHeaderAt + 44));
  expect("refusal: record", 0, word_at(refused + kHeaderAt + 36));
  expect_packet("no reply wanted", 6, "OLT1\1\1", 40, 6);
  expect("no request", 0, word_at(capture.bytes + capture.place[6] + kHeaderAt + 36));
}

/// A record longer than a packet may be is cut and keeps its length.
void check_long() {
  static char request[1'500'000];
  expect("a long request", 0, exchange(11, request, sizeof request, 1).result);
  expect("more of them", 3, make_exchanges(3));
  expect("own file", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  const uint8_t *block = capture.bytes + capture.place[0];
  expect("captured", 12 + 64 + 131072, word_at(block + 20));
  expect("original", 12 + 64 + 1'500'000, word_at(block + 24));
  expect("length in the header", 1'500'000, word_at(block + kHeaderAt + 36));
  expect("requests", 4, capture.requests);
}

/// The password of a user, and those of a list of entries; the same request in another module's
/// control carries a piece of a configuration.
void check_secrets() {
  char user[80];
  memset(user, 'u', sizeof user);
  memset(user + 40, 's', 32);
  exchange(10, user, sizeof user);
  char entries[80 + 3 * 44];
  memset(entries, 'e', sizeof entries);
  for (int i = 0; i < 3; i++) memset(entries + 112 + i * 44, 's', 12);
  exchange(110, entries, sizeof entries);
  char control[] = "{\"command\":\"config\",\"piece\":\"secret\"}";
  uint16_t status = 0;
  platmsg_syn_result(1, 1000, control, sizeof control - 1, nullptr, nullptr, nullptr, &status, 1,
                     10);
  expect("own file", 1, read_own());
  const bool is_masked = getenv("OLT_CAPTURE_SECRETS") == nullptr;
  const char secret = is_masked ? '*' : 's';
  char expected[sizeof entries];
  for (int packet = 0; packet < 2; packet++) {
    memset(expected, 'u', 80);
    memset(expected + 40, secret, 32);
    expect_packet("user", packet, expected, kRecordAt, 80);
    expect("flags", is_masked ? 2 : 0, capture.bytes[capture.place[packet] + kHeaderAt + 5]);
  }
  expect("the caller's record", 's', user[40]);
  for (int packet = 2; packet < 4; packet++) {
    const uint8_t *record = capture.bytes + capture.place[packet] + kRecordAt;
    for (int i = 0; i < 3; i++) {
      expect("entry: before", 'e', record[111 + i * 44]);
      expect("entry: first", secret, record[112 + i * 44]);
      expect("entry: last", secret, record[123 + i * 44]);
      if (i < 2) expect("entry: after", 'e', record[132 + i * 44]);
    }
  }
  expect_packet("control", 4, is_masked ? "{\"command\":\"config\",\"piece\":\"********" : control,
                kRecordAt, sizeof control - 1);
}

// Threads, processes

void *make_two_thousand(void *) {
  return make_exchanges(2'000) == 2'000 ? nullptr : &capture;
}

void check_threads() {
  pthread_t threads[8];
  for (pthread_t &thread : threads) pthread_create(&thread, nullptr, make_two_thousand, nullptr);
  for (const pthread_t &thread : threads) {
    void *result = nullptr;
    pthread_join(thread, &result);
    expect("a thread's exchanges", 1, result == nullptr);
  }
  expect("own file", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  expect("requests", 16'000, capture.requests);
  expect("answers", 16'000, capture.answers);
  int twice = 0;
  for (int i = 1; i <= 16'000; i++) twice += capture.seen[i] == 2;
  expect("each exchange has a number of its own", 16'000, twice);
}

int wait_for(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void check_fork() {
  expect("before", 3, make_exchanges(3));
  const pid_t child = fork();
  if (child == 0) _exit(make_exchanges(5) == 5 ? 0 : 1);
  expect("after", 4, make_exchanges(4));
  expect("the child's exchanges", 0, wait_for(child));
  expect("own file", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  expect("requests", 7, capture.requests);
  expect("last", 7, capture.last);
  expect("the child's file", 1, read_capture_of(child, ".pcapng"));
  expect("it is whole", 1, capture.is_whole);
  expect("requests", 5, capture.requests);
  expect("first", 1, capture.first);
  expect("process", child, word_at(capture.bytes + capture.place[0] + kHeaderAt + 12));
  expect("thread", child, word_at(capture.bytes + capture.place[0] + kHeaderAt + 16));
  expect("files", 2, count_files());
}

/// The next program of the process gets a file of its own.
void check_exec() {
  expect("before", 3, make_exchanges(3));
  execl("/proc/self/exe", "capture_check", "exec_second", nullptr);
  expect_error("exec", 0, -1);
}

void check_exec_second() {
  expect("after", 4, make_exchanges(4));
  expect("file before", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  expect("requests", 3, capture.requests);
  expect("file after", 1, read_own("-1.pcapng"));
  expect("it is whole", 1, capture.is_whole);
  expect("requests", 4, capture.requests);
  expect("first", 1, capture.first);
  expect("files", 2, count_files());
}

/// Whatever is going on when the process is killed, all that was answered is there.
void check_kill() {
  for (int i = 0; i < 20; i++) {
    int ends[2];
    expect("pipe", 0, pipe(ends));
    const pid_t child = fork();
    if (child == 0) {
      for (;;) {
        make_exchanges(1);
        if (write(ends[1], "x", 1) != 1) _exit(1);
      }
    }
    close(ends[1]);
    uint32_t answered = 0;
    char seen[64];
    while (answered < 40'000U * static_cast<uint32_t>(i) / 100) {
      const ssize_t count = read(ends[0], seen, sizeof seen);
      if (count <= 0) break;
      answered += static_cast<uint32_t>(count);
    }
    kill(child, SIGKILL);
    for (ssize_t count; (count = read(ends[0], seen, sizeof seen)) > 0;)
      answered += static_cast<uint32_t>(count);
    close(ends[0]);
    expect("killed", 128 + SIGKILL, wait_for(child));
    if (!read_capture_of(child, ".pcapng")) {
      expect("no exchange without a file", 0, answered);
      continue;
    }
    expect("it is whole", 1, capture.is_whole);
    expect("all that was answered", 1, capture.answers - answered <= 1);
    expect("requests", capture.answers, capture.requests);
    expect("last", capture.answers, capture.last);
  }
}

/// It may be killed after any instruction: both packets of an exchange are seen at once, and all
/// blocks are whole until then and from then on.
void check_steps() {
#ifndef __x86_64__
  exit(kSkipped);  // steps are the processor's
#else
  const pid_t child = fork();
  if (child == 0) {
    make_exchanges(1);
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(kSkipped);
    raise(SIGSTOP);
    make_exchanges(1);
    _exit(0);
  }
  uint32_t steps = 0;
  uint32_t torn = 0;
  uint32_t halves = 0;
  int status = 0;
  while (waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    const bool is_read = read_capture_of(child, ".pcapng");
    torn += !is_read || !capture.is_whole;
    halves += capture.requests != capture.answers;
    ++steps;
    ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr);
  }
  if (WEXITSTATUS(status) == kSkipped) exit(kSkipped);
  expect("it has ended", 0, status);
  expect("steps", 1, steps > 100);
  expect("it is not whole", 0, torn);
  expect("half an exchange", 0, halves);
  expect("answers", 2, capture.answers);
#endif
}

/// A program that turns into a daemon closes all descriptors, and opens its own.
void check_closed_descriptors() {
  expect("before", 3, make_exchanges(3));
  for (int i = 3; i < 1024; i++) close(i);
  const int zero = open("/dev/null", O_RDWR);
  for (int i = zero + 1; i < 300; i++) dup2(zero, i);
  expect("after", 2'000, make_exchanges(2'000));
  expect("file before", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  const uint32_t before = capture.requests;
  expect("file after", 1, read_own("-1.pcapng"));
  expect("it is whole", 1, capture.is_whole);
  expect("requests", 2'003, before + capture.requests);
  expect("numbers go on", before + 1, capture.first);
}

bool cleaned_up;

void clean_up(void *) {
  cleaned_up = true;
}

void *wait_in_platform(void *) {
  pthread_cleanup_push(clean_up, nullptr);
  exchange(903, nullptr, 0, 1);
  pthread_cleanup_pop(0);
  return nullptr;
}

void check_cancellation() {
#ifdef __UCLIBC__
  exit(kSkipped);  // it needs libgcc_s to cancel threads, which its sysroot does not have
#endif
  pthread_t thread;
  pthread_create(&thread, nullptr, wait_in_platform, nullptr);
  poll(nullptr, 0, 50);
  pthread_cancel(thread);
  void *result = nullptr;
  pthread_join(thread, &result);
  expect("the thread is cancelled", 1, result == PTHREAD_CANCELED);
  expect("its clean-up is called", 1, cleaned_up);
  expect("after", 3, make_exchanges(3));
  expect("own file", 1, read_own());
  expect("requests", 3, capture.requests);
}

volatile sig_atomic_t signals;

void make_one(int) {
  make_exchanges(1);
  signals = signals + 1;
}

/// A handler's exchanges are recorded, or counted as lost when it interrupts the recording itself.
void check_signals() {
  struct sigaction action = {};
  action.sa_handler = make_one;
  action.sa_flags = SA_RESTART;
  sigaction(SIGALRM, &action, nullptr);
  const itimerval often = {.it_interval = {0, 200}, .it_value = {0, 200}};
  const itimerval never = {};
  setitimer(ITIMER_REAL, &often, nullptr);
  int made = 0;
  while (signals < 200 && made < 500'000) made += make_exchanges(10);
  setitimer(ITIMER_REAL, &never, nullptr);
  expect("one more", 1, make_exchanges(1));
  expect("signals came", 1, signals >= 200);
  expect("own file", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  uint32_t lost = 0;
  for (uint32_t at = 0; at < capture.length;) {
    const uint8_t *block = capture.bytes + at;
    if (word_at(block) == kPacketBlock) lost += word_at(block + kHeaderAt + 56);
    at += word_at(block + 4);
  }
  expect("recorded and lost", made + 1 + signals, capture.requests + lost);
}

/// Makes the exchanges that standard input lists: the message type and the request in hex.
void check_given() {
  static char digits[20'000];
  static char request[10'000];
  uint32_t type = 0;
  int count = 0;
  while (scanf("%u %19999s", &type, digits) == 2) {
    const size_t length = strlen(digits) / 2;
    for (size_t i = 0; i < length; i++) {
      unsigned byte = 0;
      sscanf(digits + 2 * i, "%2x", &byte);
      request[i] = static_cast<char>(byte);
    }
    expect("an exchange", 0, exchange(type, request, static_cast<uint32_t>(length)).result);
    count++;
  }
  expect("exchanges", 1, count > 0);
}

// What goes wrong

void check_limit() {
  expect("exchanges", 10'000, make_exchanges(10'000));
  expect("own file", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  expect("size", 1, capture.length <= 524'288);
  expect("last", 10'000, capture.last);
  const uint32_t first = capture.first;
  expect("old file", 1, read_own(".pcapng.old"));
  expect("it is whole", 1, capture.is_whole);
  expect("size", 1, capture.length <= 524'288 && capture.length > 400'000);
  expect("it ends where the other begins", first - 1, capture.last);
  expect("sections", 1, capture.sections);
  expect("files", 2, count_files());
}

void expect_given_up(const char *reason) {
  char expected[512];
  snprintf(expected, sizeof expected, "libolttrace: %s/%d.pcapng: %s; capture ends\n", folder,
           getpid(), reason);
  expect_text("errors", expected, kept_errors());
}

void check_file_size_limit() {
  const rlimit limit = {.rlim_cur = 300'000, .rlim_max = RLIM_INFINITY};
  keep_errors();
  expect("setrlimit", 0, setrlimit(RLIMIT_FSIZE, &limit));
  expect("exchanges", 5'000, make_exchanges(5'000));
  expect_given_up("File too large");
  expect("own file", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  expect("no padding at the end", 0, capture.ends_with_padding);
  expect("size", 1, capture.length > 200'000 && capture.length <= 300'000);
  expect("no number is missing", capture.requests, capture.last);
}

void check_no_folder() {
  keep_errors();
  expect("exchanges", 100, make_exchanges(100));
  expect_given_up("No such file or directory");
}

void check_full_disk() {
  if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) exit(kSkipped);
  if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("none", folder, "tmpfs", 0, "size=400k") != 0) {
    exit(kSkipped);
  }
  keep_errors();
  expect("exchanges", 5'000, make_exchanges(5'000));
  expect_given_up("No space left on device");
  expect("own file", 1, read_own());
  expect("it is whole", 1, capture.is_whole);
  expect("size", 1, capture.length > 200'000 && capture.length < 400'000);
  expect("no number is missing", capture.requests, capture.last);
  // Full from the start: there is no file with nothing in it.
  const pid_t child = fork();
  if (child == 0) _exit(make_exchanges(10) == 10 ? 0 : 1);
  expect("a child", 0, wait_for(child));
  expect("files", 1, count_files());
  umount(folder);
}

/// Nobody reads standard error: the line must neither wait nor raise a signal.
void check_unread_errors() {
  int ends[2];
  expect("pipe", 0, pipe(ends));
  fcntl(ends[1], F_SETFL, O_NONBLOCK);
  while (write(ends[1], "full", 1) == 1) {
  }
  fcntl(ends[1], F_SETFL, 0);
  dup2(ends[1], 2);
  const pid_t child = fork();
  if (child == 0) _exit(make_exchanges(10) == 10 ? 0 : 1);
  expect("into a full pipe", 0, wait_for(child));
  close(ends[0]);
  expect("into a closed pipe", 10, make_exchanges(10));
}

// Listings

/// A file in the folder, or elsewhere with a path.
int make_file(const char *name) {
  char path[512];
  snprintf(path, sizeof path, "%s/%s", name[0] == '/' ? "" : folder, name);
  return open(path, O_RDWR | O_CREAT | O_TRUNC, 0644);
}

/// An exchange of an OLT's listing whose reply names that file. @return whether it succeeded
bool list(const char *name, uint32_t type = 23, uint32_t at = 48, uint32_t length = 80) {
  char reply[128] = {};
  strncpy(reply + at, name, 32);
  const Answer answer = exchange(type, reply, length);
  return answer.result == 0 && answer.status == 0 && answer.reply == reply;
}

/// Bytes of the copy that the exchange with this number left; -1 when there is none.
int64_t kept_bytes(uint32_t number, char *content = nullptr) {
  char path[512];
  struct stat found;
  if (!read_own()) return -1;
  const uint32_t run = word_at(capture.bytes + capture.place[0] + kHeaderAt + 8);
  snprintf(path, sizeof path, "%s/%u-%d-%d-%u.listing", folder, run, getpid(), getpid(), number);
  if (stat(path, &found) != 0) return -1;
  expect("mode of a copy", S_IFREG | 0600, found.st_mode);
  const int file = content == nullptr ? -1 : open(path, O_RDONLY);
  if (file >= 0) content[read(file, content, 32)] = 0;
  if (file >= 0) close(file);
  return found.st_size;
}

void check_listings() {
  keep_errors();
  char content[33] = "";
  int file = make_file("listing-of-32-bytes-in-all-000001");
  close(file);
  file = make_file("listing-of-32-bytes-in-all-00000");
  expect("write", 10, write(file, "a listing\n", 10));
  close(file);
  expect("a listing of the OLT", 1, list("listing-of-32-bytes-in-all-000001"));
  expect("its copy", 10, kept_bytes(1, content));
  expect("its content", 0, strcmp("a listing\n", content));
  char path[64];
  snprintf(path, sizeof path, "/tmp/listing-%d", getpid());
  file = make_file(path);
  expect("write", 6, write(file, "by ONT", 6));
  close(file);
  expect("a listing about an ONT, by path", 1, list(path, 47, 0, 32));
  unlink(path);
  expect("its copy", 6, kept_bytes(2, content));
  expect("its content", 0, strcmp("by ONT", content));
  expect("another message", 1, list("listing-of-32-bytes-in-all-00000", 12));
  expect("no copy", -1, kept_bytes(3));
  expect("a short reply", 1, list("listing-of-32-bytes-in-all-00000", 23, 48, 79));
  expect("no copy", -1, kept_bytes(4));
  expect("no name", 1, list(""));
  expect("no copy", -1, kept_bytes(5));
  file = make_file("listing");
  expect("longest", 0, ftruncate(file, 4'194'304));
  expect("a long listing", 1, list("listing"));
  expect("its copy", 4'194'304, kept_bytes(6));
  expect("nothing went wrong", 0, strcmp("", kept_errors()));
  expect("too long", 0, ftruncate(file, 4'194'305));
  close(file);
  expect("a listing that is too long", 1, list("listing"));
  expect("no copy", -1, kept_bytes(7));
  char line[512];
  snprintf(line, sizeof line, "libolttrace: %s/listing: File too large\n", folder);
  expect("one line", 0, strcmp(line, kept_errors()));
  char fifo[512];
  snprintf(fifo, sizeof fifo, "%s/listing-fifo", folder);
  unlink(fifo);
  expect("mkfifo", 0, mkfifo(fifo, 0600));
  expect("a listing without a writer", 1, list("listing-fifo"));
  expect("a listing that is missing", 1, list("listing-missing"));
  file = make_file("listing");
  expect("largest", 0, ftruncate(file, 4'000'000));
  close(file);
  const rlimit limit = {1'000'000, 1'000'000};
  expect("limit", 0, setrlimit(RLIMIT_FSIZE, &limit));
  expect("a listing beyond the process's limit", 1, list("listing"));
  expect("no copy", -1, kept_bytes(10));
  expect("no second line", 0, strcmp(line, kept_errors()));
  expect("no part of a copy: capture, copies, listings", 1 + 3 + 4, count_files());
}

struct Group {
  const char *name;
  void (*check)();
};
constexpr Group kGroups[] = {
    {"exchanges", check_exchanges},
    {"long", check_long},
    {"secrets", check_secrets},
    {"threads", check_threads},
    {"fork", check_fork},
    {"exec", check_exec},
    {"exec_second", check_exec_second},
    {"kill", check_kill},
    {"steps", check_steps},
    {"closed_descriptors", check_closed_descriptors},
    {"cancellation", check_cancellation},
    {"signals", check_signals},
    {"given", check_given},
    {"limit", check_limit},
    {"listings", check_listings},
    {"file_size_limit", check_file_size_limit},
    {"no_folder", check_no_folder},
    {"full_disk", check_full_disk},
    {"unread_errors", check_unread_errors},
};

}  // namespace

int main(int count, char **words) {
  for (const Group &group : kGroups) {
    if (count != 2 || strcmp(words[1], group.name) != 0) continue;
    find_folder();
    if (group.check != check_exec_second) empty_folder();
    group.check();
    return report_checks();
  }
  static_cast<void>(fprintf(stderr, "capture_check: expected one argument:"));
  for (const Group &group : kGroups) static_cast<void>(fprintf(stderr, " %s", group.name));
  static_cast<void>(fprintf(stderr, "\n"));
  return 2;
}
