// Captures on the disk, and what goes wrong there.
#include "capture/capture_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "capture/reader.h"
#include "tests/support/bytes.h"
#include "tests/support/folder.h"

namespace olt::test {
namespace {

using capture::CaptureFile;
using capture::CaptureFileOptions;
using capture::Packet;
using capture::WrittenExchange;

std::vector<Packet> packets_in(const std::string &path) {
  std::vector<Packet> packets;
  capture::Reader reader = capture::read_capture(path);
  while (std::optional<Packet> packet = reader.next()) packets.push_back(*packet);
  return packets;
}

class CaptureOnDisk : public testing::Test {
 protected:
  CaptureFileOptions options(const std::string &name = "box.pcapng") {
    return {.path = folder_ / name, .report = [this](std::string_view line) {
              std::lock_guard lock(mutex_);
              reports_ += std::string(line) + '\n';
            }};
  }

  /// Requests of that length, numbered from 1.
  static void add(CaptureFile &file, uint32_t count, size_t length) {
    Bytes record(length, 'r');
    for (uint32_t number = 1; number <= count; ++number) {
      file.add({.message_type = 12,
                .module = 2,
                .request = record.data(),
                .request_length = static_cast<uint32_t>(length),
                .process = 1234,
                .number = number},
               "front_end", "");
    }
  }

  /// An exchange whose reply names a listing about the OLT.
  static void add_listing(CaptureFile &file, uint32_t number, const std::string &name,
                          const std::string &folder) {
    Bytes reply = record(80, {{48, text(name)}});
    file.add({.message_type = 23,
              .module = 2,
              .reply = reply.data(),
              .reply_length = 80,
              .run = 1000,
              .process = 1234,
              .number = number},
             "front_end", folder);
  }

  static bool within_ten_seconds(const std::function<bool()> &is_so) {
    for (int i = 0; i < 1000 && !is_so(); ++i) usleep(10'000);
    return is_so();
  }

  uint64_t bytes_of(const std::string &name) const {
    return std::filesystem::file_size(folder_ / name);
  }

  std::string reports() {
    std::lock_guard lock(mutex_);
    return reports_;
  }

  Folder folder_;
  std::mutex mutex_;
  std::string reports_;
};

TEST_F(CaptureOnDisk, IsWholeWhenItEnds) {
  { CaptureFile nothing("oltbox", options("empty.pcapng")); }
  EXPECT_EQ(44U, read_file(folder_ / "empty.pcapng").size()) << "the section alone";
  {
    CaptureFile file("oltbox", options());
    add(file, 1000, 80);
  }
  struct stat found {};
  ASSERT_EQ(0, stat((folder_ / "box.pcapng").c_str(), &found));
  EXPECT_EQ(0600U, found.st_mode & 07777);
  std::vector<Packet> packets = packets_in(folder_ / "box.pcapng");
  ASSERT_EQ(2000U, packets.size());
  EXPECT_EQ(1U, packets[0].exchange);
  EXPECT_EQ(1000U, packets[1999].exchange);
  EXPECT_EQ("front_end", packets[1999].program);
  EXPECT_EQ("", reports_);
}

TEST_F(CaptureOnDisk, AddsANumberToANameThatIsTaken) {
  folder_.write("box.pcapng", "mine");
  folder_.write("box-1.pcapng.old", "mine, too");
  { CaptureFile file("oltbox", options()); }
  { CaptureFile file("oltbox", options()); }
  { CaptureFile file("oltbox", options("folder.with.points/none")); }
  EXPECT_EQ("mine", read_file(folder_ / "box.pcapng"));
  EXPECT_EQ(44U, read_file(folder_ / "box-2.pcapng").size());
  EXPECT_EQ(44U, read_file(folder_ / "box-3.pcapng").size());
  EXPECT_EQ(folder_ / "box.pcapng" + ": exists; the capture is " + folder_ / "box-2.pcapng" + "\n" +
                folder_ / "box.pcapng" + ": exists; the capture is " + folder_ / "box-3.pcapng" +
                "\n" + folder_ / "folder.with.points/none" +
                ": No such file or directory; capture ends\n",
            reports_);
}

TEST_F(CaptureOnDisk, StaysWithinItsLimitInTwoFiles) {
  CaptureFileOptions limited = options();
  limited.limit = 1'048'576;
  {
    CaptureFile file("oltbox", limited);
    add(file, 10'000, 80);
  }
  std::vector<Packet> last = packets_in(folder_ / "box.pcapng");
  std::vector<Packet> before = packets_in(folder_ / "box.pcapng.old");
  EXPECT_LE(std::filesystem::file_size(folder_ / "box.pcapng"), 524'288U);
  EXPECT_LE(std::filesystem::file_size(folder_ / "box.pcapng.old"), 524'288U);
  EXPECT_GT(std::filesystem::file_size(folder_ / "box.pcapng.old"), 500'000U);
  EXPECT_EQ(10'000U, last.back().exchange);
  EXPECT_EQ(before.back().exchange + 1 + last.front().lost, last.front().exchange);
  EXPECT_EQ("", reports_);
}

/// More than waits in memory at a time: what is not recorded is counted.
TEST_F(CaptureOnDisk, CountsWhatTheDiskDoesNotTakeInTime) {
  {
    CaptureFile file("oltbox", options());
    add(file, 400, 65'536);
  }
  uint32_t counted = 0;
  for (const Packet &packet : packets_in(folder_ / "box.pcapng")) {
    if (!packet.is_answer) counted += packet.lost + 1;
    ASSERT_EQ(counted, packet.exchange);
  }
  EXPECT_GE(counted, 100U) << "8 MiB wait";
}

/// While it exists, files end there.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = {bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
  }
  FileSizeLimit(const FileSizeLimit &) = delete;
  FileSizeLimit &operator=(const FileSizeLimit &) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int) = nullptr;
};

TEST_F(CaptureOnDisk, EndsWholeWhereItCannotBeWritten) {
  {
    FileSizeLimit limit(100'000);
    CaptureFile file("oltbox", options());
    add(file, 100, 80);
    EXPECT_TRUE(within_ten_seconds([this] { return bytes_of("box.pcapng") > 20'000; }));
    add(file, 10'000, 80);
    EXPECT_TRUE(within_ten_seconds([this] { return !reports().empty(); }));
    add(file, 100, 80);
  }
  EXPECT_EQ(folder_ / "box.pcapng" + ": File too large; capture ends\n", reports_);
  std::vector<Packet> packets = packets_in(folder_ / "box.pcapng");
  EXPECT_EQ(200U, packets.size());
}

TEST_F(CaptureOnDisk, EndsWhereItsNextFileCannotBe) {
  CaptureFileOptions limited = options("gone/box.pcapng");
  limited.limit = 1'048'576;
  std::filesystem::create_directory(folder_ / "gone");
  {
    CaptureFile file("oltbox", limited);
    add(file, 1, 80);
    EXPECT_TRUE(within_ten_seconds([this] { return bytes_of("gone/box.pcapng") > 0; }));
    std::filesystem::remove_all(folder_ / "gone");
    add(file, 10'000, 80);
  }
  EXPECT_EQ(folder_ / "gone/box.pcapng" + ": No such file or directory; capture ends\n", reports_);
}

TEST_F(CaptureOnDisk, KeepsListings) {
  CaptureFileOptions keeping = options();
  keeping.listings = folder_ / "kept";
  std::filesystem::create_directory(folder_ / "kept");
  std::string absolute = "/tmp/listing-" + std::to_string(getpid());
  write_file(absolute, "by its path");
  folder_.write("vlan-00000001.txt", "VLANs");
  {
    CaptureFile file("oltbox", keeping);
    add_listing(file, 1, "vlan-00000001.txt", folder_.path());
    std::filesystem::remove(folder_ / "vlan-00000001.txt");  // as a front end may, at once
    add_listing(file, 2, absolute, folder_.path());
    std::filesystem::remove(absolute);
    add_listing(file, 3, "vlan-00000002.txt", folder_.path());
    add_listing(file, 4, "vlan-00000003.txt", folder_.path());
    add_listing(file, 5, "", folder_.path());
  }
  EXPECT_EQ("VLANs", read_file(folder_ / "kept/1000-1234-0-1.listing"));
  EXPECT_EQ("by its path", read_file(folder_ / "kept/1000-1234-0-2.listing"));
  std::filesystem::directory_iterator kept(folder_ / "kept");
  EXPECT_EQ(2, std::distance(begin(kept), end(kept)));
  EXPECT_EQ(
      folder_ / "vlan-00000002.txt" + ": No such file or directory; the listing is not kept\n",
      reports_);
  EXPECT_EQ(10U, packets_in(folder_ / "box.pcapng").size());
}

TEST_F(CaptureOnDisk, GoesOnWithoutAFolderForListings) {
  CaptureFileOptions keeping = options();
  keeping.listings = folder_ / "missing";
  folder_.write("vlan-00000001.txt", "VLANs");
  {
    CaptureFile file("oltbox", keeping);
    add_listing(file, 1, "vlan-00000001.txt", folder_.path());
    add_listing(file, 2, "vlan-00000001.txt", folder_.path());
  }
  EXPECT_EQ(folder_ / "missing/1000-1234-0-1.listing" +
                ": No such file or directory; the listing is not kept\n",
            reports_);
  EXPECT_EQ(4U, packets_in(folder_ / "box.pcapng").size());
}

}  // namespace
}  // namespace olt::test
