/// The simulated box as a library: serves modules 2, 18, 22 and 23 and keeps their state.
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

#include "capture/capture_file.h"
#include "platform/olthost.h"

namespace olt::box {

/// Module that takes control commands (faults, counters). No operation can reach it: operations
/// name modules in 8 bits.
inline constexpr uint32_t kControlModule = 1000;

/// Message types of that module: a control command, and a piece of a capture. Captures hold no
/// exchange of the latter.
inline constexpr uint32_t kControlCommand = 1;
inline constexpr uint32_t kCapturePiece = 2;

/// The control command that arms the fault described by the text, such as
/// "type=12 status=5 from=2 count=3". Throws BadInput.
std::string fault_add_command(std::string_view text);

struct Options {
  /// Directory of the saved state; created if missing. Locked while the box exists.
  std::filesystem::path state_dir;
  /// Directory of the listings; created with the first listing if missing.
  std::filesystem::path listing_dir;
  /// JSON topology file; empty for that of the kept state, or the default one.
  std::filesystem::path topology_file;
  /// When the state was made with another topology: keep what fits.
  bool adopt = false;
  /// Also keep the running state in state_dir, so that the next box continues from it.
  bool keep_running_state = false;
  /// Discard all saved state first.
  bool fresh = false;
  /// Faults to arm at the start, in the form that fault_add_command takes.
  std::vector<std::string> faults;
  /// Group whose members may also read the listings.
  std::optional<gid_t> listing_group;
  /// Most bytes that all listings may take together; the oldest are removed.
  uint32_t listing_limit = 64 << 20;
  /// A capture of all exchanges; nothing: none.
  std::optional<capture::CaptureFileOptions> capture = std::nullopt;
  /// Called with one line for each part of the state that was left out; may be empty.
  std::function<void(std::string_view)> notice;
  /// Called with one line per exchange; may be empty.
  std::function<void(std::string_view)> trace;
};

/// A simulated box. Its modules are served by an olt_server; use it only from the thread that runs
/// the server.
class Box {
 public:
  /// Throws std::runtime_error, whose one line says what is wrong and what is expected; BadInput
  /// if the topology file or a fault is wrong.
  explicit Box(Options options);
  Box(const Box &) = delete;
  Box &operator=(const Box &) = delete;
  ~Box();

  /// Adds the box's modules and its control module to the server. The box must outlive the server's
  /// last run. Throws like the constructor.
  void serve(olt_server *server);

  /// Saves the running state if the options ask for it. Throws like the constructor.
  void keep();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace olt::box

#endif
