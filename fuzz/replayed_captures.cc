// Captures that are replayed. Damage is one line; each exchange of the others answers its own
// request.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "base/bad_input.h"
#include "base/descriptor.h"
#include "fuzz/target.h"
#include "replay/clients.h"
#include "replay/index.h"

namespace {

using olt::BadInput;
using olt::fuzz::require;
using olt::replay::Clients;
using olt::replay::Index;
using olt::replay::Order;
using olt::replay::Request;

void replay(const std::string &path, Order order) {
  try {
    Index index({path}, order);
    for (const std::string &note : index.notes()) olt::fuzz::require_line(note);
    Clients clients(index);
    for (Index::Number number = 0; number < index.size(); ++number) {
      olt::capture::Packet recorded = index.request(number);
      Request request = {recorded.module, recorded.message_type, recorded.record};
      olt::replay::RequestHash hash = index.hash_of(request);
      require(recorded.is_masked || index.has(hash), "a recorded request is found");
      Index::Number found = order == Order::kByClient ? clients.take(0, hash) : index.take(hash);
      if (found != Index::kNone) index.answer(found);
    }
  } catch (const BadInput &error) {
    olt::fuzz::require_line(error.what());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  olt::Descriptor file(memfd_create("capture", MFD_CLOEXEC));
  require(write(file.get(), data, size) == static_cast<ssize_t>(size), "memory for the capture");
  std::string path = "/proc/self/fd/" + std::to_string(file.get());
  for (Order order : {Order::kInTurn, Order::kLast, Order::kByClient}) replay(path, order);
  return 0;
}
