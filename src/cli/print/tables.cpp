#include "cli/print/tables.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/print/terminal_text.h"
#include "data/variant.h"
#include "text/quoting.h"
#include "text/trimming.h"
#include "views/value_text.h"

namespace azcoll::cli {

using views::displayText;
using views::exchangeText;
using views::Rows;

namespace {

bool isNumeric(const Variant& value) {
  return value.kind() >= Variant::Kind::Int16 && value.kind() <= Variant::Kind::Decimal;
}

// A column of numbers: at least one number, and nothing else but missing values.
bool isNumericColumn(const Rows& rows, std::size_t column) {
  bool numbers = false;
  for (const std::vector<Variant>& row : rows.rows) {
    const Variant& value = row[column];
    if (isNumeric(value)) {
      numbers = true;
    } else if (!value.isNull() && !value.isEmpty()) {
      return false;
    }
  }
  return numbers;
}

struct Cell {
  std::string text;
  std::size_t width = 0;
};

Cell cellOf(std::string_view text) {
  std::string shown = visible(text);
  const std::size_t width = columnWidth(shown);
  return {std::move(shown), width};
}

struct Layout {
  std::vector<std::size_t> widths;
  std::vector<bool> right;
};

void printLine(std::ostream& out, const std::vector<Cell>& cells, const Layout& layout) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string padding(layout.widths[i] - cells[i].width, ' ');
    line += i == 0 ? "" : "  ";
    line += layout.right[i] ? padding + cells[i].text : cells[i].text + padding;
  }
  out << trimEnd(line) << '\n';
}

std::string csvText(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
    return std::string{text};
  }
  return quoted(text, '"');
}

std::string csvField(const std::string& name) { return csvText(name); }

std::string csvField(const Variant& value) {
  const std::string* text = value.get<std::string>();
  if (text != nullptr && text->empty()) {
    return "\"\"";
  }
  return csvText(exchangeText(value));
}

template <typename Items>
void printCsvLine(std::ostream& out, const Items& items) {
  std::string line;
  for (const auto& item : items) {
    line += csvField(item);
    line += ',';
  }
  if (!line.empty()) {
    line.pop_back();
  }
  out << line << "\r\n";
}

}  // namespace

void printTable(std::ostream& out, const Rows& rows) {
  const std::size_t columns = rows.columns.size();
  Layout layout;
  std::vector<Cell> header;
  for (std::size_t i = 0; i < columns; ++i) {
    header.push_back(cellOf(rows.columns[i]));
    layout.widths.push_back(header.back().width);
    layout.right.push_back(isNumericColumn(rows, i));
  }
  std::vector<std::vector<Cell>> lines;
  lines.reserve(rows.rows.size());
  for (const std::vector<Variant>& row : rows.rows) {
    std::vector<Cell>& line = lines.emplace_back();
    for (std::size_t i = 0; i < columns; ++i) {
      line.push_back(cellOf(displayText(row[i])));
      layout.widths[i] = std::max(layout.widths[i], line.back().width);
    }
  }
  std::vector<Cell> rule;
  for (const std::size_t width : layout.widths) {
    rule.push_back({std::string(width, '-'), width});
  }
  printLine(out, header, layout);
  printLine(out, rule, layout);
  for (const std::vector<Cell>& line : lines) {
    printLine(out, line, layout);
  }
}

void printCsv(std::ostream& out, const Rows& rows) {
  printCsvLine(out, rows.columns);
  for (const std::vector<Variant>& row : rows.rows) {
    printCsvLine(out, row);
  }
}

}  // namespace azcoll::cli
