#include "box/state/state_file.h"

#include <fmt/core.h>

#include "base/bad_input.h"
#include "box/state/seal.h"

namespace olt::box {

namespace {

template <typename Step>
auto naming(const StateDirectory &state, const std::string &name, Step step) {
  try {
    return step();
  } catch (const BadInput &error) {
    throw StorageFailure(fmt::format("{}: {}; remove the file or start afresh (--fresh)",
                                     state.path_of(name), error.what()));
  }
}

}  // namespace

std::optional<std::string> read_state_file(const StateDirectory &state, const std::string &name) {
  auto file = state.read(name);
  if (!file) return std::nullopt;
  return naming(state, name, [&] { return std::string(unseal(*file)); });
}

void look_into_state(const StateDirectory &state, const std::string &name, std::string_view data,
                     const std::function<void(Archive &)> &describe) {
  naming(state, name, [&] {
    Archive archive(data);
    describe(archive);
  });
}

std::vector<std::string> take_state(const StateDirectory &state, const std::string &name,
                                    std::string_view data, Misfits misfits,
                                    const std::function<void(Archive &)> &describe) {
  return naming(state, name, [&] {
    Archive archive(data);
    if (misfits == Misfits::kLeaveOut) archive.adopt();
    describe(archive);
    archive.finish();
    return archive.left_out();
  });
}

}  // namespace olt::box
