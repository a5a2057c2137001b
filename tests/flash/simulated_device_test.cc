// What the simulated device adds to a real one, which mtd_check covers: its image, its faults, and
// that it leaves everything else alone.
#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "oltmgmt.h"
#include "tests/flash/flash_image.h"

namespace olt::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

int erase(int device, uint32_t start, uint32_t length) {
  std::array<uint32_t, 2> request = {start, length};
  return ioctl(device, 0x80084D02U, request.data());
}

/// A result; if negative, with errno.
std::string outcome(int64_t result) {
  const int error = errno;
  return result < 0 ? std::to_string(result) + " " + strerrorname_np(error)
                    : std::to_string(result);
}

int64_t write_at(int device, off_t offset, const Bytes &bytes) {
  lseek(device, offset, SEEK_SET);
  return write(device, bytes.data(), bytes.size());
}

class SimulatedDevice : public testing::Test {
 protected:
  FlashImage image;
};

TEST_F(SimulatedDevice, StartsBlank) {
  EXPECT_EQ(std::filesystem::file_size(image.path()), 4194304U);
  EXPECT_TRUE(image.bytes(0, 4194304) == Bytes(4194304, 0xff));
}

/// The calls of a watcher, as "activity done/total".
class Watched {
 public:
  Watched() { flash_device::watch(take, this); }
  Watched(const Watched &) = delete;
  Watched &operator=(const Watched &) = delete;
  ~Watched() { flash_device::watch(nullptr, nullptr); }

  std::vector<std::string> calls() { return std::exchange(calls_, {}); }

 private:
  static void take(void *watched, flash_device::Activity activity, size_t done, size_t total) {
    const char *names[] = {"read", "erase", "write"};
    static_cast<Watched *>(watched)->calls_.push_back(names[static_cast<int>(activity)] +
                                                      (" " + std::to_string(done)) + "/" +
                                                      std::to_string(total));
  }

  std::vector<std::string> calls_;
};

TEST_F(SimulatedDevice, ShowsAWatcherThePartsOfLongCalls) {
  const Bytes data = scattered(150000);
  Bytes read(150000);
  Watched watched;
  ASSERT_EQ(save_to_flash(5, data.data(), 150000), 150000);
  EXPECT_THAT(watched.calls(),
              ElementsAre("erase 65536/151552", "erase 131072/151552", "erase 151552/151552",
                          "write 65536/150000", "write 131072/150000", "write 150000/150000"));
  EXPECT_TRUE(image.bytes(0xC1000, 150000) == data);
  ASSERT_EQ(read_from_flash(5, read.data(), 150000), 150000);
  EXPECT_THAT(watched.calls(),
              ElementsAre("read 65536/150000", "read 131072/150000", "read 150000/150000"));
  EXPECT_TRUE(read == data);
  ASSERT_EQ(read_from_flash(5, read.data(), 65536), 65536);
  ASSERT_EQ(save_to_flash(5, data.data(), 65536), 65536);
  EXPECT_THAT(watched.calls(), ElementsAre());
  flash_device::watch(nullptr, nullptr);
  ASSERT_EQ(erase_to_flash(5, 0, 0), 0);
  EXPECT_THAT(watched.calls(), ElementsAre());
}

TEST_F(SimulatedDevice, EndsACallInPartsWithThePartThatFails) {
  const Bytes data = scattered(150000);
  Bytes read(150000);
  Watched watched;
  image.restart("write:2:EIO read:2:short=100");
  EXPECT_EQ(outcome(save_to_flash(5, data.data(), 150000)), "-1 EIO");
  EXPECT_THAT(watched.calls(), ElementsAre("erase 65536/151552", "erase 131072/151552",
                                           "erase 151552/151552", "write 65536/150000"));
  EXPECT_EQ(read_from_flash(5, read.data(), 150000), 65636);
  EXPECT_THAT(watched.calls(), ElementsAre("read 65536/150000", "read 65636/150000"));
}

TEST_F(SimulatedDevice, LeavesNoDraftBesideItsImage) {
  const auto folder = std::filesystem::directory_iterator(image.path().parent_path());
  EXPECT_EQ(std::distance(begin(folder), end(folder)), 1);
}

TEST_F(SimulatedDevice, OutlivesTheProcess) {
  const pid_t child = fork();
  if (child == 0) _exit(write_oam_type(2, 1) == 0 ? 0 : 1);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  image.restart();
  uint32_t type = 9;
  uint32_t pending = 9;
  EXPECT_EQ(read_oam_type(&type, &pending), 0);
  EXPECT_EQ(type, 2U);
  EXPECT_EQ(pending, 1U);
}

TEST_F(SimulatedDevice, HoldsWhatWasWritten) {
  const int device = open("/dev/mtd0", O_RDWR);
  EXPECT_EQ(write_at(device, 0x1c1000, {1, 2, 3}), 3);
  EXPECT_EQ(close(device), 0);
  EXPECT_EQ(image.bytes(0x1c0fff, 5), (Bytes{0xff, 1, 2, 3, 0xff}));
}

TEST_F(SimulatedDevice, OverwritesWithoutAnErase) {
  const int device = open("/dev/mtd0", O_RDWR);
  EXPECT_EQ(write_at(device, 0, {0x0f}), 1);
  EXPECT_EQ(write_at(device, 0, {0xf0}), 1);
  EXPECT_EQ(close(device), 0);
  EXPECT_EQ(image.bytes(0, 1), Bytes{0xf0});
}

TEST_F(SimulatedDevice, OnlyClearsBitsAsNorFlash) {
  image.restart("", true);
  const int device = open("/dev/mtd0", O_RDWR);
  EXPECT_EQ(write_at(device, 4095, Bytes(1000, 0x0f)), 1000);
  EXPECT_EQ(write_at(device, 4096, Bytes(998, 0x3c)), 998);
  EXPECT_EQ(image.bytes(4095, 2), (Bytes{0x0f, 0x0c}));
  EXPECT_EQ(image.bytes(5093, 3), (Bytes{0x0c, 0x0f, 0xff}));
  EXPECT_EQ(erase(device, 4096, 4096), 0);
  EXPECT_EQ(image.bytes(4095, 3), (Bytes{0x0f, 0xff, 0xff}));
  EXPECT_EQ(close(device), 0);
}

// The top bit of the request is set: a caller that holds it in an int passes a negative number.
TEST_F(SimulatedDevice, TakesTheEraseRequestWithItsSign) {
  image.put(0x2000, {1, 2, 3});
  const int device = open("/dev/mtd0", O_RDWR);
  std::array<uint32_t, 2> request = {0x2000, 4096};
  const int number = static_cast<int>(0x80084D02);
  EXPECT_EQ(ioctl(device, static_cast<unsigned long>(number), request.data()), 0);
  EXPECT_EQ(close(device), 0);
  EXPECT_EQ(image.bytes(0x2000, 3), (Bytes{0xff, 0xff, 0xff}));
}

TEST_F(SimulatedDevice, IsOpenedByEveryOpenCall) {
  image.put(0, {0x5a});
  for (const int device :
       {open("/dev/mtd0", O_RDONLY), open64("/dev/mtd0", O_RDONLY),
        openat(AT_FDCWD, "/dev/mtd0", O_RDONLY), openat64(AT_FDCWD, "/dev/mtd0", O_RDONLY)}) {
    uint8_t byte = 0;
    EXPECT_EQ(read(device, &byte, 1), 1);
    EXPECT_EQ(byte, 0x5a);
    EXPECT_EQ(outcome(lseek64(device, 0x400001, SEEK_SET)), "-1 EINVAL");
    EXPECT_EQ(close(device), 0);
  }
}

TEST_F(SimulatedDevice, ClosesWithTheProgramWhenAsked) {
  const int kept = open("/dev/mtd0", O_RDWR);
  const int closed = open("/dev/mtd0", O_RDWR | O_CLOEXEC);
  EXPECT_EQ(fcntl(kept, F_GETFD), 0);
  EXPECT_EQ(fcntl(closed, F_GETFD), FD_CLOEXEC);
  EXPECT_EQ(close(kept), 0);
  EXPECT_EQ(close(closed), 0);
}

TEST_F(SimulatedDevice, OpensAtMostSixtyFourTimesAtOnce) {
  std::vector<int> devices(64);
  for (int &device : devices) device = open("/dev/mtd0", O_RDWR);
  EXPECT_THAT(devices, Each(testing::Ge(0)));
  EXPECT_EQ(outcome(open("/dev/mtd0", O_RDWR)), "-1 EMFILE");
  for (const int device : devices) EXPECT_EQ(close(device), 0);
  const int again = open("/dev/mtd0", O_RDWR);
  EXPECT_GE(again, 0);
  EXPECT_EQ(close(again), 0);
}

struct Failure {
  const char *fault;
  const char *outcomes;
};

/// The outcomes of two rounds of all six calls.
std::string two_rounds() {
  std::string outcomes;
  for (int round = 0; round < 2; ++round) {
    std::array<uint8_t, 8> bytes{};
    const int device = open("/dev/mtd0", O_RDWR);
    outcomes += device < 0 ? "open " + outcome(device) : "open";
    outcomes += ", ioctl " + outcome(erase(device, 0, 4096));
    outcomes += ", lseek " + outcome(lseek(device, 16, SEEK_SET));
    outcomes += ", write " + outcome(write(device, bytes.data(), bytes.size()));
    outcomes += ", read " + outcome(read(device, bytes.data(), bytes.size()));
    outcomes += ", close " + outcome(close(device)) + "\n";
  }
  return outcomes;
}

TEST_F(SimulatedDevice, FailsAtTheGivenCall) {
  const std::string good = "open, ioctl 0, lseek 16, write 8, read 8, close 0\n";
  const Failure failures[] = {
      {"ioctl:1:EIO", "open, ioctl -1 EIO, lseek 16, write 8, read 8, close 0\n"},
      {"lseek:1:EINVAL", "open, ioctl 0, lseek -1 EINVAL, write 8, read 8, close 0\n"},
      {"write:1:ENOSPC", "open, ioctl 0, lseek 16, write -1 ENOSPC, read 8, close 0\n"},
      {"write:1:short=3", "open, ioctl 0, lseek 16, write 3, read 8, close 0\n"},
      {"write:1:short=0", "open, ioctl 0, lseek 16, write 0, read 8, close 0\n"},
      {"write:1:short=100", "open, ioctl 0, lseek 16, write 8, read 8, close 0\n"},
      {"read:1:EIO", "open, ioctl 0, lseek 16, write 8, read -1 EIO, close 0\n"},
      {"read:1:short=5", "open, ioctl 0, lseek 16, write 8, read 5, close 0\n"},
      {"close:1:EIO", "open, ioctl 0, lseek 16, write 8, read 8, close -1 EIO\n"},
      {"ioctl:1:EBUSY read:1:EINTR",
       "open, ioctl -1 EBUSY, lseek 16, write 8, read -1 EINTR, close 0\n"},
      {"open:1:EACCES",
       "open -1 EACCES, ioctl -1 EBADF, lseek -1 EBADF, write -1 EBADF, read -1 EBADF, close -1 "
       "EBADF\n"},
  };
  for (const Failure &failure : failures) {
    SCOPED_TRACE(failure.fault);
    image.restart(failure.fault);
    EXPECT_EQ(two_rounds(), failure.outcomes + good);
  }
  image.restart("write:2:EIO");
  EXPECT_EQ(two_rounds(), good + "open, ioctl 0, lseek 16, write -1 EIO, read 8, close 0\n");
}

TEST_F(SimulatedDevice, IsDeadAfterAPowerCut) {
  image.put(0, Bytes(8192, 0x11));
  image.restart("cut=5");
  const int device = open("/dev/mtd0", O_RDWR);
  EXPECT_EQ(write_at(device, 0, {1, 2, 3}), 3);
  EXPECT_EQ(outcome(write_at(device, 8, {4, 5, 6})), "-1 EIO");
  EXPECT_EQ(outcome(erase(device, 0, 4096)), "-1 EIO");
  EXPECT_EQ(outcome(lseek(device, 0, SEEK_SET)), "-1 EIO");
  EXPECT_EQ(outcome(write(device, "x", 1)), "-1 EIO");
  uint8_t byte = 0;
  EXPECT_EQ(outcome(read(device, &byte, 1)), "-1 EIO");
  EXPECT_EQ(outcome(open("/dev/mtd0", O_RDWR)), "-1 EIO");
  EXPECT_EQ(outcome(close(device)), "-1 EIO");
  EXPECT_EQ(image.bytes(0, 11), (Bytes{1, 2, 3, 0x11, 0x11, 0x11, 0x11, 0x11, 4, 5, 0x11}));
  EXPECT_EQ(outcome(fcntl(device, F_GETFD)), "-1 EBADF") << "the descriptor is closed all the same";
}

TEST_F(SimulatedDevice, CanLosePowerDuringAnErase) {
  image.put(0, Bytes(8192, 0x11));
  image.restart("erase-cut=4098");
  const int device = open("/dev/mtd0", O_RDWR);
  EXPECT_EQ(outcome(erase(device, 0, 8192)), "-1 EIO");
  EXPECT_EQ(outcome(close(device)), "-1 EIO");
  EXPECT_EQ(image.bytes(4096, 4), (Bytes{0xff, 0xff, 0x11, 0x11}));
}

TEST_F(SimulatedDevice, HasItsPowerBackAfterARestart) {
  image.restart("cut=0");
  EXPECT_EQ(save_to_flash(1, "abc", 3), -1);
  image.restart();
  EXPECT_EQ(save_to_flash(1, "abc", 3), 3);
}

TEST_F(SimulatedDevice, RefusesUnknownFaults) {
  for (const std::string fault :
       {"wirte:1:EIO", "write", "write:1", "write:0:EIO", "write:x:EIO", "write:-1:EIO",
        "write:1:EWHAT", "write:1:short=", "write:1:short=x", "open:1:short=1", "cut",
        "cut=", "cut=-1", "cut=12345678901", "erase-cut=1k", "write:1:EIO:EIO"}) {
    EXPECT_THAT(redirect_error(image.path(), {.faults = ("read:1:EIO " + fault).c_str()}),
                HasSubstr("flash fault \"" + fault + "\" is unknown"));
  }
  std::string many;
  for (int i = 1; i <= 33; ++i) many += "read:" + std::to_string(i) + ":EIO,";
  EXPECT_THAT(redirect_error(image.path(), {.faults = many.c_str()}),
              HasSubstr("flash fault \"read:33:EIO\" is unknown or one too many"));
}

TEST_F(SimulatedDevice, IsUnchangedAfterARefusedRedirect) {
  image.restart("open:1:ETIMEDOUT");
  EXPECT_NE(redirect_error(image.path(), {.faults = "nonsense"}), "");
  EXPECT_EQ(outcome(open("/dev/mtd0", O_RDWR)), "-1 ETIMEDOUT");
}

TEST(FlashImageFile, IsRefusedIfItIsNotAnImage) {
  const Folder folder;
  EXPECT_THAT(redirect_error(folder / "no/image"), HasSubstr("No such file or directory"));
  EXPECT_THAT(redirect_error(folder / ""), HasSubstr("is not a file of 4194304 bytes"));
  std::ofstream(folder / "short") << "too short";
  EXPECT_THAT(redirect_error(folder / "short"), HasSubstr("is not a file of 4194304 bytes"));
  EXPECT_EQ(std::filesystem::file_size(folder / "short"), 9U);
}

TEST(FlashImageFile, IsCreatedOnceByConcurrentProcesses) {
  const Folder folder;
  const auto image = folder / "flash.img";
  std::vector<pid_t> children(8);
  for (pid_t &child : children) {
    child = fork();
    if (child == 0) _exit(redirect_error(image).empty() && write_oam_type(1, 0) == 0 ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(std::filesystem::file_size(image), 4194304U);
  const auto files = std::filesystem::directory_iterator(folder.path());
  EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST(FlashImageFile, StaysTheSameWhenTheFolderChanges) {
  const Folder folder;
  const auto before = std::filesystem::current_path();
  std::filesystem::create_directory(folder / "other");
  std::filesystem::current_path(folder / "");
  EXPECT_EQ(redirect_error("flash.img"), "");
  std::filesystem::current_path(folder / "other");
  EXPECT_EQ(save_to_flash(1, "abc", 3), 3);
  std::filesystem::current_path(before);
  flash_device::off();
}

TEST(Redirect, IsOffUntilAsked) {
  const Folder folder;
  EXPECT_EQ(redirect_error(folder / "flash.img", {.faults = "open:1:ETIMEDOUT"}), "");
  flash_device::off();
  struct stat device {};
  const bool exists = stat("/dev/mtd0", &device) == 0;
  const int opened = open("/dev/mtd0", O_RDONLY);
  EXPECT_EQ(outcome(opened), exists ? std::to_string(opened) : "-1 ENOENT");
  if (opened >= 0) close(opened);
}

TEST_F(SimulatedDevice, LeavesOtherFilesAlone) {
  image.restart("open:1:EIO read:1:EIO write:1:EIO lseek:1:EIO ioctl:1:EIO close:1:EIO cut=0");
  const auto path = image.path().string() + ".other";
  std::array<char, 8> text{};
  int waiting = 0;
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL, 0640);
  ASSERT_GE(file, 0);
  EXPECT_EQ(write(file, "hello", 5), 5);
  EXPECT_EQ(lseek(file, 0x400001, SEEK_SET), 0x400001);
  EXPECT_EQ(lseek64(file, 1, SEEK_SET), 1);
  EXPECT_EQ(ioctl(file, FIONREAD, &waiting), 0);
  EXPECT_EQ(waiting, 4);
  EXPECT_EQ(read(file, text.data(), text.size()), 4);
  EXPECT_STREQ(text.data(), "ello");
  EXPECT_EQ(close(file), 0);
  EXPECT_EQ(outcome(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL, 0640)), "-1 EEXIST");
  const auto mode = std::filesystem::status(path).permissions();
  EXPECT_EQ(mode & std::filesystem::perms::others_all, std::filesystem::perms::none);
  EXPECT_EQ(outcome(open("/dev/mtd0", O_RDWR)), "-1 EIO") << "the first open of the device";
}

TEST_F(SimulatedDevice, LeavesReusedDescriptorsAlone) {
  const auto path = image.path().string() + ".other";
  const int other = open(path.c_str(), O_RDWR | O_CREAT, 0600);
  const int device = open("/dev/mtd0", O_RDWR);
  ASSERT_EQ(dup2(other, device), device);
  EXPECT_EQ(lseek(device, 0x500000, SEEK_SET), 0x500000);
  EXPECT_EQ(close(device), 0);
  EXPECT_EQ(close(other), 0);
}

// Each thread has a region of its own; one uses a pipe instead of the flash.
TEST_F(SimulatedDevice, ServesManyThreads) {
  std::vector<std::thread> threads;
  for (uint32_t region = 1; region <= 5; ++region) {
    threads.emplace_back([region] {
      const Bytes data(4000, static_cast<uint8_t>(region));
      Bytes back(4000);
      for (int round = 0; round < 20; ++round) {
        ASSERT_EQ(save_to_flash(region, data.data(), 4000), 4000);
        ASSERT_EQ(read_from_flash(region, back.data(), 4000), 4000);
        ASSERT_EQ(back, data);
      }
    });
  }
  threads.emplace_back([] {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    for (int round = 0; round < 200; ++round) {
      char byte = 0;
      ASSERT_EQ(write(ends[1], "x", 1), 1);
      ASSERT_EQ(read(ends[0], &byte, 1), 1);
    }
    ASSERT_EQ(close(ends[0]) + close(ends[1]), 0);
  });
  for (std::thread &thread : threads) thread.join();
  EXPECT_THAT(image.bytes(0x10000, 4000), Each(2));
  EXPECT_THAT(image.bytes(0x1c1000, 4000), Each(4));
}

}  // namespace
}  // namespace olt::test
