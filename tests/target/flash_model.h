/// The expected contents of the flash, and a comparison of all 4 MiB with them.
#ifndef OLT_TESTS_TARGET_FLASH_MODEL_H
#define OLT_TESTS_TARGET_FLASH_MODEL_H

#include <stdint.h>

/// Writes a pattern without any 0xFF over the whole flash, without the library.
void fill_flash();

/// Change what the model expects.
void model_erased(uint32_t start, uint32_t length);
void model_written(uint32_t start, const void *data, uint32_t length);

/// The expected bytes from this place on.
const uint8_t *model_at(uint32_t start);

/// One check: all 4 MiB are as expected.
void expect_flash_as_modelled(const char *what);

#endif
