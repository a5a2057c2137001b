// libolttrace in front of unmodified programs. What it records byte by byte, and what can go wrong
// around it, is in tests/target/capture_check.cc.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/capture/planted_messages.h"
#include "tests/support/bytes.h"
#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace olt::test {
namespace {

std::vector<std::string> recording(const Folder &folder) {
  return {"LD_PRELOAD=" LIBOLTTRACE, "OLT_CAPTURE=" + folder / "%p.pcapng"};
}

std::vector<std::string> captures_in(const Folder &folder) {
  std::vector<std::string> paths;
  for (const auto &entry : std::filesystem::directory_iterator(folder.path()))
    if (entry.path().extension() == ".pcapng") paths.push_back(entry.path());
  return paths;
}

/// The only capture in the folder.
std::string capture_in(const Folder &folder) {
  std::vector<std::string> paths = captures_in(folder);
  EXPECT_EQ(1U, paths.size());
  return paths.size() == 1 ? read_file(paths[0]) : "";
}

TEST(Recorder, MasksEverySecretOfEveryMessage) {
  const PlantedMessages messages;
  EXPECT_EQ((std::set<uint32_t>{10, 41, 56, 57, 62, 63, 108, 109, 110, 111, 112, 113}),
            messages.types());
  const Folder folder;
  Finished ran = run({CAPTURE_CHECK, "given"}, recording(folder), messages.lines());
  ASSERT_EQ(0, ran.status) << ran.output << ran.errors;
  std::string capture = capture_in(folder);
  EXPECT_EQ(0U, count_of(kPlanted, capture));
  EXPECT_LE(messages.planted(), count_of("*****", capture));
}

TEST(Recorder, KeepsSecretsWhenAskedTo) {
  const PlantedMessages messages;
  const Folder folder;
  std::vector<std::string> environment = recording(folder);
  environment.emplace_back("OLT_CAPTURE_SECRETS=1");
  Finished ran = run({CAPTURE_CHECK, "given"}, environment, messages.lines());
  ASSERT_EQ(0, ran.status) << ran.output << ran.errors;
  // The platform of capture_check replies with the request.
  EXPECT_EQ(2 * messages.planted(), count_of(kPlanted, capture_in(folder)));
}

TEST(Recorder, NeedsOnlyTheCLibrary) {
  Finished sections = run({OLT_READELF, "-dW", LIBOLTTRACE});
  ASSERT_EQ(0, sections.status);
  size_t needed = count_of("(NEEDED)", sections.output);
  EXPECT_TRUE(holds(sections.output, "Shared library: [libc.so.6]")) << sections.output;
  EXPECT_EQ(1U, needed) << sections.output;
}

TEST(Recorder, ChangesNothingWithoutACapture) {
  Finished ran = run({CAPTURE_CHECK, "given"}, {"LD_PRELOAD=" LIBOLTTRACE}, "12 00\n");
  EXPECT_EQ("2 passed, 0 failed\n", ran.output);
  EXPECT_EQ("", ran.errors);
}

TEST(Recorder, SettingsThatItCannotUseAreOneLineAndNoCapture) {
  const Folder folder;
  struct Case {
    std::vector<std::string> settings;
    std::string line;
  };
  const Case cases[] = {
      {{"OLT_CAPTURE=" + folder / "capture"},
       "libolttrace: OLT_CAPTURE: no %p in the file's name; expected a path such as "
       "/tmp/%p.pcapng\n"},
      {{"OLT_CAPTURE=" + folder / "%p/capture"},
       "libolttrace: OLT_CAPTURE: no %p in the file's name; expected a path such as "
       "/tmp/%p.pcapng\n"},
      {{"OLT_CAPTURE=/" + std::string(400, 'a') + "%p"},
       "libolttrace: OLT_CAPTURE: File name too long\n"},
      {{"OLT_CAPTURE=" + folder / "%p", "OLT_CAPTURE_LIMIT=1048575"},
       "libolttrace: OLT_CAPTURE_LIMIT: not a limit; expected bytes, at least 1048576\n"},
      {{"OLT_CAPTURE=" + folder / "%p", "OLT_CAPTURE_LIMIT=4M"},
       "libolttrace: OLT_CAPTURE_LIMIT: not a limit; expected bytes, at least 1048576\n"},
      {{"OLT_CAPTURE=" + folder / "%p", "OLT_CAPTURE_LIMIT=99999999999999999999"},
       "libolttrace: OLT_CAPTURE_LIMIT: not a limit; expected bytes, at least 1048576\n"},
  };
  for (const Case &each : cases) {
    std::vector<std::string> environment = each.settings;
    environment.emplace_back("LD_PRELOAD=" LIBOLTTRACE);
    Finished ran = run({CAPTURE_CHECK, "given"}, environment, "12 00\n");
    EXPECT_EQ(each.line, ran.errors);
    EXPECT_EQ(0, ran.status) << ran.output;
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  }
}

TEST(Recorder, RecordsAnUnmodifiedFrontEnd) {
  const Folder folder;
  std::vector<std::string> environment = recording(folder);
  environment.push_back("XDG_STATE_HOME=" + folder / "state");
  Finished ran = run({OLTCTL, "add_user_level", "someone", "hidden-word", "1", "2"}, environment);
  ASSERT_EQ(0, ran.status) << ran.errors;
  std::string capture = capture_in(folder);
  EXPECT_TRUE(holds(capture, "someone"));
  EXPECT_TRUE(holds(capture, "oltctl"));
  EXPECT_FALSE(holds(capture, "hidden-word"));
  Finished shown = run({OLTCTL, "show", captures_in(folder)[0]});
  EXPECT_EQ(0, shown.status) << shown.errors;
  EXPECT_TRUE(holds(shown.output, " add_user_level\n")) << shown.output;
  EXPECT_TRUE(holds(shown.output, " user_name=someone user_password=** level_a=1 level_b=2\n"))
      << shown.output;
}

/// The host platform says where listings are; the embedded box of oltctl has its own folder.
TEST(Recorder, KeepsListingsOfTheRunDirectory) {
  const Folder folder;
  std::vector<std::string> environment = recording(folder);
  environment.push_back("OLT_CAPTURE_FILES=" + folder.path());
  environment.push_back("XDG_STATE_HOME=" + folder / "state");
  environment.push_back("OLT_RUN_DIR=" + folder / "state/oltmgmt/embedded/listings");
  Finished ran = run({OLTCTL, "--box", "embedded", "get_vlan_all"}, environment);
  ASSERT_EQ(0, ran.status) << ran.errors;
  EXPECT_EQ("", ran.errors);
  std::vector<std::string> listings;
  for (const auto &entry : std::filesystem::directory_iterator(folder.path()))
    if (entry.path().extension() == ".listing") listings.push_back(entry.path());
  ASSERT_EQ(1U, listings.size());
  EXPECT_TRUE(read_file(listings[0]).starts_with("VLANs of olt\n====")) << read_file(listings[0]);
  environment.back() = "OLT_RUN_DIR=" + folder / "elsewhere";
  ran = run({OLTCTL, "--box", "embedded", "get_vlan_all"}, environment);
  EXPECT_EQ(0, ran.status);
  EXPECT_EQ(
      "libolttrace: " + folder / "elsewhere/vlan-00000002.txt" + ": No such file or directory\n",
      ran.errors);
  environment.back() = "OLT_CAPTURE_FILES=relative";
  ran = run({OLTCTL, "--box", "embedded", "get_olt_mac"}, environment);
  EXPECT_EQ(
      "libolttrace: OLT_CAPTURE_FILES: not a path; expected an absolute one of at most 199"
      " bytes\n",
      ran.errors);
}

TEST(Recorder, OltctlReadsWhatKilledProcessesLeave) {
  const Folder folder;
  ASSERT_EQ(0, run({CAPTURE_CHECK, "kill"}, recording(folder)).status);
  std::vector<std::string> paths = captures_in(folder);
  EXPECT_LE(19U, paths.size());  // the first may be killed before its first exchange
  for (const std::string &path : paths) {
    Finished shown = run({OLTCTL, "show", path, "module=99"});
    EXPECT_EQ(0, shown.status) << shown.errors;
    EXPECT_EQ("", shown.output);
  }
}

}  // namespace
}  // namespace olt::test
