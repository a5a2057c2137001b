#include "box/state/state_file.h"

#include "base/bad_input.h"

namespace olt::box {

namespace {

std::string format_of(const std::string &name) {
  return "oltbox " + name;
}

}  // namespace

bool read_state_file(const StateDirectory &state, const std::string &name,
                     const std::function<void(ObjectReader &)> &take) {
  auto text = state.read(name);
  if (!text) return false;
  try {
    Json value = parse_json(*text);
    ObjectReader reader(value, "");
    const Json &format = reader.get("format");
    if (format != format_of(name)) refuse("/format", format, '"' + format_of(name) + '"');
    reader.number("version", {1, 1});
    take(reader);
    reader.finish();
    return true;
  } catch (const BadInput &error) {
    throw StorageFailure(state.path_of(name) + ": " + error.what() +
                         "; remove the file or start afresh (--fresh)");
  }
}

void write_state_file(StateDirectory &state, const std::string &name, const Json &members) {
  Json value = {{"format", format_of(name)}, {"version", 1}};
  value.update(members);
  state.write(name, value.dump(1) + '\n');
}

}  // namespace olt::box
