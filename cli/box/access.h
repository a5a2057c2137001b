/// The box that operations reach: a running one, or the embedded one.
#ifndef OLT_CLI_BOX_ACCESS_H
#define OLT_CLI_BOX_ACCESS_H

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "cli/box/embedded_server.h"

namespace olt::cli {

class Access {
 public:
  explicit Access(BoxOptions options) : options_(std::move(options)) {}

  /// Must come before an exchange; the first call starts the embedded box. Throws Error.
  void open();

  /// Must come before an operation on the flash: replaces this machine's own device by the embedded
  /// box's simulated one, unless the own one was asked for. Throws Error.
  void open_flash(const char *operation);

  bool is_embedded() const { return options_.run_dir.empty(); }

  /// "embedded", or the last part of the run directory.
  std::string name() const;
  /// Which box, for a person.
  std::string description() const;
  /// Opens the box. Throws Error when it does not start or nothing serves its main module.
  void require_box();

  /// What to do about a box that is not there, for the end of an error line; else nothing.
  std::string advice(int32_t result) const;

  /// Ends the embedded box and keeps its state. Throws Error.
  void close();

  /// The same from another thread, when the program is about to end: open() and close() do not
  /// return any more. Throws Error.
  void close_for_good();

  /// Where the box that has been opened writes listings.
  std::filesystem::path listing_dir() const;

 private:
  std::string expected_box() const;
  void forget_flash() const;
  void close_embedded();

  BoxOptions options_;
  bool is_chosen_ = false;  ///< exchanges go to the running box
  std::mutex mutex_;        ///< held while the embedded box starts or ends
  std::optional<EmbeddedServer> embedded_;
  std::filesystem::path flash_image_;
};

}  // namespace olt::cli

#endif
