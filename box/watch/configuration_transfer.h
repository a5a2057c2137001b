/// The configuration in pieces, as control commands carry it.
#ifndef OLT_BOX_WATCH_CONFIGURATION_TRANSFER_H
#define OLT_BOX_WATCH_CONFIGURATION_TRANSFER_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "box/state/archive.h"
#include "box/state/state_file.h"

namespace olt::box {

/// How the box's configuration is read and replaced.
struct ConfigurationAccess {
  /// The configuration as an archive.
  std::function<std::string()> read;
  /// Takes a configuration from JSON. @return why parts were left out. Throws BadInput, having
  /// changed nothing.
  std::function<std::vector<std::string>(std::string_view json, Misfits misfits)> take;
};

/// One export and one import at a time. A first piece begins a new transfer and ends the one
/// before: a client that continues the old one gets an error. Both functions throw BadInput.
class ConfigurationTransfer {
 public:
  explicit ConfigurationTransfer(ConfigurationAccess access) : access_(std::move(access)) {}

  /// Answers with the piece at the command's offset. At offset 0, reads the configuration first.
  void send(Archive &command, Archive &reply);
  /// Adds a piece. After the last one, the box takes the configuration.
  void receive(Archive &command, Archive &reply);

 private:
  struct Transfer {
    uint32_t number = 0;
    std::string text;  ///< of an import, what was received so far
  };

  void begin_export(Archive &command, size_t offset);
  void begin_import(Archive &command, size_t offset);
  void finish_import(Archive &reply);

  ConfigurationAccess access_;
  Transfer export_;
  Transfer import_;
  uint32_t import_length_ = 0;
  Misfits misfits_ = Misfits::kRefuse;
};

}  // namespace olt::box

#endif
