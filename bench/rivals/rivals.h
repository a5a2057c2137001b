/// The rivals, each in a source file of its own.
#ifndef OLT_BENCH_RIVALS_H
#define OLT_BENCH_RIVALS_H

#include "bench/contender.h"

namespace olt::bench {

std::unique_ptr<Contender> start_sd_bus_direct();
std::unique_ptr<Contender> start_sd_bus_daemon(const Folder &folder);
std::unique_ptr<Contender> start_onc_rpc(const Folder &folder);
std::unique_ptr<Contender> start_zeromq(const Folder &folder);
std::unique_ptr<Contender> start_nng(const Folder &folder);
std::unique_ptr<Contender> start_grpc(const Folder &folder);

}  // namespace olt::bench

#endif
