#include "tests/library/guarded_memory.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

namespace olt::test {

namespace {

constexpr uint8_t kCanary = 0xC5;
constexpr size_t kMinCanaries = 64;

size_t page_size() {
  return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

uint8_t *map(size_t size) {
  void *mapping = mmap(nullptr, size, PROT_NONE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) {
    perror("mmap");
    abort();
  }
  return static_cast<uint8_t *>(mapping);
}

bool all_canaries(const uint8_t *from, const uint8_t *to) {
  for (; from != to; ++from)
    if (*from != kCanary) return false;
  return true;
}

}  // namespace

GuardedMemory::~GuardedMemory() {
  if (mapping_ != nullptr) munmap(mapping_, mapping_size_);
}

void GuardedMemory::place(size_t size, size_t alignment, size_t remainder) {
  if (mapping_ != nullptr) munmap(mapping_, mapping_size_);
  size_t page = page_size();
  size_t inner = (size + alignment + kMinCanaries + page - 1) / page * page;
  mapping_size_ = inner + 2 * page;
  mapping_ = map(mapping_size_);
  mprotect(mapping_ + page, inner, PROT_READ | PROT_WRITE);
  memset(mapping_ + page, kCanary, inner);

  uint8_t *last_start = mapping_ + page + inner - size;
  size_ = size;
  data_ = last_start - (reinterpret_cast<uintptr_t>(last_start) - remainder) % alignment;
}

void GuardedMemory::forbid() {
  mprotect(mapping_, mapping_size_, PROT_NONE);
}

bool GuardedMemory::intact() const {
  size_t page = page_size();
  return all_canaries(mapping_ + page, data_) &&
         all_canaries(data_ + size_, mapping_ + mapping_size_ - page);
}

bool GuardedMemory::surrounds(const void *address) const {
  auto value = reinterpret_cast<uintptr_t>(address);
  auto start = reinterpret_cast<uintptr_t>(mapping_);
  return mapping_ != nullptr && value >= start && value < start + mapping_size_;
}

const void *GuardedMemory::nowhere() {
  static const void *page = map(page_size());
  return page;
}

}  // namespace olt::test
