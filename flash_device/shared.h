/// An atomic value. The C++ library's <atomic> needs more of the C library than small ones have.
#ifndef OLT_FLASH_DEVICE_SHARED_H
#define OLT_FLASH_DEVICE_SHARED_H

namespace olt::flash_device {

template <typename Value>
class Shared {
 public:
  constexpr explicit Shared(Value value) noexcept : value_(value) {}
  Shared(const Shared &) = delete;
  Shared &operator=(const Shared &) = delete;
  ~Shared() = default;

  Value get() const { return __atomic_load_n(&value_, __ATOMIC_ACQUIRE); }
  void set(Value value) { __atomic_store_n(&value_, value, __ATOMIC_RELEASE); }
  void add(Value value) { __atomic_fetch_add(&value_, value, __ATOMIC_ACQ_REL); }

 private:
  Value value_;
};

}  // namespace olt::flash_device

#endif
