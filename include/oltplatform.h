/// The five calls that a box's platform provides and liboltmgmt imports.
///
/// Front ends need only ___FREE, to release the blocks that some operations return. On a
/// development host, liboltplatform implements the calls (olthost.h).
#ifndef OLTPLATFORM_H
#define OLTPLATFORM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Sends one request to a module and blocks until it answers or the time-out passes.
///
/// @param[in]  message_type   identifies the request to the module
/// @param[in]  module         number of the module
/// @param[in]  request        request record; may be null if request_length is 0
/// @param[in]  request_length number of bytes at request
/// @param[out] reply          address of the reply record; null if no_reply is 1
/// @param[out] reply_length   number of bytes at *reply; null if no_reply is 1
/// @param[out] reply_handle   handle to release the reply with; null if no_reply is 1
/// @param[out] status         the module's result code, 0 on success; never null
/// @param[in]  no_reply       1 if only the status is wanted, 0 if a reply record is wanted
/// @param[in]  timeout        seconds
///
/// The reply belongs to the platform and is valid until IPC_Free is called with its handle.
/// @return 0 if the module answered; any other value if the exchange failed.
int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t timeout);

/// Releases the reply record with this handle.
void IPC_Free(uint32_t reply_handle);

/// Allocates size bytes. The tag is the name of the exported operation that allocates; the line is
/// that of the call.
///
/// @return the block, or null if there is no memory.
void *___MALLOC(uint32_t size, const char *tag, int line);

/// Releases a block from ___MALLOC, with the same tag. The block may be null.
void ___FREE(void *block, const char *tag, int line);

/// Writes one line to the platform's log.
void log_log(int level, const char *tag, int line, const char *message);

#ifdef __cplusplus
}
#endif

#endif
