#include "box/state/json_form.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <vector>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/state/archive.h"
#include "box/state/cbor.h"

namespace olt::box {

using Json = nlohmann::json;
using Kind = CborReader::Kind;

namespace {

constexpr size_t kMaxDepth = 32;
/// What a large configuration takes as indented text, compared with its archive.
constexpr size_t kMostTimes = 2;

class JsonWriter {
 public:
  JsonWriter(std::string_view archive, Secrets secrets, bool indented)
      : reader_(archive), secrets_(secrets), indented_(indented) {
    // Growing would take the memory of two texts. Room that stays empty takes none.
    text_.reserve(kMostTimes * archive.size());
  }

  std::string write() {
    value(reader_.next());
    if (!reader_.at_end()) throw BadInput("data follows its end");
    return std::move(text_);
  }

 private:
  void value(const CborReader::Value &value) {
    if (value.is_secret && secrets_ == Secrets::kMasked) {
      quote(kMask);
      return;
    }
    switch (value.kind) {
      case Kind::kNumber:
        text_ += fmt::to_string(value.number);
        break;
      case Kind::kFlag:
        text_ += value.number != 0 ? "true" : "false";
        break;
      case Kind::kText:
        quote(value.data);
        break;
      case Kind::kBytes:
        text_ += '"' + to_hex(as_bytes(value.data)) + '"';
        break;
      case Kind::kList:
        elements('[', ']', [this](const CborReader::Value &element) { this->value(element); });
        break;
      case Kind::kMap:
        elements('{', '}', [this](const CborReader::Value &key) {
          quote(key.data);
          text_ += indented_ ? ": " : ":";
          this->value(reader_.next());
        });
        break;
      case Kind::kEnd:
        throw BadInput("is not encoded as state is");
    }
  }

  template <typename Element>
  void elements(char open, char close, Element element) {
    text_ += open;
    if (++depth_ > kMaxDepth) throw BadInput("nests deeper than state does");
    bool first = true;
    for (;; first = false) {
      CborReader::Value next = reader_.next();
      if (next.kind == Kind::kEnd) break;
      if (!first) text_ += ',';
      break_line();
      element(next);
    }
    --depth_;
    if (!first) break_line();
    text_ += close;
  }

  void break_line() {
    if (!indented_) return;
    text_ += '\n';
    text_.append(depth_, ' ');
  }

  /// DEL and the C1 control characters, which command terminals, are escaped, too.
  void quote(std::string_view characters) {
    std::string quoted = Json(characters).dump(-1, ' ', false, Json::error_handler_t::replace);
    for (size_t at = 0; at < quoted.size(); ++at) {
      bool is_two_bytes = quoted[at] == '\xC2' && static_cast<uint8_t>(quoted[at + 1]) < 0xA0;
      if (is_two_bytes) ++at;
      if (is_two_bytes || quoted[at] == '\x7F') {
        text_ += fmt::format("\\u{:04x}", static_cast<uint8_t>(quoted[at]));
      } else {
        text_ += quoted[at];
      }
    }
  }

  CborReader reader_;
  Secrets secrets_;
  bool indented_;
  std::string text_;
  size_t depth_ = 0;
};

/// Takes the parser's events.
class JsonReader : public nlohmann::json_sax<Json> {
 public:
  explicit JsonReader(std::string_view text) : text_(text) {}

  std::string take() { return out_.take(); }

  bool null() override {
    return refuse("null", "a number, a text, true, false, or what holds them");
  }
  bool boolean(bool value) override {
    out_.flag(value);
    return true;
  }
  bool number_integer(number_integer_t value) override {
    return refuse(fmt::to_string(value), "a number from 0");
  }
  bool number_unsigned(number_unsigned_t value) override {
    out_.number(value);
    return true;
  }
  bool number_float(number_float_t /*value*/, const string_t &text) override {
    return refuse(text, "an integer");
  }
  bool string(string_t &value) override {
    out_.text(value);
    return true;
  }
  bool binary(binary_t & /*value*/) override { return false; }
  bool start_object(size_t /*elements*/) override {
    out_.begin_map();
    objects_.emplace_back();
    return true;
  }
  bool key(string_t &value) override {
    out_.text(value);
    Object &object = objects_.back();
    object.current = value;
    if (!object.keys.insert(value).second) {
      throw BadInput(place() + ": is given twice; expected once");
    }
    return true;
  }
  bool end_object() override {
    objects_.pop_back();
    return end_array();
  }
  bool start_array(size_t /*elements*/) override {
    out_.begin_list();
    return true;
  }
  bool end_array() override {
    out_.end();
    return true;
  }
  bool parse_error(size_t position, const std::string & /*token*/,
                   const Json::exception &error) override {
    std::string_view before =
        text_.substr(0, std::min(std::max<size_t>(position, 1) - 1, text_.size()));
    auto line = 1 + std::count(before.begin(), before.end(), '\n');
    size_t column = before.size() - (before.rfind('\n') + 1) + 1;
    constexpr int kOverflow = 406;
    if (error.id == kOverflow) {
      throw BadInput(fmt::format("{}: is too large a number; expected a smaller one", place()));
    }
    throw BadInput(fmt::format("{}:{}: is not JSON; expected {}", line, column, expected(error)));
  }

 private:
  struct Object {
    std::set<std::string> keys;
    std::string current;
  };

  bool refuse(std::string_view given, std::string_view wanted) {
    bool is_secret = std::any_of(objects_.begin(), objects_.end(), [](const Object &object) {
      return is_secret_member(object.current);
    });
    throw BadInput(fmt::format("{}: is {}; expected {}", place(),
                               is_secret ? "not as it should be" : given, wanted));
  }

  std::string place() const {
    std::string text;
    for (const Object &object : objects_) text += '/' + pointer_part(object.current);
    return text.empty() ? "/" : text;
  }

  /// What the parser's message says that it waited for; the message as a whole may show a secret.
  static std::string expected(const Json::exception &error) {
    std::string_view message = error.what();
    size_t at = message.rfind("; expected ");
    if (at == std::string_view::npos) return "a value that JSON allows";
    return printable_ascii(message.substr(at + 11));
  }

  std::string_view text_;
  CborWriter out_;
  std::vector<Object> objects_;
};

}  // namespace

std::string to_json_text(std::string_view archive, Secrets secrets) {
  return JsonWriter(archive, secrets, true).write() + '\n';
}

std::string to_json_line(std::string_view archive) {
  return JsonWriter(archive, Secrets::kShown, false).write();
}

std::string from_json_text(std::string_view text) {
  JsonReader reader(text);
  Json::sax_parse(text.begin(), text.end(), &reader);
  return reader.take();
}

}  // namespace olt::box
