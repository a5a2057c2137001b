// The programs as users run them: oltctl on a running oltbox, and the tour.

#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "tests/end_to_end/running_box.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

TEST(Tools, OneInvocationSetsAndTheNextReads) {
  RunningBox box;
  box.start();
  Finished added =
      box.oltctl({"add_user_level", "name=operator", "password=secret", "level_a=1", "level_b=2"});
  EXPECT_EQ(added.status, 0) << added.errors;
  Finished read = box.oltctl({"get_user_level", "operator", "secret"});
  EXPECT_EQ(read.status, 0) << read.errors;
  EXPECT_EQ(read.output, "level_a = 1\nlevel_b = 2\n");
}

TEST(Tools, AnInjectedFaultIsReported) {
  RunningBox box;
  box.start();
  ASSERT_EQ(box.oltctl({"fault", "add", "type=get_olt_mac", "status=5", "count=1"}).status, 0);
  Finished failed = box.oltctl({"get_olt_mac"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_TRUE(holds(failed.errors, "get_olt_mac failed: result 5 (0x00000005)")) << failed.errors;
  EXPECT_EQ(box.oltctl({"get_olt_mac"}).status, 0);
}

TEST(Tools, AMissingBoxIsReportedAtOnce) {
  Folder folder;
  Finished failed = run({OLTCTL, "--box", folder.path(), "get_olt_mac"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_TRUE(holds(failed.errors, "0x00020000")) << failed.errors;
}

TEST(Tools, TheBoxStopsCleanlyOnSignals) {
  for (int signal : {SIGTERM, SIGINT}) {
    RunningBox box;
    box.start();
    EXPECT_EQ(box.end(signal), 0);
    EXPECT_NE(run({"/bin/sh", "-c", "ls " + box.run_dir() + "/module-*"}).status, 0);
  }
}

TEST(Tools, TheTourRuns) {
  Finished tour = run({TOUR, BUILD_DIR});
  EXPECT_EQ(tour.status, 0) << tour.output << tour.errors;
}

}  // namespace

}  // namespace olt::test
