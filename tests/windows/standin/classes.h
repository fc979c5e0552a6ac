#pragma once

#include <array>
#include <functional>
#include <string>

#include "ado/com.h"

// The platform's interfaces have no virtual destructor, whoever implements them.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace azcoll::test {

/// A class factory that lives as long as its module.
class LateFactory final : public IClassFactory {
 public:
  /// `create` gives a new object with one reference, or null when there is none to be had.
  explicit LateFactory(std::function<IDispatch*()> create) : create_{std::move(create)} {}
  virtual ~LateFactory() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** result) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID identifier,
                                           void** result) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  std::function<IDispatch*()> create_;
};

/// A class that the tests bring along.
struct StandInClass {
  std::wstring progId;
  std::wstring identifierText;
  LateFactory factory;

  [[nodiscard]] CLSID identifier() const;
};

/// ADO's three classes.
std::array<StandInClass, 3>& standInClasses();

}  // namespace azcoll::test
