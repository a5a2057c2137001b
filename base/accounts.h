/// Users and groups of this machine.
#ifndef OLT_BASE_ACCOUNTS_H
#define OLT_BASE_ACCOUNTS_H

#include <sys/types.h>

#include <optional>
#include <string>

namespace olt {

/// Finds a group by name or, if no group has that name, by number. Nothing if the text is neither.
std::optional<gid_t> find_group(const std::string &name_or_number);

/// "alice (1001)", or the number alone when it has no name.
std::string user_name(uid_t user);
std::string group_name(gid_t number);

}  // namespace olt

#endif
