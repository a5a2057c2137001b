/// Exchanges with a module that the host platform serves: made by the platform alone, and by the
/// library on top of it.
#ifndef OLT_BENCH_MODULE_H
#define OLT_BENCH_MODULE_H

#include "bench/contender.h"
#include "oltplatform.h"

namespace olt::bench {

/// A module in the folder that answers everything with 256 bytes; this process finds it.
class Module {
 public:
  explicit Module(const Folder &folder);

 private:
  Child server_;
};

class PlatformCall : public Contender {
 public:
  using Function = decltype(&platmsg_syn_result);

  explicit PlatformCall(Function function = platmsg_syn_result) : function_(function) {}

  std::string name() const override { return "platmsg_syn_result"; }
  void connect() override {}
  void exchange() override;

 private:
  Function function_;
};

/// get_olt_auth_mode sends 80 bytes, takes one word of the answer and releases it.
class Operation : public Contender {
 public:
  std::string name() const override { return "library operation"; }
  void connect() override {}
  void exchange() override;
};

}  // namespace olt::bench

#endif
