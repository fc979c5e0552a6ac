// The services of Windows that the library asks for.

#include <gtest/gtest.h>
#include <string>

#include "automation/windows_platform.h"
#include "data/error.h"
#include "windows/watcher.h"

namespace azcoll::automation {
namespace {

constexpr int kYesNoQuestion = 36;

TEST(WindowsPlatform, AsksWithAMessageBoxAndTakesYes) {
  test::Watcher watcher{IDYES};
  WindowsPlatform platform;
  EXPECT_EQ(
      platform.messageBox("Configurare l’attività?\r\nÈ una prova.", kYesNoQuestion, "Richiesta"),
      Answer::Yes);
  EXPECT_NE(watcher.text().find("Configurare l’attività?"), std::string::npos) << watcher.text();
  EXPECT_TRUE(watcher.asksYesOrNo());
}

TEST(WindowsPlatform, TakesNoForNo) {
  test::Watcher watcher{IDNO};
  WindowsPlatform platform;
  EXPECT_EQ(platform.messageBox("Procedere?", kYesNoQuestion, "Richiesta"), Answer::No);
}

TEST(WindowsPlatform, TakesEveryOtherResultForNo) {
  for (const int result : {IDCANCEL, IDOK, IDIGNORE}) {
    test::Watcher watcher{result};
    WindowsPlatform platform;
    EXPECT_EQ(platform.messageBox("Procedere?", kYesNoQuestion, "Richiesta"), Answer::No);
  }
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
