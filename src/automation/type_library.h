#pragma once

#include <string_view>
#include <vector>

#include "ado/com.h"

namespace azcoll::automation {

/// One class of the library, as its type library describes it.
struct ClassInfo {
  CLSID identifier{};
  IID interfaceIdentifier{};
  std::vector<IID> earlierIdentifiers{};  ///< the interface's aliases
  ado::ComPtr<ITypeInfo> members{};       ///< of the dispatch interface
};

/// The type library inside this very module: the one place of every identifier.
///
/// It is loaded at the first use and released by `unloadTypeLibrary`; until then references stay
/// valid.
class TypeLibrary {
 public:
  /// Throws `Error` when the module carries no type library of the expected form.
  TypeLibrary();

  /// The class of that name. Throws `Error` when the library has none.
  [[nodiscard]] ClassInfo classNamed(std::wstring_view name) const;
  [[nodiscard]] GUID identifier() const;
  [[nodiscard]] const ado::ComPtr<ITypeLib>& library() const { return library_; }

 private:
  ado::ComPtr<ITypeLib> library_;
};

/// Full path of this module (the DLL, or the program that it is linked into).
[[nodiscard]] std::wstring modulePath();

}  // namespace azcoll::automation
