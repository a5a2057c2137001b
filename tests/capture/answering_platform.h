/* A platform whose replies its program sets. */
#ifndef OLT_TESTS_CAPTURE_ANSWERING_PLATFORM_H
#define OLT_TESTS_CAPTURE_ANSWERING_PLATFORM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The reply to every request from now on. */
void reply_with(void *bytes, uint16_t size);

#ifdef __cplusplus
}
#endif

#endif
