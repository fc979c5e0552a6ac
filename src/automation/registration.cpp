#include "automation/registration.h"

#include <array>
#include <olectl.h>
#include <string>
#include <vector>

#include "automation/boundary.h"
#include "automation/module.h"

namespace azcoll::automation {
namespace {

constexpr wchar_t kDescription[] = L"AZCOLLSRV: aziende collegate";
constexpr wchar_t kTypeLibraryMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr wchar_t kVersion[] = L"1.0";
constexpr const wchar_t* kWordSize = sizeof(void*) == 8 ? L"win64" : L"win32";

struct Entry {
  std::wstring key;
  std::wstring name;  ///< empty: the key's own value
  std::wstring value;
};

/// Everything that one registration writes, and the keys that only it owns.
struct Plan {
  std::vector<Entry> entries{};
  std::vector<std::wstring> keys{};
};

std::wstring textOf(REFGUID identifier) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(identifier, text.data(), static_cast<int>(text.size()));
  return text.data();
}

void planClass(Plan& plan, ClassIndex index, const ClassInfo& info, const std::wstring& library) {
  const std::wstring progId = progIdOf(index);
  const std::wstring identifier = textOf(info.identifier);
  const std::wstring key = L"CLSID\\" + identifier;
  plan.keys.insert(plan.keys.end(), {key, progId});
  plan.entries.insert(plan.entries.end(),
                      {{key, L"", progId},
                       {key + L"\\InprocServer32", L"", modulePath()},
                       {key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
                       {key + L"\\ProgID", L"", progId},
                       {key + L"\\Programmable", L"", L""},
                       {key + L"\\TypeLib", L"", library},
                       {key + L"\\Version", L"", kVersion},
                       {progId, L"", progId},
                       {progId + L"\\CLSID", L"", identifier}});
}

void planInterface(Plan& plan, ClassIndex index, REFIID identifier, const std::wstring& library) {
  const std::wstring key = L"Interface\\" + textOf(identifier);
  plan.keys.push_back(key);
  plan.entries.insert(
      plan.entries.end(),
      {{key, L"", L"_" + std::wstring{kClassNames[static_cast<std::size_t>(index)]}},
       {key + L"\\ProxyStubClsid32", L"", kTypeLibraryMarshaler},
       {key + L"\\TypeLib", L"", library},
       {key + L"\\TypeLib", L"Version", kVersion}});
}

std::wstring libraryKey(const std::wstring& library) { return L"TypeLib\\" + library; }

Plan planFor(const Classes& known) {
  const std::wstring library = textOf(known.typeLibrary().identifier());
  Plan plan;
  for (const ClassIndex index : {ClassIndex::Service, ClassIndex::Input, ClassIndex::Output}) {
    const ClassInfo& info = known.info(index);
    planClass(plan, index, info, library);
    planInterface(plan, index, info.interfaceIdentifier, library);
    for (const IID& earlier : info.earlierIdentifiers) {
      planInterface(plan, index, earlier, library);
    }
  }
  const std::wstring version = libraryKey(library) + L"\\" + kVersion;
  const std::wstring path = modulePath();
  plan.entries.insert(plan.entries.end(),
                      {{version, L"", kDescription},
                       {version + L"\\FLAGS", L"", L"0"},
                       {version + L"\\0\\" + kWordSize, L"", path},
                       {version + L"\\HELPDIR", L"", path.substr(0, path.rfind(L'\\'))}});
  return plan;
}

/// The part of the registry that holds the classes.
class ClassesRoot {
 public:
  explicit ClassesRoot(Registration scope)
      : failure_{RegCreateKeyExW(
            scope == Registration::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER,
            L"Software\\Classes", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr)} {}
  ClassesRoot(const ClassesRoot&) = delete;
  ClassesRoot(ClassesRoot&&) = delete;
  ClassesRoot& operator=(const ClassesRoot&) = delete;
  ClassesRoot& operator=(ClassesRoot&&) = delete;
  ~ClassesRoot() {
    if (failure_ == ERROR_SUCCESS) {
      RegCloseKey(key_);
    }
  }

  [[nodiscard]] LSTATUS failure() const { return failure_; }

  [[nodiscard]] LSTATUS write(const Entry& entry) const {
    return RegSetKeyValueW(
        key_, entry.key.c_str(), entry.name.empty() ? nullptr : entry.name.c_str(), REG_SZ,
        entry.value.c_str(), static_cast<DWORD>((entry.value.size() + 1) * sizeof(wchar_t)));
  }
  /// The key with all below it; a key that is not there is not a failure.
  [[nodiscard]] LSTATUS remove(const std::wstring& key) const {
    const LSTATUS code = RegDeleteTreeW(key_, key.c_str());
    return code == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : code;
  }
  [[nodiscard]] bool has(const std::wstring& key) const {
    HKEY found = nullptr;
    if (RegOpenKeyExW(key_, key.c_str(), 0, KEY_READ, &found) != ERROR_SUCCESS) {
      return false;
    }
    RegCloseKey(found);
    return true;
  }

 private:
  HKEY key_ = nullptr;
  LSTATUS failure_;
};

LSTATUS removeAll(const ClassesRoot& root, const Classes& known) {
  LSTATUS first = ERROR_SUCCESS;
  const auto note = [&first](LSTATUS code) { first = first == ERROR_SUCCESS ? code : first; };
  for (const std::wstring& key : planFor(known).keys) {
    note(root.remove(key));
  }
  // The entry of the type library is shared by both word sizes.
  const std::wstring library = libraryKey(textOf(known.typeLibrary().identifier()));
  const std::wstring places = library + L"\\" + kVersion + L"\\0";
  note(root.remove(places + L"\\" + kWordSize));
  if (!root.has(places + L"\\win32") && !root.has(places + L"\\win64")) {
    note(root.remove(library));
  }
  return first;
}

}  // namespace

HRESULT registerServer(Registration scope) noexcept {
  try {
    const std::shared_ptr<const Classes> known = classes();
    const ClassesRoot root{scope};
    LSTATUS code = root.failure();
    if (code != ERROR_SUCCESS) {
      return HRESULT_FROM_WIN32(static_cast<DWORD>(code));
    }
    for (const Entry& entry : planFor(*known).entries) {
      code = root.write(entry);
      if (code != ERROR_SUCCESS) {
        static_cast<void>(removeAll(root, *known));
        return SELFREG_E_CLASS;
      }
    }
    return S_OK;
  } catch (...) {
    return SELFREG_E_TYPELIB;
  }
}

HRESULT unregisterServer(Registration scope) noexcept {
  try {
    const ClassesRoot root{scope};
    if (root.failure() != ERROR_SUCCESS) {
      return HRESULT_FROM_WIN32(static_cast<DWORD>(root.failure()));
    }
    return removeAll(root, *classes()) == ERROR_SUCCESS ? S_OK : SELFREG_E_CLASS;
  } catch (...) {
    return SELFREG_E_TYPELIB;
  }
}

}  // namespace azcoll::automation
