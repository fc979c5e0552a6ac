#include "cursor/criteria.h"

#include <string>
#include <vector>

#include "gtest/gtest.h"

#include "data/error.h"

namespace azcoll::cursor {
namespace {

const std::vector<std::string> kNames{"ANNO",   "NOME", "SCONTO", "DATA",
                                      "ATTIVO", "PESO", "NOTA",   "Strano ]nome"};

std::size_t columnOf(std::string_view name) {
  for (std::size_t column = 0; column < kNames.size(); ++column) {
    if (kNames[column] == name) {
      return column;
    }
  }
  throw Error("Elemento non trovato nella raccolta: " + std::string{name});
}

const std::vector<Variant> kRow{Variant{std::int16_t{2024}},
                                Variant{"Rossi & figli"},
                                Variant{*Decimal::parse("12.50")},
                                Variant{*Date::of(2024, 2, 29)},
                                Variant{true},
                                Variant{0.1},
                                Variant{kNull},
                                Variant{}};

bool matches(std::string_view criteria) {
  return Criteria::filter(criteria, columnOf).matches(kRow);
}

std::string refusalOf(std::string_view criteria) {
  try {
    static_cast<void>(matches(criteria));
  } catch (const Error& error) {
    EXPECT_FALSE(error.fromProvider());
    return error.description();
  }
  return "no failure";
}

TEST(Criteria, ComparesNumbers) {
  EXPECT_TRUE(matches("ANNO = 2024"));
  EXPECT_FALSE(matches("ANNO = 2023"));
  EXPECT_TRUE(matches("ANNO <> 2023"));
  EXPECT_TRUE(matches("ANNO < 2024.5"));
  EXPECT_FALSE(matches("ANNO < 2024"));
  EXPECT_TRUE(matches("ANNO <= 2024"));
  EXPECT_TRUE(matches("ANNO >= 2024"));
  EXPECT_TRUE(matches("ANNO > -1"));
  EXPECT_TRUE(matches("SCONTO = 12.5"));
  EXPECT_TRUE(matches("SCONTO=+12.500"));
  EXPECT_TRUE(matches("ANNO = '2024'"));
  EXPECT_TRUE(matches("PESO = 0.1"));
  EXPECT_TRUE(matches("PESO > 0.09"));
}

TEST(Criteria, ComparesTextsWithoutRegardToCase) {
  EXPECT_TRUE(matches("NOME = 'ROSSI & FIGLI'"));
  EXPECT_FALSE(matches("NOME = 'Rossi'"));
  EXPECT_TRUE(matches("NOME > 'rossi'"));
  EXPECT_TRUE(matches("NOME < 'S'"));
  EXPECT_FALSE(matches("NOME = 2024"));
}

TEST(Criteria, ReadsDoubledApostrophes) {
  const std::vector<Variant> row{Variant{1}, Variant{"L'Aquila"}};
  EXPECT_TRUE(Criteria::filter("NOME = 'l''aquila'", columnOf).matches(row));
  EXPECT_FALSE(Criteria::filter("NOME = ''", columnOf).matches(row));
  EXPECT_FALSE(Criteria::filter("NOME = ''''", columnOf).matches(row));
}

TEST(Criteria, ComparesDates) {
  EXPECT_TRUE(matches("DATA = #29/02/2024#"));
  EXPECT_TRUE(matches("DATA = #2024-02-29#"));
  EXPECT_TRUE(matches("DATA >= # 20240101 #"));
  EXPECT_TRUE(matches("DATA < #2024-02-29 00:00:01#"));
  EXPECT_TRUE(matches("DATA = '29/02/2024'"));
  EXPECT_FALSE(matches("DATA > #29/02/2024#"));
}

TEST(Criteria, ComparesTruthValues) {
  EXPECT_TRUE(matches("ATTIVO = 1"));
  EXPECT_TRUE(matches("ATTIVO = -1"));
  EXPECT_TRUE(matches("ATTIVO <> 0"));
  EXPECT_TRUE(matches("ATTIVO = 'true'"));
  EXPECT_FALSE(matches("ATTIVO = 'FALSE'"));
}

TEST(Criteria, ComparesNullOnlyWithNull) {
  EXPECT_TRUE(matches("NOTA = NULL"));
  EXPECT_FALSE(matches("NOTA <> null"));
  EXPECT_TRUE(matches("ANNO <> NULL"));
  EXPECT_FALSE(matches("ANNO = NULL"));
  for (const char* criteria : {"NOTA = 'a'", "NOTA <> 'a'", "NOTA < 5", "NOTA LIKE '*'"}) {
    EXPECT_FALSE(matches(criteria)) << criteria;
  }
  EXPECT_TRUE(matches("[Strano ]]nome] = NULL"));
}

TEST(Criteria, FitsPatterns) {
  EXPECT_TRUE(matches("NOME LIKE 'rossi*'"));
  EXPECT_TRUE(matches("NOME like '%FIGLI'"));
  EXPECT_TRUE(matches("NOME LIKE '*&*'"));
  EXPECT_TRUE(matches("NOME LIKE '*'"));
  EXPECT_TRUE(matches("NOME LIKE 'r*i*i'"));
  EXPECT_TRUE(matches("NOME LIKE 'Rossi & figli**%'"));
  EXPECT_FALSE(matches("NOME LIKE 'rossi'"));
  EXPECT_FALSE(matches("NOME LIKE '*x*'"));
  EXPECT_FALSE(matches("NOME LIKE 'rossi & figli_'"));
  EXPECT_FALSE(matches("NOME LIKE ''"));
  EXPECT_TRUE(matches("ANNO LIKE '20*'"));
}

TEST(Criteria, FitsAHostilePatternInBoundedTime) {
  std::string pattern;
  for (int count = 0; count < 2000; ++count) {
    pattern += "a*";
  }
  const std::vector<Variant> row{Variant{1}, Variant{std::string(20000, 'a')}};
  EXPECT_FALSE(Criteria::filter("NOME LIKE '" + pattern + "b'", columnOf).matches(row));
  EXPECT_TRUE(Criteria::filter("NOME LIKE '" + pattern + "a'", columnOf).matches(row));
}

TEST(Criteria, JoinsComparisonsWithAnd) {
  EXPECT_TRUE(matches("ANNO = 2024 AND NOME LIKE 'R*' and SCONTO > 10"));
  EXPECT_FALSE(matches("ANNO = 2024 AND NOME LIKE 'B*' AND SCONTO > 10"));
  EXPECT_TRUE(matches("(ANNO = 2024 AND SCONTO > 10)"));
  EXPECT_TRUE(matches("(ANNO = 2024) AND (SCONTO > 10)"));
  EXPECT_FALSE(matches("ANNO = 2024 AND (SCONTO > 10 AND NOTA <> NULL)"));
}

TEST(Criteria, JoinsGroupsWithOr) {
  EXPECT_TRUE(matches("(ANNO = 2023 AND SCONTO > 10) OR (ANNO = 2024 AND SCONTO > 10)"));
  EXPECT_TRUE(matches("(ANNO = 2024) OR (ANNO = 2023) or (ANNO = 2022)"));
  EXPECT_FALSE(matches("(ANNO = 2021) OR (ANNO = 2023 AND SCONTO = 12.5)"));
}

TEST(Criteria, ReadsBracketedAndAccentedNames) {
  EXPECT_TRUE(matches("[ANNO] = 2024"));
  EXPECT_EQ(refusalOf("NOT ANNO = 1"), "Elemento non trovato nella raccolta: NOT");
  EXPECT_EQ(refusalOf("Attivit\u00E0 = 1"), "Elemento non trovato nella raccolta: Attivit\u00E0");
}

TEST(Criteria, AcceptsAnyBlanksBetweenItsParts) {
  EXPECT_TRUE(matches("\r\n ANNO\t=\t2024\r\nAND\nSCONTO>10 "));
  EXPECT_TRUE(matches("(ANNO=2024)AND(SCONTO>10)"));
}

TEST(Criteria, SaysWhereAMistakeIs) {
  EXPECT_EQ(refusalOf("ANNO = 2024 AND SCONTO ! 3"),
            "Criterio non valido, carattere 24: atteso un confronto (= <> < <= > >= LIKE) (\u00AB! "
            "3\u00BB)");
  EXPECT_EQ(refusalOf("ANNO ="),
            "Criterio non valido, carattere 7: atteso un valore (\u00ABfine del testo\u00BB)");
  EXPECT_EQ(
      refusalOf("NOME = 'citt\u00E0' ANNO = 1"),
      "Criterio non valido, carattere 16: attesa la fine del criterio (\u00ABANNO = 1\u00BB)");
}

struct Mistake {
  std::string criteria;
  std::string reason;
};

class CriteriaMistakes : public testing::TestWithParam<Mistake> {};

TEST_P(CriteriaMistakes, AreRefusedWithTheirReason) {
  const std::string failure = refusalOf(GetParam().criteria);
  EXPECT_TRUE(failure.starts_with("Criterio non valido, carattere ")) << failure;
  EXPECT_NE(failure.find(GetParam().reason), std::string::npos) << failure;
}

INSTANTIATE_TEST_SUITE_P(
    Grammar, CriteriaMistakes,
    testing::Values(
        Mistake{"", "atteso il nome"}, Mistake{"= 1", "atteso il nome"},
        Mistake{"AND = 1", "atteso il nome"}, Mistake{"1 = ANNO", "atteso il nome"},
        Mistake{"ANNO = 1 AND", "atteso il nome"}, Mistake{"((ANNO = 1))", "atteso il nome"},
        Mistake{"()", "atteso il nome"}, Mistake{"[ANNO = 1", "parentesi quadra"},
        Mistake{"ANNO", "atteso un confronto"}, Mistake{"ANNO IS NULL", "atteso un confronto"},
        Mistake{"ANNO BETWEEN 1", "atteso un confronto"}, Mistake{"ANNO == 1", "atteso un valore"},
        Mistake{"ANNO = NOME", "atteso un valore"}, Mistake{"ANNO = (1)", "atteso un valore"},
        Mistake{"NOME = \"Rossi\"", "atteso un valore"},
        Mistake{"ANNO = NULLO", "atteso un valore"}, Mistake{"NOME = 'Rossi", "apostrofo finale"},
        Mistake{"NOME = 'Rossi''", "apostrofo finale"},
        Mistake{"DATA = #29/02/2023#", "data non valida"},
        Mistake{"DATA = #2024-02-29", "data non valida"},
        Mistake{"ANNO = 1-2", "numero non valido"}, Mistake{"ANNO = 1e3", "numero non valido"},
        Mistake{"ANNO = 1.2.3", "numero non valido"},
        Mistake{"ANNO = 0AND SCONTO = 1", "numero non valido"},
        Mistake{"ANNO < NULL", "NULL ammette"}, Mistake{"NOME LIKE 5", "LIKE richiede"},
        Mistake{"NOME LIKE NULL", "LIKE richiede"},
        Mistake{"(ANNO = 1", "manca la parentesi finale"},
        Mistake{"(ANNO = 1 OR ANNO = 2)", "OR \u00E8 ammesso solo"},
        Mistake{"ANNO = 1 OR ANNO = 2", "OR \u00E8 ammesso solo"},
        Mistake{"(ANNO = 1) OR ANNO = 2", "OR \u00E8 ammesso solo"},
        Mistake{"ANNO = 1 AND (SCONTO = 1) OR (SCONTO = 2)", "OR \u00E8 ammesso solo"},
        Mistake{"(ANNO = 1) AND (ANNO = 2) OR (ANNO = 3)", "AND non \u00E8 ammesso"},
        Mistake{"(ANNO = 1) OR (ANNO = 2) AND (ANNO = 3)", "AND non \u00E8 ammesso"},
        Mistake{"(ANNO = 1))", "attesa la fine"}, Mistake{"ANNO = 1; DROP", "attesa la fine"},
        Mistake{"ANNO = 1 ANNO = 2", "attesa la fine"}));

TEST(Criteria, RefusesALiteralThatTheColumnCannotBe) {
  for (const char* criteria : {"ANNO = 'abc'", "ANNO = #2024-01-01#", "PESO = 'x'", "DATA = 5",
                               "DATA = 'ieri'", "ATTIVO = 'forse'", "NOME = #2024-01-01#"}) {
    EXPECT_TRUE(refusalOf(criteria).starts_with(
        "Criterio non valido: tipo non corrispondente per la colonna "))
        << criteria << ": " << refusalOf(criteria);
  }
}

TEST(Criteria, RefusesAnObjectColumn) {
  const std::vector<Variant> row{Variant{std::shared_ptr<Object>{}}};
  const Criteria equal = Criteria::filter("ANNO = 1", columnOf);
  const Criteria like = Criteria::filter("ANNO LIKE '1'", columnOf);
  EXPECT_THROW(static_cast<void>(equal.matches(row)), Error);
  EXPECT_THROW(static_cast<void>(like.matches(row)), Error);
}

TEST(Criteria, TakesOneComparisonForASearch) {
  EXPECT_TRUE(Criteria::search(" ANNO = 2024 ", columnOf).matches(kRow));
  for (const char* criteria :
       {"ANNO = 1 AND ANNO = 2", "ANNO = 1 OR ANNO = 2", "(ANNO = 1)", "", "ANNO = 1)"}) {
    EXPECT_THROW(static_cast<void>(Criteria::search(criteria, columnOf)), Error) << criteria;
  }
}

TEST(Criteria, SurvivesCutAndCorruptTexts) {
  const std::string whole = "(ANNO = 2024 AND [NOME] LIKE 'R''*') OR (DATA = #29/02/2024#)";
  for (std::size_t length = 1; length < whole.size(); ++length) {
    const std::string cut = whole.substr(0, length);
    if (cut.back() != ')' && !cut.ends_with(") ")) {
      EXPECT_NE(refusalOf(cut), "no failure") << cut;
    }
    for (const char byte : {'\'', '(', '#', '\xFF', '\0', ']'}) {
      std::string corrupt = whole;
      corrupt[length] = byte;
      static_cast<void>(refusalOf(corrupt));
    }
  }
}

}  // namespace
}  // namespace azcoll::cursor
