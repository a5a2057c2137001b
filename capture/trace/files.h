/// What writers of files share.
#ifndef OLT_CAPTURE_TRACE_FILES_H
#define OLT_CAPTURE_TRACE_FILES_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Whether the kernel would send SIGXFSZ when a file gets that length.
bool exceeds_own_limit(uint64_t length);

/// Copies a regular file of at most that many bytes; never waits on a file of another kind, which
/// is EFBIG, too. The path must be free. @return false, with errno and no copy, on failure
bool copy_file(int from, const char *path, uint32_t max);

#ifdef __cplusplus
}
#endif

#endif
