#include "box/wire/status.h"

namespace olt::box {

const char *status_text(uint16_t status) {
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
