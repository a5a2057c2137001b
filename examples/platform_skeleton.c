/* The five calls that liboltmgmt imports, as a start for the platform library of a box.
 *
 * exchange() is what depends on the box: it puts a request on the box's message service and waits
 * for the answer. Here it answers from a table instead, so that front ends run without any box. The
 * rest can stay as it is. It works for any number of threads. */
#include <oltplatform.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* Results of a failed exchange. Their lower 16 bits are zero, because the library ORs them with the
 * module's status. */
enum { kNoModule = 0x00020000, kNoMemory = 0x00070000 };

/* What a module answers. */
struct answer {
  uint16_t status;
  uint16_t length;
  const uint8_t *bytes;
};

static const uint8_t kMacAddress[] = {0x02, 0x00, 0x5e, 0x10, 0x20, 0x30};
static const uint8_t kComplete[] = {100, 0, 0, 0};

/* The answers of a box with two modules. */
static const struct {
  uint16_t message_type;
  uint16_t module;
  struct answer answer;
} kAnswers[] = {
    {12, 2, {0, sizeof kMacAddress, kMacAddress}}, /* get_olt_mac */
    {14, 2, {4, 0, NULL}},                         /* set_port_enable: no such port */
    {61, 2, {0, sizeof kComplete, kComplete}},     /* get_card_updatestatus */
    {83, 22, {0, 0, NULL}},                        /* set_system_loglevel */
    {83, 2, {0, 0, NULL}},
};

/* Makes one exchange within that many seconds; 0 if the module answered. A real one receives the
 * answer into memory of its own, from which platmsg_syn_result copies it. */
static int32_t exchange(uint32_t message_type, uint32_t module, const void *request,
                        uint32_t request_length, uint32_t timeout, struct answer *answer) {
  (void)request;
  (void)request_length;
  (void)timeout;
  for (size_t i = 0; i < sizeof kAnswers / sizeof kAnswers[0]; ++i) {
    if (kAnswers[i].message_type != message_type || kAnswers[i].module != module) continue;
    *answer = kAnswers[i].answer;
    return 0;
  }
  return kNoModule;
}

/* A reply that is lent to the library. The newest one is first: it is usually the next to come
 * back. Four operations never release theirs, as oltmgmt.h notes. */
struct reply {
  struct reply *next;
  uint32_t handle;
  uint8_t bytes[];
};

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static struct reply *lent;
static uint32_t last_handle;

/* Operations copy the record that they expect without looking at the reply's length: zeros follow
 * a short one. */
enum { kSmallestReply = 256 };

static struct reply *lend(const struct answer *answer) {
  size_t size = answer->length < kSmallestReply ? kSmallestReply : answer->length + 1u;
  struct reply *reply = calloc(1, sizeof *reply + size);
  if (reply == NULL) return NULL;
  if (answer->length > 0) memcpy(reply->bytes, answer->bytes, answer->length);
  pthread_mutex_lock(&lock);
  if (++last_handle == 0) ++last_handle; /* no handle is 0 */
  reply->handle = last_handle;
  reply->next = lent;
  lent = reply;
  pthread_mutex_unlock(&lock);
  return reply;
}

int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t timeout) {
  struct answer answer;
  int32_t result = exchange(message_type, module, request, request_length, timeout, &answer);
  if (result != 0) return result;
  if (!no_reply) {
    /* The library releases only replies that come with status 0. */
    struct reply *fresh = NULL;
    if (answer.status == 0 && (fresh = lend(&answer)) == NULL) return kNoMemory;
    *reply = fresh != NULL ? fresh->bytes : NULL;
    *reply_length = fresh != NULL ? answer.length : 0;
    *reply_handle = fresh != NULL ? fresh->handle : 0;
  }
  *status = answer.status;
  return 0;
}

void IPC_Free(uint32_t reply_handle) {
  pthread_mutex_lock(&lock);
  struct reply **place = &lent;
  while (*place != NULL && (*place)->handle != reply_handle) place = &(*place)->next;
  struct reply *reply = *place;
  if (reply != NULL) *place = reply->next;
  pthread_mutex_unlock(&lock);
  free(reply);
}

/* Zeroed: operations leave the rest of a text, and the zero that ends it, unset. */
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
  fprintf(stderr, "level %d, %s:%d: %s\n", level, tag, line, message);
}
