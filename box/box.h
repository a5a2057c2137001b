/// The simulated box: modules 2, 18, 22 and 23 with state behind them, as a library.
#ifndef OLT_BOX_BOX_H
#define OLT_BOX_BOX_H

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/olthost.h"

namespace olt::box {

/// Module number of the box's own controls (faults, counters), beside the modules that it
/// simulates. Beyond the 8 bits that an operation can name.
inline constexpr uint32_t kControlModule = 1000;

/// The command for the control module that arms the fault described by the text, for example
/// "type=12 status=5 from=2 count=3". Throws BadInput.
std::string fault_add_command(std::string_view text);

struct Options {
  /// Where configurations live; created when missing. Locked while the box exists.
  std::filesystem::path state_dir;
  /// Where listings are written; created when missing, with the first one.
  std::filesystem::path listing_dir;
  /// JSON topology; empty for that of the kept state, or the default one.
  std::filesystem::path topology_file;
  /// When the state was made with another topology: keep what fits.
  bool adopt = false;
  /// Also keep the running state in state_dir, so that the next box goes on from it.
  bool keep_running_state = false;
  /// Forget saved and kept state first.
  bool fresh = false;
  /// Faults armed from the start, as fault_add_command takes them.
  std::vector<std::string> faults;
  /// Group whose members may read the listings too.
  std::optional<gid_t> listing_group;
  /// Takes a line for each part of the state that was left out; may be empty.
  std::function<void(std::string_view)> notice;
  /// Takes a line per exchange; empty for none.
  std::function<void(std::string_view)> trace;
};

/// A simulated box. Its modules answer through a server; all its calls come from the thread that
/// runs the server.
class Box {
 public:
  /// Throws std::runtime_error with one line that says what is wrong and what is expected; BadInput
  /// when that is the topology file or a fault.
  explicit Box(Options options);
  Box(const Box &) = delete;
  Box &operator=(const Box &) = delete;
  ~Box();

  /// Adds the box's modules and its control module to the server, which must not run any more when
  /// the box is gone. Throws as the constructor does.
  void serve(olt_server *server);

  /// Writes the running state, when the options ask for it. Throws as the constructor does.
  void keep();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace olt::box

#endif
