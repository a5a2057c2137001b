/// Services for all families (clock, events, listings), and operations on all of them.
#ifndef OLT_BOX_CORE_HARDWARE_H
#define OLT_BOX_CORE_HARDWARE_H

#include <chrono>
#include <memory>
#include <vector>

#include "base/clock.h"
#include "box/core/family.h"
#include "box/core/listings.h"
#include "box/core/topology.h"
#include "box/state/files.h"
#include "box/watch/event_log.h"

namespace olt::box {

class Hardware {
 public:
  Hardware(const Topology &topology, StateDirectory &state, Listings listings, Clock clock);

  /// Starts the families from the saved configuration, or in their factory state if none was saved.
  /// Throws std::runtime_error if the saved configuration is damaged.
  void start(std::vector<std::unique_ptr<Family>> families);

  const Topology &topology() const { return topology_; }
  EventLog &events() { return events_; }
  const std::vector<std::unique_ptr<Family>> &families() const { return families_; }
  TimePoint now() const { return clock_(); }
  std::chrono::seconds uptime() const;

  /// Writes a listing and puts its name into the reply: after a header of 48 bytes, or at the
  /// start.
  Status list_behind_header(std::string_view kind, const std::string &text, Reply &reply);
  Status list_at_start(std::string_view kind, const std::string &text, Reply &reply);

  /// Throws StorageFailure; the previously saved configuration is then intact.
  void save();
  void restore_factory();
  /// Returns to the saved configuration.
  void reboot();

  Json running() const;
  /// Takes what running gave. Throws BadInput.
  void resume(const Json &value, const std::string &place);

 private:
  Json configuration() const;
  void configure(const Json &value, const std::string &place);
  void load_saved();

  const Topology &topology_;
  StateDirectory &state_;
  Listings listings_;
  Clock clock_;
  EventLog events_;
  std::vector<std::unique_ptr<Family>> families_;
  Json saved_;
  TimePoint started_;
};

}  // namespace olt::box

#endif
