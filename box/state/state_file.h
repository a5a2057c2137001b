/// JSON state files: {"format": "oltbox NAME", "version": 1, and the members}.
#ifndef OLT_BOX_STATE_STATE_FILE_H
#define OLT_BOX_STATE_STATE_FILE_H

#include <functional>
#include <string>

#include "box/state/files.h"
#include "box/state/json.h"

namespace olt::box {

inline constexpr char kSavedFile[] = "saved.json";
inline constexpr char kRunningFile[] = "running.json";

/// Hands the members to the function, which must ask for all of them.
/// @return false when there is no such file. Throws std::runtime_error with one line, which names
/// the file and the reason, when the file is not what write_state_file wrote.
bool read_state_file(const StateDirectory &state, const std::string &name,
                     const std::function<void(ObjectReader &)> &take);

/// Throws StorageFailure; the old file then stands.
void write_state_file(StateDirectory &state, const std::string &name, const Json &members);

}  // namespace olt::box

#endif
