#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>

#include "automation/type_library.h"

namespace azcoll::automation {

/// The classes of the library, in the order of `kClassNames`.
enum class ClassIndex : std::size_t { Service, Input, Output };

inline constexpr std::array<std::wstring_view, 3> kClassNames{
    L"CLSCO_AZIENDECOLL", L"CLSCO_INPUTAZCOLL", L"CLSCO_OUTPUTAZCOLL"};

/// What the type library says of every class.
class Classes {
 public:
  Classes();
  [[nodiscard]] const TypeLibrary& typeLibrary() const { return library_; }
  [[nodiscard]] const ClassInfo& info(ClassIndex index) const {
    return infos_[static_cast<std::size_t>(index)];
  }

 private:
  TypeLibrary library_;
  std::array<ClassInfo, kClassNames.size()> infos_;
};

/// The classes, read at the first use. Whoever keeps the result keeps them loaded.
[[nodiscard]] std::shared_ptr<const Classes> classes();

/// Counts what keeps this module in memory: objects, factories, locks.
class ModuleUse {
 public:
  ModuleUse();
  ModuleUse(const ModuleUse&) = delete;
  ModuleUse(ModuleUse&&) = delete;
  ModuleUse& operator=(const ModuleUse&) = delete;
  ModuleUse& operator=(ModuleUse&&) = delete;
  ~ModuleUse();

  static void lock(bool on);
  /// Whether nothing is in use; releases the type library then.
  [[nodiscard]] static bool none();
  /// How much is in use, for the tests.
  [[nodiscard]] static long count();
};

}  // namespace azcoll::automation
