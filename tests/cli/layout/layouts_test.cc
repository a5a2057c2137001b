// Layouts in use: made-up modules whose records, statuses and tables are not the box's, the
// embedded box under a layout of one's own, and the command that shows layouts.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/text.h"
#include "platform/olthost.h"
#include "tests/cli/program.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

constexpr const char *kAcme = R"({
  "version": 1,
  "name": "acme",
  "records": {
    "olt_system_network": [
      {"name": "address", "offset": 2, "kind": "ipv4"},
      {"name": "mode", "offset": 0, "width": 1, "kind": "number", "values": {"0": "dhcp", "1": "fixed"}},
      {"name": "power", "offset": 8, "width": 2, "kind": "signed", "decimals": 2, "unit": "dBm"},
      {"name": "key", "offset": 12, "width": 4, "kind": "padded", "secret": true},
      {"name": "routes", "offset": 16, "width": 12, "kind": "records", "record": {"fields": [
        {"name": "to", "offset": 0, "kind": "ipv4"},
        {"name": "hops", "offset": 4, "width": 2, "kind": "number"}]}}
    ],
    "olt_vlan_id_row": [
      {"name": "vid", "offset": 0, "width": 2, "kind": "number", "role": "row_name"},
      {"name": "label", "offset": 4, "width": 8, "kind": "padded"},
      {"name": "step", "offset": 16, "width": 4, "kind": "number", "role": "selector"}
    ],
    "olt_ont_target": [
      {"name": "ont", "offset": 0, "kind": "ont", "role": "row_name"},
      {"name": "step", "offset": 16, "width": 4, "kind": "number", "role": "selector"},
      {"name": "part", "offset": 20, "width": 4, "kind": "number", "role": "row_name"}
    ],
    "olt_uni_downrate": [
      {"name": "burst", "offset": 0, "width": 4, "kind": "number", "unit": "kbit/s"},
      {"name": "peak", "offset": 4, "width": 8, "kind": "numbers"}
    ],
    "set_system_loglevel.value": [
      {"name": "value", "offset": 0, "width": 4, "kind": "number", "values": {"3": "loud"}}
    ]
  },
  "statuses": {"5": "busy", "33": "past the end"},
  "end_of_table": 33,
  "row_selection": {"target_offset": 16, "record_offset": 16, "this": 70, "next": 90}
})";

constexpr uint16_t kBusy = 5;
constexpr uint16_t kPastTheEnd = 33;
constexpr uint32_t kThis = 70;
constexpr uint32_t kNext = 90;

uint32_t word_at(const std::vector<uint8_t> &bytes, size_t offset) {
  uint32_t word = 0;
  std::memcpy(&word, bytes.data() + offset, sizeof word);
  return word;
}

void set_word(std::vector<uint8_t> &bytes, size_t offset, uint32_t word) {
  std::memcpy(bytes.data() + offset, &word, sizeof word);
}

/// Module 2 of somebody else.
class Acme {
 public:
  static void answer(void *acme, const olt_request *request, olt_answer *answer) {
    static_cast<Acme *>(acme)->take(*request, *answer);
  }

  std::vector<uint8_t> network = std::vector<uint8_t>(172);
  uint32_t log_level = 0;

 private:
  void take(const olt_request &request, olt_answer &answer) {
    const auto *data = static_cast<const uint8_t *>(request.data);
    reply_.assign(data, data + request.length);
    answer.status = status_of(request.message_type);
    if (answer.status != 0) return;
    answer.reply = reply_.data();
    answer.reply_length = static_cast<uint32_t>(reply_.size());
  }

  uint16_t status_of(uint32_t type) {
    switch (type) {
      case 50:  // set the network
        if (reply_[0] == 0) return kBusy;
        network = reply_;
        return 0;
      case 58:  // read it
        reply_ = network;
        return 0;
      case 83:  // set the log level
        log_level = word_at(reply_, 0);
        return 0;
      case 73:  // the VLANs 5 and 6
        if (word_at(reply_, 16) != kNext) return kBusy;
        return step(0, {5, 6});
      case 97:  // two ports of an ONT with their rates
        if (word_at(reply_, 16) != kNext) return kBusy;
        set_word(reply_, 0, 1);
        set_word(reply_, 4, 2);
        set_word(reply_, 8, 3);
        reply_.resize(100);
        set_word(reply_, 88, 1000);
        return step(20, {8, 9});
      case 101:  // the same ports, for readers that name none
        if (word_at(reply_, 16) != kNext) return kBusy;
        return step(20, {8, 9});
      case 95:  // a port by its name
        if (word_at(reply_, 16) != kThis) return kBusy;
        reply_.assign(68, static_cast<uint8_t>(word_at(reply_, 20)));
        return 0;
      default:
        return 1;
    }
  }

  /// Goes from one value of a word to the next.
  uint16_t step(size_t offset, const std::vector<uint32_t> &values) {
    for (uint32_t value : values) {
      if (value <= word_at(reply_, offset)) continue;
      set_word(reply_, offset, value);
      return 0;
    }
    return kPastTheEnd;
  }

  std::vector<uint8_t> reply_;
};

class Layouts : public testing::Test {
 protected:
  Layouts() {
    std::filesystem::create_directories(oltctl_.folder() / "oltmgmt/layouts.d");
    oltctl_.folder().write("oltmgmt/layouts.d/acme.json", kAcme);
  }

  Oltctl oltctl_;
};

class AcmesModule : public Layouts {
 protected:
  void SetUp() override {
    char error[256];
    olt_server_options options{};
    options.run_dir = run_dir_.c_str();
    server_.reset(olt_server_create(&options, error));
    ASSERT_NE(server_, nullptr) << error;
    ASSERT_EQ(olt_server_add(server_.get(), 2, Acme::answer, &acme_, error), 0) << error;
    ASSERT_EQ(olt_server_add(server_.get(), 22, Acme::answer, &acme_, error), 0) << error;
    thread_ = std::thread([this] {
      char line[256];
      EXPECT_EQ(olt_server_run(server_.get(), line), 0) << line;
    });
  }
  void TearDown() override {
    if (!thread_.joinable()) return;
    olt_server_stop(server_.get());
    thread_.join();
  }

  Finished oltctl(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--box", run_dir_, "--layout", "acme"});
    return oltctl_(arguments);
  }

  std::string run_dir_ = oltctl_.folder() / "run";
  Acme acme_;
  std::unique_ptr<olt_server, decltype(&olt_server_destroy)> server_{nullptr, &olt_server_destroy};
  std::thread thread_;
};

TEST_F(AcmesModule, IsSetByItsOwnFields) {
  Finished set = oltctl({"set_system_ipaddress", "address=192.0.2.1", "mode=fixed",
                         "power=-1.25 dBm", "key=abcd", "routes={to=10.0.0.1 hops=513}"});
  EXPECT_EQ(set.status, 0) << set.errors;
  EXPECT_EQ(olt::to_hex({acme_.network.data(), 32}),
            "0100c000020100"
            "0083ff0000"
            "61626364"
            "0a0000010102"
            "000000000000"
            "00000000");
  EXPECT_EQ(oltctl({"set_system_loglevel", "loud"}).status, 0);
  EXPECT_EQ(acme_.log_level, 3U);
}

TEST_F(AcmesModule, IsReadByItsOwnFields) {
  acme_.network = std::vector<uint8_t>(172);
  const std::vector<uint8_t> bytes = {1,    0,    192, 0, 2,   1,   0,   9,
                                      0x83, 0xff, 0,   0, 'a', 'b', 'c', 'd'};
  std::copy(bytes.begin(), bytes.end(), acme_.network.begin());
  EXPECT_EQ(oltctl({"get_system_network"}).output,
            "mode = fixed\n"
            "address = 192.0.2.1\n"
            "power = -1.25 dBm\n"
            "key = ********\n"
            "routes = {to=0.0.0.0 hops=0} {to=0.0.0.0 hops=0}\n");
  std::string all = oltctl({"--all", "--show-secrets", "get_system_network"}).output;
  EXPECT_TRUE(holds(all, "\nreserved_06 = 00 09\n")) << all;
  EXPECT_TRUE(holds(all, "\nkey = abcd\n")) << all;
  EXPECT_TRUE(holds(all, "\nreserved_1c = 144 bytes\n")) << all;
  EXPECT_TRUE(oltctl({"--raw", "get_system_network"})
                  .output.starts_with("mode = 1\naddress = c0 00 02 01\npower = 65411\n"));
  EXPECT_TRUE(holds(
      oltctl({"--json", "get_system_network"}).output,
      R"("outputs":{"network":{"mode":"fixed","address":"192.0.2.1","power":-1.25,"key":"********",)"
      R"("routes":[{"to":"0.0.0.0","hops":0},{"to":"0.0.0.0","hops":0}]}})"));
}

TEST_F(AcmesModule, TakesWhatItShows) {
  acme_.network[0] = 1;
  for (size_t i = 2; i < 28; ++i) acme_.network[i] = static_cast<uint8_t>(i + 0x40);
  std::vector<uint8_t> before = acme_.network;
  std::string shown = oltctl({"--json", "--show-secrets", "get_system_network"}).output;
  std::string object = nlohmann::ordered_json::parse(shown)["outputs"]["network"].dump();
  Finished set = oltctl({"set_system_ipaddress", "network=" + object});
  EXPECT_EQ(set.status, 0) << set.errors;
  EXPECT_EQ(acme_.network, before);
}

TEST_F(AcmesModule, TakesAnOntWhoseRecordHasAFieldOfItsName) {
  Finished read = oltctl({"--trace", "process_onu_portdownrate", "ont=1/2/3:4"});
  EXPECT_TRUE(holds(read.errors, "  0000  01 00 00 00 02 00 00 00 03 00 00 00 01 00 00 00"))
      << read.errors;
  EXPECT_TRUE(holds(read.errors, "  0010  04 00 00 00 ")) << read.errors;
}

TEST_F(AcmesModule, HasStatusesOfItsOwn) {
  EXPECT_EQ(oltctl({"set_system_ipaddress", "mode=dhcp"}).errors,
            "set_system_ipaddress failed: result 5 (0x00000005): status 5 (acme: busy)\n");
  EXPECT_EQ(oltctl({"get_olt_mac"}).errors,
            "get_olt_mac failed: result 1 (0x00000001): status 1 (acme: unknown status)\n");
  EXPECT_EQ(oltctl_({"--box", run_dir_, "--layout", "none", "get_olt_mac"}).errors,
            "get_olt_mac failed: result 1 (0x00000001): status 1\n");
}

TEST_F(AcmesModule, HasTablesOfItsOwn) {
  Finished vlans = oltctl({"walk", "process_snmp_vlan_id"});
  EXPECT_EQ(vlans.errors, "");
  EXPECT_EQ(vlans.output,
            "vid  label\n"
            "5    -\n"
            "6    -\n");
  Finished ports = oltctl({"walk", "process_onu_portdownrate"});
  EXPECT_EQ(ports.errors, "");
  EXPECT_EQ(ports.output,
            "ont    port  burst        peak\n"
            "1/2/3  8     1000 kbit/s  0,0\n"
            "1/2/3  9     1000 kbit/s  0,0\n");
  Finished others = oltctl({"--json", "walk", "process_onu_portinfo"});
  EXPECT_EQ(others.errors, "");
  EXPECT_TRUE(others.output.starts_with(
      R"({"version":1,"reader":"process_onu_portinfo","row":{"ont":"0/0/0","port":8,"info":)"
      R"([134744072,)"))
      << others.output;
}

TEST_F(AcmesModule, HasSecretsThatTracesMask) {
  Finished set = oltctl({"--trace", "set_system_ipaddress", "mode=fixed", "key=abcd"});
  EXPECT_TRUE(holds(set.errors, "  0000  01 00 00 00 00 00 00 00 00 00 00 00 ** ** ** **"))
      << set.errors;
  EXPECT_FALSE(holds(set.errors, "61 62 63 64"));
  EXPECT_TRUE(holds(set.errors, "\n  mode=fixed ")) << set.errors;
}

TEST_F(Layouts, GiveTheHelpItsFields) {
  Finished help = oltctl_({"--layout", "acme", "help", "set_system_ipaddress"});
  EXPECT_TRUE(holds(help.output, "\n    power           a number from -327.68 to 327.67 in dBm\n"))
      << help.output;
  EXPECT_TRUE(holds(help.output, "\n  oltctl set_system_ipaddress mode=fixed\n")) << help.output;
  Finished none = oltctl_({"--layout", "none", "help", "set_system_ipaddress"});
  EXPECT_TRUE(holds(none.output, "\n  oltctl set_system_ipaddress network=0:01,4:01\n"))
      << none.output;
}

TEST_F(Layouts, GiveTheCatalogItsFields) {
  Finished list = oltctl_({"--layout", "acme", "--json", "list", "get_system_network"});
  EXPECT_TRUE(holds(list.output, R"("name":"power","offset":8,"width":2,"kind":"signed")"))
      << list.output;
  EXPECT_FALSE(holds(list.output, R"("name":"gateway")"));
  EXPECT_TRUE(holds(list.output, R"({"status":5,"text":"busy"})"));
}

TEST_F(Layouts, LeaveTheCatalogsFormAsItIs) {
  for (const char *layout : {"none", "acme"}) {
    std::string file =
        oltctl_.folder().write("list.json", oltctl_({"--layout", layout, "--json", "list"}).output);
    EXPECT_EQ(run({JSONSCHEMA, "-i", file, CATALOG_SCHEMA}).status, 0) << layout;
  }
}

TEST_F(Layouts, GiveCompletionItsFields) {
  std::string line = "oltctl --layout acme set_system_ipaddress ";
  std::string all = oltctl_({"__complete", line}).output;
  EXPECT_TRUE(holds(all, "words\nnetwork=\nmode=\nreserved_01=\naddress=\n")) << all;
}

TEST_F(Layouts, HoldForTheEmbeddedBox) {
  ASSERT_EQ(oltctl_({"--layout", "acme", "set_system_ipaddress", "mode=fixed", "address=192.0.2.1"})
                .status,
            0);
  EXPECT_TRUE(oltctl_({"get_system_network"}).output.starts_with("address = 1.0.192.0\n"));
  EXPECT_TRUE(oltctl_({"--layout", "none", "get_system_network"})
                  .output.starts_with("network = 172 bytes\n  0000  01 00 c0 00 02 01 00 "));
  EXPECT_EQ(oltctl_({"--layout", "none", "get_port_link_duplex", "1", "1"}).output,
            "link_duplex = 2\n");
}

TEST_F(Layouts, HoldForScripts) {
  std::string script = oltctl_.folder().write("script", "set_system_ipaddress mode=fixed\n");
  EXPECT_EQ(oltctl_({"--layout", "acme", "-f", script}).status, 0);
  EXPECT_EQ(oltctl_({"-f", script}).status, 2);
}

TEST_F(Layouts, ThatDoNotSayHowRowsAreFoundCannotBeWalked) {
  Finished walked = oltctl_({"--layout", "none", "walk", "process_snmp_vlan_id"});
  EXPECT_EQ(walked.status, 2);
  EXPECT_EQ(walked.errors,
            "walk: the layout none does not say how rows are selected; expected 'row_selection' in "
            "it, or the layout box\n");
  std::string file = oltctl_.folder().write(
      "a.json",
      R"({"version":1,"name":"a","row_selection":{"target_offset":0,"record_offset":0,"this":1,"next":2}})");
  EXPECT_EQ(oltctl_({"--layout", file, "walk", "process_snmp_vlan_id"}).errors,
            "walk: the layout a does not say which status ends a table; expected 'end_of_table' in "
            "it, or the layout box\n");
}

TEST_F(Layouts, AreListed) {
  std::string broken = oltctl_.folder().write("oltmgmt/layouts.d/broken.json", "{");
  std::string other =
      oltctl_.folder().write("oltmgmt/layouts.d/other.json", R"({"version":1,"name":"another"})");
  Finished list = oltctl_({"layout", "list"});
  EXPECT_EQ(list.status, 0) << list.errors;
  EXPECT_TRUE(list.output.starts_with(
      "name    place\n"
      "box     built in\n"
      "none    built in\n"
      "acme    " +
      oltctl_.folder().path() +
      "/oltmgmt/layouts.d/acme.json\n"
      "broken  " +
      broken +
      ":1:2: is not JSON; expected string literal\n"
      "other   " +
      other + ": /name: 'another' given; expected 'other', the name of its file\n"))
      << list.output;
  EXPECT_TRUE(holds(oltctl_({"--json", "layout", "list"}).output,
                    R"({"version":1,"layouts":[{"name":"box","file":null,"error":null},)"));
  EXPECT_EQ(oltctl_({"--layout", "broken", "get_olt_mac"}).status, 2);
}

TEST_F(Layouts, AreChecked) {
  std::string file = oltctl_.folder() / "oltmgmt/layouts.d/acme.json";
  EXPECT_EQ(oltctl_({"layout", "check", file}).output, file + ": the layout acme\n");
  std::string bad = oltctl_.folder().write(
      "bad.json",
      R"({"version":1,"name":"a","records":{"olt_mac":[{"name":"b","offset":3,"kind":"ipv4"}]}})");
  Finished refused = oltctl_({"layout", "check", bad});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.output, "");
  EXPECT_EQ(refused.errors,
            bad + ": /records/olt_mac/0: ends at 7; expected an end up to 6, that of the record\n");
  EXPECT_EQ(oltctl_({"layout", "check", "/nowhere.json"}).errors,
            "/nowhere.json: cannot be read: No such file or directory; expected a layout's file\n");
  std::string large = oltctl_.folder().write("large.json", std::string((1 << 20) + 1, ' '));
  EXPECT_EQ(oltctl_({"layout", "check", large}).errors,
            large + ": is too large; expected at most 1048576 bytes\n");
  EXPECT_EQ(oltctl_({"layout", "check"}).errors, "layout check: no file is given; expected one\n");
  EXPECT_EQ(oltctl_({"layout", "list", "x"}).errors,
            "layout list: 'x' is one argument too many; expected none\n");
  EXPECT_EQ(oltctl_({"layout"}).errors, "layout: '' given; expected list, check or show\n");
}

TEST_F(Layouts, AreShownAsTheyAreRead) {
  std::string shown = oltctl_({"--layout", "acme", "layout", "show"}).output;
  EXPECT_EQ(oltctl_({"layout", "show", "acme"}).output, shown);
  EXPECT_TRUE(holds(
      shown,
      "    \"olt_system_network\": [\n"
      "      {\"name\":\"mode\",\"offset\":0,\"width\":1,\"kind\":\"number\",\"values\":{\"0\":"
      "\"dhcp\",\"1\":\"fixed\"}},\n"
      "      {\"name\":\"reserved_01\",\"offset\":1,\"width\":1,\"kind\":\"bytes\",\"role\":"
      "\"reserved\"},\n"))
      << shown;
  EXPECT_TRUE(shown.ends_with(
      ",\n  \"statuses\": {\"5\":\"busy\",\"33\":\"past the end\"},\n  \"end_of_table\": 33,\n"
      "  \"row_selection\": "
      "{\"target_offset\":16,\"record_offset\":16,\"this\":70,\"next\":90}\n}\n"))
      << shown;
  std::string file = oltctl_.folder().write("shown.json", shown);
  EXPECT_EQ(oltctl_({"layout", "show", file}).output, shown);
}

TEST_F(Layouts, AreFoundByNameOnly) {
  Finished missing = oltctl_({"--layout", "acne", "get_olt_mac"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_TRUE(
      missing.errors.starts_with("layout: there is no layout 'acne'; expected box, none, acme"))
      << missing.errors;
  EXPECT_TRUE(missing.errors.ends_with(", or a file as ./NAME.json\n")) << missing.errors;
}

}  // namespace

}  // namespace olt::test
