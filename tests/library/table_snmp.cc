#include "oltmgmt.h"
#include "tests/library/tables.h"

namespace olt::test {

namespace {

constexpr Alignment kAny = Alignment::kAny;
constexpr Alignment kWord = Alignment::kWord;
constexpr Alignment kPointer = Alignment::kPointer;

constexpr const char *kTarget = "10+88";
constexpr const char *kTargetBack = "80+88";

template <auto kOperation>
int32_t read_row(Caller c) {
  return kOperation(c[0], c[1]);
}

/// Reads into a part of the target itself, which shows that the target is written first.
template <auto kOperation>
int32_t read_into_target(Caller c) {
  return kOperation(c[0], c[0]);
}

constexpr Row into_target(const char *operation, int32_t (*call)(Caller), uint32_t type,
                          const char *reply, const char *target) {
  return {.operation = operation,
          .variant = "into the target",
          .call = call,
          .exchanges = {{.type = type, .request = kTarget, .sent_from = 0, .reply = reply}},
          .blocks = {{"target", kWord, kTarget, target}}};
}

/// Hands over the start of the reply, which counts its bytes itself.
template <auto kOperation>
constexpr Row counted_block(const char *operation, const char *variant, uint32_t type,
                            const char *reply, const char *block) {
  return {.operation = operation,
          .variant = variant,
          .call = read_row<kOperation>,
          .exchanges = {{.type = type, .request = kTarget, .sent_from = 0, .reply = reply}},
          .blocks = {{"target", kWord, kTarget}, {"out_block", kPointer, "&-", "&="}},
          .handed_over = {.out_of_memory = OutOfMemory::kNullAnswer, .bytes = block}};
}

constexpr Row onu_global_info(const char *variant, const char *reply, const char *block) {
  return counted_block<process_snmp_onuglobalinfo>("process_snmp_onuglobalinfo", variant, 87, reply,
                                                   block);
}

constexpr Row hgu_wan_info(const char *variant, const char *reply, const char *block) {
  return counted_block<process_snmp_hguwaninfo>("process_snmp_hguwaninfo", variant, 93, reply,
                                                block);
}

constexpr Row kRows[] = {
    // Tables of ONUs and their services.
    {.operation = "process_snmp_onubasicinfo",
     .call = read_row<process_snmp_onubasicinfo>,
     .exchanges = {{.type = 85, .request = "10+88 70+148", .reply = "A5+148"}},
     .blocks = {{"target", kWord, kTarget}, {"info", kWord, "70+148", "A5+148"}},
     .request_block = {.out_of_memory = OutOfMemory::kZero}},
    {.operation = "process_snmp_linkbasicinfo",
     .call = read_row<process_snmp_linkbasicinfo>,
     .exchanges = {{.type = 86, .request = "10+88 70+148", .reply = "A5+148"}},
     .blocks = {{"target", kWord, kTarget}, {"info", kWord, "70+148", "A5+148"}},
     .request_block = {.out_of_memory = OutOfMemory::kZero}},
    onu_global_info("5 bytes behind the head", "80+56 05000000 C0+5", "80+56 05000000 C0+5"),
    onu_global_info("nothing behind the head", "80+56 00000000", "80+56 00000000"),
    onu_global_info("40,000 bytes behind the head", "80+56 409C0000 C1+40000",
                    "80+56 409C0000 C1+40000"),
    onu_global_info("count that wraps", "80+56 FFFFFFFF", "80+56 FFFFFF"),
    onu_global_info("count that wraps to 28 bytes", "80+56 E0FFFFFF", "80+28"),
    onu_global_info("count that wraps to nothing", "80+56 C4FFFFFF", ""),
    {.operation = "process_snmp_iadinfo",
     .call = read_row<process_snmp_iadinfo>,
     .exchanges = {{.type = 88, .request = kTarget, .sent_from = 0, .reply = "A5+92"}},
     .blocks = {{"target", kWord, kTarget}, {"out", kWord, "AA*92", "A5+92"}}},
    {.operation = "process_snmp_onusipparaminfo",
     .call = read_row<process_snmp_onusipparaminfo>,
     .exchanges = {{.type = 89, .request = kTarget, .sent_from = 0, .reply = "80+88 25+45"}},
     .blocks = {{"target", kWord, kTarget, kTargetBack}, {"out", kAny, "AA*45", "25+45"}}},
    into_target("process_snmp_onusipparaminfo", read_into_target<process_snmp_onusipparaminfo>, 89,
                "80+88 25+45", "25+45 AD+43"),
    {.operation = "process_snmp_onusipuserinfo",
     .call = read_row<process_snmp_onusipuserinfo>,
     .exchanges = {{.type = 90, .request = kTarget, .sent_from = 0, .reply = "A5+80"}},
     .blocks = {{"target", kWord, kTarget}, {"out", kWord, "AA*80", "A5+80"}}},
    {.operation = "process_snmpvoip_faxmode",
     .call = read_row<process_snmpvoip_faxmode>,
     .exchanges = {{.type = 91, .request = kTarget, .sent_from = 0, .reply = "80+88 2526"}},
     .blocks = {{"target", kWord, kTarget, kTargetBack}, {"out", kAny, "AA*2", "2526"}}},
    into_target("process_snmpvoip_faxmode", read_into_target<process_snmpvoip_faxmode>, 91,
                "80+88 2526", "2526 82+86"),
    {.operation = "process_voip_linestatus",
     .call = read_row<process_voip_linestatus>,
     .exchanges = {{.type = 92, .request = kTarget, .sent_from = 0, .reply = "A5+32"}},
     .blocks = {{"target", kWord, kTarget}, {"out", kWord, "AA*32", "A5+32"}}},
    hgu_wan_info("5 bytes behind the head", "80+84 05000000 E0+5", "80+84 05000000 E0+5"),
    hgu_wan_info("nothing behind the head", "80+84 00000000", "80+84 00000000"),
    hgu_wan_info("40,000 bytes behind the head", "80+84 409C0000 E1+40000",
                 "80+84 409C0000 E1+40000"),
    hgu_wan_info("count that wraps", "80+84 FFFFFFFF", "80+84 FFFFFF"),
    hgu_wan_info("count that wraps to 28 bytes", "80+84 C4FFFFFF", "80+28"),
    hgu_wan_info("count that wraps to nothing", "80+84 A8FFFFFF", ""),
    {.operation = "process_snmp_hguvoipbandinginfo",
     .call = read_row<process_snmp_hguvoipbandinginfo>,
     .exchanges = {{.type = 94, .request = kTarget, .sent_from = 0, .reply = "A5+88"}},
     .blocks = {{"target", kWord, kTarget}, {"out", kWord, "AA*88", "A5+88"}}},
    {.operation = "process_onu_portinfo",
     .call = read_row<process_onu_portinfo>,
     .exchanges = {{.type = 95, .request = kTarget, .sent_from = 0, .reply = "A5+68"}},
     .blocks = {{"target", kWord, kTarget}, {"out", kWord, "AA*68", "A5+68"}}},
    {.operation = "process_onu_portpolicying",
     .call = read_row<process_onu_portpolicying>,
     .exchanges = {{.type = 96, .request = kTarget, .sent_from = 0, .reply = "80+88 25+16"}},
     .blocks = {{"target", kWord, kTarget, kTargetBack}, {"out", kWord, "AA*16", "25+16"}}},
    into_target("process_onu_portpolicying", read_into_target<process_onu_portpolicying>, 96,
                "80+88 25+16", "25+16 90+72"),
    {.operation = "process_onu_portdownrate",
     .call = read_row<process_onu_portdownrate>,
     .exchanges = {{.type = 97, .request = kTarget, .sent_from = 0, .reply = "80+88 25+12"}},
     .blocks = {{"target", kWord, kTarget, kTargetBack}, {"out", kWord, "AA*12", "25+12"}}},
    into_target("process_onu_portdownrate", read_into_target<process_onu_portdownrate>, 97,
                "80+88 25+12", "25+12 8C+76"),
    {.operation = "process_onu_portvlanmode",
     .call = read_row<process_onu_portvlanmode>,
     .exchanges = {{.type = 98, .request = kTarget, .sent_from = 0, .reply = "80+88 25+36"}},
     .blocks = {{"target", kWord, kTarget, kTargetBack}, {"out", kAny, "AA*36", "25+36"}}},
    into_target("process_onu_portvlanmode", read_into_target<process_onu_portvlanmode>, 98,
                "80+88 25+36", "25+36 A4+52"),
    {.operation = "process_onu_portstrip",
     .call = read_row<process_onu_portstrip>,
     .exchanges = {{.type = 99, .request = "10+88 C1+34", .reply = "80+88 25+36"}},
     .blocks = {{"target", kWord, kTarget, kTargetBack}, {"strip", kAny, "C1+36", "25+36"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    {.operation = "process_onu_portstrip",
     .variant = "into the target",
     .call = read_into_target<process_onu_portstrip>,
     .exchanges = {{.type = 99, .request = "10+88 10+34", .reply = "80+88 25+36"}},
     .blocks = {{"target", kWord, kTarget, "25+36 A4+52"}},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    {.operation = "process_onu_portmuticastvlan",
     .call = read_row<process_onu_portmuticastvlan>,
     .exchanges = {{.type = 100, .request = kTarget, .sent_from = 0, .reply = "80+88 25+129"}},
     .blocks = {{"target", kWord, kTarget, kTargetBack}, {"out", kAny, "AA*129", "25+129"}}},
    {.operation = "process_onu_portmuticastvlan",
     .variant = "into the target",
     .call = read_into_target<process_onu_portmuticastvlan>,
     .exchanges = {{.type = 100, .request = kTarget, .sent_from = 0, .reply = "80+88 25+129"}},
     .blocks = {{"target", kWord, "10+129", "25+129"}}},
    {.operation = "process_onu_portmuticastmaxgroup",
     .call = [](Caller c) { return process_onu_portmuticastmaxgroup(c[0]); },
     .exchanges = {{.type = 101, .request = kTarget, .sent_from = 0, .reply = kTargetBack}},
     .blocks = {{"target", kWord, kTarget, kTargetBack}}},
    {.operation = "process_snmp_iptv_profile",
     .call = [](Caller c) { return process_snmp_iptv_profile(c[0]); },
     .exchanges = {{.type = 164, .request = "10+40", .sent_from = 0, .reply = "80+40"}},
     .blocks = {{"row", kWord, "10+40", "80+40"}}},
    {.operation = "process_snmp_iptv_profile_channel",
     .call = [](Caller c) { return process_snmp_iptv_profile_channel(c[0]); },
     .exchanges = {{.type = 165, .request = "10+56", .sent_from = 0, .reply = "80+56"}},
     .blocks = {{"row", kWord, "10+56", "80+56"}}},

    // Tables of the OLT.
    {.operation = "process_snmp_vlan_id",
     .call = [](Caller c) { return process_snmp_vlan_id(c[0]); },
     .exchanges = {{.type = 73, .request = "10+52", .sent_from = 0, .reply = "80+52"}},
     .blocks = {{"row", kWord, "10+52", "80+52"}}},
    {.operation = "process_snmp_oltbasicport",
     .call = [](Caller c) { return process_snmp_oltbasicport(c[0]); },
     .exchanges = {{.type = 75, .request = "10+48", .sent_from = 0, .reply = "80+48"}},
     .blocks = {{"row", kWord, "10+48", "80+48"}}},
    {.operation = "process_snmp_oltauth",
     .call = [](Caller c) { return process_snmp_oltauth(c[0]); },
     .exchanges = {{.type = 80, .request = "10+60", .sent_from = 0, .reply = "80+60"}},
     .blocks = {{"row", kWord, "10+60", "80+60"}}},
};

}  // namespace

Table snmp_table() {
  return {kRows, sizeof kRows / sizeof kRows[0]};
}

}  // namespace olt::test
