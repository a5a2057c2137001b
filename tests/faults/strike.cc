#include "tests/faults/strike.h"

#include <cstring>
#include <utility>

namespace olt::faults {
namespace {

constinit thread_local Strike *current = nullptr;

}  // namespace

Strike::Strike(Plan plan) : plan_(std::move(plan)) {
  current = this;
}

Strike::~Strike() {
  current = nullptr;
}

bool Strike::takes(const char *call) {
  if (lifted_ || std::strcmp(call, plan_.call.c_str()) != 0) return false;
  ++seen_;
  if (seen_ < plan_.nth || (seen_ > plan_.nth && !plan_.lasting)) return false;
  reached_ = true;
  return true;
}

Strike *strike_for(const char *call) {
  return current != nullptr && current->takes(call) ? current : nullptr;
}

}  // namespace olt::faults
