/// The names of numbers, as the simulated box understands them.
#ifndef OLT_CATALOG_VALUE_NAMES_H
#define OLT_CATALOG_VALUE_NAMES_H

#include "box/wire/records.h"
#include "catalog/operation.h"

namespace olt::catalog {

inline constexpr ValueName kOffOn[] = {{0, "off"}, {1, "on"}};
inline constexpr ValueName kNoYes[] = {{0, "no"}, {1, "yes"}};
inline constexpr ValueName kDownUp[] = {{0, "down"}, {1, "up"}};
inline constexpr ValueName kReadWrite[] = {{0, "read"}, {1, "write"}};
inline constexpr ValueName kUserOperations[] = {
    {0, "look-up"}, {1, "add"}, {2, "delete"}, {3, "modify"}};
inline constexpr ValueName kUpdateProgress[] = {
    {0, "idle"}, {box::kUpdateComplete, "complete"}, {box::kUpdateFailed, "failed"}};
inline constexpr ValueName kLogLevels[] = {{0, "emergency"}, {1, "alert"},   {2, "critical"},
                                           {3, "error"},     {4, "warning"}, {5, "notice"},
                                           {6, "info"},      {7, "debug"}};
inline constexpr ValueName kModuleNames[] = {{2, "main"}, {18, "oam"}, {22, "log"}, {23, "rstp"}};
inline constexpr ValueName kLogModules[] = {
    {0, "all"}, {2, "main"}, {18, "oam"}, {22, "log"}, {23, "rstp"}};
inline constexpr ValueName kAllVlans[] = {{0, "all"}};
/// Of the last VLAN id of a range.
inline constexpr ValueName kSameVlan[] = {{0, "same"}};

inline constexpr ValueName kDuplex[] = {{0, "none"}, {1, "half"}, {2, "full"}};
inline constexpr ValueName kMacOperations[] = {{1, "add"}, {2, "delete"}};
inline constexpr ValueName kVlanQueries[] = {
    {0, "port"}, {1, "list"}, {2, "description"}, {3, "all"}};
inline constexpr ValueName kRstpVersions[] = {{0, "stp"}, {2, "rstp"}};
inline constexpr ValueName kPathCosts[] = {{0, "auto"}};
inline constexpr ValueName kRstpRoles[] = {{0, "disabled"}, {2, "designated"}};
inline constexpr ValueName kRstpStates[] = {
    {0, "down"}, {1, "discarding"}, {2, "learning"}, {3, "forwarding"}};

inline constexpr ValueName kRows[] = {{1, "this"}, {2, "next"}};
inline constexpr ValueName kAuthModes[] = {{0, "any"}, {1, "mac"}, {2, "loid"}, {3, "mac-loid"}};
inline constexpr ValueName kOnuStates[] = {{1, "up"}, {2, "away"}, {3, "blocked"}};
inline constexpr ValueName kVlanModes[] = {
    {0, "transparent"}, {1, "tag"}, {2, "translation"}, {3, "aggregation"}, {4, "trunk"}};
inline constexpr ValueName kNoLimit[] = {{0, "no-limit"}};
inline constexpr ValueName kPartKinds[] = {
    {1, "uni-port"}, {2, "voice-line"}, {3, "wan-connection"}};

inline constexpr ValueName kVoiceLines[] = {{0, "first"}};
inline constexpr ValueName kVoiceStates[] = {
    {0, "unknown"}, {1, "off"}, {2, "not-registered"}, {3, "registered"}};
inline constexpr ValueName kWanOperations[] = {{1, "add"}, {2, "change"}, {3, "delete"}};
inline constexpr ValueName kConfigurationActions[] = {{1, "save"}, {2, "default"}, {3, "restart"}};

}  // namespace olt::catalog

#endif
