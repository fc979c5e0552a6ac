#include "cli/reports/call_report.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/print/field_values.h"
#include "cli/print/json.h"
#include "cli/print/tables.h"
#include "cli/print/terminal_text.h"
#include "views/rows.h"
#include "views/value_text.h"

namespace azcoll::cli {

using views::displayText;
using views::readResults;

namespace {

std::shared_ptr<Recordset> recordsetOf(const CLSCO_OUTPUTAZCOLL& output, const OutputField& field) {
  const auto* member = std::get_if<std::shared_ptr<Recordset> CLSCO_OUTPUTAZCOLL::*>(&field.member);
  return member != nullptr ? output.*(*member) : nullptr;
}

/// The lines of a text, whichever of CR, LF and CR LF parts them, ready for a terminal.
std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' || text[i] == '\n') {
      i += text.compare(i, 2, "\r\n") == 0 ? 1U : 0U;
      lines.emplace_back();
    } else {
      lines.back() += text[i];
    }
  }
  std::transform(lines.begin(), lines.end(), lines.begin(),
                 [](const std::string& line) { return visible(line); });
  return lines;
}

void printValue(std::ostream& out, std::string_view name, const Variant& value) {
  const std::vector<std::string> lines = linesOf(displayText(value));
  if (lines.size() == 1) {
    out << fmt::format("  {}: {}\n", name, lines.front());
    return;
  }
  out << fmt::format("  {}:\n", name);
  for (const std::string& line : lines) {
    out << fmt::format("    {}\n", line);
  }
}

void printChangedInput(std::ostream& out, const CLSCO_INPUTAZCOLL& before,
                       const CLSCO_INPUTAZCOLL& after) {
  const char* heading = "\nInput cambiato:\n";
  for (const InputField& field : kInputFields) {
    if (isObjectField(field.kind())) {
      continue;
    }
    const Variant oldValue = fieldValue(before, field);
    const Variant newValue = fieldValue(after, field);
    if (oldValue != newValue) {
      out << heading
          << fmt::format("  {}: {} -> {}\n", field.name, visible(displayText(oldValue)),
                         visible(displayText(newValue)));
      heading = "";
    }
  }
}

void printOutputFields(std::ostream& out, const CLSCO_OUTPUTAZCOLL& output) {
  const CLSCO_OUTPUTAZCOLL initial;
  const char* heading = "\nOutput:\n";
  for (const OutputField& field : kOutputFields) {
    const Variant value = fieldValue(output, field);
    if (!isObjectField(field.kind()) && value != fieldValue(initial, field)) {
      out << heading;
      printValue(out, field.name, value);
      heading = "";
    }
  }
}

void printRecordsets(std::ostream& out, const CLSCO_OUTPUTAZCOLL& output) {
  for (const OutputField& field : kOutputFields) {
    for (const views::Rows& rows : readResults(recordsetOf(output, field))) {
      const std::size_t count = rows.rows.size();
      out << fmt::format("\n{} ({} {}):\n\n", field.name, count, count == 1 ? "riga" : "righe");
      printTable(out, rows);
    }
  }
}

}  // namespace

void CallReport::print(std::ostream& out) const {
  out << fmt::format("Metodo: {}\n", method.name);
  out << fmt::format("Stato: {}\n", displayText(service.Stato));
  out << fmt::format("Errore: {}\n",
                     service.Errore.isEmpty() ? "nessuno" : visible(displayText(service.Errore)));
  if (method.result != MethodResult::None) {
    out << fmt::format("Risultato: {}\n", visible(displayText(result)));
  }
  printChangedInput(out, before, *service.CPInput);
  printOutputFields(out, *service.CPOutput);
  printRecordsets(out, *service.CPOutput);
}

void CallReport::printJson(std::ostream& out) const {
  Json report;
  report["metodo"] = method.name;
  report["stato"] = toJson(service.Stato);
  report["errore"] = toJson(service.Errore);
  report["risultato"] = toJson(result);
  Json& input = report["input"] = Json::object();
  const CLSCO_INPUTAZCOLL initial;
  for (const InputField& field : kInputFields) {
    const Variant value = fieldValue(*service.CPInput, field);
    if (!isObjectField(field.kind()) && value != fieldValue(initial, field)) {
      input[std::string{field.name}] = toJson(value);
    }
  }
  Json& output = report["output"] = Json::object();
  for (const OutputField& field : kOutputFields) {
    output[std::string{field.name}] =
        field.kind() == FieldKind::Recordset
            ? toJson(readResults(recordsetOf(*service.CPOutput, field)))
            : toJson(fieldValue(*service.CPOutput, field));
  }
  out << dump(report) << '\n';
}

}  // namespace azcoll::cli
