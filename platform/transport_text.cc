#include "platform/olthost.h"

const char *olt_transport_text(int32_t result) {
  switch (static_cast<uint32_t>(result) & 0xffff0000u) {
    case OLT_TRANSPORT_OK:
      return "the exchange took place";
    case OLT_TRANSPORT_TIMED_OUT:
      return "no answer within the time-out";
    case OLT_TRANSPORT_NO_MODULE:
      return "nothing serves the module";
    case OLT_TRANSPORT_LOST:
      return "the module went away before it answered";
    case OLT_TRANSPORT_REFUSED:
      return "one side runs as a user that the other does not accept";
    case OLT_TRANSPORT_GARBLED:
      return "the answer is not a well-formed frame";
    case OLT_TRANSPORT_TOO_LONG:
      return "the request is longer than can be sent";
    case OLT_TRANSPORT_NO_RESOURCES:
      return "out of memory, descriptors or reply handles";
    case OLT_TRANSPORT_BAD_CALL:
      return "a null pointer where one must be given";
    default:
      return "unknown transport result";
  }
}
