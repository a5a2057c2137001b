#include "oltmgmt.h"
#include "tests/library/tables.h"

namespace olt::test {

namespace {

constexpr Alignment kAny = Alignment::kAny;
constexpr Alignment kWord = Alignment::kWord;
constexpr Alignment kPointer = Alignment::kPointer;

/// A file name that is not terminated by a zero, but has a zero inside; a reply with it in bytes 48
/// to 79.
constexpr const char *kName32 = "'/var/run/olt/vlan' 00 81+14";
constexpr const char *kNamedAt48 = "A0+48 '/var/run/olt/vlan' 00 81+14";

/// An operation that sends a VLAN list and wants no reply.
struct ListSender {
  const char *operation;
  int32_t (*call)(Caller);
  uint32_t type;
  uint32_t timeout = 10;
  OutOfMemory out_of_memory = OutOfMemory::kMinusOne;
};

constexpr ListSender kAdd = {
    .operation = "add_vlan_list",
    .call = [](Caller c) { return add_vlan_list(c[0]); },
    .type = 19,
};
constexpr ListSender kDelete = {
    .operation = "delete_vlan_list",
    .call = [](Caller c) { return delete_vlan_list(c[0]); },
    .type = 20,
};
constexpr ListSender kAddDescr = {
    .operation = "add_vlan_descr_list",
    .call = [](Caller c) { return add_vlan_descr_list(c[0]); },
    .type = 21,
};
constexpr ListSender kDeleteDescr = {
    .operation = "delete_vlan_descr_list",
    .call = [](Caller c) { return delete_vlan_descr_list(c[0]); },
    .type = 22,
};
constexpr ListSender kAddMuticast = {
    .operation = "add_muticastvlan_list",
    .call = [](Caller c) { return add_muticastvlan_list(c[0]); },
    .type = 149,
};
constexpr ListSender kDeleteMuticast = {
    .operation = "delete_muticastvlan_list",
    .call = [](Caller c) { return delete_muticastvlan_list(c[0]); },
    .type = 150,
};
constexpr ListSender kTrunk = {
    .operation = "process_trunk_vlan",
    .call = [](Caller c) { return process_trunk_vlan(0x01020304, 0x11121314, c[0], 0x21222324); },
    .type = 25,
    .timeout = 60,
    .out_of_memory = OutOfMemory::kUntested,
};
constexpr ListSender kTrunkUntag = {
    .operation = "process_trunk_vlan_untag",
    .call =
        [](Caller c) { return process_trunk_vlan_untag(0x01020304, 0x11121314, c[0], 0x21222324); },
    .type = 26,
    .timeout = 60,
    .out_of_memory = OutOfMemory::kUntested,
};
constexpr ListSender kTrunkAll = {
    .operation = "process_trunk_vlan_all",
    .call =
        [](Caller c) { return process_trunk_vlan_all(0x01020304, 0x11121314, c[0], 0x21222324); },
    .type = 27,
    .timeout = 60,
    .out_of_memory = OutOfMemory::kUntested,
};
constexpr ListSender kTrunkUntagAll = {
    .operation = "process_trunk_vlan_untag_all",
    .call =
        [](Caller c) {
          return process_trunk_vlan_untag_all(0x01020304, 0x11121314, c[0], 0x21222324);
        },
    .type = 28,
    .timeout = 60,
    .out_of_memory = OutOfMemory::kUntested,
};

// A list is a pointer to its first node, padded to 16 bytes, and the number of nodes; a node is a
// pointer to the next one, padded to 12 bytes, and its VLAN values. The last node points to memory
// that cannot be read, and a node ends with the bytes that are sent.

constexpr Row three_nodes(const ListSender &sender, const char *request) {
  return {.operation = sender.operation,
          .variant = "three nodes",
          .call = sender.call,
          .exchanges = {{.type = sender.type, .timeout = sender.timeout, .request = request}},
          .blocks = {kept("list", kPointer, "&2/16 03000000"),
                     kept("last node", kPointer, "&-/12 5251 5453"),
                     kept("first node", kPointer, "&3/12 1211 1413"),
                     kept("middle node", kPointer, "&1/12 3231 3433")},
          .request_block = {.out_of_memory = sender.out_of_memory}};
}

constexpr Row two_nodes(const ListSender &sender, const char *request) {
  return {.operation = sender.operation,
          .variant = "two nodes",
          .call = sender.call,
          .exchanges = {{.type = sender.type, .timeout = sender.timeout, .request = request}},
          .blocks = {kept("list", kPointer, "&1/16 02000000"),
                     kept("first node", kPointer, "&2/12 0100 FE0F"),
                     kept("last node", kPointer, "&-/12 FFFF 0080")},
          .request_block = {.out_of_memory = sender.out_of_memory}};
}

constexpr Row one_node(const ListSender &sender, const char *request) {
  return {.operation = sender.operation,
          .variant = "one node",
          .call = sender.call,
          .exchanges = {{.type = sender.type, .timeout = sender.timeout, .request = request}},
          .blocks = {kept("list", kPointer, "&1/16 01000000"),
                     kept("node", kPointer, "&-/12 FFFF 0080")},
          .request_block = {.out_of_memory = sender.out_of_memory}};
}

constexpr Row no_node(const ListSender &sender, const char *variant, const char *list,
                      const char *request) {
  return {.operation = sender.operation,
          .variant = variant,
          .call = sender.call,
          .exchanges = {{.type = sender.type, .timeout = sender.timeout, .request = request}},
          .blocks = {kept("list", kPointer, list)},
          .request_block = {.out_of_memory = sender.out_of_memory}};
}

constexpr const char *kEmptyList = "&-/16 00000000";

// Negative counts send no node, but change the length of the request, which wraps around.
constexpr const char *kCountMinus1 = "&-/16 FFFFFFFF";
constexpr const char *kCountMinus17 = "&-/16 EFFFFFFF";
constexpr const char *kCountMinus19 = "&-/16 EDFFFFFF";
constexpr const char *kLowestCount = "&-/16 00000080";
constexpr const char *kNegativeCount = "&-/16 010000C0";

constexpr const char *kThreeElements = "1211 1413 3231 3433 5251 5453";
constexpr const char *kTrunkOfThree =
    "04030201 14131211 24232221 ~~*68 1211 1413 3231 3433 5251 5453";
constexpr const char *kTrunkOfTwo = "04030201 14131211 24232221 ~~*68 0100 FE0F FFFF 0080";
constexpr const char *kTrunkOfNone = "04030201 14131211 24232221 ~~*68";
constexpr const char *kTrunkOfMinus1 = "04030201 14131211 24232221 ~~*64";
constexpr const char *kTrunkOfMinus17 = "04030201 14131211 24232221";

/// An operation on a port record of the SNMP agent.
struct RecordOperation {
  const char *operation;
  int32_t (*call)(Caller);
  uint32_t type;
  /// Null: no reply is wanted.
  const char *reply = nullptr;
};

constexpr RecordOperation kBasicInfo = {
    .operation = "get_snmp_olt_port_basic_info",
    .call = [](Caller c) { return get_snmp_olt_port_basic_info(c[0]); },
    .type = 70,
    .reply = "90+80",
};
constexpr RecordOperation kSetBasicInfo = {
    .operation = "set_snmp_olt_port_basic_info",
    .call = [](Caller c) { return set_snmp_olt_port_basic_info(c[0]); },
    .type = 71,
};
constexpr RecordOperation kStatus = {
    .operation = "get_snmp_olt_port_status",
    .call = [](Caller c) { return get_snmp_olt_port_status(c[0]); },
    .type = 72,
    .reply = "90+80",
};

constexpr Row accepted(const RecordOperation &operation, const char *variant, const char *record) {
  return {.operation = operation.operation,
          .variant = variant,
          .call = operation.call,
          .exchanges = {{.type = operation.type,
                         .request = record,
                         .sent_from = 0,
                         .reply = operation.reply}},
          .blocks = {filled("record", kWord, record, operation.reply)}};
}

constexpr Row refused(const RecordOperation &operation, const char *variant, const char *record) {
  return {.operation = operation.operation,
          .variant = variant,
          .call = operation.call,
          .exchanges = {},
          .blocks = {kept("record", kWord, record)},
          .results = Results::kRefused};
}

constexpr Row kRows[] = {
    // VLAN tables.
    three_nodes(kAdd, kThreeElements),
    one_node(kAdd, "FFFF 0080"),
    {.operation = "add_vlan_list",
     .variant = "node that follows itself",
     .call = [](Caller c) { return add_vlan_list(c[0]); },
     .exchanges = {{.type = 19, .request = "FFFF 0080 FFFF 0080"}},
     .blocks = {kept("list", kPointer, "&1/16 02000000"),
                kept("node", kPointer, "&1/12 FFFF 0080")},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    no_node(kAdd, "empty list", kEmptyList, ""),
    no_node(kAdd, "negative count", kNegativeCount, "~~*4"),
    no_node(kAdd, "lowest count", kLowestCount, ""),
    three_nodes(kDelete, kThreeElements),
    one_node(kDelete, "FFFF 0080"),
    no_node(kDelete, "empty list", kEmptyList, ""),
    no_node(kDelete, "negative count", kNegativeCount, "~~*4"),
    no_node(kDelete, "lowest count", kLowestCount, ""),
    {.operation = "add_vlan_descr_list",
     .variant = "three nodes",
     .call = [](Caller c) { return add_vlan_descr_list(c[0]); },
     .exchanges = {{.type = 21,
                    .request = "1211 1413 'voice' 00 61+26 "
                               "3231 3433 00 71+31 "
                               "5251 5453 'abcdefghijklmnopqrstuvwxyz012345'"}},
     .blocks = {kept("list", kPointer, "&2/16 03000000"),
                kept("last node", kPointer, "&-/12 5251 5453 'abcdefghijklmnopqrstuvwxyz012345'"),
                kept("first node", kPointer, "&3/12 1211 1413 'voice' 00 61+26"),
                kept("middle node", kPointer, "&1/12 3231 3433 00 71+31")},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    {.operation = "add_vlan_descr_list",
     .variant = "one node",
     .call = [](Caller c) { return add_vlan_descr_list(c[0]); },
     .exchanges = {{.type = 21, .request = "FFFF 0080 80+32"}},
     .blocks = {kept("list", kPointer, "&1/16 01000000"),
                kept("node", kPointer, "&-/12 FFFF 0080 80+32")},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    no_node(kAddDescr, "empty list", kEmptyList, ""),
    no_node(kAddDescr, "negative count", kNegativeCount, "~~*36"),
    no_node(kAddDescr, "lowest count", kLowestCount, ""),
    three_nodes(kDeleteDescr, kThreeElements),
    one_node(kDeleteDescr, "FFFF 0080"),
    no_node(kDeleteDescr, "empty list", kEmptyList, ""),
    no_node(kDeleteDescr, "negative count", kNegativeCount, "~~*4"),
    no_node(kDeleteDescr, "lowest count", kLowestCount, ""),

    {.operation = "get_vlan_interface_file_byinteface",
     .call =
         [](Caller c) { return get_vlan_interface_file_byinteface(0x01020304, 0x11121314, c[0]); },
     .exchanges = {{.type = 23, .request = "00*4 04030201 14131211 00*68", .reply = kNamedAt48}},
     .blocks = {filled("name", kAny, "AA*32", kName32)}},
    {.operation = "get_vlan_information_file_bylist",
     .variant = "three nodes",
     .call = [](Caller c) { return get_vlan_information_file_bylist(c[0], c[4]); },
     .exchanges = {{.type = 23,
                    .request = "01000000 ~~*76 1211 1413 3231 3433 5251 5453",
                    .reply = kNamedAt48}},
     .blocks = {kept("list", kPointer, "&2/16 03000000"),
                kept("last node", kPointer, "&-/12 5251 5453"),
                kept("first node", kPointer, "&3/12 1211 1413"),
                kept("middle node", kPointer, "&1/12 3231 3433"),
                filled("name", kAny, "AA*32", kName32)},
     .request_block = {.out_of_memory = OutOfMemory::kUntested}},
    {.operation = "get_vlan_information_file_bylist",
     .variant = "one node",
     .call = [](Caller c) { return get_vlan_information_file_bylist(c[0], c[2]); },
     .exchanges = {{.type = 23, .request = "01000000 ~~*76 FFFF 0080", .reply = kNamedAt48}},
     .blocks = {kept("list", kPointer, "&1/16 01000000"), kept("node", kPointer, "&-/12 FFFF 0080"),
                filled("name", kAny, "AA*32", kName32)},
     .request_block = {.out_of_memory = OutOfMemory::kUntested}},
    {.operation = "get_vlan_information_file_bylist",
     .variant = "empty list",
     .call = [](Caller c) { return get_vlan_information_file_bylist(c[0], c[1]); },
     .exchanges = {{.type = 23, .request = "01000000 ~~*76", .reply = kNamedAt48}},
     .blocks = {kept("list", kPointer, kEmptyList), filled("name", kAny, "AA*32", kName32)},
     .request_block = {.out_of_memory = OutOfMemory::kUntested}},
    {.operation = "get_vlan_information_file_bylist",
     .variant = "count -1",
     .call = [](Caller c) { return get_vlan_information_file_bylist(c[0], c[1]); },
     .exchanges = {{.type = 23, .request = "01000000 ~~*72", .reply = kNamedAt48}},
     .blocks = {kept("list", kPointer, kCountMinus1), filled("name", kAny, "AA*32", kName32)},
     .request_block = {.out_of_memory = OutOfMemory::kUntested}},
    {.operation = "get_vlan_information_file_bylist",
     .variant = "count -19",
     .call = [](Caller c) { return get_vlan_information_file_bylist(c[0], c[1]); },
     .exchanges = {{.type = 23, .request = "01000000", .reply = kNamedAt48}},
     .blocks = {kept("list", kPointer, kCountMinus19), filled("name", kAny, "AA*32", kName32)},
     .request_block = {.out_of_memory = OutOfMemory::kUntested}},
    {.operation = "get_vlan_information_file_bydescprtion",
     .call = [](Caller c) { return get_vlan_information_file_bydescprtion(c[0], c[1]); },
     .exchanges = {{.type = 23, .request = "02000000 00*12 'voice' 00*59", .reply = kNamedAt48}},
     .blocks = {kept("description", kAny, "'voice' 00"), filled("name", kAny, "AA*32", kName32)}},
    {.operation = "get_vlan_information_file_bydescprtion",
     .variant = "empty text",
     .call = [](Caller c) { return get_vlan_information_file_bydescprtion(c[0], c[1]); },
     .exchanges = {{.type = 23, .request = "02000000 00*76", .reply = kNamedAt48}},
     .blocks = {kept("description", kAny, "00"), filled("name", kAny, "AA*32", kName32)}},
    {.operation = "get_vlan_information_file_bydescprtion",
     .variant = "text of 32 characters",
     .call = [](Caller c) { return get_vlan_information_file_bydescprtion(c[0], c[1]); },
     .exchanges = {{.type = 23, .request = "02000000 00*12 'x' 61*31 00*32", .reply = kNamedAt48}},
     .blocks = {kept("description", kAny, "'x' 61*31 00"), filled("name", kAny, "AA*32", kName32)}},
    {.operation = "get_vlan_information_file_bydescprtion",
     .variant = "longest text",
     .call = [](Caller c) { return get_vlan_information_file_bydescprtion(c[0], c[1]); },
     .exchanges = {{.type = 23, .request = "02000000 00*12 C1+63 00", .reply = kNamedAt48}},
     .blocks = {kept("description", kAny, "C1+63 00"), filled("name", kAny, "AA*32", kName32)}},
    {.operation = "get_vlan_information_file_bydescprtion",
     .variant = "text with per cent signs",
     .call = [](Caller c) { return get_vlan_information_file_bydescprtion(c[0], c[1]); },
     .exchanges = {{.type = 23,
                    .request = "02000000 00*12 '100%d %s%%' 00*54",
                    .reply = kNamedAt48}},
     .blocks = {kept("description", kAny, "'100%d %s%%' 00"),
                filled("name", kAny, "AA*32", kName32)}},
    {.operation = "get_vlan_all",
     .call = [](Caller c) { return get_vlan_all(c[0]); },
     .exchanges = {{.type = 23, .request = "03000000 00*76", .reply = kNamedAt48}},
     .blocks = {filled("name", kAny, "AA*32", kName32)}},

    // Trunk VLAN membership.
    three_nodes(kTrunk, kTrunkOfThree),
    two_nodes(kTrunk, kTrunkOfTwo),
    no_node(kTrunk, "empty list", kEmptyList, kTrunkOfNone),
    no_node(kTrunk, "count -1", kCountMinus1, kTrunkOfMinus1),
    no_node(kTrunk, "count -17", kCountMinus17, kTrunkOfMinus17),
    three_nodes(kTrunkUntag, kTrunkOfThree),
    two_nodes(kTrunkUntag, kTrunkOfTwo),
    no_node(kTrunkUntag, "empty list", kEmptyList, kTrunkOfNone),
    no_node(kTrunkUntag, "count -1", kCountMinus1, kTrunkOfMinus1),
    no_node(kTrunkUntag, "count -17", kCountMinus17, kTrunkOfMinus17),
    three_nodes(kTrunkAll, kTrunkOfThree),
    two_nodes(kTrunkAll, kTrunkOfTwo),
    no_node(kTrunkAll, "empty list", kEmptyList, kTrunkOfNone),
    no_node(kTrunkAll, "count -1", kCountMinus1, kTrunkOfMinus1),
    no_node(kTrunkAll, "count -17", kCountMinus17, kTrunkOfMinus17),
    three_nodes(kTrunkUntagAll, kTrunkOfThree),
    two_nodes(kTrunkUntagAll, kTrunkOfTwo),
    no_node(kTrunkUntagAll, "empty list", kEmptyList, kTrunkOfNone),
    no_node(kTrunkUntagAll, "count -1", kCountMinus1, kTrunkOfMinus1),
    no_node(kTrunkUntagAll, "count -17", kCountMinus17, kTrunkOfMinus17),

    // OLT ports.
    {.operation = "set_uplink_sfp_module",
     .call = [](Caller) { return set_uplink_sfp_module(0x01020304, 0x11121314, 0x81828384); },
     .exchanges = {{.type = 13, .request = "04030201 14131211 00*4 84838281 00*64"}}},
    {.operation = "set_port_enable",
     .call = [](Caller) { return set_port_enable(0x01020304, 0x11121314, 0x81828384); },
     .exchanges = {{.type = 14, .request = "04030201 14131211 00*8 84838281 00*60"}}},
    {.operation = "get_port_enable",
     .call = [](Caller c) { return get_port_enable(0x01020304, 0x11121314, c[0]); },
     .exchanges = {{.type = 15, .request = "04030201 14131211 00*72", .reply = "80+20"}},
     .blocks = {filled("port_enable", kWord, "AA*4", "90+4")},
     .releases_reply = false},
    {.operation = "get_port_link_state",
     .call = [](Caller c) { return get_port_link_state(0x01020304, 0x11121314, c[0]); },
     .exchanges = {{.type = 16, .request = "04030201 14131211 00*72", .reply = "80+68"}},
     .blocks = {filled("link_state", kWord, "AA*4", "C0+4")},
     .releases_reply = false},
    {.operation = "get_port_link_duplex",
     .call = [](Caller c) { return get_port_link_duplex(0x01020304, 0x11121314, c[0]); },
     .exchanges = {{.type = 17, .request = "04030201 14131211 00*72", .reply = "80+28"}},
     .blocks = {filled("link_duplex", kWord, "AA*4", "98+4")},
     .releases_reply = false},
    {.operation = "get_port_link_speed",
     .call = [](Caller c) { return get_port_link_speed(0x01020304, 0x11121314, c[0]); },
     .exchanges = {{.type = 18, .request = "04030201 14131211 00*72", .reply = "80+24"}},
     .blocks = {filled("link_speed", kWord, "AA*4", "94+4")},
     .releases_reply = false},
    {.operation = "Set_port_vlanmode",
     .call = [](Caller) { return Set_port_vlanmode(1, 2, 10, 20); },
     .exchanges = {{.type = 24,
                    .timeout = 60,
                    .request = "01000000 02000000 00*20 14000000 0A000000 00*44"}}},
    {.operation = "Set_port_vlanmode",
     .variant = "wide values",
     .call =
         [](Caller) { return Set_port_vlanmode(0x01020304, 0x11121314, 0x81828384, 0x91929394); },
     .exchanges = {{.type = 24,
                    .timeout = 60,
                    .request = "04030201 14131211 00*20 94939291 84838281 00*44"}}},
    {.operation = "set_olt_port_ratecontrol",
     .call =
         [](Caller) {
           return set_olt_port_ratecontrol(0x01020304, 0x11121314, 0x81828384, 0x91929394);
         },
     .exchanges = {{.type = 66, .request = "04030201 14131211 ??*44 84838281 94939291 ??*20"}}},
    {.operation = "stp_set_port_rstp_state",
     .call = [](Caller) { return stp_set_port_rstp_state(0x01020304, 0x11121314, 0x81828384); },
     .exchanges = {{.type = 67, .request = "04030201 14131211 ??*52 84838281 ??*16"}}},
    {.operation = "set_olt_port_ingressfilter",
     .call =
         [](Caller) {
           return set_olt_port_ingressfilter(0x01020304, 0x11121314, 0x81828384, 0x91929394);
         },
     .exchanges = {{.type = 68, .request = "04030201 14131211 ??*36 84838281 94939291 ??*28"}}},
    {.operation = "set_olt_port_flowcontrol",
     .call = [](Caller) { return set_olt_port_flowcontrol(0x01020304, 0x11121314, 0x81828384); },
     .exchanges = {{.type = 69, .request = "04030201 14131211 ??*32 84838281 ??*36"}}},
    accepted(kBasicInfo, "port 1", "01000000 01000000 10+72"),
    accepted(kBasicInfo, "port 2", "01000000 02000000 10+72"),
    accepted(kBasicInfo, "port 3", "01000000 03000000 10+72"),
    accepted(kBasicInfo, "port 4", "01000000 04000000 10+72"),
    refused(kBasicInfo, "port 0", "01000000 00000000 10+72"),
    refused(kBasicInfo, "port 5", "01000000 05000000 10+72"),
    refused(kBasicInfo, "port -1", "01000000 FFFFFFFF 10+72"),
    refused(kBasicInfo, "port 0x80000001", "01000000 01000080 10+72"),
    refused(kBasicInfo, "port 0x00010001", "01000000 01000100 10+72"),
    refused(kBasicInfo, "slot 0", "00000000 01000000 10+72"),
    refused(kBasicInfo, "slot 2", "02000000 01000000 10+72"),
    refused(kBasicInfo, "slot -1", "FFFFFFFF 01000000 10+72"),
    refused(kBasicInfo, "slot 0x01000001", "01000001 01000000 10+72"),
    accepted(kSetBasicInfo, "port 1", "01000000 01000000 10+72"),
    accepted(kSetBasicInfo, "port 2", "01000000 02000000 10+72"),
    accepted(kSetBasicInfo, "port 3", "01000000 03000000 10+72"),
    accepted(kSetBasicInfo, "port 4", "01000000 04000000 10+72"),
    refused(kSetBasicInfo, "port 0", "01000000 00000000 10+72"),
    refused(kSetBasicInfo, "port 5", "01000000 05000000 10+72"),
    refused(kSetBasicInfo, "port -1", "01000000 FFFFFFFF 10+72"),
    refused(kSetBasicInfo, "port 0x80000001", "01000000 01000080 10+72"),
    refused(kSetBasicInfo, "port 0x00010001", "01000000 01000100 10+72"),
    refused(kSetBasicInfo, "slot 0", "00000000 01000000 10+72"),
    refused(kSetBasicInfo, "slot 2", "02000000 01000000 10+72"),
    refused(kSetBasicInfo, "slot -1", "FFFFFFFF 01000000 10+72"),
    refused(kSetBasicInfo, "slot 0x01000001", "01000001 01000000 10+72"),
    accepted(kStatus, "port 3", "01000000 03000000 10+72"),
    accepted(kStatus, "port 4", "01000000 04000000 10+72"),
    refused(kStatus, "port 0", "01000000 00000000 10+72"),
    refused(kStatus, "port 1", "01000000 01000000 10+72"),
    refused(kStatus, "port 2", "01000000 02000000 10+72"),
    refused(kStatus, "port 5", "01000000 05000000 10+72"),
    refused(kStatus, "port -1", "01000000 FFFFFFFF 10+72"),
    refused(kStatus, "port 0x80000003", "01000000 03000080 10+72"),
    refused(kStatus, "port 0x00010003", "01000000 03000100 10+72"),
    refused(kStatus, "slot 0", "00000000 03000000 10+72"),
    refused(kStatus, "slot 2", "02000000 03000000 10+72"),
    refused(kStatus, "slot -1", "FFFFFFFF 03000000 10+72"),
    refused(kStatus, "slot 0x01000001", "01000001 03000000 10+72"),
    {.operation = "process_olt_port_mac",
     .call = [](Caller c) { return process_olt_port_mac(c[0]); },
     .exchanges = {{.type = 55, .request = "10+16", .sent_from = 0}},
     .blocks = {kept("record", kAny, "10+16")}},
    {.operation = "set_oltport_maxlink",
     .call = [](Caller) { return set_oltport_maxlink(0x01020304, 0x11121314, 0x81828384); },
     .exchanges = {{.type = 102, .request = "04030201 14131211 00*68 84838281"}}},
    {.operation = "Set_upport_agg",
     .call = [](Caller) { return Set_upport_agg(0x81828384); },
     .exchanges = {{.type = 34, .request = "00*8 84838281 00*20"}}},
    {.operation = "get_upport_agg",
     .call = [](Caller c) { return get_upport_agg(c[0]); },
     .exchanges = {{.type = 74, .reply = "80+12"}},
     .blocks = {filled("upport_agg", kWord, "AA*4", "88+4")}},

    // Port statistics and MAC tables.
    {.operation = "get_statics_file_by_interface",
     .call = [](Caller c) { return get_statics_file_by_interface(0x01020304, 0x11121314, c[0]); },
     .exchanges = {{.type = 29, .request = "00*4 04030201 14131211 00*68", .reply = kNamedAt48}},
     .blocks = {filled("name", kAny, "AA*32", kName32)}},
    {.operation = "get_statics_file_by_interface",
     .variant = "port 1/3",
     .call = [](Caller c) { return get_statics_file_by_interface(1, 3, c[0]); },
     .exchanges = {{.type = 29, .request = "00*4 01000000 03000000 00*68", .reply = kNamedAt48}},
     .blocks = {filled("name", kAny, "AA*32", kName32)}},
    {.operation = "clear_statics_file_by_interface",
     .call = [](Caller) { return clear_statics_file_by_interface(0x01020304, 0x11121314); },
     .exchanges = {{.type = 30, .request = "04030201 14131211 00*72"}}},
    {.operation = "clear_statics_file_by_interface",
     .variant = "port 1/3",
     .call = [](Caller) { return clear_statics_file_by_interface(1, 3); },
     .exchanges = {{.type = 30, .request = "01000000 03000000 00*72"}}},
    {.operation = "get_dynmac_file_by_interface",
     .call =
         [](Caller c) {
           return get_dynmac_file_by_interface(0x01020304, 0x11121314, 0x81828384, c[0]);
         },
     .exchanges = {{.type = 31,
                    .request = "00*4 04030201 14131211 84838281 00*64",
                    .reply = kNamedAt48}},
     .blocks = {filled("name", kAny, "AA*32", kName32)}},
    {.operation = "get_dynmac_file_by_interface",
     .variant = "argument 0",
     .call = [](Caller c) { return get_dynmac_file_by_interface(1, 3, 0, c[0]); },
     .exchanges = {{.type = 31, .request = "00*4 01000000 03000000 00*68", .reply = kNamedAt48}},
     .blocks = {filled("name", kAny, "AA*32", kName32)}},
    {.operation = "clear_dynmac_file_by_interface",
     .call = [](Caller) { return clear_dynmac_file_by_interface(0x01020304, 0x11121314); },
     .exchanges = {{.type = 32, .request = "04030201 14131211 00*72"}}},

    // RSTP.
    {.operation = "get_rstp_config",
     .call = [](Caller c) { return get_rstp_config(c[0]); },
     .exchanges = {{.type = 170, .reply = "80+33"}},
     .blocks = {filled("bridge", kAny, "AA*33", "80+33")}},
    {.operation = "get_rstp_port_config",
     .call = [](Caller c) { return get_rstp_port_config(c[0]); },
     .exchanges = {{.type = 171, .request = "10+27", .sent_from = 0, .reply = "80+27"}},
     .blocks = {filled("port", kAny, "10+27", "80+27")}},
    {.operation = "set_rstp_config",
     .call = [](Caller c) { return set_rstp_config(c[0]); },
     .exchanges = {{.type = 172, .timeout = 50, .request = "10+33", .sent_from = 0}},
     .blocks = {kept("bridge", kAny, "10+33")}},
    {.operation = "set_rstp_port_config",
     .call = [](Caller c) { return set_rstp_port_config(c[0]); },
     .exchanges = {{.type = 173, .timeout = 30, .request = "10+27", .sent_from = 0}},
     .blocks = {kept("port", kAny, "10+27")}},
    {.operation = "get_rstp_brief",
     .call = [](Caller c) { return get_rstp_brief(c[0]); },
     .exchanges =
         {{.type = 174, .module = 23, .request = "10+40", .sent_from = 0, .reply = "80+40"}},
     .blocks = {filled("brief", kWord, "10+40", "10+8 88+32")}},

    // IGMP proxy and multicast VLAN lists.
    three_nodes(kAddMuticast, kThreeElements),
    one_node(kAddMuticast, "FFFF 0080"),
    no_node(kAddMuticast, "empty list", kEmptyList, ""),
    no_node(kAddMuticast, "negative count", kNegativeCount, "~~*4"),
    no_node(kAddMuticast, "lowest count", kLowestCount, ""),
    three_nodes(kDeleteMuticast, kThreeElements),
    one_node(kDeleteMuticast, "FFFF 0080"),
    no_node(kDeleteMuticast, "empty list", kEmptyList, ""),
    no_node(kDeleteMuticast, "negative count", kNegativeCount, "~~*4"),
    no_node(kDeleteMuticast, "lowest count", kLowestCount, ""),
    {.operation = "get_igmpproxy_config",
     .call = [](Caller c) { return get_igmpproxy_config(c[0]); },
     .exchanges = {{.type = 151, .timeout = 20, .reply = "80+24"}},
     .blocks = {filled("config", kWord, "AA*24", "80+24")}},
    {.operation = "set_igmpproxy_config",
     .call = [](Caller c) { return set_igmpproxy_config(c[0]); },
     .exchanges = {{.type = 152, .request = "10+24", .sent_from = 0}},
     .blocks = {kept("config", kWord, "10+24")}},
    {.operation = "get_igmpproxy_config_all",
     .call = [](Caller c) { return get_igmpproxy_config_all(c[0]); },
     .exchanges = {{.type = 153, .timeout = 20, .reply = "85+513"}},
     .blocks = {filled("dump", kPointer, "&-", "&=")},
     .returned_block = {.out_of_memory = OutOfMemory::kNullAnswer,
                        .bytes = "85+513",
                        .whole_reply = true}},
    {.operation = "get_igmpproxy_config_all",
     .variant = "reply of one byte",
     .call = [](Caller c) { return get_igmpproxy_config_all(c[0]); },
     .exchanges = {{.type = 153, .timeout = 20, .reply = "85"}},
     .blocks = {filled("dump", kPointer, "&-", "&=")},
     .returned_block = {.out_of_memory = OutOfMemory::kNullAnswer,
                        .bytes = "85",
                        .whole_reply = true}},
    {.operation = "get_igmpproxy_config_all",
     .variant = "empty reply",
     .call = [](Caller c) { return get_igmpproxy_config_all(c[0]); },
     .exchanges = {{.type = 153, .timeout = 20, .reply = ""}},
     .blocks = {filled("dump", kPointer, "&-", "&=")},
     .returned_block = {.out_of_memory = OutOfMemory::kNullAnswer,
                        .bytes = "",
                        .whole_reply = true}},
    {.operation = "get_igmpproxy_config_all",
     .variant = "longest reply",
     .call = [](Caller c) { return get_igmpproxy_config_all(c[0]); },
     .exchanges = {{.type = 153, .timeout = 20, .reply = "85+65535"}},
     .blocks = {filled("dump", kPointer, "&-", "&=")},
     .returned_block = {.out_of_memory = OutOfMemory::kNullAnswer,
                        .bytes = "85+65535",
                        .whole_reply = true}},
};

}  // namespace

Table switch_table() {
  return {kRows, sizeof kRows / sizeof kRows[0]};
}

}  // namespace olt::test
