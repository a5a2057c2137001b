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

/// Moves the descriptor to a number above 2, so that output to a standard stream that is closed
/// cannot end up in the file. Not open, with errno set, on failure.
Descriptor above_standard_streams(Descriptor descriptor);

/// Opens /dev/null as each standard stream that is closed; writing to standard output fails still.
void fill_standard_streams();

}  // namespace olt

#endif
