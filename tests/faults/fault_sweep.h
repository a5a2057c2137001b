/// Repeats a scenario with every call that can fail failing the first time, the second time, and
/// so on until the scenario ends before the fault is due.
#ifndef OLT_TESTS_FAULTS_FAULT_SWEEP_H
#define OLT_TESTS_FAULTS_FAULT_SWEEP_H

#include <functional>
#include <set>
#include <string>

#include "tests/faults/fault_injector.h"

namespace olt::faults {

/// Whether the scenario must succeed all the same: interruptions and short transfers are no
/// failures.
bool is_harmless(const Plan &plan);

/// Whether there was no memory or no descriptor.
bool is_shortage(const Plan &plan);

std::string describe(const Plan &plan);

/// Leaves servers something to raise.
void lower_descriptor_limit();

struct Sweep {
  /// Runs the scenario under the plan and checks what it left. @return whether the fault was
  /// reached
  std::function<bool(const Plan &)> scenario;
  /// Whether allocations fail, too.
  bool allocations = true;
  /// The calls that the scenario makes and that can fail, exactly.
  std::set<std::string> calls;
  /// Whether lasting faults are tried, too.
  bool lasting = true;
};

/// Fails the test when the scenario does, and when it makes other calls than it should.
void run(const Sweep &sweep);

}  // namespace olt::faults

#endif
