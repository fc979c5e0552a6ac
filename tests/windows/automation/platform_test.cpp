// The services of Windows that the library asks for.

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "ado/wide_text.h"
#include "automation/windows_platform.h"
#include "data/error.h"

namespace azcoll::automation {
namespace {

constexpr int kYesNoQuestion = 36;

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
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(answer, 0), 0);
        return;
      }
      Sleep(20);
    }
  }

  std::string text_;
  std::thread thread_;
};

TEST(WindowsPlatform, AsksWithAMessageBoxAndTakesYes) {
  Watcher watcher{IDYES};
  WindowsPlatform platform;
  EXPECT_EQ(
      platform.messageBox("Configurare l’attività?\r\nÈ una prova.", kYesNoQuestion, "Richiesta"),
      Answer::Yes);
  EXPECT_NE(watcher.text().find("Configurare l’attività?"), std::string::npos) << watcher.text();
}

TEST(WindowsPlatform, TakesNoForNo) {
  Watcher watcher{IDNO};
  WindowsPlatform platform;
  EXPECT_EQ(platform.messageBox("Procedere?", kYesNoQuestion, "Richiesta"), Answer::No);
}

TEST(WindowsPlatform, SaysWhichClassCannotBeCreated) {
  WindowsPlatform platform;
  try {
    static_cast<void>(platform.createObject("AZCOLLUI.CLSCO_AZIENDECOLL"));
    ADD_FAILURE() << "created";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(),
              "Impossibile creare l'oggetto AZCOLLUI.CLSCO_AZIENDECOLL: "
              "Nome di classe non registrato (0x800401F3)");
  }
}

TEST(WindowsPlatform, SetsAndReadsMembersOfAHostsObjectByName) {
  WindowsPlatform platform;
  const std::shared_ptr<NamedMembers> object = platform.createObject("AZCOLLSRV.CLSCO_INPUTAZCOLL");
  object->set("CodiceAttività", "4711");
  EXPECT_EQ(object->get("CodiceAttività"), Variant{"4711"});
  EXPECT_THROW(object->set("CodDitta", 5), Error);
}

TEST(WindowsPlatform, TakesTheNumberingThatTheRegistryNames) {
  constexpr wchar_t kKey[] = L"Software\\AZCOLLSRV";
  constexpr wchar_t kNone[] = L"AZCOLLPROVA.NonEsiste";
  WindowsPlatform platform;
  EXPECT_EQ(numberingProgId(), L"");
  EXPECT_NE(platform.newNumbering(), nullptr);
  ASSERT_EQ(
      RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"NumerazioneProgID", REG_SZ, kNone, sizeof(kNone)),
      ERROR_SUCCESS);
  EXPECT_EQ(numberingProgId(), kNone);
  EXPECT_THROW(static_cast<void>(platform.newNumbering()), Error);
  EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, kKey), ERROR_SUCCESS);
}

}  // namespace
}  // namespace azcoll::automation
