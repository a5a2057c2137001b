// Result files: their text, their names, who may read them, and which of them are kept.

#include "box/core/listing.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "base/text.h"
#include "tests/box/support.h"

namespace {

using namespace std::chrono_literals;
using olt::tests::Bytes;
using olt::tests::characters;
using olt::tests::Folder;
using olt::tests::read_file;
using olt::tests::slice;
using olt::tests::TestBox;
using olt::tests::word;
using olt::tests::write_file;

constexpr char kNoTail[16] = {};

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

TEST(Listing, NamesStandWhereFrontEndsLookForThem) {
  TestBox box;
  Bytes config = box.reply(2, 33);
  EXPECT_EQ(slice(config, 0, 48), Bytes(48));
  EXPECT_EQ(characters(slice(config, 48, 80)),
            std::string("runningconfig-00000001.txt\0\0\0\0\0\0", 32));
  EXPECT_EQ(characters(slice(box.reply(2, 53), 48, 80)),
            std::string("basicinfo-00000002.txt") + std::string(kNoTail, 10));
  EXPECT_EQ(characters(box.reply(23, 3)),
            std::string("memory-00000003.txt") + std::string(kNoTail, 13));
  EXPECT_EQ(characters(box.reply(22, 81, word(0))),
            std::string("log-00000004.txt") + std::string(kNoTail, 16));
  EXPECT_EQ(names_in(box.options.listing_dir),
            (std::vector<std::string>{"basicinfo-00000002.txt", "log-00000004.txt",
                                      "memory-00000003.txt", "runningconfig-00000001.txt"}));
}

TEST(Listing, BasicInformationIsReadable) {
  TestBox box;
  box.status(2, 5);
  box.advance(3725s);
  EXPECT_EQ(box.listing(box.reply(2, 53), 48),
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
  box.status(2, 59, olt::tests::record(196, {{0, olt::tests::text("rack 7")}, {192, word(9)}}));
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("SNMP system information\n"
                        "Offset  Bytes                             Text\n"
                        "------  --------------------------------  ----------------\n"
                        "0000    7261636b203700000000000000000000  rack 7..........\n"),
            std::string::npos)
      << config;
  EXPECT_NE(config.find("00c0    09000000                          ....\n"), std::string::npos)
      << config;
  for (const char *heading :
       {"\nUsers\n", "\nManagement network\n", "\nSNTP\n", "\nSNMP parameters\n", "\nLog\n"}) {
    EXPECT_NE(config.find(heading), std::string::npos) << heading;
  }
}

TEST(Listing, MemoryShowsTheModuleAndTheProcess) {
  TestBox box;
  std::string memory = box.listing(box.reply(18, 3), 0);
  EXPECT_EQ(memory.find("Memory of module 18\n===================\n\nState of the module\n"), 0U)
      << memory;
  EXPECT_NE(memory.find("system-information  "), std::string::npos) << memory;
  EXPECT_EQ(memory.find("system-users"), std::string::npos) << memory;
  size_t resident = memory.find("resident");
  ASSERT_NE(resident, std::string::npos) << memory;
  EXPECT_GT(std::stoi(memory.substr(resident + 8)), 100) << memory;
}

TEST(Listing, IsForTheOwnUserUnlessAGroupIsNamed) {
  TestBox box;
  box.reply(2, 53);
  EXPECT_EQ(mode_of(box.options.listing_dir), 0700U);
  EXPECT_EQ(mode_of(box.options.listing_dir / "basicinfo-00000001.txt"), 0600U);
  box.options.listing_group = getegid();
  box.restart();
  box.reply(2, 53);
  EXPECT_EQ(mode_of(box.options.listing_dir / "basicinfo-00000002.txt"), 0640U);
}

TEST(Listing, NumbersGoOnAfterWhatIsThere) {
  Folder folder;
  for (const char *name :
       {"log-00000041.txt", "basicinfo-00000007.txt", "log-9.txt", "notes.txt", "LOG-00000099.txt",
        "log-00000099.old", "-00000098.txt", "log-99999999999.txt", "log-0000004x.txt"}) {
    write_file(folder / name, "kept");
  }
  olt::box::Listings listings(folder.path(), {});
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
    olt::box::Listings listings(folder.path(), {});
    for (int i = 0; i < 1023; ++i) listings.write("log", "text");
    EXPECT_TRUE(std::filesystem::exists(folder / "log-00000005.txt"));
    listings.write("basicinfo", "text");
    EXPECT_FALSE(std::filesystem::exists(folder / "log-00000005.txt"));
    EXPECT_TRUE(std::filesystem::exists(folder / "log-00000006.txt"));
  }
  olt::box::Listings listings(folder.path(), {});
  EXPECT_EQ(listings.write("log", "text"), "log-00001030.txt");
  EXPECT_FALSE(std::filesystem::exists(folder / "log-00000006.txt"));
  EXPECT_EQ(names_in(folder.path()).size(), 1025U);
  EXPECT_EQ(read_file(folder / "unrelated.txt"), "kept");
}

TEST(Listing, ThatCannotBeWrittenIsAStatus) {
  TestBox box;
  write_file(box.folder / "run", "a file where a directory should be");
  EXPECT_EQ(box.status(2, 53), 8U);
  std::filesystem::remove(box.folder / "run");
  EXPECT_EQ(box.status(2, 53), 0U);
}

}  // namespace
