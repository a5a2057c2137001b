/// A family of messages, with the state that they act on.
#ifndef OLT_BOX_CORE_FAMILY_H
#define OLT_BOX_CORE_FAMILY_H

#include <string>
#include <string_view>
#include <vector>

#include "box/core/report.h"
#include "box/message/message.h"
#include "box/state/archive.h"

namespace olt::box {

/// A family has configuration and running state. Configuration is saved by save_system_config and
/// begins in its factory state. Running state lasts until the next reboot.
class Family {
 public:
  virtual ~Family() = default;

  /// The family's key in state files.
  virtual std::string_view name() const = 0;
  virtual std::vector<Message> messages() = 0;

  /// Describes the configuration; reading it starts from the factory state.
  virtual void configuration(Archive & /*archive*/) {}
  virtual void restore_factory() {}

  /// Describes the running state.
  virtual void running(Archive & /*archive*/) {}
  virtual void reboot() {}

  /// Adds the family's sections to the running-configuration listing.
  virtual void describe_configuration(Report & /*report*/) const {}
  /// Adds the family's sections to the basic-information listing.
  virtual void describe_running(Report & /*report*/) const {}

  /// Approximate memory use of the family's state, in bytes.
  virtual size_t footprint() const = 0;
};

}  // namespace olt::box

#endif
