#include "cli/walk/readers.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "catalog/catalog.h"
#include "cli/text/error.h"

namespace olt::cli {

namespace {

constexpr const char *kOnus = "process_snmp_onusipparaminfo";
constexpr const char *kVoiceLines = "process_snmpvoip_faxmode";
constexpr const char *kUniPorts = "process_onu_portmuticastmaxgroup";

constexpr Reader kReaders[] = {
    {"process_snmp_onubasicinfo", kOnus},
    {"process_snmp_linkbasicinfo", kOnus},
    {"process_snmp_onuglobalinfo", kOnus},
    {"process_snmp_iadinfo", kOnus},
    {"process_snmp_onusipparaminfo", "process_snmp_onusipparaminfo"},
    {"process_snmp_onusipuserinfo", kVoiceLines, "line"},
    {"process_snmpvoip_faxmode", "process_snmpvoip_faxmode", "line"},
    {"process_voip_linestatus", kVoiceLines, "line"},
    {"process_snmp_hguwaninfo", kOnus},
    {"process_snmp_hguvoipbandinginfo", kOnus},
    {"process_onu_portinfo", kUniPorts, "port"},
    {"process_onu_portpolicying", "process_onu_portpolicying", "port"},
    {"process_onu_portdownrate", "process_onu_portdownrate", "port"},
    {"process_onu_portvlanmode", "process_onu_portvlanmode", "port"},
    {"process_onu_portstrip", "process_onu_portstrip", "port"},
    {"process_onu_portmuticastvlan", "process_onu_portmuticastvlan", "port"},
    {"process_onu_portmuticastmaxgroup", "process_onu_portmuticastmaxgroup", "port"},
    {"process_snmp_iptv_profile", "process_snmp_iptv_profile"},
    {"process_snmp_iptv_profile_channel", "process_snmp_iptv_profile_channel"},
    {"process_snmp_vlan_id", "process_snmp_vlan_id"},
    {"process_snmp_oltbasicport", "process_snmp_oltbasicport"},
    {"process_snmp_oltauth", "process_snmp_oltauth"},
};

}  // namespace

const Reader &reader_named(const std::string &name) {
  const auto *found = std::find_if(std::begin(kReaders), std::end(kReaders),
                                   [&name](const Reader &reader) { return reader.name == name; });
  if (found == std::end(kReaders)) {
    wrong_usage("walk: there is no reader '{}'; expected one of: {}", printable(name),
                fmt::join(reader_names(), ", "));
  }
  return *found;
}

std::vector<std::string> reader_names() {
  std::vector<std::string> names;
  for (const Reader &reader : kReaders) names.emplace_back(reader.name);
  return names;
}

std::string readers_text() {
  std::string text = "\nReaders:\n";
  for (const Reader &reader : kReaders) {
    text += fmt::format("  {:<42}{}\n", reader.name, catalog::find(reader.name)->summary);
  }
  return text;
}

}  // namespace olt::cli
