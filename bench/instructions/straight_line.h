// Included before everything else, makes straight lines of the library's sources: all that an
// exported function calls becomes part of it, and nothing is shared.
#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

// What the public header marks for export is flattened as well.
#define visibility(kind) visibility(kind), flatten
// What the sources keep out of line is free to be inlined.
#define noinline unused
