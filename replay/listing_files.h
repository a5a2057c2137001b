/// Listings that replies name.
#ifndef OLT_REPLAY_LISTING_FILES_H
#define OLT_REPLAY_LISTING_FILES_H

#include <sys/types.h>

#include <deque>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "base/descriptor.h"
#include "capture/reader.h"
#include "catalog/layout.h"

namespace olt::replay {

/// Puts the kept listings of exchanges into the run directory, the newest 1024 of them and 64 MiB
/// in all, and removes them at the end.
class ListingFiles {
 public:
  /// what() is one line.
  struct Unavailable : std::runtime_error {
    using std::runtime_error::runtime_error;
  };

  /// @param kept the directory that OLT_CAPTURE_FILES named when it was recorded; throws BadInput
  /// when it is none
  ListingFiles(const std::filesystem::path &kept, const std::filesystem::path &run_dir,
               std::optional<gid_t> group, const catalog::Layout &layout);
  ListingFiles(const ListingFiles &) = delete;
  ListingFiles &operator=(const ListingFiles &) = delete;
  ~ListingFiles();

  /// Where the reply names a listing, writes it; a path in the reply becomes that in the run
  /// directory. Throws Unavailable.
  void provide(const capture::Packet &request, capture::Packet &answer);

 private:
  /// A file in the run directory.
  struct Written {
    std::string name;
    size_t length;
  };

  void write(const std::string &name, const std::string &content);
  void remove(const std::deque<Written>::const_iterator &file);

  const std::filesystem::path kept_;
  const std::filesystem::path run_dir_;  ///< absolute
  const std::optional<gid_t> group_;
  const catalog::Layout &layout_;
  std::deque<Written> written_;  ///< the oldest first
  size_t total_ = 0;             ///< of their lengths
};

}  // namespace olt::replay

#endif
