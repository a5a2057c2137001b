// The requests that command lines send, and the results of the replies, with a module that records
// requests and answers as scripted.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/text.h"
#include "catalog/catalog.h"
#include "cli/call/exchanges.h"
#include "cli/input/argument_parser.h"
#include "cli/input/present_values.h"
#include "cli/output/format.h"
#include "cli/text/error.h"
#include "platform/olthost.h"
#include "tests/cli/program.h"

namespace olt::test {

namespace {

using olt::ByteView;
using olt::to_hex;
using olt::cli::Call;
using Words = std::vector<std::string>;

class Requests : public testing::Test {
 protected:
  Requests() {
    char error[256];
    olt_server_options options{};
    server_.reset(olt_server_create(&options, error));
    EXPECT_EQ(olt_server_add(server_.get(), 2, answer, this, error), 0) << error;
    thread_ = std::thread([this] {
      char line[256];
      EXPECT_EQ(olt_server_run(server_.get(), line), 0) << line;
    });
    olt_connect_through(connect, server_.get());
    olt::cli::watch_exchanges(false);
  }

  ~Requests() override {
    olt_server_stop(server_.get());
    thread_.join();
    olt_connect_through(nullptr, nullptr);
    olt_watch_exchanges(nullptr, nullptr);
  }

  /// Calls an operation. Its requests are then in requests_: message type and bytes in hex.
  static std::string output_of(const Words &words) {
    const auto &operation = *olt::catalog::find(words[0]);
    Call call(operation);
    olt::cli::read_arguments(call, std::span(words).subspan(1));
    int32_t result = call.make();
    EXPECT_EQ(result, 0);
    return olt::cli::make_text_formatter()->result(olt::cli::result_of(call, result, {}));
  }

  std::string request_of(const Words &words) {
    requests_.clear();
    output_of(words);
    EXPECT_EQ(requests_.size(), 1U);
    return requests_.empty() ? "" : requests_.front();
  }

  std::string error_of(const Words &words) {
    try {
      output_of(words);
    } catch (const olt::cli::Error &error) {
      EXPECT_EQ(error.status(), 2);
      EXPECT_TRUE(requests_.empty());
      return error.what();
    }
    return "no error";
  }

  std::vector<std::string> requests_;
  std::string reply_;

 private:
  static void answer(void *context, const olt_request *request, olt_answer *answer) {
    auto *test = static_cast<Requests *>(context);
    test->requests_.push_back(
        std::to_string(request->message_type) + " " +
        to_hex(ByteView(static_cast<const uint8_t *>(request->data), request->length)));
    answer->reply = test->reply_.data();
    answer->reply_length = static_cast<uint32_t>(test->reply_.size());
  }

  static int connect(void *server, uint32_t module) {
    return olt_server_connect(static_cast<olt_server *>(server), module);
  }

  std::unique_ptr<olt_server, decltype(&olt_server_destroy)> server_{nullptr, &olt_server_destroy};
  std::thread thread_;
};

std::string zeros(size_t bytes) {
  return std::string(2 * bytes, '0');
}

const std::string kOnt =
    "01000000"
    "02000000"
    "03000000"
    "01000000";

TEST_F(Requests, CarryVlanLists) {
  EXPECT_EQ(request_of({"add_vlan_list", "vlans=10,20-25"}),
            "19 0a000000"
            "14001900");
  EXPECT_EQ(request_of({"delete_vlan_list", "300"}), "20 2c010000");
  EXPECT_EQ(request_of({"add_vlan_descr_list", "vlans=10:uplink"}),
            "21 0a000000"
            "75706c696e6b" +
                zeros(26));

  Folder folder;
  std::string file = folder.write("vlans", "# first floor\n10\n\n20-25\n");
  EXPECT_EQ(request_of({"add_muticastvlan_list", "vlans=@" + file}),
            "149 0a000000"
            "14001900");
}

TEST_F(Requests, CarryTargets) {
  EXPECT_EQ(request_of({"clear_onu_node", "ont=1/2/3"}), "43 " + kOnt + zeros(72));
  EXPECT_EQ(request_of({"clear_ont_port_muticastvlan", "1/2/3:4"}),
            "123 " + kOnt + "04000000" + zeros(68));
  EXPECT_EQ(request_of({"clear_onu_node", "ont=1/2/3", "mac=02:00:00:00:00:09", "mac_word=7"}),
            "43 " + kOnt + zeros(12) +
                "0200000000090000"
                "07000000" +
                zeros(48));
  EXPECT_EQ(request_of({"clear_onu_node", "ont.target=1/2/0", "target_kind=9"}),
            "43 01000000"
            "02000000"
            "00000000"
            "09000000" +
                zeros(72));
  EXPECT_EQ(request_of({"clear_onu_node", "4:0a"}), "43 000000000a" + zeros(83));
}

TEST_F(Requests, CarryWhatFollowsATarget) {
  EXPECT_EQ(request_of({"set_ont_port_downrate", "1/2/3:4", "rates=10,20,30"}),
            "118 " + kOnt + "04000000" + zeros(68) +
                "0a000000"
                "14000000"
                "1e000000");
  EXPECT_EQ(request_of({"set_ont_port_downrate", "1/2/3",
                        "rates=10,"
                        "0xff"}),
            "118 " + kOnt + zeros(72) +
                "0a000000"
                "ff000000"
                "00000000");
  EXPECT_EQ(request_of({"add_ont_port_muticastvlan", "1/2/3", "vlans=10,20-22"}), "124 " + kOnt +
                                                                                      zeros(72) +
                                                                                      "0a00"
                                                                                      "1400"
                                                                                      "1500"
                                                                                      "1600");
  EXPECT_EQ(request_of({"set_ont_fax", "1/2/3", "0102"}), "141 " + kOnt + zeros(72) + "0102");
}

TEST_F(Requests, TakeListsAsTheyAreShown) {
  for (const char *list : {"10,20-25", R"([{"first":10,"last":0},{"first":20,"last":25}])",
                           "{first=10 last=0} {first=20 last=25}"}) {
    EXPECT_EQ(request_of({"add_vlan_list", list}), "19 0a00000014001900") << list;
  }
  EXPECT_EQ(request_of({"add_muticastvlan_list", "[10,20]"}), "149 0a00000014000000");
  EXPECT_EQ(request_of({"add_vlan_descr_list", R"([{"first":10,"description":"a, b"}])"}),
            "21 0a000000612c2062" + zeros(28));
  EXPECT_EQ(request_of({"add_ont_port_muticastvlan", "1/2/3:4", "[10,20]"}).substr(4 + 2 * 88),
            "0a001400");
  EXPECT_EQ(request_of(
                {"add_authallowed_mac", "1/2",
                 R"([{"mac":"02:00:00:00:00:01","loid":"site} 17"},{"loid":"b","password":"p"}])"}),
            "112 0100000002000000" + zeros(72) + "0200000000010000736974657d203137" + zeros(28) +
                zeros(8) + "62" + zeros(23) + "70" + zeros(11));
}

TEST_F(Requests, CarryEntries) {
  std::string one = "020000000001" + zeros(38);
  std::string other = zeros(8) + "73697465" + zeros(20) + "7077" + zeros(10);
  EXPECT_EQ(request_of({"add_authallowed_mac_loid", "1", "2",
                        "entries=mac=02:00:00:00:00:01;loid=site password=pw"}),
            "108 01000000"
            "02000000" +
                zeros(72) + one + other);

  Folder folder;
  std::string file =
      folder.write("entries", "mac=02:00:00:00:00:01\n# the lab\nloid=site password=pw\n");
  EXPECT_EQ(request_of({"add_authallowed_mac_loid", "1", "2", "entries=@" + file}),
            "108 01000000"
            "02000000" +
                zeros(72) + one + other);
}

TEST_F(Requests, CarryEmptyLists) {
  EXPECT_EQ(request_of({"add_muticastvlan_list", "vlans="}), "149 ");
  EXPECT_EQ(request_of({"add_ont_port_muticastvlan", "1/2/3", "vlans="}),
            "124 " + kOnt + zeros(72));
  EXPECT_EQ(request_of({"add_authallowed_mac", "1", "2", "entries="}),
            "112 01000000"
            "02000000" +
                zeros(72));
}

TEST_F(Requests, CarryAddressesWordsAndNames) {
  EXPECT_EQ(request_of({"set_port_enable", "slot=1", "port=2", "port_enable=1"}),
            "14 01000000"
            "02000000" +
                zeros(8) + "01000000" + zeros(60));
  EXPECT_EQ(request_of({"set_igmpproxy_config", "config=1,2"}),
            "152 01000000"
            "02000000" +
                zeros(16));
  EXPECT_EQ(request_of({"show_iptv_byprofile", std::string(32, 'p')}),
            "161 7070707070707070707070707070707070707070707070707070707070707070");
}

TEST_F(Requests, KeepWhatWasReadAndRefuseAShortReply) {
  auto keep = [this](const Words &words) {
    requests_.clear();
    Call call(*olt::catalog::find(words[0]));
    olt::cli::read_arguments(call, std::span(words).subspan(1));
    olt::cli::keep_present_values(call, olt::catalog::Layout::box());
    call.make();
    return requests_;
  };
  reply_ = std::string("\x01\0\0\0\x3c\0\0\0\x0a\0\0\0\x02\0\0\0\x01\0\0\0\x01\0\0\0", 24);
  EXPECT_EQ(keep({"set_igmpproxy_config", "robustness=3"}), (Words{"151 ",
                                                                   "152 01000000"
                                                                   "3c000000"
                                                                   "0a000000"
                                                                   "03000000"
                                                                   "01000000"
                                                                   "01000000"}));
  EXPECT_EQ(keep({"set_igmpproxy_config", "config=0,9"}), (Words{"151 ",
                                                                 "152 00000000"
                                                                 "09000000"
                                                                 "0a000000"
                                                                 "02000000"
                                                                 "01000000"
                                                                 "01000000"}));
  reply_.resize(23);
  try {
    keep({"set_igmpproxy_config", "robustness=3"});
    ADD_FAILURE();
  } catch (const olt::cli::Error &error) {
    EXPECT_STREQ(error.what(),
                 "set_igmpproxy_config: the present values cannot be read: get_igmpproxy_config "
                 "reads 23 bytes, not 24; expected --zero to send zeros for what is not given");
  }
  EXPECT_EQ(requests_, Words{"151 "});
}

TEST_F(Requests, AreNotSentWhenAnItemIsWrong) {
  Folder folder;
  std::string vlans = folder.write("vlans", "10\n\n4095\n");
  EXPECT_EQ(
      error_of({"add_vlan_list", "vlans=@" + vlans}),
      "add_vlan_list: vlans: line 3: '4095' is not a VLAN id; expected VLANs from 1 to 4094 as "
      "10,20-25, or @FILE with one a line");
  std::string entries = folder.write("entries", "loid=a\nmac=02\n");
  EXPECT_EQ(
      error_of({"add_authallowed_mac", "1", "2", "entries=@" + entries}),
      "add_authallowed_mac: entries: line 2: mac: '02' is not a MAC address; expected entries "
      "as FIELD=VALUE with the fields mac (an address as 02:00:00:00:00:01), loid (text of "
      "at most 24 bytes), password (text of at most 12 bytes), or 44 bytes as HEX, separated "
      "by ';', or @FILE with one a line");
  EXPECT_EQ(error_of({"add_ont_description", "1/2/3:4", "1,2"}),
            "add_ont_description: ont: a UNI port is not taken here; expected an ONT as 1/2/3, or "
            "12 bytes as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]");
  for (const char *bad : {"1/2", "1/2/3/4", "1//3", "1/2/3:", "1/2/x"}) {
    EXPECT_NE(error_of({"clear_onu_node", std::string("ont=") + bad}), "no error") << bad;
  }
  EXPECT_EQ(error_of({"set_ont_port_downrate", "1/2/3", "rates=1,2,3,4"}),
            "set_ont_port_downrate: rates: 4 numbers given; expected up to 3 numbers as 10,20, or "
            "12 bytes as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]");
  EXPECT_EQ(error_of({"add_iptv_user_channel", "02:00:00:00:00:01", "65536", "1", "2", "3"}),
            "add_iptv_user_channel: c: '65536' is too large; expected a number from 0 to 65535");
  EXPECT_EQ(error_of({"banding_ont_voipinterface", "1/2/3", std::string(32, 'i')}),
            "banding_ont_voipinterface: interface_name: 32 bytes given; expected text of at most "
            "31 bytes");
  EXPECT_EQ(error_of({"get_vlan_information_file_bydescprtion", std::string(64, 'd')}),
            "get_vlan_information_file_bydescprtion: description: 64 bytes given; expected text of "
            "at most 63 bytes");
}

TEST_F(Requests, BringBlocksAsLongAsTheReply) {
  reply_ = "abcde";
  EXPECT_EQ(output_of({"get_igmpproxy_config_all"}), "dump = 61 62 63 64 65\n");
}

TEST_F(Requests, BringBlocksThatCountTheirTail) {
  reply_ = std::string("\x01\0\0\0\x02\0\0\0\x03\0\0\0", 12) + std::string(4, 'r') +
           "\x02\x01\x01\x01\x01\x01" + std::string(2, 'r') + std::string("\x05\0\0\0", 4) +
           std::string(4, 'r') + std::string(24, 'l') + std::string("\x03\0\0\0", 4) + "xyz" +
           "not counted";
  EXPECT_EQ(output_of({"process_snmp_onuglobalinfo", "1/2/3"}),
            "slot = 1\n"
            "interface = 2\n"
            "onu = 3\n"
            "mac = 02:01:01:01:01:01\n"
            "state = 5\n"
            "loid = llllllllllllllllllllllll\n"
            "length = 3\n"
            "parts = 78797a\n");
}

TEST_F(Requests, BringBlocksWithoutATail) {
  reply_ = std::string(88, '\0');
  std::string output = output_of({"process_snmp_hguwaninfo", "1/2/3"});
  EXPECT_EQ(output.substr(output.find("length")), "length = 0\nconnections = none\n");
}

TEST_F(Requests, BringRowsAndTargetsBack) {
  reply_ = std::string("\x07\0\0\0", 4) + std::string(84, '\0') + std::string("\x0a\0\0\0", 4) +
           std::string("\x14\0\0\0", 4) + std::string("\x1e\0\0\0", 4);
  EXPECT_EQ(output_of({"process_onu_portdownrate", "ont=1/2/3"}),
            "target = 7/0/0\n"
            "part = 0\n"
            "mac = 00:00:00:00:00:00\n"
            "mac_word = 0\n"
            "rates = 10,20,30\n");
}

}  // namespace

}  // namespace olt::test
