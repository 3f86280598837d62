#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"
#include "qto/hosts/libreoffice/application.hpp"
#include "tests/objects/desk.hpp"

namespace qto {

using embedded::shown;

/// LibreOffice's application; null, with why, where it is not there.
inline Ref<host::Application> find_libreoffice(std::string& why) {
  try {
    return libreoffice::application();
  } catch (const host::HostFailure& failure) {
    why = failure.what();
    return nullptr;
  }
}

#define NEED_LIBREOFFICE(application)                                                   \
  std::string why_without_libreoffice;                                                  \
  const Ref<host::Application> application = find_libreoffice(why_without_libreoffice); \
  if (!application) GTEST_SKIP() << "not tested: " << why_without_libreoffice

/// What every host must do, run over the embedded one and over LibreOffice.
class OverBothHosts : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (std::string_view(GetParam()) == "Embedded") {
      app = embedded::Application();
    } else {
      std::string why;
      app = find_libreoffice(why);
      if (!app) GTEST_SKIP() << "not tested: " << why;
    }
    book = app->Workbooks()->Add();
    sheet = book->Worksheets(1);
  }

  /// As typed, a formula with "=" first.
  void put(std::string_view address, std::string_view typed) const {
    sheet->Range(address)->put_Formula(typed);
  }
  std::string value(std::string_view address) const {
    return shown(sheet->Range(address)->value());
  }
  std::string evaluated(std::string_view text) const { return shown(sheet->Evaluate(text)); }

  Ref<host::Application> app;
  Ref<host::Workbook> book;
  Ref<host::Worksheet> sheet;
};

}  // namespace qto
