/* A library with one fault that liboltmgmt must not have; its build selects which. */
#include <stdint.h>
#include <stdlib.h>

#include "oltplatform.h"

int32_t sample_operation(void);

#if defined(WITH_ZEROED_DATA)
static int32_t g_calls;
#elif defined(WITH_FILLED_DATA)
static int32_t g_calls = 1;
#elif defined(WITH_CODE_RELOCATION)
__asm__(".text\n.balign 8\n.dc.a sample_operation\n");
#elif defined(WITH_CONSTRUCTOR)
__attribute__((constructor)) static void start(void) {
  IPC_Free(0);
}
#endif

int32_t sample_operation(void) {
  uint16_t status = 0;
#if defined(WITH_ZEROED_DATA) || defined(WITH_FILLED_DATA)
  ++g_calls;
  if (g_calls > 5) return g_calls;
#elif defined(WITH_UNLISTED_IMPORT)
  if (getenv("SAMPLE") != NULL) return 1;
#endif
  return platmsg_syn_result(1, 2, NULL, 0, NULL, NULL, NULL, &status, 1, 10) | status;
}
