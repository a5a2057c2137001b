/// Where requests and replies carry secrets.
#ifndef OLT_CAPTURE_TRACE_SECRETS_H
#define OLT_CAPTURE_TRACE_SECRETS_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Copies a record, with every byte of a secret as '*'. @return whether there was one.
bool copy_masked(uint8_t *to, const uint8_t *record, uint32_t length, uint32_t module,
                 uint32_t message_type);

#ifdef __cplusplus
}
#endif

#endif
