// docs/engine.md shows statements on their way through the engine. The page gives the statements;
// what it says of them is made here and compared with it.

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "gtest/gtest.h"

#include "embedded/catalogue/store.h"
#include "embedded/compile/compiler.h"
#include "embedded/functions/functions.h"
#include "embedded/plan/plan.h"
#include "embedded/plan/plan_cache.h"
#include "embedded/plan/slots.h"
#include "embedded/sqlite/handle.h"
#include "embedded/values/types.h"
#include "engine_fixture.h"
#include "support/scratch_folder.h"
#include "support/sqlite_texts.h"
#include "tsql/shape.h"

namespace azcoll::embedded::test {
namespace {

constexpr std::size_t kPageWidth = 100;

/// A statement that the page wrote on several lines, on one.
std::string unwrapped(std::string text) {
  for (char& c : text) {
    c = c == '\n' ? ' ' : c;
  }
  return text;
}

/// A text on lines of the page's width, broken at blanks and behind commas.
std::string wrapped(std::string_view text) {
  std::string lines;
  while (text.size() > kPageWidth) {
    const std::size_t last = text.find_last_of(" ,", kPageWidth);
    if (last == std::string_view::npos) {
      break;
    }
    const bool blank = text[last] == ' ';
    lines.append(text.substr(0, blank ? last : last + 1)).append("\n");
    text.remove_prefix(last + 1);
  }
  return lines.append(text);
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::string joinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : "\n") + line;
  }
  return text;
}

/// The block of the page whose opening line is "```LANGUAGE NAME".
std::string pageBlock(const std::string& name) {
  static const std::string page = readFile(AZCOLL_SOURCE_DIR "/docs/engine.md");
  std::vector<std::string> block;
  std::size_t found = 0;
  bool inside = false;
  for (const std::string& line : linesOf(page)) {
    if (line.starts_with("```")) {
      inside = line.ends_with(' ' + name);
      found += inside ? 1 : 0;
    } else if (inside) {
      block.push_back(line);
    }
  }
  EXPECT_EQ(found, 1U) << "blocks called " << name << " in docs/engine.md";
  return joinLines(block);
}

void expectOnPage(const std::string& name, const std::string& made) {
  EXPECT_TRUE(pageBlock(name) == made) << "The block " << name << " of docs/engine.md should be:\n"
                                       << made;
}

/// Makes the block anew from its lines that begin with `> `: below each, what `answer` says to it.
template <typename Answer>
void expectAnswersOnPage(const std::string& name, Answer answer) {
  std::string made;
  for (const std::string& line : linesOf(pageBlock(name))) {
    if (line.starts_with("> ")) {
      made += (made.empty() ? "" : "\n\n") + line + '\n' + wrapped(answer(line.substr(2)));
    }
  }
  EXPECT_FALSE(made.empty()) << name;
  expectOnPage(name, made);
}

// ---------------------------------------------------------------- what the page shows

/// The bytes that stand for constants in the key of a shape, as words.
std::string shown(const tsql::Shape& shape) {
  constexpr std::array<std::string_view, 8> kClasses{"",       "{integer}", "{decimal}", "{float}",
                                                     "{text}", "{binary}",  "{null}",    "{value}"};
  std::string text;
  for (const char c : shape.key) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > 0 && byte < kClasses.size()) {
      text += kClasses[byte];
    } else {
      text += c;
    }
  }
  return text;
}

std::string shown(const Type& type) {
  std::string text(typeName(type));
  if (type.isText()) {
    text += '(' + (type.length == kUnlimited ? "max" : std::to_string(type.length)) + ')';
  } else if (type.isDecimal()) {
    text += '(' + std::to_string(type.precision) + ", " + std::to_string(type.scale) + ')';
  }
  return text;
}

std::string shown(const std::vector<Slot>& slots) {
  constexpr std::array<std::string_view, 3> kConversions{"Compare", "Assign", "Cut"};
  std::vector<std::string> lines;
  for (const Slot& slot : slots) {
    EXPECT_EQ(slot.source, SlotSource::Literal);
    std::string line = '?' + std::to_string(lines.size() + 1) + "  constant " +
                       std::to_string(slot.index) + " as " + shown(slot.target) + ", ";
    line += kConversions.at(static_cast<std::size_t>(slot.conversion));
    lines.push_back(line);
  }
  return joinLines(lines);
}

std::string shown(const std::vector<Guard>& guards) {
  constexpr std::array<std::string_view, 4> kKinds{"SameText", "SameType", "SmallInteger", "Scale"};
  std::vector<std::string> lines;
  for (const Guard& guard : guards) {
    std::string line = "constant " + std::to_string(guard.ordinal) + "  ";
    line += kKinds.at(static_cast<std::size_t>(guard.kind));
    lines.push_back(line);
  }
  return joinLines(lines);
}

/// The rooms of the engine at work on a database, one after the other.
class Rooms {
 public:
  explicit Rooms(const std::string& path) : database_(path, SQLITE_OPEN_READWRITE) {
    registerFunctions(database_.get(), runtime_);
    CatalogueStore(database_).load(catalogue_);
  }

  /// The plan of a text, as the engine would keep it: it adds guards only for constants that no
  /// expression holds, and the statements of the page have none.
  [[nodiscard]] std::shared_ptr<Plan> compiled(const std::string& text) {
    auto plan = Compiler(database_, catalogue_, settings_, tempTables_).compileBatch(text, false);
    EXPECT_TRUE(plan->tree->structuralLiterals.empty()) << text;
    return plan;
  }

 private:
  RuntimeState runtime_;
  SqliteDatabase database_;
  Catalogue catalogue_;
  Compiler::Settings settings_;
  std::size_t tempTables_ = 0;
};

const PreparedStatement& preparedOf(const Plan& plan) {
  const Node& node = plan.body.statements.at(0);
  const auto* const query = std::get_if<SelectNode>(&node.node);
  return query != nullptr ? query->prepared : std::get<ChangeNode>(node.node).prepared;
}

class EnginePage : public testing::Test {
 protected:
  void SetUp() override {
    connection_->setConnectionString("Provider=embedded;Create=True;Data Source=" + path_);
    connection_->open("", "", CommandOption::Unspecified);
    connection_->beginTrans();  // one for all of the example: quicker
    for (const char* name : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
      runSchema(*connection_, name);
    }
    connection_->commitTrans();
  }

  azcoll::test::ScratchFolder folder_;
  std::string path_ = folder_.file("esempio.db");
  azcoll::test::SqliteTexts texts_;  // before the connection is opened
  std::shared_ptr<EmbeddedConnection> connection_ = newConnectionWith({});
};

TEST_F(EnginePage, FollowsTheLookUpFromItsTextToItsRows) {
  const std::string text = unwrapped(pageBlock("look-up"));
  tsql::Shape shape;
  tsql::scanShape(text, shape);
  expectOnPage("look-up-shape", wrapped(shown(shape)));
  std::vector<std::string> constants;
  for (const tsql::LiteralToken& constant : shape.literals) {
    constants.push_back(std::to_string(constants.size()) + "  " + std::string(constant.raw));
  }
  expectOnPage("look-up-constants", joinLines(constants));

  Rooms rooms(path_);
  const auto plan = rooms.compiled(text);
  expectOnPage("look-up-slots", shown(preparedOf(*plan).slots));
  expectOnPage("look-up-guards", shown(plan->guards));
  expectOnPage("look-up-sqlite", wrapped(preparedOf(*plan).sql));

  // What a connection runs is what the rooms have made.
  const auto ran = azcoll::test::sqliteStatementOf(*connection_, text);
  EXPECT_EQ(ran.text, preparedOf(*plan).sql);
  expectOnPage("look-up-bound", wrapped(ran.expanded));
  const std::vector<std::string> steps = azcoll::test::queryPlan(ran);
  ASSERT_EQ(steps.size(), 1U);
  EXPECT_TRUE(steps[0].starts_with("SEARCH")) << steps[0];  // bare columns: the key's index serves
  const ExecutionResult result = connection_->run(text);
  ASSERT_EQ(result.results.size(), 1U);
  std::vector<std::string> lines{result.results[0].columns[0].name};
  for (const Variant& value : result.results[0].allValues()) {
    lines.push_back(show(value));
  }
  expectOnPage("look-up-rows", joinLines(lines));
}

TEST_F(EnginePage, SaysWhichTextsShareThePlan) {
  const std::string first = unwrapped(pageBlock("look-up"));
  tsql::Shape shape;
  tsql::scanShape(first, shape);
  Rooms rooms(path_);
  PlanCache cache(1);
  cache.add(shape, rooms.compiled(first));
  const auto fresh = openExample({.planCache = false});
  expectAnswersOnPage("sharing", [&](const std::string& condition) {
    const std::string text = first.substr(0, first.find("WHERE")) + condition;
    // Which plan serves a text never shows in what comes out.
    EXPECT_EQ(rows(*connection_, text), rows(*fresh, text)) << text;
    tsql::Shape other;
    tsql::scanShape(text, other);
    if (!other.cacheable) {
      return "no shape to look up";
    }
    if (cache.find(other)) {
      return "this plan";
    }
    return other.key == shape.key ? "this shape, another plan" : "another shape";
  });
}

TEST_F(EnginePage, ShowsTheMasterInsert) {
  const std::string text = unwrapped(pageBlock("insert"));
  tsql::Shape shape;
  tsql::scanShape(text, shape);
  expectOnPage("insert-shape", wrapped(shown(shape)));
  Rooms rooms(path_);
  const auto plan = rooms.compiled(text);
  std::string types;
  for (const Slot& slot : preparedOf(*plan).slots) {
    EXPECT_EQ(slot.conversion, Conversion::Assign);
    types += (types.empty() ? "" : ", ") + shown(slot.target);
  }
  expectOnPage("insert-types", wrapped(types));
  expectOnPage("insert-sqlite", wrapped(preparedOf(*plan).sql));
  const auto ran = azcoll::test::sqliteStatementOf(*connection_, text);
  EXPECT_EQ(ran.text, preparedOf(*plan).sql);
  EXPECT_TRUE(plan->guards.empty());
}

TEST_F(EnginePage, WordsTheRefusals) {
  expectAnswersOnPage(
      "refusals", [&](const std::string& statement) { return failure(*connection_, statement); });
}

}  // namespace
}  // namespace azcoll::embedded::test
