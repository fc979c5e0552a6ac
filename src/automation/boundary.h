#pragma once

#include <string>
#include <string_view>

#include "ado/com.h"
#include "automation/module.h"

namespace azcoll::automation {

/// Who reports a failure to a caller.
struct Origin {
  ClassIndex index;
  IID interfaceIdentifier;
};

/// The end of every exception: called inside a catch block, leaves the error object that the caller
/// reads and gives the code to return.
HRESULT reportException(const Origin& origin) noexcept;

/// Leaves an error object with this text and gives `code` back.
HRESULT reportFailure(const Origin& origin, HRESULT code, std::string_view description) noexcept;

/// The source that callers see: the class's ProgID.
[[nodiscard]] std::wstring progIdOf(ClassIndex index);

/// Runs the work of a member called from outside.
template <typename Work>
HRESULT atBoundary(const Origin& origin, const Work& work) noexcept {
  try {
    work();
    return S_OK;
  } catch (...) {
    return reportException(origin);
  }
}

}  // namespace azcoll::automation
