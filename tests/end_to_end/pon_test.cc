// Bringing up the ONUs of a whole box from the command line, and reading them through the library.

#include <gtest/gtest.h>
#include <string.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "oltmgmt.h"
#include "tests/end_to_end/running_box.h"
#include "tests/support/bytes.h"
#include "tests/support/wire_names.h"

namespace olt::test {

namespace {

// The default topology.
constexpr uint32_t kInterfaces = 16;
constexpr uint32_t kOnus = 64;

size_t count(const std::string &text, const std::string &part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

std::string name_of(uint32_t interface, uint32_t onu) {
  return "1/" + std::to_string(interface) + "/" + std::to_string(onu);
}

std::string mac_of(uint32_t interface, uint32_t onu) {
  char text[18];
  snprintf(text, sizeof text, "02:20:%02x:%02x:%02x:01", interface & 0xFF, (onu >> 8) & 0xFF,
           onu & 0xFF);
  return text;
}

/// One entry a line, for all ONUs of an interface.
std::string mac_lines(uint32_t interface) {
  std::string lines = "# PON interface " + std::to_string(interface) + "\n\n";
  for (uint32_t onu = 1; onu <= kOnus; ++onu) lines += "mac=" + mac_of(interface, onu) + "\n";
  return lines;
}

/// A script with the line for every interface; "%I" stands for its number.
std::string for_all_interfaces(const std::string &line) {
  std::string script;
  for (uint32_t interface = 1; interface <= kInterfaces; ++interface) {
    std::string command = line;
    for (size_t at = command.find("%I"); at != std::string::npos; at = command.find("%I")) {
      command.replace(at, 2, std::to_string(interface));
    }
    script += command + "\n";
  }
  return script;
}

std::string onu_lists(const RunningBox &box, const Folder &folder) {
  std::string script =
      folder.write("lists", for_all_interfaces("get_onulist_file_byinteface 1 %I"));
  Finished lists = box.oltctl({"-f", script});
  EXPECT_EQ(lists.status, 0) << lists.errors;
  return lists.output;
}

TEST(Pon, AllOnusAreBroughtUpFromTheCommandLine) {
  RunningBox box;
  Folder folder;
  box.start();
  EXPECT_EQ(count(onu_lists(box, folder), "\n64 ONUs, 64 up\n"), kInterfaces);

  std::string script = folder.write("close", for_all_interfaces("set_olt_auth_mode 1 %I 1"));
  Finished closed = box.oltctl({"-f", script});
  ASSERT_EQ(closed.status, 0) << closed.errors;
  std::string lists = onu_lists(box, folder);
  EXPECT_EQ(count(lists, "\n64 ONUs, 0 up\n"), kInterfaces);
  EXPECT_EQ(count(lists, "  blocked  "), size_t{kInterfaces} * kOnus);

  for (uint32_t interface = 1; interface <= kInterfaces; ++interface) {
    folder.write("macs-" + std::to_string(interface), mac_lines(interface));
  }
  std::string macs = folder / "macs-%I";
  script =
      folder.write("open", for_all_interfaces("add_authallowed_mac 1 %I entries=@" + macs) +
                               for_all_interfaces("delete_blocklist_mac 1 %I entries=@" + macs));
  Finished opened = box.oltctl({"-f", script});
  ASSERT_EQ(opened.status, 0) << opened.errors;
  lists = onu_lists(box, folder);
  EXPECT_EQ(count(lists, "\n64 ONUs, 64 up\n"), kInterfaces);
  for (uint32_t interface = 1; interface <= kInterfaces; ++interface) {
    for (uint32_t onu = 1; onu <= kOnus; ++onu) {
      EXPECT_TRUE(holds(lists, "\n" + name_of(interface, onu) + " "));
      EXPECT_TRUE(holds(lists, mac_of(interface, onu)));
    }
  }
  Finished blocked = box.oltctl({"get_blocklist_file_byinteface", "1", "16"});
  EXPECT_TRUE(holds(blocked.output, "\n0 ONUs\n")) << blocked.output;
}

TEST(Pon, LoidsAndPasswordsLetOnusIn) {
  RunningBox box;
  Folder folder;
  box.start();
  std::string lines;
  for (uint32_t onu = 1; onu <= kOnus; ++onu) {
    // Of every four, one has no password and one a wrong one.
    lines += "loid=onu-1-3-" + std::to_string(onu);
    if (onu % 4 != 0) lines += " password=pw-1-3-" + std::to_string(onu % 4 == 1 ? 999 : onu);
    lines += '\n';
  }
  std::string entries = "entries=@" + folder.write("loids", lines);
  ASSERT_EQ(box.oltctl({"add_authallowed_loid", "1", "3", entries}).status, 0);
  ASSERT_EQ(box.oltctl({"set_olt_auth_mode", "1", "3", "2"}).status, 0);
  Finished list = box.oltctl({"get_onulist_file_byinteface", "1", "3"});
  EXPECT_TRUE(holds(list.output, "\n64 ONUs, 48 up\n")) << list.output;
  list = box.oltctl({"get_blocklist_file_byinteface", "1", "3"});
  EXPECT_EQ(count(list.output, "refused: wrong password"), 16U) << list.output;
}

TEST(Pon, ABadLineIsNamedAndNothingIsSent) {
  RunningBox box;
  Folder folder;
  box.start();
  std::string lines = mac_lines(1);
  const std::string good = mac_of(1, 40);
  lines.replace(lines.find(good), good.size(), "02:20:01:00:28");
  std::string file = folder.write("macs", lines);
  Finished before = box.oltctl({"--json", "counters"});
  Finished failed = box.oltctl({"add_authallowed_mac", "1", "1", "entries=@" + file});
  Finished after = box.oltctl({"--json", "counters"});
  EXPECT_EQ(failed.status, 2);
  EXPECT_EQ(failed.output, "");
  // The entry of ONU 40, after a comment and a blank line.
  EXPECT_TRUE(holds(failed.errors, "entries: line 42: ")) << failed.errors;
  EXPECT_EQ(count(failed.errors, "\n"), 1U) << failed.errors;
  EXPECT_TRUE(holds(before.output, R"("exchanges":0,)")) << before.output;
  EXPECT_TRUE(holds(after.output, R"("exchanges":0,)")) << after.output;
  Finished mode = box.oltctl({"show_autmacmode_file_by_interface", "1", "1"});
  EXPECT_TRUE(holds(mode.output, "Allowed by MAC address on 1/1: 0\n")) << mode.output;
}

TEST(Pon, TheLibraryReadsWhatTheCommandLineSet) {
  RunningBox box;
  box.start();
  ASSERT_EQ(box.oltctl({"set_olt_auth_mode", "1", "2", "3"}).status, 0);
  uint32_t mode = 0;
  EXPECT_EQ(get_olt_auth_mode(1, 2, &mode), 0);
  EXPECT_EQ(mode, 3U);

  ASSERT_EQ(box.oltctl({"set_ont_port_downrate", "ont=1/1/64:4", "rates=10,20,30"}).status, 0);
  olt_ont_target ont{};
  ont.target[0] = 1;
  ont.target[1] = 1;
  ont.target[2] = 64;
  ont.target_kind = 1;
  ont.reserved_10[0] = 4;
  olt_uni_downrate rates{};
  EXPECT_EQ(get_ont_port_downrate(&ont, &rates), 0);
  const uint32_t expected[] = {10, 20, 30};
  EXPECT_EQ(memcmp(&rates, expected, sizeof expected), 0);
  EXPECT_EQ(get_onu_basic_mac_byindex(&ont), 0);
  const uint8_t mac[] = {0x02, 0x20, 0x01, 0x00, 0x40, 0x01};
  EXPECT_EQ(memcmp(reinterpret_cast<const uint8_t *>(&ont) + kMacAt, mac, sizeof mac), 0);

  char name[32];
  ASSERT_EQ(getonu_ont_opticalfile(&ont, name), 0);
  std::string readings = box.listing(name);
  EXPECT_TRUE(holds(readings, "Optical readings of ONU 1/1/64\n")) << readings;
  ASSERT_EQ(tkonu_ont_reboot(&ont), 0);
  EXPECT_EQ(getonu_ont_opticalfile(&ont, name), kOnuNotUp);
}

}  // namespace

}  // namespace olt::test
