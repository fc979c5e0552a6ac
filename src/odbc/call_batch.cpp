#include "odbc/call_batch.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "data/text.h"
#include "text/trimming.h"

namespace azcoll::odbc {
namespace {

constexpr SQLULEN kLongestBytes = 8000;
constexpr SQLULEN kLongestWide = 4000;

std::string lengthOf(SQLULEN size, SQLULEN longest) {
  return size == 0 || size > longest ? std::string{"(MAX)"}
                                     : join("(", static_cast<std::int64_t>(size), ")");
}

/// The type of the variable that an output passes through.
std::string typeOf(const DeclaredParameter& parameter) {
  switch (parameter.sqlType) {
    case SQL_BIT:
      return "BIT";
    case SQL_TINYINT:
      return "TINYINT";
    case SQL_SMALLINT:
      return "SMALLINT";
    case SQL_INTEGER:
      return "INT";
    case SQL_BIGINT:
      return "BIGINT";
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return "FLOAT";
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return join("DECIMAL(", static_cast<std::int64_t>(parameter.size), ", ", parameter.digits,
                  ")");
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
      return "DATETIME2(3)";
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
      return "VARCHAR" + lengthOf(parameter.size, kLongestBytes);
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return "VARBINARY" + lengthOf(parameter.size, kLongestBytes);
    default:
      return "NVARCHAR" + lengthOf(parameter.size, kLongestWide);
  }
}

}  // namespace

bool isRefusedDefault(const DriverFailure& failure) {
  return std::ranges::any_of(failure.entries(),
                             [](const ErrorInfo& entry) { return entry.sqlState == "07S01"; });
}

CallBatch::CallBatch(std::string_view procedure, const std::vector<DeclaredParameter>& declared,
                     const std::vector<Variant>& values) {
  std::string variables;
  std::string arguments;
  std::string answer;
  std::vector<BoundParameter> inputs;
  for (std::size_t index = 0; index < declared.size(); ++index) {
    DeclaredParameter parameter = declared[index];
    const bool output = parameter.direction != ParameterDirection::Input;
    if (values[index].isEmpty() && !output) {
      continue;
    }
    arguments += join(arguments.empty() ? " " : ", ", parameter.name, " = ");
    if (!output) {
      arguments += "?";
      inputs.push_back(BoundParameter::ofDeclared(parameter, values[index]));
      continue;
    }
    const std::string variable = join("@azcoll_", static_cast<std::int64_t>(outputs_.size()));
    variables += join("DECLARE ", variable, " ", typeOf(parameter), " SET ", variable, " = ? ");
    arguments += variable + " OUTPUT";
    answer += join(answer.empty() ? " SELECT " : ", ", variable, " AS ", variable.substr(1));
    outputs_.push_back(index);
    parameter.direction = ParameterDirection::Input;
    bound_.push_back(
        BoundParameter::ofDeclared(parameter, values[index].isEmpty() ? kNull : values[index]));
  }
  std::ranges::move(inputs, std::back_inserter(bound_));
  text_ = join(variables, "EXEC ", trim(procedure), arguments, answer);
}

void CallBatch::takeOutputs(ExecutionResult& execution, std::vector<Variant>& values) const {
  if (outputs_.empty()) {
    return;
  }
  if (execution.results.empty() || execution.results.back().columns.size() != outputs_.size() ||
      execution.results.back().packed->rowCount() != 1) {
    throw DriverFailure{"HY000", "Il server non ha restituito i parametri di uscita"};
  }
  std::vector<Variant> row(outputs_.size());
  execution.results.back().packed->read(0, std::span{row});
  for (std::size_t at = 0; at < outputs_.size(); ++at) {
    values[outputs_[at]] = std::move(row[at]);
  }
  execution.results.pop_back();
}

}  // namespace azcoll::odbc
