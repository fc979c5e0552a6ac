#include "tsql/shape.h"

#include "tsql/lexer.h"
#include "tsql/script.h"
#include "unit/tsql/support.h"

namespace azcoll::tsql::test {
namespace {

Shape shapeOf(std::string_view text) {
  Shape shape;
  scanShape(text, shape);
  return shape;
}

std::string keyOf(std::string_view text) {
  std::string key = shapeOf(text).key;
  for (char& c : key) {
    if (c > 0 && c < 8) {
      c = "_idftbnv"[static_cast<std::size_t>(c)];
    }
  }
  return key;
}

TEST(Shape, PutsAClassInThePlaceOfEveryConstant) {
  EXPECT_EQ(keyOf("A = 1 AND B = 1.5 OR C=.5"), "A = i AND B = d OR C=d");
  EXPECT_EQ(keyOf("0AND 1E+5x 0x1F N'a''b' 'c'"), "iAND fx b t t");
  EXPECT_EQ(keyOf("[1]]2] \"3\" a1 @b2 @@c3 #d4 $5 à6"), "[1]]2] \"3\" a1 @b2 @@c3 #d4 $5 à6");
  EXPECT_EQ(keyOf("NULL IS NULL"), "NULL IS NULL");
  EXPECT_EQ(keyOf("CAST(x AS VARCHAR(10)) AS 'y'"), "CAST(x AS VARCHAR(i)) AS t");
  EXPECT_EQ(keyOf(""), "");
}

TEST(Shape, HasOneClassForWhatStandsAloneAsAValueOfARow) {
  const std::string key = "INSERT INTO t (a, b, c) VALUES (v, v , v)";
  EXPECT_EQ(keyOf("INSERT INTO t (a, b, c) VALUES (1, NULL , 'x')"), key);
  EXPECT_EQ(keyOf("INSERT INTO t (a, b, c) VALUES (Null, 1.5 , 0x1F)"), key);
  EXPECT_EQ(keyOf("VALUES(1,N'a'),( null\n,2)"), "VALUES(v,v),( v\n,v)");
}

TEST(Shape, KeepsTheClassOfWhatIsOnlyPartOfAValue) {
  EXPECT_EQ(keyOf("VALUES (1 + 2, 'a'+b, -3, NULL + 1, f(4, NULL), (5), NULLIF(1, 2))"),
            "VALUES (i + i, t+b, -i, n + i, f(i, NULL), (i), NULLIF(i, i))");
  EXPECT_EQ(keyOf("VALUES (CASE WHEN a IS NULL THEN 1 END, 2)"),
            "VALUES (CASE WHEN a IS NULL THEN i END, v)");
}

TEST(Shape, EndsTheRowsBehindTheirParenthesis) {
  EXPECT_EQ(keyOf("VALUES (1); SELECT (NULL), NULL"), "VALUES (v); SELECT (NULL), NULL");
  EXPECT_EQ(keyOf("VALUES (1), a (NULL)"), "VALUES (v), a (NULL)");
  EXPECT_EQ(keyOf("[VALUES] (NULL) DEFAULT VALUES SELECT (NULL)"),
            "[VALUES] (NULL) DEFAULT VALUES SELECT (NULL)");
  EXPECT_EQ(keyOf(")) VALUES (NULL)"), ")) VALUES (v)");
}

TEST(Shape, HandsOutTheConstants) {
  const Shape shape = shapeOf("SELECT N'it''s', 'x', 12, 1.5, 1E2, 0x1F INSERT t VALUES (Null)");
  const std::vector<std::pair<LiteralKind, std::string_view>> expected = {
      {LiteralKind::NationalText, "it''s"},
      {LiteralKind::Text, "x"},
      {LiteralKind::Integer, "12"},
      {LiteralKind::Decimal, "1.5"},
      {LiteralKind::Float, "1E2"},
      {LiteralKind::Binary, "0x1F"},
      {LiteralKind::Null, ""}};
  ASSERT_EQ(shape.literals.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(shape.literals[i].kind, expected[i].first) << i;
    EXPECT_EQ(shape.literals[i].raw, expected[i].second) << i;
    EXPECT_EQ(shape.literals[i].hasDoubledQuotes, i == 0) << i;
  }
}

TEST(Shape, IsNotCacheableWithCommentsOpenQuotesOrMarksOfClasses) {
  for (const char* text :
       {"SELECT 1 -- a", "SELECT /* a */ 1", "SELECT 'a", "SELECT N'a", "SELECT [a", "SELECT \"a",
        "SELECT /* a", "SELECT \x01", "SELECT [\x07]", "SELECT 'a\xFF'", "SELECT \xC3"}) {
    EXPECT_FALSE(shapeOf(text).cacheable) << text;
  }
  EXPECT_FALSE(shapeOf(std::string_view("SELECT \0", 8)).cacheable);
  for (const char* text : {"SELECT 1 - -1 / 2", "SELECT '-- /* \x01'", "SELECT [--]", ""}) {
    EXPECT_TRUE(shapeOf(text).cacheable) << text;
  }
}

TEST(Shape, ReusesItsBuffers) {
  Shape shape;
  scanShape("SELECT 'a long statement' -- with a comment", shape);
  scanShape("SELECT 1", shape);
  EXPECT_EQ(shape.key, std::string("SELECT \x01"));
  EXPECT_EQ(shape.literals.size(), 1U);
  EXPECT_TRUE(shape.cacheable);
}

/// The constants that the lexer numbers, which are those of the tree.
std::vector<std::pair<LiteralKind, std::string>> numberedConstants(std::string_view text) {
  std::vector<std::pair<LiteralKind, std::string>> constants;
  Lexer lexer(text);
  for (Token token = lexer.next(); token.kind != TokenKind::End; token = lexer.next()) {
    if (token.ordinal == kNotLifted || token.kind == TokenKind::Marker) {
      continue;
    }
    EXPECT_EQ(token.ordinal, constants.size());
    switch (token.kind) {
      case TokenKind::Reserved:
        constants.emplace_back(LiteralKind::Null, "");
        break;
      case TokenKind::Text:
        constants.emplace_back(LiteralKind::Text, token.value());
        break;
      case TokenKind::NationalText:
        constants.emplace_back(LiteralKind::NationalText, token.value());
        break;
      case TokenKind::Integer:
        constants.emplace_back(LiteralKind::Integer, token.value());
        break;
      case TokenKind::Decimal:
        constants.emplace_back(LiteralKind::Decimal, token.value());
        break;
      case TokenKind::Float:
        constants.emplace_back(LiteralKind::Float, token.value());
        break;
      default:
        constants.emplace_back(LiteralKind::Binary, token.value());
        break;
    }
  }
  return constants;
}

std::string undoubled(const LiteralToken& literal) {
  std::string text(literal.raw);
  for (std::size_t at = text.find("''"); at != std::string::npos; at = text.find("''", at + 1)) {
    text.erase(at, 1);
  }
  return text;
}

TEST(Shape, NumbersTheConstantsAsTheParserDoes) {
  std::vector<std::string> texts;
  for (const Fixture& fixture : readFixtures()) {
    texts.push_back(fixture.statement);
    texts.push_back(fixture.canonical);
  }
  for (const char* name : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
    for (ScriptBatch& batch :
         splitScript(readFile(std::string(AZCOLL_SOURCE_DIR "/schema/") + name))) {
      texts.push_back(std::move(batch.text));
    }
  }
  for (const std::string& text : texts) {
    const Shape shape = shapeOf(text);
    const auto constants = numberedConstants(text);
    ASSERT_EQ(parse(text).literalCount, constants.size()) << text;
    ASSERT_EQ(shape.literals.size(), constants.size()) << text;
    for (std::size_t i = 0; i < constants.size(); ++i) {
      EXPECT_EQ(shape.literals[i].kind, constants[i].first) << text;
      EXPECT_EQ(undoubled(shape.literals[i]), constants[i].second) << text;
    }
  }
}

/// A text with every constant replaced by another one of the same class.
std::string withOtherConstants(const Shape& shape, std::string_view text) {
  std::string other;
  std::size_t from = 0;
  for (const LiteralToken& literal : shape.literals) {
    if (literal.kind == LiteralKind::Null) {
      continue;  // it has no place of its own in `raw`
    }
    const auto at = static_cast<std::size_t>(literal.raw.data() - text.data());
    other += text.substr(from, at - from);
    switch (literal.kind) {
      case LiteralKind::Integer:
        other += "7";
        break;
      case LiteralKind::Decimal:
        other += "7.25";
        break;
      case LiteralKind::Float:
        other += "7E1";
        break;
      case LiteralKind::Binary:
        other += "0xAB";
        break;
      default:
        other += "z''z";
        break;
    }
    from = at + literal.raw.size();
  }
  return other + std::string(text.substr(from));
}

TEST(Shape, IsTheSameForTheSameTextWithOtherConstants) {
  for (const Fixture& fixture : readFixtures()) {
    const Shape shape = shapeOf(fixture.canonical);
    const std::string other = withOtherConstants(shape, fixture.canonical);
    EXPECT_EQ(shapeOf(other).key, shape.key) << other;
    EXPECT_EQ(parse(other).literalCount, shape.literals.size()) << other;
  }
}

TEST(Literals, HaveTheOrdinalOfTheirConstant) {
  const Batch batch =
      parse("SELECT 1 AS 'x', CAST(NULL AS CHAR(2)), 'y' INSERT t VALUES (NULL, 3)");
  EXPECT_EQ(batch.literalCount, 6U);
  EXPECT_EQ(batch.structuralLiterals, (std::vector<std::size_t>{1, 2}));
  const auto& items =
      std::get<QuerySpecification>(std::get<SelectStatement>(batch.statements[0]->node).query->body)
          .items;
  EXPECT_EQ(std::get<Literal>(items[0].expression->node).ordinal, 0U);
  const auto& cast = std::get<Cast>(items[1].expression->node);
  EXPECT_EQ(std::get<Literal>(cast.operand->node).ordinal, kNotLifted);
  EXPECT_EQ(std::get<Literal>(items[2].expression->node).ordinal, 3U);
  const auto& row = std::get<InsertStatement>(batch.statements[1]->node).rows.at(0);
  EXPECT_EQ(std::get<Literal>(row[0]->node).ordinal, 4U);
  EXPECT_EQ(std::get<Literal>(row[1]->node).ordinal, 5U);
}

TEST(Literals, ThatNoNodeHoldsAreStructural) {
  EXPECT_EQ(parse("CREATE TABLE t (a DECIMAL(9, 2) IDENTITY(1, 1) DEFAULT 5)").structuralLiterals,
            (std::vector<std::size_t>{0, 1, 2, 3}));
  EXPECT_EQ(parse("DECLARE @a VARCHAR(10) = 'x' SELECT 'b' = 1, 2 'c'").structuralLiterals,
            (std::vector<std::size_t>{0, 2, 5}));
  EXPECT_TRUE(parse("SELECT TOP 1 a FROM t ORDER BY 1").structuralLiterals.empty());
}

}  // namespace
}  // namespace azcoll::tsql::test
