#pragma once

#include <string>
#include <thread>

#include "ado/wide_text.h"
#include "ado/win.h"

namespace azcoll::test {

/// Waits for this process's message box of that title, notes its text and gives an answer.
class Watcher {
 public:
  explicit Watcher(int answer) : thread_{[this, answer] { watch(answer); }} {}
  Watcher(const Watcher&) = delete;
  Watcher(Watcher&&) = delete;
  Watcher& operator=(const Watcher&) = delete;
  Watcher& operator=(Watcher&&) = delete;
  ~Watcher() { join(); }

  std::string text() {
    join();
    return text_;
  }
  /// Whether the box asked with Yes and No, and with the question icon: what style 36 means.
  bool asksYesOrNo() {
    join();
    return asksYesOrNo_;
  }

 private:
  void join() {
    if (thread_.joinable()) {
      thread_.join();
    }
  }
  void watch(int answer) {
    for (int round = 0; round < 500; ++round) {
      HWND const box = FindWindowW(L"#32770", L"Richiesta");
      DWORD process = 0;
      GetWindowThreadProcessId(box, &process);
      if (box != nullptr && process == GetCurrentProcessId()) {
        std::wstring text(1000, L'\0');
        constexpr int kTextOfABox = 0xFFFF;
        text.resize(static_cast<std::size_t>(
            GetWindowTextW(GetDlgItem(box, kTextOfABox), text.data(), 1000)));
        text_ = ado::narrowText(text);
        asksYesOrNo_ = hasOnlyYesAndNo(box) && hasQuestionIcon(box);
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(answer, 0), 0);
        return;
      }
      Sleep(20);
    }
  }

  static bool hasOnlyYesAndNo(HWND box) {
    const auto has = [box](int button) { return GetDlgItem(box, button) != nullptr; };
    return has(IDYES) && has(IDNO) && !has(IDOK) && !has(IDCANCEL) && !has(IDRETRY);
  }
  static bool hasQuestionIcon(HWND box) {
    // Windows and Wine number the icon differently.
    constexpr int kIconOfABox = 20;
    constexpr int kIconOfAWineBox = 0x440;
    const int place = GetDlgItem(box, kIconOfABox) != nullptr ? kIconOfABox : kIconOfAWineBox;
    const LRESULT icon = SendDlgItemMessageW(box, place, STM_GETICON, 0, 0);
    return icon != 0 && icon == reinterpret_cast<LRESULT>(LoadIconW(nullptr, IDI_QUESTION));
  }

  std::string text_;
  bool asksYesOrNo_ = false;
  std::thread thread_;
};

}  // namespace azcoll::test
