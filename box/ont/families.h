/// The families of the ONT services, one source file each, and the state of voice lines.
#ifndef OLT_BOX_ONT_FAMILIES_H
#define OLT_BOX_ONT_FAMILIES_H

#include <memory>

#include "box/core/hardware.h"
#include "box/ont/iptv_state.h"
#include "box/pon/onu_family.h"

namespace olt::box {

/// State of a voice line.
enum class LineState : uint32_t {
  kUnknown = 0,  ///< the ONU is not up
  kOff = 1,
  kUnregistered = 2,  ///< on, but without a user account
  kRegistered = 3,
};

LineState line_state(const OnuRecords &records, const OnuPart &line, bool onu_is_up);
const char *line_state_text(LineState state);

std::unique_ptr<Family> make_ont_voice(Hardware &hardware, OnuState &state);
std::unique_ptr<Family> make_ont_wan(Hardware &hardware, OnuState &state);
std::unique_ptr<Family> make_ont_iptv(Hardware &hardware, OnuState &state, IptvState &iptv);

}  // namespace olt::box

#endif
