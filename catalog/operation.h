/// What is known of one exported operation: its name, where it sends, and what each argument is.
#ifndef OLT_CATALOG_OPERATION_H
#define OLT_CATALOG_OPERATION_H

#include <array>
#include <cstdint>
#include <span>

namespace olt::catalog {

enum class FieldKind : uint8_t { kText, kWord, kHalfWord, kBytes };

/// A named field of a record.
struct Field {
  const char *name;
  uint16_t offset;
  uint16_t width;
  FieldKind kind;
  bool secret = false;
};

enum class Kind : uint8_t {
  kText,    ///< zero-terminated text
  kWord,    ///< 32 bits, by value in, by pointer out
  kName,    ///< 32-byte name of a listing's file
  kRecord,  ///< bytes of a fixed size, with named fields or opaque
  kStream,  ///< bytes of any length: two parameters, pointer and length
  kBlock,   ///< a block that the caller releases: two parameters, address and length
};

enum class Direction : uint8_t { kIn, kOut, kInOut };

/// One argument as a user sees it. Most are one parameter of the function; kStream and kBlock are
/// two.
struct Argument {
  const char *name;
  Kind kind;
  Direction direction;
  uint32_t size;                  ///< bytes of a word, name or record; 0 for the other kinds
  std::span<const Field> fields;  ///< of a record; empty when it is opaque
  uint32_t longest;               ///< bytes of a text at most
  bool secret;

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

  uint16_t message_type;
  uint8_t module;
  uint8_t second_module;  ///< asked when the first one accepted
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

  constexpr std::span<const Argument> arguments() const {
    return {argument_room.data(), argument_count};
  }
};

}  // namespace olt::catalog

#endif
