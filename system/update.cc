#include "oltmgmt.h"
#include "transport/block.h"

using namespace olt;

namespace {

constexpr Route stream(uint8_t message_type) {
  constexpr uint8_t kTimeout = 60;
  return {message_type, kMainModule, kTimeout};
}

}  // namespace

int32_t do_handle_epon_updatestream(const void *request, uint32_t length, void **answer,
                                    uint32_t *answer_length) {
  return fetch_copy(request, length, answer, answer_length, OLT_CALL(stream(11)));
}

int32_t do_handle_epon_updatestream_onu(const void *request, uint32_t length, void **answer,
                                        uint32_t *answer_length) {
  return fetch_copy(request, length, answer, answer_length, OLT_CALL(stream(64)));
}

int32_t get_card_updatestatus(uint32_t *value) {
  return fetch(61, value);
}
