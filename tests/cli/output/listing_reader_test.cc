#include "cli/output/listing_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/text/error.h"
#include "tests/support/folder.h"

namespace olt::test {

namespace {

std::string error_for(const Folder &folder, const std::string &name) {
  try {
    olt::cli::read_listing(folder.path(), name);
  } catch (const olt::cli::Error &error) {
    return error.what();
  }
  return "no error";
}

TEST(Listing, IsReadByItsName) {
  Folder folder;
  folder.write("vlans-00000001.txt", "VLANs\n");
  EXPECT_EQ(olt::cli::read_listing(folder.path(), "vlans-00000001.txt"), "VLANs\n");
}

TEST(Listing, OutsideItsFolderIsNotRead) {
  Folder folder;
  for (const char *name : {"", "..", "../x", "/etc/passwd", ".hidden"}) {
    EXPECT_EQ(error_for(folder, name), "cannot read the listing: '" + std::string(name) +
                                           "' is not the name of a file in " + folder.path());
  }
}

TEST(Listing, NameWithControlCharactersIsSpelledOut) {
  Folder folder;
  EXPECT_EQ(error_for(folder, "a\x1b[2J"),
            "cannot read the listing " + folder.path() + "/a\\x1b[2J: No such file or directory");
}

}  // namespace

}  // namespace olt::test
