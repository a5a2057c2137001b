/// One line per exchange.
#ifndef OLT_BOX_WATCH_TRACE_H
#define OLT_BOX_WATCH_TRACE_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "box/message/message.h"
#include "box/watch/faults.h"

namespace olt::box {

struct Exchange {
  TimePoint time;
  uint32_t module;
  uint32_t type;
  std::string_view name;  ///< of the message; empty when it is not served
  SecretBytes secret;     ///< shown as "**"
  std::span<const uint8_t> request;
  const Fault *fault;  ///< the one applied; null when there is none
};

std::string trace_line(const Exchange &exchange, const Answer &answer);

}  // namespace olt::box

#endif
