/// Services for all families (clock, events, listings), and operations on all of them.
#ifndef OLT_BOX_CORE_HARDWARE_H
#define OLT_BOX_CORE_HARDWARE_H

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/clock.h"
#include "box/core/family.h"
#include "box/core/listings.h"
#include "box/core/topology.h"
#include "box/state/state_file.h"
#include "box/watch/event_log.h"

namespace olt::box {

class Hardware {
 public:
  Hardware(const Topology &topology, StateDirectory &state, Listings listings, Clock clock);

  /// What it consists of; must come first.
  void set_families(std::vector<std::unique_ptr<Family>> families) {
    families_ = std::move(families);
  }

  /// Starts from the saved configuration; from the factory state when there is none.
  /// @return why parts of it were left out. Throws StorageFailure when it is damaged.
  std::vector<std::string> start(Misfits misfits);

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

  /// The configuration, with the topology that it belongs to, as an archive.
  std::string configuration();
  /// Replaces the configuration by that in the archive. @return why parts of it were left out.
  /// Throws BadInput; the configuration is then neither the old nor the new one.
  std::vector<std::string> take_configuration(std::string_view data, Misfits misfits);

  /// Describes configuration and running state.
  void describe(Archive &archive);

 private:
  void describe_saved(Archive &archive);
  void describe_configuration(Archive &archive);

  const Topology &topology_;
  StateDirectory &state_;
  Listings listings_;
  Clock clock_;
  EventLog events_;
  std::vector<std::unique_ptr<Family>> families_;
  std::optional<std::string> saved_;  ///< archive
  TimePoint started_;
};

}  // namespace olt::box

#endif
