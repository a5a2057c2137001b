#include "platform/log.h"

#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/olthost.h"

namespace olt::platform {

namespace {

enum class Target { kUnknown, kStandardError, kSyslog, kNone };

// Longer lines are cut. Nothing is allocated here, since lines also report that memory ran out.
constexpr size_t kLineLimit = 2048;

// One call of write, so that the lines of several threads and processes do not mix.
void write_line(int level, const char *tag, int line, const char *message) {
  char text[kLineLimit];
  int wanted = std::snprintf(text, sizeof text, "oltmgmt[%d] %s:%d: %s", level, tag, line, message);
  if (wanted < 0) return;
  auto length = std::min(static_cast<size_t>(wanted), sizeof text - 1);
  std::replace_if(
      text, text + length, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  text[length] = '\n';
  // There is nowhere left to report a failure to.
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, length + 1);
}

Target choose_target() {
  const char *choice = environment("OLT_LOG");
  if (choice == nullptr || std::strcmp(choice, "stderr") == 0) return Target::kStandardError;
  if (std::strcmp(choice, "syslog") == 0) return Target::kSyslog;
  return std::strcmp(choice, "none") == 0 ? Target::kNone : Target::kUnknown;
}

// Decided by the first line of the process. No lock: a fork at any moment must leave it usable.
Target target() {
  static std::atomic<Target> decided{Target::kUnknown};
  Target now = decided.load();
  if (now != Target::kUnknown) return now;
  Target choice = choose_target();
  Target usable = choice == Target::kUnknown ? Target::kStandardError : choice;
  if (decided.compare_exchange_strong(now, usable) && choice == Target::kUnknown) {
    std::string message = std::string("OLT_LOG is \"") + environment("OLT_LOG") +
                          "\"; expected stderr, syslog or none; using stderr";
    write_line(kWarningLevel, "log_log", __LINE__, message.c_str());
  }
  return decided.load();
}

}  // namespace

void log_exchange_error(const std::string &message, int line) {
  log_log(kErrorLevel, "platmsg_syn_result", line, message.c_str());
}

const char *environment(const char *name) {
  const char *value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

}  // namespace olt::platform

void log_log(int level, const char *tag, int line, const char *message) {
  using namespace olt::platform;
  tag = tag != nullptr ? tag : "?";
  message = message != nullptr ? message : "";
  switch (target()) {
    case Target::kSyslog:
      syslog(std::clamp(level, LOG_EMERG, LOG_DEBUG), "oltmgmt[%d] %s:%d: %s", level, tag, line,
             message);
      break;
    case Target::kNone:
      break;
    default:
      write_line(level, tag, line, message);
  }
}
