// The platform calls that liboltmgmt imports. The flash operations make none of them.
#include <stdlib.h>

#include "oltplatform.h"

int32_t platmsg_syn_result(uint32_t /*type*/, uint32_t /*module*/, void * /*request*/,
                           uint32_t /*length*/, void ** /*reply*/, uint16_t * /*reply_length*/,
                           uint32_t * /*handle*/, uint16_t * /*status*/, uint32_t /*no_reply*/,
                           uint32_t /*timeout*/) {
  abort();
}

void IPC_Free(uint32_t /*handle*/) {
  abort();
}

void *___MALLOC(uint32_t /*size*/, const char * /*tag*/, int /*line*/) {
  abort();
}

void ___FREE(void * /*block*/, const char * /*tag*/, int /*line*/) {
  abort();
}

void log_log(int /*level*/, const char * /*tag*/, int /*line*/, const char * /*message*/) {
  abort();
}
