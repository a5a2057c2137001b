/// The file that holds the flash's bytes.
#ifndef OLT_FLASH_DEVICE_IMAGE_H
#define OLT_FLASH_DEVICE_IMAGE_H

#include <stdint.h>

#include "flash_device/flash_device.h"

namespace olt::flash_device {

constexpr uint32_t kFlashSize = 0x400000;

/// Makes sure that the image is there and has the right size; creates it when it is missing. An
/// image is there as a whole or not at all, whoever else creates it.
bool prepare_image(const char *path, char (&error)[kErrorLength]);

}  // namespace olt::flash_device

#endif
