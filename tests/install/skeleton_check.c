// Operations over examples/platform_skeleton.c, on several threads at once.
#include <oltmgmt.h>
#include <oltplatform.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void expect(int is_true, const char *what) {
  if (is_true) return;
  printf("expected: %s\n", what);
  exit(1);
}

static void *read_often(void *unused) {
  for (int i = 0; i < 10000; ++i) {
    olt_mac mac;
    memset(&mac, 0xff, sizeof mac);
    expect(get_olt_mac(&mac) == 0, "get_olt_mac returns 0");
    expect(memcmp(mac.bytes, "\x02\x00\x5e\x10\x20\x30", 6) == 0, "the table's MAC address");
  }
  return unused;
}

static void check_exchanges(void) {
  pthread_t threads[4];
  for (size_t i = 0; i < 4; ++i) {
    expect(pthread_create(&threads[i], NULL, read_often, NULL) == 0, "a thread");
  }
  for (size_t i = 0; i < 4; ++i) pthread_join(threads[i], NULL);
  uint32_t progress = 0;
  expect(get_card_updatestatus(&progress) == 0 && progress == 100, "progress 100");
  expect(set_system_loglevel(5) == 0, "requests without a reply reach two modules");
  expect(set_port_enable(1, 9, 1) == 4, "the module's status");
  expect(set_system_logfilesize(5) == 0x00020000, "no module for a message that is not there");
}

static void check_replies(void) {
  void *replies[2] = {NULL, NULL};
  uint32_t handles[2] = {0, 0};
  uint16_t length = 0;
  uint16_t status = 1;
  for (int i = 0; i < 2; ++i) {
    expect(
        platmsg_syn_result(12, 2, NULL, 0, &replies[i], &length, &handles[i], &status, 0, 10) == 0,
        "an exchange");
    expect(length == 6 && status == 0, "6 bytes with status 0");
  }
  expect(handles[0] != 0 && handles[1] != 0 && handles[0] != handles[1], "two handles");
  IPC_Free(handles[0]);
  IPC_Free(handles[0]);
  const uint8_t *bytes = replies[1];
  expect(memcmp(bytes, "\x02\x00\x5e\x10\x20\x30", 6) == 0, "the other reply is still there");
  for (int i = 6; i < 256; ++i) expect(bytes[i] == 0, "zeros after a short reply");
  IPC_Free(handles[1]);
  expect(platmsg_syn_result(14, 2, NULL, 0, &replies[0], &length, &handles[0], &status, 0, 10) == 0,
         "a refused exchange");
  expect(replies[0] == NULL && handles[0] == 0 && length == 0 && status == 4,
         "no reply with a refusal");
}

static void check_memory(void) {
  unsigned char *block = ___MALLOC(100, "check", 1);
  expect(block != NULL, "a block");
  for (int i = 0; i < 100; ++i) expect(block[i] == 0, "a zeroed block");
  ___FREE(block, "check", 1);
  ___FREE(NULL, "check", 1);
}

int main(void) {
  check_exchanges();
  check_replies();
  check_memory();
  puts("all checks passed");
  return 0;
}
