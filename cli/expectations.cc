#include "cli/expectations.h"

#include <fmt/format.h>

#include <vector>

namespace olt::cli {

using catalog::Argument;
using catalog::Direction;
using catalog::Field;
using catalog::FieldKind;
using catalog::Form;
using catalog::Kind;

namespace {

constexpr uint32_t kWord = 4;
constexpr uint32_t kTargetBytes = 12;

std::string expected_number(uint32_t most) {
  return fmt::format("a number from 0 to {}", most);
}

/// The short form of a record, with what leads over to the others.
std::string short_form(const Argument &argument) {
  switch (argument.form) {
    case Form::kOnt:
      return argument.size > kTargetBytes ? "an ONT as 1/2/3, its UNI port as 1/2/3:4, or "
                                          : "an ONT as 1/2/3, or ";
    case Form::kMac:
      return "an address as 02:00:00:00:00:01, or ";
    case Form::kWords:
      return fmt::format("up to {} numbers as 10,20, or ", argument.size / kWord);
    case Form::kBytes:
      break;
  }
  return "";
}

std::string expected_vlans(const Argument &argument) {
  uint32_t bytes = described_bytes(argument);
  std::string description =
      bytes == 0 ? "" : fmt::format(", each with a description of at most {} bytes", bytes);
  return fmt::format("VLANs from 1 to 4094 as {}{}, or @FILE with one a line",
                     bytes == 0 ? "10,20-25" : "10:uplink,20-25:users", description);
}

std::string expected_entries(const Argument &argument) {
  std::vector<std::string> words;
  std::vector<std::string> limits;
  for (const Field &field : argument.fields) {
    bool is_mac = field.kind == FieldKind::kMac;
    words.push_back(fmt::format("{}={}", field.name, is_mac ? "02:00:00:00:00:01" : "TEXT"));
    if (is_mac) continue;
    limits.push_back(fmt::format("{} of at most {} bytes", field.name, longest_text(field)));
  }
  return fmt::format(
      "entries as {} ({}) or {} bytes as HEX, separated by ';', or @FILE with one a line",
      fmt::join(words, " "), fmt::join(limits, ", "), argument.size);
}

}  // namespace

std::string expected(const Argument &argument) {
  switch (argument.kind) {
    case Kind::kWord:
      return expected_number(argument.most);
    case Kind::kText:
      return fmt::format("text of at most {} bytes", argument.most);
    case Kind::kRecord:
      return fmt::format("{}{} bytes as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]",
                         short_form(argument), argument.size);
    case Kind::kStream:
      return "bytes as HEX or @FILE";
    case Kind::kVlans:
    case Kind::kIds:
      return expected_vlans(argument);
    case Kind::kEntries:
      return expected_entries(argument);
    case Kind::kBuffer:
      return "@FILE, to write the bytes there";
    case Kind::kName:
    case Kind::kBlock:
    case Kind::kHeadedBlock:
    case Kind::kReplyBlock:
      break;
  }
  return "nothing: it is an output";
}

std::string expected(const Field &field) {
  switch (field.kind) {
    case FieldKind::kText:
    case FieldKind::kPadded:
      return fmt::format("text of at most {} bytes", longest_text(field));
    case FieldKind::kWord:
      return expected_number(UINT32_MAX);
    case FieldKind::kHalfWord:
      return expected_number(UINT16_MAX);
    case FieldKind::kWords:
      return fmt::format("up to {} numbers as 10,20", field.width / kWord);
    case FieldKind::kMac:
      return "an address as 02:00:00:00:00:01";
    case FieldKind::kBytes:
      break;
  }
  return fmt::format("{} bytes as HEX", field.width);
}

uint32_t longest_text(const Field &field) {
  return field.kind == FieldKind::kPadded ? field.width : field.width - 1U;
}

uint32_t described_bytes(const Argument &argument) {
  return argument.kind != Kind::kVlans || argument.most == UINT32_MAX ? 0 : argument.most;
}

bool takes_value(const Argument &argument) {
  return argument.is_input() || argument.kind == Kind::kBuffer;
}

std::string input_names(const catalog::Operation &operation) {
  std::string names;
  auto add = [&names](const char *name) {
    names += names.empty() ? "" : ", ";
    names += name;
  };
  for (const Argument &argument : operation.arguments()) {
    if (!takes_value(argument)) continue;
    add(argument.name);
    for (const Field &field : argument.own_fields()) add(field.name);
  }
  return names.empty() ? "none" : names;
}

bool may_be_left_out(const Argument &argument) {
  return !argument.is_input() || argument.direction == Direction::kInOut || argument.optional;
}

}  // namespace olt::cli
