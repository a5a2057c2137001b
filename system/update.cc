#include "oltmgmt.h"
#include "transport/shapes.h"

using namespace olt;

namespace {

constexpr uint8_t kStreamTimeout = 60;

}  // namespace

int32_t do_handle_epon_updatestream(const void *request, uint32_t length, void **answer,
                                    uint32_t *answer_length) {
  return fetch_copy(request, length, answer, answer_length, __func__,
                    {11, kMainModule, kStreamTimeout});
}

int32_t do_handle_epon_updatestream_onu(const void *request, uint32_t length, void **answer,
                                        uint32_t *answer_length) {
  return fetch_copy(request, length, answer, answer_length, __func__,
                    {64, kMainModule, kStreamTimeout});
}

int32_t get_card_updatestatus(uint32_t *value) {
  return fetch(61, value);
}
