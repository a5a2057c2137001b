// Copies of listings under every failure of a call: whole, or not there.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/descriptor.h"
#include "capture/trace/files.h"
#include "tests/faults/fault_sweep.h"
#include "tests/support/folder.h"

namespace olt::test {

namespace {

using faults::FaultInjector;
using faults::Plan;

TEST(Faults, OfACopiedListing) {
  auto scenario = [](const Plan &plan) {
    Folder folder;
    Descriptor from(open(folder.write("listing", "VLANs of olt").c_str(), O_RDONLY | O_CLOEXEC));
    std::string path = folder / "copy";
    FaultInjector injector(plan);
    bool is_copied = copy_file(from.get(), path.c_str(), 100);
    injector.disable();
    if (is_copied) {
      EXPECT_EQ("VLANs of olt", read_file(path));
    } else {
      EXPECT_FALSE(std::filesystem::exists(path));
    }
    bool matters = plan.call != "getrlimit" && plan.call != "munmap" && plan.call != "close";
    EXPECT_EQ(is_copied, !injector.reached() || !matters);
    return injector.reached();
  };
  faults::run({.scenario = scenario,
               .allocations = false,
               .calls = {"close", "fstat", "getrlimit", "mmap", "munmap", "open", "write"}});
}

}  // namespace

}  // namespace olt::test
