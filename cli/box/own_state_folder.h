/// The folder of what oltctl keeps between runs.
#ifndef OLT_CLI_BOX_OWN_STATE_FOLDER_H
#define OLT_CLI_BOX_OWN_STATE_FOLDER_H

#include <filesystem>

namespace olt::cli {

/// Creates it when it is missing. Throws Error.
std::filesystem::path own_state_folder();

}  // namespace olt::cli

#endif
