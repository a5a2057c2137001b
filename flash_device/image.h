/// The image file.
#ifndef OLT_FLASH_DEVICE_IMAGE_H
#define OLT_FLASH_DEVICE_IMAGE_H

#include <stdint.h>

#include "flash_device/flash_device.h"

namespace olt::flash_device {

constexpr uint32_t kFlashSize = 0x400000;

/// Checks that the image exists and has the right size; creates it when it is missing. Creation is
/// atomic, also when several processes create the same image.
bool prepare_image(const char *path, char (&error)[kErrorLength]);

}  // namespace olt::flash_device

#endif
