#include "capture/trace/kept_listings.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "capture/trace/capture_file.h"
#include "capture/trace/files.h"
#include "capture/trace/listings.h"

enum { kFolder = 200 };

static char folder[kFolder];  // empty: nothing is kept
static char origin[kFolder];
static bool complained;

/// The host platform's; null on a box.
extern int olt_run_dir(char *path, size_t size) __attribute__((weak));

static bool set(char *path, const char *name) {
  const char *text = getenv(name);
  return text != NULL && text[0] == '/' && snprintf(path, kFolder, "%s", text) < kFolder;
}

void set_up_kept_listings(void) {
  if (getenv("OLT_CAPTURE_FILES") == NULL) return;
  if (!set(folder, "OLT_CAPTURE_FILES")) {
    folder[0] = 0;
    complain("OLT_CAPTURE_FILES", "not a path; expected an absolute one of at most 199 bytes");
  }
  if (olt_run_dir == NULL)
    set(origin, "OLT_RUN_DIR");
  else if (olt_run_dir(origin, sizeof origin) != 0)
    origin[0] = 0;
}

void keep_listing(const struct exchange *exchange) {
  const char *name = folder[0] != 0 ? listing_in(exchange) : NULL;
  if (name == NULL) return;
  char from[kFolder + kListingName + 2], path[kKeptPath];
  int state = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
  snprintf(from, sizeof from, "%s/%.32s", name[0] == '/' ? "" : origin, name);
  name_kept_listing(exchange, folder, path);
  int file = open(from, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  bool is_kept = file >= 0 && copy_file(file, path, kMaxListing);
  if (!is_kept && !__atomic_exchange_n(&complained, true, __ATOMIC_ACQ_REL))
    complain(from, strerror(errno));
  if (file >= 0) close(file);
  pthread_setcancelstate(state, NULL);
}
