/// Faults that a tester arms: requests that are delayed, refused, dropped or left unanswered.
#ifndef OLT_BOX_WATCH_FAULTS_H
#define OLT_BOX_WATCH_FAULTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "box/message/message.h"
#include "box/state/archive.h"

namespace olt::box {

struct Fault {
  uint32_t id = 0;
  std::optional<uint32_t> module;  ///< any when empty
  uint32_t type = 0;
  uint16_t status = 0;
  uint32_t delay_ms = 0;
  Answer::Action action = Answer::Action::kSend;
  uint64_t from = 1;   ///< number of the first matching request it applies to
  uint64_t count = 0;  ///< how many requests it applies to; 0 means all that follow
  uint64_t seen = 0;
  uint64_t applied = 0;

  /// Whether the next matching request comes after the last one that it applies to.
  bool is_used_up() const { return count != 0 && seen >= from && seen - from + 1 >= count; }
  /// A fault that only delays lets the request be handled.
  bool replaces_handling() const { return status != 0 || action != Answer::Action::kSend; }
};

std::string_view action_name(Answer::Action action);

/// An archive of what the text describes: words KEY=VALUE, or the name of an action alone. Throws
/// BadInput.
std::string fault_from_text(std::string_view text);

/// The fault that an order describes. Throws BadInput.
Fault read_fault(Archive &order);

class FaultTable {
 public:
  /// Forgets the oldest fault that is used up when there is no room.
  /// @return the fault's id, never used before. Throws BadInput when it has no effect, or there are
  /// too many.
  uint32_t arm(Fault fault);
  bool clear(uint32_t id);
  /// @return the number of faults cleared.
  size_t clear_all();

  /// Counts the request for every fault that matches it.
  /// @return the oldest fault that applies to the request; null when none does.
  const Fault *apply(uint32_t module, uint32_t type);

  const std::vector<Fault> &faults() const { return faults_; }
  /// The armed faults, as the member "faults".
  void describe_faults(Archive &archive);
  void describe(Archive &archive);

 private:
  std::vector<Fault> faults_;
  uint32_t last_id_ = 0;
};

}  // namespace olt::box

#endif
