// What registering writes into the registry, and that removing leaves nothing of it.

#include <algorithm>
#include <array>
#include <cctype>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#include "ado/wide_text.h"
#include "windows/module.h"

namespace azcoll::test {
namespace {

using Lines = std::vector<std::string>;

/// Keys compare without regard to letter case; so do these lines.
std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) {
    return static_cast<char>(c < 0x80 ? std::tolower(c) : c);
  });
  return text;
}

/// Everything below a key as lines "key|value name|text".
void addLines(Lines& lines, HKEY root, const std::wstring& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
    return;
  }
  lines.push_back(ado::narrowText(path));
  std::array<wchar_t, 512> name{};
  std::array<wchar_t, 2048> text{};
  for (DWORD index = 0;; ++index) {
    DWORD length = static_cast<DWORD>(name.size());
    DWORD bytes = sizeof(text) - sizeof(wchar_t);
    DWORD type = 0;
    text.fill(0);
    if (RegEnumValueW(key, index, name.data(), &length, nullptr, &type,
                      reinterpret_cast<BYTE*>(text.data()), &bytes) != ERROR_SUCCESS) {
      break;
    }
    lines.push_back(ado::narrowText(path) + "|" + ado::narrowText(name.data()) + "|" +
                    (type == REG_SZ ? ado::narrowText(text.data()) : std::to_string(bytes)));
  }
  for (DWORD index = 0;; ++index) {
    DWORD length = static_cast<DWORD>(name.size());
    if (RegEnumKeyExW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    addLines(lines, root, path + L"\\" + name.data());
  }
  RegCloseKey(key);
}

/// All registered classes, in order, without the keys that only hold others.
Lines classesIn(HKEY root) {
  Lines lines;
  addLines(lines, root, L"Software\\Classes");
  std::ranges::transform(lines, lines.begin(), lowerCase);
  std::erase_if(lines, [](const std::string& line) {
    return line == "software\\classes" || line == "software\\classes\\clsid" ||
           line == "software\\classes\\interface" || line == "software\\classes\\typelib";
  });
  std::ranges::sort(lines);
  return lines;
}

Lines newIn(const Lines& after, const Lines& before) {
  Lines lines;
  std::ranges::set_difference(after, before, std::back_inserter(lines));
  return lines;
}

std::size_t countOf(const Lines& lines, const std::string& start, const std::string& end = "") {
  return static_cast<std::size_t>(std::ranges::count_if(lines, [&](const std::string& line) {
    return line.starts_with(lowerCase("Software\\Classes\\" + start)) &&
           line.ends_with(lowerCase(end));
  }));
}

bool has(const Lines& lines, const std::string& line) {
  return std::ranges::find(lines, lowerCase("Software\\Classes\\" + line)) != lines.end();
}

/// Three classes with their ProgIDs, 3 interfaces under 25 earlier identifiers, one type library.
void expectRegistered(const Lines& written) {
  EXPECT_EQ(countOf(written, "CLSID\\", "|ThreadingModel|Apartment"), 3U);
  EXPECT_EQ(countOf(written, "CLSID\\", "\\AZCOLLSRV.dll"), 3U);
  for (const char* progId : {"AZCOLLSRV.CLSCO_AZIENDECOLL", "AZCOLLSRV.CLSCO_INPUTAZCOLL",
                             "AZCOLLSRV.CLSCO_OUTPUTAZCOLL"}) {
    EXPECT_EQ(countOf(written, "CLSID\\", std::string{"\\ProgID||"} + progId), 1U) << progId;
    EXPECT_EQ(countOf(written, progId + std::string{"\\CLSID||{"}), 1U) << progId;
  }
  EXPECT_EQ(countOf(written, "Interface\\", "||_CLSCO_AZIENDECOLL"), 12U);
  EXPECT_EQ(countOf(written, "Interface\\", "||_CLSCO_INPUTAZCOLL"), 12U);
  EXPECT_EQ(countOf(written, "Interface\\", "||_CLSCO_OUTPUTAZCOLL"), 4U);
  EXPECT_EQ(
      countOf(written, "Interface\\", "\\ProxyStubClsid32||{00020424-0000-0000-C000-000000000046}"),
      28U);
  const std::string library = "TypeLib\\{78587500-948A-496B-A647-F65021C5C09F}\\1.0";
  EXPECT_TRUE(has(written, library + "||AZCOLLSRV: aziende collegate"));
  EXPECT_EQ(countOf(written, library + "\\0\\win", "\\AZCOLLSRV.dll"), 1U);
  // Nothing besides; what both word sizes share shows up under the other one's keys too.
  for (const std::string& line : written) {
    const std::string own = line.substr(std::string{"software\\classes\\"}.size());
    EXPECT_TRUE(own.starts_with("clsid\\") || own.starts_with("interface\\") ||
                own.starts_with("typelib\\") || own.starts_with("wow6432node\\typelib\\") ||
                own.starts_with("azcollsrv."))
        << line;
  }
}

using Register = HRESULT STDMETHODCALLTYPE();
using Install = HRESULT STDMETHODCALLTYPE(BOOL, PCWSTR);

TEST(RegistrationOfTheDll, WritesItsClassesForTheMachineAndTakesAllOfThemAway) {
  const LoadedModule module{libraryFolder() + L"AZCOLLSRV.dll"};
  auto* const enter = module.function<Register>("DllRegisterServer");
  auto* const remove = module.function<Register>("DllUnregisterServer");
  const Lines registered = classesIn(HKEY_LOCAL_MACHINE);
  EXPECT_EQ(remove(), S_OK);
  const Lines without = classesIn(HKEY_LOCAL_MACHINE);
  EXPECT_EQ(newIn(without, registered), Lines{});
  expectRegistered(newIn(registered, without));
  EXPECT_EQ(enter(), S_OK);
  EXPECT_EQ(remove(), S_OK);
  EXPECT_EQ(classesIn(HKEY_LOCAL_MACHINE), without);
  EXPECT_EQ(remove(), S_OK) << "removing what is not there is no failure";
  EXPECT_EQ(enter(), S_OK);  // the other tests go on with it
}

TEST(RegistrationOfTheDll, WritesItsClassesForTheUserAloneAndTakesThemAway) {
  const LoadedModule module{libraryFolder() + L"AZCOLLSRV.dll"};
  auto* const install = module.function<Install>("DllInstall");
  const Lines before = classesIn(HKEY_CURRENT_USER);
  EXPECT_EQ(install(TRUE, L"user"), S_OK);
  expectRegistered(newIn(classesIn(HKEY_CURRENT_USER), before));
  EXPECT_EQ(install(FALSE, L"USER"), S_OK);
  EXPECT_EQ(classesIn(HKEY_CURRENT_USER), before);
}

TEST(RegistrationOfTheDll, LeavesTheOtherWordSizesPartOfTheTypeLibrary) {
  const LoadedModule module{libraryFolder() + L"AZCOLLSRV.dll"};
  auto* const install = module.function<Install>("DllInstall");
  const std::wstring other =
      L"Software\\Classes\\TypeLib\\{78587500-948A-496B-A647-F65021C5C09F}\\1.0\\0\\" +
      std::wstring{sizeof(void*) == 8 ? L"win32" : L"win64"};
  constexpr wchar_t kPath[] = L"C:\\altra\\AZCOLLSRV.dll";
  EXPECT_EQ(install(TRUE, L"user"), S_OK);
  ASSERT_EQ(
      RegSetKeyValueW(HKEY_CURRENT_USER, other.c_str(), nullptr, REG_SZ, kPath, sizeof(kPath)),
      ERROR_SUCCESS);
  EXPECT_EQ(install(FALSE, L"user"), S_OK);
  const Lines left = classesIn(HKEY_CURRENT_USER);
  EXPECT_EQ(countOf(left, "TypeLib\\", "||C:\\altra\\AZCOLLSRV.dll"), 1U);
  EXPECT_EQ(countOf(left, "TypeLib\\", "\\AZCOLLSRV.dll"), 1U);
  EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER,
                           L"Software\\Classes\\TypeLib\\{78587500-948A-496B-A647-F65021C5C09F}"),
            ERROR_SUCCESS);
}

}  // namespace
}  // namespace azcoll::test
