#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "qto/host/host.hpp"

namespace qto::test {

/// A spreadsheet host that stands before another and fails where it is told to. Ordinary calls are
/// counted and may throw; probes only pass on. Workbooks and sheets keep their identity.
class FaultyHost {
 public:
  explicit FaultyHost(Ref<host::Application> inner);
  ~FaultyHost();
  FaultyHost(const FaultyHost&) = delete;
  FaultyHost& operator=(const FaultyHost&) = delete;

  Ref<host::Application> application() { return app_; }

  /// From now on the n-th ordinary call fails, once or from then on; 0: none.
  void fail_at(std::int64_t n, bool always = false) {
    calls_ = 0;
    failing_call_ = n;
    always_ = always;
    failed_.clear();
  }
  /// The value of that cell of every sheet fails each time; nothing: none does.
  void fail_value_of(std::optional<CellPos> cell) { failing_cell_ = cell; }
  std::int64_t calls() const { return calls_; }
  /// The call that failed first, "" when none has.
  const std::string& failed() const { return failed_; }

  // For the wrappers

  void count(const char* call);
  void check_value(CellPos cell) const;
  Ref<host::HostObject> wrap_object(const Ref<host::HostObject>& inner);
  Ref<Object> wrap_any(const Ref<Object>& inner);
  template <class Kind>
  Ref<Kind> wrap(const Ref<Kind>& inner) {
    return ref_cast<Kind>(wrap_object(inner));
  }

 private:
  std::int64_t calls_ = 0;
  std::int64_t failing_call_ = 0;
  std::optional<CellPos> failing_cell_;
  bool always_ = false;
  std::string failed_;
  Ref<host::Application> app_;
  std::map<const host::HostObject*, Ref<host::HostObject>> kept_;
};

}  // namespace qto::test
