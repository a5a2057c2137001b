// The exported calls. A report function may leave by longjmp, so what calls it holds nothing that
// must be destroyed.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <type_traits>

#include "mock/mock.h"
#include "oltmock.h"
#include "oltplatform.h"

namespace {

using olt::ByteView;
using olt::mock::mock;
using olt::mock::Outcome;
using olt::mock::Reporter;

static_assert(std::is_trivially_destructible_v<Outcome> &&
              std::is_trivially_destructible_v<Reporter>);

/// @param text what is wrong; null: nothing
void tell(const char *text) {
  if (text == nullptr) return;
  Reporter reporter = mock().reporter();
  if (reporter.call != nullptr) return reporter.call(reporter.context, text);
  static_cast<void>(std::fprintf(stderr, "oltmock: %s\n", text));
  std::abort();
}

/// @return what is wrong, as a report, or null
template <typename Action>
const char *mistake_of(Action action) {
  try {
    action();
    return nullptr;
  } catch (const std::exception &error) {
    return mock().report(error.what());
  }
}

/// Does something to an expectation that is not null.
template <typename Action>
void change(olt_mock_expectation *expectation, Action action) {
  if (expectation == nullptr) return;
  tell(mistake_of([&] { action(*expectation); }));
}

ByteView bytes_of(const void *data, size_t length) {
  return {static_cast<const uint8_t *>(data), length};
}

}  // namespace

olt_mock_expectation *olt_mock_expect(const char *operation, const char *fields) {
  olt_mock_expectation *expectation = nullptr;
  tell(mistake_of([&] { expectation = mock().expect(operation, fields); }));
  return expectation;
}

olt_mock_expectation *olt_mock_expect_bytes(const char *operation, const void *request,
                                            size_t length) {
  olt_mock_expectation *expectation = nullptr;
  tell(
      mistake_of([&] { expectation = mock().expect_bytes(operation, bytes_of(request, length)); }));
  return expectation;
}

void olt_mock_answer(olt_mock_expectation *expectation, const char *fields) {
  change(expectation, [fields](auto &one) { mock().answer(one, fields); });
}

void olt_mock_answer_bytes(olt_mock_expectation *expectation, const void *reply, size_t length) {
  change(expectation, [=](auto &one) { mock().answer_bytes(one, bytes_of(reply, length)); });
}

void olt_mock_answer_from_capture(olt_mock_expectation *expectation, const char *path) {
  change(expectation, [path](auto &one) { mock().answer_from_capture(one, path); });
}

void olt_mock_replay(const char *path) {
  tell(mistake_of([path] { mock().replay_capture(path); }));
}

void olt_mock_times(olt_mock_expectation *expectation, uint32_t min, uint32_t max) {
  change(expectation, [=](auto &one) { mock().set_times(one, min, max); });
}

void olt_mock_any_order(olt_mock_expectation *expectation) {
  change(expectation, [](auto &one) { mock().set_any_order(one); });
}

void olt_mock_fail(olt_mock_expectation *expectation, uint32_t call, int32_t result) {
  change(expectation, [=](auto &one) { mock().plan_failure(one, call, result); });
}

void olt_mock_refuse(olt_mock_expectation *expectation, uint32_t call, uint16_t status) {
  change(expectation, [=](auto &one) { mock().plan_refusal(one, call, status); });
}

void olt_mock_hold(olt_mock_expectation *expectation, uint32_t call) {
  change(expectation, [call](auto &one) { mock().hold(one, call); });
}

int olt_mock_wait_until_held(olt_mock_expectation *expectation, uint32_t milliseconds) {
  if (expectation == nullptr) return -1;
  return mock().wait_until_held(*expectation, milliseconds) ? 0 : -1;
}

void olt_mock_release(olt_mock_expectation *expectation) {
  change(expectation, [](auto &one) { mock().release(one); });
}

void olt_mock_fail_allocation(uint32_t allocation) {
  tell(mistake_of([allocation] { mock().plan_failed_allocation(allocation); }));
}

void olt_mock_on_failure(olt_mock_report report, void *context) {
  mock().set_reporter({.call = report, .context = context});
}

int olt_mock_finish(void) {
  int reports = 0;
  tell(mock().finish(reports));
  return reports;
}

int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t /*timeout*/) {
  ByteView bytes = bytes_of(request, request_length);
  Outcome outcome =
      mock().exchange({.operation = olt::mock::operation_of(message_type, module, bytes),
                       .message_type = message_type,
                       .module = module,
                       .bytes = bytes,
                       .wants_reply = no_reply == 0});
  if (outcome.has_status) *status = outcome.status;
  if (outcome.has_status && no_reply == 0) {
    *reply = outcome.reply;
    *reply_length = outcome.reply_length;
    *reply_handle = outcome.reply_handle;
  }
  tell(outcome.report);
  return outcome.result;
}

void IPC_Free(uint32_t reply_handle) {
  tell(mock().release_reply(reply_handle));
}

void *___MALLOC(uint32_t size, const char *tag, int line) {
  return mock().allocate(size, tag, line);
}

void ___FREE(void *block, const char *tag, int line) {
  tell(mock().release_block(block, tag, line));
}

void log_log(int level, const char *tag, int line, const char *message) {
  static_cast<void>(std::fprintf(stderr, "oltmgmt[%d] %s:%d: %s\n", level, tag, line, message));
}
