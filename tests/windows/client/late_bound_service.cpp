// The service class of the component as a caller of the DLL: every method fills the parameters of
// an object created by ProgID, calls it late-bound, and brings the results back. Tests that are
// written against the class run on the DLL with this definition in place of the component's own.

#include <gtest/gtest.h>
#include <map>
#include <utility>
#include <variant>
#include <vector>

#include "ado/automated.h"
#include "ado/connection.h"
#include "ado/dispatch.h"
#include "ado/variants.h"
#include "ado/wide_text.h"
#include "service/members.h"
#include "windows/client/host.h"
#include "windows/standin/objects.h"

namespace azcoll {
namespace {

using ado::ComPtr;

class LateBoundService {
 public:
  explicit LateBoundService(std::shared_ptr<Platform> platform) : platform_{std::move(platform)} {}

  Variant call(CLSCO_AZIENDECOLL& owner, std::string_view method) {
    try {
      const test::HostInUse host{platform_};
      give(owner);
      Variant result = ado::fromVariant(service_.get(ado::wideText(method)).value());
      take(owner);
      return result;
    } catch (const Error& error) {
      ADD_FAILURE() << method << ": " << error.description();
      return {};
    }
  }

  /// The last reference goes; what that did to the parameters is brought back.
  void end(CLSCO_AZIENDECOLL& owner) {
    try {
      give(owner);
      service_ = ado::Dispatch{ComPtr<IDispatch>{}};
      if (owner.CPInput) {
        takeFields(input_, kInputFields, *owner.CPInput);
      }
    } catch (const Error& error) {
      ADD_FAILURE() << "end: " << error.description();
    }
  }

 private:
  void give(const CLSCO_AZIENDECOLL& owner) {
    giveParameters(L"CPInput", input_, kInputFields, owner.CPInput);
    giveParameters(L"CPOutput", output_, kOutputFields, owner.CPOutput);
    giveValue(service_, L"Stato", owner.Stato);
    giveValue(service_, L"Errore", owner.Errore);
  }
  void take(CLSCO_AZIENDECOLL& owner) {
    if (owner.CPInput) {
      takeFields(input_, kInputFields, *owner.CPInput);
    }
    if (owner.CPOutput) {
      takeFields(output_, kOutputFields, *owner.CPOutput);
    }
    takeValue(service_, L"Stato", owner.Stato);
    takeValue(service_, L"Errore", owner.Errore);
  }

  template <typename Fields, typename Parameters>
  void giveParameters(const wchar_t* member, ado::Dispatch& object, const Fields& fields,
                      const std::shared_ptr<Parameters>& from) {
    if (!from) {
      service_.putRef(member, nullptr);
      return;
    }
    service_.putRef(member, object.object().get());
    for (const auto& field : fields) {
      std::visit([&](auto place) { giveValue(object, ado::wideText(field.name), *from.*place); },
                 field.member);
    }
  }
  template <typename Fields, typename Parameters>
  void takeFields(ado::Dispatch& object, const Fields& fields, Parameters& into) {
    for (const auto& field : fields) {
      std::visit([&](auto place) { takeValue(object, ado::wideText(field.name), into.*place); },
                 field.member);
    }
  }

  template <typename Value>
  void giveValue(ado::Dispatch& object, std::wstring_view name, const Value& value) {
    object.put(name, value);
  }
  template <typename Class>
  void giveValue(ado::Dispatch& object, std::wstring_view name,
                 const std::shared_ptr<Class>& value) {
    object.putRef(name, faceOf(value).get());
  }

  static void takeValue(ado::Dispatch& object, std::wstring_view name, Variant& into) {
    into = ado::fromVariant(object.get(name).value());
  }
  static void takeValue(ado::Dispatch& object, std::wstring_view name, std::string& into) {
    into = object.getText(name);
  }
  static void takeValue(ado::Dispatch& object, std::wstring_view name, bool& into) {
    into = object.getFlag(name);
  }
  template <typename Enumeration>
  requires std::is_enum_v<Enumeration>
  static void takeValue(ado::Dispatch& object, std::wstring_view name, Enumeration& into) {
    into = static_cast<Enumeration>(object.getNumber(name));
  }
  template <typename Class>
  void takeValue(ado::Dispatch& object, std::wstring_view name, std::shared_ptr<Class>& into) {
    const ComPtr<IDispatch> face = object.getObject(name);
    if (!face) {
      into = nullptr;
    } else if (face.get() != faceOf(into).get()) {
      into = wrapped<Class>(face);
    }
  }

  template <typename Class>
  static std::shared_ptr<Class> wrapped(const ComPtr<IDispatch>& face) {
    if constexpr (std::is_same_v<Class, Connection>) {
      return ado::wrapConnection(face);
    } else if constexpr (std::is_same_v<Class, Recordset>) {
      return ado::wrapRecordset(face);
    } else {
      return std::make_shared<ado::HostObject>(face);
    }
  }

  /// The automation object that stands for `object`: its own, or one made for it and kept.
  template <typename Class>
  ComPtr<IDispatch> faceOf(const std::shared_ptr<Class>& object) {
    if (!object) {
      return {};
    }
    if (const auto* const automated = dynamic_cast<const ado::Automated*>(object.get())) {
      return automated->dispatch();
    }
    for (const auto& [known, face] : faces_) {
      if (known == object) {
        return face;
      }
    }
    ComPtr<IDispatch> face;
    if constexpr (std::is_same_v<Class, Connection>) {
      face = ComPtr<IDispatch>::adopt(new test::StandInConnection{object});
    } else if constexpr (std::is_same_v<Class, Recordset>) {
      face = ComPtr<IDispatch>::adopt(new test::StandInRecordset{object, nullptr});
    } else {
      face = test::frameworkObject(object);
    }
    return faces_.emplace_back(object, face).second;
  }

  std::shared_ptr<Platform> platform_;
  std::vector<std::pair<std::shared_ptr<Object>, ComPtr<IDispatch>>> faces_;
  ado::Dispatch service_{ado::createObject(L"AZCOLLSRV.CLSCO_AZIENDECOLL")};
  ado::Dispatch input_{service_.getObject(L"CPInput")};
  ado::Dispatch output_{service_.getObject(L"CPOutput")};
};

/// The class has no place for the object that it stands for.
std::map<const CLSCO_AZIENDECOLL*, std::unique_ptr<LateBoundService>>& services() {
  static std::map<const CLSCO_AZIENDECOLL*, std::unique_ptr<LateBoundService>> all;
  return all;
}

void call(CLSCO_AZIENDECOLL* service, std::string_view method) {
  services().at(service)->call(*service, method);
}
bool callForTruth(CLSCO_AZIENDECOLL* service, std::string_view method) {
  const Variant result = services().at(service)->call(*service, method);
  EXPECT_EQ(result.kind(), Variant::Kind::Boolean) << method;
  return result.toBool();
}
std::string callForText(CLSCO_AZIENDECOLL* service, std::string_view method) {
  const Variant result = services().at(service)->call(*service, method);
  EXPECT_EQ(result.kind(), Variant::Kind::Text) << method;
  return result.text();
}

}  // namespace

CLSCO_AZIENDECOLL::CLSCO_AZIENDECOLL() : CLSCO_AZIENDECOLL{nullptr} {}

CLSCO_AZIENDECOLL::CLSCO_AZIENDECOLL(std::shared_ptr<Platform> platform)
    : CPInput{std::make_shared<CLSCO_INPUTAZCOLL>()},
      CPOutput{std::make_shared<CLSCO_OUTPUTAZCOLL>()} {
  services().emplace(this, std::make_unique<LateBoundService>(std::move(platform)));
}

CLSCO_AZIENDECOLL::~CLSCO_AZIENDECOLL() {
  services().at(this)->end(*this);
  services().erase(this);
}

void CLSCO_AZIENDECOLL::DuplicaCliFor() noexcept { call(this, "DuplicaCliFor"); }
void CLSCO_AZIENDECOLL::EliminaCliFor() noexcept { call(this, "EliminaCliFor"); }
void CLSCO_AZIENDECOLL::ControllaDittaPrincipale() noexcept {
  call(this, "ControllaDittaPrincipale");
}
void CLSCO_AZIENDECOLL::ControllaDittaCollegata() noexcept {
  call(this, "ControllaDittaCollegata");
}
void CLSCO_AZIENDECOLL::DitteCollegate() noexcept { call(this, "DitteCollegate"); }
void CLSCO_AZIENDECOLL::RecordsetDitteCollegate() noexcept {
  call(this, "RecordsetDitteCollegate");
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipale() noexcept {
  call(this, "RecordsetDitteCollegateOPrincipale");
}
void CLSCO_AZIENDECOLL::DitteCollegatePiuPrincipale() noexcept {
  call(this, "DitteCollegatePiuPrincipale");
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerSedi() noexcept {
  call(this, "RecordsetDitteCollegateOPrincipalePerSedi");
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerIntermedi() noexcept {
  call(this, "RecordsetDitteCollegateOPrincipalePerIntermedi");
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipale() noexcept {
  call(this, "RecordsetDitteCollegatePiuPrincipale");
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipaleNoPrinc() noexcept {
  call(this, "RecordsetDitteCollegatePiuPrincipaleNoPrinc");
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva() noexcept {
  call(this, "RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva");
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio() noexcept {
  call(this, "RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio");
}
void CLSCO_AZIENDECOLL::ModificaCliFor() noexcept { call(this, "ModificaCliFor"); }
bool CLSCO_AZIENDECOLL::ControllaDittaNonCollegata() noexcept {
  return callForTruth(this, "ControllaDittaNonCollegata");
}
std::string CLSCO_AZIENDECOLL::GetDittaPrincipale() noexcept {
  return callForText(this, "GetDittaPrincipale");
}
void CLSCO_AZIENDECOLL::RecordsetAttivitaCollegate() noexcept {
  call(this, "RecordsetAttivitaCollegate");
}
void CLSCO_AZIENDECOLL::StringaSQLAttivitaCollegate() noexcept {
  call(this, "StringaSQLAttivitaCollegate");
}
void CLSCO_AZIENDECOLL::DuplicaAttività() noexcept { call(this, "DuplicaAttività"); }
void CLSCO_AZIENDECOLL::InserisciAttività() noexcept { call(this, "InserisciAttività"); }
void CLSCO_AZIENDECOLL::AggiornaAttività() noexcept { call(this, "AggiornaAttività"); }
void CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAttività() noexcept {
  call(this, "AggiornaDatiGestionaliPerAttività");
}
void CLSCO_AZIENDECOLL::StringaSQLEliminazioneAttività() noexcept {
  call(this, "StringaSQLEliminazioneAttività");
}
void CLSCO_AZIENDECOLL::EliminaAttivitàSingolaCollegamentoMultiAzienda() noexcept {
  call(this, "EliminaAttivitàSingolaCollegamentoMultiAzienda");
}
void CLSCO_AZIENDECOLL::GetCodiceAttivitàDaSezionale() noexcept {
  call(this, "GetCodiceAttivitàDaSezionale");
}
void CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAnagraficaAttività() noexcept {
  call(this, "AggiornaDatiGestionaliPerAnagraficaAttività");
}
void CLSCO_AZIENDECOLL::InserisciAttivitàDaPeriodoPrecedente() noexcept {
  call(this, "InserisciAttivitàDaPeriodoPrecedente");
}
bool CLSCO_AZIENDECOLL::ControllaAttivitaNonCollegata() noexcept {
  return callForTruth(this, "ControllaAttivitaNonCollegata");
}
void CLSCO_AZIENDECOLL::GetCodiceAttività() noexcept { call(this, "GetCodiceAttività"); }
bool CLSCO_AZIENDECOLL::VerificaEsistenzaAttivita() noexcept {
  return callForTruth(this, "VerificaEsistenzaAttivita");
}
void CLSCO_AZIENDECOLL::AggiornaDateRegistriAnagraficaAttività() noexcept {
  call(this, "AggiornaDateRegistriAnagraficaAttività");
}
bool CLSCO_AZIENDECOLL::VerificaAnnoIvaEsercizioContabile() noexcept {
  return callForTruth(this, "VerificaAnnoIvaEsercizioContabile");
}
void CLSCO_AZIENDECOLL::StringaSQLAttivitàSingolaCollegamentoMultiAzienda() noexcept {
  call(this, "StringaSQLAttivitàSingolaCollegamentoMultiAzienda");
}

}  // namespace azcoll
