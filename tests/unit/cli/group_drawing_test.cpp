#include "cli/reports/group_drawing.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "cli/reports/drawing_file.h"
#include "group_fixture.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t found = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++found;
  }
  return found;
}

TEST(LabelText, LeavesNoMarkupInAName) {
  EXPECT_EQ(labelText("A & B <C> \"D\" l'E"), "A &amp; B &lt;C&gt; &quot;D&quot; l'E");
  EXPECT_EQ(labelText("a\nb\x01"), "a␊b␁");
  EXPECT_EQ(labelText("\xEF\xBF\xBE\xFF"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Wrapped, PartsLinesAtBlanks) {
  EXPECT_THAT(wrapped("Società per Azioni", 11), ElementsAre("Società per", "Azioni"));
  EXPECT_THAT(wrapped("  a   b  ", 10), ElementsAre("a b"));
  EXPECT_THAT(wrapped("abcdefgh ij", 3), ElementsAre("abc", "def", "gh", "ij"));
  EXPECT_THAT(wrapped("abcdef", 3), ElementsAre("abc", "def"));
  EXPECT_THAT(wrapped("", 3), IsEmpty());
  EXPECT_THAT(wrapped("èèèè", 2), ElementsAre("èè", "èè"));
}

class Disegno : public GroupTest {
 protected:
  template <typename... Args>
  std::string dot(int company, const Args&... args) {
    const Outcome outcome = gruppo(company, "--dot", args...);
    EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
    EXPECT_THAT(outcome.err, IsEmpty());
    EXPECT_THAT(outcome.out, AllOf(StartsWith("digraph gruppo {\n"), EndsWith("}\n")));
    EXPECT_EQ(count(outcome.out, "<B>"), count(outcome.out, "</B>"));
    EXPECT_EQ(count(outcome.out, "<FONT"), count(outcome.out, "</FONT>"));
    EXPECT_EQ(count(outcome.out, "{"), count(outcome.out, "}"));
    return outcome.out;
  }
};

TEST_F(Disegno, HasTheMainCompanyAndAFrameForEachAccountingType) {
  const std::string text = dot(10, "--anno", "2025");
  EXPECT_THAT(
      text, AllOf(HasSubstr("<B>10</B>&#160;Alfa Società per Azioni"),
                  HasSubstr("azienda principale, tipo contabile 0"),
                  HasSubstr("<B>Tipo contabile 0: 2 aziende</B>"),
                  HasSubstr("<B>Tipo contabile 2: 1 azienda</B>"),
                  HasSubstr("p2025_10 -> c2025_10_0_5 [lhead=cluster_2025_10_0, "
                            "style=solid"),
                  HasSubstr("p2025_10 -> c2025_10_1_12 [lhead=cluster_2025_10_1, "
                            "style=solid"),
                  Not(HasSubstr("cluster_2025_10_2")), Not(HasSubstr("subgraph cluster_2025 {"))));
}

TEST_F(Disegno, DashesWhatIsNotCopied) {
  EXPECT_THAT(dot(31, "--anno", "2024"), AllOf(HasSubstr("clienti e fornitori non copiati"),
                                               HasSubstr("lhead=cluster_2024_30_0, style=dashed"),
                                               HasSubstr("style=\"filled,dashed\"")));
}

TEST_F(Disegno, NamesEveryCompanyOnce) {
  for (const int companies : {3, 30, 300}) {
    copyExample();
    makeGroup(companies);
    const std::string text = dot(1000, "--anno", "2024");
    for (int i = 0; i <= companies; ++i) {
      EXPECT_EQ(count(text, "<B>" + std::to_string(1000 + i) + "</B>"), 1U)
          << companies << ' ' << i;
    }
    EXPECT_THAT(text, HasSubstr("Capogruppo &amp; Figli"));
    EXPECT_THAT(text, HasSubstr("&lt;Nord&gt;"));
  }
}

TEST_F(Disegno, ALargeGroupStandsInSeveralColumns) {
  makeGroup(300);
  const std::string text = dot(1000, "--anno", "2024");
  const std::size_t columns = count(text, "p2024_1000 -> ");
  EXPECT_GT(columns, 6U);
  EXPECT_LT(columns, 20U);
  EXPECT_EQ(count(text, " -> c2024_1000_"), 300U);  // below the main company or another one
  EXPECT_EQ(count(text, "lhead="), 2U);
}

TEST_F(Disegno, FramesTheYearsAndMarksTheChanges) {
  sql("DELETE FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025 AND CG86_DITTA_CG18 = 10"
      " AND CG86_DITTACOLL_CG18 = 15\n" +
      insertLink(2025, "0", 10, 20));
  const std::string text = dot(10, "--anni", "2023-2026");
  for (const char* year : {"2023", "2024", "2025", "2026"}) {
    EXPECT_EQ(count(text, std::string{"subgraph cluster_"} + year + " {"), 1U);
  }
  EXPECT_THAT(text, AllOf(HasSubstr("nessuna azienda collegata"), HasSubstr("+ gruppo nuovo"),
                          HasSubstr("~ era di tipo 0"), HasSubstr("+ entra"),
                          HasSubstr("<B>Uscite dal gruppo: 1 azienda</B>"), HasSubstr("- esce"),
                          HasSubstr("- il gruppo non c'è più")));
  EXPECT_EQ(count(text, "+ entra"), 1U);
  EXPECT_EQ(count(text, "- esce"), 1U);
}

TEST_F(Disegno, SaysWhichOfTwoGroupsCounts) {
  sql(insertLink(2024, "0", 30, 12));
  const std::string text = dot(12, "--anno", "2024");
  EXPECT_THAT(text, AllOf(HasSubstr("anche nel gruppo 30"), HasSubstr("vale il gruppo 10")));
}

class SvgFile : public Disegno {
 protected:
  /// Puts a program `dot` of this text into a folder and nothing else on the search path.
  [[nodiscard]] std::string fakeDot(const std::string& text) const {
    const std::filesystem::path folder = folder_.path() / "programmi";
    std::filesystem::create_directories(folder);
    std::ofstream{folder / "dot"} << "#!/bin/sh\n" << text;
    std::filesystem::permissions(folder / "dot", std::filesystem::perms::owner_all);
    return folder.string();
  }

  [[nodiscard]] std::vector<std::string> unfinished() const {
    std::vector<std::string> names = filesLeft();
    std::erase_if(names, [](const std::string& name) { return !name.ends_with(".tmp"); });
    return names;
  }
};

TEST_F(SvgFile, GivesTheDrawingToTheProgramAndKeepsWhatItGives) {
  const Environment search{"PATH", fakeDot("echo \"$@\"; exec /bin/cat\n")};
  const Outcome outcome = gruppo(10, "--anno", "2024", "--svg", path("gruppo.svg"));
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_EQ(outcome.err, "Scritto il disegno " + path("gruppo.svg") + ".\n");
  EXPECT_EQ(contents(path("gruppo.svg")), "-Tsvg\n" + gruppo(10, "--anno", "2024", "--dot").out);
  EXPECT_THAT(unfinished(), IsEmpty());
}

TEST_F(SvgFile, ReplacesAnOlderDrawing) {
  const Environment search{"PATH", fakeDot("echo nuovo\n")};
  std::ofstream{path("gruppo.svg")} << "vecchio e più lungo";
  EXPECT_EQ(gruppo(10, "--svg", path("gruppo.svg")).code, ExitCode::Ok);
  EXPECT_EQ(contents(path("gruppo.svg")), "nuovo\n");
}

TEST_F(SvgFile, SaysWhatToInstallWithoutTheProgram) {
  std::filesystem::create_directories(folder_.path() / "vuota");
  const Environment search{"PATH", path("vuota")};
  std::ofstream{path("gruppo.svg")} << "vecchio";
  const Outcome outcome = gruppo(10, "--anno", "2024", "--svg", path("gruppo.svg"));
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("serve il programma dot"), HasSubstr("graphviz"),
                                 HasSubstr("--dot")));
  EXPECT_EQ(contents(path("gruppo.svg")), "vecchio");
  EXPECT_THAT(unfinished(), IsEmpty());
}

TEST_F(SvgFile, KeepsTheOlderDrawingWhenTheProgramFails) {
  const Environment search{"PATH", fakeDot("echo mezzo; echo 'riga 3: errore' >&2; exit 1\n")};
  std::ofstream{path("gruppo.svg")} << "vecchio";
  const Outcome outcome = gruppo(10, "--anno", "2024", "--svg", path("gruppo.svg"));
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.err, HasSubstr("dot non ha fatto il disegno: riga 3: errore"));
  EXPECT_EQ(contents(path("gruppo.svg")), "vecchio");
  EXPECT_THAT(unfinished(), IsEmpty());
}

TEST_F(SvgFile, DoesNotWaitForAProgramThatNeverEnds) {
  const Environment search{"PATH", fakeDot("exec /bin/sleep 60\n")};
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THROW(writeSvg("digraph {}", path("gruppo.svg"), std::chrono::milliseconds{100}),
               std::runtime_error);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{30});
  EXPECT_THAT(unfinished(), IsEmpty());
  EXPECT_FALSE(std::filesystem::exists(path("gruppo.svg")));
}

TEST_F(SvgFile, RefusesAFileThatCannotBeWritten) {
  const Environment search{"PATH", fakeDot("echo nuovo\n")};
  std::filesystem::create_directories(folder_.path() / "cartella.svg");
  for (const std::string& file : {path("manca/gruppo.svg"), path("cartella.svg")}) {
    const Outcome outcome = gruppo(10, "--svg", file);
    EXPECT_EQ(outcome.code, ExitCode::Usage) << file;
    EXPECT_THAT(outcome.err, HasSubstr("Impossibile scrivere il disegno nel file «" + file + "»"));
  }
  EXPECT_THAT(unfinished(), IsEmpty());
}

TEST_F(SvgFile, IsDrawnByGraphviz) {
  if (std::system("command -v dot >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "the program dot (package graphviz) is not installed";
  }
  sql("UPDATE CG16_ANAGGEN SET CG16_RAGSOANAG = N'<B>&amp;\"' + CHAR(1) + N'è' WHERE"
      " CG16_CODICE = 1005\n" +
      insertLink(2024, "NULL", 30, 12));
  makeGroup(300);
  for (const char* company : {"10", "12", "20", "1000"}) {
    const std::string file = path(std::string{company} + ".svg");
    const Outcome outcome =
        azcoll("gruppo", "--ditta", company, "--db", db_, "--anni", "2023-2026", "--svg", file);
    EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
    EXPECT_THAT(contents(file), EndsWith("</svg>\n"));
  }
  EXPECT_THAT(contents(path("10.svg")), HasSubstr("&lt;B&gt;&amp;amp;&quot;␁è"));
}

}  // namespace
}  // namespace azcoll::cli
