#include "odbc/diagnostics.h"

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

#include "odbc/strings.h"

namespace azcoll::odbc {
namespace {

constexpr const char* kSource = "odbc";
constexpr std::size_t kFirstMessageUnits = 1024;
constexpr SQLSMALLINT kMostRecords = 1000;  // a driver that never ends must not keep us

/// Without the marks of driver manager, driver and server: "[A][B][C]text" is "text".
std::string_view withoutMarks(std::string_view message) {
  while (message.starts_with('[')) {
    const std::size_t end = message.find(']');
    if (end == std::string_view::npos || end + 1 == message.size()) {
      break;
    }
    message.remove_prefix(end + 1);
  }
  const std::size_t start = message.find_first_not_of(' ');
  return start == std::string_view::npos ? message : message.substr(start);
}

std::optional<ErrorInfo> record(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number) {
  std::array<char16_t, 6> state{};
  std::u16string message(kFirstMessageUnits, u'\0');
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  const auto read = [&] {
    return SQLGetDiagRecW(kind, handle, number, units(state.data()), &native, units(message),
                          static_cast<SQLSMALLINT>(message.size()), &length);
  };
  SQLRETURN result = read();
  if (succeeded(result) && length >= 0 && static_cast<std::size_t>(length) >= message.size()) {
    message.assign(static_cast<std::size_t>(length) + 1, u'\0');
    result = read();
  }
  if (!succeeded(result)) {
    return std::nullopt;
  }
  // The text ends at its zero, whatever length the driver reports.
  message.resize(std::u16string_view{message}.substr(0, message.find(u'\0')).size());
  ErrorInfo info;
  info.description = withoutMarks(readableOf(message));
  info.sqlState = readableOf(std::u16string_view{state.data(), 5}.substr(
      0, std::u16string_view{state.data(), 5}.find(u'\0')));
  info.nativeNumber = native;
  info.source = kSource;
  return info;
}

}  // namespace

DriverFailure::DriverFailure(std::string_view sqlState, int nativeNumber, std::string description) {
  ErrorInfo info;
  info.nativeNumber = nativeNumber;
  info.description = std::move(description);
  info.sqlState = sqlState;
  info.source = kSource;
  entries_.push_back(std::move(info));
}

std::vector<ErrorInfo> recordsOf(SQLSMALLINT kind, SQLHANDLE handle) {
  std::vector<ErrorInfo> entries;
  for (SQLSMALLINT number = 1; number <= kMostRecords; ++number) {
    std::optional<ErrorInfo> info = record(kind, handle, number);
    if (!info) {
      break;
    }
    entries.push_back(std::move(*info));
  }
  return entries;
}

std::vector<ErrorInfo> diagnosticsOf(SQLSMALLINT kind, SQLHANDLE handle,
                                     std::string_view operation) {
  std::vector<ErrorInfo> entries = recordsOf(kind, handle);
  if (entries.empty()) {
    return DriverFailure{
        "HY000", "Il driver ODBC non dà spiegazioni dell'errore di " + std::string{operation}}
        .entries();
  }
  return entries;
}

void require(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE handle, std::string_view operation) {
  if (!succeeded(result)) {
    throw DriverFailure{diagnosticsOf(kind, handle, operation)};
  }
}

}  // namespace azcoll::odbc
