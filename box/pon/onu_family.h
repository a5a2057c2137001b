/// A family whose configuration consists of records of ONUs.
#ifndef OLT_BOX_PON_ONU_FAMILY_H
#define OLT_BOX_PON_ONU_FAMILY_H

#include <functional>
#include <string_view>
#include <vector>

#include "box/core/family.h"
#include "box/pon/onu_state.h"

namespace olt::box {

/// Saves, restores and lists the tables given to it; the state owns them.
class OnuFamily : public Family {
 public:
  using Tables = std::vector<std::reference_wrapper<RecordTable>>;

  OnuFamily(std::string_view name, OnuState &state, Tables tables);

  std::string_view name() const override { return name_; }
  void configuration(Archive &archive) override;
  void restore_factory() override;
  void describe_configuration(Report &report) const override;
  size_t footprint() const override;

 protected:
  OnuState &state() const { return state_; }

 private:
  std::string_view name_;
  OnuState &state_;
  Tables tables_;
};

}  // namespace olt::box

#endif
