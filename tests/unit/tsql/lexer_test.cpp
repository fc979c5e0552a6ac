#include "tsql/lexer.h"

#include "text/utf8.h"
#include "unit/tsql/support.h"

namespace azcoll::tsql::test {
namespace {

/// The tokens of a text, each as its first letter of the kind and its text.
std::string tokens(std::string_view text) {
  static constexpr std::string_view kLetters = "EWRQVMIDFTNBSUCX";
  Lexer lexer(text);
  std::string out;
  for (Token token = lexer.next(); token.kind != TokenKind::End; token = lexer.next()) {
    if (!out.empty()) {
      out += ' ';
    }
    out += kLetters[static_cast<std::size_t>(token.kind)];
    out += ':';
    out += token.raw;
    if (token.kind == TokenKind::UnclosedComment) {
      break;
    }
  }
  return out;
}

TEST(Lexer, EndsANumberAtTheFirstCharacterThatIsNoPartOfIt) {
  EXPECT_EQ(tokens("0AND 2015_11 12.5x"), "I:0 R:AND I:2015 W:_11 D:12.5 W:x");
  EXPECT_EQ(tokens("1..2 1.a .5 a.5 5."), "D:1. D:.2 D:1. W:a D:.5 W:a D:.5 D:5.");
}

TEST(Lexer, TakesAnEBehindDigitsAsAnExponent) {
  EXPECT_EQ(tokens("1E 12ELSE 1e5 1.5E+3 2E-x"), "F:1E F:12E W:LSE F:1e5 F:1.5E+3 F:2E- W:x");
}

TEST(Lexer, TakesHexadecimalDigitsAsABinaryConstant) {
  EXPECT_EQ(tokens("0x 0x1Fg 0XAB 10x1"), "B:0x B:0x1F W:g B:0XAB I:10 W:x1");
}

TEST(Lexer, KnowsNationalTextsOnlyWithoutABlank) {
  EXPECT_EQ(tokens("N'a' n'b' N 'c' AN'd'"), "N:N'a' N:n'b' W:N T:'c' W:AN T:'d'");
}

TEST(Lexer, UndoesQuotesAndDoubledMarks) {
  for (const auto& [text, value] :
       {std::pair("'it''s'", "it's"), std::pair("N''''", "'"), std::pair("[a]]b]", "a]b"),
        std::pair("\"a\"\"b\"", "a\"b"), std::pair("'a\"]b'", "a\"]b"), std::pair("''", ""),
        std::pair("@a", "@a"), std::pair("Word", "Word")}) {
    Lexer lexer(text);
    EXPECT_EQ(lexer.next().value(), value);
    EXPECT_EQ(lexer.next().kind, TokenKind::End) << text;
  }
}

TEST(Lexer, PassesNestedCommentsAndLineComments) {
  EXPECT_EQ(tokens("1/* /* */ 2 */3--4\n5--6\r7--"), "I:1 I:3 I:5 I:7");
  EXPECT_EQ(tokens("1 /* /* */"), "I:1 C:/* /* */");
  EXPECT_EQ(tokens("-- '\r\n'a--b' - -1"), "T:'a--b' S:- S:- I:1");
}

TEST(Lexer, KnowsReservedWordsInAnyCase) {
  EXPECT_EQ(tokens("select Select selects [select]"), "R:select R:Select W:selects Q:[select]");
  EXPECT_EQ(findKeyword("eXeC"), Keyword::Exec);
  EXPECT_EQ(findKeyword("EXECUTE"), Keyword::Exec);
  EXPECT_EQ(findKeyword("tran"), Keyword::Transaction);
  EXPECT_EQ(findKeyword("WRITETEXT"), Keyword::OtherStatement);
  EXPECT_EQ(findKeyword("semanticsimilaritydetailstable"), Keyword::OtherFunction);
  for (const char* name : {"A", "CAST", "NOLOCK", "OUTPUT", "APPLY", "DITTA", "SELEC", "SELECTT"}) {
    EXPECT_EQ(findKeyword(name), Keyword::None) << name;
  }
}

TEST(Lexer, KnowsVariablesSystemValuesAndTemporaryNames) {
  EXPECT_EQ(tokens("@a @@ROWCOUNT @a#$1@ #t ##t @ ?"),
            "V:@a V:@@ROWCOUNT V:@a#$1@ W:#t W:##t V:@ M:?");
}

TEST(Lexer, KnowsLettersBeyondAscii) {
  EXPECT_EQ(tokens("Attività àèì Ελλ 表 @però"), "W:Attività W:àèì W:Ελλ W:表 V:@però");
  EXPECT_EQ(tokens("a×b €\xC2\xA0x"), "W:a X:× W:b X:€ X:\xC2\xA0 W:x");
}

TEST(Lexer, KnowsEverySymbol) {
  EXPECT_EQ(tokens("()<>!=<=>=!<!>=<>,.;*+-/%+=-=*=/=%=&=|=^=&|^~"),
            "S:( S:) S:<> S:!= S:<= S:>= S:!< S:!> S:= S:<> S:, S:. S:; S:* S:+ S:- S:/ S:% S:+= "
            "S:-= S:*= S:/= S:%= S:&= S:|= S:^= S:& S:| S:^ S:~");
  EXPECT_EQ(tokens("! : { $5 $x \x01"), "X:! X:: X:{ X:$5 X:$x X:\x01");
}

TEST(Lexer, CountsLinesAtEveryKindOfLineBreak) {
  Lexer lexer("a\rb\r\nc\nd 'x\ny' è e");
  const std::vector<std::pair<std::uint32_t, std::uint32_t>> expected = {
      {1, 1}, {2, 1}, {3, 1}, {4, 1}, {4, 3}, {5, 4}, {5, 6}};
  for (const auto& [line, column] : expected) {
    const Token token = lexer.next();
    EXPECT_EQ(token.position.line, line) << token.raw;
    EXPECT_EQ(token.position.column, column) << token.raw;
  }
  EXPECT_EQ(lexer.next().kind, TokenKind::End);
  EXPECT_EQ(lexer.next().kind, TokenKind::End);
}

TEST(Lexer, NumbersConstantsAndMarkers) {
  Lexer lexer("1 ? 'a' NULL VALUES (NULL, ?)");
  while (lexer.next().kind != TokenKind::End) {
  }
  EXPECT_EQ(lexer.literalCount(), 3U);
  EXPECT_EQ(lexer.markerCount(), 2U);
}

TEST(Lexer, MovesOnBehindAByteThatIsNoUtf8) {
  Lexer lexer("a \xFF\x80 b");
  EXPECT_EQ(lexer.next().raw, "a");
  EXPECT_EQ(lexer.next().kind, TokenKind::Unexpected);
  EXPECT_EQ(lexer.next().kind, TokenKind::Unexpected);
  EXPECT_EQ(lexer.next().raw, "b");
  EXPECT_EQ(lexer.next().kind, TokenKind::End);
}

TEST(Utf8, DecodesEveryLengthAndRefusesWhatIsNone) {
  EXPECT_EQ(decodeUtf8("a", 0).value, 0x61U);
  EXPECT_EQ(decodeUtf8("è", 0).value, 0xE8U);
  EXPECT_EQ(decodeUtf8("€", 0).value, 0x20ACU);
  EXPECT_EQ(decodeUtf8("\xF0\x9F\x98\x80", 0).value, 0x1F600U);
  for (const char* bad : {"\x80", "\xC0\x80", "\xC3", "\xC3(", "\xE0\x80\x80", "\xED\xA0\x80",
                          "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF5", "\xFF", "\xE2\x82"}) {
    EXPECT_EQ(decodeUtf8(bad, 0).length, 0U);
    EXPECT_EQ(findMalformedUtf8("long enough " + std::string(bad)), 12U);
  }
  EXPECT_EQ(findMalformedUtf8("plain text, è and 表"), std::string_view::npos);
}

TEST(Utf8, CutsBetweenCharacters) {
  EXPECT_EQ(leftCharacters("àèì", 2), "àè");
  EXPECT_EQ(leftCharacters("àèì", 3), "àèì");
  EXPECT_EQ(leftCharacters("", 3), "");
}

}  // namespace
}  // namespace azcoll::tsql::test
