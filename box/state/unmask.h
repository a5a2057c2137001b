/// Configurations that were exported without their secrets.
#ifndef OLT_BOX_STATE_UNMASK_H
#define OLT_BOX_STATE_UNMASK_H

#include <string>
#include <string_view>

namespace olt::box {

/// Replaces each masked secret of an archive with the secret at the same place of the present
/// archive; without one, the mask stays. The members before its first secret identify an element of
/// a list (a user's name); without a secret of its own, its first member does. Throws BadInput when
/// the archive nests too deep.
std::string unmask(std::string_view archive, std::string_view present);

}  // namespace olt::box

#endif
