#include "base/folders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

class Folders : public testing::Test {
 protected:
  Folders() { EXPECT_NE(mkdtemp(path_.data()), nullptr); }
  ~Folders() override { std::filesystem::remove_all(path_); }

  static mode_t mode_of(const std::string &path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  std::string path_ = testing::TempDir() + "folders-XXXXXX";
};

TEST_F(Folders, AreForTheUserAloneWhateverTheMask) {
  mode_t before = umask(0);
  std::error_code error = olt::make_directories(path_ + "/.local/state/oltmgmt");
  umask(before);
  ASSERT_FALSE(error) << error.message();
  EXPECT_EQ(mode_of(path_ + "/.local"), 0700U);
  EXPECT_EQ(mode_of(path_ + "/.local/state"), 0700U);
  EXPECT_EQ(mode_of(path_ + "/.local/state/oltmgmt"), 0700U);
}

TEST_F(Folders, ThatExistStayAsTheyAre) {
  ASSERT_EQ(mkdir((path_ + "/there").c_str(), 0755), 0);
  EXPECT_FALSE(olt::make_directories(path_ + "/there/below"));
  EXPECT_EQ(mode_of(path_ + "/there"), 0755U);
}

}  // namespace
