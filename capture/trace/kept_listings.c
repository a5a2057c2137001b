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

static char destination[kFolder];  // empty: nothing is kept
static bool complained;

/// The host platform's; null on a box.
extern int olt_run_dir(char *path, size_t size) __attribute__((weak));

static bool set(char *path, const char *name) {
  const char *text = getenv(name);
  return text != NULL && text[0] == '/' && snprintf(path, kFolder, "%s", text) < kFolder;
}

void set_up_kept_listings(void) {
  if (getenv("OLT_CAPTURE_FILES") == NULL) return;
  if (!set(destination, "OLT_CAPTURE_FILES")) {
    destination[0] = 0;
    complain("OLT_CAPTURE_FILES", "not a path; expected an absolute one of at most 199 bytes");
  }
}

/// The folder of listings; empty when it is not known. The program may choose it at run time.
static void find_origin(char *path) {
  path[0] = 0;
  if (olt_run_dir == NULL)
    set(path, "OLT_RUN_DIR");
  else if (olt_run_dir(path, kFolder) != 0)
    path[0] = 0;
}

void keep_listing(const struct exchange *exchange) {
  const char *name = destination[0] != 0 ? listing_in(exchange) : NULL;
  if (name == NULL) return;
  char origin[kFolder], listing[kFolder + kListingName + 2], path[kKeptPath];
  int state = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
  find_origin(origin);
  bool is_path = name[0] == '/';
  snprintf(listing, sizeof listing, "%s%s%.32s", is_path ? "" : origin, is_path ? "" : "/", name);
  name_kept_listing(exchange, destination, path);
  int from = open(listing, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  bool is_kept = from >= 0 && copy_file(from, path, kMaxListing);
  if (!is_kept && !__atomic_exchange_n(&complained, true, __ATOMIC_ACQ_REL))
    complain(listing, strerror(errno));
  if (from >= 0) close(from);
  pthread_setcancelstate(state, NULL);
}
