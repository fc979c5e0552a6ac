#include "ado/wide_text.h"

#include <limits>
#include <new>

#include "data/error.h"
#include "data/messages.h"

namespace azcoll::ado {
namespace {

int lengthFor(std::size_t size) {
  if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    throw Error(messages::kOverflow);
  }
  return static_cast<int>(size);
}

}  // namespace

std::wstring wideText(std::string_view text) {
  const int size = lengthFor(text.size());
  if (size == 0) {
    return {};
  }
  const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), needed);
  return wide;
}

std::string narrowText(std::wstring_view text) {
  const int size = lengthFor(text.size());
  if (size == 0) {
    return {};
  }
  const int needed =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(), needed, nullptr, nullptr);
  return narrow;
}

std::string textOf(BSTR text) {
  return text == nullptr ? std::string{} : narrowText({text, SysStringLen(text)});
}

BSTR newBstr(std::string_view text) {
  const std::wstring wide = wideText(text);
  BSTR result = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (result == nullptr) {
    throw std::bad_alloc{};
  }
  return result;
}

}  // namespace azcoll::ado
