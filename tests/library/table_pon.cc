#include "oltmgmt.h"
#include "tests/library/tables.h"

namespace olt::test {

namespace {

constexpr Alignment kAny = Alignment::kAny;
constexpr Alignment kHalfWord = Alignment::kHalfWord;
constexpr Alignment kWord = Alignment::kWord;

constexpr const char *kOnt = "10+88";
/// No zero ends the name, and one lies within it.
constexpr const char *kName32 = "'/var/run/olt/onu' 00 81+15";
/// A listing's reply with the name in its bytes 48 to 79, one with the name at its start.
constexpr const char *kNamedAt48 = "A0+48 '/var/run/olt/onu' 00 81+15";
constexpr const char *kNamedAt0 = kName32;

/// The interface's words in bytes 4 to 11.
constexpr const char *kListingOfInterface = "00*4 14131211 24232221 00*68";

template <auto kOperation, int32_t kCount>
int32_t change_entries(Caller c) {
  return kOperation(0x11121314, 0x21222324, kCount, c[0]);
}

struct EntryList {
  const char *operation;
  uint32_t type;
  RequestBlock request_block;
};

template <auto kOperation, int32_t kCount>
constexpr Row entry_row(const EntryList &list, const char *variant, const char *request,
                        const char *entries) {
  return {.operation = list.operation,
          .variant = variant,
          .call = change_entries<kOperation, kCount>,
          .exchanges = {{.type = list.type, .request = request}},
          .blocks = {{"entries", kAny, entries}},
          .request_block = list.request_block};
}

// A list's name and message type, how it meets a failed allocation, the lines of its allocation and
// its release.
constexpr EntryList kAddMac = {"add_authallowed_mac", 112, {OutOfMemory::kUntested, 1897, 1917}};
constexpr EntryList kDeleteMac = {
    "delete_authallowed_mac", 113, {OutOfMemory::kUntested, 2046, 2064}};
constexpr EntryList kAddLoid = {"add_authallowed_loid", 110, {OutOfMemory::kUntested, 2096, 2116}};
constexpr EntryList kDeleteLoid = {
    "delete_authallowed_loid", 111, {OutOfMemory::kUntested, 2130, 2147}};
constexpr EntryList kAddMacLoid = {
    "add_authallowed_mac_loid", 108, {OutOfMemory::kUntested, 2166, 2186}};
constexpr EntryList kDeleteMacLoid = {
    "delete_authallowed_mac_loid", 109, {OutOfMemory::kUntested, 2201, 2218}};
constexpr EntryList kDeleteBlocked = {
    "delete_blocklist_mac", 41, {OutOfMemory::kMinusOne, 2006, 2030, 2010, "less of memory"}};

// Requests of the operations that clear them and of those that do not, by the number of entries.
// Negative numbers carry no entry and make the request shorter or longer, as they wrap.
constexpr const char *kCleared0 = "14131211 24232221 00*72";
constexpr const char *kCleared1 = "14131211 24232221 00*72 30+44";
constexpr const char *kCleared3 = "14131211 24232221 00*72 30+132";
constexpr const char *kClearedMinus1 = "14131211 24232221 00*28";
constexpr const char *kClearedLow = "14131211 24232221 00*116";
constexpr const char *kFresh0 = "14131211 24232221 ~~*72";
constexpr const char *kFresh1 = "14131211 24232221 ~~*72 30+44";
constexpr const char *kFresh3 = "14131211 24232221 ~~*72 30+132";
constexpr const char *kFreshMinus1 = "14131211 24232221 ~~*28";
constexpr const char *kFreshLow = "14131211 24232221 ~~*116";
constexpr int32_t kLow = INT32_MIN + 1;

constexpr Row kRows[] = {
    // ONU authentication.
    {.operation = "set_olt_auth_mode",
     .call = [](Caller) { return set_olt_auth_mode(0x11121314, 0x21222324, 0x31323334); },
     .exchanges = {{.type = 114, .request = "14131211 24232221 00*28 34333231 00*40"}}},
    {.operation = "set_olt_auth_mode",
     .variant = "small numbers",
     .call = [](Caller) { return set_olt_auth_mode(1, 2, 5); },
     .exchanges = {{.type = 114, .request = "01000000 02000000 00*28 05000000 00*40"}}},
    {.operation = "get_olt_auth_mode",
     .call = [](Caller c) { return get_olt_auth_mode(0x11121314, 0x21222324, c[0]); },
     .exchanges = {{.type = 116, .request = "14131211 24232221 00*72", .reply = "80+40"}},
     .blocks = {{"auth_mode", kWord, "AA*4", "A4+4", "00*4"}},
     .results = Results::kAlwaysZero},

    entry_row<add_authallowed_mac, 3>(kAddMac, "three entries", kCleared3, "30+132"),
    entry_row<add_authallowed_mac, 1>(kAddMac, "one entry", kCleared1, "30+44"),
    entry_row<add_authallowed_mac, 0>(kAddMac, "no entry", kCleared0, ""),
    entry_row<add_authallowed_mac, -1>(kAddMac, "count -1", kClearedMinus1, ""),
    entry_row<add_authallowed_mac, kLow>(kAddMac, "low count", kClearedLow, ""),
    entry_row<delete_authallowed_mac, 3>(kDeleteMac, "three entries", kFresh3, "30+132"),
    entry_row<delete_authallowed_mac, 1>(kDeleteMac, "one entry", kFresh1, "30+44"),
    entry_row<delete_authallowed_mac, 0>(kDeleteMac, "no entry", kFresh0, ""),
    entry_row<delete_authallowed_mac, -1>(kDeleteMac, "count -1", kFreshMinus1, ""),
    entry_row<delete_authallowed_mac, kLow>(kDeleteMac, "low count", kFreshLow, ""),
    entry_row<add_authallowed_loid, 3>(kAddLoid, "three entries", kCleared3, "30+132"),
    entry_row<add_authallowed_loid, 1>(kAddLoid, "one entry", kCleared1, "30+44"),
    entry_row<add_authallowed_loid, 0>(kAddLoid, "no entry", kCleared0, ""),
    entry_row<add_authallowed_loid, -1>(kAddLoid, "count -1", kClearedMinus1, ""),
    entry_row<add_authallowed_loid, kLow>(kAddLoid, "low count", kClearedLow, ""),
    entry_row<delete_authallowed_loid, 3>(kDeleteLoid, "three entries", kFresh3, "30+132"),
    entry_row<delete_authallowed_loid, 1>(kDeleteLoid, "one entry", kFresh1, "30+44"),
    entry_row<delete_authallowed_loid, 0>(kDeleteLoid, "no entry", kFresh0, ""),
    entry_row<delete_authallowed_loid, -1>(kDeleteLoid, "count -1", kFreshMinus1, ""),
    entry_row<delete_authallowed_loid, kLow>(kDeleteLoid, "low count", kFreshLow, ""),
    entry_row<add_authallowed_mac_loid, 3>(kAddMacLoid, "three entries", kCleared3, "30+132"),
    entry_row<add_authallowed_mac_loid, 1>(kAddMacLoid, "one entry", kCleared1, "30+44"),
    entry_row<add_authallowed_mac_loid, 0>(kAddMacLoid, "no entry", kCleared0, ""),
    entry_row<add_authallowed_mac_loid, -1>(kAddMacLoid, "count -1", kClearedMinus1, ""),
    entry_row<add_authallowed_mac_loid, kLow>(kAddMacLoid, "low count", kClearedLow, ""),
    entry_row<delete_authallowed_mac_loid, 3>(kDeleteMacLoid, "three entries", kFresh3, "30+132"),
    entry_row<delete_authallowed_mac_loid, 1>(kDeleteMacLoid, "one entry", kFresh1, "30+44"),
    entry_row<delete_authallowed_mac_loid, 0>(kDeleteMacLoid, "no entry", kFresh0, ""),
    entry_row<delete_authallowed_mac_loid, -1>(kDeleteMacLoid, "count -1", kFreshMinus1, ""),
    entry_row<delete_authallowed_mac_loid, kLow>(kDeleteMacLoid, "low count", kFreshLow, ""),
    entry_row<delete_blocklist_mac, 3>(kDeleteBlocked, "three entries", kFresh3, "30+132"),
    entry_row<delete_blocklist_mac, 1>(kDeleteBlocked, "one entry", kFresh1, "30+44"),
    entry_row<delete_blocklist_mac, 0>(kDeleteBlocked, "no entry", kFresh0, ""),
    entry_row<delete_blocklist_mac, -1>(kDeleteBlocked, "count -1", kFreshMinus1, ""),
    entry_row<delete_blocklist_mac, kLow>(kDeleteBlocked, "low count", kFreshLow, ""),

    {.operation = "show_autmacmode_file_by_interface",
     .call =
         [](Caller c) { return show_autmacmode_file_by_interface(0x11121314, 0x21222324, c[0]); },
     .exchanges = {{.type = 115, .request = kListingOfInterface, .reply = kNamedAt48}},
     .blocks = {{"name", kAny, "AA*32", kName32}}},
    {.operation = "get_blocklist_file_byinteface",
     .call = [](Caller c) { return get_blocklist_file_byinteface(0x11121314, 0x21222324, c[0]); },
     .exchanges = {{.type = 37, .request = kListingOfInterface, .reply = kNamedAt48}},
     .blocks = {{"name", kAny, "AA*32", kName32}}},

    // ONU inventory.
    {.operation = "get_onulist_file_byinteface",
     .call = [](Caller c) { return get_onulist_file_byinteface(0x11121314, 0x21222324, c[0]); },
     .exchanges = {{.type = 35, .request = kListingOfInterface, .reply = kNamedAt48}},
     .blocks = {{"name", kAny, "AA*32", kName32}}},
    {.operation = "get_linklist_file_byinteface",
     .call = [](Caller c) { return get_linklist_file_byinteface(0x11121314, 0x21222324, c[0]); },
     .exchanges = {{.type = 36, .request = kListingOfInterface, .reply = kNamedAt48}},
     .blocks = {{"name", kAny, "AA*32", kName32}}},
    {.operation = "getonu_ont_basicinforfile",
     .call = [](Caller c) { return getonu_ont_basicinforfile(c[0], c[1]); },
     .exchanges = {{.type = 47, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "show_ont_runningconfig",
     .call = [](Caller c) { return show_ont_runningconfig(c[0], c[1]); },
     .exchanges = {{.type = 48, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "getonu_ont_opticalfile",
     .call = [](Caller c) { return getonu_ont_opticalfile(c[0], c[1]); },
     .exchanges = {{.type = 106, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "get_onu_basic_mac_byindex",
     .call = [](Caller c) { return get_onu_basic_mac_byindex(c[0]); },
     .exchanges = {{.type = 65, .request = kOnt, .sent_from = 0, .reply = "80+40"}},
     .blocks = {{"ont", kWord, kOnt, "10+28 9C+6 32+2 A4+4 38+48"}}},
    {.operation = "get_onu_basic_feature_f",
     .call =
         [](Caller c) { return get_onu_basic_feature_f(0x11121314, 0x21222324, 0x31323334, c[0]); },
     .exchanges = {{.type = 38,
                    .request = "14131211 24232221 34333231 01000000 00*72",
                    .reply = "80+48"}},
     .blocks = {{"feature", kWord, "AA*48", "80+48"}}},

    // ONU links and features.
    {.operation = "set_ont_p2p_function",
     .call = [](Caller) { return set_ont_p2p_function(0x01020304); },
     .exchanges = {{.type = 76, .request = "??*16 04030201 ??*12"}}},
    {.operation = "set_ponport_function",
     .call = [](Caller) { return set_ponport_function(0x01020304); },
     .exchanges = {{.type = 77, .request = "??*28 04030201"}}},
    {.operation = "set_ont_linkSecurityEncryption",
     .call = [](Caller) { return set_ont_linkSecurityEncryption(0x11121314, 0x21222324); },
     .exchanges = {{.type = 78, .request = "??*20 14131211 24232221 ??*4"}}},
    {.operation = "process_olt_global_paramter",
     .call = [](Caller c) { return process_olt_global_paramter(c[0]); },
     .exchanges = {{.type = 79, .request = "30+32", .sent_from = 0, .reply = "80+32"}},
     .blocks = {{"parameter", kWord, "30+32", "80+32"}}},
    {.operation = "set_ont_linkdba",
     .call = [](Caller c) { return set_ont_linkdba(c[0], c[1]); },
     .exchanges = {{.type = 54, .request = "10+88 A0+20", .reply = "C0+20"}},
     .blocks = {{"ont", kWord, kOnt}, {"dba", kWord, "A0+20", "A0+12 CC+8"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 3524,
                       .release_line = 3533}},
    {.operation = "tkonu_ont_default",
     .call = [](Caller c) { return tkonu_ont_default(c[0]); },
     .exchanges = {{.type = 169, .request = kOnt, .sent_from = 0}},
     .blocks = {{"ont", kWord, kOnt}}},
    {.operation = "tkonu_ont_reboot",
     .call = [](Caller c) { return tkonu_ont_reboot(c[0]); },
     .exchanges = {{.type = 168, .request = kOnt, .sent_from = 0}},
     .blocks = {{"ont", kWord, kOnt}}},
    {.operation = "ctconu_ont_reboot",
     .call = [](Caller c) { return ctconu_ont_reboot(c[0]); },
     .exchanges = {{.type = 107, .request = kOnt, .sent_from = 0}},
     .blocks = {{"ont", kWord, kOnt}}},
    {.operation = "clear_onu_node",
     .call = [](Caller c) { return clear_onu_node(c[0]); },
     .exchanges = {{.type = 43, .request = kOnt, .sent_from = 0}},
     .blocks = {{"ont", kWord, kOnt}}},
    {.operation = "delete_ont_description",
     .call = [](Caller c) { return delete_ont_description(c[0]); },
     .exchanges = {{.type = 45, .request = kOnt, .sent_from = 0}},
     .blocks = {{"ont", kWord, kOnt}}},
    {.operation = "set_ont_usertraffic",
     .call = [](Caller c) { return set_ont_usertraffic(c[0]); },
     .exchanges = {{.type = 46, .request = kOnt, .sent_from = 0}},
     .blocks = {{"ont", kWord, kOnt}}},
    {.operation = "set_onu_basic_feature_force",
     .call =
         [](Caller c) {
           return set_onu_basic_feature_force(0x11121314, 0x21222324, 0x31323334, c[0]);
         },
     .exchanges = {{.type = 49, .request = "14131211 24232221 34333231 01000000 ~~*72 A0+48"}},
     .blocks = {{"feature", kWord, "A0+48"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 3785,
                       .release_line = 3804,
                       .log_line = 3789,
                       .log = "less of momery"}},
    {.operation = "set_onu_basic_feature_f",
     .call =
         [](Caller c) {
           return set_onu_basic_feature_f(0x11121314, 0x21222324, 0x31323334, c[0], c[1]);
         },
     .exchanges = {{.type = 42,
                    .request = "14131211 24232221 34333231 01000000 ~~*12 001122334455 ~~*54 "
                               "A0+48"}},
     .blocks = {{"feature", kWord, "A0+48"}, {"mac", kAny, "001122334455"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 3821,
                       .release_line = 3841,
                       .log_line = 3825,
                       .log = "less of momery"}},
    {.operation = "add_ont_description",
     .call = [](Caller c) { return add_ont_description(c[0], c[1]); },
     .exchanges = {{.type = 44, .request = "10+12 01000000 ~~*72 A0+48"}},
     .blocks = {{"target", kWord, "10+12"}, {"description", kWord, "A0+48"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 3965,
                       .release_line = 3984,
                       .log_line = 3969,
                       .log = "less of momery"}},

    // ONT UNI ports.
    {.operation = "get_ont_port_alarmsetting",
     .call = [](Caller c) { return get_ont_port_alarmsetting(c[0], c[1]); },
     .exchanges = {{.type = 104, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "set_ont_port_alarmsetting",
     .call = [](Caller c) { return set_ont_port_alarmsetting(c[0], 0x01020304); },
     .exchanges = {{.type = 105, .request = "10+88 04030201"}},
     .blocks = {{"ont", kWord, kOnt}},
     .results = Results::kFlat,
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 2761,
                       .release_line = 2769}},
    {.operation = "set_ont_port_loopback",
     .call = [](Caller c) { return set_ont_port_loopback(c[0], 0x01020304); },
     .exchanges = {{.type = 117, .request = "10+88 04030201"}},
     .blocks = {{"ont", kWord, kOnt}},
     .results = Results::kFlat,
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 2788,
                       .release_line = 2796}},
    {.operation = "show_ont_port_vlanmode",
     .call = [](Caller c) { return show_ont_port_vlanmode(c[0], c[1]); },
     .exchanges = {{.type = 128, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "set_ont_port_vlanmode",
     .call = [](Caller c) { return set_ont_port_vlanmode(c[0], c[1]); },
     .exchanges = {{.type = 129, .request = "10+88 A0+36"}},
     .blocks = {{"ont", kWord, kOnt}, {"mode", kAny, "A0+36"}},
     .request_block = {.out_of_memory = OutOfMemory::kZeroAndRelease,
                       .allocation_line = 2839,
                       .release_line = 2848}},
    {.operation = "get_ont_port_downrate",
     .call = [](Caller c) { return get_ont_port_downrate(c[0], c[1]); },
     .exchanges = {{.type = 119, .request = kOnt, .sent_from = 0, .reply = "80+12"}},
     .blocks = {{"ont", kWord, kOnt}, {"rates", kWord, "AA*12", "80+12"}},
     .results = Results::kFlat},
    {.operation = "set_ont_port_downrate",
     .call = [](Caller c) { return set_ont_port_downrate(c[0], c[1]); },
     .exchanges = {{.type = 118, .request = "10+88 A0+12"}},
     .blocks = {{"ont", kWord, kOnt}, {"rates", kWord, "A0+12"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 3048,
                       .release_line = 3056}},
    {.operation = "set_ont_port_basicinfo",
     .call = [](Caller c) { return set_ont_port_basicinfo(c[0], c[1]); },
     .exchanges = {{.type = 132, .request = "10+88 A0+44"}},
     .blocks = {{"ont", kWord, kOnt}, {"info", kWord, "A0+44"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 3067,
                       .release_line = 3075}},
    {.operation = "set_ont_port_description",
     .call = [](Caller c) { return set_ont_port_description(c[0], c[1]); },
     .exchanges = {{.type = 84, .request = "10+88 A0+44"}},
     .blocks = {{"ont", kWord, kOnt}, {"description", kWord, "A0+44"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 3085,
                       .release_line = 3093}},
    {.operation = "show_ont_port_basicinfo",
     .call = [](Caller c) { return show_ont_port_basicinfo(c[0], c[1]); },
     .exchanges = {{.type = 133, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "set_ont_port_policying",
     .call = [](Caller c) { return set_ont_port_policying(c[0], c[1]); },
     .exchanges = {{.type = 130, .request = "10+88 A0+16"}},
     .blocks = {{"ont", kWord, kOnt}, {"policing", kWord, "A0+16"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne,
                       .allocation_line = 3551,
                       .release_line = 3559}},
    {.operation = "get_ont_port_policying",
     .call = [](Caller c) { return get_ont_port_policying(c[0], c[1]); },
     .exchanges = {{.type = 131, .request = kOnt, .sent_from = 0, .reply = "80+16"}},
     .blocks = {{"ont", kWord, kOnt}, {"policing", kWord, "AA*16", "80+16"}},
     .results = Results::kFlat},

    // ONT multicast.
    {.operation = "get_ont_port_muticastgrounp",
     .call = [](Caller c) { return get_ont_port_muticastgrounp(c[0], c[1]); },
     .exchanges = {{.type = 120, .request = kOnt, .sent_from = 0, .reply = "80+4"}},
     .blocks = {{"ont", kWord, kOnt}, {"value", kAny, "AA*4", "80+4"}},
     .results = Results::kFlat},
    {.operation = "set_ont_port_muticastgrounp",
     .call = [](Caller c) { return set_ont_port_muticastgrounp(c[0], 0x01020304); },
     .exchanges = {{.type = 121, .request = "10+88 04030201"}},
     .blocks = {{"ont", kWord, kOnt}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    {.operation = "show_ont_port_muticastvlan",
     .call = [](Caller c) { return show_ont_port_muticastvlan(c[0], c[1]); },
     .exchanges = {{.type = 122, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "clear_ont_port_muticastvlan",
     .call = [](Caller c) { return clear_ont_port_muticastvlan(c[0]); },
     .exchanges = {{.type = 123, .request = kOnt, .sent_from = 0}},
     .blocks = {{"ont", kWord, kOnt}}},
    {.operation = "add_ont_port_muticastvlan",
     .variant = "three VLANs",
     .call = [](Caller c) { return add_ont_port_muticastvlan(c[0], 3, c[1]); },
     .exchanges = {{.type = 124, .request = "10+88 A0+6"}},
     .blocks = {{"ont", kWord, kOnt}, {"vlans", kHalfWord, "A0+6"}},
     .request_block = {.out_of_memory = OutOfMemory::kZeroAndRelease}},
    {.operation = "add_ont_port_muticastvlan",
     .variant = "one VLAN",
     .call = [](Caller c) { return add_ont_port_muticastvlan(c[0], 1, c[1]); },
     .exchanges = {{.type = 124, .request = "10+88 A0+2"}},
     .blocks = {{"ont", kWord, kOnt}, {"vlans", kHalfWord, "A0+2"}},
     .request_block = {.out_of_memory = OutOfMemory::kZeroAndRelease}},
    {.operation = "add_ont_port_muticastvlan",
     .variant = "no VLAN",
     .call = [](Caller c) { return add_ont_port_muticastvlan(c[0], 0, c[1]); },
     .exchanges = {{.type = 124, .request = "10+88"}},
     .blocks = {{"ont", kWord, kOnt}, {"vlans", kHalfWord, ""}},
     .request_block = {.out_of_memory = OutOfMemory::kZeroAndRelease}},
    {.operation = "delete_ont_port_muticastvlan",
     .variant = "three VLANs",
     .call = [](Caller c) { return delete_ont_port_muticastvlan(c[0], 3, c[1]); },
     .exchanges = {{.type = 125, .request = "10+88 A0+6"}},
     .blocks = {{"ont", kWord, kOnt}, {"vlans", kHalfWord, "A0+6"}},
     .request_block = {.out_of_memory = OutOfMemory::kZeroAndRelease}},
    {.operation = "delete_ont_port_muticastvlan",
     .variant = "one VLAN",
     .call = [](Caller c) { return delete_ont_port_muticastvlan(c[0], 1, c[1]); },
     .exchanges = {{.type = 125, .request = "10+88 A0+2"}},
     .blocks = {{"ont", kWord, kOnt}, {"vlans", kHalfWord, "A0+2"}},
     .request_block = {.out_of_memory = OutOfMemory::kZeroAndRelease}},
    {.operation = "delete_ont_port_muticastvlan",
     .variant = "no VLAN",
     .call = [](Caller c) { return delete_ont_port_muticastvlan(c[0], 0, c[1]); },
     .exchanges = {{.type = 125, .request = "10+88"}},
     .blocks = {{"ont", kWord, kOnt}, {"vlans", kHalfWord, ""}},
     .request_block = {.out_of_memory = OutOfMemory::kZeroAndRelease}},
    {.operation = "show_ont_port_muticaststrip",
     .call = [](Caller c) { return show_ont_port_muticaststrip(c[0], c[1]); },
     .exchanges = {{.type = 126, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "set_ont_port_muticastrip",
     .call = [](Caller c) { return set_ont_port_muticastrip(c[0], c[1]); },
     .exchanges = {{.type = 127, .request = "10+88 A0+34"}},
     .blocks = {{"ont", kWord, kOnt}, {"strip", kAny, "A0+34"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    {.operation = "show_ont_muticast_group",
     .call = [](Caller c) { return show_ont_muticast_group(c[0], c[1]); },
     .exchanges = {{.type = 148, .request = kOnt, .sent_from = 0, .reply = kNamedAt0}},
     .blocks = {{"ont", kWord, kOnt}, {"name", kAny, "AA*32", kName32}}},
    {.operation = "set_ont_fastleave",
     .call = [](Caller c) { return set_ont_fastleave(c[0], 0x01020304); },
     .exchanges = {{.type = 154, .request = "10+88 04030201"}},
     .blocks = {{"ont", kWord, kOnt}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
};

}  // namespace

Table pon_table() {
  return {kRows, sizeof kRows / sizeof kRows[0]};
}

}  // namespace olt::test
