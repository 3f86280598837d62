#include "qto/hosts/late_bound/desktop.hpp"

#ifdef _WIN32
#include <windows.h>

#include <string>

#include "qto/automation/text.hpp"
#endif

namespace qto::late_bound {

#ifdef _WIN32

void work_off_messages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      // It is for the loop that called us.
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

void bring_window_to_front(std::string_view title) {
  const std::u16string wide = text::to_utf16(title);
  if (HWND window = FindWindowW(nullptr, reinterpret_cast<const wchar_t*>(wide.c_str())))
    SetForegroundWindow(window);
}

#else

void work_off_messages() {}
void bring_window_to_front(std::string_view) {}

#endif

}  // namespace qto::late_bound
