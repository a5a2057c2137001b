// docs/mock.md shows what examples/mock has.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/support/folder.h"

namespace olt::test {

namespace {

TEST(MockDocument, ShowsTheExample) {
  constexpr std::string_view kFence = "```cpp\n";
  std::string document = read_file(DOCUMENT);
  size_t begin = document.find(kFence);
  ASSERT_NE(begin, std::string::npos);
  begin += kFence.size();
  std::string shown = document.substr(begin, document.find("```", begin) - begin);
  EXPECT_TRUE(shown.starts_with("TEST_F(")) << shown;
  EXPECT_NE(read_file(EXAMPLE).find(shown), std::string::npos) << shown;
}

}  // namespace

}  // namespace olt::test
