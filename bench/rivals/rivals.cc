#include "bench/rivals/rivals.h"

namespace olt::bench {

Contenders start_rivals(const Folder &folder) {
  Contenders rivals;
  rivals.push_back(start_onc_rpc(folder));
  rivals.push_back(start_sd_bus_direct());
  rivals.push_back(start_sd_bus_daemon(folder));
  rivals.push_back(start_zeromq(folder));
  rivals.push_back(start_grpc(folder));
  rivals.push_back(start_nng(folder));
  return rivals;
}

}  // namespace olt::bench
