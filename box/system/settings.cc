// Settings kept as opaque records and returned unchanged.

#include <algorithm>

#include "box/system/families.h"

namespace olt::box {

namespace {

struct Record {
  Record(std::string_view record_key, std::string_view record_title, size_t size)
      : key(record_key), title(record_title), bytes(size) {}

  std::string_view key;
  std::string_view title;
  std::vector<uint8_t> bytes;
};

class SystemSettings final : public Family {
 public:
  explicit SystemSettings(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "system-settings"; }

  std::vector<Message> messages() override {
    return {
        setter(50, "set-ip", network_),
        setter(51, "set-dns", network_),
        setter(52, "set-sntp", sntp_),
        setter(56, "set-snmp-param", snmp_param_),
        getter(57, "snmp-param", snmp_param_, 0),
        getter(58, "network", network_, network_.bytes.size()),
        setter(59, "set-snmp-info", snmp_info_),
        getter(60, "snmp-info", snmp_info_, 0),
    };
  }

  void configuration(Archive &archive) override {
    archive.bytes(network_.key, network_.bytes);
    archive.bytes(sntp_.key, sntp_.bytes);
    // It contains the SNMP communities.
    archive.secret_bytes(snmp_param_.key, snmp_param_.bytes);
    archive.bytes(snmp_info_.key, snmp_info_.bytes);
  }

  void restore_factory() override {
    for (Record *record : {&network_, &sntp_, &snmp_param_, &snmp_info_}) {
      std::fill(record->bytes.begin(), record->bytes.end(), uint8_t{0});
    }
  }

  void describe_configuration(Report &report) const override {
    for (const Record *record : records()) {
      report.section(std::string(record->title), {"Offset", "Bytes", "Text"});
      report.dump(record->bytes);
    }
  }

  size_t footprint() const override {
    size_t bytes = sizeof *this;
    for (const Record *record : records()) bytes += record->bytes.capacity();
    return bytes;
  }

 private:
  std::vector<const Record *> records() const {
    return {&network_, &sntp_, &snmp_param_, &snmp_info_};
  }

  Message setter(uint32_t type, std::string_view message, Record &record) {
    auto set = [this, &record](const Request &request, Reply &) {
      auto bytes = request.bytes(0, record.bytes.size());
      std::copy(bytes.begin(), bytes.end(), record.bytes.begin());
      hardware_.events().record(Level::kNotice, kMainModule, std::string(record.title) + " set");
      return Status::kOk;
    };
    return {kMainModule, type, message, exactly(record.bytes.size()), set};
  }

  static Message getter(uint32_t type, std::string_view message, const Record &record,
                        size_t request_length) {
    auto get = [&record](const Request &, Reply &reply) {
      reply.bytes(0, record.bytes);
      return Status::kOk;
    };
    return {kMainModule, type, message, exactly(request_length), get};
  }

  Hardware &hardware_;
  Record network_ = {"network", "Management network", 172};
  Record sntp_ = {"sntp", "SNTP", 88};
  Record snmp_param_ = {"snmp_param", "SNMP parameters", 136};
  Record snmp_info_ = {"snmp_info", "SNMP system information", 196};
};

}  // namespace

std::unique_ptr<Family> make_system_settings(Hardware &hardware) {
  return std::make_unique<SystemSettings>(hardware);
}

}  // namespace olt::box
