// liboltflash.so, preloaded into programs as a user would do it.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/flash/flash_image.h"

namespace olt::tests {
namespace {

struct Ended {
  int status;
  std::string output;  ///< standard output and error
};

Ended run(const std::string &command) {
  FILE *pipe = popen((command + " 2>&1").c_str(), "r");
  Ended ended{-1, ""};
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) ended.output += static_cast<char>(c);
  const int status = pclose(pipe);
  ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return ended;
}

class Shim : public testing::Test {
 protected:
  /// A command with the shim, and further settings, in front.
  Ended run_with(const std::string &settings, const std::string &command) const {
    return run("cd '" + (folder_ / "").string() + "' && env LD_PRELOAD='" OLT_SHIM "' " + settings +
               " " + command);
  }
  std::string contents(const std::string &name) const {
    return run("cat '" + (folder_ / name).string() + "'").output;
  }

  TemporaryFolder folder_;
};

TEST_F(Shim, PassesTheChecksOfARealDevice) {
  const Ended ended = run_with("OLT_FLASH_IMAGE=flash.img", OLT_MTD_CHECK " device");
  EXPECT_EQ(ended.status, 0) << ended.output;
  EXPECT_EQ(std::filesystem::file_size(folder_ / "flash.img"), 4194304U);
}

// The operations never write what they have not erased.
TEST_F(Shim, PassesThemAsNorFlashToo) {
  const Ended ended =
      run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_NOR=1", OLT_MTD_CHECK " device");
  EXPECT_EQ(ended.status, 0) << ended.output;
}

TEST_F(Shim, PassesFaultsOn) {
  const Ended ended =
      run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_FAULTS='open:1:EIO'", "cat /dev/mtd0");
  EXPECT_NE(ended.status, 0);
  EXPECT_EQ(ended.output, "cat: /dev/mtd0: Input/output error\n");
}

TEST_F(Shim, LeavesOtherProgramsAndFilesAlone) {
  const Ended ended =
      run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_FAULTS='read:1:EIO write:1:EIO'",
               "sh -c 'echo hello >a; cp a b; cat b; dd if=b of=c bs=3 2>d; cmp a c'");
  EXPECT_EQ(ended.output, "hello\n");
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(contents("c"), "hello\n");
}

TEST_F(Shim, RefusesToStartWithoutAnImage) {
  const Ended ended = run_with("", "true");
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.output,
            "liboltflash: OLT_FLASH_IMAGE is not set; expected the flash image's path\n");
}

TEST_F(Shim, RefusesToStartWithABadSwitch) {
  const Ended ended = run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_NOR=yes", "true");
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.output, "liboltflash: OLT_FLASH_NOR is \"yes\"; expected 0 or 1\n");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "flash.img"));
}

TEST_F(Shim, RefusesToStartWithABadFault) {
  const Ended ended =
      run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_FAULTS='write:first:EIO'", "true");
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.output.find("liboltflash: flash fault \"write:first:EIO\" is unknown"), 0U);
  EXPECT_EQ(ended.output.find('\n'), ended.output.size() - 1) << "one line";
}

TEST_F(Shim, RefusesToStartWithAnotherFileAsImage) {
  ASSERT_EQ(run("echo x >'" + (folder_ / "notes").string() + "'").status, 0);
  const Ended ended = run_with("OLT_FLASH_IMAGE=notes", "true");
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.output,
            "liboltflash: flash image \"notes\" is not a file of 4194304 bytes, as expected\n");
  EXPECT_EQ(contents("notes"), "x\n");
}

TEST_F(Shim, NeedsTheCLibraryAlone) {
  const Ended ended = run(OLT_READELF " -d '" OLT_SHIM "' | grep -o 'NEEDED.*\\[.*'");
  EXPECT_EQ(ended.output.find("[libc.so"), ended.output.rfind('[')) << ended.output;
  EXPECT_NE(ended.output.find("[libc.so"), std::string::npos) << ended.output;
}

}  // namespace
}  // namespace olt::tests
