#include <windows.h>

#include <algorithm>
#include <iterator>

#include "qto/automation/text.hpp"
#include "qto/automation/wide_text_windows.hpp"

namespace qto::text {
namespace {

struct LongerForm {
  wchar_t letter;
  const wchar_t* upper;
};

/// Letters whose upper case takes several (Unicode's SpecialCasing.txt, those of any language and
/// place), which the system leaves as they are.
constexpr LongerForm longer_forms[] = {{0xDF, L"SS"},
                                       {0x149, L"\u02BCN"},
                                       {0x1F0, L"J\u030C"},
                                       {0x390, L"\u0399\u0308\u0301"},
                                       {0x3B0, L"\u03A5\u0308\u0301"},
                                       {0x587, L"\u0535\u0552"},
                                       {0x1E96, L"H\u0331"},
                                       {0x1E97, L"T\u0308"},
                                       {0x1E98, L"W\u030A"},
                                       {0x1E99, L"Y\u030A"},
                                       {0x1E9A, L"A\u02BE"},
                                       {0x1F50, L"\u03A5\u0313"},
                                       {0x1F52, L"\u03A5\u0313\u0300"},
                                       {0x1F54, L"\u03A5\u0313\u0301"},
                                       {0x1F56, L"\u03A5\u0313\u0342"},
                                       {0x1F80, L"\u1F08\u0399"},
                                       {0x1F81, L"\u1F09\u0399"},
                                       {0x1F82, L"\u1F0A\u0399"},
                                       {0x1F83, L"\u1F0B\u0399"},
                                       {0x1F84, L"\u1F0C\u0399"},
                                       {0x1F85, L"\u1F0D\u0399"},
                                       {0x1F86, L"\u1F0E\u0399"},
                                       {0x1F87, L"\u1F0F\u0399"},
                                       {0x1F88, L"\u1F08\u0399"},
                                       {0x1F89, L"\u1F09\u0399"},
                                       {0x1F8A, L"\u1F0A\u0399"},
                                       {0x1F8B, L"\u1F0B\u0399"},
                                       {0x1F8C, L"\u1F0C\u0399"},
                                       {0x1F8D, L"\u1F0D\u0399"},
                                       {0x1F8E, L"\u1F0E\u0399"},
                                       {0x1F8F, L"\u1F0F\u0399"},
                                       {0x1F90, L"\u1F28\u0399"},
                                       {0x1F91, L"\u1F29\u0399"},
                                       {0x1F92, L"\u1F2A\u0399"},
                                       {0x1F93, L"\u1F2B\u0399"},
                                       {0x1F94, L"\u1F2C\u0399"},
                                       {0x1F95, L"\u1F2D\u0399"},
                                       {0x1F96, L"\u1F2E\u0399"},
                                       {0x1F97, L"\u1F2F\u0399"},
                                       {0x1F98, L"\u1F28\u0399"},
                                       {0x1F99, L"\u1F29\u0399"},
                                       {0x1F9A, L"\u1F2A\u0399"},
                                       {0x1F9B, L"\u1F2B\u0399"},
                                       {0x1F9C, L"\u1F2C\u0399"},
                                       {0x1F9D, L"\u1F2D\u0399"},
                                       {0x1F9E, L"\u1F2E\u0399"},
                                       {0x1F9F, L"\u1F2F\u0399"},
                                       {0x1FA0, L"\u1F68\u0399"},
                                       {0x1FA1, L"\u1F69\u0399"},
                                       {0x1FA2, L"\u1F6A\u0399"},
                                       {0x1FA3, L"\u1F6B\u0399"},
                                       {0x1FA4, L"\u1F6C\u0399"},
                                       {0x1FA5, L"\u1F6D\u0399"},
                                       {0x1FA6, L"\u1F6E\u0399"},
                                       {0x1FA7, L"\u1F6F\u0399"},
                                       {0x1FA8, L"\u1F68\u0399"},
                                       {0x1FA9, L"\u1F69\u0399"},
                                       {0x1FAA, L"\u1F6A\u0399"},
                                       {0x1FAB, L"\u1F6B\u0399"},
                                       {0x1FAC, L"\u1F6C\u0399"},
                                       {0x1FAD, L"\u1F6D\u0399"},
                                       {0x1FAE, L"\u1F6E\u0399"},
                                       {0x1FAF, L"\u1F6F\u0399"},
                                       {0x1FB2, L"\u1FBA\u0399"},
                                       {0x1FB3, L"\u0391\u0399"},
                                       {0x1FB4, L"\u0386\u0399"},
                                       {0x1FB6, L"\u0391\u0342"},
                                       {0x1FB7, L"\u0391\u0342\u0399"},
                                       {0x1FBC, L"\u0391\u0399"},
                                       {0x1FC2, L"\u1FCA\u0399"},
                                       {0x1FC3, L"\u0397\u0399"},
                                       {0x1FC4, L"\u0389\u0399"},
                                       {0x1FC6, L"\u0397\u0342"},
                                       {0x1FC7, L"\u0397\u0342\u0399"},
                                       {0x1FCC, L"\u0397\u0399"},
                                       {0x1FD2, L"\u0399\u0308\u0300"},
                                       {0x1FD3, L"\u0399\u0308\u0301"},
                                       {0x1FD6, L"\u0399\u0342"},
                                       {0x1FD7, L"\u0399\u0308\u0342"},
                                       {0x1FE2, L"\u03A5\u0308\u0300"},
                                       {0x1FE3, L"\u03A5\u0308\u0301"},
                                       {0x1FE4, L"\u03A1\u0313"},
                                       {0x1FE6, L"\u03A5\u0342"},
                                       {0x1FE7, L"\u03A5\u0308\u0342"},
                                       {0x1FF2, L"\u1FFA\u0399"},
                                       {0x1FF3, L"\u03A9\u0399"},
                                       {0x1FF4, L"\u038F\u0399"},
                                       {0x1FF6, L"\u03A9\u0342"},
                                       {0x1FF7, L"\u03A9\u0342\u0399"},
                                       {0x1FFC, L"\u03A9\u0399"},
                                       {0xFB00, L"FF"},
                                       {0xFB01, L"FI"},
                                       {0xFB02, L"FL"},
                                       {0xFB03, L"FFI"},
                                       {0xFB04, L"FFL"},
                                       {0xFB05, L"ST"},
                                       {0xFB06, L"ST"},
                                       {0xFB13, L"\u0544\u0546"},
                                       {0xFB14, L"\u0544\u0535"},
                                       {0xFB15, L"\u0544\u053B"},
                                       {0xFB16, L"\u054E\u0546"},
                                       {0xFB17, L"\u0544\u053D"}};

std::wstring with_longer_forms(const std::wstring& text) {
  std::wstring out;
  for (const wchar_t c : text) {
    const auto found = std::lower_bound(
        std::begin(longer_forms), std::end(longer_forms), c,
        [](const LongerForm& form, wchar_t letter) { return form.letter < letter; });
    if (found != std::end(longer_forms) && found->letter == c)
      out += found->upper;
    else
      out += c;
  }
  return out;
}

/// In no particular language. Keeps the number of UTF-16 units.
std::string mapped(const std::wstring& wide, DWORD how) {
  if (wide.empty()) return {};
  const int length = static_cast<int>(wide.size());
  std::wstring out(wide.size(), L'\0');
  if (LCMapStringEx(LOCALE_NAME_INVARIANT, how, wide.data(), length, out.data(), length, nullptr,
                    nullptr, 0) != length)
    return from_wide(wide);
  return from_wide(out);
}

}  // namespace

std::string to_upper(std::string_view text) {
  return mapped(with_longer_forms(to_wide(text)), LCMAP_UPPERCASE);
}

std::string to_lower(std::string_view text) { return mapped(to_wide(text), LCMAP_LOWERCASE); }

}  // namespace qto::text
