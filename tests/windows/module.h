#pragma once

#include <gtest/gtest.h>
#include <string>

#include "ado/com.h"

namespace azcoll::test {

/// Folder of the test program, with its last separator; the library stands two folders above.
inline std::wstring programFolder() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
  return path.substr(0, path.rfind(L'\\') + 1);
}
inline std::wstring libraryFolder() { return programFolder() + L"..\\..\\"; }

/// The library loaded by its file, without the registry.
class LoadedModule {
 public:
  explicit LoadedModule(const std::wstring& path) : module_{LoadLibraryW(path.c_str())} {
    EXPECT_NE(module_, nullptr) << GetLastError();
  }
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule(LoadedModule&&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;
  LoadedModule& operator=(LoadedModule&&) = delete;
  ~LoadedModule() { free(); }

  void free() {
    if (module_ != nullptr) {
      FreeLibrary(module_);
      module_ = nullptr;
    }
  }

  template <typename Function>
  [[nodiscard]] Function* function(const char* name) const {
    const FARPROC address = GetProcAddress(module_, name);
    EXPECT_NE(address, nullptr) << name;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
  }

  [[nodiscard]] HRESULT canUnload() const {
    return function<HRESULT STDMETHODCALLTYPE()>("DllCanUnloadNow")();
  }

 private:
  HMODULE module_;
};

}  // namespace azcoll::test
