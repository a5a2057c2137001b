/// What is known of one exported operation: its name, where it sends, and what each argument is.
#ifndef OLT_CATALOG_OPERATION_H
#define OLT_CATALOG_OPERATION_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "catalog/wire_map.h"

namespace olt::catalog {

/// What a field holds; each kind has one text form.
enum class FieldKind : uint8_t {
  kText,      ///< ends with a zero
  kPadded,    ///< text that may fill the field, with zeros after it
  kListing,   ///< the name of a listing's file, padded
  kNumber,    ///< without a sign, of 1, 2 or 4 bytes
  kVlan,      ///< a number that is a VLAN id
  kSigned,    ///< a number with a sign
  kFlags,     ///< a number whose bits have names
  kDuration,  ///< seconds
  kPorts,     ///< a bit for each port; the lowest is port 1
  kNumbers,   ///< words
  kVlans,     ///< VLAN ids of 16 bits; 0 is none
  kMac,
  kIpv4,       ///< the first byte first
  kInterface,  ///< slot and port, two words
  kOnt,        ///< slot, interface and ONU, three words; if there is room, a kind and a UNI port
  kVersion,    ///< a number in each byte
  kRecords,    ///< records one after the other
  kBytes,
};

/// What a field is there for.
enum class Role : uint8_t {
  kPlain,
  kReserved,  ///< has no meaning
  kSelector,  ///< says which row is wanted or what to do, not what the record holds
  kRowName,   ///< names what the record is about
};

/// The name of a number, or of a bit.
struct ValueName {
  uint32_t value;
  const char *name;
};

/// A named field of a record, or an argument as a whole.
struct Field {
  /// The width of everything after the head of a block.
  static constexpr uint32_t kToTheEnd = 0;

  const char *name;
  uint32_t offset;
  uint32_t width;
  FieldKind kind;
  Role role = Role::kPlain;
  bool secret = false;
  bool required = false;                ///< empty, it is not known
  bool brief = false;                   ///< of kRecords: only fields that have content are shown
  uint8_t decimals = 0;                 ///< digits of a number after the point
  uint32_t max = UINT32_MAX;            ///< the largest number that is taken
  uint32_t record_size = 0;             ///< bytes of each of kRecords
  std::span<const ValueName> values{};  ///< of numbers and flags that have names
  const char *unit = nullptr;           ///< of a number: "kbit/s"
  std::span<const Field> record{};      ///< the fields of each of kRecords

  /// Whether it is a secret, or a record or list in which one is.
  constexpr bool holds_secret() const {
    return secret || std::any_of(record.begin(), record.end(),
                                 [](const Field &inner) { return inner.holds_secret(); });
  }

  /// Whether it says what the record holds or is about.
  constexpr bool has_content() const { return role != Role::kReserved && role != Role::kSelector; }

  /// Bytes that a text in the field may have.
  constexpr uint32_t longest_text() const { return kind == FieldKind::kText ? width - 1 : width; }
};

/// How an argument is passed.
enum class Kind : uint8_t {
  kValue,        ///< one word, text or record
  kStream,       ///< bytes of any length: two parameters, pointer and length
  kBlock,        ///< a block that the caller releases: two parameters, address and length
  kHeadedBlock,  ///< a block with a head, whose last word counts the bytes after it
  kReplyBlock,   ///< a block as long as the reply that it is a copy of
  kBuffer,       ///< room for as many bytes as the next argument says
  kVlans,        ///< a list of VLANs
  kIds,          ///< VLAN ids of 16 bits: two parameters, count and pointer
  kEntries,      ///< an array of records: two parameters, count and pointer
};

enum class Direction : uint8_t { kIn, kOut, kInOut };

/// One argument as a user sees it: one parameter of the function, or two where its kind says so.
struct Argument {
  const char *name;
  Kind kind;
  Direction direction;
  uint32_t size;   ///< bytes of a value, item or block's head; 0 for a text that is taken
  FieldKind form;  ///< of a value as a whole
  std::span<const Field> fields;  ///< of a record, item or block; empty when it is opaque
  uint32_t max;  ///< value of a word; bytes of a text, of a VLAN's description or of a buffer
  bool secret;
  bool optional;                          ///< zero when left out
  std::span<const ValueName> values{};    ///< of a number that has names
  const char *unit = nullptr;             ///< of a number
  std::string_view record_name{};         ///< of a record, item or block; empty when it is none
  std::string_view record_type{};         ///< the C type of a record or item; empty when it is none
  std::span<const Field> named_fields{};  ///< those that the public header names
  uint8_t decimals = 0;                   ///< digits of a number after the point
  const char *example = nullptr;          ///< null: that of its form

  /// Fields that can be given as FIELD=VALUE.
  constexpr std::span<const Field> own_fields() const {
    return kind == Kind::kValue ? fields : std::span<const Field>{};
  }

  /// The argument as one field.
  constexpr Field whole() const {
    bool is_input_text = form == FieldKind::kText && size == 0;
    return {.name = name,
            .offset = 0,
            .width = is_input_text ? max + 1 : size,
            .kind = form,
            .secret = secret,
            .decimals = decimals,
            .max = max,
            .values = values,
            .unit = unit};
  }

  /// A record that is sent as it is, and is neither an address nor a text.
  constexpr bool is_sent_record() const {
    return kind == Kind::kValue && is_input() && !record_type.empty() && form != FieldKind::kOnt &&
           form != FieldKind::kMac && form != FieldKind::kPadded;
  }

  constexpr bool is_word() const {
    return kind == Kind::kValue && size == sizeof(uint32_t) && record_type.empty();
  }

  constexpr bool is_list() const {
    return kind == Kind::kVlans || kind == Kind::kIds || kind == Kind::kEntries;
  }
  constexpr bool is_input() const { return direction != Direction::kOut; }
  constexpr bool is_output() const { return direction != Direction::kIn; }

  /// Whether NAME=VALUE may be given: for inputs, and for buffers, whose bytes can go to a file.
  constexpr bool takes_value() const { return is_input() || kind == Kind::kBuffer; }

  /// Whether the call can be made without a value.
  constexpr bool may_be_left_out() const { return direction != Direction::kIn || optional; }

  /// Bytes that the description of a VLAN may have; 0 where none is taken.
  constexpr uint32_t described_bytes() const {
    return kind == Kind::kVlans && max != UINT32_MAX ? max : 0;
  }
};

/// Where an operation sends.
struct Address {
  static constexpr uint8_t kMain = 2;
  static constexpr uint8_t kNamedByCaller = 0;
  static constexpr uint8_t kNone = 0;

  constexpr Address(uint16_t type, uint8_t to = kMain, uint8_t then = kNone)
      : message_type(type), module(to), second_module(then) {}

  /// Of an operation that sends nothing.
  static constexpr Address nowhere() { return {0, kNone}; }
  constexpr bool sends() const { return message_type != 0; }

  uint16_t message_type;
  uint8_t module;
  uint8_t second_module;  ///< asked when the first one accepted
  uint8_t timeout = 10;   ///< seconds that each of them has to answer
};

constexpr Address within(uint8_t seconds, Address address) {
  address.timeout = seconds;
  return address;
}

/// What results mean. 0 is always success; other results are the transport's and the module's
/// unless they are named here.
struct Outcome {
  const char *minus_one = nullptr;
  const char *minus_two = nullptr;
  const char *count = nullptr;  ///< results above 0 are success, too, and count this
};

/// Where the present values are of what an operation sets.
struct Present {
  const char *getter = nullptr;  ///< the operation that reads them; null: none does
  const char *what = nullptr;    ///< the argument that is set, or the field of one
  bool steps = false;  ///< each call of the getter reads the row after the one it is given
};

/// A text that an operation reports when it could read nothing.
struct Fallback {
  const char *text = nullptr;
  const char *probe = nullptr;  ///< the command that fails, too, in that case
};

struct Operation {
  static constexpr size_t kMaxArguments = 6;

  const char *name;
  const char *summary;
  /// Calls the function. A slot per parameter: the address of a value, else the pointer itself.
  int32_t (*call)(void *const *slots);
  size_t argument_count = 0;
  std::array<Argument, kMaxArguments> argument_room{};
  Outcome outcome{};
  Present present{};
  Fallback fallback{};
  Message request{};
  Message reply{};
  const char *example = nullptr;        ///< its arguments; null: one of each argument's own
  const char *example_after = nullptr;  ///< commands that the example needs, a line each
  Address address;
  bool takes_all = false;    ///< all fields of its records must be given
  bool destructive = false;  ///< ends or removes what cannot be brought back by another operation
  bool keeps_reply = false;  ///< never releases its reply, so it must not be called without end

  constexpr std::span<const Argument> arguments() const {
    return {argument_room.data(), argument_count};
  }
  constexpr bool sets_present() const { return present.getter != nullptr; }
  /// Whether a call returns more than its result.
  constexpr bool reports() const {
    std::span<const Argument> all = arguments();
    return std::any_of(all.begin(), all.end(),
                       [](const Argument &argument) { return argument.is_output(); });
  }
  /// Whether a call changes what the modules keep or do, whatever its arguments.
  constexpr bool always_changes() const {
    return !reports() || sets_present() || takes_all || destructive;
  }
  constexpr bool succeeded(int32_t result) const {
    return result == 0 || (outcome.count != nullptr && result > 0);
  }
};

}  // namespace olt::catalog

#endif
