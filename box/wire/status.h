/// The status words with which the box's modules answer.
#ifndef OLT_BOX_WIRE_STATUS_H
#define OLT_BOX_WIRE_STATUS_H

#include <cstdint>

namespace olt::box {

enum class Status : uint16_t {
  kOk = 0,
  kUnserved = 1,    ///< the module does not serve the message type
  kBadLength = 2,   ///< the request is too short or too long for its type
  kBadValue = 3,    ///< a field holds a value that it must not hold
  kNotFound = 4,    ///< what the request names does not exist
  kExists = 5,      ///< what the request would add exists already
  kFull = 6,        ///< the table has no room for another entry
  kDenied = 7,      ///< wrong password
  kStorage = 8,     ///< a file could not be written; what it held before still stands
  kOutOfOrder = 9,  ///< the piece of an update stream does not continue the update
  kInternal = 10,   ///< the box failed; the event log says how
  kOffline = 11,    ///< only the ONU could do it or tell, and it is not up
};

/// A few words for a status; never null.
const char *status_text(uint16_t status);

}  // namespace olt::box

#endif
