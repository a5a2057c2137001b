// Calls every operation once, as the first of its rows in the table of operations says, and has the
// instructions counted. Prints the names, in the order of the counts. Runs under emulation alone.
#include <link.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "bench/instructions/parts.h"
#include "oltplatform.h"
#include "tests/library/operation_table.h"

namespace {

using namespace olt::test;

constexpr size_t kRoom = 8192;

/// Memory that lies at the same place of a page in every run.
struct alignas(4096) Memory {
  uint8_t bytes[kRoom];
};

Memory caller_blocks[kMaxBlocks];
Memory allocated_blocks[2];
size_t allocations;
/// Of each exchange. Platform calls cost something, but nobody counts that.
Memory replies[2];
uint16_t reply_lengths[2];
size_t exchanges;

[[noreturn]] void fail(const char *what, const char *name) {
  static_cast<void>(fprintf(stderr, "bench_instructions: %s: %s\n", name, what));
  _exit(1);
}

size_t fill(Memory &memory, const BytePattern &pattern, const char *name) {
  if (pattern.size() > kRoom) fail("there is no room for its bytes", name);
  memcpy(memory.bytes, pattern.data(), pattern.size());
  return pattern.size();
}

void prepare(const Row &row) {
  Addresses addresses;
  for (size_t i = 0; i < kMaxBlocks; ++i) addresses.blocks[i] = caller_blocks[i].bytes;
  for (size_t i = 0; i < kMaxBlocks; ++i)
    fill(caller_blocks[i], BytePattern(row.blocks[i].before, addresses), row.operation);
  for (size_t i = 0; i < 2; ++i)
    reply_lengths[i] = static_cast<uint16_t>(
        fill(replies[i], BytePattern(row.exchanges[i].reply, addresses), row.operation));
  exchanges = 0;
  allocations = 0;
}

void measure(const Row &row) {
  prepare(row);
  Addresses addresses;
  for (size_t i = 0; i < kMaxBlocks; ++i) addresses.blocks[i] = caller_blocks[i].bytes;
  const Caller caller(addresses);
  prctl(kTell, kBegin);
  const int32_t result = row.call(caller);
  prctl(kTell, kEnd);
  if (result != 0 || exchanges == 0) fail("the call did not succeed", row.operation);
  puts(row.operation);
}

/// What is counted around a call.
void measure_nothing() {
  prctl(kTell, kBegin);
  prctl(kTell, kEnd);
  puts("nothing");
}

int tell_part(dl_phdr_info *object, size_t /*size*/, void *found) {
  const bool is_library = strstr(object->dlpi_name, "/liboltmgmt") != nullptr;
  if (!is_library && strstr(object->dlpi_name, "/libc.so") == nullptr) return 0;
  for (size_t i = 0; i < object->dlpi_phnum; ++i) {
    const ElfW(Phdr) &segment = object->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD || (segment.p_flags & PF_X) == 0) continue;
    const uintptr_t begin = object->dlpi_addr + segment.p_vaddr;
    prctl(kTell, kPart, is_library ? kLibrary : kLibc, begin, begin + segment.p_memsz);
    ++*static_cast<int *>(found);
  }
  return 0;
}

}  // namespace

int32_t platmsg_syn_result(uint32_t /*message_type*/, uint32_t /*module*/, void * /*request*/,
                           uint32_t /*request_length*/, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t /*timeout*/) {
  *status = 0;
  if (no_reply == 0) {
    *reply = replies[exchanges].bytes;
    *reply_length = reply_lengths[exchanges];
    *reply_handle = 1;
  }
  ++exchanges;
  return 0;
}

void IPC_Free(uint32_t /*reply_handle*/) {}

void *___MALLOC(uint32_t /*size*/, const char * /*tag*/, int /*line*/) {
  return allocated_blocks[allocations++].bytes;
}

void ___FREE(void * /*block*/, const char * /*tag*/, int /*line*/) {}

void log_log(int /*level*/, const char * /*tag*/, int /*line*/, const char * /*message*/) {}

int main() {
  int parts = 0;
  dl_iterate_phdr(tell_part, &parts);
  if (parts != kPartCount) fail("not found, or found more than once", "library and libc");
  measure_nothing();
  const char *last = "";
  for (const Table *table = all_tables(); table->rows != nullptr; ++table)
    for (size_t i = 0; i != table->count; ++i) {
      const Row &row = table->rows[i];
      if (row.results == Results::kRefused || strcmp(row.operation, last) == 0) continue;
      last = row.operation;
      measure(row);
    }
  return 0;
}
