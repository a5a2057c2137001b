#include "cli/update/display.h"

#include <utility>

#include "cli/text/file.h"
#include "cli/text/progress.h"

namespace olt::cli {

using nlohmann::ordered_json;

namespace {

/// Progress on standard error, how it ended on standard output.
class TextDisplay final : public UpdateDisplay {
 public:
  TextDisplay(const std::string &target, uint32_t total)
      : title_("update " + target), total_(total), pace_(total) {
    progress_.emplace(title_, total);
  }

  void sent(uint32_t bytes) override { progress_->show(bytes); }
  void writing(const NamedValue &progress) override {
    progress_->show(fmt::format("the image is sent, the box is at {}", progress.text()));
  }
  void complete() override {
    progress_.reset();
    print(fmt::format("{}: complete, {} in {:.1f} s\n", title_, counted(total_, "byte"),
                      static_cast<double>(pace_.elapsed().count()) / 1000));
  }
  void failed(const Error & /*error*/, uint32_t /*sent*/) override { progress_.reset(); }

 private:
  std::string title_;
  uint32_t total_;
  Pace pace_;
  std::optional<Progress> progress_;
};

/// An object for each hundredth that is sent, for each change after that, and for the end.
class JsonDisplay final : public UpdateDisplay {
 public:
  JsonDisplay(std::string target, uint32_t total)
      : target_(std::move(target)), total_(total), pace_(total) {}

  void sent(uint32_t bytes) override {
    uint64_t percent = uint64_t{bytes} * 100 / total_;
    if (std::exchange(percent_, percent) == percent) return;
    write("sending", bytes,
          {{"bytes_per_second", pace_.bytes_per_second(bytes)},
           {"seconds_left", pace_.left(bytes).count()}});
  }
  void writing(const NamedValue &progress) override {
    write("writing", total_, {{"progress", progress.json()}});
  }
  void complete() override { end("complete", total_, nullptr); }
  void failed(const Error &error, uint32_t sent) override {
    bool was_interrupted = dynamic_cast<const Interrupted *>(&error) != nullptr;
    end(was_interrupted ? "interrupted" : "failed", sent, error.what());
  }

 private:
  void end(const char *state, uint32_t sent, const ordered_json &error) const {
    write(state, sent, {{"milliseconds", pace_.elapsed().count()}, {"error", error}});
  }

  void write(const char *state, uint32_t sent, const ordered_json &more) const {
    ordered_json object = {{"version", kJsonVersion}, {"command", "update"}, {"target", target_},
                           {"state", state},          {"sent", sent},        {"total", total_}};
    object.update(more);
    print(json_line(object));
  }

  std::string target_;
  uint32_t total_;
  Pace pace_;
  uint64_t percent_ = 0;
};

}  // namespace

std::unique_ptr<UpdateDisplay> make_update_display(Format format, const std::string &target,
                                                   uint32_t total) {
  if (format == Format::kJson) return std::make_unique<JsonDisplay>(target, total);
  return std::make_unique<TextDisplay>(target, total);
}

}  // namespace olt::cli
