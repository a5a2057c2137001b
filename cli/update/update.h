/// Firmware updates: an image sent in pieces, and followed to its end.
#ifndef OLT_CLI_UPDATE_UPDATE_H
#define OLT_CLI_UPDATE_UPDATE_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "base/text.h"
#include "catalog/layout.h"
#include "cli/box/access.h"
#include "cli/box/end_signals.h"
#include "cli/call/call.h"
#include "cli/output/result.h"
#include "cli/text/error.h"
#include "cli/update/image_file.h"

namespace olt::cli {

/// What can be updated, and by which operations.
struct UpdateTarget {
  const char *name;
  const char *stream;  ///< the operation that sends a piece
  const char *status;  ///< the one that reads the progress; null: the last answer says how it ended
  const char *member;  ///< of a layout, with what a piece looks like
  const std::optional<catalog::ImagePieces> &(catalog::Layout::*pieces)() const;
};

std::span<const UpdateTarget> update_targets();

/// A signal ended the update between two pieces, or after the last one.
class Interrupted : public Error {
 public:
  using Error::Error;
};

/// Shows an update while it goes on, and how it ended.
class UpdateDisplay {
 public:
  virtual ~UpdateDisplay() = default;
  virtual void sent(uint32_t bytes) = 0;
  /// The progress that the module reports once it has the whole image.
  virtual void writing(const NamedValue &progress) = 0;
  virtual void complete() = 0;
  /// @param sent bytes that the module has confirmed
  virtual void failed(const Error &error, uint32_t sent) = 0;
};

class Update {
 public:
  /// Opens the image.
  /// @param fields of the head of each piece, as FIELD=VALUE
  /// Throws Error.
  Update(const UpdateTarget &target, const catalog::Layout &layout, const std::string &path,
         std::span<const std::string> fields);

  const ImageFile &image() const { return image_; }
  /// Bytes that the module has confirmed.
  uint32_t sent() const { return sent_; }

  /// Returns once the module says that the update is complete. The box must be open.
  /// @param patience how long the progress may stay the same after the last piece
  /// Throws Error, whose line says how the box is left.
  void run(const Access &box, UpdateDisplay &display,
           std::chrono::milliseconds patience = std::chrono::minutes(10));

 private:
  void set_field(const std::string &word);
  void send_piece(const Access &box);
  void follow(const Access &box, UpdateDisplay &display, const DeferredEnd &end,
              std::chrono::milliseconds patience);
  [[noreturn]] void stop(const std::string &why, const std::string &advice = "") const;
  [[noreturn]] void interrupt() const;
  std::string state() const;

  const UpdateTarget &target_;
  const catalog::Layout &layout_;
  const catalog::ImagePieces &pieces_;
  ImageFile image_;
  Bytes head_;
  uint32_t sent_ = 0;
};

}  // namespace olt::cli

#endif
