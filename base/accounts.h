/// Users and groups of this machine.
#ifndef OLT_BASE_ACCOUNTS_H
#define OLT_BASE_ACCOUNTS_H

#include <sys/types.h>

#include <optional>
#include <string>

namespace olt {

/// The group of that name; when none has it, the number that the text gives. Nothing when it is
/// neither.
std::optional<gid_t> find_group(const std::string &name_or_number);

/// "alice (1001)", or the number alone when it has no name.
std::string user_name(uid_t user);
std::string group_name(gid_t number);

}  // namespace olt

#endif
