/// The 80-byte request by which the listings of the OLT side name an interface.
#ifndef OLT_TRANSPORT_INTERFACE_REQUEST_H
#define OLT_TRANSPORT_INTERFACE_REQUEST_H

#include "transport/shapes.h"

namespace olt {

/// Unlike in settings, the interface stands behind a word that is zero.
struct InterfaceRequest {
  uint32_t reserved_00;
  uint32_t slot;
  uint32_t port;
  uint32_t argument;
  uint32_t reserved_10[16];
};
static_assert(sizeof(InterfaceRequest) == 80);

/// Asks for a listing of one interface and gives the file's name.
int32_t fetch_interface_listing(uint32_t slot, uint32_t port, char *name, Route route);

}  // namespace olt

#endif
