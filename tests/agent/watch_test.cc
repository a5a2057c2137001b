#include "agent/watch.h"

#include <gtest/gtest.h>

#include <chrono>

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using agent::Watch;

const Watch::Clock::time_point kNow{1000s};

TEST(Watch, FollowsAShortWaitAndEndsAfterALongOne) {
  Watch watch(2);
  watch.begin(kNow);
  EXPECT_FALSE(watch.goes_on(kNow)) << "nothing has come yet";
  watch.end(kNow + 200us, true);

  watch.begin(kNow + 1ms);
  EXPECT_TRUE(watch.goes_on(kNow + 1ms));
  EXPECT_TRUE(watch.goes_on(kNow + 1200us));
  EXPECT_FALSE(watch.goes_on(kNow + 1201us));
  watch.end(kNow + 1201us, true);

  watch.begin(kNow + 2ms);
  EXPECT_FALSE(watch.goes_on(kNow + 2ms));
}

TEST(Watch, IsNotBegunByAnythingButARequest) {
  Watch watch(2);
  watch.begin(kNow);
  watch.end(kNow + 1us, false);
  watch.begin(kNow + 2us);
  EXPECT_FALSE(watch.goes_on(kNow + 2us));
  watch.end(kNow + 3us, true);
  watch.begin(kNow + 4us);
  watch.end(kNow + 5us, false);
  watch.begin(kNow + 6us);
  EXPECT_TRUE(watch.goes_on(kNow + 6us)) << "nor ended";
}

TEST(Watch, LetsTheOnlyProcessorGo) {
  Watch watch(1);
  watch.begin(kNow);
  watch.end(kNow + 1us, true);
  watch.begin(kNow + 2us);
  EXPECT_FALSE(watch.goes_on(kNow + 2us));
}

}  // namespace

}  // namespace olt::test
