/// State files: archives, sealed.
#ifndef OLT_BOX_STATE_STATE_FILE_H
#define OLT_BOX_STATE_STATE_FILE_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "box/state/archive.h"
#include "box/state/files.h"

namespace olt::box {

inline constexpr char kSavedFile[] = "saved.state";
inline constexpr char kRunningFile[] = "running.state";

/// The archive in the file; nothing when there is no such file. Throws StorageFailure with one line
/// when the file is damaged.
std::optional<std::string> read_state_file(const StateDirectory &state, const std::string &name);

enum class Misfits { kRefuse, kLeaveOut };

/// Lets the function read some members of the archive of the file. Throws StorageFailure with one
/// line, which names the file.
void look_into_state(const StateDirectory &state, const std::string &name, std::string_view data,
                     const std::function<void(Archive &)> &describe);

/// Lets the function read the archive of the file. @return why each element that did not fit was
/// left out. Throws StorageFailure with one line, which names the file.
std::vector<std::string> take_state(const StateDirectory &state, const std::string &name,
                                    std::string_view data, Misfits misfits,
                                    const std::function<void(Archive &)> &describe);

}  // namespace olt::box

#endif
