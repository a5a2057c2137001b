/// The box that operations reach: a running one, or the embedded one.
#ifndef OLT_CLI_ACCESS_H
#define OLT_CLI_ACCESS_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "cli/embedded_server.h"
#include "cli/options.h"

namespace olt::cli {

class Access {
 public:
  explicit Access(const Options &options) : options_(options) {}

  /// Must come before an exchange; starts the embedded box at the first one. Throws Error.
  void open();

  /// Must come before an operation on the flash: puts the embedded box's simulated device in the
  /// place of this machine's own, unless that was asked for. Throws Error.
  void open_flash(const char *operation);

  /// What to do about a box that is not there, for the end of an error line; else nothing.
  std::string advice(int32_t result) const;

  /// Keeps the embedded box. Throws Error.
  void close();

  /// Where the box that has been opened writes listings.
  std::filesystem::path listing_dir() const;

 private:
  void forget_flash() const;

  const Options &options_;
  std::optional<EmbeddedServer> embedded_;
  std::filesystem::path flash_image_;
};

}  // namespace olt::cli

#endif
