#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ado/com.h"
#include "data/variant.h"

// The platform's interfaces have no virtual destructor, whoever implements them.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace azcoll::test {

/// The arguments of one late-bound call, first one first.
class CallArguments {
 public:
  CallArguments(const DISPPARAMS& parameters, WORD flags)
      : parameters_{parameters}, flags_{flags} {}

  [[nodiscard]] std::size_t count() const { return parameters_.cArgs; }
  /// The argument itself; null when it was left out.
  [[nodiscard]] VARIANT* at(std::size_t index) const;
  /// Its value; `fallback` when it was left out.
  [[nodiscard]] Variant value(std::size_t index, const Variant& fallback = {}) const;
  [[nodiscard]] int number(std::size_t index, int fallback) const;
  [[nodiscard]] std::string text(std::size_t index) const;
  [[nodiscard]] IDispatch* object(std::size_t index) const;
  [[nodiscard]] bool assigns() const;
  /// Whether a property is assigned by reference.
  [[nodiscard]] bool byReference() const;
  /// Writes a number into an argument given by reference.
  void write(std::size_t index, std::int64_t number) const;
  /// As they stand in the register: values, "-" for left out, "out" for references.
  [[nodiscard]] std::string shown() const;

 private:
  const DISPPARAMS& parameters_;
  WORD flags_;
};

/// One member: called, read or assigned.
struct LateMember {
  std::wstring name;
  std::function<ado::ScopedVariant(const CallArguments&)> run;
};

/// Base of the stand-ins: an automation object known by its members' names only. Every call is
/// entered into the register before it runs; failures come back as ADO's do.
class LateObject : public IDispatch {
 public:
  explicit LateObject(std::string kind);
  LateObject(const LateObject&) = delete;
  LateObject(LateObject&&) = delete;
  LateObject& operator=(const LateObject&) = delete;
  LateObject& operator=(LateObject&&) = delete;

  [[nodiscard]] const std::string& kind() const { return kind_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** result) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* identifiers) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID identifier, REFIID, LCID, WORD flags,
                                   DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                   UINT*) override;

 protected:
  virtual ~LateObject();

  using Members = std::vector<LateMember>;
  /// The first member is also the default one.
  void setMembers(Members members) { members_ = std::move(members); }
  /// A member that is not in the list, for objects whose members come as they are asked for.
  [[nodiscard]] virtual std::optional<LateMember> furtherMember(const std::wstring& /*name*/) {
    return std::nullopt;
  }

 private:
  std::string kind_;
  Members members_;
  std::atomic<ULONG> references_{1};
};

/// The register of all calls, and the stand-ins that are alive.
std::vector<std::string>& callRegister();
std::set<const IDispatch*>& liveObjects();

/// Results of members.
[[nodiscard]] ado::ScopedVariant nothing();
[[nodiscard]] ado::ScopedVariant result(const Variant& value);
/// Takes over the reference of a new object.
[[nodiscard]] ado::ScopedVariant result(IDispatch* object);

}  // namespace azcoll::test
