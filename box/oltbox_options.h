/// The options of oltbox, which its command line takes and completion offers.
#ifndef OLT_BOX_OLTBOX_OPTIONS_H
#define OLT_BOX_OLTBOX_OPTIONS_H

#include "serving/options.h"

namespace olt::box::option {

using serving::Option;
using namespace serving::option;

inline constexpr Option kStateDir = {"--state-dir", "DIR", "Directory of the saved configuration"};
inline constexpr Option kTopology = {"--topology", "FILE",
                                     "JSON file that says what the box is made of"};
inline constexpr Option kFault = {
    "--fault", "TEXT",
    "Fault to arm, such as \"type=12 status=5 from=2 count=3\"; may be repeated"};
inline constexpr Option kFresh = {"--fresh", "", "Forget the saved configuration first"};
inline constexpr Option kAdopt = {
    "--adopt", "", "Keep what fits of a configuration that was saved with another topology"};
inline constexpr Option kListingLimit = {
    "--listing-limit", "BYTES", "Most bytes that listings may take together; default 64 MiB"};
inline constexpr Option kCapture = {"--capture", "FILE", "Record every exchange in a pcapng file"};
inline constexpr Option kCaptureLimit = {
    "--capture-limit", "BYTES", "Most bytes that the capture may take; default: any number"};
inline constexpr Option kCaptureFiles = {"--capture-files", "DIR",
                                         "Directory to copy listings into, for the capture"};

inline constexpr Option kAll[] = {
    kRunDir,       kStateDir,     kTopology, kGroup,        kFault,        kTrace,   kFresh, kAdopt,
    kPendingLimit, kListingLimit, kCapture,  kCaptureLimit, kCaptureFiles, kVersion, kHelp};

}  // namespace olt::box::option

#endif
