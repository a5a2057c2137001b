#include "transport/request.h"

#include "oltplatform.h"

namespace olt {

int32_t request_no_reply(const void *request, uint32_t length, Route route) {
  uint16_t status = 0;
  int32_t result = platmsg_syn_result(route.type, route.module, const_cast<void *>(request), length,
                                      nullptr, nullptr, nullptr, &status, 1, route.timeout);
  return result | status;
}

int32_t request_with_reply(const void *request, uint32_t length, Route route, Reply &reply) {
  return platmsg_syn_result(route.type, route.module, const_cast<void *>(request), length,
                            &reply.data, &reply.length, &reply.handle, &reply.status, 0,
                            route.timeout);
}

void release_reply(const Reply &reply) {
  IPC_Free(reply.handle);
}

}  // namespace olt
