/// The options of oltreplay, which its command line takes and completion offers.
#ifndef OLT_REPLAY_OPTIONS_H
#define OLT_REPLAY_OPTIONS_H

#include "serving/options.h"

namespace olt::replay::option {

using serving::Option;
using namespace serving::option;

inline constexpr Option kMatch = {
    "--match", "",
    "Answer equal requests in their recorded order, whoever sends them; the default"};
inline constexpr Option kLast = {"--last", "", "Answer equal requests as the last of them"};
inline constexpr Option kStrict = {"--strict", "",
                                   "Have each client repeat the requests of one recorded process"};
inline constexpr Option kTiming = {
    "--timing", "TIMING",
    "When to answer: fast (at once; the default), real (as recorded) or xN (N times as fast)"};
inline constexpr Option kFiles = {"--files", "DIR",
                                  "Directory of the listings that OLT_CAPTURE_FILES kept"};
inline constexpr Option kLayout = {"--layout", "LAYOUT",
                                   "What bytes mean in messages, as for oltctl"};

inline constexpr Option kAll[] = {kMatch, kLast,   kStrict,       kTiming, kFiles,   kLayout,
                                  kTrace, kRunDir, kPendingLimit, kGroup,  kVersion, kHelp};

}  // namespace olt::replay::option

#endif
