#include "cli/reports/group_drawing.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <map>
#include <utility>

#include "cli/print/terminal_text.h"
#include "views/group_history.h"
#include "views/query.h"

namespace azcoll::cli {
namespace {

using views::Change;
using views::Group;
using views::GroupHistory;
using views::GroupMember;
using views::GroupView;

constexpr std::string_view kInk = "#1f2933";
constexpr std::string_view kMainLook = "fillcolor=\"#1f4e79\", fontcolor=\"#ffffff\"";
constexpr std::string_view kAskedBorder = "color=\"#d35400\", penwidth=4";

/// The border of a company by the mark that begins the note on it.
std::string_view borderOf(std::string_view note) {
  switch (note.empty() ? ' ' : note.front()) {
    case '+':
      return "color=\"#1e8449\", penwidth=2";
    case '-':
      return "color=\"#b03a2e\", penwidth=2";
    case '~':
      return "color=\"#9a6b00\", penwidth=2";
    default:
      return "penwidth=1";
  }
}

/// The companies of a group that have the same accounting type, or that have left it.
struct Frame {
  std::string subtitle{};
  bool dashed = false;
  std::vector<std::pair<std::int32_t, std::string>> companies{};  ///< each with a note, or ""
};

class Drawing {
 public:
  explicit Drawing(const GroupView& view) : view_{view}, histories_{historiesOf(view)} {}

  std::string text();

 private:
  void year(std::size_t index);
  void group(std::size_t index, const Group& group);
  void frame(const std::string& name, const std::string& title, const Frame& frame,
             const std::string& main);
  void node(const std::string& id, std::int32_t company, std::string_view note,
            std::string_view look = "style=filled");
  [[nodiscard]] std::string noteOn(std::size_t index, const Group& group,
                                   const GroupMember& member) const;
  [[nodiscard]] const GroupHistory& historyOf(std::int32_t main) const;
  [[nodiscard]] std::size_t longestColumn() const;

  const GroupView& view_;
  std::vector<GroupHistory> histories_;
  std::string dot_;
};

std::string Drawing::text() {
  const std::int32_t first = view_.years.front().year;
  const std::int32_t last = view_.years.back().year;
  dot_ = fmt::format(
      "digraph gruppo {{\n"
      "  graph [compound=true, fontname=\"Helvetica\", fontcolor=\"{0}\", fontsize=18, labelloc=t,"
      " nodesep=0.15, ranksep=0.12,\n         label=<Azienda {1}: aziende collegate, {2}>];\n"
      "  node [shape=box, fillcolor=\"#ffffff\", color=\"{0}\", width=2.4, height=0.4,"
      " fontname=\"Helvetica\", fontcolor=\"{0}\", fontsize=11];\n"
      "  edge [color=\"{0}\", arrowsize=0.7];\n",
      kInk, labelText(views::companyText(view_.company, view_.names)),
      first == last ? fmt::format("anno IVA {}", first)
                    : fmt::format("anni IVA {}-{}", first, last));
  for (std::size_t i = 0; i < view_.years.size(); ++i) {
    year(i);
  }
  return dot_ += "}\n";
}

void Drawing::year(std::size_t index) {
  const views::GroupYear& year = view_.years[index];
  const bool framed = view_.years.size() > 1;
  if (framed) {
    dot_ += fmt::format(
        "  subgraph cluster_{0} {{\n    label=<<B>{0}</B>>; style=rounded; color=\"#b8c2cc\";"
        " margin=14;\n",
        year.year);
  }
  for (const Group& one : year.groups) {
    group(index, one);
  }
  for (const GroupHistory& history : histories_) {
    const std::int32_t main = history.front().main;
    if (history.front().change(index) == Change::Left) {
      node(fmt::format("x{}_{}", year.year, main), main, "- il gruppo non c'è più", "style=dashed");
    }
  }
  if (year.groups.empty()) {
    node(fmt::format("n{}", year.year), view_.company, "nessuna azienda collegata");
  }
  dot_ += framed ? "  }\n" : "";
}

void Drawing::group(std::size_t index, const Group& group) {
  const std::string name = fmt::format("{}_{}", view_.years[index].year, group.main);
  std::map<std::string, Frame> frames;
  for (const GroupMember& member : group.members) {
    const std::string type = views::accountingTypeText(member.accountingType);
    const std::string note = noteOn(index, group, member);
    if (member.company == group.main) {
      node("p" + name, group.main,
           fmt::format("{}{}azienda principale, tipo contabile {}", note, note.empty() ? "" : "; ",
                       type),
           fmt::format("style=filled, {}", kMainLook));
      continue;
    }
    const bool stopped = views::stopsPropagation(member.accountingType);
    Frame& frame = frames["Tipo contabile " + type];
    frame.dashed = stopped;
    frame.subtitle = stopped ? "clienti e fornitori non copiati" : "clienti e fornitori copiati";
    frame.companies.emplace_back(member.company, note);
  }
  for (const views::CompanyHistory& history : historyOf(group.main)) {
    if (history.change(index) == Change::Left) {
      Frame& frame = frames["Uscite dal gruppo"];
      frame.dashed = true;
      frame.subtitle = "rispetto all'anno prima";
      frame.companies.emplace_back(history.company, "- esce");
    }
  }
  std::size_t place = 0;
  for (const auto& [title, one] : frames) {
    frame(fmt::format("{}_{}", name, place++), title, one, "p" + name);
  }
}

/// The companies of a frame stand in columns of about the same length: lines that are not drawn put
/// one company under the other.
void Drawing::frame(const std::string& name, const std::string& title, const Frame& frame,
                    const std::string& main) {
  const std::size_t count = frame.companies.size();
  const std::size_t columns = (count + longestColumn() - 1) / longestColumn();
  const std::size_t rows = (count + columns - 1) / columns;
  const std::string_view line = frame.dashed ? "dashed" : "solid";
  const auto id = [&](std::size_t i) {
    return fmt::format("c{}_{}", name, frame.companies[i].first);
  };
  dot_ += fmt::format(
      "    subgraph cluster_{} {{\n      label=<<B>{}: {}</B><BR/>{}>; fontsize=11;"
      " style=\"filled,{}\"; fillcolor=\"{}\"; color=\"{}\";\n",
      name, labelText(title), count == 1 ? "1 azienda" : fmt::format("{} aziende", count),
      frame.subtitle, line, frame.dashed ? "#ececec" : "#e6f0f9", kInk);
  for (std::size_t i = 0; i < count; ++i) {
    node(id(i), frame.companies[i].first, frame.companies[i].second);
    if (i % rows != 0) {
      dot_ += fmt::format("    {} -> {} [style=invis];\n", id(i - 1), id(i));
    }
  }
  dot_ += "    }\n";
  // One line to the frame is drawn; the others only keep all columns below the main company.
  const std::size_t drawn = (columns - 1) / 2 * rows;
  for (std::size_t i = 0; i < count; i += rows) {
    dot_ += fmt::format("    {} -> {} [{}, minlen=3];\n", main, id(i),
                        i == drawn ? fmt::format("lhead=cluster_{}, style={}", name, line)
                                   : std::string{"style=invis"});
  }
}

/// A company with its code and name, and under them a note, if there is one.
void Drawing::node(const std::string& id, std::int32_t company, std::string_view note,
                   std::string_view look) {
  constexpr std::size_t lineLength = 28;
  const std::string code = std::to_string(company);
  std::string label;
  for (const std::string& line : wrapped(views::companyText(company, view_.names), lineLength)) {
    // A blank at the edge of a piece of text is dropped by some viewers of SVG.
    label += label.empty()
                 ? fmt::format("<B>{}</B>&#160;{}", code,
                               labelText(line.substr(std::min(code.size() + 1, line.size()))))
                 : "<BR/>" + labelText(line);
  }
  if (!note.empty()) {
    label += fmt::format("<BR/><FONT POINT-SIZE=\"10\">{}</FONT>", labelText(note));
  }
  dot_ += fmt::format("    {} [label=<{}>, {}, {}];\n", id, label, look,
                      company == view_.company ? kAskedBorder : borderOf(note));
}

/// What became of a company since the year before, and in which other groups it is.
std::string Drawing::noteOn(std::size_t index, const Group& group,
                            const GroupMember& member) const {
  const GroupHistory& companies = historyOf(group.main);
  const views::CompanyHistory& history =
      *std::ranges::find(companies, member.company, &views::CompanyHistory::company);
  const bool newGroup = companies.front().change(index) == Change::Joined;
  std::string note;
  if (history.change(index) == Change::Altered) {
    note = "~ era di tipo " + views::accountingTypeText(*history.types[index - 1]);
  } else if (history.change(index) == Change::Joined && newGroup) {
    // Everybody in a new group is new: its main company says so once.
    note = member.company == group.main ? "+ gruppo nuovo" : "";
  } else if (history.change(index) == Change::Joined) {
    note = "+ entra";
  }
  if (!member.otherGroups.empty()) {
    note += note.empty() ? "" : "; ";
    note += member.sharing.group != group.main
                ? fmt::format("vale il gruppo {}", member.sharing.group)
                : fmt::format("anche nel gruppo {}", fmt::join(member.otherGroups, ", "));
  }
  return note;
}

const GroupHistory& Drawing::historyOf(std::int32_t main) const {
  return *std::ranges::find_if(
      histories_, [main](const GroupHistory& group) { return group.front().main == main; });
}

/// Length of a column that gives the drawing about the shape of a page.
std::size_t Drawing::longestColumn() const {
  constexpr double shape = 1.6 * 0.2;  // width to height of the drawing, height to width of a node
  std::size_t companies = 0;
  for (const views::GroupYear& year : view_.years) {
    for (const Group& group : year.groups) {
      companies += group.members.size() - 1;
    }
  }
  const auto count = static_cast<double>(companies);
  const double columns = std::max(1.0, std::round(std::sqrt(count * shape)));
  return std::max<std::size_t>(1, static_cast<std::size_t>(std::ceil(count / columns)));
}

}  // namespace

std::string groupsAsDot(const GroupView& view) { return Drawing{view}.text(); }

std::string labelText(std::string_view text) {
  constexpr char32_t replacement = 0xFFFD;
  std::u32string characters = decodeUtf8(visible(text));
  std::replace_if(
      characters.begin(), characters.end(), [](char32_t c) { return c == 0xFFFE || c == 0xFFFF; },
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
  const std::u32string characters = decodeUtf8(text);
  std::vector<std::u32string> lines;
  std::size_t at = characters.find_first_not_of(U' ');
  while (at != std::u32string::npos) {
    // A word, or as much of it as a line takes.
    const std::size_t length = std::min(characters.find(U' ', at) - at, width);
    const std::u32string part = characters.substr(at, length);
    if (!lines.empty() && lines.back().size() + 1 + part.size() <= width) {
      lines.back() += U' ' + part;
    } else {
      lines.push_back(part);
    }
    at = characters.find_first_not_of(U' ', at + part.size());
  }
  std::vector<std::string> result;
  std::ranges::transform(lines, std::back_inserter(result), encodeUtf8);
  return result;
}

}  // namespace azcoll::cli
