/// The records of requests and replies, as the simulated box understands them: the box's own
/// definitions, independent of those in oltmgmt.h. Words are little-endian.
///
/// Texts are padded with zeros. A text that fills its field has no zero, where that is allowed.
#ifndef OLT_BOX_WIRE_RECORDS_H
#define OLT_BOX_WIRE_RECORDS_H

#include <bit>
#include <cstddef>
#include <cstdint>

namespace olt::box {

static_assert(std::endian::native == std::endian::little, "records are copied as they are");

#define OLT_AT(record, field, offset) static_assert(offsetof(record, field) == (offset))

/// Which row a reader of a table returns: the one that the index names, or the next one.
enum RowSelector : uint32_t {
  kThisRow = 1,
  kNextRow = 2,
};

// System administration.

struct UserRecord {
  uint32_t user_op;
  uint32_t user_index;
  char user_name[32];
  char user_password[32];
  uint32_t level_a;
  uint32_t level_b;
};
static_assert(sizeof(UserRecord) == 80);
OLT_AT(UserRecord, user_index, 4);
OLT_AT(UserRecord, user_name, 8);
OLT_AT(UserRecord, user_password, 40);
OLT_AT(UserRecord, level_a, 72);
OLT_AT(UserRecord, level_b, 76);

struct DebugValue {
  uint32_t debug_op;  ///< 0 reads, anything else writes
  uint32_t selector;
  uint32_t debug_value;
};
static_assert(sizeof(DebugValue) == 12);
OLT_AT(DebugValue, selector, 4);
OLT_AT(DebugValue, debug_value, 8);

struct SwitchDebug {
  uint32_t debug_op;  ///< 0 reads, anything else writes
  uint8_t reserved_04[20];
  uint16_t debug_value;
  uint8_t reserved_1a[2];
};
static_assert(sizeof(SwitchDebug) == 28);
OLT_AT(SwitchDebug, debug_value, 24);

/// What these four records hold has no effect on the box.
struct SystemNetwork {
  uint8_t address[4];
  uint8_t mask[4];
  uint8_t gateway[4];
  uint32_t vlan;
  uint8_t dns_first[4];
  uint8_t dns_second[4];
  char name[32];
  uint8_t reserved_38[116];
};
static_assert(sizeof(SystemNetwork) == 172);
OLT_AT(SystemNetwork, mask, 4);
OLT_AT(SystemNetwork, gateway, 8);
OLT_AT(SystemNetwork, vlan, 12);
OLT_AT(SystemNetwork, dns_first, 16);
OLT_AT(SystemNetwork, dns_second, 20);
OLT_AT(SystemNetwork, name, 24);

struct SntpConfig {
  uint32_t enabled;
  uint8_t server_first[4];
  uint8_t server_second[4];
  uint32_t interval;   ///< in seconds
  int32_t utc_offset;  ///< in minutes
  uint8_t reserved_14[68];
};
static_assert(sizeof(SntpConfig) == 88);
OLT_AT(SntpConfig, server_first, 4);
OLT_AT(SntpConfig, server_second, 8);
OLT_AT(SntpConfig, interval, 12);
OLT_AT(SntpConfig, utc_offset, 16);

struct SnmpParam {
  char read_community[32];
  char write_community[32];
  char trap_community[32];
  uint32_t traps;
  uint8_t trap_host[4];
  uint32_t trap_port;
  uint8_t reserved_6c[28];
};
static_assert(sizeof(SnmpParam) == 136);
OLT_AT(SnmpParam, write_community, 32);
OLT_AT(SnmpParam, trap_community, 64);
OLT_AT(SnmpParam, traps, 96);
OLT_AT(SnmpParam, trap_host, 100);
OLT_AT(SnmpParam, trap_port, 104);

struct SnmpSystemInfo {
  char contact[64];
  char name[64];
  char location[64];
  uint32_t services;
};
static_assert(sizeof(SnmpSystemInfo) == 196);
OLT_AT(SnmpSystemInfo, name, 64);
OLT_AT(SnmpSystemInfo, location, 128);
OLT_AT(SnmpSystemInfo, services, 192);

/// The head of a piece of a firmware image.
struct UpdatePiece {
  uint32_t total;   ///< length of the image
  uint32_t offset;  ///< of the piece in the image
};
static_assert(sizeof(UpdatePiece) == 8);
OLT_AT(UpdatePiece, offset, 4);

struct UpdateProgress {
  uint32_t received;
  uint32_t progress;
};
static_assert(sizeof(UpdateProgress) == 8);
OLT_AT(UpdateProgress, progress, 4);

inline constexpr uint32_t kMaxImage = 268'435'456;
inline constexpr uint32_t kUpdateComplete = 100;
inline constexpr uint32_t kUpdateFailed = 0x80000001;

// Listings.

/// Asks for a listing about an Ethernet port or a PON interface.
struct ListingRequest {
  uint32_t reserved_00;
  uint32_t slot;
  uint32_t number;  ///< of the port or interface
  uint32_t vlan;    ///< of MAC addresses; 0 for all
  uint8_t reserved_10[64];
};
static_assert(sizeof(ListingRequest) == 80);
OLT_AT(ListingRequest, slot, 4);
OLT_AT(ListingRequest, number, 8);
OLT_AT(ListingRequest, vlan, 12);

/// The reply to most requests for a listing. Those about ONUs, logs and memory are the name alone.
struct ListingReply {
  uint8_t reserved_00[48];
  char name[32];
};
static_assert(sizeof(ListingReply) == 80);
OLT_AT(ListingReply, name, 48);

struct ListingName {
  char name[32];
};
static_assert(sizeof(ListingName) == 32);

// The OLT's Ethernet side.

struct PortRecord {
  uint32_t slot;
  uint32_t port;
  uint32_t reserved_08;
  uint32_t sfp_module;
  uint32_t port_enable;
  uint32_t link_speed;
  uint32_t link_duplex;
  uint32_t vlanmode_second;
  uint32_t vlanmode_first;
  uint32_t reserved_24;
  uint32_t flowcontrol;
  uint32_t ingressfilter_first;
  uint32_t ingressfilter_second;
  uint32_t ratecontrol_first;
  uint32_t ratecontrol_second;
  uint32_t rstp_state;
  uint32_t link_state;
  uint32_t reserved_44[2];
  uint32_t max_link;
};
static_assert(sizeof(PortRecord) == 80);
OLT_AT(PortRecord, port, 4);
OLT_AT(PortRecord, sfp_module, 12);
OLT_AT(PortRecord, port_enable, 16);
OLT_AT(PortRecord, link_speed, 20);
OLT_AT(PortRecord, link_duplex, 24);
OLT_AT(PortRecord, vlanmode_second, 28);
OLT_AT(PortRecord, vlanmode_first, 32);
OLT_AT(PortRecord, flowcontrol, 40);
OLT_AT(PortRecord, ingressfilter_first, 44);
OLT_AT(PortRecord, ingressfilter_second, 48);
OLT_AT(PortRecord, ratecontrol_first, 52);
OLT_AT(PortRecord, ratecontrol_second, 56);
OLT_AT(PortRecord, rstp_state, 60);
OLT_AT(PortRecord, link_state, 64);
OLT_AT(PortRecord, max_link, 76);

struct UplinkAggregation {
  uint32_t reserved_00[2];
  uint32_t upport_agg;
  uint32_t reserved_0c[5];
};
static_assert(sizeof(UplinkAggregation) == 32);
OLT_AT(UplinkAggregation, upport_agg, 8);

struct PortMac {
  uint16_t slot;
  uint16_t port;
  uint16_t operation;
  uint16_t vlan;
  uint8_t mac[6];
  uint8_t reserved_0e[2];
};
static_assert(sizeof(PortMac) == 16);
OLT_AT(PortMac, port, 2);
OLT_AT(PortMac, operation, 4);
OLT_AT(PortMac, vlan, 6);
OLT_AT(PortMac, mac, 8);

/// A range of VLANs; the last one is 0 for a single VLAN.
struct VlanElement {
  uint16_t first;
  uint16_t last;
};
static_assert(sizeof(VlanElement) == 4);
OLT_AT(VlanElement, last, 2);

struct DescribedVlan {
  uint16_t first;
  uint16_t last;
  char description[32];
};
static_assert(sizeof(DescribedVlan) == 36);
OLT_AT(DescribedVlan, last, 2);
OLT_AT(DescribedVlan, description, 4);

struct VlanQuery {
  uint32_t kind;
  uint32_t slot;
  uint32_t port;
  uint32_t reserved_0c;
  char description[64];
};
static_assert(sizeof(VlanQuery) == 80);
OLT_AT(VlanQuery, slot, 4);
OLT_AT(VlanQuery, port, 8);
OLT_AT(VlanQuery, description, 16);

/// The head of a request that adds a port to VLANs.
struct TrunkHead {
  uint32_t slot;
  uint32_t port;
  uint32_t trunk_value;
  uint8_t reserved_0c[68];
};
static_assert(sizeof(TrunkHead) == 80);
OLT_AT(TrunkHead, port, 4);
OLT_AT(TrunkHead, trunk_value, 8);

#pragma pack(push, 1)
struct RstpBridge {
  uint8_t enabled;
  uint8_t version;
  uint16_t priority;
  uint16_t max_age;
  uint16_t hello_time;
  uint16_t forward_delay;
  uint8_t hold_count;
  uint8_t reserved_0b[22];
};
#pragma pack(pop)
static_assert(sizeof(RstpBridge) == 33);
OLT_AT(RstpBridge, version, 1);
OLT_AT(RstpBridge, priority, 2);
OLT_AT(RstpBridge, max_age, 4);
OLT_AT(RstpBridge, hello_time, 6);
OLT_AT(RstpBridge, forward_delay, 8);
OLT_AT(RstpBridge, hold_count, 10);

#pragma pack(push, 1)
struct RstpPort {
  uint32_t slot;
  uint32_t port;
  uint8_t rstp_state;
  uint8_t priority;
  uint32_t path_cost;
  uint8_t edge;
  uint8_t point_to_point;
  uint8_t reserved_10[11];
};
#pragma pack(pop)
static_assert(sizeof(RstpPort) == 27);
OLT_AT(RstpPort, port, 4);
OLT_AT(RstpPort, rstp_state, 8);
OLT_AT(RstpPort, priority, 9);
OLT_AT(RstpPort, path_cost, 10);
OLT_AT(RstpPort, edge, 14);
OLT_AT(RstpPort, point_to_point, 15);

struct RstpBrief {
  uint32_t slot;
  uint32_t port;
  uint32_t active;
  uint32_t role;
  uint32_t state;
  uint32_t priority;
  uint32_t path_cost;
  uint32_t bridge_priority;
  uint32_t edge;
  uint32_t seconds;
};
static_assert(sizeof(RstpBrief) == 40);
OLT_AT(RstpBrief, port, 4);
OLT_AT(RstpBrief, active, 8);
OLT_AT(RstpBrief, role, 12);
OLT_AT(RstpBrief, state, 16);
OLT_AT(RstpBrief, priority, 20);
OLT_AT(RstpBrief, path_cost, 24);
OLT_AT(RstpBrief, bridge_priority, 28);
OLT_AT(RstpBrief, edge, 32);
OLT_AT(RstpBrief, seconds, 36);

struct IgmpProxy {
  uint32_t enabled;
  uint32_t query_interval;  ///< in seconds
  uint32_t response_time;   ///< in seconds
  uint32_t robustness;
  uint32_t last_member_query_interval;  ///< in seconds
  uint32_t fast_leave;
};
static_assert(sizeof(IgmpProxy) == 24);
OLT_AT(IgmpProxy, query_interval, 4);
OLT_AT(IgmpProxy, response_time, 8);
OLT_AT(IgmpProxy, robustness, 12);
OLT_AT(IgmpProxy, last_member_query_interval, 16);
OLT_AT(IgmpProxy, fast_leave, 20);

/// The bytes before the ranges of VLANs in a dump: the record, and how many ranges there are.
inline constexpr size_t kIgmpProxyDumpHead = sizeof(IgmpProxy) + sizeof(uint32_t);

// PON interfaces and ONUs.

/// Names a PON interface.
struct PonInterface {
  uint32_t slot;
  uint32_t interface;
  uint8_t reserved_08[28];
  uint32_t auth_mode;
  uint8_t reserved_28[40];
};
static_assert(sizeof(PonInterface) == 80);
OLT_AT(PonInterface, interface, 4);
OLT_AT(PonInterface, auth_mode, 36);

struct AuthEntry {
  uint8_t mac[6];
  uint8_t reserved_06[2];
  char loid[24];
  char password[12];
};
static_assert(sizeof(AuthEntry) == 44);
OLT_AT(AuthEntry, loid, 8);
OLT_AT(AuthEntry, password, 32);

/// Names an ONU, or with a part one of its UNI ports or voice lines.
struct OntTarget {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t target_kind;  ///< a RowSelector
  uint32_t part;
  uint8_t reserved_14[8];
  uint8_t mac[6];
  uint8_t reserved_22[2];
  uint32_t mac_word;  ///< beside the MAC address: 1 for an ONU that is up
  uint32_t user_traffic[12];
};
static_assert(sizeof(OntTarget) == 88);
OLT_AT(OntTarget, interface, 4);
OLT_AT(OntTarget, onu, 8);
OLT_AT(OntTarget, target_kind, 12);
OLT_AT(OntTarget, part, 16);
OLT_AT(OntTarget, mac, 28);
OLT_AT(OntTarget, mac_word, 36);
OLT_AT(OntTarget, user_traffic, 40);

/// Sets the features of an ONU, or its description.
struct FeatureRequest {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t target_kind;
  uint8_t reserved_10[12];
  uint8_t mac[6];
  uint8_t reserved_22[54];
  uint32_t feature[12];
};
static_assert(sizeof(FeatureRequest) == 136);
OLT_AT(FeatureRequest, target_kind, 12);
OLT_AT(FeatureRequest, mac, 28);
OLT_AT(FeatureRequest, feature, 88);

/// A target that returns the group limit of a UNI port.
struct GroupLimitTarget {
  uint32_t target[3];  ///< slot, interface, ONU
  uint32_t target_kind;
  uint32_t port;
  uint32_t group_limit;
  uint8_t reserved_18[4];
  uint8_t mac[6];
  uint8_t reserved_22[2];
  uint32_t mac_word;
  uint8_t reserved_28[48];
};
static_assert(sizeof(GroupLimitTarget) == 88);
OLT_AT(GroupLimitTarget, target_kind, 12);
OLT_AT(GroupLimitTarget, port, 16);
OLT_AT(GroupLimitTarget, group_limit, 20);
OLT_AT(GroupLimitTarget, mac, 28);
OLT_AT(GroupLimitTarget, mac_word, 36);

struct GlobalParameters {
  uint32_t reserved_00[4];
  uint32_t p2p_function;
  uint32_t link_security_a;
  uint32_t link_security_b;
  uint32_t ponport_function;
};
static_assert(sizeof(GlobalParameters) == 32);
OLT_AT(GlobalParameters, p2p_function, 16);
OLT_AT(GlobalParameters, link_security_a, 20);
OLT_AT(GlobalParameters, link_security_b, 24);
OLT_AT(GlobalParameters, ponport_function, 28);

/// Bandwidths in kbit/s.
struct LinkDba {
  uint32_t requested[3];
  uint32_t granted[2];
};
static_assert(sizeof(LinkDba) == 20);
OLT_AT(LinkDba, granted, 12);

struct UniVlanMode {
  uint32_t mode;
  uint8_t settings[32];
};
static_assert(sizeof(UniVlanMode) == 36);
OLT_AT(UniVlanMode, settings, 4);

#pragma pack(push, 1)
struct MulticastVlans {
  uint8_t count;
  uint16_t vlans[64];
};
#pragma pack(pop)
static_assert(sizeof(MulticastVlans) == 129);
OLT_AT(MulticastVlans, vlans, 1);

// Services of ONTs.

#pragma pack(push, 1)
struct WanConnection {
  uint32_t operation;
  uint32_t number;
  uint8_t settings[117];
};
#pragma pack(pop)
static_assert(sizeof(WanConnection) == 125);
OLT_AT(WanConnection, number, 4);
OLT_AT(WanConnection, settings, 8);

/// The WAN interface of the voice service.
struct InterfaceName {
  char name[32];  ///< ends with a zero
};
static_assert(sizeof(InterfaceName) == 32);

/// The name of an IPTV profile.
struct ProfileName {
  char name[32];  ///< may fill the field
};
static_assert(sizeof(ProfileName) == 32);

struct UserChannelRecord {
  uint8_t user[6];
  uint8_t reserved_06[2];
  uint32_t a;
  uint16_t b;
  uint16_t c;
  uint32_t d;
};
static_assert(sizeof(UserChannelRecord) == 20);
OLT_AT(UserChannelRecord, a, 8);
OLT_AT(UserChannelRecord, b, 12);
OLT_AT(UserChannelRecord, c, 14);
OLT_AT(UserChannelRecord, d, 16);

// Rows of the SNMP tables.

struct OnuInfoRow {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t reserved_0c;
  uint8_t mac[6];
  uint8_t reserved_16[2];
  uint32_t state;
  uint32_t seconds;  ///< since it came up or was blocked
  uint32_t uni_ports;
  uint32_t voice_lines;
  uint32_t wan_connections;
  uint32_t reserved_2c;
  char loid[24];
  char description[48];
  uint8_t reserved_78[28];
};
static_assert(sizeof(OnuInfoRow) == 148);
OLT_AT(OnuInfoRow, interface, 4);
OLT_AT(OnuInfoRow, onu, 8);
OLT_AT(OnuInfoRow, mac, 16);
OLT_AT(OnuInfoRow, state, 24);
OLT_AT(OnuInfoRow, seconds, 28);
OLT_AT(OnuInfoRow, uni_ports, 32);
OLT_AT(OnuInfoRow, voice_lines, 36);
OLT_AT(OnuInfoRow, wan_connections, 40);
OLT_AT(OnuInfoRow, loid, 48);
OLT_AT(OnuInfoRow, description, 72);

struct LinkInfoRow {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t reserved_0c;
  uint8_t mac[6];
  uint8_t reserved_16[2];
  uint32_t state;
  uint32_t seconds;  ///< since it came up or was blocked
  uint32_t dba[5];
  uint32_t user_traffic[12];
  uint32_t features[12];
};
static_assert(sizeof(LinkInfoRow) == 148);
OLT_AT(LinkInfoRow, interface, 4);
OLT_AT(LinkInfoRow, onu, 8);
OLT_AT(LinkInfoRow, mac, 16);
OLT_AT(LinkInfoRow, state, 24);
OLT_AT(LinkInfoRow, seconds, 28);
OLT_AT(LinkInfoRow, dba, 32);
OLT_AT(LinkInfoRow, user_traffic, 52);
OLT_AT(LinkInfoRow, features, 100);

/// Parts follow.
struct GlobalInfoHead {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t reserved_0c;
  uint8_t mac[6];
  uint8_t reserved_16[2];
  uint32_t state;
  uint32_t reserved_1c;
  char loid[24];
  uint32_t length;  ///< bytes that follow
};
static_assert(sizeof(GlobalInfoHead) == 60);
OLT_AT(GlobalInfoHead, interface, 4);
OLT_AT(GlobalInfoHead, onu, 8);
OLT_AT(GlobalInfoHead, mac, 16);
OLT_AT(GlobalInfoHead, state, 24);
OLT_AT(GlobalInfoHead, loid, 32);
OLT_AT(GlobalInfoHead, length, 56);

struct GlobalInfoPart {
  uint32_t kind;
  uint32_t number;
  uint32_t value;
};
static_assert(sizeof(GlobalInfoPart) == 12);
OLT_AT(GlobalInfoPart, number, 4);
OLT_AT(GlobalInfoPart, value, 8);

/// WAN connections follow.
struct WanInfoHead {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t reserved_0c;
  uint32_t count;
  uint32_t record_size;
  uint8_t reserved_18[60];
  uint32_t length;  ///< bytes that follow
};
static_assert(sizeof(WanInfoHead) == 88);
OLT_AT(WanInfoHead, interface, 4);
OLT_AT(WanInfoHead, onu, 8);
OLT_AT(WanInfoHead, count, 16);
OLT_AT(WanInfoHead, record_size, 20);
OLT_AT(WanInfoHead, length, 84);

struct IadInfoRow {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t reserved_0c;
  uint8_t mac[6];
  uint8_t reserved_16[2];
  uint32_t state;
  uint32_t voice_lines;
  char wan_interface[32];
  uint32_t lines_on;
  uint32_t accounts;
  uint32_t registered;
  uint8_t reserved_4c[16];
};
static_assert(sizeof(IadInfoRow) == 92);
OLT_AT(IadInfoRow, interface, 4);
OLT_AT(IadInfoRow, onu, 8);
OLT_AT(IadInfoRow, mac, 16);
OLT_AT(IadInfoRow, state, 24);
OLT_AT(IadInfoRow, voice_lines, 28);
OLT_AT(IadInfoRow, wan_interface, 32);
OLT_AT(IadInfoRow, lines_on, 64);
OLT_AT(IadInfoRow, accounts, 68);
OLT_AT(IadInfoRow, registered, 72);

struct VoiceLineRow {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t line;
  uint32_t line_status;
  uint32_t state;
  uint32_t account;
  uint32_t reserved_1c;
};
static_assert(sizeof(VoiceLineRow) == 32);
OLT_AT(VoiceLineRow, interface, 4);
OLT_AT(VoiceLineRow, onu, 8);
OLT_AT(VoiceLineRow, line, 12);
OLT_AT(VoiceLineRow, line_status, 16);
OLT_AT(VoiceLineRow, state, 20);
OLT_AT(VoiceLineRow, account, 24);

struct VoiceBindingRow {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t reserved_0c;
  uint32_t bound;
  char wan_interface[32];
  uint8_t reserved_34[36];
};
static_assert(sizeof(VoiceBindingRow) == 88);
OLT_AT(VoiceBindingRow, interface, 4);
OLT_AT(VoiceBindingRow, onu, 8);
OLT_AT(VoiceBindingRow, bound, 16);
OLT_AT(VoiceBindingRow, wan_interface, 20);

struct UniPortInfoRow {
  uint32_t slot;
  uint32_t interface;
  uint32_t onu;
  uint32_t port;
  uint32_t info[11];
  uint32_t loopback;
  uint32_t alarm;
};
static_assert(sizeof(UniPortInfoRow) == 68);
OLT_AT(UniPortInfoRow, interface, 4);
OLT_AT(UniPortInfoRow, onu, 8);
OLT_AT(UniPortInfoRow, port, 12);
OLT_AT(UniPortInfoRow, info, 16);
OLT_AT(UniPortInfoRow, loopback, 60);
OLT_AT(UniPortInfoRow, alarm, 64);

struct UniStripRow {
  uint8_t strip[34];
  uint8_t reserved_22[2];
};
static_assert(sizeof(UniStripRow) == 36);

/// Also the channel record of the setters.
struct IptvChannelRow {
  uint32_t selector;
  char profile[32];
  uint32_t number;
  uint8_t settings[16];
};
static_assert(sizeof(IptvChannelRow) == 56);
OLT_AT(IptvChannelRow, profile, 4);
OLT_AT(IptvChannelRow, number, 36);
OLT_AT(IptvChannelRow, settings, 40);

/// Adds a channel to a profile, or deletes it.
struct ChannelRequest {
  IptvChannelRow channel;
  char profile[32];
};
static_assert(sizeof(ChannelRequest) == 88);
OLT_AT(ChannelRequest, profile, 56);

struct IptvProfileRow {
  uint32_t selector;
  char profile[32];
  uint32_t channels;
};
static_assert(sizeof(IptvProfileRow) == 40);
OLT_AT(IptvProfileRow, profile, 4);
OLT_AT(IptvProfileRow, channels, 36);

struct VlanRow {
  uint32_t selector;
  uint32_t vlan;
  char description[32];
  uint32_t tagged_ports;    ///< a bit each for ports 1 to 32
  uint32_t untagged_ports;  ///< a bit each for ports 1 to 32
  uint32_t members;
};
static_assert(sizeof(VlanRow) == 52);
OLT_AT(VlanRow, vlan, 4);
OLT_AT(VlanRow, description, 8);
OLT_AT(VlanRow, tagged_ports, 40);
OLT_AT(VlanRow, untagged_ports, 44);
OLT_AT(VlanRow, members, 48);

struct BasicPortRow {
  uint32_t selector;
  uint32_t slot;
  uint32_t port;
  uint32_t port_enable;
  uint32_t link_state;
  uint32_t link_speed;
  uint32_t link_duplex;
  uint32_t vlanmode_first;
  uint32_t vlanmode_second;
  uint32_t flowcontrol;
  uint32_t rstp_state;
  uint32_t max_link;
};
static_assert(sizeof(BasicPortRow) == 48);
OLT_AT(BasicPortRow, slot, 4);
OLT_AT(BasicPortRow, port, 8);
OLT_AT(BasicPortRow, port_enable, 12);
OLT_AT(BasicPortRow, link_state, 16);
OLT_AT(BasicPortRow, link_speed, 20);
OLT_AT(BasicPortRow, link_duplex, 24);
OLT_AT(BasicPortRow, vlanmode_first, 28);
OLT_AT(BasicPortRow, vlanmode_second, 32);
OLT_AT(BasicPortRow, flowcontrol, 36);
OLT_AT(BasicPortRow, rstp_state, 40);
OLT_AT(BasicPortRow, max_link, 44);

struct AuthRow {
  uint32_t selector;
  uint32_t slot;
  uint32_t interface;
  uint32_t auth_mode;
  uint32_t allowed_macs;
  uint32_t allowed_loids;
  uint32_t allowed_mac_loids;
  uint32_t onus;
  uint32_t onus_up;
  uint32_t onus_away;
  uint32_t onus_blocked;
  uint8_t reserved_2c[16];
};
static_assert(sizeof(AuthRow) == 60);
OLT_AT(AuthRow, slot, 4);
OLT_AT(AuthRow, interface, 8);
OLT_AT(AuthRow, auth_mode, 12);
OLT_AT(AuthRow, allowed_macs, 16);
OLT_AT(AuthRow, allowed_loids, 20);
OLT_AT(AuthRow, allowed_mac_loids, 24);
OLT_AT(AuthRow, onus, 28);
OLT_AT(AuthRow, onus_up, 32);
OLT_AT(AuthRow, onus_away, 36);
OLT_AT(AuthRow, onus_blocked, 40);

#undef OLT_AT

}  // namespace olt::box

#endif
