#include "automation/windows_platform.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "ado/automated.h"
#include "ado/connection.h"
#include "ado/dispatch.h"
#include "ado/variants.h"
#include "ado/wide_text.h"
#include "data/error.h"
#include "data/variant.h"

namespace azcoll {
namespace automation {
namespace {

/// An object of the host, its members set and read by name.
class HostMembers final : public NamedMembers, public ado::Automated {
 public:
  explicit HostMembers(ado::ComPtr<IDispatch> object)
      : host_{std::move(object), ado::Owner::Host} {}

  [[nodiscard]] const ado::ComPtr<IDispatch>& dispatch() const override { return host_.object(); }

  void set(std::string_view member, const Variant& value) override {
    const std::wstring name = ado::wideText(member);
    if (value.kind() == Variant::Kind::Object) {
      host_.putRef(name, ado::dispatchOf(value.object()));
    } else {
      host_.put(name, value);
    }
  }
  [[nodiscard]] Variant get(std::string_view member) override {
    return ado::fromVariant(host_.get(ado::wideText(member)).value());
  }

 private:
  ado::Dispatch host_;
};

/// The suite's own document numbering.
class HostNumbering final : public NumerazioneDocumenti {
 public:
  explicit HostNumbering(ado::ComPtr<IDispatch> object)
      : host_{std::move(object), ado::Owner::Host} {}

  void imposta(Ingresso ingresso, const Variant& valore) override {
    constexpr std::array<std::wstring_view, 9> kNames{
        L"TipoDocumento", L"Ditta",  L"Modo",        L"Sezione",           L"Anno",
        L"Data",          L"Codice", L"Connessione", L"StringaConnessione"};
    const std::wstring_view name = kNames.at(static_cast<std::size_t>(ingresso));
    if (ingresso == Ingresso::Connessione) {
      host_.putRef(name, ado::dispatchOf(valore.object()));
    } else {
      host_.put(name, valore);
    }
  }
  void ElaboraNumerazione() override { host_.call(L"ElaboraNumerazione"); }
  [[nodiscard]] std::int32_t Stato() const override {
    return static_cast<std::int32_t>(host_.getNumber(L"Stato"));
  }

 private:
  mutable ado::Dispatch host_;
};

std::wstring registryText(HKEY root, const wchar_t* key, const wchar_t* name) {
  DWORD bytes = 0;
  if (RegGetValueW(root, key, name, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) != ERROR_SUCCESS) {
    return {};
  }
  std::wstring text(bytes / sizeof(wchar_t), L'\0');
  if (RegGetValueW(root, key, name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes) != ERROR_SUCCESS) {
    return {};
  }
  text.resize(text.find(L'\0') == std::wstring::npos ? text.size() : text.find(L'\0'));
  return text;
}

}  // namespace

std::wstring numberingProgId() {
  for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    std::wstring progId = registryText(root, L"Software\\AZCOLLSRV", L"NumerazioneProgID");
    if (!progId.empty()) {
      return progId;
    }
  }
  return {};
}

std::shared_ptr<Connection> WindowsPlatform::newConnection(std::string_view /*connectionString*/) {
  return ado::newConnection();
}

std::unique_ptr<NumerazioneDocumenti> WindowsPlatform::newNumbering() {
  const std::wstring progId = numberingProgId();
  if (progId.empty()) {
    return Platform::newNumbering();
  }
  return std::make_unique<HostNumbering>(ado::createObject(progId));
}

Answer WindowsPlatform::messageBox(std::string_view text, int style, std::string_view title) {
  // Anything but a Yes is a No: also the failure to show a box at all.
  const int answer = MessageBoxW(GetActiveWindow(), ado::wideText(text).c_str(),
                                 ado::wideText(title).c_str(), static_cast<UINT>(style));
  return answer == IDYES ? Answer::Yes : Answer::No;
}

std::shared_ptr<NamedMembers> WindowsPlatform::createObject(std::string_view progId) {
  return std::make_shared<HostMembers>(ado::createObject(ado::wideText(progId)));
}

void WindowsPlatform::show(NamedMembers& screen, const std::shared_ptr<Object>& activeInterface) {
  IDispatch* const framework = ado::dispatchOf(activeInterface);
  const auto* const object = dynamic_cast<const ado::Automated*>(&screen);
  if (framework == nullptr || object == nullptr) {
    throw Error("Oggetto non impostato: ActiveInterface");
  }
  ado::Dispatch{ado::ComPtr<IDispatch>::share(framework), ado::Owner::Host}.call(
      L"Mostra", {object->dispatch().get()});
}

}  // namespace automation

std::shared_ptr<Platform> defaultPlatform() {
  return std::make_shared<automation::WindowsPlatform>();
}

}  // namespace azcoll
