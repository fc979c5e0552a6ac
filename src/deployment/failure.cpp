#include "deployment/failure.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <string_view>

#include "tsql/ast.h"
#include "tsql/parser.h"
#include "tsql/syntax_error.h"

namespace azcoll::deployment {
namespace {

std::uint32_t linesBefore(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  return static_cast<std::uint32_t>(std::count(before.begin(), before.end(), '\n'));
}

/// The place of a syntax error when the batch has one with the number that was reported.
std::optional<tsql::Position> syntaxErrorPosition(const std::string& text, int number) {
  try {
    static_cast<void>(tsql::parse(text));
  } catch (const tsql::SyntaxError& error) {
    if (error.number() == number) {
      return error.position();
    }
  }
  return std::nullopt;
}

}  // namespace

std::uint32_t failureLine(const tsql::ScriptBatch& batch, const Error& error) {
  const ErrorInfo& info = error.info();
  if (const auto position = syntaxErrorPosition(batch.text, info.nativeNumber)) {
    return batch.firstLine + position->line - 1;
  }
  const std::size_t statement =
      info.statement.empty() ? std::string::npos : batch.text.find(info.statement);
  const std::size_t start =
      batch.text.find_first_not_of(" \t\r\n", statement == std::string::npos ? 0 : statement);
  return batch.firstLine + (start == std::string::npos ? 0U : linesBefore(batch.text, start));
}

std::string describeFailure(const ErrorInfo& info, std::optional<std::uint32_t> line) {
  std::string text = "Errore";
  if (info.nativeNumber != 0) {
    text += fmt::format(" {}", info.nativeNumber);
  }
  if (!info.sqlState.empty()) {
    text += fmt::format(" ({})", info.sqlState);
  }
  if (line) {
    text += fmt::format(", riga {}", *line);
  }
  return fmt::format("{}: {}", text, info.description);
}

std::string describeFailure(const Error& error, std::optional<std::uint32_t> line) {
  return describeFailure(error.info(), line);
}

}  // namespace azcoll::deployment
