/// The rows of the flash storage.
#ifndef OLT_CATALOG_FLASH_H
#define OLT_CATALOG_FLASH_H

#include "catalog/catalog.h"
#include "catalog/row.h"
#include "oltmgmt.h"

namespace olt::catalog {

/// The size of the largest region.
inline constexpr uint32_t kLongestRegion = 2'355'200;

inline constexpr const char *kNoDevice = "the device cannot be opened";

inline constexpr Operation kFlash[] = {
    with({"there is no such region", kNoDevice, "read"},
         OLT_OPERATION(read_from_flash, Address::nowhere(), "Reads from the start of a region",
                       {"region", up_to(kLongestRegion, "buffer"), such_as("16", "length")})),
    with({"there is no such region, or the data does not fit", kNoDevice, "written"},
         example("region=1 buffer=0a0b0c0d",
                 destructive(OLT_OPERATION(save_to_flash, Address::nowhere(),
                                           "Writes to the start of a region, erasing as needed",
                                           {"region", "buffer"})))),
    with({"there is no such region", kNoDevice},
         destructive(OLT_OPERATION(erase_to_flash, Address::nowhere(), "Erases a whole region",
                                   {"region", optional("unused_a"), optional("unused_b")}))),
    with({"the board's record cannot be read or saved"},
         OLT_OPERATION(read_oam_type, Address::nowhere(),
                       "Reads the board's OAM type and clears a pending change",
                       {"oam_type", "pending"})),
    with({"the type is above 2, or the board's record cannot be read or saved"},
         OLT_OPERATION(write_oam_type, Address::nowhere(),
                       "Sets the board's OAM type and whether a change is pending",
                       {"oam_type", up_to(UINT8_MAX, "pending")})),
    falls_back("110100", "read_from_flash region=2 length=1",
               OLT_OPERATION(read_olt_serial, Address::nowhere(), "Reads the OLT's serial",
                             {text(10, "serial")})),
};

}  // namespace olt::catalog

#endif
