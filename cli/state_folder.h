/// Where oltctl keeps things between invocations.
#ifndef OLT_CLI_STATE_FOLDER_H
#define OLT_CLI_STATE_FOLDER_H

#include <filesystem>

namespace olt::cli {

/// $XDG_STATE_HOME/oltmgmt, else $HOME/.local/state/oltmgmt; created, closed to others. Throws
/// Error.
std::filesystem::path state_folder();

}  // namespace olt::cli

#endif
