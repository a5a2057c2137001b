/// liboltmock: the five calls of oltplatform.h for unit tests of front ends.
///
/// A test says which operations it expects and how they are answered, then runs the front end. It
/// links with liboltmgmt and liboltmock instead of a platform library:
///
///   olt_mock_expectation *read = olt_mock_expect("get_port_enable", "slot=1 port=3");
///   olt_mock_answer(read, "port_enable=on");
///   olt_mock_expect("set_port_enable", "slot=1 port=3 port_enable=off");
///   toggle_port(1, 3);  // of the front end
///   olt_mock_finish();
///
/// Each expectation stands for one call, and calls must come in the order of their expectations,
/// unless olt_mock_times or olt_mock_any_order says otherwise. A call that is not expected returns
/// OLT_MOCK_UNEXPECTED. ___MALLOC returns zeroed blocks; log_log writes to standard error.
///
/// Fields are written as words NAME=VALUE, with the names and forms that oltctl uses: an argument
/// of the operation, or a field of its record or message ("oltctl help OPERATION", "oltctl --json
/// list"). A word with blanks needs quotes: entries='{mac=02:00:00:00:00:01 loid=a}'. Repeated
/// records are {FIELD=VALUE ...} {...}. Where a name stands for two fields, ARGUMENT.FIELD names
/// one. Texts given here are copied.
///
/// All functions may be called from any thread. Each mistake in their use is reported like a failed
/// call. A null expectation, which such a mistake returns, is ignored.
#ifndef OLTMOCK_H
#define OLTMOCK_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// The transport result of calls that are not expected.
#define OLT_MOCK_UNEXPECTED 0x00ff0000

/// No upper limit for olt_mock_times.
#define OLT_MOCK_ANY UINT32_MAX

/// Every call, where the number of a call is asked for.
#define OLT_MOCK_EVERY 0u

/// A call that is expected. Valid until olt_mock_finish.
typedef struct olt_mock_expectation olt_mock_expectation;

/// Expects one call of an operation with these fields.
///
/// @param[in] operation name of an operation that sends a request
/// @param[in] fields    fields and their values; those that are not named may have any value. An
///                      argument that is a record, named as a whole, must be equal as a whole. Null
///                      or empty: any call of the operation
/// @return the expectation, answered with status 0 and a reply of zeros; null after a mistake.
/// Note: an operation that asks a second module after the first is one call.
olt_mock_expectation *olt_mock_expect(const char *operation, const char *fields);

/// Expects one call of an operation with this request. Bytes that the operation leaves
/// uninitialized are not compared.
///
/// @param[in] operation name of an operation that sends a request
/// @param[in] request   length bytes; may be null if length is 0
/// @param[in] length    bytes of the request
/// @return as of olt_mock_expect.
olt_mock_expectation *olt_mock_expect_bytes(const char *operation, const void *request,
                                            size_t length);

/// Answers with a reply of these fields; those that are not named are zero. Called again, it
/// answers the next call; the last answer holds for all further ones.
///
/// @param[in,out] expectation of an operation that has a reply
/// @param[in]     fields      fields of the reply. Repeated records at the end make it longer; the
///                            length in the head of a block is set if it is not named. Null or
///                            empty: zeros
void olt_mock_answer(olt_mock_expectation *expectation, const char *fields);

/// Answers with a reply of these bytes, in turn like olt_mock_answer.
///
/// @param[in,out] expectation of an operation that has a reply
/// @param[in]     reply       length bytes, copied; may be null if length is 0
/// @param[in]     length      bytes of the reply, at most 65535
void olt_mock_answer_bytes(olt_mock_expectation *expectation, const void *reply, size_t length);

/// Answers with the replies that a capture of libolttrace holds for the operation, in their order,
/// in turn like olt_mock_answer. Requests are not compared; exchanges that failed, and those that
/// were cut, are left out. Secrets that the recorder masked are asterisks. After a mistake, such as
/// a damaged capture or one without such a reply, the answers are those before.
///
/// @param[in,out] expectation of an operation that has a reply
/// @param[in]     path        of the capture; read during the call
void olt_mock_answer_from_capture(olt_mock_expectation *expectation, const char *path);

/// Answers every call that meets no expectation and whose request a capture of libolttrace holds,
/// as it was answered then: with the same reply, status or transport result. Equal requests are
/// answered in the order in which they were recorded, then as the last one again and again. Such
/// calls may come in any order, or not at all. Holds until olt_mock_finish; called again, the
/// exchanges of the next capture come after those of the last one.
///
/// Bytes that an operation leaves uninitialized are not compared, nor secrets that the recorder
/// masked; those of a reply are asterisks. Exchanges that were cut, or of which a part is missing,
/// are left out. After a mistake, such as a damaged capture or one without a whole exchange,
/// nothing of that capture is answered.
///
/// @param[in] path of the capture; read during the call
void olt_mock_replay(const char *path);

/// Sets how often the call is expected; 1 if this is not called.
///
/// @param[in,out] expectation changed
/// @param[in]     min         fewest calls; 0: none is needed
/// @param[in]     max         most calls, at least min and 1; OLT_MOCK_ANY: no limit
void olt_mock_times(olt_mock_expectation *expectation, uint32_t min, uint32_t max);

/// Expects the call at any time, outside the order of the others.
///
/// @param[in,out] expectation changed
void olt_mock_any_order(olt_mock_expectation *expectation);

/// Makes a call fail in transport: it brings neither status nor reply.
///
/// @param[in,out] expectation changed
/// @param[in]     call        number of the call that meets the expectation, from 1, or
///                            OLT_MOCK_EVERY
/// @param[in]     result      transport result, not 0: OLT_TRANSPORT_TIMED_OUT of olthost.h
void olt_mock_fail(olt_mock_expectation *expectation, uint32_t call, int32_t result);

/// Makes the module refuse a call: it brings this status and no reply. After olt_mock_fail for the
/// same call, it brings both result and status.
///
/// @param[in,out] expectation changed
/// @param[in]     call        as of olt_mock_fail
/// @param[in]     status      not 0
void olt_mock_refuse(olt_mock_expectation *expectation, uint32_t call, uint16_t status);

/// Makes a call block until another thread calls olt_mock_release.
///
/// @param[in,out] expectation changed
/// @param[in]     call        as of olt_mock_fail
void olt_mock_hold(olt_mock_expectation *expectation, uint32_t call);

/// Waits until a call blocks that olt_mock_hold holds.
///
/// @param[in] expectation  the one held
/// @param[in] milliseconds longest wait
/// @return 0; -1 if no call blocks by then, which is not reported, or if the expectation is null.
int olt_mock_wait_until_held(olt_mock_expectation *expectation, uint32_t milliseconds);

/// Lets the calls go on that are held. Calls that come later are no longer held.
///
/// @param[in,out] expectation changed
void olt_mock_release(olt_mock_expectation *expectation);

/// Makes one allocation fail: ___MALLOC returns null. Replaces the one set before.
///
/// @param[in] allocation its number, from 1, counted from this call on
void olt_mock_fail_allocation(uint32_t allocation);

/// Tells the test that it failed. The text may have several lines, the last one without a newline;
/// it is valid until the next olt_mock_finish. May leave by longjmp, as assertions of C frameworks
/// do, when it runs on the test's own thread.
typedef void (*olt_mock_report)(void *context, const char *text);

/// Sets what is called for each failure, on the thread on which it happens. It must not call
/// olt_mock functions. Stays set after olt_mock_finish.
///
/// @param[in] report  null, as at the start: writes the text to standard error and calls abort
/// @param[in] context passed to report
void olt_mock_on_failure(olt_mock_report report, void *context);

/// Ends a test: reports, all in one, expected calls that were not made, failures and allocations
/// that never came about, and replies and blocks that were not released; then forgets all
/// expectations. Blocks stay valid and may still be released. A call that is still held fails with
/// OLT_MOCK_UNEXPECTED. Replies that the library itself never releases are not reported.
///
/// @return the number of reports since the start or the last olt_mock_finish.
int olt_mock_finish(void);

#ifdef __cplusplus
}
#endif

#endif
