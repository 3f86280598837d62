#pragma once

#include <utility>
#include <vector>

#include "qto/host/application.hpp"
#include "qto/host/range.hpp"
#include "qto/host/restore.hpp"
#include "qto/host/worksheet.hpp"

namespace qto {

/// While it lives the application neither redraws nor raises events nor asks; afterwards it does
/// all three, whatever it did before.
class QuietApplication {
 public:
  explicit QuietApplication(Ref<host::Application> app) : app_(std::move(app)) { switch_to(false); }
  QuietApplication(const QuietApplication&) = delete;
  QuietApplication& operator=(const QuietApplication&) = delete;
  ~QuietApplication() { switch_to(true); }

 private:
  void switch_to(bool on) noexcept {
    for (const auto put :
         {&host::Application::put_ScreenUpdating, &host::Application::put_EnableEvents,
          &host::Application::put_DisplayAlerts})
      // A host that lacks one of the settings works all the same.
      host::restore([&] { (app_.get()->*put)(on); });
  }

  Ref<host::Application> app_;
};

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
