/// liboltmgmt: the management operations of an EPON optical line terminal.
///
/// Each operation sends one request to a management module of the box, waits for the answer and
/// copies what the caller wants out of it. The library keeps nothing between calls and may be
/// called from any number of threads; each call blocks its own thread for at most the time-out
/// given with the operation.
///
/// Unless an operation says otherwise:
/// - It returns 0 when the module accepted the request; -1 when the request could not be built;
///   any other value is the transport result OR-ed with the module's 16-bit status word, and only
///   tells that the operation failed.
/// - What it would write into caller memory stays untouched when it fails.
/// - Records and buffers belong to the caller and are used during the call only. Pointers are not
///   tested for null.
/// - Words are little-endian 32-bit. Records of words are 4-byte aligned; byte records, buffers
///   and texts may lie at any address.
/// - Texts are zero-terminated.
#ifndef OLTMGMT_H
#define OLTMGMT_H

#include <stdint.h>

#if defined(__GNUC__)
#define OLT_API __attribute__((visibility("default")))
#else
#define OLT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

// System control: acting on the box as a whole.

/// Management network settings. Front ends and the main module agree on the layout; the library
/// carries the bytes.
typedef struct olt_system_network {
  uint8_t bytes[172];
} olt_system_network;

/// SNTP settings. Front ends and the main module agree on the layout; the library carries the
/// bytes.
typedef struct olt_sntp_config {
  uint8_t bytes[88];
} olt_sntp_config;

/// Sets the micro-kernel in-service state.
///
/// Message type 5 to module 2, time-out 10 s, no request body.
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t do_set_ukernel_inserver(void);

/// Announces that the system is about to start running.
///
/// Message type 6 to module 2, time-out 10 s, no request body.
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t do_information_system_running_will_start(void);

/// Reboots the box. Returns with the module's answer, not with the end of the reboot.
///
/// Message type 7 to module 2, time-out 10 s, no request body.
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t do_reboot_system(void);

/// Saves the running configuration, to be used after the next start.
///
/// Message type 8 to module 2, time-out 10 s, no request body.
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t save_system_config(void);

/// Restores the default configuration.
///
/// Message type 9 to module 2, time-out 10 s, no request body.
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t default_system_config(void);

/// Sets the management IP settings.
///
/// Message type 50 to module 2, time-out 10 s; the record is the request.
/// @param[in] network 172 bytes, sent as they stand
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_system_ipaddress(const olt_system_network *network);

/// Sets the DNS settings.
///
/// Message type 51 to module 2, time-out 10 s; the record is the request.
/// @param[in] network 172 bytes, sent as they stand
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_system_dns(const olt_system_network *network);

/// Applies an SNTP configuration.
///
/// Message type 52 to module 2, time-out 10 s; the record is the request.
/// @param[in] config 88 bytes, sent as they stand
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t Cl_Set_SntpCfg_apply(const olt_sntp_config *config);

// User accounts.

/// One user account, 80 bytes.
typedef struct olt_user {
  uint32_t user_op;        ///< what to do: 0 look up, 1 add, 2 delete, 3 modify
  uint32_t user_index;     ///< position in the user table
  char user_name[32];      ///< zero-terminated
  char user_password[32];  ///< zero-terminated
  uint32_t level_a;        ///< first level value; the main module defines its range
  uint32_t level_b;        ///< second level value; the main module defines its range
} olt_user;

/// Checks a user's name and password and reads the user's levels.
///
/// Message type 10 to module 2, time-out 10 s.
/// @param[in]  name     text; at most its first 31 bytes are sent
/// @param[in]  password text; at most its first 31 bytes are sent
/// @param[out] level_a  one word
/// @param[out] level_b  one word
/// @return 0; the transport result alone when the exchange failed; else the status word.
OLT_API int32_t get_user_level(const char *name, const char *password, uint32_t *level_a,
                               uint32_t *level_b);

/// Adds a user.
///
/// Message type 10 to module 2, time-out 10 s.
/// @param[in] name     text; at most its first 31 bytes are sent
/// @param[in] password text; at most its first 31 bytes are sent
/// @param[in] level_a  first level value
/// @param[in] level_b  second level value
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t add_user_level(const char *name, const char *password, uint32_t level_a,
                               uint32_t level_b);

/// Deletes a user.
///
/// Message type 10 to module 2, time-out 10 s.
/// @param[in] name text; at most its first 31 bytes are sent
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t delete_user_level(const char *name);

/// Changes a user to what the record says.
///
/// Message type 10 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] user 80 bytes, filled by the caller; user_op is set to 3 before sending
/// @return 0, or the transport result OR-ed with the status word.
/// Note: user_op keeps the 3 whatever the result.
OLT_API int32_t modify_user_level(olt_user *user);

/// Reads the user that follows the one in the record. Pass the record of each answer to get the
/// next one.
///
/// Message type 62 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] user 80 bytes; user_op is set to 0 before sending; on success all other fields
///                     are filled
/// @return 0; the transport result alone when the exchange failed; else the status word.
/// Note: user_op keeps the 0 whatever the result. Name and password are copied up to the zero that
/// ends them in the reply, however long they are: one of more than 31 bytes runs over the fields
/// behind it. Name, password, index and levels are written in this order.
OLT_API int32_t get_system_next_user(olt_user *user);

/// Reads the user at the position in the record.
///
/// Message type 63 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] user 80 bytes, sent as they stand; on success name, password and levels are
///                     filled, user_op and user_index stay
/// @return 0; the transport result alone when the exchange failed; else the status word.
/// Note: name and password are copied up to the zero that ends them in the reply, however long
/// they are: one of more than 31 bytes runs over the fields behind it. Name, password and levels
/// are written in this order.
OLT_API int32_t get_system_user_byindex(olt_user *user);

// System information and network settings.

/// A MAC address, first byte first.
typedef struct olt_mac {
  uint8_t bytes[6];
} olt_mac;

/// SNMP agent parameters. Front ends and the main module agree on the layout; the library carries
/// the bytes.
typedef struct olt_snmp_param {
  uint8_t bytes[136];
} olt_snmp_param;

/// SNMP system information. Front ends and the main module agree on the layout; the library
/// carries the bytes.
typedef struct olt_snmp_systeminfo {
  uint8_t bytes[196];
} olt_snmp_systeminfo;

/// Reads the OLT's MAC address.
///
/// Message type 12 to module 2, time-out 10 s, no request body.
/// @param[out] mac 6 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_olt_mac(olt_mac *mac);

/// Has the running configuration written to a file and gives the file's name.
///
/// Message type 33 to module 2, time-out 10 s, no request body.
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_running_configuration_file(char name[32]);

/// Has the basic system information written to a file and gives the file's name.
///
/// Message type 53 to module 2, time-out 10 s, no request body.
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_system_basicinfofile(char name[32]);

/// Sets the SNMP agent's parameters.
///
/// Message type 56 to module 2, time-out 10 s; the record is the request.
/// @param[in] param 136 bytes, sent as they stand
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_snmp_param(const olt_snmp_param *param);

/// Reads the SNMP agent's parameters.
///
/// Message type 57 to module 2, time-out 10 s, no request body.
/// @param[out] param 136 bytes, whatever the length of the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_snmp_param(olt_snmp_param *param);

/// Reads the management network settings.
///
/// Message type 58 to module 2, time-out 10 s; the record is the request, so the module sees what
/// the caller put there.
/// @param[in,out] network 172 bytes, sent as they stand, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_system_network(olt_system_network *network);

/// Sets the SNMP system information.
///
/// Message type 59 to module 2, time-out 10 s; the record is the request.
/// @param[in] info 196 bytes, sent as they stand
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_snmp_systeminfo(const olt_snmp_systeminfo *info);

/// Reads the SNMP system information.
///
/// Message type 60 to module 2, time-out 10 s, no request body.
/// @param[out] info 196 bytes, whatever the length of the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_snmp_systeminfo(olt_snmp_systeminfo *info);

// Log and debug controls.

/// One debug value, 12 bytes.
typedef struct olt_debug_value {
  uint32_t debug_op;  ///< 0 reads, anything else writes
  uint32_t reserved_04;
  uint32_t debug_value;
} olt_debug_value;

/// One debug value of the switch, 28 bytes.
typedef struct olt_switch_debug {
  uint32_t debug_op;  ///< 0 reads, anything else writes
  uint8_t reserved_04[20];
  uint16_t debug_value;
  uint8_t reserved_1a[2];
} olt_switch_debug;

/// Sets the debug switches of one module.
///
/// Message type 2 to the module that the caller names, time-out 10 s.
/// @param[in] module the lower 8 bits number the module
/// @param[in] value  debug switches; the module defines the bits
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_debug_enable(uint32_t module, uint32_t value);

/// Has one module's use of memory written to a file and gives the file's name.
///
/// Message type 3 to the module that the caller names, time-out 10 s, no request body.
/// @param[in]  module the lower 8 bits number the module
/// @param[out] name   32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_memory_info(uint32_t module, char name[32]);

/// Reads which OAM the OLT supports.
///
/// Message type 4 to module 18, time-out 10 s, no request body.
/// @param[out] value one word
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_olt_support_oam(uint32_t *value);

/// Writes or reads a debug value, as debug_op of the record says.
///
/// Message type 39 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] value 12 bytes, sent as they stand; a read fills debug_value
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_debug_value(olt_debug_value *value);

/// Writes or reads a debug value of the switch, as debug_op of the record says.
///
/// Message type 40 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] value 28 bytes, sent as they stand; a read fills debug_value
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_switchdebug_value(olt_switch_debug *value);

/// Has a log file prepared and gives its name.
///
/// Message type 81 to module 22, time-out 10 s.
/// @param[out] name  32 bytes; no terminating zero is added
/// @param[in]  value which log; the log module defines the values
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_system_loginfofile(char name[32], uint32_t value);

/// Sets the size of the log files.
///
/// Message type 82, time-out 10 s each, to module 22 and, when that accepted, to module 2.
/// @param[in] value size; the log module defines the unit
/// @return 0, or the transport result OR-ed with the status word of the request that failed.
/// Note: a failure at module 2 leaves the setting of module 22 in place.
OLT_API int32_t set_system_logfilesize(uint32_t value);

/// Sets the level from which messages are logged.
///
/// Message type 83, time-out 10 s each, to module 22 and, when that accepted, to module 2.
/// @param[in] value level; the log module defines the range
/// @return 0, or the transport result OR-ed with the status word of the request that failed.
/// Note: a failure at module 2 leaves the setting of module 22 in place.
OLT_API int32_t set_system_loglevel(uint32_t value);

// Firmware update stream.

/// Hands one piece of a firmware update of the OLT to the box and takes the whole answer.
///
/// Message type 11 to module 2, time-out 60 s; the caller's bytes are the request.
/// @param[in]  request        length bytes, sent as they stand
/// @param[in]  length         bytes at request
/// @param[out] answer         a new block with the answer; the caller releases it with ___FREE,
///                            tag "do_handle_epon_updatestream"
/// @param[out] answer_length  bytes at *answer, 0 to 65,535
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the block is not tested. When it fails, answer_length and a null answer
/// have been written by the time the copy into the block ends the process.
OLT_API int32_t do_handle_epon_updatestream(const void *request, uint32_t length, void **answer,
                                            uint32_t *answer_length);

/// Hands one piece of a firmware update of ONUs to the box and takes the whole answer.
///
/// Message type 64 to module 2, time-out 60 s; the caller's bytes are the request.
/// @param[in]  request        length bytes, sent as they stand
/// @param[in]  length         bytes at request
/// @param[out] answer         a new block with the answer; the caller releases it with ___FREE,
///                            tag "do_handle_epon_updatestream_onu"
/// @param[out] answer_length  bytes at *answer, 0 to 65,535
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the block is not tested. When it fails, answer_length and a null answer
/// have been written by the time the copy into the block ends the process.
OLT_API int32_t do_handle_epon_updatestream_onu(const void *request, uint32_t length, void **answer,
                                                uint32_t *answer_length);

/// Reads how far the firmware update of the card has come.
///
/// Message type 61 to module 2, time-out 10 s, no request body.
/// @param[out] value one word; the main module defines its values
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_card_updatestatus(uint32_t *value);

#ifdef __cplusplus
}
#endif

#endif
