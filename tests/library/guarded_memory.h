/// Memory of a known size whose every neighbour is watched: pages that cannot be touched on both
/// sides, known bytes between them and the block.
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

  /// Takes size bytes as close to the page behind as their address allows, which is remainder
  /// modulo alignment. An alignment of 1 puts the last byte right before that page. The memory is
  /// shared with forked children.
  void place(size_t size, size_t alignment, size_t remainder = 0);

  uint8_t *data() const { return data_; }
  size_t size() const { return size_; }

  /// From now on every access to the bytes is a memory fault.
  void forbid();

  /// Is nothing written around the bytes? Not to be asked once they are forbidden.
  bool intact() const;

  /// Does the address lie in the bytes or in what surrounds them?
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
