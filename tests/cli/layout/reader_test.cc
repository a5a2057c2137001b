// What the reader of layouts takes and refuses.
#include "cli/layout/reader.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/bad_input.h"
#include "cli/history_line.h"
#include "cli/layout/writer.h"

namespace olt::test {

namespace {

using olt::catalog::Argument;
using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::catalog::Layout;
using olt::catalog::Role;
using olt::cli::parse_layout;

std::string error_of(std::string_view text) {
  try {
    parse_layout(text);
  } catch (const BadInput &bad) {
    return bad.what();
  }
  return "no error";
}

std::string document(const std::string &members) {
  return R"({"version":1,"name":"acme",)" + members + "}";
}

std::string record(const std::string &name, const std::string &fields) {
  return document(R"("records":{")" + name + R"(":[)" + fields + "]}");
}

/// The error of fields of a record of 172 bytes, without the record's place.
std::string field_error(const std::string &fields) {
  std::string error = error_of(record("olt_system_network", fields));
  constexpr std::string_view kPlace = "/records/olt_system_network";
  return error.starts_with(kPlace) ? error.substr(kPlace.size()) : error;
}

const Argument &network(const Layout &layout) {
  return layout.find("get_system_network")->arguments()[0];
}

TEST(LayoutReader, TakesFieldsInAnyOrderAndNamesTheBytesBetween) {
  Layout layout = parse_layout(record(
      "olt_system_network",
      R"({"name":"mode","offset":6,"width":2,"kind":"number","values":{"0":"off","0x10":"on"},)"
      R"("unit":"V","role":"selector"},)"
      R"({"name":"address","offset":0,"kind":"ipv4","role":"row_name","secret":true})"));
  auto fields = network(layout).fields;
  ASSERT_EQ(fields.size(), 4U);
  EXPECT_STREQ(fields[0].name, "address");
  EXPECT_EQ(fields[0].width, 4U);
  EXPECT_EQ(fields[0].kind, FieldKind::kIpv4);
  EXPECT_EQ(fields[0].role, Role::kRowName);
  EXPECT_TRUE(fields[0].secret);
  EXPECT_STREQ(fields[1].name, "reserved_04");
  EXPECT_EQ(fields[1].offset, 4U);
  EXPECT_EQ(fields[1].width, 2U);
  EXPECT_EQ(fields[1].role, Role::kReserved);
  EXPECT_STREQ(fields[2].name, "mode");
  EXPECT_STREQ(fields[2].unit, "V");
  EXPECT_EQ(fields[2].role, Role::kSelector);
  ASSERT_EQ(fields[2].values.size(), 2U);
  EXPECT_EQ(fields[2].values[1].value, 16U);
  EXPECT_STREQ(fields[2].values[1].name, "on");
  EXPECT_STREQ(fields[3].name, "reserved_08");
  EXPECT_EQ(fields[3].width, 164U);
}

TEST(LayoutReader, KnowsTheWidthsThatKindsFix) {
  constexpr struct {
    const char *kind;
    uint32_t width;
  } kFixed[] = {{"mac", 6}, {"ipv4", 4}, {"interface", 8}, {"ont", 12}, {"bytes", 172}};
  for (const auto &[kind, width] : kFixed) {
    Layout layout = parse_layout(record(
        "olt_system_network", R"({"name":"a","offset":0,"kind":")" + std::string(kind) + R"("})"));
    EXPECT_EQ(network(layout).fields[0].width, width) << kind;
  }
}

TEST(LayoutReader, TakesRecordsUpToTheEndOfRecordsAndBlocks) {
  const std::string list =
      R"({"name":"routes","offset":4,"kind":"records","record":{"fields":[)"
      R"({"name":"to","offset":0,"kind":"ipv4"},{"name":"hops","offset":5,"width":1,"kind":"number"}]}})";
  Layout layout =
      parse_layout(document(R"("records":{"olt_system_network":[)" + list + R"(],"wan_info":[)" +
                            list + R"(],"update_answer":[)" + list + "]}"));
  const Field &in_record = network(layout).fields[1];
  EXPECT_EQ(in_record.record_size, 6U);
  EXPECT_EQ(in_record.width, 168U);
  ASSERT_EQ(in_record.record.size(), 3U);
  EXPECT_STREQ(in_record.record[1].name, "reserved_04");
  const Argument &headed = layout.find("process_snmp_hguwaninfo")->arguments()[1];
  EXPECT_EQ(headed.size, 88U);
  EXPECT_EQ(headed.fields[1].width, Field::kToTheEnd);
  const Argument &block = layout.find("do_handle_epon_updatestream")->arguments()[1];
  EXPECT_EQ(block.size, 4U);
  EXPECT_EQ(block.fields[1].width, Field::kToTheEnd);
}

TEST(LayoutReader, RefusesWhatIsNoLayout) {
  EXPECT_EQ(error_of(""), "1:1: is not JSON; expected '[', '{', or a literal");
  EXPECT_EQ(error_of("{\n  \"version\": 1,\n}"), "3:1: is not JSON; expected string literal");
  EXPECT_EQ(error_of("[]"), "/: a list given; expected an object");
  EXPECT_EQ(error_of("{}"), "/: 'version' is missing; expected it");
  EXPECT_EQ(error_of(R"({"version":2,"name":"a"})"), "/version: '2' given; expected 1");
  EXPECT_EQ(error_of(R"({"version":1,"name":"a","version":1})"),
            "/version: is given twice; expected once");
  EXPECT_EQ(error_of(R"({"version":1e999})"),
            "/version: is too large a number; expected a smaller one");
  EXPECT_EQ(error_of(R"({"version":1,"name":"box"})"),
            "/name: 'box' given; expected another name than that of a built-in layout");
  EXPECT_EQ(error_of(R"({"version":1,"name":"a b"})"),
            "/name: 'a b' given; expected a letter, then at most 30 letters, digits or - _ .");
  EXPECT_EQ(error_of(document(R"("bass":"box")")),
            "/bass: there is no such member; expected version, name, base, records, statuses, "
            "end_of_table, row_selection, olt_update, onu_update");
  EXPECT_EQ(error_of(document(R"("base":"acme")")), "/base: 'acme' given; expected box or none");
  EXPECT_EQ(error_of(document(R"("records":[[[[[[[[[1]]]]]]]]])")),
            "/records/0/0/0/0/0/0/0: nests too deep; expected at most 8 levels");
}

TEST(LayoutReader, RefusesRecordsThatDoNotExist) {
  const char *expected =
      ": there is no such record; expected a type of oltmgmt.h such as olt_system_network, another "
      "record that 'oltctl layout show box' names, or OPERATION.ARGUMENT of a number";
  for (const char *name : {"olt_nothing", "get_olt_mac.mac", "vlan_range", "olt_vlan_list"}) {
    EXPECT_EQ(error_of(record(name, "")), "/records/" + std::string(name) + expected);
  }
  EXPECT_EQ(error_of(record("a/~", "")), "/records/a~1~0" + std::string(expected));
}

TEST(LayoutReader, RefusesFieldsThatAreIncomplete) {
  EXPECT_EQ(field_error(""), ": no field is named; expected one at least that is not reserved");
  EXPECT_EQ(field_error("7"), "/0: '7' given; expected an object");
  EXPECT_EQ(field_error(R"({"offset":0,"kind":"mac"})"), "/0: 'name' is missing; expected it");
  EXPECT_EQ(field_error(R"({"name":"a","kind":"mac"})"), "/0: 'offset' is missing; expected it");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0})"), "/0: 'kind' is missing; expected it");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"number"})"),
            "/0: 'width' is missing; expected it");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"records"})"),
            "/0: 'record' is missing; expected it");
}

TEST(LayoutReader, RefusesFieldsThatAreWrong) {
  EXPECT_EQ(
      field_error(R"({"name":"a","offset":0,"kind":"ipv5"})"),
      "/0/kind: 'ipv5' given; expected text, padded, number, vlan, signed, flags, duration, ports, "
      "numbers, vlans, mac, ipv4, interface, ont, version, records, bytes");
  EXPECT_EQ(field_error(R"({"name":"1a","offset":0,"kind":"mac"})"),
            "/0/name: '1a' given; expected a letter, then at most 30 letters, digits or _");
  EXPECT_EQ(field_error(R"({"name":"reserved_05","offset":4,"kind":"mac"})"),
            "/0/name: 'reserved_05' given; expected 'reserved_04', as it begins at 4, or a name "
            "that does not begin with 'reserved_'");
  EXPECT_EQ(field_error(R"({"name":"a","offset":-1,"kind":"mac"})"),
            "/0/offset: '-1' given; expected a number from 0 to 171");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"number","width":3})"),
            "/0/width: '3' given; expected 1, 2 or 4");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"numbers","width":6})"),
            "/0/width: '6' given; expected a multiple of 4");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"mac","width":8})"),
            "/0/width: '8' given; expected 6");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"mac","role":"hidden"})"),
            "/0/role: 'hidden' given; expected row_name, reserved or selector");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"mac","secret":1})"),
            "/0/secret: '1' given; expected true or false");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"mac","unit":"V"})"),
            "/0/unit: is not for the kind mac; expected the kind number or signed or numbers");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"number","width":1,"decimals":1})"),
            "/0/decimals: is not for the kind number; expected the kind signed");
  EXPECT_EQ(
      field_error(R"({"name":"a","offset":0,"kind":"mac","colour":1})"),
      "/0/colour: there is no such member; expected name, offset, width, kind, unit, decimals, "
      "values, secret, role, record");
}

TEST(LayoutReader, RefusesFieldsThatDoNotFitTogether) {
  const std::string first = R"({"name":"a","offset":0,"kind":"ipv4"},)";
  EXPECT_EQ(field_error(first + R"({"name":"b","offset":3,"kind":"mac"})"),
            "/1: 'b' begins within 'a'; expected an offset from 4");
  EXPECT_EQ(field_error(first + R"({"name":"a","offset":4,"kind":"mac"})"),
            "/1: there is a field 'a' already; expected another name");
  EXPECT_EQ(field_error(first + R"({"name":"b","offset":168,"kind":"mac"})"),
            "/1: ends at 174; expected an end up to 172, that of the record");
  EXPECT_EQ(field_error(first + R"({"name":"b","offset":172,"kind":"mac"})"),
            "/1/offset: '172' given; expected a number from 0 to 171");
  EXPECT_EQ(error_of(record("wan_info", R"({"name":"a","offset":80,"kind":"bytes"},)"
                                        R"({"name":"b","offset":84,"kind":"ipv4"})")),
            "/records/wan_info/1: 'b' begins within 'a'; expected nothing after 'a'");
  EXPECT_EQ(error_of(record("wan_info", R"({"name":"a","offset":86,"kind":"ipv4"})")),
            "/records/wan_info/0: ends at 90; expected an end up to 88, that of the record");
}

TEST(LayoutReader, RefusesValuesThatDoNotFitTheirField) {
  auto error = [](const std::string &kind, const std::string &values) {
    return field_error(R"({"name":"a","offset":0,"width":1,"kind":")" + kind + R"(","values":{)" +
                       values + "}}");
  };
  EXPECT_EQ(error("number", R"("256":"a")"),
            "/0/values/256: '256' is no such number; expected a number from 0 to 255");
  EXPECT_EQ(error("flags", R"("0":"a")"),
            "/0/values/0: '0' is no such number; expected a number from 1 to 255");
  EXPECT_EQ(error("number", R"("x":"a")"),
            "/0/values/x: 'x' is no such number; expected a number from 0 to 255");
  EXPECT_EQ(error("number", R"("1":"a","2":"a")"),
            "/0/values/2: 'a' given; expected a name that no other number has");
  EXPECT_EQ(error("number", R"("1":"a","0x1":"b")"),
            "/0/values/0x1: 1 has a name already; expected another number");
  EXPECT_EQ(error("number", R"("1":"7")"),
            "/0/values/1: '7' given; expected a letter, then at most 30 letters, digits or - _ .");
  EXPECT_EQ(error("flags", R"("1":"none")"), "/0/values/1: 'none' given; expected another name");
  EXPECT_EQ(error("duration", R"("1":"a")"),
            "/0/values: is not for the kind duration; expected the kind number or vlan or flags");
}

TEST(LayoutReader, RefusesRecordsWithinRecordsThatAreWrong) {
  auto error = [](const std::string &members, const std::string &inner) {
    return field_error(R"({"name":"a","offset":0,"kind":"records","record":{)" + members +
                       R"("fields":[)" + inner + "]}}");
  };
  const std::string one = R"({"name":"b","offset":0,"kind":"mac"})";
  EXPECT_EQ(error(R"("size":5,)", one),
            "/0/record/fields/0: ends at 6; expected an end up to 5, that of the record");
  EXPECT_EQ(error(R"("size":200,)", one),
            "/0: ends at 200; expected an end up to 172, that of the record");
  EXPECT_EQ(
      error("", R"({"name":"b","offset":0,"kind":"records"})"),
      "/0/record/fields/0/kind: 'records' given; expected text, padded, number, vlan, signed, "
      "flags, duration, ports, numbers, vlans, mac, ipv4, interface, ont, version, bytes");
  EXPECT_EQ(error("", R"({"name":"b","offset":0,"kind":"mac","secret":true})"),
            "/0/record/fields/0/secret: there is no such member; expected name, offset, width, "
            "kind, unit, decimals, values, role");
  EXPECT_EQ(field_error(R"({"name":"a","offset":0,"kind":"mac","record":{}})"),
            "/0/record: is not for the kind mac; expected the kind records");
}

TEST(LayoutReader, RefusesNumbersThatAreNotOneField) {
  const char *expected =
      "/records/get_olt_auth_mode.auth_mode: is a number of 4 bytes; expected one field, "
      "'auth_mode', of 4 bytes";
  EXPECT_EQ(error_of(record("get_olt_auth_mode.auth_mode",
                            R"({"name":"mode","offset":0,"width":4,"kind":"number"})")),
            expected);
  EXPECT_EQ(error_of(record("get_olt_auth_mode.auth_mode",
                            R"({"name":"auth_mode","offset":0,"width":2,"kind":"number"})")),
            expected);
}

TEST(LayoutReader, RefusesStatusesAndRowsThatAreWrong) {
  EXPECT_EQ(error_of(document(R"("statuses":{"65536":"a"})")),
            "/statuses/65536: '65536' is no such number; expected a number from 0 to 65535");
  EXPECT_EQ(error_of(document(R"("statuses":{"5":""})")),
            "/statuses/5: '' given; expected a text of 1 to 63 printable characters");
  EXPECT_EQ(error_of(document(R"("statuses":{"5":"a\u001b"})")),
            "/statuses/5: 'a\\x1b' given; expected a text of 1 to 63 printable characters");
  EXPECT_EQ(error_of(document(R"("statuses":{"5":"a","0x5":"b"})")),
            "/statuses/0x5: status 5 has a name already; expected another status");
  EXPECT_EQ(error_of(document(R"("end_of_table":0)")),
            "/end_of_table: '0' given; expected a number from 1 to 65535");
  EXPECT_EQ(error_of(document(R"("row_selection":{"target_offset":12})")),
            "/row_selection: 'record_offset' is missing; expected it");
  EXPECT_EQ(error_of(document(
                R"("row_selection":{"target_offset":85,"record_offset":0,"this":1,"next":2})")),
            "/row_selection/target_offset: '85' given; expected a number from 0 to 84");
  EXPECT_EQ(error_of(document(
                R"("row_selection":{"target_offset":12,"record_offset":37,"this":1,"next":2})")),
            "/row_selection/record_offset: '37' given; expected a number from 0 to 36");
  EXPECT_EQ(error_of(document(
                R"("row_selection":{"target_offset":12,"record_offset":0,"this":1,"next":1})")),
            "/row_selection/next: '1' given; expected a number other than 'this'");
}

TEST(LayoutReader, RefusesPiecesThatCannotBe) {
  auto error = [](const std::string &changed, const std::string &value) {
    nlohmann::json pieces = {{"head_size", 8},    {"length_offset", 0}, {"position_offset", 4},
                             {"piece_size", 100}, {"max_size", 1000},   {"progress_offset", 4},
                             {"complete", 100},   {"failed", 101}};
    pieces[changed] = nlohmann::json::parse(value);
    return error_of(document(R"("onu_update":)" + pieces.dump()));
  };
  EXPECT_EQ(error("complete", "99"), "no error");
  EXPECT_EQ(error("head_size", "7"),
            "/onu_update/head_size: '7' given; expected a number from 8 to 65535");
  EXPECT_EQ(error("length_offset", "5"),
            "/onu_update/length_offset: '5' given; expected a number from 0 to 4");
  EXPECT_EQ(error("position_offset", "3"),
            "/onu_update/position_offset: '3' given; expected an offset outside the word at 0, the "
            "image's length");
  EXPECT_EQ(error("piece_size", "0"),
            "/onu_update/piece_size: '0' given; expected a number from 1 to 16777208");
  EXPECT_EQ(error("max_size", "0"),
            "/onu_update/max_size: '0' given; expected a number from 1 to 4294967295");
  EXPECT_EQ(error("progress_offset", "65532"),
            "/onu_update/progress_offset: '65532' given; expected a number from 0 to 65531");
  EXPECT_EQ(error("failed", "100"),
            "/onu_update/failed: '100' given; expected a number other than 'complete'");
  EXPECT_EQ(error("rest", "1"),
            "/onu_update/rest: there is no such member; expected head_size, length_offset, "
            "position_offset, piece_size, max_size, progress_offset, complete, failed");
  EXPECT_EQ(error_of(document(R"("olt_update":{"head_size":8})")),
            "/olt_update: 'length_offset' is missing; expected it");
}

TEST(LayoutReader, ShowsNoMoreOfAValueThanALineTakes) {
  EXPECT_EQ(error_of(R"({"version":")" + std::string(1000, 'x') + R"("})"),
            "/version: '" + std::string(40, 'x') + "...' given; expected 1");
}

// What layouts mean.

bool same(const Field &a, const Field &b);

template <typename Items, typename Same>
bool all_same(const Items &a, const Items &b, Same same) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

std::string_view or_empty(const char *text) {
  return text == nullptr ? "" : text;
}

bool same_value(const olt::catalog::ValueName &a, const olt::catalog::ValueName &b) {
  return a.value == b.value && std::string_view(a.name) == b.name;
}

bool same(const Field &a, const Field &b) {
  return std::string_view(a.name) == b.name && a.offset == b.offset && a.width == b.width &&
         a.kind == b.kind && a.role == b.role && a.secret == b.secret && a.max == b.max &&
         all_same(a.values, b.values, same_value) && or_empty(a.unit) == or_empty(b.unit) &&
         a.decimals == b.decimals && a.record_size == b.record_size &&
         all_same(a.record, b.record, [](const Field &x, const Field &y) { return same(x, y); });
}

TEST(LayoutMeanings, TheBoxsLayoutCanBeWrittenDown) {
  std::string text = olt::cli::layout_text(Layout::box());
  size_t name = text.find(R"("name": "box")");
  ASSERT_NE(name, std::string::npos);
  Layout copy = parse_layout(text.replace(name, 13, R"("name": "copy")"));
  size_t fields = 0;
  for (const auto &family : Layout::box().families()) {
    for (const auto &operation : family.operations) {
      const auto &copied = *copy.find(operation.name);
      for (size_t i = 0; i < operation.argument_count; ++i) {
        const Argument &argument = operation.arguments()[i];
        const Argument &other = copied.arguments()[i];
        fields += argument.fields.size();
        EXPECT_TRUE(all_same(argument.fields, other.fields,
                             [](const Field &x, const Field &y) { return same(x, y); }))
            << operation.name << " " << argument.name;
        EXPECT_TRUE(same(argument.whole(), other.whole()))
            << operation.name << " " << argument.name;
      }
    }
  }
  EXPECT_GT(fields, 500U);
  EXPECT_EQ(copy.statuses(), Layout::box().statuses());
  EXPECT_EQ(copy.end_of_table(), 4);
  EXPECT_EQ(copy.row_selection()->target_offset, 12U);
  EXPECT_EQ(copy.row_selection()->record_offset, 0U);
  EXPECT_EQ(copy.row_selection()->this_row, 1U);
  EXPECT_EQ(copy.row_selection()->next_row, 2U);
  EXPECT_EQ(copy.olt_update()->piece_size, 65536U);
  EXPECT_EQ(copy.olt_update()->failed, 0x80000001U);
  EXPECT_EQ(copy.onu_update()->position_offset, 4U);
  EXPECT_EQ(olt::cli::layout_text(parse_layout(text)), text);
}

TEST(LayoutMeanings, NoneHasTheFieldsOfTheHeaderAlone) {
  const Layout &none = Layout::contract();
  EXPECT_TRUE(network(none).fields.empty());
  EXPECT_TRUE(none.statuses().empty());
  EXPECT_FALSE(none.end_of_table());
  EXPECT_FALSE(none.row_selection());
  EXPECT_FALSE(none.olt_update());
  EXPECT_FALSE(none.onu_update());
  auto port = none.find("get_snmp_olt_port_status")->arguments()[0].fields;
  ASSERT_EQ(port.size(), 19U);
  EXPECT_STREQ(port[6].name, "link_duplex");
  for (const Field &field : port) {
    EXPECT_TRUE(field.values.empty()) << field.name;
    EXPECT_EQ(field.unit, nullptr) << field.name;
  }
  auto ont = none.find("clear_onu_node")->arguments()[0].fields;
  ASSERT_EQ(ont.size(), 7U);
  EXPECT_STREQ(ont[0].name, "target");
  EXPECT_EQ(ont[0].kind, FieldKind::kNumbers);
  const Argument &duplex = none.find("get_port_link_duplex")->arguments()[2];
  EXPECT_TRUE(duplex.values.empty());
  const Argument &size = none.find("set_system_logfilesize")->arguments()[0];
  EXPECT_EQ(size.unit, nullptr);
}

TEST(LayoutMeanings, NumbersMeanWhatTheFieldDoesThatTheyAreSentIn) {
  Layout layout = parse_layout(document(
      R"("records":{"olt_port_attributes":[)"
      R"({"name":"speed","offset":20,"width":4,"kind":"number","unit":"Gbit/s"},)"
      R"({"name":"duplex","offset":24,"width":4,"kind":"number","values":{"2":"both-ways"}}],)"
      R"("get_port_link_state.link_state":[)"
      R"({"name":"link_state","offset":0,"width":4,"kind":"flags","values":{"1":"carrier"}}]})"));
  const Argument &duplex = layout.find("get_port_link_duplex")->arguments()[2];
  ASSERT_EQ(duplex.values.size(), 1U);
  EXPECT_STREQ(duplex.values[0].name, "both-ways");
  EXPECT_STREQ(layout.find("get_port_link_speed")->arguments()[2].unit, "Gbit/s");
  EXPECT_EQ(layout.find("get_port_link_state")->arguments()[2].form, FieldKind::kFlags);
  EXPECT_TRUE(layout.find("get_port_enable")->arguments()[2].values.empty());
}

TEST(LayoutMeanings, OneArgumentsRecordHoldsAgainstThatOfItsType) {
  Layout layout = parse_layout(
      document(R"("records":{"link_info":[{"name":"link","offset":0,"width":4,"kind":"number"}],)"
               R"("olt_onu_info":[{"name":"onu","offset":0,"width":4,"kind":"number"}]})"));
  EXPECT_STREQ(layout.find("process_snmp_onubasicinfo")->arguments()[1].fields[0].name, "onu");
  EXPECT_STREQ(layout.find("process_snmp_linkbasicinfo")->arguments()[1].fields[0].name, "link");
}

TEST(LayoutMeanings, SecretsStayOutOfTheHistory) {
  Layout layout =
      parse_layout(record("olt_system_network",
                          R"({"name":"key","offset":0,"width":4,"kind":"padded","secret":true})"));
  const std::vector<std::string> words = {"set_system_ipaddress", "key=abcd"};
  EXPECT_EQ(olt::cli::history_line(words, layout), "set_system_ipaddress key=-");
  EXPECT_EQ(olt::cli::history_line(std::vector<std::string>{"help", "key=abcd"}, layout),
            std::nullopt);
}

TEST(LayoutMeanings, TheBaseHoldsWhereNothingIsSaid) {
  Layout layout = parse_layout(document(
      R"("base":"box","records":{"olt_sntp_config":[{"name":"a","offset":0,"kind":"ipv4"}]})"));
  EXPECT_STREQ(network(layout).fields[0].name, "address");
  EXPECT_STREQ(layout.find("Cl_Set_SntpCfg_apply")->arguments()[0].fields[0].name, "a");
  EXPECT_EQ(layout.end_of_table(), 4);
  EXPECT_EQ(layout.status_source(), "oltbox");
  EXPECT_EQ(layout.statuses().at(5), "exists already");
}

}  // namespace

}  // namespace olt::test
