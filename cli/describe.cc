#include "cli/describe.h"

#include <fmt/format.h>

namespace olt::cli {

using catalog::Argument;
using catalog::Direction;
using catalog::Field;
using catalog::FieldKind;
using catalog::Kind;

std::string expected(const Argument &argument) {
  switch (argument.kind) {
    case Kind::kWord:
      return "a number from 0 to 4294967295";
    case Kind::kText:
      return fmt::format("text of at most {} bytes", argument.longest);
    case Kind::kRecord:
      return fmt::format("{} bytes as HEX, @FILE or OFFSET:HEX[,OFFSET:HEX...]", argument.size);
    case Kind::kStream:
      return "bytes as HEX or @FILE";
    case Kind::kName:
    case Kind::kBlock:
      break;
  }
  return "nothing: it is an output";
}

std::string expected(const Field &field) {
  switch (field.kind) {
    case FieldKind::kText:
      return fmt::format("text of at most {} bytes", field.width - 1);
    case FieldKind::kWord:
      return "a number from 0 to 4294967295";
    case FieldKind::kHalfWord:
      return "a number from 0 to 65535";
    case FieldKind::kBytes:
      break;
  }
  return fmt::format("{} bytes as HEX", field.width);
}

std::string input_names(const catalog::Operation &operation) {
  std::string names;
  auto add = [&names](const char *name) {
    names += names.empty() ? "" : ", ";
    names += name;
  };
  for (const Argument &argument : operation.arguments()) {
    if (!argument.is_input()) continue;
    add(argument.name);
    for (const Field &field : argument.fields) add(field.name);
  }
  return names.empty() ? "none" : names;
}

bool may_be_left_out(const Argument &argument) {
  return !argument.is_input() || argument.direction == Direction::kInOut;
}

}  // namespace olt::cli
