/// Files that are replaced atomically, and the directory that one box at a time may use.
#ifndef OLT_BOX_STATE_FILES_H
#define OLT_BOX_STATE_FILES_H

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/descriptor.h"

namespace olt::box {

/// A file could not be read or written. what() is one line with the reason.
class StorageFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Opens the directory; creates it and missing parents, for this user alone. Throws StorageFailure.
Descriptor open_directory(const std::filesystem::path &path);

/// The whole content. Throws StorageFailure.
std::string read_file(const std::filesystem::path &path);

/// Whether what was written is on disk when the call returns, or some time later.
enum class Durable { kYes, kNo };

struct Placement {
  mode_t mode = 0600;
  std::optional<gid_t> group;
  Durable durable = Durable::kYes;
};

/// Replaces or creates the file atomically: at any time, also after the process was killed, the
/// file has either the old or the new content. Throws StorageFailure; the old content is then
/// intact.
void replace_file(const Descriptor &directory, const std::string &name, std::string_view content,
                  const Placement &placement);

/// Another box uses the state directory.
class StateInUse : public StorageFailure {
 public:
  StateInUse(const std::string &directory, const std::string &holder)
      : StorageFailure(directory + ": " + holder +
                       " uses this state directory; end it or name another one"),
        holder_(holder) {}

  /// "process 4711 (oltbox)", or "another box" when the system does not say which.
  const std::string &holder() const { return holder_; }

 private:
  std::string holder_;
};

/// A directory of state files, locked while the object exists. Throws StorageFailure.
class StateDirectory {
 public:
  /// Waits up to patience for another box to end. Throws StateInUse when it does not.
  StateDirectory(std::filesystem::path path, std::chrono::milliseconds patience);

  /// The content; nothing if the file does not exist.
  std::optional<std::string> read(const std::string &name) const;
  void write(const std::string &name, std::string_view content, Durable durable);
  void remove(const std::string &name);
  std::string path_of(const std::string &name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
  Descriptor directory_;
};

}  // namespace olt::box

#endif
