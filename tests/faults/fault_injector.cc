#include "tests/faults/fault_injector.h"

#include <cstring>
#include <utility>

namespace olt::faults {

namespace {

constinit thread_local FaultInjector *current = nullptr;

}  // namespace

FaultInjector::FaultInjector(Plan plan) : plan_(std::move(plan)) {
  current = this;
}

FaultInjector::~FaultInjector() {
  current = nullptr;
}

bool FaultInjector::takes(const char *call) {
  if (disabled_ || std::strcmp(call, plan_.call.c_str()) != 0) return false;
  ++seen_;
  if (seen_ < plan_.nth || (seen_ > plan_.nth && !plan_.lasting)) return false;
  reached_ = true;
  return true;
}

FaultInjector *injector_for(const char *call) {
  return current != nullptr && current->takes(call) ? current : nullptr;
}

}  // namespace olt::faults
