#include "automation/boundary.h"

#include <new>

#include "ado/wide_text.h"
#include "data/error.h"

namespace azcoll::automation {

std::wstring progIdOf(ClassIndex index) {
  return L"AZCOLLSRV." + std::wstring{kClassNames[static_cast<std::size_t>(index)]};
}

HRESULT reportFailure(const Origin& origin, HRESULT code, std::string_view description) noexcept {
  try {
    ado::ComPtr<ICreateErrorInfo> writer;
    if (FAILED(CreateErrorInfo(writer.receive()))) {
      return code;
    }
    writer->SetGUID(origin.interfaceIdentifier);
    writer->SetSource(progIdOf(origin.index).data());
    writer->SetDescription(ado::wideText(description).data());
    const auto error = writer.as<IErrorInfo>(IID_IErrorInfo);
    if (error) {
      SetErrorInfo(0, error.get());
    }
  } catch (...) {
    return code;  // the caller still learns the code
  }
  return code;
}

HRESULT reportException(const Origin& origin) noexcept {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const Error& error) {
    return reportFailure(origin, DISP_E_TYPEMISMATCH, error.description());
  } catch (const std::exception& error) {
    return reportFailure(origin, E_FAIL, error.what());
  } catch (...) {
    return reportFailure(origin, E_FAIL, "Errore interno");
  }
}

}  // namespace azcoll::automation
