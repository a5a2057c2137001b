/// Configurations that were exported without their secrets.
#ifndef OLT_BOX_STATE_UNMASK_H
#define OLT_BOX_STATE_UNMASK_H

#include <string>
#include <string_view>

namespace olt::box {

/// An archive from JSON in which each masked secret is replaced by the one that stands at the same
/// place of the present archive. A mask for which there is none stays. An element of a list is
/// found by the members that it has before its first secret, as a user's name; one without a secret
/// of its own by its first member. Throws BadInput when the archive nests too deep.
std::string unmask(std::string_view archive, std::string_view present);

}  // namespace olt::box

#endif
