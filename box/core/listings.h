/// Files of listings, written atomically under unique names.
#ifndef OLT_BOX_CORE_LISTINGS_H
#define OLT_BOX_CORE_LISTINGS_H

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "box/state/files.h"

namespace olt::box {

/// The listings in one directory.
class Listings {
 public:
  Listings(std::filesystem::path directory, std::optional<gid_t> group);

  /// Writes the text to a new file KIND-NUMBER.txt and removes the oldest file if there are too
  /// many. @return the file's name, at most 31 characters. Throws StorageFailure.
  std::string write(std::string_view kind, std::string_view text);

 private:
  void find_numbers();

  std::filesystem::path directory_;
  Placement placement_;
  std::optional<uint32_t> last_number_;
  std::multimap<uint32_t, std::string> names_;
};

}  // namespace olt::box

#endif
