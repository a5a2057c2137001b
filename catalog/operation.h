/// What is known of one exported operation: its name, where it sends, and what each argument is.
#ifndef OLT_CATALOG_OPERATION_H
#define OLT_CATALOG_OPERATION_H

#include <array>
#include <cstdint>
#include <span>

namespace olt::catalog {

enum class FieldKind : uint8_t {
  kText,    ///< ends with a zero
  kPadded,  ///< text that may fill the field, with zeros behind it
  kWord,
  kHalfWord,
  kWords,
  kMac,
  kBytes,
};

/// A named field of a record.
struct Field {
  /// The width of all that is behind the head of a block.
  static constexpr uint16_t kToTheEnd = 0;

  const char *name;
  uint16_t offset;
  uint16_t width;
  FieldKind kind;
  bool secret = false;
};

enum class Kind : uint8_t {
  kText,         ///< zero-terminated text
  kWord,         ///< 32 bits, by value in, by pointer out
  kName,         ///< 32-byte name of a listing's file
  kRecord,       ///< bytes of a fixed size, with named fields or opaque
  kStream,       ///< bytes of any length: two parameters, pointer and length
  kBlock,        ///< a block that the caller releases: two parameters, address and length
  kHeadedBlock,  ///< a block with a head, whose last word counts the bytes behind it
  kReplyBlock,   ///< a block as long as the reply that it is a copy of
  kBuffer,       ///< room for as many bytes as the word behind it says
  kVlans,        ///< a list of VLANs
  kIds,          ///< VLAN ids of 16 bits: two parameters, count and pointer
  kEntries,      ///< records one behind the other: two parameters, count and pointer
};

/// How a record may be written beside its bytes.
enum class Form : uint8_t {
  kBytes,
  kWords,  ///< 10,20,30
  kMac,    ///< 02:00:00:00:00:01
  kOnt,    ///< 1/2/3, and 1/2/3:4 with a UNI port when the record has room for it
};

enum class Direction : uint8_t { kIn, kOut, kInOut };

/// One argument as a user sees it: one parameter of the function, or two where its kind says so.
struct Argument {
  const char *name;
  Kind kind;
  Direction direction;
  uint32_t size;  ///< bytes of a word, name, record, entry, text that is filled or a block's head
  std::span<const Field> fields;  ///< of a record or entry; empty when it is opaque
  Form form;                      ///< of a record
  uint32_t most;  ///< value of a word; bytes of a text, of a VLAN's description or of a buffer
  bool secret;
  bool optional;  ///< zero when left out

  /// Fields that can be given as FIELD=VALUE.
  constexpr std::span<const Field> own_fields() const {
    return kind == Kind::kRecord ? fields : std::span<const Field>{};
  }

  constexpr bool is_input() const { return direction != Direction::kOut; }
  constexpr bool is_output() const { return direction != Direction::kIn; }
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
};

/// What results mean. 0 is success everywhere; the others are the transport's and the module's
/// unless they are named here.
struct Outcome {
  const char *minus_one = "the request could not be built";
  const char *minus_two = nullptr;
  const char *count = nullptr;  ///< results above 0 are success, too, and count this
};

struct Operation {
  static constexpr size_t kMostArguments = 6;

  const char *name;
  Address address;
  const char *summary;
  /// Calls the function. A slot per parameter: the address of a value, else the pointer itself.
  int32_t (*call)(void *const *slots);
  size_t argument_count = 0;
  std::array<Argument, kMostArguments> argument_room{};
  Outcome outcome{};

  constexpr std::span<const Argument> arguments() const {
    return {argument_room.data(), argument_count};
  }
  constexpr bool succeeded(int32_t result) const {
    return result == 0 || (outcome.count != nullptr && result > 0);
  }
};

}  // namespace olt::catalog

#endif
