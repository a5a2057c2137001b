/// What should be on the flash, byte for byte, and a comparison of all 4 MiB with what is.
#ifndef OLT_TESTS_TARGET_FLASH_MODEL_H
#define OLT_TESTS_TARGET_FLASH_MODEL_H

#include <stdint.h>

/// Writes a pattern without any 0xFF over the whole flash, past the library.
void fill_flash();

/// What the model expects from now on.
void model_erased(uint32_t start, uint32_t length);
void model_written(uint32_t start, const void *data, uint32_t length);

/// The bytes of the model.
const uint8_t *model_at(uint32_t start);

/// One check: all 4 MiB are as the model has them.
void expect_flash_as_modelled(const char *what);

#endif
