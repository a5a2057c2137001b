/* A platform for the checks of captures. The reply is the request, unless the message type asks for
 * something else. */
#include <errno.h>
#include <unistd.h>

#include "oltplatform.h"

enum { kFails = 901, kRefuses = 902, kWaits = 903 };

int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t timeout) {
  (void)module;
  (void)timeout;
  errno = ENOTTY;
  if (message_type == kFails) return 0x00010000;
  if (message_type == kWaits) pause();
  *status = message_type == kRefuses ? 5 : 0;
  if (message_type == kRefuses || no_reply != 0) return 0;
  *reply = request;
  *reply_length = (uint16_t)request_length;
  *reply_handle = 1;
  return 0;
}
