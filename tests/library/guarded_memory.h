/// Memory that detects accesses outside of it: inaccessible pages on both sides, and canary bytes
/// between these and the memory.
#ifndef OLT_TESTS_LIBRARY_GUARDED_MEMORY_H
#define OLT_TESTS_LIBRARY_GUARDED_MEMORY_H

#include <stddef.h>
#include <stdint.h>

namespace olt::test {

class GuardedMemory {
 public:
  GuardedMemory() = default;
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory &) = delete;
  GuardedMemory &operator=(const GuardedMemory &) = delete;

  /// Allocates size bytes at an address that is remainder modulo alignment, as close to the page
  /// after them as that allows: with an alignment of 1, the last byte is right before the page.
  /// Shared with forked children.
  void place(size_t size, size_t alignment, size_t remainder = 0);

  uint8_t *data() const { return data_; }
  size_t size() const { return size_; }

  /// From now on, every access to the bytes is a memory fault.
  void forbid();

  /// Whether the canaries are unchanged. Must not be called after forbid().
  bool intact() const;

  /// Whether the address is in the bytes or in what surrounds them.
  bool surrounds(const void *address) const;

  /// An address that cannot be read or written.
  static const void *nowhere();

 private:
  uint8_t *mapping_ = nullptr;
  size_t mapping_size_ = 0;
  uint8_t *data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace olt::test

#endif
