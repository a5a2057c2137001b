// The catalog as oltctl prints it, against its schema and against facts written by hand.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/program.h"

namespace olt::test {

namespace {

using nlohmann::json;

json printed(const std::vector<std::string> &arguments) {
  Finished finished = Oltctl()(arguments);
  EXPECT_EQ(finished.status, 0) << finished.errors;
  EXPECT_EQ(finished.output.find('\n'), finished.output.size() - 1);
  json object = json::parse(finished.output, nullptr, false);
  EXPECT_FALSE(object.is_discarded()) << finished.output;
  return object;
}

const json &catalog() {
  static const json whole = printed({"list", "--json"});
  return whole;
}

const json &named(const json &list, const std::string &name) {
  for (const json &item : list) {
    if (item["name"] == name) return item;
  }
  static const json none;
  ADD_FAILURE() << name << " is missing";
  return none;
}

const json &operation(const std::string &name) {
  return named(catalog()["operations"], name);
}

std::string text(const json &value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

/// The members' values with a blank between them; of lists their lengths, of records their sizes.
std::string line(const json &object, const std::vector<std::string> &members) {
  std::string line;
  for (const std::string &member : members) {
    const json &value = object[member];
    std::string shown = value.is_array()    ? std::to_string(value.size())
                        : value.is_object() ? value["size"].dump()
                                            : text(value);
    line += (line.empty() ? "" : " ") + shown;
  }
  return line;
}

using Lines = std::vector<std::string>;

Lines lines(const json &list, const std::vector<std::string> &members) {
  Lines all;
  for (const json &object : list) all.push_back(line(object, members));
  return all;
}

Lines parts(const json &message) {
  return lines(message["parts"], {"offset", "width", "origin", "argument", "from", "constant",
                                  "text", "with_zero", "rest"});
}

Lines fields(const json &message) {
  return lines(message["fields"],
               {"offset", "width", "name", "kind", "role", "unit", "secret", "record", "argument"});
}

Lines arguments(const std::string &name) {
  return lines(operation(name)["arguments"],
               {"name", "direction", "passed", "size", "kind", "record", "max", "secret"});
}

// Facts.

TEST(CatalogJson, HasEveryOperationOnceAndInItsFamily) {
  EXPECT_EQ(catalog()["version"], 1);
  std::multiset<std::string> names;
  for (const json &one : catalog()["operations"]) names.insert(one["name"]);
  EXPECT_EQ(names.size(), 182U);
  std::multiset<std::string> in_families;
  for (const json &family : catalog()["families"]) {
    for (const json &name : family["operations"]) {
      in_families.insert(name);
      EXPECT_EQ(operation(name)["family"], family["title"]);
    }
  }
  EXPECT_EQ(in_families, names);
}

TEST(CatalogJson, KnowsModulesAndStatuses) {
  EXPECT_EQ(catalog()["modules"].dump(),
            R"([{"module":2,"name":"main"},{"module":18,"name":"oam"},)"
            R"({"module":22,"name":"log"},{"module":23,"name":"rstp"}])");
  EXPECT_EQ(catalog()["statuses"].size(), 12U);
  EXPECT_EQ(catalog()["statuses"][4].dump(), R"({"status":4,"text":"not found"})");
  EXPECT_EQ(catalog()["statuses"][11].dump(), R"({"status":11,"text":"ONU not up"})");
}

TEST(CatalogJson, SaysWhereOperationsSendAndWhatResultsMean) {
  EXPECT_EQ(line(operation("set_port_enable"), {"message_type", "timeout"}), "14 10");
  EXPECT_EQ(operation("set_port_enable")["modules"], json({2}));
  EXPECT_EQ(operation("set_system_loglevel")["modules"], json({22, 2}));
  EXPECT_EQ(operation("get_rstp_brief")["modules"], json({23}));
  EXPECT_EQ(operation("show_memory_info")["modules"], "caller");
  EXPECT_EQ(operation("do_handle_epon_updatestream")["timeout"], 60);
  EXPECT_EQ(operation("get_igmpproxy_config_all")["timeout"], 20);
  const json &flash = operation("read_from_flash");
  EXPECT_EQ(flash["modules"], json::array());
  EXPECT_TRUE(flash["message_type"].is_null() && flash["timeout"].is_null());
  EXPECT_TRUE(flash["request"].is_null() && flash["reply"].is_null());
  EXPECT_EQ(flash["outcome"].dump(), R"({"count":"read","minus_one":"there is no such region",)"
                                     R"("minus_two":"the device cannot be opened"})");
}

TEST(CatalogJson, KnowsArguments) {
  EXPECT_EQ(arguments("add_user_level"),
            (Lines{"name in value 0 text null 31 false", "password in value 0 text null 31 true",
                   "level_a in value 4 number null null false",
                   "level_b in value 4 number null null false"}));
  EXPECT_EQ(arguments("add_authallowed_mac").back(),
            "entries in entries 44 records olt_auth_entry null false");
  EXPECT_EQ(arguments("get_igmpproxy_config_all"),
            (Lines{"dump out reply-block 28 bytes igmpproxy_dump null false"}));
  EXPECT_EQ(arguments("process_snmp_hguwaninfo").back(),
            "info out headed-block 88 bytes wan_info null false");
  EXPECT_EQ(arguments("do_handle_epon_updatestream"),
            (Lines{"request in stream 0 bytes update_piece null false",
                   "answer out block 8 bytes update_answer null false"}));
  EXPECT_EQ(arguments("delete_ont_port_muticastvlan").back(),
            "vlans in ids 2 vlans null null false");
  EXPECT_EQ(arguments("add_vlan_descr_list"),
            (Lines{"vlans in vlans 36 records described_vlan 32 false"}));
  EXPECT_EQ(arguments("read_from_flash")[1], "buffer out buffer 0 bytes null 2355200 false");
  EXPECT_EQ(operation("set_system_loglevel")["arguments"][0]["values"][3].dump(),
            R"({"name":"error","value":3})");
  EXPECT_EQ(operation("set_system_logfilesize")["arguments"][0]["unit"], "KiB");
  EXPECT_EQ(operation("get_rstp_brief")["arguments"][0]["optional"], true);
  EXPECT_EQ(operation("show_memory_info")["arguments"][1]["optional"], false);
}

TEST(CatalogJson, KnowsAWordInARecordOfZeros) {
  const json &request = operation("set_port_enable")["request"];
  EXPECT_EQ(parts(request), (Lines{"0 4 argument slot 0 null false false null",
                                   "4 4 argument port 0 null false false null",
                                   "8 8 zeros null null null false false null",
                                   "16 4 argument port_enable 0 null false false null",
                                   "20 60 zeros null null null false false null"}));
  Lines all = fields(request);
  ASSERT_EQ(all.size(), 19U);
  EXPECT_EQ(all[0], "0 4 slot number row_name null false null slot");
  EXPECT_EQ(all[4], "16 4 port_enable number plain null false null port_enable");
  EXPECT_EQ(all[5], "20 4 link_speed number plain Mbit/s false null null");
  EXPECT_EQ(all[18], "76 4 max_link number plain null false null null");
  EXPECT_EQ(request["fields"][4]["values"].dump(),
            R"([{"name":"off","value":0},{"name":"on","value":1}])");
  EXPECT_EQ(parts(operation("set_port_enable")["reply"]), Lines{});
}

TEST(CatalogJson, KnowsConstantsAndTexts) {
  EXPECT_EQ(parts(operation("add_user_level")["request"]),
            (Lines{"0 4 constant null null 1 false false null",
                   "4 4 zeros null null null false false null",
                   "8 32 argument name 0 null true true zeros",
                   "40 32 argument password 0 null true true zeros",
                   "72 4 argument level_a 0 null false false null",
                   "76 4 argument level_b 0 null false false null"}));
  EXPECT_EQ(fields(operation("add_user_level")["request"]),
            (Lines{"0 4 user_op number selector null false null null",
                   "4 4 user_index number plain null false null null",
                   "8 32 user_name text row_name null false null name",
                   "40 32 user_password text plain null true null password",
                   "72 4 level_a number plain null false null level_a",
                   "76 4 level_b number plain null false null level_b"}));
  EXPECT_EQ(
      parts(operation("get_system_next_user")["reply"]),
      (Lines{"0 4 any null null null false false null", "4 4 argument user 4 null false false null",
             "8 32 argument user 8 null true true any", "40 32 argument user 40 null true true any",
             "72 4 argument user 72 null false false null",
             "76 4 argument user 76 null false false null"}));
}

TEST(CatalogJson, KnowsWhatARecordKeepsOfItsReply) {
  Lines all = parts(operation("get_rstp_brief")["reply"]);
  ASSERT_EQ(all.size(), 9U);
  EXPECT_EQ(all[0], "0 8 any null null null false false null");
  EXPECT_EQ(all[8], "36 4 argument brief 36 null false false null");
  EXPECT_EQ(fields(operation("get_rstp_brief")["reply"])[9],
            "36 4 seconds duration plain null false null brief");
  const json &debug = operation("process_debug_value")["reply"];
  EXPECT_EQ(debug["read_if_zero"], "debug_op");
  EXPECT_EQ(parts(debug), (Lines{"0 8 any null null null false false null",
                                 "8 4 argument value 8 null false false null"}));
}

TEST(CatalogJson, KnowsListsAfterAHead) {
  const json &request = operation("add_authallowed_mac")["request"];
  EXPECT_EQ(parts(request).back(), "80 null argument entries 0 null false false null");
  EXPECT_EQ(fields(request), (Lines{"0 4 slot number row_name null false null iface_a",
                                    "4 4 interface number row_name null false null iface_b",
                                    "8 28 reserved_08 bytes reserved null false null null",
                                    "36 4 auth_mode number plain null false null null",
                                    "40 40 reserved_28 bytes reserved null false null null",
                                    "80 null entries records plain null false 44 entries"}));
  EXPECT_EQ(
      lines(request["fields"][5]["record"]["fields"], {"offset", "width", "name", "secret"}),
      (Lines{"0 6 mac false", "6 2 reserved_06 false", "8 24 loid false", "32 12 password true"}));
}

TEST(CatalogJson, KnowsATargetWithATail) {
  EXPECT_EQ(parts(operation("banding_ont_voipinterface")["request"]),
            (Lines{"0 88 argument ont 0 null false false null",
                   "88 32 argument interface_name 0 null true true any"}));
  EXPECT_EQ(fields(operation("set_ont_iptv_profile")["request"]),
            (Lines{"0 12 target ont row_name null false null ont",
                   "12 4 target_kind number selector null false null ont",
                   "16 4 part number row_name null false null ont",
                   "20 8 reserved_14 bytes reserved null false null ont",
                   "28 6 mac mac row_name null false null ont",
                   "34 2 reserved_22 bytes reserved null false null ont",
                   "36 4 mac_word number row_name null false null ont",
                   "40 48 reserved_28 bytes reserved null false null ont",
                   "88 32 profile padded plain null false null profile"}));
  const json &strip = operation("process_onu_portstrip");
  EXPECT_EQ(parts(strip["request"]).back(), "88 34 argument strip 0 null false false null");
  EXPECT_EQ(parts(strip["reply"]).back(), "88 36 argument strip 0 null false false null");
}

TEST(CatalogJson, KnowsMessagesThatReachTheEnd) {
  EXPECT_EQ(parts(operation("get_igmpproxy_config_all")["reply"]),
            (Lines{"0 null argument dump 0 null false false null"}));
  EXPECT_EQ(fields(operation("get_igmpproxy_config_all")["reply"]).back(),
            "28 null vlans records plain null false 4 dump");
  EXPECT_EQ(fields(operation("do_handle_epon_updatestream")["request"]),
            (Lines{"0 4 total number plain bytes false null request",
                   "4 4 offset number plain bytes false null request",
                   "8 null image bytes plain null false null request"}));
  EXPECT_EQ(fields(operation("show_memory_info")["reply"]),
            (Lines{"0 32 name listing plain null false null name"}));
  EXPECT_EQ(parts(operation("show_memory_info")["request"]), Lines{});
}

TEST(CatalogJson, HasEachRecordOnce) {
  std::set<std::string> names;
  for (const json &record : catalog()["records"]) {
    EXPECT_TRUE(names.insert(record["name"]).second) << record["name"];
  }
  for (const json &one : catalog()["operations"]) {
    for (const json &argument : one["arguments"]) {
      EXPECT_TRUE(argument["record"].is_null() || names.contains(argument["record"]));
    }
  }
  auto record = [](const char *name) {
    return line(named(catalog()["records"], name), {"size", "fields"});
  };
  EXPECT_EQ(record("olt_user"), "80 6");
  EXPECT_EQ(record("olt_system_network"), "172 8");
  EXPECT_EQ(record("olt_voip_user"), "80 0");
  EXPECT_EQ(record("wan_info"), "88 9");
  EXPECT_EQ(record("onu_info"), "148 15");
  EXPECT_EQ(record("update_piece"), "8 3");
}

TEST(CatalogJson, ListsOperationsAboutAWordWithTheirRecords) {
  json users = printed({"--json", "list", "USER_LEVEL"});
  EXPECT_EQ(lines(users["operations"], {"name"}),
            (Lines{"get_user_level", "add_user_level", "delete_user_level", "modify_user_level"}));
  EXPECT_EQ(lines(users["records"], {"name"}), (Lines{"olt_user"}));
  EXPECT_EQ(users["families"].dump(),
            R"([{"operations":["get_user_level","add_user_level","delete_user_level",)"
            R"("modify_user_level"],"title":"User accounts"}])");
  Finished none = Oltctl()({"--json", "list", "nothing-like-it"});
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.output, "");
}

TEST(CatalogJson, HelpHasOneOperationOrCommandOrAllCommands) {
  json help = printed({"help", "add_user_level", "--json"});
  EXPECT_EQ(help["version"], 1);
  help.erase("version");
  EXPECT_EQ(help, operation("add_user_level"));
  EXPECT_EQ(printed({"--json", "help", "counters"}).dump(),
            R"({"details":null,"name":"counters","summary":"Shows what has happened in the box",)"
            R"("usage":["counters"],"version":1})");
  json commands = printed({"--json", "help"});
  EXPECT_EQ(commands["version"], 1);
  EXPECT_EQ(named(commands["commands"], "fault")["usage"],
            json({"fault add NAME=VALUE...", "fault list", "fault clear [ID]"}));
}

TEST(CatalogJson, WalkAloneListsReaders) {
  json readers = printed({"--json", "walk"});
  EXPECT_EQ(readers["version"], 1);
  EXPECT_EQ(readers["readers"].size(), 22U);
  EXPECT_EQ(readers["readers"][0].dump(),
            R"({"name":"process_snmp_onubasicinfo","short_name":"onus",)"
            R"("summary":"Reads the basic information of an ONU"})");
}

TEST(CatalogJson, DocsShowEachKindWithItsJsonType) {
  Lines documented;
  std::istringstream document(read_file(CATALOG_DOCUMENT));
  bool is_table = false;
  for (std::string row; std::getline(document, row);) {
    if (is_table && row.empty()) break;
    size_t name_end = row.find("` | ");
    if (is_table && name_end != std::string::npos) {
      std::string last = row.substr(row.rfind(" | ") + 3);
      documented.push_back(row.substr(3, name_end - 3) + ' ' +
                           last.substr(0, last.find_first_of("; ")));
    }
    is_table = is_table || row.starts_with("| Kind |");
  }
  EXPECT_EQ(lines(catalog()["kinds"], {"name", "json"}), documented);
}

// The schema.

/// What the validator says about files, each of which it calls a success or fails by its path.
std::string validate(const std::string &schema, const std::vector<std::string> &files) {
  std::vector<std::string> command = {JSONSCHEMA, "--output", "pretty"};
  for (const std::string &file : files) command.insert(command.end(), {"--instance", file});
  command.push_back(schema);
  Finished finished = run(command);
  return finished.output + finished.errors;
}

/// The schema of what a document of another form holds.
std::string schema_of(const Folder &folder, const std::string &definition) {
  json schema = json::parse(read_file(CATALOG_SCHEMA));
  json own = {{"$schema", schema["$schema"]},
              {"$ref", "#/$defs/" + definition},
              {"$defs", schema["$defs"]}};
  return folder.write("schema.json", own.dump());
}

bool is_accepted(const std::string &said, const std::string &file) {
  return said.find("[SUCCESS]===(" + file + ")") != std::string::npos;
}

bool is_refused(const std::string &said, const std::string &file) {
  return said.find("(" + file + ")===") != std::string::npos && !is_accepted(said, file);
}

TEST(CatalogSchema, HoldsForTheCatalogAndForEachOperation) {
  Folder folder;
  std::string whole = folder.write("catalog.json", catalog().dump());
  std::string said = validate(CATALOG_SCHEMA, {whole});
  EXPECT_TRUE(is_accepted(said, whole)) << said;
  std::string help = folder.write("help.json", printed({"--json", "help", "get_olt_mac"}).dump());
  said = validate(schema_of(folder, "operation_document"), {help});
  EXPECT_TRUE(is_accepted(said, help)) << said;
}

/// The pointers to all values in a document, the document itself first.
void collect(const json &value, const json::json_pointer &at,
             std::vector<json::json_pointer> &pointers) {
  pointers.push_back(at);
  if (value.is_object()) {
    for (const auto &[name, member] : value.items()) collect(member, at / name, pointers);
  } else if (value.is_array()) {
    for (size_t i = 0; i < value.size(); ++i) collect(value[i], at / i, pointers);
  }
}

/// Each object without one of its members, and with one too many; each value of another type.
std::vector<json> damaged(const json &document) {
  std::vector<json::json_pointer> pointers;
  collect(document, json::json_pointer(), pointers);
  std::vector<json> all;
  for (const json::json_pointer &at : pointers) {
    all.push_back(document);
    all.back()[at] = json{{"neither", {1.5}}};
    if (!document[at].is_object()) continue;
    all.push_back(document);
    all.back()[at]["stranger"] = 1;
    for (const auto &[name, member] : document[at].items()) {
      all.push_back(document);
      all.back()[at].erase(name);
    }
  }
  return all;
}

void expect_all_refused(const std::vector<json> &documents) {
  Folder folder;
  std::vector<std::string> files;
  for (const json &document : documents) {
    files.push_back(folder.write(std::to_string(files.size()) + ".json", document.dump()));
  }
  std::string said = validate(CATALOG_SCHEMA, files);
  for (size_t i = 0; i < files.size(); ++i) {
    EXPECT_TRUE(is_refused(said, files[i])) << documents[i].dump().substr(0, 2000);
  }
}

TEST(CatalogSchema, RefusesEveryMissingOrStrangeMemberAndWrongType) {
  json document = printed({"--json", "list", "delete_user_level"});
  std::vector<json> documents = damaged(document);
  EXPECT_GT(documents.size(), 300U);
  expect_all_refused(documents);
}

TEST(CatalogSchema, RefusesWrongValues) {
  json document = printed({"--json", "list", "delete_user_level"});
  struct {
    const char *at;
    json value;
  } const changes[] = {
      {"/version", 2},
      {"/library", "one"},
      {"/kinds/0/json", "object"},
      {"/operations/0/message_type", 0},
      {"/operations/0/message_type", nullptr},
      {"/operations/0/modules", json::array()},
      {"/operations/0/modules", "anybody"},
      {"/operations/0/timeout", nullptr},
      {"/operations/0/request", nullptr},
      {"/operations/0/arguments/0/direction", "sideways"},
      {"/operations/0/arguments/0/passed", "by hand"},
      {"/operations/0/arguments/0/kind", "word"},
      {"/operations/0/request/parts/0/origin", "elsewhere"},
      {"/operations/0/request/parts/0/constant", nullptr},
      {"/operations/0/request/parts/0/offset", -1},
      {"/operations/0/request/parts/0/width", 0},
      {"/operations/0/request/parts/0/argument", "name"},
      {"/operations/0/request/parts/0/rest", "zeros"},
      {"/operations/0/request/parts/2/argument", nullptr},
      {"/operations/0/request/parts/2/rest", nullptr},
      {"/operations/0/request/fields/0/kind", "records"},
      {"/operations/0/request/fields/0/role", "none"},
      {"/operations/0/request/fields/0/name", "two words"},
      {"/operations/0/request/fields/0/values/0/value", 4294967296},
  };
  std::vector<json> documents;
  for (const auto &change : changes) {
    documents.push_back(document);
    json &value = documents.back().at(json::json_pointer(change.at));
    ASSERT_NE(value, change.value) << change.at;
    value = change.value;
  }
  expect_all_refused(documents);
}

}  // namespace

}  // namespace olt::test
