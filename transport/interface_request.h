/// The 80-byte requests about one interface of the OLT, given by slot and port.
#ifndef OLT_TRANSPORT_INTERFACE_REQUEST_H
#define OLT_TRANSPORT_INTERFACE_REQUEST_H

#include "transport/shapes.h"

namespace olt {

/// Request of a listing. Unlike in settings, slot and port follow a zero word.
struct ListingRequest {
  uint32_t reserved_00;
  uint32_t slot;
  uint32_t port;
  uint32_t argument;
  uint32_t reserved_10[16];
};
static_assert(sizeof(ListingRequest) == 80);

/// Requests a listing of one interface and returns the file's name.
int32_t fetch_interface_listing(uint32_t slot, uint32_t port, char *name, Route route);

/// Message type of a one-word setting and offset of the word in the record, in one register.
struct Setting {
  constexpr Setting(uint8_t message_type, uint8_t word_offset)
      : word(uint32_t{word_offset} << 8 | message_type) {}

  Route route() const { return static_cast<uint8_t>(word); }
  uint32_t offset() const { return word >> 8; }

  uint32_t word;
};

/// Sets one word of an interface; the rest of the request is zero.
int32_t post_setting(uint32_t slot, uint32_t port, uint32_t value, Setting setting);

/// Requests the settings of an interface. @return as ask.
int32_t ask_setting(uint32_t slot, uint32_t port, Route route, Reply &reply);

}  // namespace olt

#endif
