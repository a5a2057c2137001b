/// The status words of the box's modules.
#ifndef OLT_BOX_WIRE_STATUS_H
#define OLT_BOX_WIRE_STATUS_H

#include <cstdint>

namespace olt::box {

enum class Status : uint16_t {
  kOk = 0,
  kUnserved = 1,    ///< the module does not serve the message type
  kBadLength = 2,   ///< the request is too short or too long for its type
  kBadValue = 3,    ///< a field holds an invalid value
  kNotFound = 4,    ///< the named object does not exist
  kExists = 5,      ///< the object to be added exists already
  kFull = 6,        ///< the table is full
  kDenied = 7,      ///< wrong password
  kStorage = 8,     ///< a file could not be written; its old content is intact
  kOutOfOrder = 9,  ///< the piece does not continue the firmware update
  kInternal = 10,   ///< internal error; the event log has the details
  kOffline = 11,    ///< the request needs an ONU that is not up
};

/// A short text for the status; never null.
constexpr const char *status_text(uint16_t status) {
  switch (static_cast<Status>(status)) {
    case Status::kOk:
      return "ok";
    case Status::kUnserved:
      return "message type not served";
    case Status::kBadLength:
      return "bad request length";
    case Status::kBadValue:
      return "bad value";
    case Status::kNotFound:
      return "not found";
    case Status::kExists:
      return "exists already";
    case Status::kFull:
      return "table full";
    case Status::kDenied:
      return "denied";
    case Status::kStorage:
      return "storage failed";
    case Status::kOutOfOrder:
      return "out of order";
    case Status::kInternal:
      return "internal failure";
    case Status::kOffline:
      return "ONU not up";
  }
  return "unknown status";
}

}  // namespace olt::box

#endif
