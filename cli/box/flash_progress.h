/// Progress of long transfers from and to the flash.
#ifndef OLT_CLI_BOX_FLASH_PROGRESS_H
#define OLT_CLI_BOX_FLASH_PROGRESS_H

#include <cstddef>
#include <optional>
#include <string>

#include "cli/text/progress.h"
#include "flash_device/flash_device.h"

namespace olt::cli {

/// While it exists, reads, erases and writes of more than 64 KiB show how far they are, where
/// standard error is a terminal.
class FlashProgress {
 public:
  explicit FlashProgress(std::string operation);
  FlashProgress(const FlashProgress &) = delete;
  FlashProgress &operator=(const FlashProgress &) = delete;
  ~FlashProgress();

 private:
  void show(flash_device::Activity activity, size_t done, size_t total);

  std::string operation_;
  flash_device::Activity activity_{};
  std::optional<Progress> progress_;  ///< of the activity
};

}  // namespace olt::cli

#endif
