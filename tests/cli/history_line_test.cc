#include "cli/history_line.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace olt::test {

namespace {

using olt::cli::history_line;
using Words = std::vector<std::string>;

TEST(HistoryLine, KeepsWhatHoldsNoSecret) {
  EXPECT_EQ(history_line(Words{"get_olt_mac"}), "get_olt_mac");
  EXPECT_EQ(history_line(Words{"delete_user_level", "two words"}), "delete_user_level 'two words'");
  EXPECT_EQ(history_line(Words{"fault", "add", "type=12"}), "fault add type=12");
  EXPECT_EQ(history_line(Words{"process_debug_value", "value=0:01"}),
            "process_debug_value value=0:01");
}

TEST(HistoryLine, PutsADashInThePlaceOfSecrets) {
  EXPECT_EQ(history_line(Words{"add_user_level", "bob", "s3cret", "1", "2"}),
            "add_user_level bob - 1 2");
  EXPECT_EQ(history_line(Words{"add_user_level", "password=s3cret", "bob", "1", "2"}),
            "add_user_level password=- bob 1 2");
  EXPECT_EQ(history_line(Words{"modify_user_level", "user_name=bob", "user.user_password=s3cret"}),
            "modify_user_level user_name=bob user.user_password=-");
  EXPECT_EQ(history_line(Words{"get_user_level", "bob", ""}), "get_user_level bob -");
}

TEST(HistoryLine, ForgetsLinesThatMayHideASecret) {
  EXPECT_EQ(history_line(Words{"add_authallowed_loid", "1", "2", "entries=loid=a password=b"}),
            std::nullopt);
  EXPECT_EQ(history_line(Words{"modify_user_level", "40:733363726574"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"add_user_levle", "bob", "s3cret", "1", "2"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"add_user_level", "pasword=s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"get_user_level", "bob", "two", "words"}), std::nullopt);
}

TEST(HistoryLine, ForgetsCommandsWithASecret) {
  EXPECT_EQ(history_line(Words{"help", "add_user_level", "bob", "password=s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"help", "add_user_level", "bob", "s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"help", "add_user_levle", "bob", "s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"watch", "get_user_levle", "bob", "s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"list", "password=s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"list", "user.user_password=s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"fault", "add", "type=10", "password=s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"walk", "mac=02:00:00:00:00:01 password=s3cret"}), std::nullopt);
  EXPECT_EQ(history_line(Words{"help", "add_user_level"}), "help add_user_level");
  EXPECT_EQ(history_line(Words{"help", "add_user_levle"}), "help add_user_levle");
  EXPECT_EQ(history_line(Words{"watch", "--count", "2", "get_olt_mac"}),
            "watch --count 2 get_olt_mac");
  EXPECT_EQ(history_line(Words{"list", "password"}), "list password");
  EXPECT_EQ(history_line(Words{"fault", "add", "type=add_user_level", "status=5"}),
            "fault add type=add_user_level status=5");
}

}  // namespace

}  // namespace olt::test
