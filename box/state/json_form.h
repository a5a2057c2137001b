/// The readable form of an archive.
#ifndef OLT_BOX_STATE_JSON_FORM_H
#define OLT_BOX_STATE_JSON_FORM_H

#include <string>
#include <string_view>

namespace olt::box {

enum class Secrets { kMasked, kShown };

/// The archive as JSON, indented, members in the order in which they were written, bytes in hex.
/// Throws BadInput when it is none.
std::string to_json_text(std::string_view archive, Secrets secrets);
/// The same on one line, with its secrets.
std::string to_json_line(std::string_view archive);

/// An archive from JSON: objects, arrays, texts, true and false, numbers from 0. Throws BadInput,
/// "LINE:COLUMN: reason" or the place of a member that is given twice.
std::string from_json_text(std::string_view text);

}  // namespace olt::box

#endif
