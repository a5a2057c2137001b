/// The commands of the control module: JSON about faults, counters, captures and the configuration.
#ifndef OLT_BOX_WATCH_CONTROL_H
#define OLT_BOX_WATCH_CONTROL_H

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "box/state/archive.h"
#include "box/watch/captures.h"
#include "box/watch/configuration_transfer.h"
#include "box/watch/counters.h"
#include "box/watch/faults.h"

namespace olt::box {

class Control {
 public:
  Control(FaultTable &faults, Counters &counters, Captures &captures,
          ConfigurationAccess configuration)
      : faults_(faults),
        counters_(counters),
        captures_(captures),
        transfer_(std::move(configuration)) {}

  /// The reply to the command counters carries what the function describes, as "server".
  void count_server(std::function<void(Archive &)> server) { server_ = std::move(server); }

  /// Answers any text with {"ok":true,...} or {"ok":false,"error":"one line"}.
  std::string answer(std::string_view command);

  /// Whether neither the last command nor its answer can hold a secret.
  bool is_plain() const { return is_plain_; }

 private:
  void carry_out(Archive &command, Archive &reply);
  void clear(Archive &command, Archive &reply);

  FaultTable &faults_;
  Counters &counters_;
  Captures &captures_;
  ConfigurationTransfer transfer_;
  bool is_plain_ = false;
  std::function<void(Archive &)> server_;
};

}  // namespace olt::box

#endif
