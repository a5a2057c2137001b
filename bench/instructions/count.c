// A plugin of the emulator that counts the instructions of parts of the program while the program
// wants it; parts.h describes the call.
//
// The emulator's header is not packaged, so what is used of it is declared here (API version 1).
#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "bench/instructions/parts.h"

struct qemu_plugin_tb;
struct qemu_plugin_insn;
typedef uint64_t qemu_plugin_id_t;
enum qemu_plugin_cb_flags { QEMU_PLUGIN_CB_NO_REGS };

extern void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                                  void (*callback)(qemu_plugin_id_t id,
                                                                   struct qemu_plugin_tb *block));
extern size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb *block);
extern struct qemu_plugin_insn *qemu_plugin_tb_get_insn(const struct qemu_plugin_tb *block,
                                                        size_t index);
extern uint64_t qemu_plugin_insn_vaddr(const struct qemu_plugin_insn *instruction);
extern void qemu_plugin_register_vcpu_insn_exec_cb(struct qemu_plugin_insn *instruction,
                                                   void (*callback)(unsigned cpu, void *context),
                                                   enum qemu_plugin_cb_flags flags, void *context);
extern void qemu_plugin_register_vcpu_syscall_cb(
    qemu_plugin_id_t id,
    void (*callback)(qemu_plugin_id_t id, unsigned cpu, int64_t number, uint64_t a1, uint64_t a2,
                     uint64_t a3, uint64_t a4, uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8));
extern void qemu_plugin_outs(const char *text);

extern int qemu_plugin_version;
extern int qemu_plugin_install(qemu_plugin_id_t id, const void *info, int count, char **arguments);

int qemu_plugin_version = 1;

static struct {
  uint64_t begin;
  uint64_t end;
  uint64_t executed;
} parts[kPartCount];
static int counting;

static void executed(unsigned cpu, void *context) {
  (void)cpu;
  if (!counting) return;
  const uint64_t address = (uintptr_t)context;
  for (int i = 0; i < kPartCount; ++i) {
    if (address >= parts[i].begin && address < parts[i].end) ++parts[i].executed;
  }
}

static void translated(qemu_plugin_id_t id, struct qemu_plugin_tb *block) {
  (void)id;
  for (size_t i = 0; i < qemu_plugin_tb_n_insns(block); ++i) {
    struct qemu_plugin_insn *instruction = qemu_plugin_tb_get_insn(block, i);
    const uintptr_t address = (uintptr_t)qemu_plugin_insn_vaddr(instruction);
    qemu_plugin_register_vcpu_insn_exec_cb(instruction, executed, QEMU_PLUGIN_CB_NO_REGS,
                                           (void *)address);  // NOLINT(performance-no-int-to-ptr)
  }
}

static void print_counts(void) {
  for (int i = 0; i < kPartCount; ++i) {
    char text[32];
    (void)snprintf(text, sizeof text, "%s%" PRIu64, i == 0 ? "" : "\t", parts[i].executed);
    qemu_plugin_outs(text);
    parts[i].executed = 0;
  }
  qemu_plugin_outs("\n");
}

static void called(qemu_plugin_id_t id, unsigned cpu, int64_t number, uint64_t option,
                   uint64_t what, uint64_t part, uint64_t begin, uint64_t end, uint64_t a6,
                   uint64_t a7, uint64_t a8) {
  (void)id, (void)cpu, (void)number, (void)a6, (void)a7, (void)a8;
  if (option != kTell) return;
  counting = what == kBegin;
  if (what == kEnd) print_counts();
  if (what == kPart && part < kPartCount) {
    parts[part].begin = begin;
    parts[part].end = end;
  }
}

int qemu_plugin_install(qemu_plugin_id_t id, const void *info, int count, char **arguments) {
  (void)info, (void)count, (void)arguments;
  qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
  qemu_plugin_register_vcpu_syscall_cb(id, called);
  return 0;
}
