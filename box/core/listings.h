/// Files of listings, written atomically under unique names and limited in number and bytes.
#ifndef OLT_BOX_CORE_LISTINGS_H
#define OLT_BOX_CORE_LISTINGS_H

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/descriptor.h"
#include "box/state/files.h"

namespace olt::box {

/// The listings in one directory.
class Listings {
 public:
  /// The limit is on the bytes of all listings together.
  Listings(std::filesystem::path directory, std::optional<gid_t> group, uint64_t limit);

  /// Writes the text to a new file KIND-NUMBER.txt. Removes the oldest files first if there would
  /// be too many or too long ones. @return the file's name, at most 31 characters. Throws
  /// StorageFailure, with nothing removed if the text alone exceeds the limit.
  std::string write(std::string_view kind, std::string_view text);

 private:
  struct File {
    std::string name;
    uint64_t length;
  };

  void find_files(const Descriptor &directory);
  void make_room(const Descriptor &directory, uint64_t length);
  bool has_room(uint64_t length) const;

  std::filesystem::path directory_;
  Placement placement_;
  uint64_t limit_;
  std::optional<uint32_t> last_number_;
  std::multimap<uint32_t, File> files_;
  uint64_t total_ = 0;  ///< bytes of the files
};

}  // namespace olt::box

#endif
