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
    {"onus", "process_snmp_onubasicinfo", kOnus},
    {"links", "process_snmp_linkbasicinfo", kOnus},
    {"onu-parts", "process_snmp_onuglobalinfo", kOnus},
    {"voice-services", "process_snmp_iadinfo", kOnus},
    {"sip-settings", "process_snmp_onusipparaminfo", "process_snmp_onusipparaminfo"},
    {"voice-accounts", "process_snmp_onusipuserinfo", kVoiceLines, "line"},
    {"fax-modes", "process_snmpvoip_faxmode", "process_snmpvoip_faxmode", "line"},
    {"voice-lines", "process_voip_linestatus", kVoiceLines, "line"},
    {"wan-connections", "process_snmp_hguwaninfo", kOnus},
    {"voice-bindings", "process_snmp_hguvoipbandinginfo", kOnus},
    {"uni-ports", "process_onu_portinfo", kUniPorts, "port"},
    {"uni-policing", "process_onu_portpolicying", "process_onu_portpolicying", "port"},
    {"uni-rates", "process_onu_portdownrate", "process_onu_portdownrate", "port"},
    {"uni-vlan-modes", "process_onu_portvlanmode", "process_onu_portvlanmode", "port"},
    {"uni-strips", "process_onu_portstrip", "process_onu_portstrip", "port"},
    {"uni-multicast-vlans", "process_onu_portmuticastvlan", "process_onu_portmuticastvlan", "port"},
    {"uni-group-limits", "process_onu_portmuticastmaxgroup", "process_onu_portmuticastmaxgroup",
     "port"},
    {"iptv-profiles", "process_snmp_iptv_profile", "process_snmp_iptv_profile"},
    {"iptv-channels", "process_snmp_iptv_profile_channel", "process_snmp_iptv_profile_channel"},
    {"vlans", "process_snmp_vlan_id", "process_snmp_vlan_id"},
    {"ports", "process_snmp_oltbasicport", "process_snmp_oltbasicport"},
    {"auth", "process_snmp_oltauth", "process_snmp_oltauth"},
};

}  // namespace

std::span<const Reader> readers() {
  return kReaders;
}

const Reader &reader_named(const std::string &name) {
  const auto *found = std::find_if(
      std::begin(kReaders), std::end(kReaders),
      [&name](const Reader &reader) { return reader.short_name == name || reader.name == name; });
  if (found != std::end(kReaders)) return *found;
  std::vector<std::string> names;
  for (const Reader &reader : kReaders) names.emplace_back(reader.short_name);
  wrong_usage("walk: there is no table '{}'; expected one of: {}", printable(name),
              fmt::join(names, ", "));
}

std::vector<std::string> reader_names() {
  std::vector<std::string> names;
  for (const Reader &reader : kReaders) names.emplace_back(reader.short_name);
  for (const Reader &reader : kReaders) names.emplace_back(reader.name);
  return names;
}

std::string readers_text() {
  std::string text = "\nReaders:\n";
  for (const Reader &reader : kReaders) {
    text += fmt::format("  {:<20} {:<34} {}\n", reader.short_name, reader.name,
                        catalog::find(reader.name)->summary);
  }
  return text;
}

}  // namespace olt::cli
