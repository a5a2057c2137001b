// The flash operations of oltctl, on the simulated device.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/program.h"
#include "tests/cli/terminal.h"

namespace olt::test {

namespace {

std::string image_of(const Oltctl &oltctl) {
  return oltctl.folder().path() + "/oltmgmt/embedded/flash.img";
}

TEST(Flash, KeepsWhatWasSaved) {
  Oltctl oltctl;
  Finished saved = oltctl({"save_to_flash", "region=5", "buffer=48656c6c6f"});
  EXPECT_EQ(saved.status, 0) << saved.errors;
  EXPECT_EQ(saved.output, "written = 5\n");
  Finished read = oltctl({"read_from_flash", "5", "length=7"});
  EXPECT_EQ(read.status, 0) << read.errors;
  EXPECT_EQ(read.output, "read = 7\nbuffer = 48 65 6c 6c 6f ff ff\n");
  std::string image = read_file(image_of(oltctl));
  ASSERT_EQ(image.size(), 4194304U);
  EXPECT_EQ(image.substr(0xC1000, 6), "Hello\xff");
}

TEST(Flash, ErasesARegion) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"save_to_flash", "1", "00"}).status, 0);
  Finished erased = oltctl({"erase_to_flash", "1"});
  EXPECT_EQ(erased.status, 0) << erased.errors;
  EXPECT_EQ(erased.output, "");
  EXPECT_EQ(oltctl({"read_from_flash", "1", "2"}).output, "read = 2\nbuffer = ff ff\n");
  EXPECT_EQ(oltctl({"erase_to_flash", "1", "7", "unused_b=8"}).status, 0);
}

TEST(Flash, CutsAReadToItsRegion) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"read_from_flash", "2", "4294967295"}).output.substr(0, 33),
            "read = 4096\nbuffer = 4096 bytes\n ");
  std::string path = oltctl.folder().path() + "/largest";
  Finished largest = oltctl({"read_from_flash", "4", "4294967295", "buffer=@" + path});
  EXPECT_EQ(largest.output, "read = 2355200\nbuffer = 2355200 bytes in " + path + "\n");
  EXPECT_EQ(std::filesystem::file_size(path), 2355200U);
}

TEST(Flash, CopiesBetweenRegionsAndFiles) {
  Oltctl oltctl;
  std::string in = oltctl.folder().write("in", std::string(5000, 'f'));
  std::string out = oltctl.folder().write("out", "earlier content");
  EXPECT_EQ(oltctl({"save_to_flash", "3", "@" + in}).output, "written = 5000\n");
  Finished read = oltctl({"--json", "read_from_flash", "3", "5001", "buffer=@" + out});
  EXPECT_EQ(read.output, R"({"version":1,"operation":"read_from_flash","result":5001,)"
                         R"("failed":false,"transport":null,"status":null,"outputs":{"buffer":)"
                         R"({"file":")" +
                             out + "\",\"length\":5001}},\"listing\":null}\n");
  EXPECT_EQ(read_file(out), std::string(5000, 'f') + "\xff");
  Finished nowhere = oltctl({"read_from_flash", "3", "1", "buffer=@/nowhere/file"});
  EXPECT_EQ(nowhere.status, 1);
  EXPECT_EQ(nowhere.output, "");
  EXPECT_EQ(nowhere.errors,
            "read_from_flash: cannot write /nowhere/file: No such file or directory\n");
  EXPECT_EQ(oltctl({"read_from_flash", "3", "1", "buffer=@/dev/null"}).status, 0);
}

TEST(Flash, HoldsTheBoardsRecord) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"read_olt_serial"}).output, "serial = 255255255\n");
  EXPECT_EQ(oltctl({"write_oam_type", "oam_type=2", "pending=1"}).status, 0);
  EXPECT_EQ(oltctl({"read_oam_type"}).output, "oam_type = 2\npending = 1\n");
  EXPECT_EQ(oltctl({"read_oam_type"}).output, "oam_type = 2\npending = 0\n");
  EXPECT_EQ(oltctl({"--json", "read_olt_serial"}).output,
            R"({"version":1,"operation":"read_olt_serial","result":0,"failed":false,)"
            R"("transport":null,"status":null,"outputs":{"serial":"255255255"},"listing":null})"
            "\n");
  EXPECT_EQ(oltctl({"--fresh", "read_oam_type"}).output, "oam_type = 255\npending = 0\n");
}

TEST(Flash, IsForgottenByAFreshBoxWhateverItIsAsked) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"write_oam_type", "1", "0"}).status, 0);
  ASSERT_EQ(oltctl({"--fresh", "get_olt_mac"}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(image_of(oltctl)));
}

TEST(Flash, FailuresSayWhatTheResultMeans) {
  Oltctl oltctl;
  std::string longer = oltctl.folder().write("longer", std::string(4097, 'x'));
  struct {
    std::vector<std::string> words;
    std::string line;
  } const failures[] = {
      {{"read_from_flash", "6", "1"},
       "read_from_flash failed: result -1 (0xffffffff): there is no such region"},
      {{"save_to_flash", "2", "@" + longer},
       "save_to_flash failed: result -1 (0xffffffff): there is no such region, or the data does "
       "not fit"},
      {{"erase_to_flash", "0"},
       "erase_to_flash failed: result -1 (0xffffffff): there is no such region"},
      {{"write_oam_type", "3", "0"},
       "write_oam_type failed: result -1 (0xffffffff): the type is above 2, or the board's record "
       "cannot be read or saved"},
  };
  for (const auto &failure : failures) {
    Finished failed = oltctl(failure.words);
    EXPECT_EQ(failed.status, 1) << failure.line;
    EXPECT_EQ(failed.errors, failure.line + "\n");
    EXPECT_EQ(failed.output, "");
  }
  EXPECT_EQ(oltctl({"--json", "read_from_flash", "6", "1"}).output,
            R"({"version":1,"operation":"read_from_flash","result":-1,"failed":true,)"
            R"("transport":null,"status":null,"outputs":{},"listing":null})"
            "\n");
}

TEST(Flash, ADamagedImageIsOneLine) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"read_olt_serial"}).status, 0);
  std::filesystem::resize_file(image_of(oltctl), 100);
  Finished refused = oltctl({"read_olt_serial"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.errors, "oltctl: flash image \"" + image_of(oltctl) +
                                "\" is not a file of 4194304 bytes, as expected\n");
}

TEST(Flash, IsNeverTheMachinesOwnByAccident) {
  Oltctl oltctl;
  for (const char *operation : {"read_olt_serial", "read_oam_type"}) {
    Finished refused = oltctl({"--box", "/nowhere", operation});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors, std::string(operation) +
                                  ": the box in /nowhere does not hold the flash; expected "
                                  "--real-flash for this machine's own /dev/mtd0, or --box "
                                  "embedded for a simulated one\n");
  }
  auto environment = private_environment(oltctl.folder());
  environment.emplace_back("OLT_RUN_DIR=/nowhere");
  EXPECT_EQ(run({OLTCTL, "erase_to_flash", "1"}, environment).status, 2);
  // Asks for a region that does not exist: harmless on whatever device there is.
  Finished real = oltctl({"--real-flash", "read_from_flash", "9", "1"});
  EXPECT_EQ(real.status, 1);
  EXPECT_FALSE(std::filesystem::exists(oltctl.folder().path() + "/oltmgmt"));
  EXPECT_EQ(oltctl({"--real-flash", "get_olt_mac"}).status, 0);
}

/// Types a command of 150,000 bytes into a terminal and looks at what it shows.
void expect_progress(const Oltctl &oltctl, std::vector<std::string> options,
                     const std::vector<std::string> &more_environment) {
  std::string file = oltctl.folder().write("large", std::string(150000, 'x'));
  std::vector<std::string> environment = private_environment(oltctl.folder());
  environment.insert(environment.end(), more_environment.begin(), more_environment.end());
  options.insert(options.begin(), OLTCTL);
  auto with = [&options](std::vector<std::string> words) {
    words.insert(words.begin(), options.begin(), options.end());
    return words;
  };
  Terminal save(with({"--yes", "save_to_flash", "5", "@" + file}), environment);
  EXPECT_TRUE(save.shows("\rsave_to_flash: erasing: 43 %, 64.0 KiB of 148.0 KiB, "));
  EXPECT_TRUE(save.shows("\rsave_to_flash: erasing: 100 %, 148.0 KiB of 148.0 KiB, "));
  EXPECT_TRUE(save.shows("\r\n\rsave_to_flash: writing: 43 %, 64.0 KiB of 146.5 KiB, "));
  EXPECT_TRUE(save.shows("\rsave_to_flash: writing: 100 %, 146.5 KiB of 146.5 KiB, "));
  EXPECT_TRUE(save.shows("0s left\r\nwritten = 150000\r\n")) << save.transcript();
  EXPECT_EQ(save.end(), 0);
  Terminal read(with({"read_from_flash", "5", "150000", "buffer=@" + file}), environment);
  EXPECT_TRUE(read.shows("\rread_from_flash: reading: 100 %, 146.5 KiB of 146.5 KiB, "));
  EXPECT_EQ(read.end(), 0);
  EXPECT_EQ(read_file(file), std::string(150000, 'x'));
}

TEST(Flash, ShowsTheProgressOfLongTransfersAtATerminal) {
  Oltctl oltctl;
  expect_progress(oltctl, {}, {});
  std::string file = oltctl.folder() / "large";
  EXPECT_EQ(oltctl({"save_to_flash", "5", "@" + file}).errors, "");
}

// The preloaded device stands for one of the machine's own.
TEST(Flash, ShowsTheProgressOfTheMachinesOwnToo) {
#ifdef OLT_TEST_SANITIZED
  GTEST_SKIP() << "sanitizers must be loaded before the device";
#endif
  Oltctl oltctl;
  std::string image = oltctl.folder() / "own.img";
  expect_progress(oltctl, {"--real-flash"}, {"LD_PRELOAD=" OLT_SHIM, "OLT_FLASH_IMAGE=" + image});
  EXPECT_EQ(read_file(image).substr(0xC1000 + 149999, 2), "x\xff");
}

TEST(Flash, WrongUsageIsOneLineAndStatusTwo) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"read_from_flash", "1"}).errors,
            "read_from_flash: length is missing; expected a number\n");
  EXPECT_EQ(oltctl({"read_from_flash", "1", "1", "buffer=file"}).errors,
            "read_from_flash: buffer: 'file' given; expected @FILE, to write the bytes there\n");
  EXPECT_EQ(
      oltctl({"read_from_flash", "1", "1", "@file"}).errors,
      "read_from_flash: '@file' is one argument too many; expected: region, buffer, length\n");
  Finished fault = oltctl({"fault", "add", "type=read_oam_type"});
  EXPECT_EQ(fault.status, 2);
  EXPECT_EQ(fault.errors,
            "fault add: fault \"type=read_oam_type\": type: is \"read_oam_type\"; expected a "
            "message type "
            "or an operation that sends\n");
  EXPECT_FALSE(std::filesystem::exists(image_of(oltctl)));
}

}  // namespace

}  // namespace olt::test
