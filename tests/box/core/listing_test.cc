// Listings: their text and names, who may read them, and which are kept.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "base/text.h"
#include "box/core/listings.h"
#include "box/core/report.h"
#include "tests/box/support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

constexpr char kNoTail[16] = {};
constexpr uint64_t kAmple = 1'000'000;

std::vector<std::string> names_in(const std::filesystem::path &directory) {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

mode_t mode_of(const std::filesystem::path &path) {
  struct stat status = {};
  EXPECT_EQ(stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

TEST(Listing, NamesAreAtTheirDocumentedOffsets) {
  TestBox box;
  Bytes config = box.reply(kListRunningConfig);
  EXPECT_EQ(slice(config, 0, kListingNameAt), Bytes(kListingNameAt));
  EXPECT_EQ(characters(slice(config, kListingNameAt, 80)),
            std::string("runningconfig-00000001.txt\0\0\0\0\0\0", 32));
  EXPECT_EQ(characters(slice(box.reply(kListBasicInfo), kListingNameAt, 80)),
            std::string("basicinfo-00000002.txt") + std::string(kNoTail, 10));
  EXPECT_EQ(characters(box.reply(kRstpModule, kListMemory)),
            std::string("memory-00000003.txt") + std::string(kNoTail, 13));
  EXPECT_EQ(characters(box.reply(kLogModule, kListLog, word(0))),
            std::string("log-00000004.txt") + std::string(kNoTail, 16));
  EXPECT_EQ(names_in(box.options.listing_dir),
            (std::vector<std::string>{"basicinfo-00000002.txt", "log-00000004.txt",
                                      "memory-00000003.txt", "runningconfig-00000001.txt"}));
}

TEST(Listing, BasicInformationIsReadable) {
  TestBox box;
  box.status(kSetInService);
  box.advance(3725s);
  EXPECT_EQ(box.basic_info(),
            "Basic information of olt\n"
            "========================\n"
            "\n"
            "OLT\n"
            "Name                    olt\n"
            "MAC address             02:00:00:00:00:01\n"
            "Serial number           OLT0000000001\n"
            "Software version        1.0.0\n"
            "OAM support             1\n"
            "Ethernet ports          4\n"
            "PON interfaces          16\n"
            "ONUs per PON interface  64\n"
            "UNI ports per ONU       4\n"
            "Voice lines per ONU     2\n"
            "Uptime                  0 d 01:02:05\n"
            "\n"
            "State\n"
            "Micro-kernel in service        yes\n"
            "Start of the system announced  no\n"
            "\n"
            "Debug switches\n"
            "Module  Switches\n"
            "------  ----------\n"
            "2       0x00000000\n"
            "18      0x00000000\n"
            "22      0x00000000\n"
            "23      0x00000000\n"
            "\n"
            "Debug values\n"
            "Selector  Value\n"
            "--------  ------\n"
            "switch    0x0000\n"
            "\n"
            "Firmware updates\n"
            "OLT   idle\n"
            "ONUs  idle\n"
            "\n"
            "Ethernet links\n"
            "Port  Enabled  Link  Speed in Mbit/s  Duplex\n"
            "----  -------  ----  ---------------  ------\n"
            "1/1   yes      up    1000             full\n"
            "1/2   yes      up    1000             full\n"
            "1/3   yes      up    1000             full\n"
            "1/4   yes      up    1000             full\n"
            "\n"
            "RSTP\n"
            "Port  Role      State\n"
            "----  --------  ----------\n"
            "1/1   disabled  forwarding\n"
            "1/2   disabled  forwarding\n"
            "1/3   disabled  forwarding\n"
            "1/4   disabled  forwarding\n"
            "\n"
            "ONUs\n"
            "PON interface  Authentication  Up  Away  Blocked\n"
            "-------------  --------------  --  ----  -------\n"
            "1/1            any ONU         64  0     0\n"
            "1/2            any ONU         64  0     0\n"
            "1/3            any ONU         64  0     0\n"
            "1/4            any ONU         64  0     0\n"
            "1/5            any ONU         64  0     0\n"
            "1/6            any ONU         64  0     0\n"
            "1/7            any ONU         64  0     0\n"
            "1/8            any ONU         64  0     0\n"
            "1/9            any ONU         64  0     0\n"
            "1/10           any ONU         64  0     0\n"
            "1/11           any ONU         64  0     0\n"
            "1/12           any ONU         64  0     0\n"
            "1/13           any ONU         64  0     0\n"
            "1/14           any ONU         64  0     0\n"
            "1/15           any ONU         64  0     0\n"
            "1/16           any ONU         64  0     0\n");
}

TEST(Listing, RunningConfigurationShowsRecordsAsBytesAndText) {
  TestBox box;
  box.status(kSetSnmpInfo, record(kSnmpInfoSize, {{0, text("rack 7")}, {192, word(9)}}));
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config,
                    "SNMP system information\n"
                    "Offset  Bytes                             Text\n"
                    "------  --------------------------------  ----------------\n"
                    "0000    7261636b203700000000000000000000  rack 7..........\n"))
      << config;
  EXPECT_TRUE(holds(config, "00c0    09000000                          ....\n")) << config;
  for (const char *heading :
       {"\nUsers\n", "\nManagement network\n", "\nSNTP\n", "\nSNMP parameters\n", "\nLog\n"}) {
    EXPECT_TRUE(holds(config, heading)) << heading;
  }
}

TEST(Listing, MemoryShowsTheModuleAndTheProcess) {
  TestBox box;
  std::string memory = box.listing(box.reply(kOamModule, kListMemory), 0);
  EXPECT_EQ(memory.find("Memory of module 18\n===================\n\nState of the module\n"), 0U)
      << memory;
  EXPECT_TRUE(holds(memory, "system-information  ")) << memory;
  EXPECT_FALSE(holds(memory, "system-users")) << memory;
  size_t resident = memory.find("resident");
  ASSERT_NE(resident, std::string::npos) << memory;
  EXPECT_GT(std::stoi(memory.substr(resident + 8)), 100) << memory;
}

TEST(Listing, IsForTheOwnUserUnlessAGroupIsNamed) {
  TestBox box;
  box.reply(kListBasicInfo);
  EXPECT_EQ(mode_of(box.options.listing_dir), 0700U);
  EXPECT_EQ(mode_of(box.options.listing_dir / "basicinfo-00000001.txt"), 0600U);
  box.options.listing_group = getegid();
  box.restart();
  box.reply(kListBasicInfo);
  EXPECT_EQ(mode_of(box.options.listing_dir / "basicinfo-00000002.txt"), 0640U);
}

TEST(Listing, NumbersContinueAfterExistingFiles) {
  Folder folder;
  for (const char *name :
       {"log-00000041.txt", "basicinfo-00000007.txt", "log-9.txt", "notes.txt", "LOG-00000099.txt",
        "log-00000099.old", "-00000098.txt", "log-99999999999.txt", "log-0000004x.txt"}) {
    write_file(folder / name, "kept");
  }
  box::Listings listings(folder.path(), {}, kAmple);
  EXPECT_EQ(listings.write("log", "one"), "log-00000042.txt");
  EXPECT_EQ(listings.write("basicinfo", "two"), "basicinfo-00000043.txt");
  EXPECT_EQ(read_file(folder / "log-00000042.txt"), "one");
  EXPECT_EQ(read_file(folder / "log-00000041.txt"), "kept");
}

TEST(Listing, TheNewest1024AreKept) {
  Folder folder;
  write_file(folder / "log-00000005.txt", "old");
  write_file(folder / "unrelated.txt", "kept");
  {
    box::Listings listings(folder.path(), {}, kAmple);
    for (int i = 0; i < 1023; ++i) listings.write("log", "text");
    EXPECT_TRUE(std::filesystem::exists(folder / "log-00000005.txt"));
    listings.write("basicinfo", "text");
    EXPECT_FALSE(std::filesystem::exists(folder / "log-00000005.txt"));
    EXPECT_TRUE(std::filesystem::exists(folder / "log-00000006.txt"));
  }
  box::Listings listings(folder.path(), {}, kAmple);
  EXPECT_EQ(listings.write("log", "text"), "log-00001030.txt");
  EXPECT_FALSE(std::filesystem::exists(folder / "log-00000006.txt"));
  EXPECT_EQ(names_in(folder.path()).size(), 1025U);
  EXPECT_EQ(read_file(folder / "unrelated.txt"), "kept");
}

TEST(Listing, TheOldestMakeRoomForTheBytesOfTheNext) {
  Folder folder;
  box::Listings listings(folder.path(), {}, 100);
  for (size_t length : {40U, 30U, 30U}) listings.write("log", std::string(length, 'x'));
  EXPECT_EQ(names_in(folder.path()).size(), 3U);
  listings.write("basicinfo", "y");
  EXPECT_EQ(
      names_in(folder.path()),
      (std::vector<std::string>{"basicinfo-00000004.txt", "log-00000002.txt", "log-00000003.txt"}));
  listings.write("log", std::string(70, 'z'));
  EXPECT_EQ(names_in(folder.path()),
            (std::vector<std::string>{"basicinfo-00000004.txt", "log-00000005.txt"}));
  EXPECT_EQ(listings.write("log", std::string(100, 'w')), "log-00000006.txt");
  EXPECT_EQ(names_in(folder.path()), std::vector<std::string>{"log-00000006.txt"});
}

TEST(Listing, ManyStayWithinTheLimit) {
  Folder folder;
  box::Listings listings(folder.path(), {}, 10'000);
  uintmax_t max = 0;
  for (size_t i = 0; i < 500; ++i) {
    listings.write("log", std::string(i * 37 % 1500, 'x'));
    uintmax_t total = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder.path())) {
      total += entry.file_size();
    }
    ASSERT_LE(total, 10'000U) << i;
    max = std::max(max, total);
  }
  EXPECT_GT(max, 9'000U);
}

TEST(Listing, ThoseOfEarlierBoxesCountAndOtherFilesDoNot) {
  Folder folder;
  write_file(folder / "log-00000005.txt", std::string(60, 'a'));
  write_file(folder / "mac-00000009.txt", std::string(40, 'b'));
  write_file(folder / "log-3.txt", std::string(500, 'c'));
  write_file(folder / "notes.txt", std::string(500, 'd'));
  std::filesystem::create_directory(folder / "log-00000001.txt");
  std::filesystem::create_symlink(folder / "notes.txt", folder / "log-00000002.txt");
  box::Listings listings(folder.path(), {}, 100);
  EXPECT_EQ(listings.write("vlan", "12345678901"), "vlan-00000010.txt");
  EXPECT_EQ(names_in(folder.path()),
            (std::vector<std::string>{"log-00000001.txt", "log-00000002.txt", "log-3.txt",
                                      "mac-00000009.txt", "notes.txt", "vlan-00000010.txt"}));
  EXPECT_EQ(read_file(folder / "log-3.txt"), std::string(500, 'c'));
  EXPECT_EQ(read_file(folder / "notes.txt"), std::string(500, 'd'));
}

TEST(Listing, OneThatIsTooLongIsRefusedAndRemovesNone) {
  TestBox box;
  box.options.listing_limit = 700;
  std::filesystem::create_directory(box.options.listing_dir);
  write_file(box.options.listing_dir / "log-00000001.txt", std::string(700, 'a'));
  EXPECT_EQ(box.status(kListBasicInfo), 8U);
  EXPECT_EQ(names_in(box.options.listing_dir), std::vector<std::string>{"log-00000001.txt"});
  std::string log = box.listing(box.reply(kLogModule, kListLog, word(0)), 0);
  EXPECT_TRUE(holds(log, box.options.listing_dir.string() + ": the listing basicinfo has ")) << log;
  EXPECT_TRUE(holds(log, " bytes; expected at most 700\n")) << log;
  EXPECT_EQ(names_in(box.options.listing_dir), std::vector<std::string>{"log-00000002.txt"});
}

TEST(Listing, TheDefaultLimitIs64MiB) {
  TestBox box;
  EXPECT_EQ(box.options.listing_limit, 67'108'864U);
  std::filesystem::create_directory(box.options.listing_dir);
  for (const char *name : {"log-00000001.txt", "log-00000002.txt"}) {
    write_file(box.options.listing_dir / name, "");
    std::filesystem::resize_file(box.options.listing_dir / name, 33'554'432);
  }
  box.reply(kListBasicInfo);
  EXPECT_EQ(names_in(box.options.listing_dir),
            (std::vector<std::string>{"basicinfo-00000003.txt", "log-00000002.txt"}));
}

TEST(Listing, AFailedWriteIsReportedInTheStatus) {
  TestBox box;
  write_file(box.folder / "run", "a file where a directory should be");
  EXPECT_EQ(box.status(kListBasicInfo), kNotWritten);
  std::filesystem::remove(box.folder / "run");
  EXPECT_EQ(box.status(kListBasicInfo), kOk);
}

}  // namespace

}  // namespace olt::test
