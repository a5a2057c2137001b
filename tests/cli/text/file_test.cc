#include "cli/text/file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "base/text.h"
#include "tests/support/folder.h"

namespace olt::test {

namespace {

using olt::as_bytes;
using olt::cli::write_file;

mode_t mode_of(const std::string &path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

size_t files_in(const Folder &folder) {
  size_t count = 0;
  for (const auto &entry : std::filesystem::directory_iterator(folder.path())) {
    static_cast<void>(entry);
    ++count;
  }
  return count;
}

TEST(File, IsReplacedAndItsNeighboursStay) {
  Folder folder;
  std::string other = folder.write("other", "other");
  std::string path = folder.write("x", "earlier");
  std::string neighbour = folder.write("x.new", "neighbour");
  ASSERT_FALSE(write_file(path, as_bytes("later")));
  EXPECT_EQ(read_file(path), "later");
  EXPECT_EQ(read_file(neighbour), "neighbour");
  std::filesystem::remove(neighbour);
  std::filesystem::create_symlink(other, neighbour);
  ASSERT_FALSE(write_file(path, as_bytes("again")));
  EXPECT_EQ(read_file(other), "other");
  EXPECT_TRUE(std::filesystem::is_symlink(neighbour));
  EXPECT_EQ(files_in(folder), 3U);
}

TEST(File, KeepsItsMode) {
  Folder folder;
  std::string path = folder.write("x", "secret");
  ASSERT_EQ(chmod(path.c_str(), 0600), 0);
  ASSERT_FALSE(write_file(path, as_bytes("other")));
  EXPECT_EQ(mode_of(path), 0600U);
  ASSERT_EQ(chmod(path.c_str(), 0666), 0);
  ASSERT_FALSE(write_file(path, as_bytes("other")));
  EXPECT_EQ(mode_of(path), 0666U);
  mode_t before = umask(027);
  ASSERT_FALSE(write_file(folder / "fresh", as_bytes("")));
  umask(before);
  EXPECT_EQ(mode_of(folder / "fresh"), 0640U);
}

TEST(File, IsWrittenWhereALinkLeads) {
  Folder folder;
  std::string path = folder.write("x", "earlier");
  std::filesystem::create_symlink("x", folder / "link");
  ASSERT_FALSE(write_file(folder / "link", as_bytes("later")));
  EXPECT_EQ(read_file(path), "later");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
}

TEST(File, ThatCannotBeWrittenLeavesNothing) {
  Folder folder;
  EXPECT_EQ(write_file(folder / "none/x", as_bytes("a")), std::errc::no_such_file_or_directory);
  EXPECT_EQ(write_file(folder.path(), as_bytes("a")), std::errc::is_a_directory);
  EXPECT_EQ(write_file("/dev/full", as_bytes("a")), std::errc::no_space_on_device);
  EXPECT_EQ(files_in(folder), 0U);
}

}  // namespace

}  // namespace olt::test
