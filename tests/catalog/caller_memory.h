/// What a caller of an operation has in memory: arguments of any bytes, at the lengths wanted.
#ifndef OLT_TESTS_CATALOG_CALLER_MEMORY_H
#define OLT_TESTS_CATALOG_CALLER_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "catalog/operation.h"
#include "oltmgmt.h"

namespace olt::test {

struct Lengths {
  size_t items;       ///< of lists
  size_t text;        ///< bytes of texts, where they fit
  bool reads = true;  ///< for operations that read or write
};

/// The memory of one argument.
struct ArgumentMemory {
  std::vector<uint8_t> bytes;    ///< what the argument holds, for a list all of its items
  std::vector<uint8_t> guarded;  ///< the same, where the call sees it, with a guard behind it
  uint32_t length = 0;
  void *block = nullptr;
  std::vector<olt_vlan_node> nodes;
  olt_vlan_list vlans{};
};

class CallerMemory {
 public:
  static constexpr size_t kGuard = 64;
  static constexpr uint8_t kGuardByte = 0xEE;

  /// @param next the bytes of the arguments, one after the other
  CallerMemory(const catalog::Operation &operation, const Lengths &lengths,
               const std::function<uint8_t()> &next);
  CallerMemory(const CallerMemory &) = delete;
  CallerMemory &operator=(const CallerMemory &) = delete;

  int32_t call() { return operation_.call(slots_.data()); }
  const std::vector<ArgumentMemory> &arguments() const { return arguments_; }

 private:
  size_t size_of(const catalog::Argument &argument) const;
  void satisfy_checks();
  void expose(const catalog::Argument &argument, ArgumentMemory &memory);

  const catalog::Operation &operation_;
  const Lengths lengths_;
  std::vector<ArgumentMemory> arguments_;
  std::vector<void *> slots_;
};

/// Ends the reply's texts, and counts what follows the head of a block.
void shape_reply(const catalog::Operation &operation, size_t text, std::vector<uint8_t> &reply);

}  // namespace olt::test

#endif
