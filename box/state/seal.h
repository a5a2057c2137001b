/// What makes a state file verifiable: a head that says what it is and how long, and a checksum
/// over every byte.
///
///   bytes 0 to 7     "OLTSTATE"
///   bytes 8 to 11    version, 1
///   bytes 12 to 19   length of the content
///   then             the content
///   last 4 bytes     CRC-32C of all before it
///
/// Numbers are little-endian.
#ifndef OLT_BOX_STATE_SEAL_H
#define OLT_BOX_STATE_SEAL_H

#include <string>
#include <string_view>

namespace olt::box {

std::string seal(std::string_view content);

/// The content, a part of the file. Throws BadInput, which says what is wrong with the file.
std::string_view unseal(std::string_view file);

}  // namespace olt::box

#endif
