/// What the simulated box is filled with, to see how its state grows.
#ifndef OLT_BENCH_RECORDS_H
#define OLT_BENCH_RECORDS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bench/support.h"

namespace olt::bench {

inline constexpr uint32_t kMaxRecords = 327'680;
inline constexpr uint32_t kMaxAllowed = 16'384;

/// A running oltbox with 16 PON interfaces of 1,024 ONUs with four UNI ports each. Exchanges of
/// this process go to it.
class LargeBox {
 public:
  /// The state stays in the directory.
  explicit LargeBox(std::string state_dir);

  void restart();
  pid_t process() const { return server_->process(); }

  /// Sets five records of UNI ports, port after port, until there are so many in all.
  void fill(uint32_t records);
  /// Adds so many entries to the list of MAC addresses that one interface allows.
  static void allow(uint32_t entries);
  static void save();
  static void reboot();

 private:
  void start();

  Folder folder_;
  std::string state_dir_;
  std::optional<Child> server_;
  uint32_t records_ = 0;
};

}  // namespace olt::bench

#endif
