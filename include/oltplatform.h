/// The five calls that a box's platform provides and that liboltmgmt imports.
///
/// Front ends need them for one thing only: an answer block that an operation hands over is
/// released with ___FREE. On a development host, liboltplatform implements them (olthost.h).
#ifndef OLTPLATFORM_H
#define OLTPLATFORM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Sends one request to a module and blocks until it answers or the time-out passes.
///
/// @param[in]  message_type   what is asked for
/// @param[in]  module         number of the serving module
/// @param[in]  request        request record; may be null when the length is 0
/// @param[in]  request_length bytes at request
/// @param[out] reply          address of the reply record, or null when no reply is wanted
/// @param[out] reply_length   bytes at *reply, or null when no reply is wanted
/// @param[out] reply_handle   what IPC_Free takes to release the reply, or null likewise
/// @param[out] status         the module's result code, 0 for success; always given
/// @param[in]  no_reply       1: only the status is wanted; 0: a reply record is wanted
/// @param[in]  timeout        seconds
///
/// The reply belongs to the platform until IPC_Free is called with its handle.
/// @return 0 when the exchange took place, any other value when it failed.
int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t timeout);

/// Releases the reply record that the handle stands for.
void IPC_Free(uint32_t reply_handle);

/// Allocates size bytes, or returns null. The tag names the exported operation that allocates;
/// the line is that of the call site.
void *___MALLOC(uint32_t size, const char *tag, int line);

/// Releases a block of ___MALLOC; same tag as the allocation. A null block is allowed.
void ___FREE(void *block, const char *tag, int line);

/// Writes one line to the platform's log.
void log_log(int level, const char *tag, int line, const char *message);

#ifdef __cplusplus
}
#endif

#endif
