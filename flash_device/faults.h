/// Planned failures of the device.
#ifndef OLT_FLASH_DEVICE_FAULTS_H
#define OLT_FLASH_DEVICE_FAULTS_H

#include <stddef.h>
#include <stdint.h>

#include <string_view>

namespace olt::flash_device {

enum class Call : uint8_t { kOpen, kSeek, kControl, kRead, kWrite, kClose };
constexpr size_t kCalls = 6;

struct Fault {
  Call call;
  uint32_t number;     ///< of the call among its kind, from 1
  int error;           ///< errno; 0: the call succeeds, cut short
  uint32_t max_bytes;  ///< that a short call transfers
};

/// A power failure after a number of changed bytes.
class PowerCut {
 public:
  void plan(uint32_t bytes) {
    planned_ = true;
    left_ = bytes;
  }

  /// @return how many of the next bytes are still changed; the power fails with the last one
  /// planned
  uint32_t admit(uint32_t bytes) {
    if (!planned_) return bytes;
    uint32_t admitted = bytes < left_ ? bytes : left_;
    left_ -= admitted;
    happened_ = left_ == 0;
    return admitted;
  }

  bool happened() const { return happened_; }

 private:
  bool planned_ = false;
  bool happened_ = false;
  uint32_t left_ = 0;
};

class Faults {
 public:
  /// Adds the faults of the text: words separated by blanks or commas.
  /// @return the first unknown word; empty when there is none
  std::string_view plan(std::string_view text);

  /// Counts a call. @return what is planned for it, or null
  const Fault *next(Call call);

  PowerCut write_cut;
  PowerCut erase_cut;

 private:
  bool plan_word(std::string_view word);
  bool plan_call(std::string_view word);

  static constexpr size_t kMax = 32;

  Fault planned_[kMax] = {};
  size_t count_ = 0;
  uint32_t calls_[kCalls] = {};
};

}  // namespace olt::flash_device

#endif
