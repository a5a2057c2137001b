// liboltflash.so, preloaded into programs as by a user.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace olt::test {
namespace {

/// Runs a shell command; its errors are part of the output.
Finished shell(const std::string &command) {
  return run({"sh", "-c", "{ " + command + "; } 2>&1"});
}

class Shim : public testing::Test {
 protected:
  /// Runs a command in the folder with the shim and these environment variables.
  Finished run_with(const std::string &settings, const std::string &command) const {
    return shell("cd '" + folder_.path() + "' && env LD_PRELOAD='" OLT_SHIM "' " + settings + " " +
                 command);
  }

  Folder folder_;
};

TEST_F(Shim, PassesTheChecksOfARealDevice) {
  const Finished ended = run_with("OLT_FLASH_IMAGE=flash.img", OLT_MTD_CHECK " device");
  EXPECT_EQ(ended.status, 0) << ended.output;
  EXPECT_EQ(std::filesystem::file_size(folder_ / "flash.img"), 4194304U);
}

// The operations never write what they have not erased.
TEST_F(Shim, PassesThemAsNorFlashToo) {
  const Finished ended =
      run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_NOR=1", OLT_MTD_CHECK " device");
  EXPECT_EQ(ended.status, 0) << ended.output;
}

TEST_F(Shim, PassesFaultsOn) {
  const Finished ended =
      run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_FAULTS='open:1:EIO'", "cat /dev/mtd0");
  EXPECT_NE(ended.status, 0);
  EXPECT_EQ(ended.output, "cat: /dev/mtd0: Input/output error\n");
}

TEST_F(Shim, LeavesOtherProgramsAndFilesAlone) {
  const Finished ended =
      run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_FAULTS='read:1:EIO write:1:EIO'",
               "sh -c 'echo hello >a; cp a b; cat b; dd if=b of=c bs=3 2>d; cmp a c'");
  EXPECT_EQ(ended.output, "hello\n");
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(read_file(folder_ / "c"), "hello\n");
}

TEST_F(Shim, RefusesToStartWithoutAnImage) {
  const Finished ended = run_with("", "true");
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.output,
            "liboltflash: OLT_FLASH_IMAGE is not set; expected the flash image's path\n");
}

TEST_F(Shim, RefusesToStartWithABadSwitch) {
  const Finished ended = run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_NOR=yes", "true");
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.output, "liboltflash: OLT_FLASH_NOR is \"yes\"; expected 0 or 1\n");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "flash.img"));
}

TEST_F(Shim, RefusesToStartWithABadFault) {
  const Finished ended =
      run_with("OLT_FLASH_IMAGE=flash.img OLT_FLASH_FAULTS='write:first:EIO'", "true");
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.output.find("liboltflash: flash fault \"write:first:EIO\" is unknown"), 0U);
  EXPECT_EQ(ended.output.find('\n'), ended.output.size() - 1) << "one line";
}

TEST_F(Shim, RefusesToStartWithAnotherFileAsImage) {
  folder_.write("notes", "x\n");
  const Finished ended = run_with("OLT_FLASH_IMAGE=notes", "true");
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.output,
            "liboltflash: flash image \"notes\" is not a file of 4194304 bytes, as expected\n");
  EXPECT_EQ(read_file(folder_ / "notes"), "x\n");
}

TEST_F(Shim, NeedsTheCLibraryAlone) {
  const Finished ended = shell(OLT_READELF " -d '" OLT_SHIM "' | grep -o 'NEEDED.*\\[.*'");
  EXPECT_EQ(ended.output.find("[libc.so"), ended.output.rfind('[')) << ended.output;
  EXPECT_NE(ended.output.find("[libc.so"), std::string::npos) << ended.output;
}

}  // namespace
}  // namespace olt::test
