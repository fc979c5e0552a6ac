#include "cli/reports/group_drawing.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>

#include "cli/print/terminal_text.h"
#include "views/group_history.h"
#include "views/query.h"

namespace azcoll::cli {

using views::accountingTypeText;
using views::Change;
using views::CompanyHistory;
using views::companyText;
using views::Group;
using views::GroupHistory;
using views::GroupMember;
using views::GroupView;
using views::GroupYear;

namespace {

constexpr std::string_view kInk = "#1f2933";
constexpr std::string_view kMainFill = "#1f4e79";
constexpr std::string_view kCopiedFill = "#e6f0f9";
constexpr std::string_view kCopiedHead = "#bcd6ec";
constexpr std::string_view kStoppedFill = "#ececec";
constexpr std::string_view kStoppedHead = "#cfcfcf";
constexpr std::string_view kLeftFill = "#ffffff";
constexpr std::string_view kAsked = "#d35400";
constexpr std::string_view kJoined = "#1e8449";
constexpr std::string_view kLeft = "#b03a2e";
constexpr std::string_view kAltered = "#9a6b00";

constexpr std::size_t kLineLength = 28;
constexpr int kCellWidth = 180;  // of a company, in points

/// One company in a box.
struct DrawnCell {
  std::int32_t company = 0;
  std::string remark;             ///< small text under the name, may be empty
  std::string_view remarkColour;  ///< of the remark and of the border
};

/// The companies of a group that have the same accounting type, or that have left it.
struct Box {
  std::string title;
  std::string subtitle;
  std::string_view headFill;
  std::string_view fill;
  bool dashed = false;
  std::vector<DrawnCell> cells;
  std::size_t columns = 1;
  std::size_t rows = 1;
};

std::size_t rowsOf(const std::vector<Box>& boxes) {
  std::size_t rows = 0;
  for (const Box& box : boxes) {
    rows = std::max(rows, box.rows);
  }
  return rows;
}

class Drawing {
 public:
  explicit Drawing(const GroupView& view)
      : view_{view}, groups_{historiesOf(view)}, longest_{longestColumn()}, height_{tallest()} {}

  std::string text();

 private:
  void header();
  void year(std::size_t index);
  void group(std::size_t index, const Group& group);
  void nothing(std::size_t index);
  void goneGroups(std::size_t index);
  void mainNode(const std::string& id, std::size_t index, const Group& group);
  void boxesNode(const std::string& id, const std::vector<Box>& boxes);
  void rowMarkup(const Box& box, std::size_t row);
  [[nodiscard]] const GroupHistory& historyOf(std::int32_t main) const;
  [[nodiscard]] std::vector<Box> boxesOf(std::size_t index, const Group& group) const;
  [[nodiscard]] Box leftBox(std::size_t index, const Group& group) const;
  [[nodiscard]] static std::string headMarkup(const Box& box, std::size_t place);
  [[nodiscard]] std::string cellMarkup(const DrawnCell& cell, std::string_view fill) const;
  [[nodiscard]] std::string nameMarkup(std::int32_t company, std::string_view lineEnd) const;
  [[nodiscard]] DrawnCell cellOf(std::size_t index, const Group& group,
                                 const GroupMember& member) const;
  [[nodiscard]] std::size_t longestColumn() const;
  [[nodiscard]] int heightOf(const std::vector<Box>& boxes) const;
  [[nodiscard]] int tallest() const;

  const GroupView& view_;
  std::vector<GroupHistory> groups_;
  std::size_t longest_;  ///< companies in a column at most
  int height_;           ///< of the tallest table
  std::string dot_;
};

std::string Drawing::text() {
  header();
  for (std::size_t i = 0; i < view_.years.size(); ++i) {
    year(i);
  }
  return dot_ += "}\n";
}

void Drawing::header() {
  const bool several = view_.years.size() > 1;
  dot_ += "digraph gruppo {\n";
  dot_ += fmt::format(
      "  graph [rankdir=TB, fontname=\"Helvetica\", fontcolor=\"{0}\", fontsize=18, labelloc=t,"
      " splines=line, nodesep=0.4, ranksep=0.6,\n         label=<Azienda {1}: aziende collegate, "
      "{2} {3}>];\n"
      "  node [shape=plain, fontname=\"Helvetica\", fontcolor=\"{0}\", fontsize=11];\n"
      "  edge [color=\"{0}\", arrowsize=0.7];\n",
      kInk, labelText(companyText(view_.company, view_.names)), several ? "anni IVA" : "anno IVA",
      several ? fmt::format("{}-{}", view_.years.front().year, view_.years.back().year)
              : std::to_string(view_.years.front().year));
}

void Drawing::year(std::size_t index) {
  const GroupYear& year = view_.years[index];
  const bool framed = view_.years.size() > 1;
  if (framed) {
    dot_ += fmt::format(
        "  subgraph cluster_{0} {{\n    label=<<B>{0}</B>>; style=rounded; color=\"#b8c2cc\"; "
        "margin=14;\n",
        year.year);
  }
  for (const Group& one : year.groups) {
    group(index, one);
  }
  goneGroups(index);
  if (year.groups.empty()) {
    nothing(index);
  }
  dot_ += framed ? "  }\n" : "";
}

void Drawing::nothing(std::size_t index) {
  dot_ += fmt::format(
      "    n{0} [label=<<TABLE BORDER=\"1\" CELLBORDER=\"0\" CELLPADDING=\"8\" COLOR=\"{1}\">"
      "<TR><TD>{2}<FONT POINT-SIZE=\"10\"><I>nessuna azienda collegata</I></FONT></TD></TR>"
      "</TABLE>>];\n",
      view_.years[index].year, kInk, nameMarkup(view_.company, "<BR/>"));
}

/// A small note for every group that was there the year before and has no links any more.
void Drawing::goneGroups(std::size_t index) {
  for (const GroupHistory& group : groups_) {
    if (group.front().change(index) == Change::Left) {
      dot_ += fmt::format(
          "    x{0}_{1} [label=<<TABLE BORDER=\"1\" STYLE=\"dashed\" CELLBORDER=\"0\" "
          "CELLPADDING=\"8\" COLOR=\"{2}\"><TR><TD><FONT COLOR=\"{2}\">- Gruppo dell'azienda<BR/>"
          "{3}<B>non c'è più</B></FONT></TD></TR></TABLE>>];\n",
          view_.years[index].year, group.front().main, kLeft,
          nameMarkup(group.front().main, "<BR/>"));
    }
  }
}

std::string Drawing::nameMarkup(std::int32_t company, std::string_view lineEnd) const {
  const std::string code = std::to_string(company);
  std::string markup;
  for (const std::string& line : wrapped(companyText(company, view_.names), kLineLength)) {
    // A blank at the edge of a piece of text is dropped by some viewers of SVG.
    markup += markup.empty()
                  ? fmt::format("<B>{}</B>&#160;{}", code,
                                labelText(line.substr(std::min(code.size() + 1, line.size()))))
                  : labelText(line);
    markup += lineEnd;
  }
  return markup;
}

void Drawing::mainNode(const std::string& id, std::size_t index, const Group& group) {
  const GroupMember& main = group.members.front();
  const DrawnCell cell = cellOf(index, group, main);
  const bool asked = group.main == view_.company;
  dot_ += fmt::format(
      "    {} [label=<<TABLE BORDER=\"{}\" COLOR=\"{}\" CELLBORDER=\"0\" CELLSPACING=\"0\" "
      "CELLPADDING=\"9\"><TR><TD BGCOLOR=\"{}\"><FONT COLOR=\"#ffffff\">{}"
      "<FONT POINT-SIZE=\"10\">azienda principale, tipo contabile {}{}</FONT></FONT></TD></TR>"
      "</TABLE>>];\n",
      id, asked ? 4 : 0, kAsked, kMainFill, nameMarkup(group.main, "<BR/>"),
      labelText(accountingTypeText(main.accountingType)),
      cell.remark.empty() ? "" : "<BR/><B>" + labelText(cell.remark) + "</B>");
}

const GroupHistory& Drawing::historyOf(std::int32_t main) const {
  return *std::find_if(groups_.begin(), groups_.end(),
                       [main](const GroupHistory& group) { return group.front().main == main; });
}

DrawnCell Drawing::cellOf(std::size_t index, const Group& group, const GroupMember& member) const {
  DrawnCell cell{member.company, {}, kInk};
  const GroupHistory& histories = historyOf(group.main);
  const auto history =
      std::find_if(histories.begin(), histories.end(),
                   [&](const CompanyHistory& one) { return one.company == member.company; });
  const bool newGroup = histories.front().change(index) == Change::Joined;
  switch (history->change(index)) {
    case Change::Joined:
      // In a new group everybody is new: it says so once.
      if (!newGroup || member.company == group.main) {
        cell.remark = newGroup ? "+ gruppo nuovo" : "+ entra";
        cell.remarkColour = kJoined;
      }
      break;
    case Change::Altered:
      cell.remark = fmt::format("~ era di tipo {}", accountingTypeText(*history->types[index - 1]));
      cell.remarkColour = kAltered;
      break;
    case Change::Left:
    case Change::None:
      break;
  }
  if (!member.otherGroups.empty()) {
    const bool elsewhere = member.sharing.group != group.main;
    cell.remark += fmt::format("{}{} {}", cell.remark.empty() ? "" : "; ",
                               elsewhere ? "vale il gruppo" : "anche nel gruppo",
                               elsewhere ? std::to_string(member.sharing.group)
                                         : fmt::format("{}", fmt::join(member.otherGroups, ", ")));
  }
  return cell;
}

std::vector<Box> Drawing::boxesOf(std::size_t index, const Group& group) const {
  std::map<std::string, Box> byType;
  for (const GroupMember& member : group.members) {
    if (member.company == group.main) {
      continue;
    }
    const std::string type = accountingTypeText(member.accountingType);
    Box& box = byType[type];
    if (box.cells.empty()) {
      const bool stopped = views::stopsPropagation(member.accountingType);
      box.title = fmt::format("Tipo contabile {}", type);
      box.subtitle = stopped ? "clienti e fornitori non copiati" : "clienti e fornitori copiati";
      box.headFill = stopped ? kStoppedHead : kCopiedHead;
      box.fill = stopped ? kStoppedFill : kCopiedFill;
      box.dashed = stopped;
    }
    box.cells.push_back(cellOf(index, group, member));
  }
  std::vector<Box> boxes;
  boxes.reserve(byType.size() + 1);
  for (auto& [type, box] : byType) {
    boxes.push_back(std::move(box));
  }
  if (Box left = leftBox(index, group); !left.cells.empty()) {
    boxes.push_back(std::move(left));
  }
  for (Box& box : boxes) {
    box.columns = (box.cells.size() + longest_ - 1) / longest_;
    // The columns of a box are of the same length, but for the last one.
    box.rows = (box.cells.size() + box.columns - 1) / box.columns;
  }
  return boxes;
}

Box Drawing::leftBox(std::size_t index, const Group& group) const {
  Box box{"Uscite dal gruppo", "rispetto all'anno prima", kLeftFill, kLeftFill, true, {}};
  for (const CompanyHistory& history : historyOf(group.main)) {
    if (history.change(index) == Change::Left) {
      box.cells.push_back({history.company, "- esce", kLeft});
    }
  }
  return box;
}

/// Length of a column that gives the drawing about the shape of a page.
std::size_t Drawing::longestColumn() const {
  constexpr double shape = 1.6;      // width to height of the drawing
  constexpr double cellShape = 0.2;  // height to width of a company
  std::size_t cells = 0;
  for (const GroupYear& year : view_.years) {
    for (const Group& group : year.groups) {
      cells += group.members.size() - 1;
    }
  }
  const auto count = static_cast<double>(cells);
  const double columns = std::max(1.0, std::round(std::sqrt(count * cellShape * shape)));
  return std::max<std::size_t>(1, static_cast<std::size_t>(std::ceil(count / columns)));
}

/// Height of a group's table in points, about: what stands in it decides how tall a row becomes.
int Drawing::heightOf(const std::vector<Box>& boxes) const {
  constexpr int lineHeight = 13;
  constexpr int around = 14;
  int height = 0;
  for (std::size_t row = 0; row < rowsOf(boxes); ++row) {
    int lines = 0;
    for (const Box& box : boxes) {
      for (std::size_t place = row; row < box.rows && place < box.cells.size(); place += box.rows) {
        const DrawnCell& cell = box.cells[place];
        const auto name = wrapped(companyText(cell.company, view_.names), kLineLength).size();
        lines = std::max(lines, static_cast<int>(name) + (cell.remark.empty() ? 0 : 1));
      }
    }
    height += around + lines * lineHeight;
  }
  return height;
}

int Drawing::tallest() const {
  int height = 0;
  for (std::size_t i = 0; i < view_.years.size(); ++i) {
    for (const Group& group : view_.years[i].groups) {
      height = std::max(height, heightOf(boxesOf(i, group)));
    }
  }
  return height;
}

std::string Drawing::cellMarkup(const DrawnCell& cell, std::string_view fill) const {
  const bool asked = cell.company == view_.company;
  const bool marked = cell.remarkColour != kInk;
  std::string remark;
  if (!cell.remark.empty()) {
    remark =
        fmt::format("<FONT POINT-SIZE=\"10\" COLOR=\"{}\"><B>{}</B></FONT><BR ALIGN=\"LEFT\"/>",
                    cell.remarkColour, labelText(cell.remark));
  }
  return fmt::format(
      "<TD WIDTH=\"{}\" BGCOLOR=\"{}\" BORDER=\"{}\" COLOR=\"{}\" ALIGN=\"LEFT\" "
      "BALIGN=\"LEFT\">{}{}</TD>",
      kCellWidth, fill, asked ? 4 : (marked ? 2 : 1), asked ? kAsked : cell.remarkColour,
      nameMarkup(cell.company, "<BR ALIGN=\"LEFT\"/>"), remark);
}

std::string Drawing::headMarkup(const Box& box, std::size_t place) {
  const std::size_t count = box.cells.size();
  return fmt::format(
      "<TD PORT=\"b{}\" COLSPAN=\"{}\" BGCOLOR=\"{}\" BORDER=\"1\" STYLE=\"{}\"><B>{}: {}</B><BR/>"
      "{}</TD>",
      place, box.columns, box.headFill, box.dashed ? "dashed" : "solid", labelText(box.title),
      count == 1 ? "1 azienda" : fmt::format("{} aziende", count), labelText(box.subtitle));
}

/// All boxes of a group in one table, beside each other: their rows stand at the same height.
void Drawing::boxesNode(const std::string& id, const std::vector<Box>& boxes) {
  constexpr std::string_view gap = "<TD WIDTH=\"10\"></TD>";
  dot_ += fmt::format(
      "    {} [label=<<TABLE BORDER=\"0\" COLOR=\"{}\" CELLBORDER=\"0\" CELLSPACING=\"4\" "
      "CELLPADDING=\"5\">\n      <TR>",
      id, kInk);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    dot_ += i == 0 ? std::string_view{} : gap;
    dot_ += headMarkup(boxes[i], i);
  }
  dot_ += "</TR>\n";
  for (std::size_t row = 0; row < rowsOf(boxes); ++row) {
    dot_ += "      <TR>";
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      dot_ += i == 0 ? std::string_view{} : gap;
      rowMarkup(boxes[i], row);
    }
    dot_ += "</TR>\n";
  }
  // `dot` centres what stands beside each other; with the same height the groups begin together.
  const int missing = height_ - heightOf(boxes);
  if (missing > 0) {
    dot_ += fmt::format("      <TR><TD HEIGHT=\"{}\"></TD></TR>\n", missing);
  }
  dot_ += "    </TABLE>>];\n";
}

/// The cells of one row of a box, read down the columns.
void Drawing::rowMarkup(const Box& box, std::size_t row) {
  for (std::size_t column = 0; column < box.columns; ++column) {
    const std::size_t place = column * box.rows + row;
    dot_ += row < box.rows && place < box.cells.size() ? cellMarkup(box.cells[place], box.fill)
                                                       : "<TD></TD>";
  }
}

void Drawing::group(std::size_t index, const Group& group) {
  const std::string main = fmt::format("p{}_{}", view_.years[index].year, group.main);
  const std::string linked = fmt::format("c{}_{}", view_.years[index].year, group.main);
  mainNode(main, index, group);
  const std::vector<Box> boxes = boxesOf(index, group);
  boxesNode(linked, boxes);
  // The line that is not drawn puts the main company above the middle.
  dot_ += fmt::format("    {} -> {} [style=invis, weight=100];\n", main, linked);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    dot_ += fmt::format("    {} -> {}:b{}:n [style={}, weight=0];\n", main, linked, i,
                        boxes[i].dashed ? "dashed" : "solid");
  }
}

bool allowedInXml(char32_t c) { return c != 0xFFFE && c != 0xFFFF; }

}  // namespace

std::string groupsAsDot(const GroupView& view) { return Drawing{view}.text(); }

std::string labelText(std::string_view text) {
  constexpr char32_t replacement = 0xFFFD;
  std::u32string characters = decodeUtf8(visible(text));
  std::replace_if(
      characters.begin(), characters.end(), [](char32_t c) { return !allowedInXml(c); },
      replacement);
  std::string markup;
  for (const char c : encodeUtf8(characters)) {
    switch (c) {
      case '&':
        markup += "&amp;";
        break;
      case '<':
        markup += "&lt;";
        break;
      case '>':
        markup += "&gt;";
        break;
      case '"':
        markup += "&quot;";
        break;
      default:
        markup += c;
    }
  }
  return markup;
}

std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
  std::vector<std::u32string> lines(1);
  std::u32string characters = decodeUtf8(text);
  characters += U' ';
  std::u32string word;
  for (const char32_t c : characters) {
    if (c != U' ') {
      word += c;
      continue;
    }
    if (!lines.back().empty() && lines.back().size() + 1 + word.size() > width) {
      lines.emplace_back();
    }
    if (!lines.back().empty() && !word.empty()) {
      lines.back() += U' ';
    }
    for (; word.size() > width; word.erase(0, width)) {
      lines.back() += word.substr(0, width);
      lines.emplace_back();
    }
    lines.back() += word;
    word.clear();
  }
  std::vector<std::string> result;
  for (const std::u32string& line : lines) {
    if (!line.empty()) {
      result.push_back(encodeUtf8(line));
    }
  }
  return result;
}

}  // namespace azcoll::cli
