#include "bench/contender.h"

namespace olt::bench {

Contenders start_rivals(const Folder & /*folder*/) {
  return {};
}

}  // namespace olt::bench
