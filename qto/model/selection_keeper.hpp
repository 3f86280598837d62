#pragma once

#include <vector>

#include "qto/host/application.hpp"
#include "qto/host/range.hpp"
#include "qto/host/worksheet.hpp"
#include "qto/model/quiet_application.hpp"

namespace qto {

/// Goes from cell to cell of a quiet application, and puts everything back however the work in
/// between ends: the active workbook and its sheet, what was selected there, and the same of every
/// book and sheet that it went to.
class SelectionKeeper {
 public:
  explicit SelectionKeeper(const Ref<host::Application>& app);
  SelectionKeeper(const SelectionKeeper&) = delete;
  SelectionKeeper& operator=(const SelectionKeeper&) = delete;
  ~SelectionKeeper();

  /// Makes `cell` the selected range. Throws for a hidden sheet.
  void go_to(const Ref<host::Range>& cell);

 private:
  struct Place {
    Ref<host::Sheet> sheet;
    Ref<Object> selection;
  };
  void remember();
  static void go_back(const Place& place) noexcept;

  Ref<host::Application> app_;
  std::vector<Place> places_;
  QuietApplication quiet_;
};

}  // namespace qto
