#include "windows/client/host.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "ado/connection.h"
#include "ado/variants.h"
#include "ado/wide_text.h"
#include "data/error.h"
#include "windows/standin/classes.h"
#include "windows/standin/objects.h"

namespace azcoll::test {
namespace {

std::shared_ptr<Platform> current;

// ---- message boxes

std::wstring textOf(HWND window) {
  std::wstring text(4000, L'\0');
  text.resize(
      static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

/// The style value that a box was made with, told by its buttons and its icon.
int styleOf(HWND box) {
  // Windows and Wine number the icon differently.
  constexpr int kIconOfABox = 20;
  constexpr int kIconOfAWineBox = 0x440;
  const int place = GetDlgItem(box, kIconOfABox) != nullptr ? kIconOfABox : kIconOfAWineBox;
  const auto has = [box](int button) { return GetDlgItem(box, button) != nullptr; };
  const bool yesNo = has(IDYES) && has(IDNO) && !has(IDOK) && !has(IDCANCEL) && !has(IDRETRY);
  const auto icon = SendDlgItemMessageW(box, place, STM_GETICON, 0, 0);
  const bool question =
      icon != 0 && icon == reinterpret_cast<LRESULT>(LoadIconW(nullptr, IDI_QUESTION));
  return (yesNo ? MB_YESNO : 0) | (question ? MB_ICONQUESTION : 0);
}

void answer(HWND box) {
  constexpr int kTextOfABox = 0xFFFF;
  Answer given = Answer::No;
  if (current) {
    given = current->messageBox(ado::narrowText(textOf(GetDlgItem(box, kTextOfABox))), styleOf(box),
                                ado::narrowText(textOf(box)));
  }
  PostMessageW(box, WM_COMMAND, MAKEWPARAM(static_cast<int>(given), 0), 0);
}

LRESULT CALLBACK whenWindowsComeUp(int code, WPARAM window, LPARAM details) {
  if (code == HCBT_ACTIVATE) {
    std::array<wchar_t, 16> name{};
    HWND const box = reinterpret_cast<HWND>(window);
    GetClassNameW(box, name.data(), static_cast<int>(name.size()));
    if (std::wstring{name.data()} == L"#32770") {
      answer(box);
    }
  }
  return CallNextHookEx(nullptr, code, window, details);
}

// ---- objects created by ProgID

/// The caller's framework object, behind which the one that a test means stands.
class FrameworkObject final : public LateObject {
 public:
  explicit FrameworkObject(std::shared_ptr<Object> meant);
  [[nodiscard]] const std::shared_ptr<Object>& meant() const { return meant_; }

 private:
  std::shared_ptr<Object> meant_;
};

/// A screen: any member may be set and read. The framework object comes by reference.
class ScreenObject final : public LateObject {
 public:
  explicit ScreenObject(std::shared_ptr<NamedMembers> members)
      : LateObject{"Screen"}, members_{std::move(members)} {}
  [[nodiscard]] NamedMembers& members() { return *members_; }

 protected:
  std::optional<LateMember> furtherMember(const std::wstring& name) override {
    return LateMember{name, [this, member = ado::narrowText(name)](const CallArguments& arguments) {
                        if (!arguments.assigns()) {
                          return result(members_->get(member));
                        }
                        const auto* const framework = dynamic_cast<FrameworkObject*>(
                            static_cast<LateObject*>(arguments.object(0)));
                        EXPECT_EQ(arguments.byReference(), framework != nullptr) << member;
                        members_->set(member, framework != nullptr ? Variant{framework->meant()}
                                                                   : arguments.value(0));
                        return nothing();
                      }};
  }

 private:
  std::shared_ptr<NamedMembers> members_;
};

FrameworkObject::FrameworkObject(std::shared_ptr<Object> meant)
    : LateObject{"Framework"}, meant_{std::move(meant)} {
  setMembers({{L"Mostra", [this](const CallArguments& arguments) {
                 auto* const screen =
                     dynamic_cast<ScreenObject*>(static_cast<LateObject*>(arguments.object(0)));
                 if (screen == nullptr || !current) {
                   throw Error("nothing to be shown");
                 }
                 current->show(screen->members(), meant_);
                 return nothing();
               }}});
}

/// The suite's numbering object: takes its inputs once each, in their order.
class NumberingObject final : public LateObject {
 public:
  explicit NumberingObject(std::unique_ptr<NumerazioneDocumenti> numbering)
      : LateObject{"Numbering"}, numbering_{std::move(numbering)} {
    using enum NumerazioneDocumenti::Ingresso;
    setMembers({{L"TipoDocumento", takes(TipoDocumento)},
                {L"Ditta", takes(Ditta)},
                {L"Modo", takes(Modo)},
                {L"Sezione", takes(Sezione)},
                {L"Anno", takes(Anno)},
                {L"Data", takes(Data)},
                {L"Codice", takes(Codice)},
                {L"Connessione", takes(Connessione)},
                {L"StringaConnessione", takes(StringaConnessione)},
                {L"ElaboraNumerazione",
                 [this](const auto&) {
                   EXPECT_EQ(taken_, kInputs);
                   numbering_->ElaboraNumerazione();
                   return nothing();
                 }},
                {L"Stato", [this](const auto&) { return result(numbering_->Stato()); }}});
  }

 private:
  static constexpr int kInputs = 9;

  std::function<ado::ScopedVariant(const CallArguments&)> takes(
      NumerazioneDocumenti::Ingresso input) {
    return [this, input](const CallArguments& arguments) {
      EXPECT_EQ(static_cast<int>(input), taken_);
      ++taken_;
      if (input == NumerazioneDocumenti::Ingresso::Connessione) {
        EXPECT_TRUE(arguments.byReference());
        numbering_->imposta(input, std::shared_ptr<Object>{ado::wrapConnection(
                                       ado::ComPtr<IDispatch>::share(arguments.object(0)))});
      } else {
        numbering_->imposta(input, arguments.value(0));
      }
      return nothing();
    };
  }

  std::unique_ptr<NumerazioneDocumenti> numbering_;
  int taken_ = 0;
};

IDispatch* newScreen(const char* progId) {
  return current ? new ScreenObject{current->createObject(progId)} : nullptr;
}

IDispatch* newNumbering() {
  return current ? new NumberingObject{current->newNumbering()} : nullptr;
}

constexpr wchar_t kSettings[] = L"Software\\AZCOLLSRV";
constexpr wchar_t kNumbering[] = L"AZCOLLPROVA.Numerazione";

/// What only this host has; ADO's classes are in the registry already.
std::array<StandInClass, 3>& hostClasses() {
  static std::array<StandInClass, 3> classes{
      StandInClass{L"AZCOLLUI.CLSCO_AZIENDECOLL", L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A11}",
                   LateFactory{[] { return newScreen("AZCOLLUI.CLSCO_AZIENDECOLL"); }}},
      StandInClass{L"AZCOLLUI.CLSCO_ATTIVITACOLL", L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A12}",
                   LateFactory{[] { return newScreen("AZCOLLUI.CLSCO_ATTIVITACOLL"); }}},
      StandInClass{kNumbering, L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A13}",
                   LateFactory{&newNumbering}}};
  return classes;
}

std::wstring keyOf(const StandInClass& entry) { return L"Software\\Classes\\" + entry.progId; }

void setText(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  RegSetKeyValueW(root, key.c_str(), name, REG_SZ, text.c_str(),
                  static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

std::vector<DWORD> registered;

void offer(StandInClass& entry) {
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(entry.identifier(), &entry.factory, CLSCTX_INPROC_SERVER,
                                  REGCLS_MULTIPLEUSE, &cookie),
            S_OK);
  registered.push_back(cookie);
}

}  // namespace

HostClasses::HostClasses() {
  for (StandInClass& entry : standInClasses()) {
    offer(entry);
  }
  for (StandInClass& entry : hostClasses()) {
    setText(HKEY_LOCAL_MACHINE, keyOf(entry) + L"\\CLSID", nullptr, entry.identifierText);
    offer(entry);
  }
}

HostClasses::~HostClasses() {
  for (const DWORD cookie : registered) {
    CoRevokeClassObject(cookie);
  }
  for (const StandInClass& entry : hostClasses()) {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, keyOf(entry).c_str());
  }
}

HostInUse::HostInUse(std::shared_ptr<Platform> platform)
    : hook_{SetWindowsHookExW(WH_CBT, &whenWindowsComeUp, nullptr, GetCurrentThreadId())} {
  EXPECT_NE(hook_, nullptr);
  current = std::move(platform);
  if (current) {
    setText(HKEY_CURRENT_USER, kSettings, L"NumerazioneProgID", kNumbering);
  }
}

HostInUse::~HostInUse() {
  if (current) {
    RegDeleteTreeW(HKEY_CURRENT_USER, kSettings);
  }
  current = nullptr;
  UnhookWindowsHookEx(hook_);
}

ado::ComPtr<IDispatch> frameworkObject(std::shared_ptr<Object> activeInterface) {
  return activeInterface
             ? ado::ComPtr<IDispatch>::adopt(new FrameworkObject{std::move(activeInterface)})
             : ado::ComPtr<IDispatch>{};
}

}  // namespace azcoll::test
