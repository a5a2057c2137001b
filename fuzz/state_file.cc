// What the box finds when it starts: a saved configuration and a running state, damaged in their
// text or in single values. It starts from them and writes the same again, or reports the damage in
// one line and leaves them unchanged.
#include "box/state/state_file.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

#include "base/bad_input.h"
#include "box/state/json_form.h"
#include "box/state/seal.h"
#include "fuzz/small_box.h"
#include "fuzz/target.h"
#include "tests/support/wire_names.h"

namespace {

using olt::box::from_json_text;
using olt::box::seal;
using olt::box::to_json_text;
using olt::box::unseal;
using olt::fuzz::Input;
using olt::fuzz::Json;
using olt::fuzz::message_rows;
using olt::fuzz::MessageRow;
using olt::fuzz::require;
using olt::fuzz::SmallBox;
using olt::test::kReboot;
using olt::test::kRestoreDefaults;

constexpr size_t kMaxEdits = 16;

/// The two files of a box in which many things are set: each request that may set something is
/// made with a few bytes everywhere, and with small words.
struct Samples {
  std::string saved;
  std::string kept;
};

void set_things(SmallBox &box) {
  constexpr size_t kLongest = 1024;
  for (const MessageRow &row : message_rows()) {
    // These two would undo what the others set.
    if (row.type == kReboot || row.type == kRestoreDefaults) continue;
    for (uint8_t word : std::initializer_list<uint8_t>{1, 2, 65}) {
      std::vector<uint8_t> request(std::clamp(row.request.min, size_t{0}, kLongest));
      for (size_t at = 0; at < request.size(); at += word == 65 ? 1 : 4) request[at] = word;
      box.ask(row.module, row.type, request);
    }
  }
}

const Samples &samples() {
  static const Samples instance = [] {
    SmallBox box;
    set_things(box);
    box.require_persistence();
    box.restart();
    return Samples{SmallBox::read_state(olt::box::kSavedFile),
                   SmallBox::read_state(olt::box::kRunningFile)};
  }();
  return instance;
}

/// Every value in a document, parents before their members.
void collect(Json &value, std::vector<Json *> &values) {
  values.push_back(&value);
  if (!value.is_structured()) return;
  for (Json &member : value) collect(member, values);
}

Json odd_value(uint8_t which) {
  static const std::array<Json, 16> kValues = {
      nullptr, false,      true,       0,  1,       -1,         255,           65'536,
      0.5,     4294967296, UINT64_MAX, "", "1,3-2", "\u00ff\n", Json::array(), Json::object()};
  return kValues[which % kValues.size()];
}

void edit(Json &document, Input &input) {
  std::vector<Json *> values;
  collect(document, values);
  Json &value = *values[input.u16() % values.size()];
  uint8_t what = input.u8();
  uint8_t which = input.u8();
  switch (what % 6) {
    case 0:
      value = odd_value(which);
      break;
    case 1:
      value = std::string(which * 8, static_cast<char>(0x20 + which % 0x5F));
      break;
    case 2:
      value = which;
      break;
    case 3:
      value = *values[input.u16() % values.size()];
      break;
    case 4:
      if (value.is_structured() && !value.empty()) {
        value.erase(std::next(value.begin(), static_cast<int>(which % value.size())));
      }
      break;
    default:
      if (value.is_array() && !value.empty()) value.push_back(value[which % value.size()]);
      break;
  }
}

std::string edited(const std::string &sample, Input &input) {
  Json document = Json::parse(to_json_text(unseal(sample), olt::box::Secrets::kShown));
  for (size_t i = 0; i < kMaxEdits && !input.empty(); ++i) edit(document, input);
  std::string text = document.dump(1, ' ', false, Json::error_handler_t::replace);
  try {
    return seal(from_json_text(text));
  } catch (const olt::BadInput &error) {
    olt::fuzz::require_line(error.what());
    return sample;
  }
}

void start_from(const char *name, const std::string &content) {
  SmallBox::write_state(olt::box::kSavedFile, samples().saved);
  SmallBox::write_state(olt::box::kRunningFile, samples().kept);
  SmallBox::write_state(name, content);
  auto require_refusal = [&](std::string_view line, std::string_view expected) {
    olt::fuzz::require_line(line);
    require(line.find(expected) != std::string_view::npos, "a refusal says what it is about", line);
    require(SmallBox::read_state(name) == content, "a file that is refused stays as it is");
  };
  try {
    SmallBox box(SmallBox::Start::kGoOn);
    box.require_persistence();
  } catch (const olt::box::StorageFailure &failure) {
    require_refusal(failure.what(), name);
  } catch (const olt::BadInput &refusal) {
    require_refusal(refusal.what(), "was made with another topology");
  }
}

}  // namespace

// The first byte says which file, and whether the rest is its bytes, what a sound seal encloses, or
// edits of one that the box wrote itself: which value, what is done to it, and with what.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input input(data, size);
  uint8_t head = input.u8();
  bool is_saved = (head & 1) != 0;
  const std::string &sample = is_saved ? samples().saved : samples().kept;
  std::string content = (head & 2) != 0   ? edited(sample, input)
                        : (head & 4) != 0 ? seal(input.text())
                                          : std::string(input.text());
  start_from(is_saved ? olt::box::kSavedFile : olt::box::kRunningFile, content);
  return 0;
}
