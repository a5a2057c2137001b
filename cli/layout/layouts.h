/// The layouts that there are: built in, and in folders.
#ifndef OLT_CLI_LAYOUT_LAYOUTS_H
#define OLT_CLI_LAYOUT_LAYOUTS_H

#include <memory>
#include <string>
#include <vector>

#include "catalog/layout.h"

namespace olt::cli {

/// The name of a layout: the given one, else the environment's, else the box's.
std::string layout_in_use(const std::string &given);

/// A built-in layout, or one in a folder, by its name; or the one in a file, whose name has a '/'
/// or ends with .json. Throws Error.
std::shared_ptr<const catalog::Layout> layout_named(const std::string &name);

/// The one in a file. Throws Error.
catalog::Layout read_layout(const std::string &path);

struct FoundLayout {
  std::string name;
  std::string path;   ///< empty when it is built in
  std::string error;  ///< why it cannot be used; else empty
};

/// All of them, the built-in ones first. A name that is in two folders stands for its first file.
std::vector<FoundLayout> found_layouts();

}  // namespace olt::cli

#endif
