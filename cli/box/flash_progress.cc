#include "cli/box/flash_progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

namespace olt::cli {

using flash_device::Activity;

FlashProgress::FlashProgress(std::string operation) : operation_(std::move(operation)) {
  if (isatty(STDERR_FILENO) == 0) return;
  flash_device::watch(
      [](void *progress, Activity activity, size_t done, size_t total) {
        static_cast<FlashProgress *>(progress)->show(activity, done, total);
      },
      this);
}

FlashProgress::~FlashProgress() {
  flash_device::watch(nullptr, nullptr);
}

void FlashProgress::show(Activity activity, size_t done, size_t total) {
  static constexpr const char *kTexts[] = {"reading", "erasing", "writing"};
  if (!progress_ || activity != activity_) {
    activity_ = activity;
    progress_.reset();
    progress_.emplace(fmt::format("{}: {}", operation_, kTexts[static_cast<size_t>(activity)]),
                      total);
  }
  progress_->show(done);
}

}  // namespace olt::cli
