/// The 80-byte records of the OLT side, which begin with the interface that they are about.
#ifndef OLT_TRANSPORT_INTERFACE_REQUEST_H
#define OLT_TRANSPORT_INTERFACE_REQUEST_H

#include "transport/shapes.h"

namespace olt {

/// In listings, unlike in settings, the interface stands behind a word that is zero.
struct ListingRequest {
  uint32_t reserved_00;
  uint32_t slot;
  uint32_t port;
  uint32_t argument;
  uint32_t reserved_10[16];
};
static_assert(sizeof(ListingRequest) == 80);

/// Asks for a listing of one interface and gives the file's name.
int32_t fetch_interface_listing(uint32_t slot, uint32_t port, char *name, Route route);

/// What a setting of one word asks for, and where in the record the word stands. In one register.
struct Setting {
  constexpr Setting(uint8_t message_type, uint8_t word_offset)
      : word(uint32_t{word_offset} << 8 | message_type) {}

  Route route() const { return static_cast<uint8_t>(word); }
  uint32_t offset() const { return word >> 8; }

  uint32_t word;
};

/// Sets one word of an interface; everything else in the request is zero.
int32_t post_setting(uint32_t slot, uint32_t port, uint32_t value, Setting setting);

/// Asks for the settings of an interface. @return as ask.
int32_t ask_setting(uint32_t slot, uint32_t port, Route route, Reply &reply);

}  // namespace olt

#endif
