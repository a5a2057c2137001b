/// A file descriptor with one owner.
#ifndef OLT_BASE_DESCRIPTOR_H
#define OLT_BASE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace olt {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor &&other) noexcept : number_(other.release()) {}
  Descriptor &operator=(Descriptor &&other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { close(); }

  int get() const { return number_; }
  bool is_open() const { return number_ >= 0; }
  int release() { return std::exchange(number_, -1); }
  void close() {
    if (is_open()) ::close(release());
  }

 private:
  int number_ = -1;
};

}  // namespace olt

#endif
