// oltctl compare: recorded requests are sent again, and the answers compared.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "catalog/catalog.h"
#include "catalog/message_fields.h"
#include "tests/cli/program.h"
#include "tests/cli/terminal.h"
#include "tests/support/capture_bytes.h"
#include "tests/support/wire_names.h"

namespace olt::test {
namespace {

using nlohmann::ordered_json;
using Words = std::vector<std::string>;

constexpr uint64_t kNewYear = 1'767'225'600'000'000'000;  // 2026-01-01T00:00:00Z
constexpr size_t kNetworkSize = 172;                      ///< bytes of olt_system_network
constexpr const char *kPlace = "2026-01-01T00:00:00.000000000Z - 1234/1235 ";

std::string bytes(std::string_view digits) {
  return characters(hex(digits));
}

RecordedExchange message(uint32_t number, uint32_t type, const std::string &request = "",
                         uint32_t module = 2) {
  return {.type = type,
          .request = text(request),
          .module = module,
          .exchange = number,
          .thread = 1235,
          .time = kNewYear};
}

std::string recorded(RecordedExchange one, const std::string &reply, uint32_t result = 0,
                     uint16_t status = 0) {
  one.reply = text(reply);
  one.result = result;
  one.status = status;
  return request_packet(one) + answer_packet(one);
}

const std::string kMac = bytes("020000000001");
const std::string kOtherMac = bytes("020000000002");

/// As the default box answers, except for the first address.
const std::string kOneDifference = capture_head() + recorded(message(1, 12), kOtherMac) +
                                   recorded(message(2, 12), kMac) +
                                   recorded(message(3, 4, "", 18), bytes("01000000"));

class CompareCommand : public testing::Test {
 protected:
  Finished compare(const std::string &capture, const Words &words = {}, const Words &options = {}) {
    Words command = options;
    command.insert(command.end(), {"compare", oltctl_.folder().write("capture", capture)});
    command.insert(command.end(), words.begin(), words.end());
    return oltctl_(command);
  }

  /// What differs, without the table.
  std::string differences(const std::string &capture, const Words &words = {}) {
    Finished compared = compare(capture, words);
    return compared.output.substr(0, compared.output.find("\noperation  "));
  }

  std::string path() const { return oltctl_.folder() / "capture"; }

  Oltctl oltctl_;
};

TEST_F(CompareCommand, PrintsEachFieldThatDiffersAndCountsByOperation) {
  Finished compared = compare(kOneDifference);
  EXPECT_EQ(compared.output,
            "2026-01-01T00:00:00.000000000Z - 1234/1235 #1 get_olt_mac\n"
            "  mac: 02:00:00:00:00:02 → 02:00:00:00:00:01\n"
            "\n"
            "operation            exchanges  equal  differing  skipped\n"
            "-------------------  ---------  -----  ---------  -------\n"
            "get_olt_mac          2          1      1          0\n"
            "get_olt_support_oam  1          1      0          0\n"
            "all                  3          2      1          0\n");
  EXPECT_EQ(compared.errors, "compare: 1 exchange with differences\n");
  EXPECT_EQ(compared.status, 1);
}

TEST_F(CompareCommand, SucceedsWithoutDifferences) {
  Finished compared = compare(capture_head() + recorded(message(1, 12), kMac));
  EXPECT_EQ(compared.output,
            "operation    exchanges  equal  differing  skipped\n"
            "-----------  ---------  -----  ---------  -------\n"
            "get_olt_mac  1          1      0          0\n"
            "all          1          1      0          0\n");
  EXPECT_EQ(compared.errors, "");
  EXPECT_EQ(compared.status, 0);
}

TEST_F(CompareCommand, PrintsJson) {
  Finished compared = compare(kOneDifference, {"--json"});
  EXPECT_EQ(compared.status, 1);
  EXPECT_EQ(
      compared.output,
      R"({"version":1,"command":"compare","time":"2026-01-01T00:00:00.000000000Z",)"
      R"("program":"","run":1000,"process":1234,"thread":1235,"exchange":1,"module":2,)"
      R"("message_type":12,"operations":["get_olt_mac"],"differences":[{"field":"mac",)"
      R"("item":null,"recorded":"02:00:00:00:00:02","now":"02:00:00:00:00:01"}]})"
      "\n"
      R"({"version":1,"command":"compare","equal":2,"differing":1,)"
      R"("skipped":{"changing":0,"masked":0,"cut":0,"incomplete":0},)"
      R"("listings":{"compared":0,"missing":0},"by_operation":[)"
      R"({"operation":"get_olt_mac","exchanges":2,"equal":1,"differing":1,"skipped":0},)"
      R"({"operation":"get_olt_support_oam","exchanges":1,"equal":1,"differing":0,"skipped":0}]})"
      "\n");
}

TEST_F(CompareCommand, WritesJunit) {
  std::string file = oltctl_.folder() / "junit.xml";
  std::string user(80, '\0');
  Finished compared = compare(kOneDifference + recorded(message(4, 10, user + "<&>"), "") +
                                  recorded(message(5, kReboot), ""),
                              {"--junit", file});
  EXPECT_EQ(compared.status, 1) << compared.errors;
  EXPECT_EQ(read_file(file),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<testsuites tests=\"4\" failures=\"1\" errors=\"0\" skipped=\"2\">\n"
            "  <testsuite name=\"" +
                path() +
                "\" tests=\"4\" failures=\"1\" errors=\"0\" skipped=\"2\">\n"
                "    <testcase classname=\"compare\" name=\"do_reboot_system\">\n"
                "      <skipped message=\"1 exchange not sent\"/>\n"
                "    </testcase>\n"
                "    <testcase classname=\"compare\" name=\"get_olt_mac\">\n"
                "      <failure message=\"1 of 2 exchanges with differences\">"
                "2026-01-01T00:00:00.000000000Z - 1234/1235 #1 get_olt_mac\n"
                "  mac: 02:00:00:00:00:02 -&gt; 02:00:00:00:00:01\n"
                "</failure>\n"
                "    </testcase>\n"
                "    <testcase classname=\"compare\" name=\"get_olt_support_oam\"/>\n"
                "    <testcase classname=\"compare\" name=\"type 10 to module 2\">\n"
                "      <skipped message=\"1 exchange not sent\"/>\n"
                "    </testcase>\n"
                "  </testsuite>\n"
                "</testsuites>\n");
}

/// Names and values of others are data: they end no element and no attribute.
TEST_F(CompareCommand, EscapesInJunit) {
  std::string file = oltctl_.folder() / "junit.xml";
  std::string contact = std::string("<b>&\"\x01\xff", 7);
  std::string info(3 * 64 + 4, '\0');
  info.replace(0, contact.size(), contact);
  Finished compared = compare(capture_head() + recorded(message(1, 60), info), {"--junit=" + file});
  EXPECT_TRUE(holds(read_file(file), "  contact: &lt;b&gt;&amp;&quot;\\x01\\xff -&gt; ''\n"))
      << read_file(file) << compared.output << compared.errors;
}

TEST_F(CompareCommand, ComparesStatusAndTransport) {
  std::string timed_out = recorded(message(1, 12), "", 0x00010000);
  std::string refused = recorded(message(2, 12), "", 0, 4);
  EXPECT_EQ(differences(capture_head() + timed_out + refused),
            std::string(kPlace) +
                "#1 get_olt_mac\n"
                "  transport: no answer within the time-out → answered\n" +
                kPlace +
                "#2 get_olt_mac\n"
                "  status: 4 (not found) → 0 (ok)\n");
  std::string no_module = recorded(message(3, 12, "", 99), "", 0x00020000);
  Finished compared = compare(capture_head() + no_module, {"--all"});
  EXPECT_EQ(compared.status, 0) << compared.output;
}

TEST_F(CompareCommand, ComparesItemsOfLists) {
  ASSERT_EQ(oltctl_({"add_muticastvlan_list", "vlans=10,20-25,30"}).status, 0);
  std::string head = bytes("00000000") + bytes("7d000000") + bytes("0a000000") + bytes("02000000") +
                     bytes("01000000") + bytes("00000000");
  std::string reply = head + bytes("02000000") + bytes("0a000a00") + bytes("14001800");
  EXPECT_EQ(differences(capture_head() + recorded(message(1, 153), reply)),
            std::string(kPlace) +
                "#1 get_igmpproxy_config_all\n"
                "  ranges: 2 → 3\n"
                "  vlans.last of item 2: 24 → 25\n"
                "  vlans of item 3: none → {first=30 last=30}\n");
}

/// The layout says what bytes mean, and which fields there are to ignore.
TEST_F(CompareCommand, TakesFieldsFromTheLayout) {
  std::string layout = oltctl_.folder().write("acme.json", R"({"version": 1, "name": "acme",
    "records": {"olt_system_network": [
      {"name": "address", "offset": 0, "kind": "ipv4"},
      {"name": "mode", "offset": 4, "width": 4, "kind": "number", "values": {"0": "dhcp", "1": "fixed"}},
      {"name": "level", "offset": 8, "width": 2, "kind": "signed", "decimals": 2, "unit": "dBm"},
      {"name": "key", "offset": 12, "width": 16, "kind": "padded", "secret": true},
      {"name": "routes", "offset": 28, "width": 16, "kind": "records", "record": {"fields": [
        {"name": "to", "offset": 0, "kind": "ipv4"},
        {"name": "hops", "offset": 4, "width": 4, "kind": "number"}]}}]},
    "statuses": {"4": "no such thing"}})");
  std::string network(kNetworkSize, '\0');
  std::string reply = bytes("c0000201 01000000 e204 0000") + "secret word 1234" +
                      bytes("0a000000 02000000 0a010000 00000000");
  reply.resize(kNetworkSize);
  std::string capture = capture_head() + recorded(message(1, 58, network), reply) +
                        recorded(message(2, 12), "", 0, 4);
  Finished compared = compare(capture, {"--layout", layout, "--ignore", "routes.hops"});
  EXPECT_EQ(compared.output.substr(0, compared.output.find("\noperation  ")),
            std::string(kPlace) +
                "#1 get_system_network\n"
                "  address: 192.0.2.1 → 0.0.0.0\n"
                "  mode: fixed → dhcp\n"
                "  level: 12.50 dBm → 0.00 dBm\n"
                "  key: ******** → ********\n"
                "  routes.to of item 1: 10.0.0.0 → 0.0.0.0\n"
                "  routes.to of item 2: 10.1.0.0 → 0.0.0.0\n" +
                kPlace +
                "#2 get_olt_mac\n"
                "  status: 4 (no such thing) → 0\n");
  Finished other = compare(capture, {"--ignore", "routes.hops"});
  EXPECT_TRUE(holds(other.errors, "'routes.hops' stands for no field of a reply")) << other.errors;
}

TEST_F(CompareCommand, ComparesLengthsAndBytesWithoutNames) {
  EXPECT_EQ(differences(capture_head() + recorded(message(1, 12), kMac + bytes("0000"))),
            std::string(kPlace) +
                "#1 get_olt_mac\n"
                "  reply: 00 00 → none\n");
  EXPECT_EQ(differences(capture_head() + recorded(message(1, 12), kMac.substr(0, 4))),
            std::string(kPlace) +
                "#1 get_olt_mac\n"
                "  mac: 02 00 00 00 → 02:00:00:00:00:01\n");
}

TEST_F(CompareCommand, ShowsSecretsWhenAskedTo) {
  std::string param(3 * 32 + 16, '\0');
  param.replace(0, 6, "public");
  std::string capture = capture_head() + recorded(message(1, 57), param);
  Finished masked = compare(capture);
  EXPECT_TRUE(holds(masked.output, "  read_community: ******** → ********\n")) << masked.output;
  Finished shown = compare(capture, {"--show-secrets"});
  EXPECT_TRUE(holds(shown.output, "  read_community: public → ")) << shown.output;
}

/// Masked secrets of a reply equal any; a request with some cannot be sent.
TEST_F(CompareCommand, LeavesOutMaskedSecrets) {
  ASSERT_EQ(oltctl_({"set_snmp_param", "read_community=public", "write_community=private",
                     "trap_community=traps", "traps=on", "trap_host=192.0.2.9", "trap_port=162"})
                .status,
            0);
  RecordedExchange param = message(1, 57);
  param.masked_reply = true;
  std::string reply = std::string(96, '*') + bytes("01000000") + bytes("c0000209") +
                      bytes("a2000000") + std::string(28, '\0');
  Finished compared = compare(capture_head() + recorded(param, reply));
  EXPECT_EQ(compared.status, 0) << compared.output << compared.errors;
  RecordedExchange user = message(2, 10, std::string(80, '\0'));
  user.masked_request = true;
  compared = compare(kOneDifference + recorded(user, "", 0, 4));
  EXPECT_TRUE(holds(compared.output, "\nskipped: 1 whose request has masked secrets\n"))
      << compared.output;
}

TEST_F(CompareCommand, SaysWhatItDoesNotSend) {
  RecordedExchange cut = message(1, 11, "ab");
  cut.request_length = 200'000;
  Finished compared = compare(kOneDifference + recorded(cut, "") + recorded(message(4, 8), "") +
                              answer_packet(message(5, 12)) + recorded(message(6, 999), ""));
  EXPECT_TRUE(holds(compared.output,
                    "\nskipped: 2 that may change the box (--all sends them, too)\n"
                    "skipped: 1 whose request was cut\n"
                    "skipped: 1 whose request or answer is missing\n"))
      << compared.output;
}

TEST_F(CompareCommand, IgnoresFields) {
  for (const char *pattern : {"mac", "get_olt_mac.mac", "*.mac", "get_*.m?c", "m[a-c]c"}) {
    Finished compared = compare(kOneDifference, {"--ignore", "seconds", "--ignore", pattern});
    EXPECT_EQ(compared.status, 0) << pattern << '\n' << compared.output << compared.errors;
  }
  EXPECT_EQ(compare(kOneDifference, {"--ignore=get_olt_support_oam.*"}).status, 1);
  Finished compared = compare(kOneDifference, {"--ignore", "get_olt_mac.mak"});
  EXPECT_EQ(
      compared.errors,
      "compare: --ignore: 'get_olt_mac.mak' stands for no field of a reply; expected FIELD or "
      "OPERATION.FIELD, as in get_rstp_brief.seconds or *.seconds\n");
  EXPECT_EQ(compared.status, 2);
  EXPECT_EQ(compared.output, "");
}

TEST_F(CompareCommand, SendsOnlyWhatIsSelected) {
  EXPECT_EQ(compare(kOneDifference, {"module=18"}).status, 0);
  EXPECT_EQ(compare(kOneDifference, {"operation=get_olt_support_oam"}).status, 0);
  Finished first = compare(kOneDifference, {"--count", "1"});
  EXPECT_TRUE(holds(first.output, "all          1          0      1          0\n")) << first.output;
}

TEST_F(CompareCommand, RefusesWhatItCannotUse) {
  struct Case {
    Words words;
    std::string line;
  };
  const Case cases[] = {
      {{"--count", "0"}, "compare: --count: '0' given; expected a number from 1 to 4294967295\n"},
      {{"--junit"}, "compare: --junit: no file is given; expected one\n"},
      {{"--every", "2"},
       "compare: there is no option '--every'; expected --all, --yes, --ignore, --files, --count "
       "or "
       "--junit\n"},
      {{"--files", "/nowhere"},
       "compare: --files: '/nowhere' is no directory; expected that of OLT_CAPTURE_FILES\n"},
      {{"--files"}, "compare: --files: '' is no directory; expected that of OLT_CAPTURE_FILES\n"},
      {{"modul=2"},
       "compare: 'modul=2' given; expected operation=VALUE, module=VALUE, status=VALUE, "
       "from=VALUE, to=VALUE\n"},
      {{"--format", "csv"}, "compare: it has no CSV form; expected --format text or json\n"},
      {{"module=99"},
       path() + ": holds no exchange that can be sent; expected one that only reads, or --all\n"},
      {{"module=99", "--all"}, path() + ": holds no exchange that can be sent; expected one\n"},
  };
  for (const Case &each : cases) {
    Finished compared = compare(kOneDifference, each.words);
    EXPECT_EQ(compared.errors, each.line);
    EXPECT_EQ(compared.output, "");
    EXPECT_EQ(compared.status, 2);
  }
  EXPECT_EQ(oltctl_({"compare"}).errors, "compare: no file is given; expected a capture\n");
  Finished missing = oltctl_({"compare", "/nowhere/capture"});
  EXPECT_EQ(missing.errors, "/nowhere/capture: cannot be read: No such file or directory\n");
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(oltctl_({"compare", "/dev/null"}).errors,
            "/dev/null: is not a regular file; expected a capture of libolttrace, which is read "
            "twice\n");
  Finished unwritten = compare(kOneDifference, {"--junit", "/nowhere/junit.xml"});
  EXPECT_EQ(unwritten.errors,
            "compare: cannot write /nowhere/junit.xml: No such file or directory\n");
  EXPECT_EQ(unwritten.status, 2);
}

TEST_F(CompareCommand, SendsNothingOfADamagedCapture) {
  std::string capture = capture_head() + recorded(message(1, 14, std::string(80, '\1')), "");
  Finished compared = compare(capture + recorded(message(2, 12), kMac).substr(0, 100), {"--all"});
  EXPECT_EQ(compared.errors, fmt::format("{}: at byte {}: cut short; expected 8 more bytes\n",
                                         path(), capture.size()));
  EXPECT_EQ(compared.status, 2);
  EXPECT_EQ(oltctl_({"--json", "counters"}).output.find("\"exchanges\":0") != std::string::npos,
            true);
}

/// Where a block is cut, and where nothing is left to send, each is one line, and nothing is sent.
TEST_F(CompareCommand, CapturesCutAtEveryByte) {
  const std::string first = capture_head() + recorded(message(1, 12), kMac);
  const std::string whole = first + recorded(message(2, 12), kMac);
  const size_t half = first.size() + request_packet(message(2, 12)).size();
  std::string script;
  std::vector<std::string> lines;
  for (size_t left = 0; left < whole.size(); ++left) {
    std::string cut = oltctl_.folder().write("cut" + std::to_string(left), whole.substr(0, left));
    script += "compare " + cut + '\n';
    if (left == first.size() || left == half) continue;
    std::optional<size_t> block = cut_block(whole, left);
    lines.push_back(cut + (block ? fmt::format(": at byte {}: ", *block)
                                 : std::string(": holds no exchange that can be sent; ")));
  }
  Finished ran = oltctl_({"--json", "--keep-going", "-f", oltctl_.folder().write("all", script)});
  EXPECT_EQ(ran.status, 1);
  std::istringstream errors(ran.errors);
  for (const std::string &line : lines) {
    std::string error;
    std::getline(errors, error);
    EXPECT_TRUE(holds(error, ": " + line)) << error << '\n' << line;
  }
  std::string end;
  std::getline(errors, end);
  EXPECT_EQ(end, fmt::format("{}: {} of {} commands failed", oltctl_.folder() / "all", lines.size(),
                             whole.size()));
  EXPECT_EQ(count_of("\n", ran.output), 2U);
  EXPECT_EQ(count_of(R"("equal":1,"differing":0)", ran.output), 4U) << ran.output;
}

TEST_F(CompareCommand, NeedsABox) {
  Finished compared = compare(kOneDifference, {}, {"--box", oltctl_.folder() / "nowhere"});
  EXPECT_TRUE(holds(compared.errors, "nowhere is away: ")) << compared.errors;
  EXPECT_EQ(compared.output, "");
  EXPECT_EQ(compared.status, 2);
}

TEST_F(CompareCommand, ListingsAreEqualWhenBothCanBeRead) {
  std::string name = std::string("basicinfo-00000777.txt") + std::string(10, '\0');
  std::string reply = std::string(48, '\0') + name;
  Finished listed = compare(capture_head() + recorded(message(1, 53), reply));
  EXPECT_EQ(listed.status, 0) << listed.output << listed.errors;
  EXPECT_EQ(differences(capture_head() + recorded(message(1, 53), std::string(reply.size(), '\0'))),
            std::string(kPlace) +
                "#1 get_system_basicinfofile\n"
                "  name: '' → basicinfo-00000002.txt\n");
}

/// One exchange of get_vlan_all, and what is kept of its listing.
class CompareListing : public CompareCommand {
 protected:
  CompareListing() {
    std::string reply(80, '\0');
    reply.replace(48, 17, "vlan-00000777.txt");
    std::string request(80, '\0');
    request[0] = 3;  // all
    capture_ = capture_head() + recorded(message(7, 23, request), reply);
  }

  void keep(const std::string &listing) { kept_.write("1000-1234-1235-7.listing", listing); }

  Finished compare_listings(Words words) {
    words.insert(words.end(), {"--files", kept_.path()});
    return compare(capture_, words);
  }

  Folder kept_;
  std::string capture_;
};

const std::string kDefaultVlans =
    "VLANs of olt\n"
    "============\n"
    "\n"
    "1 VLAN\n"
    "VLAN  Tagged ports  Untagged ports  Description\n"
    "----  ------------  --------------  -----------\n"
    "1     -             1/1-4           default\n";

TEST_F(CompareListing, OfTheBoxEqualsTheKeptOne) {
  keep(kDefaultVlans);
  Finished compared = compare_listings({});
  EXPECT_EQ(compared.output,
            "operation     exchanges  equal  differing  skipped\n"
            "------------  ---------  -----  ---------  -------\n"
            "get_vlan_all  1          1      0          0\n"
            "all           1          1      0          0\n"
            "listings: 1 compared, 0 not kept\n");
  EXPECT_EQ(compared.errors, "");
  EXPECT_EQ(compared.status, 0);
}

TEST_F(CompareListing, DiffersInNamedCellsWhichCanBeIgnored) {
  std::string kept = kDefaultVlans + "10    1/2           -               uplink\n";
  kept.replace(kept.find("1 VLAN"), 6, "2 VLANs");
  keep(kept);
  Finished compared = compare_listings({});
  EXPECT_EQ(compared.output.substr(0, compared.output.find("\noperation  ")),
            std::string(kPlace) +
                "#7 get_vlan_all\n"
                "  listing.heading of item 1: 2 VLANs → 1 VLAN\n"
                "  listing.10: 10  1/2  -  uplink → none\n");
  EXPECT_EQ(compared.status, 1);
  EXPECT_EQ(compare_listings({"--ignore", "listing.heading"}).status, 1);
  for (const char *pattern : {"listing.*", "get_vlan_all.listing.*", "get_*.listing.[1h]*"}) {
    compared = compare_listings({"--ignore", pattern});
    EXPECT_EQ(compared.status, 0) << pattern << '\n' << compared.output << compared.errors;
  }
  EXPECT_EQ(compare(capture_).status, 0);  // without --files
}

TEST_F(CompareListing, DiffersByLinesWhereItIsNotUnderstood) {
  keep("# header\n" + kDefaultVlans);
  Finished compared = compare_listings({"--json"});
  ordered_json difference =
      ordered_json::parse(compared.output.substr(0, compared.output.find('\n')))["differences"];
  EXPECT_EQ(difference.dump(),
            R"([{"field":"listing.line","item":1,"recorded":"# header","now":null}])");
}

TEST_F(CompareListing, IsCountedWhenItWasNotKept) {
  Finished compared = compare_listings({});
  EXPECT_TRUE(holds(compared.output, "\nlistings: 0 compared, 1 not kept\n")) << compared.output;
  EXPECT_EQ(compared.status, 0);
}

/// Neither a directory nor a pipe, which nobody may ever write to.
TEST_F(CompareListing, IsARegularFile) {
  std::string path = kept_ / "1000-1234-1235-7.listing";
  const auto make = {+[](const char *name) { return mkdir(name, 0700); },
                     +[](const char *name) { return mkfifo(name, 0600); }};
  for (auto *create : make) {
    ASSERT_EQ(create(path.c_str()), 0);
    Finished compared = compare_listings({});
    EXPECT_EQ(compared.errors, path + ": is no regular file; expected a kept listing\n");
    EXPECT_EQ(compared.status, 2);
    std::filesystem::remove(path);
  }
}

TEST_F(CompareCommand, AsksBeforeWhatCannotBeTakenBack) {
  std::string file =
      oltctl_.folder().write("capture", capture_head() + recorded(message(1, kReboot), ""));
  Words environment = private_environment(oltctl_.folder());
  Terminal asked({OLTCTL, "compare", file, "--all"}, environment);
  ASSERT_TRUE(
      asked.shows("compare: sends do_reboot_system, which cannot be taken back. Go on? [y/N] "))
      << asked.transcript();
  asked.type("n\r");
  ASSERT_TRUE(asked.shows("compare: not confirmed, nothing was sent; expected y, or --yes\r\n"))
      << asked.transcript();
  EXPECT_EQ(asked.end(), 2);
  Terminal answered({OLTCTL, "--yes", "compare", file, "--all"}, environment);
  EXPECT_EQ(answered.end(), 0) << answered.transcript();
  EXPECT_FALSE(holds(answered.transcript(), "Go on?"));
}

TEST_F(CompareCommand, TakesItsOptionsInScriptsToo) {
  std::string file =
      oltctl_.folder().write("capture", capture_head() + recorded(message(1, kReboot), ""));
  Finished compared = oltctl_({"-f", "-"}, "compare " + file + " --all --yes\n");
  EXPECT_EQ(compared.status, 0) << compared.errors;
  EXPECT_TRUE(holds(compared.output, "do_reboot_system  1          1      0          0\n"))
      << compared.output;
}

TEST_F(CompareCommand, EndsBetweenTwoExchanges) {
  std::string exchanges;
  for (uint32_t i = 1; i <= 100; ++i) exchanges += recorded(message(i, 12), kOtherMac);
  std::string file = oltctl_.folder().write("capture", capture_head() + exchanges);
  ASSERT_EQ(oltctl_({"fault", "add", "type=get_olt_mac", "delay_ms=200"}).status, 0);
  Terminal compared({OLTCTL, "compare", file}, private_environment(oltctl_.folder()));
  ASSERT_TRUE(compared.shows(" #2 get_olt_mac")) << compared.transcript();
  compared.type("\x03");
  EXPECT_TRUE(compared.shows("compare: interrupted; ")) << compared.transcript();
  EXPECT_EQ(compared.end(), 128 + SIGINT);
  EXPECT_FALSE(holds(compared.transcript(), "#100 ")) << compared.transcript();
  EXPECT_FALSE(holds(compared.transcript(), "differing")) << compared.transcript();
}

// Which requests change the box.

/// ONUs that reboot are back at once.
constexpr const char *kTopology = R"({"version":1,"pon":{"onu_restart_seconds":0}})";

std::vector<ordered_json> samples() {
  std::vector<ordered_json> all;
  std::istringstream lines(read_file(SAMPLES));
  for (std::string line; std::getline(lines, line);) {
    ordered_json sample = ordered_json::parse(line);
    std::string name = sample["operation"];
    if (catalog::find(name)->address.sends()) all.push_back(sample);
  }
  return all;
}

/// All others may change the box.
const std::set<std::string> kReading = {"get_blocklist_file_byinteface",
                                        "get_card_updatestatus",
                                        "get_dynmac_file_by_interface",
                                        "get_igmpproxy_config",
                                        "get_igmpproxy_config_all",
                                        "get_linklist_file_byinteface",
                                        "get_olt_auth_mode",
                                        "get_olt_mac",
                                        "get_olt_support_oam",
                                        "get_ont_port_alarmsetting",
                                        "get_ont_port_downrate",
                                        "get_ont_port_muticastgrounp",
                                        "get_ont_port_policying",
                                        "get_onu_basic_feature_f",
                                        "get_onu_basic_mac_byindex",
                                        "get_onulist_file_byinteface",
                                        "get_port_enable",
                                        "get_port_link_duplex",
                                        "get_port_link_speed",
                                        "get_port_link_state",
                                        "get_rstp_brief",
                                        "get_rstp_config",
                                        "get_rstp_port_config",
                                        "get_snmp_olt_port_basic_info",
                                        "get_snmp_olt_port_status",
                                        "get_snmp_param",
                                        "get_snmp_systeminfo",
                                        "get_statics_file_by_interface",
                                        "get_system_basicinfofile",
                                        "get_system_loginfofile",
                                        "get_system_network",
                                        "get_system_next_user",
                                        "get_system_user_byindex",
                                        "get_upport_agg",
                                        "get_user_level",
                                        "get_vlan_all",
                                        "get_vlan_information_file_bydescprtion",
                                        "get_vlan_information_file_bylist",
                                        "get_vlan_interface_file_byinteface",
                                        "getonu_ont_basicinforfile",
                                        "getonu_ont_opticalfile",
                                        "process_debug_value",
                                        "process_onu_portdownrate",
                                        "process_onu_portinfo",
                                        "process_onu_portmuticastmaxgroup",
                                        "process_onu_portmuticastvlan",
                                        "process_onu_portpolicying",
                                        "process_onu_portstrip",
                                        "process_onu_portvlanmode",
                                        "process_snmp_hguvoipbandinginfo",
                                        "process_snmp_hguwaninfo",
                                        "process_snmp_iadinfo",
                                        "process_snmp_iptv_profile",
                                        "process_snmp_iptv_profile_channel",
                                        "process_snmp_linkbasicinfo",
                                        "process_snmp_oltauth",
                                        "process_snmp_oltbasicport",
                                        "process_snmp_onubasicinfo",
                                        "process_snmp_onuglobalinfo",
                                        "process_snmp_onusipparaminfo",
                                        "process_snmp_onusipuserinfo",
                                        "process_snmp_vlan_id",
                                        "process_snmpvoip_faxmode",
                                        "process_switchdebug_value",
                                        "process_voip_linestatus",
                                        "show_autmacmode_file_by_interface",
                                        "show_iptv_byprofile",
                                        "show_memory_info",
                                        "show_ont_bandinginterface",
                                        "show_ont_faxmode",
                                        "show_ont_muticast_group",
                                        "show_ont_port_basicinfo",
                                        "show_ont_port_muticaststrip",
                                        "show_ont_port_muticastvlan",
                                        "show_ont_port_vlanmode",
                                        "show_ont_runningconfig",
                                        "show_ont_sipconfiguration",
                                        "show_ont_voipline",
                                        "show_ont_wanconnection",
                                        "show_running_configuration_file",
                                        "show_voip_info",
                                        "show_voip_useraccount"};

/// Each operation, called as in its sample, after the defaults were restored.
std::string script(const std::string &folder) {
  std::string lines;
  for (const ordered_json &sample : samples()) {
    std::string name = sample["operation"];
    lines += "default_system_config\n";
    for (const ordered_json &line : sample["before"]) lines += line.get<std::string>() + '\n';
    if (!folder.empty()) lines += fmt::format("config export {}/{}.before\n", folder, name);
    lines += sample["call"].get<std::string>() + '\n';
    if (!folder.empty()) lines += fmt::format("config export {}/{}.after\n", folder, name);
  }
  return lines;
}

TEST(ComparedRequests, ThoseThatReadLeaveTheBoxAsItIs) {
  Oltctl oltctl;
  Finished ran = oltctl({"--topology", oltctl.folder().write("box", kTopology), "-f",
                         oltctl.folder().write("script", script(oltctl.folder().path()))});
  ASSERT_EQ(ran.status, 0) << ran.errors;
  std::set<std::string> reading;
  size_t seen_to_change = 0;
  for (const ordered_json &sample : samples()) {
    std::string name = sample["operation"];
    std::string before = read_file(oltctl.folder() / (name + ".before"));
    ASSERT_NE(before, "");
    bool is_same = read_file(oltctl.folder() / (name + ".after")) == before;
    if (!catalog::find(name)->always_changes()) {
      reading.insert(name);
      EXPECT_TRUE(is_same) << name;
    } else if (!is_same) {
      ++seen_to_change;
    }
  }
  EXPECT_EQ(reading, kReading);
  // The samples of the others set what the box has anyway, or act without changing what it keeps.
  EXPECT_EQ(seen_to_change, 72U);
}

/// Two read or write, as a word of the request says.
TEST(ComparedRequests, AWordMaySayWhetherTheyRead) {
  struct Case {
    const char *operation;
    std::string request;
    bool changes;
  };
  const Case cases[] = {
      {"process_debug_value", bytes("0000000005000000"), false},
      {"process_debug_value", bytes("0100000005000000"), true},
      {"process_debug_value", bytes("0000000105000000"), true},
      {"process_debug_value", "", true},
      {"get_olt_mac", "", false},
      {"do_reboot_system", "", true},
  };
  for (const Case &each : cases) {
    const auto *data = reinterpret_cast<const uint8_t *>(each.request.data());
    EXPECT_EQ(catalog::changes(*catalog::find(each.operation), {data, each.request.size()}),
              each.changes)
        << each.operation << ' ' << each.request.size();
  }
}

// Sanitizers must be loaded before libolttrace.
#ifndef OLT_TEST_SANITIZED

constexpr const char *kOtherTopology =
    R"({"version":1,"olt":{"mac":"02:00:00:00:00:09"},"pon":{"onu_restart_seconds":0}})";

class CompareRecording : public testing::Test {
 protected:
  CompareRecording() {
    Words environment = private_environment(folder_);
    environment.insert(environment.end(),
                       {"LD_PRELOAD=" LIBOLTTRACE, "OLT_CAPTURE=" + folder_ / "%p.pcapng",
                        "OLT_CAPTURE_SECRETS=1", "OLT_CAPTURE_FILES=" + kept_.path(),
                        "OLT_RUN_DIR=" + folder_ / "oltmgmt/embedded/listings"});
    Finished recording =
        run({OLTCTL, "--box", "embedded", "--fresh", "--topology", folder_.write("box", kTopology),
             "-f", folder_.write("script", script(""))},
            environment);
    EXPECT_EQ(recording.status, 0) << recording.errors;
    for (const auto &entry : std::filesystem::directory_iterator(folder_.path()))
      if (entry.path().extension() == ".pcapng") capture_ = entry.path();
  }

  Finished compare(const Words &words) {
    Words command = {OLTCTL, "compare", capture_, "--all", "--ignore", "*.seconds"};
    command.insert(command.end(), words.begin(), words.end());
    return run(command, private_environment(folder_));
  }

  Folder folder_;
  Folder kept_;
  std::string capture_;
};

/// In listings, times and counters differ, and what the processes take.
TEST_F(CompareRecording, OfEveryOperationEqualsAnotherBoxOfTheSameState) {
  Terminal box({OLTBOX, "--run-dir", folder_ / "run", "--state-dir", folder_ / "state",
                "--topology", folder_ / "box"},
               private_environment(folder_));
  ASSERT_TRUE(box.shows("serving modules")) << box.transcript();
  Words words = {"--box", folder_ / "run", "--json", "--files", kept_.path()};
  for (const char *pattern :
       {"listing.*.Age in s", "listing.*.Up for in s", "listing.*.Since", "listing.Since",
        "listing.Uptime", "get_statics_file_by_interface.listing.*",
        "get_system_loginfofile.listing.*", "show_memory_info.listing.*"}) {
    words.insert(words.end(), {"--ignore", pattern});
  }
  Finished compared = compare(words);
  EXPECT_EQ(compared.errors, "");
  EXPECT_EQ(compared.status, 0);
  ASSERT_TRUE(holds(compared.output, "\n")) << compared.output;
  ordered_json summary = ordered_json::parse(compared.output);  // one line
  EXPECT_EQ(summary["differing"], 0);
  EXPECT_EQ(summary["skipped"].dump(), R"({"changing":0,"masked":0,"cut":0,"incomplete":0})");
  EXPECT_EQ(summary["by_operation"].size(), 176U);
  EXPECT_EQ(summary["listings"].dump(), R"({"compared":30,"missing":0})");
  std::set<std::string> names;
  for (const ordered_json &row : summary["by_operation"]) names.insert(row["operation"]);
  std::set<std::string> expected;
  for (const ordered_json &sample : samples()) expected.insert(sample["operation"]);
  EXPECT_EQ(names, expected);
}

TEST_F(CompareRecording, ShowsTheOneFieldInWhichABoxDiffers) {
  std::string other = folder_.write("other", kOtherTopology);
  Finished compared = compare({"--fresh", "--topology", other});
  EXPECT_EQ(compared.errors, "compare: 1 exchange with differences\n");
  EXPECT_EQ(compared.status, 1);
  size_t end = compared.output.find("\noperation  ");
  size_t name = compared.output.find(" get_olt_mac\n");
  ASSERT_LT(name, end) << compared.output;
  EXPECT_EQ(compared.output.substr(name, end - name),
            " get_olt_mac\n"
            "  mac: 02:00:00:00:00:01 → 02:00:00:00:00:09\n");
}

#endif

}  // namespace
}  // namespace olt::test
