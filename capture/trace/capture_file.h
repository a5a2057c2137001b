/// The pcapng file of this process. It grows by windows, which are mapped while they fill, so that
/// an exchange is in the file as soon as it is over, without a system call. What a window does not
/// hold yet is a block of padding: whenever the process is killed, the file ends with a whole
/// block, or within padding.
#ifndef OLT_CAPTURE_TRACE_CAPTURE_FILE_H
#define OLT_CAPTURE_TRACE_CAPTURE_FILE_H

#include <stdbool.h>
#include <stdint.h>

#include "capture/trace/packets.h"

/// Reads OLT_CAPTURE and OLT_CAPTURE_LIMIT. @return whether there is anything to record.
bool set_up_capture(void);

/// Takes room for that many bytes, a multiple of 4, for the calling thread alone, and numbers the
/// exchange that goes there. The thread must then commit the room, and cannot be cancelled until it
/// has. @return the room, at a multiple of 4; null when there is none
uint8_t *take_room(uint32_t size, struct exchange *exchange);

/// Makes readers see the room, which holds whole blocks: all of them at once.
void commit_room(uint32_t size);

/// Cuts the padding off the file.
void end_capture(void);

/// In the child of a fork: forgets the parent's file.
void leave_capture_to_parent(void);

/// Ends the recording for good. The first time, complains.
void stop_capture(const char *place, const char *reason);

/// Prints one line to standard error, unless it could block or raise a signal.
void complain(const char *place, const char *reason);

#endif
