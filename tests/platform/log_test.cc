// log_log. Each case runs in a child process: the target is chosen once a process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/platform/support.h"

namespace {

// Writes what goes to the system's log to standard error, with a mark, so that no log daemon is
// needed. The program's definition comes before the C library's.
[[gnu::format(printf, 2, 0)]] void syslog_to_stderr(int priority, const char *format,
                                                    va_list arguments) {
  char line[512];
  std::vsnprintf(line, sizeof line, format, arguments);
  dprintf(STDERR_FILENO, "syslog %d %s\n", priority, line);
}

}  // namespace

extern "C" [[gnu::visibility("default"), gnu::format(printf, 2, 3)]] void syslog(int priority,
                                                                                 const char *format,
                                                                                 ...) {
  va_list arguments;
  va_start(arguments, format);
  syslog_to_stderr(priority, format, arguments);
  va_end(arguments);
}

extern "C" [[gnu::visibility("default"), gnu::format(printf, 3, 4)]] void __syslog_chk(
    int priority, int /*flag*/, const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  syslog_to_stderr(priority, format, arguments);
  va_end(arguments);
}

namespace olt::test {

namespace {

std::string log_with(const char *target, const std::function<void()> &body) {
  ChildResult child = run_in_child([&] {
    if (target != nullptr) {
      setenv("OLT_LOG", target, 1);
    } else {
      unsetenv("OLT_LOG");
    }
    body();
    return 0;
  });
  EXPECT_EQ(child.status, 0);
  return child.errors;
}

void log_one() {
  log_log(3, "add_ont_description", 212, "less of momery");
}

TEST(Log, WritesOneLineToStandardError) {
  constexpr char kLine[] = "oltmgmt[3] add_ont_description:212: less of momery\n";
  EXPECT_EQ(log_with(nullptr, log_one), kLine);
  EXPECT_EQ(log_with("", log_one), kLine);
  EXPECT_EQ(log_with("stderr", log_one), kLine);
}

TEST(Log, WritesToTheSystemLogOnRequest) {
  EXPECT_EQ(log_with("syslog", log_one),
            "syslog 3 oltmgmt[3] add_ont_description:212: less of momery\n");
}

TEST(Log, WritesNothingOnRequest) {
  EXPECT_EQ(log_with("none", log_one), "");
}

TEST(Log, KeepsTheLevelInTheRangeOfTheSystemLog) {
  EXPECT_EQ(log_with("syslog",
                     [] {
                       log_log(-5, "t", 1, "low");
                       log_log(99, "t", 2, "high");
                     }),
            "syslog 0 oltmgmt[-5] t:1: low\nsyslog 7 oltmgmt[99] t:2: high\n");
}

TEST(Log, ABadTargetIsReportedOnceAndStandardErrorUsed) {
  std::string errors = log_with("printer", [] {
    log_one();
    log_one();
  });
  EXPECT_NE(errors.find("OLT_LOG is \"printer\"; expected stderr, syslog or none; using stderr\n"),
            std::string::npos)
      << errors;
  EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 3) << errors;
}

TEST(Log, ALineStaysOneLine) {
  EXPECT_EQ(log_with("stderr", [] { log_log(3, "t", 1, "two\nlines\tand \x1b[1m"); }),
            "oltmgmt[3] t:1: two lines and  [1m\n");
}

TEST(Log, ALongLineIsCut) {
  std::string errors =
      log_with("stderr", [] { log_log(3, "t", 1, std::string(100000, 'x').c_str()); });
  EXPECT_EQ(errors.size(), 2048u);
  EXPECT_EQ(errors.substr(0, 20), "oltmgmt[3] t:1: xxxx");
  EXPECT_EQ(errors.back(), '\n');
}

TEST(Log, SurvivesMissingTexts) {
  EXPECT_EQ(log_with("stderr", [] { log_log(3, nullptr, 1, nullptr); }), "oltmgmt[3] ?:1: \n");
}

}  // namespace
}  // namespace olt::test
