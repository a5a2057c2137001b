// platmsg_syn_result in front of the platform's. It returns what the platform's returned, with the
// platform's errno, whatever becomes of the recording.
#include <dlfcn.h>
#include <errno.h>
#include <stdbool.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "capture/trace/capture_file.h"
#include "capture/trace/kept_listings.h"
#include "capture/trace/packets.h"
#include "oltplatform.h"

typedef int32_t platform_call(uint32_t, uint32_t, void *, uint32_t, void **, uint16_t *, uint32_t *,
                              uint16_t *, uint32_t, uint32_t);

// Where pthread_atfork is not in the shared C library itself, it is a static function that calls
// __register_atfork, which is.
extern int __register_atfork(void (*)(void), void (*)(void), void (*)(void), void *)
    __attribute__((weak));
extern int pthread_atfork(void (*)(void), void (*)(void), void (*)(void)) __attribute__((weak));

static const int32_t kNoModule = 0x00020000;

static bool records, with_secrets;
static platform_call *platform;
static _Thread_local uint32_t thread;  // 0: not asked for yet

static platform_call *find_platform(void) {
  platform_call *found = __atomic_load_n(&platform, __ATOMIC_RELAXED);
  if (found != NULL) return found;
  // Never "return dlsym(...)": as a tail call, it would search behind the caller of this library.
  void *next = dlsym(RTLD_NEXT, "platmsg_syn_result");
  if (next == NULL) return NULL;
  memcpy(&found, &next, sizeof found);
  __atomic_store_n(&platform, found, __ATOMIC_RELAXED);
  return found;
}

static void begin_child(void) {
  thread = 0;
  leave_capture_to_parent();
}

static int call_in_children(void (*function)(void)) {
  if (__register_atfork != NULL) return __register_atfork(NULL, NULL, function, NULL);
  return pthread_atfork(NULL, NULL, function);
}

__attribute__((constructor)) static void begin(void) {
  const char *secrets = getenv("OLT_CAPTURE_SECRETS");
  with_secrets = secrets != NULL && strcmp(secrets, "1") == 0;
  set_up_kept_listings();
  records = set_up_capture() && call_in_children(begin_child) == 0;
}

__attribute__((destructor)) static void finish(void) {
  if (records) end_capture();
}

static uint64_t nanoseconds(const struct timespec *time) {
  return (uint64_t)time->tv_sec * 1000000000U + (uint64_t)time->tv_nsec;
}

static uint32_t own_thread(void) {
  if (thread == 0) thread = (uint32_t)syscall(SYS_gettid);
  return thread;
}

static void record(struct exchange *exchange) {
  uint32_t size = packet_size(exchange->request_length) + packet_size(exchange->reply_length);
  uint8_t *room = take_room(size, exchange);
  if (room == NULL) return;
  put_packets(room, exchange, with_secrets);
  commit_room(size);
  keep_listing(exchange);
}

__attribute__((visibility("default"))) int32_t platmsg_syn_result(
    uint32_t message_type, uint32_t module, void *request, uint32_t request_length, void **reply,
    uint16_t *reply_length, uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
    uint32_t timeout) {
  platform_call *next = find_platform();
  if (next == NULL) {
    stop_capture("platmsg_syn_result", "no platform library comes after this one");
    return kNoModule;
  }
  if (!records)
    return next(message_type, module, request, request_length, reply, reply_length, reply_handle,
                status, no_reply, timeout);
  struct timespec date, began, ended;
  clock_gettime(CLOCK_REALTIME, &date);
  clock_gettime(CLOCK_MONOTONIC, &began);
  int32_t result = next(message_type, module, request, request_length, reply, reply_length,
                        reply_handle, status, no_reply, timeout);
  int error = errno;
  clock_gettime(CLOCK_MONOTONIC, &ended);
  struct exchange exchange = {.message_type = message_type,
                              .module = module,
                              .request = request,
                              .request_length = request == NULL ? 0 : request_length,
                              .no_reply = no_reply,
                              .timeout = timeout,
                              .result = (uint32_t)result,
                              .status = result == 0 && status != NULL ? *status : 0,
                              .began = nanoseconds(&date),
                              .duration = nanoseconds(&ended) - nanoseconds(&began),
                              .thread = own_thread()};
  // After a failure, the platform may have left the reply's address unset.
  bool has_reply = result == 0 && exchange.status == 0 && no_reply == 0;
  if (has_reply && reply != NULL && *reply != NULL && reply_length != NULL) {
    exchange.reply = *reply;
    exchange.reply_length = *reply_length;
  }
  record(&exchange);
  errno = error;
  return result;
}
