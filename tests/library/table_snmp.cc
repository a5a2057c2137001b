#include "oltmgmt.h"
#include "tests/library/tables.h"

namespace olt::test {

namespace {

constexpr Alignment kAny = Alignment::kAny;
constexpr Alignment kWord = Alignment::kWord;
constexpr Alignment kPointer = Alignment::kPointer;

constexpr const char *kOnt = "10+88";
/// The ONT record at the head of a reply.
constexpr const char *kOntBack = "80+88";

/// Returns a block as long as the reply itself says.
constexpr Row counted_block(const char *operation, const char *variant, int32_t (*call)(Caller),
                            uint32_t type, const char *reply, const char *block) {
  return {.operation = operation,
          .variant = variant,
          .call = call,
          .exchanges = {{.type = type, .request = kOnt, .sent_from = 0, .reply = reply}},
          .blocks = {kept("ont", kWord, kOnt), filled("info", kPointer, "&-", "&=")},
          .returned_block = {.out_of_memory = OutOfMemory::kNullAnswer, .bytes = block}};
}

constexpr Row onu_global_info(const char *variant, const char *reply, const char *block) {
  return counted_block(
      "process_snmp_onuglobalinfo", variant,
      [](Caller c) { return process_snmp_onuglobalinfo(c[0], c[1]); }, 87, reply, block);
}

constexpr Row hgu_wan_info(const char *variant, const char *reply, const char *block) {
  return counted_block(
      "process_snmp_hguwaninfo", variant,
      [](Caller c) { return process_snmp_hguwaninfo(c[0], c[1]); }, 93, reply, block);
}

// Rows that read into the ONT record show that it is written before the other record.
constexpr Row kRows[] = {
    // Tables of ONUs and their services.
    {.operation = "process_snmp_onubasicinfo",
     .call = [](Caller c) { return process_snmp_onubasicinfo(c[0], c[1]); },
     .exchanges = {{.type = 85, .request = "10+88 70+148", .reply = "A5+148"}},
     .blocks = {kept("ont", kWord, kOnt), filled("info", kWord, "70+148", "A5+148")},
     .request_block = {.out_of_memory = OutOfMemory::kZero}},
    {.operation = "process_snmp_linkbasicinfo",
     .call = [](Caller c) { return process_snmp_linkbasicinfo(c[0], c[1]); },
     .exchanges = {{.type = 86, .request = "10+88 70+148", .reply = "A5+148"}},
     .blocks = {kept("ont", kWord, kOnt), filled("info", kWord, "70+148", "A5+148")},
     .request_block = {.out_of_memory = OutOfMemory::kZero}},
    onu_global_info("5 bytes after the head", "80+56 05000000 C0+5", "80+56 05000000 C0+5"),
    onu_global_info("nothing after the head", "80+56 00000000", "80+56 00000000"),
    onu_global_info("40,000 bytes after the head", "80+56 409C0000 C1+40000",
                    "80+56 409C0000 C1+40000"),
    onu_global_info("count that wraps", "80+56 FFFFFFFF", "80+56 FFFFFF"),
    onu_global_info("count that wraps to 28 bytes", "80+56 E0FFFFFF", "80+28"),
    onu_global_info("count that wraps to nothing", "80+56 C4FFFFFF", ""),
    {.operation = "process_snmp_iadinfo",
     .call = [](Caller c) { return process_snmp_iadinfo(c[0], c[1]); },
     .exchanges = {{.type = 88, .request = kOnt, .sent_from = 0, .reply = "A5+92"}},
     .blocks = {kept("ont", kWord, kOnt), filled("info", kWord, "AA*92", "A5+92")}},
    {.operation = "process_snmp_onusipparaminfo",
     .call = [](Caller c) { return process_snmp_onusipparaminfo(c[0], c[1]); },
     .exchanges = {{.type = 89, .request = kOnt, .sent_from = 0, .reply = "80+88 25+45"}},
     .blocks = {filled("ont", kWord, kOnt, kOntBack), filled("param", kAny, "AA*45", "25+45")}},
    {.operation = "process_snmp_onusipparaminfo",
     .variant = "into the ONT record",
     .call = [](Caller c) { return process_snmp_onusipparaminfo(c[0], c[0]); },
     .exchanges = {{.type = 89, .request = kOnt, .sent_from = 0, .reply = "80+88 25+45"}},
     .blocks = {filled("ont", kWord, kOnt, "25+45 AD+43")}},
    {.operation = "process_snmp_onusipuserinfo",
     .call = [](Caller c) { return process_snmp_onusipuserinfo(c[0], c[1]); },
     .exchanges = {{.type = 90, .request = kOnt, .sent_from = 0, .reply = "A5+80"}},
     .blocks = {kept("ont", kWord, kOnt), filled("user", kWord, "AA*80", "A5+80")}},
    {.operation = "process_snmpvoip_faxmode",
     .call = [](Caller c) { return process_snmpvoip_faxmode(c[0], c[1]); },
     .exchanges = {{.type = 91, .request = kOnt, .sent_from = 0, .reply = "80+88 2526"}},
     .blocks = {filled("ont", kWord, kOnt, kOntBack), filled("fax_mode", kAny, "AA*2", "2526")}},
    {.operation = "process_snmpvoip_faxmode",
     .variant = "into the ONT record",
     .call = [](Caller c) { return process_snmpvoip_faxmode(c[0], c[0]); },
     .exchanges = {{.type = 91, .request = kOnt, .sent_from = 0, .reply = "80+88 2526"}},
     .blocks = {filled("ont", kWord, kOnt, "2526 82+86")}},
    {.operation = "process_voip_linestatus",
     .call = [](Caller c) { return process_voip_linestatus(c[0], c[1]); },
     .exchanges = {{.type = 92, .request = kOnt, .sent_from = 0, .reply = "A5+32"}},
     .blocks = {kept("ont", kWord, kOnt), filled("line_status", kWord, "AA*32", "A5+32")}},
    hgu_wan_info("5 bytes after the head", "80+84 05000000 E0+5", "80+84 05000000 E0+5"),
    hgu_wan_info("nothing after the head", "80+84 00000000", "80+84 00000000"),
    hgu_wan_info("40,000 bytes after the head", "80+84 409C0000 E1+40000",
                 "80+84 409C0000 E1+40000"),
    hgu_wan_info("count that wraps", "80+84 FFFFFFFF", "80+84 FFFFFF"),
    hgu_wan_info("count that wraps to 28 bytes", "80+84 C4FFFFFF", "80+28"),
    hgu_wan_info("count that wraps to nothing", "80+84 A8FFFFFF", ""),
    {.operation = "process_snmp_hguvoipbandinginfo",
     .call = [](Caller c) { return process_snmp_hguvoipbandinginfo(c[0], c[1]); },
     .exchanges = {{.type = 94, .request = kOnt, .sent_from = 0, .reply = "A5+88"}},
     .blocks = {kept("ont", kWord, kOnt), filled("binding", kWord, "AA*88", "A5+88")}},
    {.operation = "process_onu_portinfo",
     .call = [](Caller c) { return process_onu_portinfo(c[0], c[1]); },
     .exchanges = {{.type = 95, .request = kOnt, .sent_from = 0, .reply = "A5+68"}},
     .blocks = {kept("ont", kWord, kOnt), filled("info", kWord, "AA*68", "A5+68")}},
    {.operation = "process_onu_portpolicying",
     .call = [](Caller c) { return process_onu_portpolicying(c[0], c[1]); },
     .exchanges = {{.type = 96, .request = kOnt, .sent_from = 0, .reply = "80+88 25+16"}},
     .blocks = {filled("ont", kWord, kOnt, kOntBack), filled("policing", kWord, "AA*16", "25+16")}},
    {.operation = "process_onu_portpolicying",
     .variant = "into the ONT record",
     .call = [](Caller c) { return process_onu_portpolicying(c[0], c[0]); },
     .exchanges = {{.type = 96, .request = kOnt, .sent_from = 0, .reply = "80+88 25+16"}},
     .blocks = {filled("ont", kWord, kOnt, "25+16 90+72")}},
    {.operation = "process_onu_portdownrate",
     .call = [](Caller c) { return process_onu_portdownrate(c[0], c[1]); },
     .exchanges = {{.type = 97, .request = kOnt, .sent_from = 0, .reply = "80+88 25+12"}},
     .blocks = {filled("ont", kWord, kOnt, kOntBack), filled("rates", kWord, "AA*12", "25+12")}},
    {.operation = "process_onu_portdownrate",
     .variant = "into the ONT record",
     .call = [](Caller c) { return process_onu_portdownrate(c[0], c[0]); },
     .exchanges = {{.type = 97, .request = kOnt, .sent_from = 0, .reply = "80+88 25+12"}},
     .blocks = {filled("ont", kWord, kOnt, "25+12 8C+76")}},
    {.operation = "process_onu_portvlanmode",
     .call = [](Caller c) { return process_onu_portvlanmode(c[0], c[1]); },
     .exchanges = {{.type = 98, .request = kOnt, .sent_from = 0, .reply = "80+88 25+36"}},
     .blocks = {filled("ont", kWord, kOnt, kOntBack), filled("mode", kAny, "AA*36", "25+36")}},
    {.operation = "process_onu_portvlanmode",
     .variant = "into the ONT record",
     .call = [](Caller c) { return process_onu_portvlanmode(c[0], c[0]); },
     .exchanges = {{.type = 98, .request = kOnt, .sent_from = 0, .reply = "80+88 25+36"}},
     .blocks = {filled("ont", kWord, kOnt, "25+36 A4+52")}},
    {.operation = "process_onu_portstrip",
     .call = [](Caller c) { return process_onu_portstrip(c[0], c[1]); },
     .exchanges = {{.type = 99, .request = "10+88 C1+34", .reply = "80+88 25+36"}},
     .blocks = {filled("ont", kWord, kOnt, kOntBack), filled("strip", kAny, "C1+36", "25+36")},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    {.operation = "process_onu_portstrip",
     .variant = "into the ONT record",
     .call = [](Caller c) { return process_onu_portstrip(c[0], c[0]); },
     .exchanges = {{.type = 99, .request = "10+88 10+34", .reply = "80+88 25+36"}},
     .blocks = {filled("ont", kWord, kOnt, "25+36 A4+52")},
     .request_block = {.out_of_memory = OutOfMemory::kMinusOne}},
    {.operation = "process_onu_portmuticastvlan",
     .call = [](Caller c) { return process_onu_portmuticastvlan(c[0], c[1]); },
     .exchanges = {{.type = 100, .request = kOnt, .sent_from = 0, .reply = "80+88 25+129"}},
     .blocks = {filled("ont", kWord, kOnt, kOntBack), filled("vlans", kAny, "AA*129", "25+129")}},
    {.operation = "process_onu_portmuticastvlan",
     .variant = "into the ONT record",
     .call = [](Caller c) { return process_onu_portmuticastvlan(c[0], c[0]); },
     .exchanges = {{.type = 100, .request = kOnt, .sent_from = 0, .reply = "80+88 25+129"}},
     .blocks = {filled("ont", kWord, "10+129", "25+129")}},
    {.operation = "process_onu_portmuticastmaxgroup",
     .call = [](Caller c) { return process_onu_portmuticastmaxgroup(c[0]); },
     .exchanges = {{.type = 101, .request = kOnt, .sent_from = 0, .reply = kOntBack}},
     .blocks = {filled("ont", kWord, kOnt, kOntBack)}},
    {.operation = "process_snmp_iptv_profile",
     .call = [](Caller c) { return process_snmp_iptv_profile(c[0]); },
     .exchanges = {{.type = 164, .request = "10+40", .sent_from = 0, .reply = "80+40"}},
     .blocks = {filled("row", kWord, "10+40", "80+40")}},
    {.operation = "process_snmp_iptv_profile_channel",
     .call = [](Caller c) { return process_snmp_iptv_profile_channel(c[0]); },
     .exchanges = {{.type = 165, .request = "10+56", .sent_from = 0, .reply = "80+56"}},
     .blocks = {filled("row", kWord, "10+56", "80+56")}},

    // Tables of the OLT.
    {.operation = "process_snmp_vlan_id",
     .call = [](Caller c) { return process_snmp_vlan_id(c[0]); },
     .exchanges = {{.type = 73, .request = "10+52", .sent_from = 0, .reply = "80+52"}},
     .blocks = {filled("row", kWord, "10+52", "80+52")}},
    {.operation = "process_snmp_oltbasicport",
     .call = [](Caller c) { return process_snmp_oltbasicport(c[0]); },
     .exchanges = {{.type = 75, .request = "10+48", .sent_from = 0, .reply = "80+48"}},
     .blocks = {filled("row", kWord, "10+48", "80+48")}},
    {.operation = "process_snmp_oltauth",
     .call = [](Caller c) { return process_snmp_oltauth(c[0]); },
     .exchanges = {{.type = 80, .request = "10+60", .sent_from = 0, .reply = "80+60"}},
     .blocks = {filled("row", kWord, "10+60", "80+60")}},
};

}  // namespace

Table snmp_table() {
  return {kRows, sizeof kRows / sizeof kRows[0]};
}

}  // namespace olt::test
