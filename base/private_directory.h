/// Directories that other users cannot reach.
#ifndef OLT_BASE_PRIVATE_DIRECTORY_H
#define OLT_BASE_PRIVATE_DIRECTORY_H

#include <sys/types.h>

#include <optional>
#include <string>

#include "base/descriptor.h"

namespace olt {

struct PrivateDirectory {
  std::string what;             ///< its name in error lines, such as "run directory"
  std::string path;             ///< relative paths start at the working directory
  std::optional<gid_t> group;   ///< its members may use the directory, too
  mode_t mode = 0700;           ///< what owner and group may do; nothing for others
  bool create_parents = false;  ///< creates missing parents with mode 0700
};

/// Opens the directory, creating it when it is missing, and gives it the mode and the group.
/// Throws Failure, with nothing changed in an existing directory, when
///  - the last component of the path is a symbolic link, trailing slashes or not;
///  - the directory belongs to another user;
///  - it is not empty and gave anyone permissions beyond mode and group;
///  - a directory above it, or a symbolic link on the way, belongs to a user other than root and
///    the own user, or a directory above it is writable by group or others without the sticky bit.
/// Each component is opened relative to the one before and every check and change goes through the
/// open descriptor: a rename meanwhile cannot redirect it.
Descriptor open_private_directory(const PrivateDirectory &wanted);

}  // namespace olt

#endif
