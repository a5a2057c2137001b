/// Makes calls of the C library fail. calls.cc, linked into a program, interposes them for the
/// program and all libraries that it loads.
#ifndef OLT_TESTS_FAULTS_FAULT_INJECTOR_H
#define OLT_TESTS_FAULTS_FAULT_INJECTOR_H

#include <atomic>
#include <string>

namespace olt::faults {

/// Instead of an error number: the call succeeds, but transfers a single byte.
inline constexpr int kShort = -1;

/// The call of a plan that fails allocations.
inline constexpr char kNew[] = "operator new";

struct Plan {
  std::string call;
  int error;     ///< errno, or kShort
  int nth;       ///< the first call that fails, from 1
  bool lasting;  ///< whether all later ones fail, too
};

/// While it exists and is not disabled, calls of the thread that created it fail as planned.
class FaultInjector {
 public:
  explicit FaultInjector(Plan plan);
  FaultInjector(const FaultInjector &) = delete;
  FaultInjector &operator=(const FaultInjector &) = delete;
  ~FaultInjector();

  /// From any thread.
  void disable() { disabled_ = true; }
  /// Whether a call has failed.
  bool reached() const { return reached_; }

  /// Counts a call. @return whether it is to fail; used by the interposed calls
  bool takes(const char *call);
  int error() const { return plan_.error; }

 private:
  const Plan plan_;
  int seen_ = 0;
  std::atomic<bool> reached_{false};
  std::atomic<bool> disabled_{false};
};

/// The injector of this thread that is to fail this call, or null.
FaultInjector *injector_for(const char *call);

}  // namespace olt::faults

#endif
