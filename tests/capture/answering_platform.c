/* A platform whose replies its program sets. */
#include "tests/capture/answering_platform.h"

#include <stdlib.h>

#include "oltplatform.h"

static void *reply_bytes;
static uint16_t reply_size;

void reply_with(void *bytes, uint16_t size) {
  reply_bytes = bytes;
  reply_size = size;
}

int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t timeout) {
  (void)message_type;
  (void)module;
  (void)request;
  (void)request_length;
  (void)timeout;
  *status = 0;
  if (no_reply != 0) return 0;
  *reply = reply_bytes;
  *reply_length = reply_size;
  *reply_handle = 1;
  return 0;
}

void IPC_Free(uint32_t reply_handle) {
  (void)reply_handle;
}

void *___MALLOC(uint32_t size, const char *tag, int line) {
  (void)tag;
  (void)line;
  return calloc(1, size);
}

void ___FREE(void *block, const char *tag, int line) {
  (void)tag;
  (void)line;
  free(block);
}

void log_log(int level, const char *tag, int line, const char *message) {
  (void)level;
  (void)tag;
  (void)line;
  (void)message;
}
