#pragma once

#include "qto/host/application.hpp"
#include "qto/host/insist.hpp"

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
      host::insist([&] { (app_.get()->*put)(on); });
  }

  Ref<host::Application> app_;
};

}  // namespace qto
