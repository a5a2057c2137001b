/// Names for the numbers of the wire: modules, message types, statuses, lengths and offsets, as
/// docs/box.md lists them. Tests take them from here and never from the code under test.
#ifndef OLT_TESTS_SUPPORT_WIRE_NAMES_H
#define OLT_TESTS_SUPPORT_WIRE_NAMES_H

#include <cstddef>
#include <cstdint>

namespace olt::test {

/// A type of its own, so that a call can leave the main module out.
enum Module : uint32_t {
  kMainModule = 2,
  kOamModule = 18,
  kLogModule = 22,
  kRstpModule = 23,
  kControlModule = 1000,
};

// What platmsg_syn_result returns when no answer arrives.
inline constexpr int32_t kTimedOut = 0x00010000;
inline constexpr int32_t kNoModule = 0x00020000;
inline constexpr int32_t kLost = 0x00030000;
inline constexpr int32_t kRefused = 0x00040000;

enum Status : uint32_t {
  kOk = 0,
  kNotServed = 1,
  kBadLength = 2,
  kBadValue = 3,
  kNotFound = 4,
  kExists = 5,
  kFull = 6,
  kWrongPassword = 7,
  kNotWritten = 8,
  kOutOfOrder = 9,
  kOnuNotUp = 11,
};

/// Message types, of the main module where nothing else is said.
enum Type : uint32_t {
  kControlCommand = 1,  ///< control module
  kCapturePiece = 2,    ///< control module
  kSetDebugEnable = 2,  ///< each module but the control module
  kListMemory = 3,      ///< each module but the control module
  kGetOamSupport = 4,   ///< OAM module
  kSetInService = 5,
  kAnnounceStart = 6,
  kReboot = 7,
  kSaveConfig = 8,
  kRestoreDefaults = 9,
  kUserAccount = 10,  ///< looks up, adds, deletes or modifies a user
  kUpdateOlt = 11,
  kGetOltMac = 12,
  kSetSfpModule = 13,
  kSetPortEnable = 14,
  kGetPortEnable = 15,
  kGetLinkState = 16,
  kGetLinkDuplex = 17,
  kGetLinkSpeed = 18,
  kAddVlans = 19,
  kDeleteVlans = 20,
  kDescribeVlans = 21,
  kDeleteVlanDescriptions = 22,
  kListVlans = 23,
  kSetVlanMode = 24,
  kAddTrunkTagged = 25,
  kAddTrunkUntagged = 26,
  kSetTrunkTagged = 27,
  kSetTrunkUntagged = 28,
  kListStatistics = 29,
  kClearStatistics = 30,
  kListMacs = 31,
  kClearMacs = 32,
  kListRunningConfig = 33,
  kSetUplinkAggregation = 34,
  kListOnus = 35,
  kListLinks = 36,
  kListBlocked = 37,
  kGetFeature = 38,
  kDebugValue = 39,        ///< reads or writes
  kSwitchDebugValue = 40,  ///< reads or writes
  kUnblock = 41,
  kSetFeature = 42,
  kClearOnu = 43,
  kDescribeOnu = 44,
  kDeleteOnuDescription = 45,
  kSetUserTraffic = 46,
  kListOnuInfo = 47,
  kListOnuConfig = 48,
  kForceFeature = 49,
  kSetIpAddress = 50,
  kSetDns = 51,
  kSetSntp = 52,
  kListBasicInfo = 53,
  kSetLinkDba = 54,
  kStaticMac = 55,  ///< adds or deletes
  kSetSnmpParam = 56,
  kGetSnmpParam = 57,
  kGetNetwork = 58,
  kSetSnmpInfo = 59,
  kGetSnmpInfo = 60,
  kGetUpdateStatus = 61,
  kGetNextUser = 62,
  kGetUserByIndex = 63,
  kUpdateOnu = 64,
  kGetOnuMac = 65,
  kSetRateControl = 66,
  kSetRstpState = 67,
  kSetIngressFilter = 68,
  kSetFlowControl = 69,
  kGetPortInfo = 70,
  kSetPortInfo = 71,
  kGetPortStatus = 72,
  kVlanRow = 73,
  kGetUplinkAggregation = 74,
  kPortRow = 75,
  kSetPeerToPeer = 76,
  kSetPonPort = 77,
  kSetEncryption = 78,
  kGlobalParameters = 79,
  kAuthRow = 80,
  kListLog = 81,      ///< log module
  kSetLogSize = 82,   ///< log module and main module
  kSetLogLevel = 83,  ///< log module and main module
  kDescribeUniPort = 84,
  kOnuInfoRow = 85,
  kLinkInfoRow = 86,
  kGlobalInfoRow = 87,
  kIadInfoRow = 88,
  kSipConfigRow = 89,
  kVoiceAccountRow = 90,
  kFaxModeRow = 91,
  kVoiceLineRow = 92,
  kWanInfoRow = 93,
  kVoiceBindingRow = 94,
  kUniPortInfoRow = 95,
  kPolicingRow = 96,
  kDownRateRow = 97,
  kVlanModeRow = 98,
  kStripRow = 99,
  kMulticastVlansRow = 100,
  kGroupLimitRow = 101,
  kSetMaxLink = 102,
  kListUniPortAlarm = 104,
  kSetUniPortAlarm = 105,
  kListOptics = 106,
  kRebootOnu = 107,
  kAllowMacLoids = 108,
  kDisallowMacLoids = 109,
  kAllowLoids = 110,
  kDisallowLoids = 111,
  kAllowMacs = 112,
  kDisallowMacs = 113,
  kSetAuthMode = 114,
  kListAuth = 115,
  kGetAuthMode = 116,
  kSetUniPortLoopback = 117,
  kSetUniPortDownRate = 118,
  kGetUniPortDownRate = 119,
  kGetGroupLimit = 120,
  kSetGroupLimit = 121,
  kListPortMulticastVlans = 122,
  kClearPortMulticastVlans = 123,
  kAddPortMulticastVlans = 124,
  kDeletePortMulticastVlans = 125,
  kListUniPortStrip = 126,
  kSetUniPortStrip = 127,
  kListUniPortVlanMode = 128,
  kSetUniPortVlanMode = 129,
  kSetUniPortPolicing = 130,
  kGetUniPortPolicing = 131,
  kSetUniPortInfo = 132,
  kListUniPortInfo = 133,
  kListVoice = 134,
  kGetVoiceAccount = 135,
  kSetVoiceAccount = 136,
  kListVoiceLines = 137,
  kSetVoiceLine = 138,
  kListFaxModes = 139,
  kListSipConfig = 140,
  kSetFaxMode = 141,
  kSetSipConfig = 142,
  kBindVoice = 143,
  kListVoiceBinding = 144,
  kWanConnection = 145,  ///< adds, changes or deletes
  kListWanConnections = 146,
  kOntConfiguration = 147,  ///< carries out an action
  kListMulticastGroups = 148,
  kAddMulticastVlans = 149,
  kDeleteMulticastVlans = 150,
  kGetIgmpProxy = 151,
  kSetIgmpProxy = 152,
  kDumpIgmpProxy = 153,
  kSetFastLeave = 154,
  kSetIptvProfile = 155,
  kUnsetIptvProfile = 156,
  kCreateIptvProfile = 157,
  kClearIptvProfile = 158,
  kDeleteIptvChannel = 159,
  kAddIptvChannel = 160,
  kListIptvProfile = 161,
  kAddUserChannel = 162,
  kDeleteUserChannel = 163,
  kIptvProfileRow = 164,
  kIptvChannelRow = 165,
  kRebootOnuOtherFamily = 168,
  kRestoreOnuDefaults = 169,
  kGetRstpBridge = 170,
  kGetRstpPort = 171,
  kSetRstpBridge = 172,
  kSetRstpPort = 173,
  kGetRstpBrief = 174,  ///< RSTP module
  kUnknownType = 200,   ///< no module serves it
};

// Lengths of requests, replies and the records within them, in bytes.
inline constexpr size_t kTargetSize = 88;     ///< names an ONU or a part of it
inline constexpr size_t kInterfaceSize = 80;  ///< names a PON interface
inline constexpr size_t kPortSize = 80;       ///< record of an Ethernet port
inline constexpr size_t kUserSize = 80;
inline constexpr size_t kVlanQuerySize = 80;
inline constexpr size_t kTrunkSize = 80;  ///< followed by VLANs
inline constexpr size_t kVlanSize = 4;    ///< first and last id of a range
inline constexpr size_t kDescribedVlanSize = 36;
inline constexpr size_t kMaxVlans = 4094;  ///< in one list
inline constexpr size_t kNetworkSize = 172;
inline constexpr size_t kSntpSize = 88;
inline constexpr size_t kSnmpParamSize = 136;
inline constexpr size_t kSnmpInfoSize = 196;
inline constexpr size_t kDebugValueSize = 12;
inline constexpr size_t kSwitchDebugSize = 28;
inline constexpr size_t kUpdateHeadSize = 8;
inline constexpr size_t kAggregationSize = 32;
inline constexpr size_t kRstpBridgeSize = 33;
inline constexpr size_t kRstpPortSize = 27;
inline constexpr size_t kRstpBriefSize = 40;
inline constexpr size_t kIgmpProxySize = 24;
inline constexpr size_t kStaticMacSize = 16;
inline constexpr size_t kAuthEntrySize = 44;
inline constexpr size_t kMaxAuthEntries = 16'384;  ///< in one list
inline constexpr size_t kGlobalParametersSize = 32;
inline constexpr size_t kFeatureSize = 48;
inline constexpr size_t kOnuDescriptionSize = 48;
inline constexpr size_t kUserTrafficSize = 48;
inline constexpr size_t kLinkDbaSize = 20;
inline constexpr size_t kUniPortInfoSize = 44;
inline constexpr size_t kUniPortDescriptionSize = 44;
inline constexpr size_t kDownRateSize = 12;
inline constexpr size_t kPolicingSize = 16;
inline constexpr size_t kUniPortVlanModeSize = 36;
inline constexpr size_t kStripSize = 34;
inline constexpr size_t kVoiceAccountSize = 80;
inline constexpr size_t kFaxModeSize = 2;
inline constexpr size_t kSipConfigSize = 45;
inline constexpr size_t kWanInterfaceSize = 32;
inline constexpr size_t kWanConnectionSize = 125;
inline constexpr size_t kIptvProfileSize = 32;  ///< its name
inline constexpr size_t kIptvChannelSize = 56;  ///< followed by the name of the profile
inline constexpr size_t kIptvSettingsSize = 16;
inline constexpr size_t kUserChannelSize = 20;
inline constexpr size_t kVlanRowSize = 52;
inline constexpr size_t kPortRowSize = 48;
inline constexpr size_t kAuthRowSize = 60;
inline constexpr size_t kIptvProfileRowSize = 40;
inline constexpr size_t kOnuRowSize = 148;

// Offsets of fields.
inline constexpr size_t kListingNameAt = 48;  ///< in replies of 80 bytes; else 0
inline constexpr size_t kListingNameSize = 32;

inline constexpr size_t kKindAt = 12;  ///< in a target
inline constexpr size_t kPartAt = 16;
inline constexpr size_t kMacAt = 28;
inline constexpr size_t kUpAt = 36;
inline constexpr size_t kUserTrafficAt = 40;

inline constexpr size_t kUserIndexAt = 4;
inline constexpr size_t kUserNameAt = 8;
inline constexpr size_t kPasswordAt = 40;
inline constexpr size_t kLevelAAt = 72;
inline constexpr size_t kLevelBAt = 76;

inline constexpr size_t kSfpModuleAt = 12;  ///< in the record of an Ethernet port
inline constexpr size_t kEnabledAt = 16;
inline constexpr size_t kSpeedAt = 20;
inline constexpr size_t kDuplexAt = 24;
inline constexpr size_t kVlanModeSecondAt = 28;
inline constexpr size_t kVlanModeFirstAt = 32;
inline constexpr size_t kFlowControlAt = 40;
inline constexpr size_t kIngressFilterAt = 44;  ///< two words
inline constexpr size_t kRateControlAt = 52;    ///< two words
inline constexpr size_t kRstpStateAt = 60;
inline constexpr size_t kLinkStateAt = 64;
inline constexpr size_t kMaxLinkAt = 76;

inline constexpr size_t kAuthModeAt = 36;  ///< after the name of a PON interface
inline constexpr size_t kLoidAt = 8;       ///< in an entry of an allow list
inline constexpr size_t kLoidPasswordAt = 32;

inline constexpr size_t kPeerToPeerAt = 16;  ///< in the global parameters
inline constexpr size_t kEncryptionAt = 20;  ///< two words
inline constexpr size_t kPonPortAt = 28;

inline constexpr size_t kChannelNumberAt = 36;  ///< in the record of an IPTV channel
inline constexpr size_t kChannelCountAt = 36;   ///< in a row of the table of profiles
inline constexpr size_t kChannelSettingsAt = 40;

}  // namespace olt::test

#endif
