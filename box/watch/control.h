/// The commands of the control module: JSON about faults and counters.
#ifndef OLT_BOX_WATCH_CONTROL_H
#define OLT_BOX_WATCH_CONTROL_H

#include <functional>
#include <string>
#include <string_view>

#include "box/watch/counters.h"
#include "box/watch/faults.h"

namespace olt::box {

class Control {
 public:
  Control(FaultTable &faults, const Counters &counters) : faults_(faults), counters_(counters) {}

  /// Adds the result of the function to the reply to the counters command, as "server".
  void count_server(std::function<Json()> server) { server_ = std::move(server); }

  /// Answers any text with {"ok":true,...} or {"ok":false,"error":"one line"}.
  std::string answer(std::string_view command);

 private:
  Json carry_out(const Json &command);
  Json clear(ObjectReader &reader);

  FaultTable &faults_;
  const Counters &counters_;
  std::function<Json()> server_;
};

}  // namespace olt::box

#endif
