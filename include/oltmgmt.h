/// liboltmgmt: the management operations of an EPON optical line terminal.
///
/// Each operation sends one request to a management module of the box, waits for the reply and
/// copies the requested part of it to the caller. The library keeps no state between calls and may
/// be called from any number of threads; each call blocks only its own thread, for at most the
/// time-out stated with the operation.
///
/// Unless an operation says otherwise:
/// - It returns 0 if the module accepted the request and -1 if the request could not be built. Any
///   other value is the transport result OR-ed with the module's 16-bit status word, and says only
///   that the operation failed.
/// - On failure, caller memory is left unchanged.
/// - Records and buffers belong to the caller and are used only during the call. Pointers are not
///   checked for null.
/// - Words are 32-bit little-endian. Records made of words are 4-byte aligned; byte records,
///   buffers and strings may start at any address.
/// - Strings are zero-terminated.
/// - Bytes of a request that are called uninitialized hold whatever the stack or the allocator left
///   there; modules must ignore them.
#ifndef OLTMGMT_H
#define OLTMGMT_H

#include <stdint.h>

/// The version of this header, as text and as a number: two hex digits each for major, minor,
/// patch.
#define OLTMGMT_VERSION "0.1.0"
#define OLTMGMT_VERSION_NUMBER 0x000100

#if defined(__GNUC__)
#define OLT_API __attribute__((visibility("default")))
#else
#define OLT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

// Flash storage: five regions of the flash device, and the board's own record in region 2.
//
// These operations send no request and have no time-out. Each opens /dev/mtd0 for reading and
// writing and closes it before it returns. The device is not locked: callers that write to the same
// region must take turns.
//
//   region  start     bytes
//   1       0x000000     65,536
//   2       0x010000      4,096
//   3       0x011000    720,896
//   4       0x1C1000  2,355,200
//   5       0x0C1000  1,048,576

/// Reads from the start of a region with a single read.
///
/// @param[in]  region 1 to 5
/// @param[out] buffer length bytes; those after the last byte read stay unchanged
/// @param[in]  length bytes to read; anything above the region's size is reduced to it
/// @return the number of bytes read, which may be less than length; -1 if there is no such region;
/// -2 if the device cannot be opened; the negative result of the seek or read that failed.
OLT_API int32_t read_from_flash(uint32_t region, void *buffer, uint32_t length);

/// Erases the 4,096-byte blocks that the data will occupy, then writes the data to the start of a
/// region.
///
/// @param[in] region 1 to 5
/// @param[in] buffer length bytes
/// @param[in] length bytes to write, at most the size of the region
/// @return the number of bytes taken by the last write; with length 0, the result of the erase,
/// which is 0 on success; -1 if there is no such region or the data does not fit; -2 if the device
/// cannot be opened; the negative result of the erase, seek or write that failed.
/// Note: the last block is erased to its end, past the data; the blocks after it keep their
/// contents. A failure after the erase leaves the blocks erased and partly written. If the device
/// takes the data in several writes, only the last one is counted; a write that takes 0 bytes is
/// repeated without limit.
OLT_API int32_t save_to_flash(uint32_t region, const void *buffer, uint32_t length);

/// Erases a whole region.
///
/// @param[in] region   1 to 5
/// @param[in] unused_a any value
/// @param[in] unused_b any value
/// @return the result of the erase, which is 0 on success; -1 if there is no such region; -2 if the
/// device cannot be opened.
OLT_API int32_t erase_to_flash(uint32_t region, uint32_t unused_a, uint32_t unused_b);

// The board's record is read, changed and written back as a whole; no lock protects this.

/// Reads the board's OAM (operation, administration and maintenance) type. If a change of it is
/// pending, also clears the pending flag in flash.
///
/// @param[out] oam_type one word, the byte stored in the record
/// @param[out] pending  one word: set to 1 if a change was pending, otherwise unchanged
/// @return 0; -1 if the record cannot be read or the cleared flag cannot be saved.
/// Note: if the save fails, both words have been written already.
OLT_API int32_t read_oam_type(uint32_t *oam_type, uint32_t *pending);

/// Sets the board's OAM type and its pending flag.
///
/// @param[in] oam_type 0 to 2
/// @param[in] pending  1 marks the change as pending, any other value does not; only the low 8 bits
///                     are stored
/// @return 0; -1 if oam_type is above 2 or the record cannot be read or saved.
OLT_API int32_t write_oam_type(uint32_t oam_type, uint32_t pending);

/// Reads the OLT's serial number: three decimal numbers from 0 to 255 without separators.
///
/// @param[out] serial 10 bytes; a string of 3 to 9 digits
/// @return always 0.
/// Note: if the record cannot be read, the serial number is "110100".
OLT_API int32_t read_olt_serial(char serial[10]);

// System control: operations on the box as a whole.

/// Management network settings. Opaque to the library: front ends and the main module agree on the
/// layout.
typedef struct olt_system_network {
  uint8_t bytes[172];
} olt_system_network;

/// SNTP settings. Opaque to the library: front ends and the main module agree on the layout.
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

/// Reboots the box. Returns when the module has answered, not when the reboot is complete.
///
/// Message type 7 to module 2, time-out 10 s, no request body.
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t do_reboot_system(void);

/// Saves the running configuration as the one to start with next time.
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
/// @param[in] network 172 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_system_ipaddress(const olt_system_network *network);

/// Sets the DNS settings.
///
/// Message type 51 to module 2, time-out 10 s; the record is the request.
/// @param[in] network 172 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_system_dns(const olt_system_network *network);

/// Applies an SNTP configuration.
///
/// Message type 52 to module 2, time-out 10 s; the record is the request.
/// @param[in] config 88 bytes, sent unchanged
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
/// @param[in]  name     string; at most its first 31 bytes are sent
/// @param[in]  password string; at most its first 31 bytes are sent
/// @param[out] level_a  one word
/// @param[out] level_b  one word
/// @return 0; the transport result alone if the exchange failed; otherwise the status word.
OLT_API int32_t get_user_level(const char *name, const char *password, uint32_t *level_a,
                               uint32_t *level_b);

/// Adds a user.
///
/// Message type 10 to module 2, time-out 10 s.
/// @param[in] name     string; at most its first 31 bytes are sent
/// @param[in] password string; at most its first 31 bytes are sent
/// @param[in] level_a  first level value
/// @param[in] level_b  second level value
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t add_user_level(const char *name, const char *password, uint32_t level_a,
                               uint32_t level_b);

/// Deletes a user.
///
/// Message type 10 to module 2, time-out 10 s.
/// @param[in] name string; at most its first 31 bytes are sent
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t delete_user_level(const char *name);

/// Replaces a user's data with the record's.
///
/// Message type 10 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] user 80 bytes, filled in by the caller; user_op is set to 3 before sending
/// @return 0, or the transport result OR-ed with the status word.
/// Note: user_op stays 3 even on failure.
OLT_API int32_t modify_user_level(olt_user *user);

/// Reads the user after the one in the record. To walk the table, pass the filled record again.
///
/// Message type 62 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] user 80 bytes; user_op is set to 0 before sending; on success all other fields
///                     are filled
/// @return 0; the transport result alone if the exchange failed; otherwise the status word.
/// Note: user_op stays 0 even on failure. Name and password are copied from the reply up to their
/// terminating zero without a length check: one of more than 31 bytes overruns the fields after it.
/// Name, password, index and levels are written in this order.
OLT_API int32_t get_system_next_user(olt_user *user);

/// Reads the user at the table position given by user_index.
///
/// Message type 63 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] user 80 bytes, sent unchanged; on success name, password and levels are filled;
///                     user_op and user_index stay unchanged
/// @return 0; the transport result alone if the exchange failed; otherwise the status word.
/// Note: name and password are copied from the reply up to their terminating zero without a length
/// check: one of more than 31 bytes overruns the fields after it. Name, password and levels are
/// written in this order.
OLT_API int32_t get_system_user_byindex(olt_user *user);

// System information and network settings.

/// A MAC address, first byte first.
typedef struct olt_mac {
  uint8_t bytes[6];
} olt_mac;

/// SNMP agent parameters. Opaque to the library: front ends and the main module agree on the
/// layout.
typedef struct olt_snmp_param {
  uint8_t bytes[136];
} olt_snmp_param;

/// SNMP system information. Opaque to the library: front ends and the main module agree on the
/// layout.
typedef struct olt_snmp_systeminfo {
  uint8_t bytes[196];
} olt_snmp_systeminfo;

/// Reads the OLT's MAC address.
///
/// Message type 12 to module 2, time-out 10 s, no request body.
/// @param[out] mac 6 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_olt_mac(olt_mac *mac);

/// Writes the running configuration to a file on the box and returns the file's name.
///
/// Message type 33 to module 2, time-out 10 s, no request body.
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_running_configuration_file(char name[32]);

/// Writes the basic system information to a file on the box and returns the file's name.
///
/// Message type 53 to module 2, time-out 10 s, no request body.
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_system_basicinfofile(char name[32]);

/// Sets the SNMP agent's parameters.
///
/// Message type 56 to module 2, time-out 10 s; the record is the request.
/// @param[in] param 136 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_snmp_param(const olt_snmp_param *param);

/// Reads the SNMP agent's parameters.
///
/// Message type 57 to module 2, time-out 10 s, no request body.
/// @param[out] param 136 bytes, regardless of the reply length
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_snmp_param(olt_snmp_param *param);

/// Reads the management network settings.
///
/// Message type 58 to module 2, time-out 10 s; the record is the request, so the module also
/// receives its contents.
/// @param[in,out] network 172 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_system_network(olt_system_network *network);

/// Sets the SNMP system information.
///
/// Message type 59 to module 2, time-out 10 s; the record is the request.
/// @param[in] info 196 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_snmp_systeminfo(const olt_snmp_systeminfo *info);

/// Reads the SNMP system information.
///
/// Message type 60 to module 2, time-out 10 s, no request body.
/// @param[out] info 196 bytes, regardless of the reply length
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
/// Message type 2 to the given module, time-out 10 s.
/// @param[in] module module number; only the low 8 bits are used
/// @param[in] value  debug switches; the module defines what the bits mean
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_debug_enable(uint32_t module, uint32_t value);

/// Writes one module's memory usage to a file on the box and returns the file's name.
///
/// Message type 3 to the given module, time-out 10 s, no request body.
/// @param[in]  module module number; only the low 8 bits are used
/// @param[out] name   32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_memory_info(uint32_t module, char name[32]);

/// Reads which OAM the OLT supports.
///
/// Message type 4 to module 18, time-out 10 s, no request body.
/// @param[out] value one word
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_olt_support_oam(uint32_t *value);

/// Writes or reads a debug value, depending on debug_op.
///
/// Message type 39 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] value 12 bytes, sent unchanged; when reading, debug_value is filled
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_debug_value(olt_debug_value *value);

/// Writes or reads a debug value of the switch, depending on debug_op.
///
/// Message type 40 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] value 28 bytes, sent unchanged; when reading, debug_value is filled
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_switchdebug_value(olt_switch_debug *value);

/// Prepares a log file on the box and returns its name.
///
/// Message type 81 to module 22, time-out 10 s.
/// @param[out] name  32 bytes; no terminating zero is added
/// @param[in]  value which log; the log module defines the values
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_system_loginfofile(char name[32], uint32_t value);

/// Sets the size of the log files.
///
/// Message type 82, time-out 10 s each, to module 22 and, if that accepts, to module 2.
/// @param[in] value size; the log module defines the unit
/// @return 0, or the transport result OR-ed with the status word of the request that failed.
/// Note: if module 2 fails, module 22 keeps the new setting.
OLT_API int32_t set_system_logfilesize(uint32_t value);

/// Sets the level at which messages are logged.
///
/// Message type 83, time-out 10 s each, to module 22 and, if that accepts, to module 2.
/// @param[in] value level; the log module defines the range
/// @return 0, or the transport result OR-ed with the status word of the request that failed.
/// Note: if module 2 fails, module 22 keeps the new setting.
OLT_API int32_t set_system_loglevel(uint32_t value);

// Firmware update stream.

/// Sends one piece of an OLT firmware update to the box and returns the whole answer.
///
/// Message type 11 to module 2, time-out 60 s; the buffer is the request.
/// @param[in]  request       length bytes, sent unchanged
/// @param[in]  length        number of bytes at request
/// @param[out] answer        a new block with the answer; the caller releases it with ___FREE, tag
///                           "do_handle_epon_updatestream"
/// @param[out] answer_length number of bytes at *answer, 0 to 65,535
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the block is not checked. If it fails, *answer_length is set, *answer is
/// null, and copying an answer of 1 byte or more crashes the process.
OLT_API int32_t do_handle_epon_updatestream(const void *request, uint32_t length, void **answer,
                                            uint32_t *answer_length);

/// Sends one piece of an ONU firmware update to the box and returns the whole answer.
///
/// Message type 64 to module 2, time-out 60 s; the buffer is the request.
/// @param[in]  request       length bytes, sent unchanged
/// @param[in]  length        number of bytes at request
/// @param[out] answer        a new block with the answer; the caller releases it with ___FREE, tag
///                           "do_handle_epon_updatestream_onu"
/// @param[out] answer_length number of bytes at *answer, 0 to 65,535
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the block is not checked. If it fails, *answer_length is set, *answer is
/// null, and copying an answer of 1 byte or more crashes the process.
OLT_API int32_t do_handle_epon_updatestream_onu(const void *request, uint32_t length, void **answer,
                                                uint32_t *answer_length);

/// Reads the progress of the card's firmware update.
///
/// Message type 61 to module 2, time-out 10 s, no request body.
/// @param[out] value one word; the main module defines its values
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_card_updatestatus(uint32_t *value);

// VLAN tables.
//
// Operations that take a list send its first count nodes, in list order, and read no further. Lists
// and nodes have the compiler's natural alignment.

/// A node of a VLAN list, 48 bytes.
typedef struct olt_vlan_node {
  struct olt_vlan_node *next;  ///< not checked for null
  uint8_t reserved[12 - sizeof(void *)];
  uint16_t vlan_first;   ///< the main module defines its meaning
  uint16_t vlan_second;  ///< the main module defines its meaning
  char vlan_descr[32];   ///< sent unchanged, with or without a terminating zero
} olt_vlan_node;

/// A list of VLANs: 20 bytes, or 24 with 64-bit pointers.
typedef struct olt_vlan_list {
  olt_vlan_node *head;
  uint8_t reserved[16 - sizeof(void *)];
  int32_t count;  ///< nodes to send, 0 or more; the list must hold at least as many
} olt_vlan_list;

/// Adds VLANs.
///
/// Message type 19 to module 2, time-out 10 s.
/// @param[in] list VLANs to add; vlan_descr is not read
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t add_vlan_list(const olt_vlan_list *list);

/// Deletes VLANs.
///
/// Message type 20 to module 2, time-out 10 s.
/// @param[in] list VLANs to delete; vlan_descr is not read
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t delete_vlan_list(const olt_vlan_list *list);

/// Adds descriptions of VLANs.
///
/// Message type 21 to module 2, time-out 10 s.
/// @param[in] list VLANs and their descriptions
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t add_vlan_descr_list(const olt_vlan_list *list);

/// Deletes descriptions of VLANs.
///
/// Message type 22 to module 2, time-out 10 s.
/// @param[in] list VLANs whose descriptions are deleted; vlan_descr is not read
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t delete_vlan_descr_list(const olt_vlan_list *list);

/// Writes the VLANs of one OLT port to a file on the box and returns the file's name.
///
/// Message type 23 to module 2, time-out 10 s.
/// @param[in]  slot slot number
/// @param[in]  port port number
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
/// Note: in the request, slot and port are words 1 and 2; word 0 is 0.
OLT_API int32_t get_vlan_interface_file_byinteface(uint32_t slot, uint32_t port, char name[32]);

/// Writes the VLANs of a list to a file on the box and returns the file's name.
///
/// Message type 23 to module 2, time-out 10 s.
/// @param[in]  list VLANs to show; vlan_descr is not read
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes. Bytes 4 to
/// 79 of the request are uninitialized.
OLT_API int32_t get_vlan_information_file_bylist(const olt_vlan_list *list, char name[32]);

/// Writes the VLANs that have a given description to a file on the box and returns the file's name.
///
/// Message type 23 to module 2, time-out 10 s.
/// @param[in]  description string of at most 63 bytes
/// @param[out] name        32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
/// Note: description is copied without a length check; a longer one overruns the request on the
/// stack.
OLT_API int32_t get_vlan_information_file_bydescprtion(const char *description, char name[32]);

/// Writes all VLANs to a file on the box and returns the file's name.
///
/// Message type 23 to module 2, time-out 10 s.
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_vlan_all(char name[32]);

// Trunk VLAN membership.
//
// The main module defines how the operations ending in _all differ from the others.

/// Sends VLANs as the tagged trunk VLANs of an OLT port.
///
/// Message type 25 to module 2, time-out 60 s.
/// @param[in] slot        slot number
/// @param[in] port        port number
/// @param[in] list        VLANs; vlan_descr is not read
/// @param[in] trunk_value the main module defines its values
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes. Bytes 12
/// to 79 of the request are uninitialized.
OLT_API int32_t process_trunk_vlan(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                                   uint32_t trunk_value);

/// Sends VLANs as the untagged trunk VLANs of an OLT port.
///
/// Message type 26 to module 2, time-out 60 s.
/// @param[in] slot        slot number
/// @param[in] port        port number
/// @param[in] list        VLANs; vlan_descr is not read
/// @param[in] trunk_value the main module defines its values
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes. Bytes 12
/// to 79 of the request are uninitialized.
OLT_API int32_t process_trunk_vlan_untag(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                                         uint32_t trunk_value);

/// Sends VLANs as the tagged trunk VLANs of an OLT port: the _all form.
///
/// Message type 27 to module 2, time-out 60 s.
/// @param[in] slot        slot number
/// @param[in] port        port number
/// @param[in] list        VLANs; vlan_descr is not read
/// @param[in] trunk_value the main module defines its values
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes. Bytes 12
/// to 79 of the request are uninitialized.
OLT_API int32_t process_trunk_vlan_all(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                                       uint32_t trunk_value);

/// Sends VLANs as the untagged trunk VLANs of an OLT port: the _all form.
///
/// Message type 28 to module 2, time-out 60 s.
/// @param[in] slot        slot number
/// @param[in] port        port number
/// @param[in] list        VLANs; vlan_descr is not read
/// @param[in] trunk_value the main module defines its values
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes. Bytes 12
/// to 79 of the request are uninitialized.
OLT_API int32_t process_trunk_vlan_untag_all(uint32_t slot, uint32_t port,
                                             const olt_vlan_list *list, uint32_t trunk_value);

// OLT ports.
//
// The main module defines the values of the attributes; the library passes them on unchanged.

/// Attributes of one OLT port, 80 bytes. In records from the caller, the library reads only slot
/// and port; front ends and the main module agree on the rest.
typedef struct olt_port_attributes {
  uint32_t slot;
  uint32_t port;
  uint32_t reserved_08;
  uint32_t sfp_module;
  uint32_t port_enable;
  uint32_t link_speed;
  uint32_t link_duplex;
  uint32_t vlanmode_second;
  uint32_t vlanmode_first;
  uint32_t reserved_24;
  uint32_t flowcontrol;
  uint32_t ingressfilter_first;
  uint32_t ingressfilter_second;
  uint32_t ratecontrol_first;
  uint32_t ratecontrol_second;
  uint32_t rstp_state;
  uint32_t link_state;
  uint32_t reserved_44[2];
  uint32_t max_link;
} olt_port_attributes;

/// MAC operation on a port, 16 bytes. Opaque to the library: front ends and the main module agree
/// on the layout.
typedef struct olt_port_mac {
  uint8_t bytes[16];
} olt_port_mac;

/// Sets the SFP module of an uplink port.
///
/// Message type 13 to module 2, time-out 10 s.
/// @param[in] slot       slot number
/// @param[in] port       port number
/// @param[in] sfp_module one word
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_uplink_sfp_module(uint32_t slot, uint32_t port, uint32_t sfp_module);

/// Enables or disables a port.
///
/// Message type 14 to module 2, time-out 10 s.
/// @param[in] slot        slot number
/// @param[in] port        port number
/// @param[in] port_enable one word
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_port_enable(uint32_t slot, uint32_t port, uint32_t port_enable);

/// Reads whether a port is enabled.
///
/// Message type 15 to module 2, time-out 10 s.
/// @param[in]  slot        slot number
/// @param[in]  port        port number
/// @param[out] port_enable one word
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the reply is not released.
OLT_API int32_t get_port_enable(uint32_t slot, uint32_t port, uint32_t *port_enable);

/// Reads the link state of a port.
///
/// Message type 16 to module 2, time-out 10 s.
/// @param[in]  slot       slot number
/// @param[in]  port       port number
/// @param[out] link_state one word
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the reply is not released.
OLT_API int32_t get_port_link_state(uint32_t slot, uint32_t port, uint32_t *link_state);

/// Reads the duplex mode of a port's link.
///
/// Message type 17 to module 2, time-out 10 s.
/// @param[in]  slot        slot number
/// @param[in]  port        port number
/// @param[out] link_duplex one word
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the reply is not released.
OLT_API int32_t get_port_link_duplex(uint32_t slot, uint32_t port, uint32_t *link_duplex);

/// Reads the speed of a port's link.
///
/// Message type 18 to module 2, time-out 10 s.
/// @param[in]  slot       slot number
/// @param[in]  port       port number
/// @param[out] link_speed one word
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the reply is not released.
OLT_API int32_t get_port_link_speed(uint32_t slot, uint32_t port, uint32_t *link_speed);

/// Sets the VLAN mode of a port.
///
/// Message type 24 to module 2, time-out 60 s.
/// @param[in] slot   slot number
/// @param[in] port   port number
/// @param[in] first  first value, sent as vlanmode_first
/// @param[in] second second value, sent as vlanmode_second
/// @return 0, or the transport result OR-ed with the status word.
/// Note: in the request, the second value comes before the first.
OLT_API int32_t Set_port_vlanmode(uint32_t slot, uint32_t port, uint32_t first, uint32_t second);

/// Sets the rate control of a port.
///
/// Message type 66 to module 2, time-out 10 s.
/// @param[in] slot   slot number
/// @param[in] port   port number
/// @param[in] first  first value, sent as ratecontrol_first
/// @param[in] second second value, sent as ratecontrol_second
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the remaining words of the request are uninitialized.
OLT_API int32_t set_olt_port_ratecontrol(uint32_t slot, uint32_t port, uint32_t first,
                                         uint32_t second);

/// Sets the RSTP state of a port.
///
/// Message type 67 to module 2, time-out 10 s.
/// @param[in] slot       slot number
/// @param[in] port       port number
/// @param[in] rstp_state one word
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the remaining words of the request are uninitialized.
OLT_API int32_t stp_set_port_rstp_state(uint32_t slot, uint32_t port, uint32_t rstp_state);

/// Sets the ingress filter of a port.
///
/// Message type 68 to module 2, time-out 10 s.
/// @param[in] slot   slot number
/// @param[in] port   port number
/// @param[in] first  first value, sent as ingressfilter_first
/// @param[in] second second value, sent as ingressfilter_second
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the remaining words of the request are uninitialized.
OLT_API int32_t set_olt_port_ingressfilter(uint32_t slot, uint32_t port, uint32_t first,
                                           uint32_t second);

/// Sets the flow control of a port.
///
/// Message type 69 to module 2, time-out 10 s.
/// @param[in] slot        slot number
/// @param[in] port        port number
/// @param[in] flowcontrol one word
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the remaining words of the request are uninitialized.
OLT_API int32_t set_olt_port_flowcontrol(uint32_t slot, uint32_t port, uint32_t flowcontrol);

/// Reads the basic information of a port for the SNMP agent.
///
/// Message type 70 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] record 80 bytes with slot 1 and port 1 to 4, sent unchanged, then overwritten
///                       with the reply
/// @return 0; -1 if slot or port is out of range; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t get_snmp_olt_port_basic_info(olt_port_attributes *record);

/// Sets the basic information of a port for the SNMP agent.
///
/// Message type 71 to module 2, time-out 10 s; the record is the request.
/// @param[in] record 80 bytes with slot 1 and port 1 to 4, sent unchanged
/// @return 0; -1 if slot or port is out of range; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_snmp_olt_port_basic_info(const olt_port_attributes *record);

/// Reads the status of a port for the SNMP agent.
///
/// Message type 72 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] record 80 bytes with slot 1 and port 3 or 4, sent unchanged, then overwritten
///                       with the reply
/// @return 0; -1 if slot or port is out of range; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t get_snmp_olt_port_status(olt_port_attributes *record);

/// Performs the MAC operation described by the record on a port.
///
/// Message type 55 to module 2, time-out 10 s; the record is the request.
/// @param[in] record 16 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_olt_port_mac(const olt_port_mac *record);

/// Sets the maximum link count of a port.
///
/// Message type 102 to module 2, time-out 10 s.
/// @param[in] slot     slot number
/// @param[in] port     port number
/// @param[in] max_link one word
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_oltport_maxlink(uint32_t slot, uint32_t port, uint32_t max_link);

/// Sets the aggregation of the uplink ports.
///
/// Message type 34 to module 2, time-out 10 s.
/// @param[in] upport_agg one word
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t Set_upport_agg(uint32_t upport_agg);

/// Reads the aggregation of the uplink ports.
///
/// Message type 74 to module 2, time-out 10 s, no request body.
/// @param[out] upport_agg one word
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_upport_agg(uint32_t *upport_agg);

// Port statistics and MAC tables.
//
// The two listings send slot and port as words 1 and 2 of the request, the two clearing operations
// as words 0 and 1.

/// Writes the traffic counters of an OLT port to a file on the box and returns the file's name.
///
/// Message type 29 to module 2, time-out 10 s.
/// @param[in]  slot slot number
/// @param[in]  port port number
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_statics_file_by_interface(uint32_t slot, uint32_t port, char name[32]);

/// Clears the traffic counters of an OLT port.
///
/// Message type 30 to module 2, time-out 10 s.
/// @param[in] slot slot number
/// @param[in] port port number
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t clear_statics_file_by_interface(uint32_t slot, uint32_t port);

/// Writes the learned MAC addresses of an OLT port to a file on the box and returns the file's
/// name.
///
/// Message type 31 to module 2, time-out 10 s.
/// @param[in]  slot       slot number
/// @param[in]  port       port number
/// @param[in]  dynmac_arg the main module defines its meaning
/// @param[out] name       32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_dynmac_file_by_interface(uint32_t slot, uint32_t port, uint32_t dynmac_arg,
                                             char name[32]);

/// Clears the learned MAC addresses of an OLT port.
///
/// Message type 32 to module 2, time-out 10 s.
/// @param[in] slot slot number
/// @param[in] port port number
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t clear_dynmac_file_by_interface(uint32_t slot, uint32_t port);

// RSTP.

/// RSTP settings of the bridge, 33 bytes. Opaque to the library: front ends and the main module
/// agree on the layout.
typedef struct olt_rstp_bridge {
  uint8_t bytes[33];
} olt_rstp_bridge;

/// RSTP settings of one port, 27 bytes. Opaque to the library: front ends and the main module agree
/// on the layout.
typedef struct olt_rstp_port {
  uint8_t bytes[27];
} olt_rstp_port;

/// RSTP summary of one port, 40 bytes. Front ends and module 23 agree on what the words mean.
typedef struct olt_rstp_brief {
  uint32_t keys[2];
  uint32_t values[8];
} olt_rstp_brief;

/// Reads the RSTP settings of the bridge.
///
/// Message type 170 to module 2, time-out 10 s, no request body.
/// @param[out] bridge 33 bytes, regardless of the reply length
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_rstp_config(olt_rstp_bridge *bridge);

/// Reads the RSTP settings of the port that the record selects.
///
/// Message type 171 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] port 27 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_rstp_port_config(olt_rstp_port *port);

/// Sets the RSTP settings of the bridge.
///
/// Message type 172 to module 2, time-out 50 s; the record is the request.
/// @param[in] bridge 33 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_rstp_config(const olt_rstp_bridge *bridge);

/// Sets the RSTP settings of one port.
///
/// Message type 173 to module 2, time-out 30 s; the record is the request.
/// @param[in] port 27 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_rstp_port_config(const olt_rstp_port *port);

/// Reads the RSTP summary of the port that the keys select.
///
/// Message type 174 to module 23, time-out 10 s; the record is the request.
/// @param[in,out] brief 40 bytes, sent unchanged; on success values is filled; keys stays unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_rstp_brief(olt_rstp_brief *brief);

// IGMP proxy and multicast VLAN lists.

/// IGMP proxy settings, 24 bytes. Opaque to the library: front ends and the main module agree on
/// what the words mean.
typedef struct olt_igmpproxy {
  uint32_t words[6];
} olt_igmpproxy;

/// Adds multicast VLANs.
///
/// Message type 149 to module 2, time-out 10 s.
/// @param[in] list VLANs to add; vlan_descr is not read
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t add_muticastvlan_list(const olt_vlan_list *list);

/// Deletes multicast VLANs.
///
/// Message type 150 to module 2, time-out 10 s.
/// @param[in] list VLANs to delete; vlan_descr is not read
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t delete_muticastvlan_list(const olt_vlan_list *list);

/// Reads the IGMP proxy settings.
///
/// Message type 151 to module 2, time-out 20 s, no request body.
/// @param[out] config 24 bytes, regardless of the reply length
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_igmpproxy_config(olt_igmpproxy *config);

/// Sets the IGMP proxy settings.
///
/// Message type 152 to module 2, time-out 10 s; the record is the request.
/// @param[in] config 24 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_igmpproxy_config(const olt_igmpproxy *config);

/// Reads the whole IGMP proxy configuration, in a layout that the main module defines.
///
/// Message type 153 to module 2, time-out 20 s, no request body.
/// @param[out] dump a new block with the whole reply; the caller releases it with ___FREE, tag
///                  "get_igmpproxy_config_all"
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the block cannot be allocated, the result is 0 and *dump is null. The block's length is
/// not returned.
OLT_API int32_t get_igmpproxy_config_all(void **dump);

// ONU authentication.

/// One entry of an allow list or of the block list, 44 bytes. Opaque to the library: front ends and
/// the main module agree on the layout.
typedef struct olt_auth_entry {
  uint8_t bytes[44];
} olt_auth_entry;

/// Sets the authentication mode of a PON interface.
///
/// Message type 114 to module 2, time-out 10 s.
/// @param[in] iface_a   slot number of the PON interface
/// @param[in] iface_b   port number of the PON interface
/// @param[in] auth_mode mode; the main module defines the values
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_olt_auth_mode(uint32_t iface_a, uint32_t iface_b, uint32_t auth_mode);

/// Reads the authentication mode of a PON interface.
///
/// Message type 116 to module 2, time-out 10 s.
/// @param[in]  iface_a   slot number of the PON interface
/// @param[in]  iface_b   port number of the PON interface
/// @param[out] auth_mode one word; the main module defines the values
/// @return always 0.
/// Note: on failure, reports mode 0: auth_mode is always written.
OLT_API int32_t get_olt_auth_mode(uint32_t iface_a, uint32_t iface_b, uint32_t *auth_mode);

/// Adds entries to a PON interface's list of ONUs allowed by MAC address.
///
/// Message type 112 to module 2, time-out 10 s.
/// @param[in] iface_a slot number of the PON interface
/// @param[in] iface_b port number of the PON interface
/// @param[in] count   number of entries, 0 or more
/// @param[in] entries count records of 44 bytes, one after the other, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes.
OLT_API int32_t add_authallowed_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                    const olt_auth_entry *entries);

/// Deletes entries from a PON interface's list of ONUs allowed by MAC address.
///
/// Message type 113 to module 2, time-out 10 s.
/// @param[in] iface_a slot number of the PON interface
/// @param[in] iface_b port number of the PON interface
/// @param[in] count   number of entries, 0 or more
/// @param[in] entries count records of 44 bytes, one after the other, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes. Bytes 8 to
/// 79 of the request are uninitialized.
OLT_API int32_t delete_authallowed_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                       const olt_auth_entry *entries);

/// Adds entries to a PON interface's list of ONUs allowed by LOID (logical ONU identifier).
///
/// Message type 110 to module 2, time-out 10 s.
/// @param[in] iface_a slot number of the PON interface
/// @param[in] iface_b port number of the PON interface
/// @param[in] count   number of entries, 0 or more
/// @param[in] entries count records of 44 bytes, one after the other, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes.
OLT_API int32_t add_authallowed_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                     const olt_auth_entry *entries);

/// Deletes entries from a PON interface's list of ONUs allowed by LOID (logical ONU identifier).
///
/// Message type 111 to module 2, time-out 10 s.
/// @param[in] iface_a slot number of the PON interface
/// @param[in] iface_b port number of the PON interface
/// @param[in] count   number of entries, 0 or more
/// @param[in] entries count records of 44 bytes, one after the other, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes. Bytes 8 to
/// 79 of the request are uninitialized.
OLT_API int32_t delete_authallowed_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                        const olt_auth_entry *entries);

/// Adds entries to a PON interface's list of ONUs allowed by MAC address and LOID together.
///
/// Message type 108 to module 2, time-out 10 s.
/// @param[in] iface_a slot number of the PON interface
/// @param[in] iface_b port number of the PON interface
/// @param[in] count   number of entries, 0 or more
/// @param[in] entries count records of 44 bytes, one after the other, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes.
OLT_API int32_t add_authallowed_mac_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                         const olt_auth_entry *entries);

/// Deletes entries from a PON interface's list of ONUs allowed by MAC address and LOID together.
///
/// Message type 109 to module 2, time-out 10 s.
/// @param[in] iface_a slot number of the PON interface
/// @param[in] iface_b port number of the PON interface
/// @param[in] count   number of entries, 0 or more
/// @param[in] entries count records of 44 bytes, one after the other, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the allocation of the request is not checked; if it fails, the process crashes. Bytes 8 to
/// 79 of the request are uninitialized.
OLT_API int32_t delete_authallowed_mac_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                            const olt_auth_entry *entries);

/// Deletes entries from a PON interface's block list.
///
/// Message type 41 to module 2, time-out 10 s.
/// @param[in] iface_a slot number of the PON interface
/// @param[in] iface_b port number of the PON interface
/// @param[in] count   number of entries, 0 or more
/// @param[in] entries count records of 44 bytes, one after the other, sent unchanged
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: if the request cannot be allocated, "less of memory" is also logged at level 3 with tag
/// "delete_blocklist_mac". Bytes 8 to 79 of the request are uninitialized.
OLT_API int32_t delete_blocklist_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                     const olt_auth_entry *entries);

/// Writes the authentication mode table of a PON interface to a file on the box and returns the
/// file's name.
///
/// Message type 115 to module 2, time-out 10 s.
/// @param[in]  iface_a slot number of the PON interface
/// @param[in]  iface_b port number of the PON interface
/// @param[out] name    32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
/// Note: in the request, slot and port are words 1 and 2; word 0 is 0.
OLT_API int32_t show_autmacmode_file_by_interface(uint32_t iface_a, uint32_t iface_b,
                                                  char name[32]);

/// Writes the block list of a PON interface to a file on the box and returns the file's name.
///
/// Message type 37 to module 2, time-out 10 s.
/// @param[in]  iface_a slot number of the PON interface
/// @param[in]  iface_b port number of the PON interface
/// @param[out] name    32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
/// Note: in the request, slot and port are words 1 and 2; word 0 is 0.
OLT_API int32_t get_blocklist_file_byinteface(uint32_t iface_a, uint32_t iface_b, char name[32]);

// ONU inventory.
//
// A link of a PON interface or an ONU is a logical link, which an LLID identifies; the link of an
// OLT port is its Ethernet link.

/// Identifies one ONU or ONT and, in port operations, one of its UNI (user network interface)
/// ports: 88 bytes, 4-byte aligned. Front ends and the main module agree on what the words and the
/// reserved bytes mean.
typedef struct olt_ont_target {
  uint32_t target[3];
  uint32_t target_kind;  ///< 1 in records built by the library
  uint8_t reserved_10[12];
  olt_mac mac;  ///< address of the ONU
  uint8_t reserved_22[2];
  uint32_t mac_word;  ///< returned by the module together with mac
  uint8_t reserved_28[48];
} olt_ont_target;

/// Basic feature block or description of an ONU, 48 bytes. The main module defines what the words
/// mean.
typedef struct olt_onu_feature {
  uint32_t words[12];
} olt_onu_feature;

/// Writes the list of ONUs of a PON interface to a file on the box and returns the file's name.
///
/// Message type 35 to module 2, time-out 10 s.
/// @param[in]  iface_a slot number of the PON interface
/// @param[in]  iface_b port number of the PON interface
/// @param[out] name    32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
/// Note: in the request, slot and port are words 1 and 2; word 0 is 0.
OLT_API int32_t get_onulist_file_byinteface(uint32_t iface_a, uint32_t iface_b, char name[32]);

/// Writes the list of links of a PON interface to a file on the box and returns the file's name.
///
/// Message type 36 to module 2, time-out 10 s.
/// @param[in]  iface_a slot number of the PON interface
/// @param[in]  iface_b port number of the PON interface
/// @param[out] name    32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
/// Note: in the request, slot and port are words 1 and 2; word 0 is 0.
OLT_API int32_t get_linklist_file_byinteface(uint32_t iface_a, uint32_t iface_b, char name[32]);

/// Writes the basic information of an ONT to a file on the box and returns the file's name.
///
/// Message type 47 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t getonu_ont_basicinforfile(const olt_ont_target *ont, char name[32]);

/// Writes the running configuration of an ONT to a file on the box and returns the file's name.
///
/// Message type 48 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_runningconfig(const olt_ont_target *ont, char name[32]);

/// Writes the optical readings of an ONT to a file on the box and returns the file's name.
///
/// Message type 106 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t getonu_ont_opticalfile(const olt_ont_target *ont, char name[32]);

/// Reads the MAC address of the ONU that the record selects by index.
///
/// Message type 65 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] ont 88 bytes, sent unchanged; on success mac and mac_word are filled; all other
///                    bytes stay unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_onu_basic_mac_byindex(olt_ont_target *ont);

/// Reads the basic feature block of an ONU.
///
/// Message type 38 to module 2, time-out 10 s.
/// @param[in]  target_a first word identifying the ONU
/// @param[in]  target_b second word identifying the ONU
/// @param[in]  target_c third word identifying the ONU
/// @param[out] feature  48 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_onu_basic_feature_f(uint32_t target_a, uint32_t target_b, uint32_t target_c,
                                        olt_onu_feature *feature);

// ONU links and features.

/// OLT parameters that apply to all PON ports, 32 bytes. The main module defines the values.
typedef struct olt_global_parameter {
  uint32_t reserved_00[4];
  uint32_t p2p_function;
  uint32_t link_security_a;
  uint32_t link_security_b;
  uint32_t ponport_function;
} olt_global_parameter;

/// Dynamic bandwidth allocation of a link, 20 bytes. The main module defines what the words mean.
typedef struct olt_link_dba {
  uint32_t requested[3];
  uint32_t granted[2];  ///< sent along with requested; the reply holds what was granted
} olt_link_dba;

/// The three words that identify an ONU, 12 bytes.
typedef struct olt_target_words {
  uint32_t words[3];
} olt_target_words;

/// Sets the peer-to-peer function.
///
/// Message type 76 to module 2, time-out 10 s.
/// @param[in] p2p_function setting; the main module defines the values
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the remaining words of the 32-byte request are uninitialized; the message type tells the
/// module which words to use.
OLT_API int32_t set_ont_p2p_function(uint32_t p2p_function);

/// Sets the PON port function.
///
/// Message type 77 to module 2, time-out 10 s.
/// @param[in] ponport_function setting; the main module defines the values
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the remaining words of the 32-byte request are uninitialized; the message type tells the
/// module which words to use.
OLT_API int32_t set_ponport_function(uint32_t ponport_function);

/// Sets the link security encryption.
///
/// Message type 78 to module 2, time-out 10 s.
/// @param[in] link_security_a first setting; the main module defines the values
/// @param[in] link_security_b second setting; the main module defines the values
/// @return 0, or the transport result OR-ed with the status word.
/// Note: the remaining words of the 32-byte request are uninitialized; the message type tells the
/// module which words to use.
OLT_API int32_t set_ont_linkSecurityEncryption(uint32_t link_security_a, uint32_t link_security_b);

/// Sends the OLT's global parameters and reads back the module's answer.
///
/// Message type 79 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] parameter 32 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_olt_global_paramter(olt_global_parameter *parameter);

/// Requests a dynamic bandwidth allocation for a link and reads what was granted.
///
/// Message type 54 to module 2, time-out 10 s.
/// @param[in]     ont 88 bytes, sent unchanged
/// @param[in,out] dba 20 bytes, sent after ont; on success granted is filled; requested stays
///                    unchanged
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_ont_linkdba(const olt_ont_target *ont, olt_link_dba *dba);

/// Restores the defaults of an ONU.
///
/// Message type 169 to module 2, time-out 10 s; the record is the request.
/// @param[in] ont 88 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t tkonu_ont_default(const olt_ont_target *ont);

/// Reboots an ONU of one family; use ctconu_ont_reboot for the other.
///
/// Message type 168 to module 2, time-out 10 s; the record is the request.
/// @param[in] ont 88 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t tkonu_ont_reboot(const olt_ont_target *ont);

/// Reboots an ONU of one family; use tkonu_ont_reboot for the other.
///
/// Message type 107 to module 2, time-out 10 s; the record is the request.
/// @param[in] ont 88 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t ctconu_ont_reboot(const olt_ont_target *ont);

/// Clears the node of an ONU.
///
/// Message type 43 to module 2, time-out 10 s; the record is the request.
/// @param[in] ont 88 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t clear_onu_node(const olt_ont_target *ont);

/// Deletes the description of an ONU.
///
/// Message type 45 to module 2, time-out 10 s; the record is the request.
/// @param[in] ont 88 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t delete_ont_description(const olt_ont_target *ont);

/// Sets the user traffic of an ONU.
///
/// Message type 46 to module 2, time-out 10 s; the record is the request.
/// @param[in] ont 88 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t set_ont_usertraffic(const olt_ont_target *ont);

/// Sets the basic feature block of an ONU without sending its MAC address.
///
/// Message type 49 to module 2, time-out 10 s.
/// @param[in] target_a first word identifying the ONU
/// @param[in] target_b second word identifying the ONU
/// @param[in] target_c third word identifying the ONU
/// @param[in] feature  48 bytes
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: if the request cannot be allocated, "less of momery" is also logged at level 3 with tag
/// "set_onu_basic_feature_force". Bytes 16 to 87 of the request are uninitialized.
OLT_API int32_t set_onu_basic_feature_force(uint32_t target_a, uint32_t target_b, uint32_t target_c,
                                            const olt_onu_feature *feature);

/// Sets the basic feature block of an ONU and sends its MAC address.
///
/// Message type 42 to module 2, time-out 10 s.
/// @param[in] target_a first word identifying the ONU
/// @param[in] target_b second word identifying the ONU
/// @param[in] target_c third word identifying the ONU
/// @param[in] feature  48 bytes
/// @param[in] mac      6 bytes, the ONU's address
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: if the request cannot be allocated, "less of momery" is also logged at level 3 with tag
/// "set_onu_basic_feature_f". Bytes 16 to 27 and 34 to 87 of the request are uninitialized.
OLT_API int32_t set_onu_basic_feature_f(uint32_t target_a, uint32_t target_b, uint32_t target_c,
                                        const olt_onu_feature *feature, const olt_mac *mac);

/// Adds a description to an ONU.
///
/// Message type 44 to module 2, time-out 10 s.
/// @param[in] ont         12 bytes
/// @param[in] description 48 bytes
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: if the request cannot be allocated, "less of momery" is also logged at level 3 with tag
/// "add_ont_description". Bytes 16 to 87 of the request are uninitialized.
OLT_API int32_t add_ont_description(const olt_target_words *ont,
                                    const olt_onu_feature *description);

// ONT UNI ports.

/// VLAN mode of a UNI port, 36 bytes. Opaque to the library: front ends and the main module agree
/// on the layout.
typedef struct olt_uni_vlan_mode {
  uint8_t bytes[36];
} olt_uni_vlan_mode;

/// Downstream rate of a UNI port, 12 bytes. The main module defines what the words mean.
typedef struct olt_uni_downrate {
  uint32_t words[3];
} olt_uni_downrate;

/// Policing of a UNI port, 16 bytes. The main module defines what the words mean.
typedef struct olt_uni_policing {
  uint32_t words[4];
} olt_uni_policing;

/// Basic information or description of a UNI port, 44 bytes. The main module defines what the words
/// mean.
typedef struct olt_uni_block {
  uint32_t words[11];
} olt_uni_block;

/// Writes the alarm settings of a UNI port to a file on the box and returns the file's name.
///
/// Message type 104 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t get_ont_port_alarmsetting(const olt_ont_target *ont, char name[32]);

/// Sets the alarm settings of a UNI port.
///
/// Message type 105 to module 2, time-out 10 s.
/// @param[in] ont        88 bytes, sent unchanged
/// @param[in] port_value setting; the main module defines the values
/// @return 0, or -1 on any failure.
OLT_API int32_t set_ont_port_alarmsetting(const olt_ont_target *ont, uint32_t port_value);

/// Sets the loopback of a UNI port.
///
/// Message type 117 to module 2, time-out 10 s.
/// @param[in] ont        88 bytes, sent unchanged
/// @param[in] port_value setting; the main module defines the values
/// @return 0, or -1 on any failure.
OLT_API int32_t set_ont_port_loopback(const olt_ont_target *ont, uint32_t port_value);

/// Writes the VLAN mode of a UNI port to a file on the box and returns the file's name.
///
/// Message type 128 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_port_vlanmode(const olt_ont_target *ont, char name[32]);

/// Sets the VLAN mode of a UNI port.
///
/// Message type 129 to module 2, time-out 10 s.
/// @param[in] ont  88 bytes, sent unchanged
/// @param[in] mode 36 bytes, sent after ont
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent and the result is 0.
OLT_API int32_t set_ont_port_vlanmode(const olt_ont_target *ont, const olt_uni_vlan_mode *mode);

/// Reads the downstream rate of a UNI port.
///
/// Message type 119 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont   88 bytes, sent unchanged
/// @param[out] rates 12 bytes
/// @return 0, or -1 on any failure.
OLT_API int32_t get_ont_port_downrate(const olt_ont_target *ont, olt_uni_downrate *rates);

/// Sets the downstream rate of a UNI port.
///
/// Message type 118 to module 2, time-out 10 s.
/// @param[in] ont   88 bytes, sent unchanged
/// @param[in] rates 12 bytes, sent after ont
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_ont_port_downrate(const olt_ont_target *ont, const olt_uni_downrate *rates);

/// Sets the basic information of a UNI port.
///
/// Message type 132 to module 2, time-out 10 s.
/// @param[in] ont  88 bytes, sent unchanged
/// @param[in] info 44 bytes, sent after ont
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_ont_port_basicinfo(const olt_ont_target *ont, const olt_uni_block *info);

/// Sets the description of a UNI port.
///
/// Message type 84 to module 2, time-out 10 s.
/// @param[in] ont         88 bytes, sent unchanged
/// @param[in] description 44 bytes, sent after ont
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_ont_port_description(const olt_ont_target *ont,
                                         const olt_uni_block *description);

/// Writes the basic information of a UNI port to a file on the box and returns the file's name.
///
/// Message type 133 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_port_basicinfo(const olt_ont_target *ont, char name[32]);

/// Sets the policing of a UNI port.
///
/// Message type 130 to module 2, time-out 10 s.
/// @param[in] ont      88 bytes, sent unchanged
/// @param[in] policing 16 bytes, sent after ont
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_ont_port_policying(const olt_ont_target *ont, const olt_uni_policing *policing);

/// Reads the policing of a UNI port.
///
/// Message type 131 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont      88 bytes, sent unchanged
/// @param[out] policing 16 bytes
/// @return 0, or -1 on any failure.
OLT_API int32_t get_ont_port_policying(const olt_ont_target *ont, olt_uni_policing *policing);

// ONT multicast.

/// Stripping of multicast VLAN tags at a UNI port, 34 bytes. Opaque to the library: front ends and
/// the main module agree on the layout.
typedef struct olt_uni_strip {
  uint8_t bytes[34];
} olt_uni_strip;

/// Reads the maximum number of multicast groups of a UNI port.
///
/// Message type 120 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont   88 bytes, sent unchanged
/// @param[out] value one word, at any address
/// @return 0, or -1 on any failure.
OLT_API int32_t get_ont_port_muticastgrounp(const olt_ont_target *ont, uint32_t *value);

/// Sets the maximum number of multicast groups of a UNI port.
///
/// Message type 121 to module 2, time-out 10 s.
/// @param[in] ont   88 bytes, sent unchanged
/// @param[in] value number of groups; the main module defines the range
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_ont_port_muticastgrounp(const olt_ont_target *ont, uint32_t value);

/// Writes the multicast VLANs of a UNI port to a file on the box and returns the file's name.
///
/// Message type 122 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_port_muticastvlan(const olt_ont_target *ont, char name[32]);

/// Clears the multicast VLANs of a UNI port.
///
/// Message type 123 to module 2, time-out 10 s; the record is the request.
/// @param[in] ont 88 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t clear_ont_port_muticastvlan(const olt_ont_target *ont);

/// Adds multicast VLANs to a UNI port.
///
/// Message type 124 to module 2, time-out 10 s.
/// @param[in] ont   88 bytes, sent unchanged
/// @param[in] n     number of VLAN ids, 0 or more
/// @param[in] vlans n 16-bit VLAN ids, sent after ont
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent and the result is 0.
OLT_API int32_t add_ont_port_muticastvlan(const olt_ont_target *ont, uint32_t n,
                                          const uint16_t *vlans);

/// Deletes multicast VLANs from a UNI port.
///
/// Message type 125 to module 2, time-out 10 s.
/// @param[in] ont   88 bytes, sent unchanged
/// @param[in] n     number of VLAN ids, 0 or more
/// @param[in] vlans n 16-bit VLAN ids, sent after ont
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent and the result is 0.
OLT_API int32_t delete_ont_port_muticastvlan(const olt_ont_target *ont, uint32_t n,
                                             const uint16_t *vlans);

/// Writes the stripping of multicast VLAN tags at a UNI port to a file on the box and returns the
/// file's name.
///
/// Message type 126 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_port_muticaststrip(const olt_ont_target *ont, char name[32]);

/// Sets the stripping of multicast VLAN tags at a UNI port.
///
/// Message type 127 to module 2, time-out 10 s.
/// @param[in] ont   88 bytes, sent unchanged
/// @param[in] strip 34 bytes, sent after ont
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_ont_port_muticastrip(const olt_ont_target *ont, const olt_uni_strip *strip);

/// Writes the multicast groups of an ONT to a file on the box and returns the file's name.
///
/// Message type 148 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_muticast_group(const olt_ont_target *ont, char name[32]);

/// Sets the IGMP fast leave of a UNI port.
///
/// Message type 154 to module 2, time-out 10 s.
/// @param[in] ont   88 bytes, sent unchanged
/// @param[in] value setting; the main module defines the values
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_ont_fastleave(const olt_ont_target *ont, uint32_t value);

// ONT voice.

/// User account of a voice line, 80 bytes. The main module defines what the words mean.
typedef struct olt_voip_user {
  uint32_t words[20];
} olt_voip_user;

/// Fax mode, 2 bytes. Opaque to the library: front ends and the main module agree on the layout.
typedef struct olt_fax_mode {
  uint8_t bytes[2];
} olt_fax_mode;

/// SIP configuration, 45 bytes. Opaque to the library: front ends and the main module agree on the
/// layout.
typedef struct olt_sip_config {
  uint8_t bytes[45];
} olt_sip_config;

/// Writes the voice summary of an ONT to a file on the box and returns the file's name.
///
/// Message type 134 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_voip_info(const olt_ont_target *ont, char name[32]);

/// Reads the voice user account of an ONT.
///
/// Message type 135 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont     88 bytes, sent unchanged
/// @param[out] account 80 bytes, regardless of the reply length
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_voip_useraccount(const olt_ont_target *ont, olt_voip_user *account);

/// Writes the voice lines of an ONT to a file on the box and returns the file's name.
///
/// Message type 137 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_voipline(const olt_ont_target *ont, char name[32]);

/// Sets the status of a voice line.
///
/// Message type 138 to module 2, time-out 10 s.
/// @param[in] ont         88 bytes, sent unchanged
/// @param[in] line_status status; the main module defines the values
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t set_voip_linestatus(const olt_ont_target *ont, uint32_t line_status);

/// Writes the fax mode of an ONT to a file on the box and returns the file's name.
///
/// Message type 139 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_faxmode(const olt_ont_target *ont, char name[32]);

/// Writes the SIP configuration of an ONT to a file on the box and returns the file's name.
///
/// Message type 140 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_sipconfiguration(const olt_ont_target *ont, char name[32]);

/// Sets the fax mode of an ONT.
///
/// Message type 141 to module 2, time-out 10 s.
/// @param[in] ont      88 bytes, sent unchanged
/// @param[in] fax_mode 2 bytes, sent after ont
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent and the result is 0.
OLT_API int32_t set_ont_fax(const olt_ont_target *ont, const olt_fax_mode *fax_mode);

/// Sets the SIP configuration of an ONT.
///
/// Message type 142 to module 2, time-out 10 s.
/// @param[in] ont        88 bytes, sent unchanged
/// @param[in] sip_config 45 bytes, sent after ont
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent and the result is 0.
OLT_API int32_t set_ont_sipconfiguration(const olt_ont_target *ont,
                                         const olt_sip_config *sip_config);

/// Binds the voice service of an ONT to a WAN interface.
///
/// Message type 143 to module 2, time-out 10 s.
/// @param[in] ont            88 bytes, sent unchanged
/// @param[in] interface_name string of at most 31 bytes, sent with its terminating zero
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: interface_name is copied without a length check; a longer one overruns the request. Bytes
/// after its zero are uninitialized.
OLT_API int32_t banding_ont_voipinterface(const olt_ont_target *ont, const char *interface_name);

/// Writes which WAN interface an ONT's voice service is bound to into a file on the box and returns
/// the file's name.
///
/// Message type 144 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_bandinginterface(const olt_ont_target *ont, char name[32]);

/// Sets the voice user account of an ONT.
///
/// Message type 136 to module 2, time-out 10 s.
/// @param[in] ont     88 bytes, sent unchanged
/// @param[in] account 80 bytes, sent after ont
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent and the result is 0.
OLT_API int32_t set_voip_useraccount(const olt_ont_target *ont, const olt_voip_user *account);

// ONT WAN connections.

/// WAN connection of an ONT, 125 bytes. Opaque to the library: front ends and the main module agree
/// on the layout.
typedef struct olt_wan_connection {
  uint8_t bytes[125];
} olt_wan_connection;

/// Creates or changes a WAN connection of an ONT.
///
/// Message type 145 to module 2, time-out 10 s.
/// @param[in] ont            88 bytes, sent unchanged
/// @param[in] wan_connection 125 bytes, sent after ont
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent and the result is 0.
OLT_API int32_t deal_wan_connection(const olt_ont_target *ont,
                                    const olt_wan_connection *wan_connection);

/// Writes the WAN connections of an ONT to a file on the box and returns the file's name.
///
/// Message type 146 to module 2, time-out 10 s; the record is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] name 32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t show_ont_wanconnection(const olt_ont_target *ont, char name[32]);

/// Starts a configuration action on an ONT.
///
/// Message type 147 to module 2, time-out 10 s.
/// @param[in] ont           88 bytes, sent unchanged
/// @param[in] config_action action; the main module defines the values
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t do_ont_configuration(const olt_ont_target *ont, uint32_t config_action);

// IPTV.

/// Channel of an IPTV profile, 56 bytes. Opaque to the library: front ends and the main module
/// agree on the layout.
typedef struct olt_iptv_channel {
  uint8_t bytes[56];
} olt_iptv_channel;

/// Creates an IPTV profile.
///
/// Message type 157 to module 2, time-out 10 s.
/// @param[in] profile string of at most 32 bytes, sent without its terminating zero
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: profile is copied without a length check; a longer one overruns the request. Bytes after
/// it are uninitialized.
OLT_API int32_t create_iptv_profile(const char *profile);

/// Clears an IPTV profile.
///
/// Message type 158 to module 2, time-out 10 s.
/// @param[in] profile string of at most 32 bytes, sent without its terminating zero
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: profile is copied without a length check; a longer one overruns the request. Bytes after
/// it are uninitialized.
OLT_API int32_t clear_iptv_profile(const char *profile);

/// Deletes a channel from an IPTV profile.
///
/// Message type 159 to module 2, time-out 10 s.
/// @param[in] profile string of at most 32 bytes, sent without its terminating zero
/// @param[in] channel 56 bytes, sent unchanged
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: profile is copied without a length check; a longer one overruns the request. Bytes after
/// it are uninitialized.
OLT_API int32_t delete_iptv_channel(const char *profile, const olt_iptv_channel *channel);

/// Adds a channel to an IPTV profile.
///
/// Message type 160 to module 2, time-out 10 s.
/// @param[in] profile string of at most 32 bytes, sent without its terminating zero
/// @param[in] channel 56 bytes, sent unchanged
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: profile is copied without a length check; a longer one overruns the request. Bytes after
/// it are uninitialized.
OLT_API int32_t add_iptv_channel(const char *profile, const olt_iptv_channel *channel);

/// Writes a listing of an IPTV profile to a file on the box and returns the file's name.
///
/// Message type 161 to module 2, time-out 10 s.
/// @param[in]  profile string of at most 32 bytes, padded with zeros to 32 bytes
/// @param[out] name    32 bytes; no terminating zero is added
/// @return 0, or the transport result OR-ed with the status word.
/// Note: profile is copied without a length check; a longer one overruns the request on the stack.
/// One of 32 bytes is sent without a terminating zero.
OLT_API int32_t show_iptv_byprofile(const char *profile, char name[32]);

/// Attaches an IPTV profile to an ONT.
///
/// Message type 155 to module 2, time-out 10 s.
/// @param[in] ont     88 bytes, sent unchanged
/// @param[in] profile string of at most 32 bytes, sent without its terminating zero
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: profile is copied without a length check; a longer one overruns the request. Bytes after
/// it are uninitialized.
OLT_API int32_t set_ont_iptv_profile(const olt_ont_target *ont, const char *profile);

/// Detaches the IPTV profile from an ONT.
///
/// Message type 156 to module 2, time-out 10 s; the record is the request.
/// @param[in] ont 88 bytes, sent unchanged
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t clear_ont_iptv_profile(const olt_ont_target *ont);

/// Adds a channel for a single user. The main module defines what a to d mean.
///
/// Message type 162 to module 2, time-out 10 s.
/// @param[in] user_address 6 bytes, sent unchanged
/// @param[in] c            16-bit value; higher bits are not sent
/// @param[in] a            32-bit value
/// @param[in] b            16-bit value; higher bits are not sent
/// @param[in] d            32-bit value
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: the request holds a, b, c and d in this order, not in argument order. Bytes 6 and 7 of the
/// request are uninitialized.
OLT_API int32_t add_iptv_user_channel(const olt_mac *user_address, uint32_t c, uint32_t a,
                                      uint32_t b, uint32_t d);

/// Deletes a channel of a single user. The main module defines what a to d mean.
///
/// Message type 163 to module 2, time-out 10 s.
/// @param[in] user_address 6 bytes, sent unchanged
/// @param[in] c            16-bit value; higher bits are not sent
/// @param[in] a            32-bit value
/// @param[in] b            16-bit value; higher bits are not sent
/// @param[in] d            32-bit value
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
/// Note: the request holds a, b, c and d in this order, not in argument order. Bytes 6 and 7 of the
/// request are uninitialized.
OLT_API int32_t delete_iptv_user_channel(const olt_mac *user_address, uint32_t c, uint32_t a,
                                         uint32_t b, uint32_t d);

// SNMP tables of ONUs and their services.
//
// Each operation reads one row, which the caller's records select; the library adds neither an
// index nor a choice between this row and the next. Where ont is overwritten, it then identifies
// the row that was read; pass it again to walk the table. The number of bytes copied is fixed,
// regardless of the reply length. Rows are opaque to the library: front ends and the main module
// agree on their layout.

/// Information about an ONU or a link, 148 bytes.
typedef struct olt_onu_info {
  uint32_t words[37];
} olt_onu_info;

/// Information about an IAD (integrated access device), 92 bytes.
typedef struct olt_iad_info {
  uint32_t words[23];
} olt_iad_info;

/// Status of a VoIP line, 32 bytes.
typedef struct olt_voip_line_status {
  uint32_t words[8];
} olt_voip_line_status;

/// VoIP binding of an HGU (home gateway unit), 88 bytes.
typedef struct olt_voip_binding {
  uint32_t words[22];
} olt_voip_binding;

/// Information about a UNI port, 68 bytes.
typedef struct olt_uni_port_info {
  uint32_t words[17];
} olt_uni_port_info;

/// Multicast stripping of a UNI port, 36 bytes.
typedef struct olt_uni_strip_row {
  uint8_t bytes[36];
} olt_uni_strip_row;

/// Multicast VLANs of a UNI port, 129 bytes.
typedef struct olt_uni_muticast_vlans {
  uint8_t bytes[129];
} olt_uni_muticast_vlans;

/// Row of the IPTV profile table, 40 bytes.
typedef struct olt_iptv_profile_row {
  uint32_t words[10];
} olt_iptv_profile_row;

/// Row of the IPTV profile channel table, 56 bytes.
typedef struct olt_iptv_channel_row {
  uint32_t words[14];
} olt_iptv_channel_row;

/// Reads the basic information of an ONU.
///
/// Message type 85 to module 2, time-out 10 s; ont, followed by info, is the request.
/// @param[in]     ont  88 bytes, sent unchanged
/// @param[in,out] info 148 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent, info stays unchanged and the result
/// is 0.
OLT_API int32_t process_snmp_onubasicinfo(const olt_ont_target *ont, olt_onu_info *info);

/// Reads the basic information of a link.
///
/// Message type 86 to module 2, time-out 10 s; ont, followed by info, is the request.
/// @param[in]     ont  88 bytes, sent unchanged
/// @param[in,out] info 148 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the request cannot be allocated, nothing is sent, info stays unchanged and the result
/// is 0.
OLT_API int32_t process_snmp_linkbasicinfo(const olt_ont_target *ont, olt_onu_info *info);

/// Reads the global information of an ONU.
///
/// Message type 87 to module 2, time-out 10 s; ont is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] info a new block: a head of 60 bytes whose last word, at offset 56, counts the bytes
///                  after the head; the caller releases it with ___FREE, tag
///                  "process_snmp_onuglobalinfo"
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the block cannot be allocated, the result is 0 and *info is null. The count is not
/// checked against the reply length.
OLT_API int32_t process_snmp_onuglobalinfo(const olt_ont_target *ont, void **info);

/// Reads information about an IAD.
///
/// Message type 88 to module 2, time-out 10 s; ont is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] info 92 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_iadinfo(const olt_ont_target *ont, olt_iad_info *info);

/// Reads the SIP parameters of an ONU.
///
/// Message type 89 to module 2, time-out 10 s; ont is the request.
/// @param[in,out] ont   88 bytes, sent unchanged, then overwritten with the head of the reply
/// @param[out]    param 45 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_onusipparaminfo(olt_ont_target *ont, olt_sip_config *param);

/// Reads a SIP user of an ONU.
///
/// Message type 90 to module 2, time-out 10 s; ont is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] user 80 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_onusipuserinfo(const olt_ont_target *ont, olt_voip_user *user);

/// Reads the fax mode of an ONU.
///
/// Message type 91 to module 2, time-out 10 s; ont is the request.
/// @param[in,out] ont      88 bytes, sent unchanged, then overwritten with the head of the reply
/// @param[out]    fax_mode 2 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmpvoip_faxmode(olt_ont_target *ont, olt_fax_mode *fax_mode);

/// Reads the status of a VoIP line.
///
/// Message type 92 to module 2, time-out 10 s; ont is the request.
/// @param[in]  ont         88 bytes, sent unchanged
/// @param[out] line_status 32 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_voip_linestatus(const olt_ont_target *ont,
                                        olt_voip_line_status *line_status);

/// Reads the WAN information of an HGU.
///
/// Message type 93 to module 2, time-out 10 s; ont is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] info a new block: a head of 88 bytes whose last word, at offset 84, counts the bytes
///                  after the head; the caller releases it with ___FREE, tag
///                  "process_snmp_hguwaninfo"
/// @return 0, or the transport result OR-ed with the status word.
/// Note: if the block cannot be allocated, the result is 0 and *info is null. The count is not
/// checked against the reply length.
OLT_API int32_t process_snmp_hguwaninfo(const olt_ont_target *ont, void **info);

/// Reads the VoIP binding of an HGU.
///
/// Message type 94 to module 2, time-out 10 s; ont is the request.
/// @param[in]  ont     88 bytes, sent unchanged
/// @param[out] binding 88 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_hguvoipbandinginfo(const olt_ont_target *ont,
                                                olt_voip_binding *binding);

/// Reads information about a UNI port.
///
/// Message type 95 to module 2, time-out 10 s; ont is the request.
/// @param[in]  ont  88 bytes, sent unchanged
/// @param[out] info 68 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_onu_portinfo(const olt_ont_target *ont, olt_uni_port_info *info);

/// Reads the policing of a UNI port.
///
/// Message type 96 to module 2, time-out 10 s; ont is the request.
/// @param[in,out] ont      88 bytes, sent unchanged, then overwritten with the head of the reply
/// @param[out]    policing 16 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_onu_portpolicying(olt_ont_target *ont, olt_uni_policing *policing);

/// Reads the downstream rates of a UNI port.
///
/// Message type 97 to module 2, time-out 10 s; ont is the request.
/// @param[in,out] ont   88 bytes, sent unchanged, then overwritten with the head of the reply
/// @param[out]    rates 12 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_onu_portdownrate(olt_ont_target *ont, olt_uni_downrate *rates);

/// Reads the VLAN mode of a UNI port.
///
/// Message type 98 to module 2, time-out 10 s; ont is the request.
/// @param[in,out] ont  88 bytes, sent unchanged, then overwritten with the head of the reply
/// @param[out]    mode 36 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_onu_portvlanmode(olt_ont_target *ont, olt_uni_vlan_mode *mode);

/// Reads the multicast stripping of a UNI port.
///
/// Message type 99 to module 2, time-out 10 s; ont, followed by the first 34 bytes of strip, is the
/// request.
/// @param[in,out] ont   88 bytes, sent unchanged, then overwritten with the head of the reply
/// @param[in,out] strip 36 bytes: the first 34 are sent, all 36 are overwritten with the reply
/// @return 0; -1 if the request cannot be allocated; otherwise the transport result OR-ed with the
/// status word.
OLT_API int32_t process_onu_portstrip(olt_ont_target *ont, olt_uni_strip_row *strip);

/// Reads the multicast VLANs of a UNI port.
///
/// Message type 100 to module 2, time-out 10 s; ont is the request.
/// @param[in,out] ont   88 bytes, sent unchanged, then overwritten with the head of the reply
/// @param[out]    vlans 129 bytes
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_onu_portmuticastvlan(olt_ont_target *ont, olt_uni_muticast_vlans *vlans);

/// Reads the maximum number of multicast groups of a UNI port, which is returned inside ont.
///
/// Message type 101 to module 2, time-out 10 s; ont is the request.
/// @param[in,out] ont 88 bytes, sent unchanged, then overwritten with the head of the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_onu_portmuticastmaxgroup(olt_ont_target *ont);

/// Reads a row of the IPTV profile table.
///
/// Message type 164 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] row 40 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_iptv_profile(olt_iptv_profile_row *row);

/// Reads a row of the IPTV profile channel table.
///
/// Message type 165 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] row 56 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_iptv_profile_channel(olt_iptv_channel_row *row);

// SNMP tables of the OLT.
//
// As above: the record selects the row and is overwritten with it.

/// Row of the VLAN table, 52 bytes.
typedef struct olt_vlan_id_row {
  uint32_t words[13];
} olt_vlan_id_row;

/// Row of the OLT's basic port table, 48 bytes.
typedef struct olt_basic_port_row {
  uint32_t words[12];
} olt_basic_port_row;

/// Row of the OLT's ONU authentication table, 60 bytes.
typedef struct olt_auth_row {
  uint32_t words[15];
} olt_auth_row;

/// Reads a row of the VLAN table.
///
/// Message type 73 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] row 52 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_vlan_id(olt_vlan_id_row *row);

/// Reads a row of the OLT's basic port table.
///
/// Message type 75 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] row 48 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_oltbasicport(olt_basic_port_row *row);

/// Reads a row of the OLT's ONU authentication table.
///
/// Message type 80 to module 2, time-out 10 s; the record is the request.
/// @param[in,out] row 60 bytes, sent unchanged, then overwritten with the reply
/// @return 0, or the transport result OR-ed with the status word.
OLT_API int32_t process_snmp_oltauth(olt_auth_row *row);

#ifdef __cplusplus
}
#endif

#endif
