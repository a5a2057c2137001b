/// The box without sockets: a request in, an answer out.
#ifndef OLT_BOX_SIMULATOR_H
#define OLT_BOX_SIMULATOR_H

#include <chrono>
#include <map>
#include <span>
#include <utility>

#include "base/clock.h"
#include "box/box.h"
#include "box/core/hardware.h"
#include "box/families.h"
#include "box/message/message.h"
#include "box/state/files.h"
#include "box/watch/captures.h"
#include "box/watch/control.h"
#include "box/watch/counters.h"
#include "box/watch/faults.h"
#include "box/watch/trace.h"

namespace olt::box {

class Simulator {
 public:
  /// Waits up to patience for another box to release the state directory. Throws like Box.
  explicit Simulator(Options options, Clock clock = std::chrono::system_clock::now,
                     std::chrono::milliseconds patience = std::chrono::seconds(5));

  Answer handle(uint32_t module, uint32_t type, std::span<const uint8_t> request);
  void keep();
  Control &control() { return control_; }
  Captures &captures() { return captures_; }

 private:
  using Key = std::pair<uint32_t, uint32_t>;

  void add_messages();
  void start();
  /// @return false when no running state was kept.
  bool resume();
  void describe_running(Archive &archive);
  Misfits misfits() const;
  void report_left_out(const std::vector<std::string> &left_out) const;
  std::vector<std::string> import_configuration(std::string_view json, Misfits misfits);

  Listings listings() const;

  Answer answer_capture(std::span<const uint8_t> request);
  Answer answer_control(uint32_t type, std::span<const uint8_t> request);
  Answer answer_module(uint32_t module, uint32_t type, std::span<const uint8_t> request);
  Status serve(const Message &message, std::span<const uint8_t> request, Reply &reply);
  void count(uint32_t module, uint32_t type, const Answer &answer, const Fault *fault);
  void trace(Exchange exchange, const Answer &answer) const;

  Options options_;
  Clock clock_;
  StateDirectory directory_;
  Topology topology_;
  SharedState state_;
  Hardware hardware_;
  FaultTable faults_;
  Counters counters_;
  Captures captures_;
  Control control_;
  std::map<Key, Message> messages_;
  std::map<uint32_t, SecretBytes>
      secrets_;  ///< by type, for any module: a misdirected request is secret, too
};

}  // namespace olt::box

#endif
