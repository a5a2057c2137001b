/// Where the user's files go.
#ifndef OLT_BASE_FOLDERS_H
#define OLT_BASE_FOLDERS_H

#include <filesystem>
#include <system_error>

namespace olt {

/// The folder of this project's state below XDG_STATE_HOME, else below ~/.local/state. Does not
/// create it. Throws BadInput when neither XDG_STATE_HOME nor HOME names an absolute path.
std::filesystem::path state_folder();

/// The folder of this project's settings below XDG_CONFIG_HOME, else below ~/.config; empty when
/// neither XDG_CONFIG_HOME nor HOME names an absolute path.
std::filesystem::path configuration_folder();

/// Creates the directory, and what is missing above it, for the user alone.
std::error_code make_directories(const std::filesystem::path &path);

}  // namespace olt

#endif
