#include "cli/text/words.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/text/error.h"

namespace olt::test {

namespace {

using olt::cli::join_words;
using olt::cli::split_words;
using Words = std::vector<std::string>;

TEST(Words, AreSeparatedByBlanks) {
  EXPECT_EQ(split_words("  get_user_level\toperator  secret \r"),
            (Words{"get_user_level", "operator", "secret"}));
  EXPECT_EQ(split_words(""), Words{});
  EXPECT_EQ(split_words(" \t "), Words{});
}

TEST(Words, KeepWhatIsQuoted) {
  EXPECT_EQ(split_words(R"(name='a b' "c d" e\ f '' 'x\y' "q\"r\\s\t")"),
            (Words{"name=a b", "c d", "e f", "", "x\\y", "q\"r\\s\\t"}));
}

TEST(Words, EndAtAComment) {
  EXPECT_EQ(split_words("get_olt_mac # which one"), Words{"get_olt_mac"});
  EXPECT_EQ(split_words("# nothing"), Words{});
  EXPECT_EQ(split_words("delete_user_level a#b"), (Words{"delete_user_level", "a#b"}));
}

TEST(Words, NeedTheirClosingQuote) {
  auto error_of = [](const char *line) -> std::string {
    try {
      split_words(line);
    } catch (const olt::cli::Error &error) {
      EXPECT_EQ(error.status(), 2);
      return error.what();
    }
    return "no error";
  };
  EXPECT_EQ(error_of("name='abc"), "the line ends too early; expected a closing '");
  EXPECT_EQ(error_of("name=\"abc"), "the line ends too early; expected a closing \"");
  EXPECT_EQ(error_of("abc\\"), "the line ends too early; expected a character after the backslash");
}

TEST(Words, JoinedSplitIntoTheSameWords) {
  Words words = {"plain", "", "two words", "it's", "\"", "back\\slash", "#no comment", "a#b", "-"};
  std::string line = join_words(words);
  EXPECT_EQ(line, R"(plain '' 'two words' 'it'\''s' '"' 'back\slash' '#no comment' a#b -)");
  EXPECT_EQ(split_words(line), words);
}

}  // namespace

}  // namespace olt::test
