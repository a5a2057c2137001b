/// A simulated box inside this process, reached by the platform like any other.
#ifndef OLT_CLI_BOX_EMBEDDED_SERVER_H
#define OLT_CLI_BOX_EMBEDDED_SERVER_H

#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "box/box.h"
#include "platform/olthost.h"

namespace olt::cli {

/// Which box, and how the embedded one starts.
struct BoxOptions {
  std::string run_dir;      ///< of a running box; empty for the embedded one
  bool fresh = false;       ///< embedded: forget what was set before
  std::string topology;     ///< embedded: a file; empty for the default topology
  bool adopt = false;       ///< keep what fits of a configuration made with another topology
  bool real_flash = false;  ///< flash operations use this machine's own device
};

class EmbeddedServer {
 public:
  /// Starts it in the state that the previous one left. Throws Error.
  EmbeddedServer(const std::filesystem::path &folder, const BoxOptions &options);
  EmbeddedServer(const EmbeddedServer &) = delete;
  EmbeddedServer &operator=(const EmbeddedServer &) = delete;
  ~EmbeddedServer();

  const std::filesystem::path &listing_dir() const { return listing_dir_; }

  /// Stops it and keeps its state for the next one. Throws Error.
  void close();

 private:
  void stop();

  std::filesystem::path listing_dir_;
  std::unique_ptr<box::Box> box_;
  std::unique_ptr<olt_server, decltype(&olt_server_destroy)> server_;
  std::thread thread_;
};

}  // namespace olt::cli

#endif
