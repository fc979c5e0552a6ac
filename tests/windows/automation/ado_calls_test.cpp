// What every method asks of the caller's ADO objects: all calls, in order, with their option
// values. tests/windows/ado_calls.txt holds them; AZCOLL_WRITE_ADO_CALLS=FILE writes what is called
// now.

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "ado/wide_text.h"
#include "service/members.h"
#include "windows/calls.h"

namespace azcoll::test {
namespace {

using Lines = std::vector<std::string>;

struct Setting {
  const wchar_t* member;
  Variant value;
};

/// A method and what it is called with, on the example database.
struct MethodCall {
  std::string method;
  std::vector<Setting> settings;
};

void PrintTo(const MethodCall& call, std::ostream* out) { *out << call.method; }

constexpr wchar_t kDitta[] = L"Pvar_Ditta";
constexpr wchar_t kAnno[] = L"AnnoSolare";
constexpr wchar_t kCodice[] = L"Pvar_CliFor";
constexpr wchar_t kAttivita[] = L"CodiceAttività";
constexpr wchar_t kAnnoOrigine[] = L"AnnoSolareDaDuplicare";

const std::vector<MethodCall>& methodCalls() {
  static const std::vector<MethodCall> calls{
      {"DuplicaCliFor", {{kDitta, 5}, {kCodice, 120}}},
      {"EliminaCliFor", {{kDitta, 5}, {kCodice, 110}}},
      {"ControllaDittaPrincipale", {{kDitta, 10}}},
      {"ControllaDittaCollegata", {{kDitta, 5}}},
      {"DitteCollegate", {{kDitta, 10}}},
      {"RecordsetDitteCollegate", {{kDitta, 10}}},
      {"RecordsetDitteCollegateOPrincipale", {{kDitta, 5}}},
      {"DitteCollegatePiuPrincipale", {{kDitta, 5}}},
      {"RecordsetDitteCollegateOPrincipalePerSedi", {{kDitta, 5}, {L"CodiceSede", 1}}},
      {"RecordsetDitteCollegateOPrincipalePerIntermedi", {{kDitta, 5}, {L"CodiceIntermedio", 1}}},
      {"RecordsetDitteCollegatePiuPrincipale", {{kDitta, 10}}},
      {"RecordsetDitteCollegatePiuPrincipaleNoPrinc", {{kDitta, 5}}},
      {"RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva", {{kDitta, 10}}},
      {"RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio", {{kDitta, 10}}},
      {"ModificaCliFor", {{kDitta, 5}, {kCodice, 110}}},
      {"ControllaDittaNonCollegata", {{kDitta, 5}, {kAnnoOrigine, 2024}}},
      {"GetDittaPrincipale", {{kDitta, 5}}},
      {"RecordsetAttivitaCollegate", {{kDitta, 40}}},
      {"StringaSQLAttivitaCollegate", {{kDitta, 40}}},
      {"DuplicaAttività", {{kDitta, 40}, {kAnno, 2026}, {kAnnoOrigine, 2025}}},
      {"InserisciAttività", {{kDitta, 20}, {kAnno, 2024}}},
      {"AggiornaAttività", {{kDitta, 12}, {kAnno, 2024}}},
      {"AggiornaDatiGestionaliPerAttività", {{kDitta, 40}}},
      {"StringaSQLEliminazioneAttività", {{kDitta, 40}, {kAttivita, 4001}}},
      {"EliminaAttivitàSingolaCollegamentoMultiAzienda", {{kDitta, 12}, {kAnno, 2024}}},
      {"GetCodiceAttivitàDaSezionale", {{kDitta, 10}, {kAnno, 2024}, {L"Sezionale", "01"}}},
      {"AggiornaDatiGestionaliPerAnagraficaAttività", {{kDitta, 40}, {kAttivita, 4001}}},
      {"InserisciAttivitàDaPeriodoPrecedente",
       {{kDitta, 10}, {kAnno, 2026}, {L"InserisciAttivitàDaPeriodoPrecedente", true}}},
      {"ControllaAttivitaNonCollegata", {{kDitta, 40}}},
      {"GetCodiceAttività", {{kDitta, 40}, {L"SelezionaAttivitàPrincipale", true}}},
      {"VerificaEsistenzaAttivita", {{kDitta, 40}, {kAttivita, 4001}}},
      {"AggiornaDateRegistriAnagraficaAttività", {{kDitta, 10}}},
      {"VerificaAnnoIvaEsercizioContabile", {{kDitta, 20}}},
      {"StringaSQLAttivitàSingolaCollegamentoMultiAzienda", {{kDitta, 12}, {kAnno, 2024}}},
  };
  return calls;
}

// ---- how calls are shown

/// Whether `call` has the form of `pattern`, in which `*` stands for any text. (Statements are too
/// long for regular expressions.)
bool hasForm(std::string_view call, std::string_view pattern) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) {
    return call == pattern;
  }
  return call.size() >= pattern.size() - 1 && call.starts_with(pattern.substr(0, star)) &&
         call.ends_with(pattern.substr(star + 1));
}

/// A statement by its beginning: the whole texts are pinned elsewhere.
std::string shortened(std::string_view text) {
  constexpr std::size_t kShown = 60;
  std::string flat;
  for (const char c : text) {
    if (c != ' ' || !flat.ends_with(' ')) {
      flat += c;
    }
  }
  return flat.size() <= kShown ? flat : flat.substr(0, kShown) + "...";
}

/// A call with its statement shortened, what follows the statement as it is.
std::string shownCall(const std::string& call) {
  for (const std::string_view pattern :
       {"Connection.Execute(*|out|1)", "Recordset.Open(*|Connection|1|4|1)",
        "Recordset.Source let(*)"}) {
    if (hasForm(call, pattern)) {
      const std::string_view before = pattern.substr(0, pattern.find('*'));
      const std::string_view behind = pattern.substr(before.size() + 1);
      const std::string_view text{call.data() + before.size(),
                                  call.size() - before.size() - behind.size()};
      return std::string{before} + shortened(text) + std::string{behind};
    }
  }
  return call;
}

/// A call on a field, in few words; empty for any other call. What leads to the field goes with it.
std::string fieldCall(const std::string& call) {
  if (call == "Fields.Count()") {
    return "count";
  }
  const std::size_t point = call.find('.');
  if (!call.starts_with("Field ") || point == std::string::npos) {
    return "";
  }
  const std::string column = call.substr(6, point - 6);
  const std::string_view member = std::string_view{call}.substr(point);
  return (member == ".Name()" ? "name " : member == ".Value()" ? "get " : "let ") + column;
}

/// The calls that copy one column, as one.
void foldCopies(Lines& fields) {
  Lines folded;
  for (std::size_t at = 0; at < fields.size();) {
    const auto is = [&](std::size_t ahead, const std::string& text) {
      return at + ahead < fields.size() && fields[at + ahead] == text;
    };
    const std::string column = at + 1 < fields.size() && fields[at + 1].starts_with("name ")
                                   ? fields[at + 1].substr(5)
                                   : std::string{};
    if (is(0, "count") && is(2, "get " + column) && is(3, "let " + column)) {
      folded.push_back("copy " + column);
      at += 4;
    } else {
      folded.push_back(fields[at]);
      ++at;
    }
  }
  fields = folded;
}

bool leadsToAField(const std::string& call) {
  return call == "Recordset.Fields()" || call.starts_with("Fields.Item(");
}

void appendFields(Lines& lines, Lines& fields) {
  constexpr std::size_t kWidth = 110;
  foldCopies(fields);
  std::string line = "Fields:";
  for (std::size_t index = 0; index < fields.size(); ++index) {
    if (line.size() + fields[index].size() > kWidth) {
      lines.push_back(line);
      line = "       ";
    }
    line += " " + fields[index] + (index + 1 < fields.size() ? "," : "");
  }
  if (!fields.empty()) {
    lines.push_back(line);
  }
  fields.clear();
}

/// The calls as the file shows them: one line each, those on fields together.
Lines shown(const Lines& calls) {
  Lines lines;
  Lines fields;
  for (const std::string& call : calls) {
    if (leadsToAField(call)) {
      continue;
    }
    const std::string field = fieldCall(call);
    if (field.empty()) {
      appendFields(lines, fields);
      lines.push_back(shownCall(call));
    } else {
      fields.push_back(field);
    }
  }
  appendFields(lines, fields);
  return lines;
}

// ---- what may be called at all

/// Whether a call is one of those that the component may make, with the option values it has to
/// have.
bool isAllowed(const std::string& call) {
  return std::ranges::any_of(
      std::initializer_list<std::string_view>{
          "Connection.Execute(*|out|1)", "Connection.BeginTrans()", "Connection.CommitTrans()",
          "Connection.RollbackTrans()",
          // A recordset of its own.
          "new Recordset", "Recordset.ActiveConnection set(Connection)", "Recordset.Source let(*)",
          "Recordset.CursorLocation let(3)", "Recordset.CursorType let(1)",
          "Recordset.LockType let(4)", "Recordset.Open(-|-|-1|-1|1)",
          "Recordset.Open(*|Connection|1|4|1)",
          // Any recordset.
          "Recordset.ActiveConnection set(Nothing)", "Recordset.RecordCount()", "Recordset.BOF()",
          "Recordset.EOF()", "Recordset.MoveFirst()", "Recordset.MoveNext()", "Recordset.AddNew()",
          "Recordset.Update()", "Recordset.UpdateBatch(3)", "Recordset.Filter let(*)",
          "Recordset.Find(*|0|1|1)", "Recordset.Fields()", "Fields.Count()", "Fields.Item(*)",
          "Field *)",
          // The procedure.
          "new Command", "Command.ActiveConnection set(Connection)",
          "Command.CommandText let(PC_GetDitteCollegate)", "Command.CommandType let(4)",
          "Command.CommandTimeout let(0)", "Command.Prepared let(True)", "Command.Parameters()",
          "Parameters.Item(@*)", "Parameter @*)", "Command.Execute(out|-|4)",
          "Command.ActiveConnection set(Nothing)"},
      [&](std::string_view pattern) { return hasForm(call, pattern); });
}

/// A recordset of its own is prepared in one order, or opened in one call.
void expectPreparedInOrder(const Lines& calls) {
  const Lines order{"Recordset.ActiveConnection set(Connection)",
                    "Recordset.Source let(",
                    "Recordset.CursorLocation let(3)",
                    "Recordset.CursorType let(1)",
                    "Recordset.LockType let(4)",
                    "Recordset.Open(-|-|-1|-1|1)"};
  for (std::size_t place = 0; place < calls.size(); ++place) {
    if (calls[place] != "new Recordset") {
      continue;
    }
    ASSERT_LT(place + 1, calls.size());
    if (calls[place + 1].starts_with("Recordset.Open(")) {
      EXPECT_TRUE(calls[place + 1].ends_with("|Connection|1|4|1)")) << calls[place + 1];
      continue;
    }
    ASSERT_LT(place + order.size(), calls.size());
    for (std::size_t step = 0; step < order.size(); ++step) {
      EXPECT_TRUE(calls[place + 1 + step].starts_with(order[step])) << calls[place + 1 + step];
    }
  }
}

// ---- the file

std::string filePath() { return std::string{AZCOLL_SOURCE_DIR} + "/tests/windows/ado_calls.txt"; }

/// Sections of the file by method; lines before the first section are for its readers.
std::map<std::string, Lines> pinnedCalls() {
  std::ifstream file{filePath(), std::ios::binary};
  std::map<std::string, Lines> sections;
  Lines* section = nullptr;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("== ")) {
      section = &sections[line.substr(3, line.find(" (") - 3)];
    } else if (section != nullptr && !line.empty()) {
      section->push_back(line);
    }
  }
  return sections;
}

std::string heading(const MethodCall& call) {
  std::string text = "== " + call.method + " (";
  for (const Setting& setting : call.settings) {
    text += text.ends_with("(") ? "" : ", ";
    text += ado::narrowText(setting.member) + " = ";
    setting.value.appendTo(text);
  }
  return text + ")";
}

void writeSection(const MethodCall& call, const Lines& lines) {
  if (const char* const path = std::getenv("AZCOLL_WRITE_ADO_CALLS")) {
    std::ofstream file{path, std::ios::binary | std::ios::app};
    file << '\n' << heading(call) << '\n';
    for (const std::string& line : lines) {
      file << line << '\n';
    }
  }
}

class AdoCallsOfTheDll : public CallsOfTheDll, public ::testing::WithParamInterface<MethodCall> {};

TEST_P(AdoCallsOfTheDll, AreTheOnesPinnedForTheMethod) {
  for (const Setting& setting : GetParam().settings) {
    input.put(setting.member, setting.value);
  }
  caller.clearRegister();
  service.get(ado::wideText(GetParam().method));
  const Lines calls = caller.calls({""});
  EXPECT_EQ(read(service, L"Stato"), Variant{std::int16_t{0}}) << service.getText(L"Errore");
  for (const std::string& call : calls) {
    EXPECT_TRUE(isAllowed(call) || call.ends_with("Registro()")) << call;
  }
  expectPreparedInOrder(calls);
  Lines lines = shown(calls);
  ASSERT_FALSE(lines.empty());
  lines.pop_back();  // the look into the register itself
  if (lines.empty()) {
    lines.push_back("(none)");
  }
  writeSection(GetParam(), lines);
  const Lines pinned = pinnedCalls()[GetParam().method];
  const auto [now, then] = std::ranges::mismatch(lines, pinned);
  EXPECT_TRUE(now == lines.end() && then == pinned.end())
      << "line " << now - lines.begin() + 1 << " is now\n  "
      << (now == lines.end() ? "(no more)" : *now) << "\nand was\n  "
      << (then == pinned.end() ? "(no more)" : *then);
}

TEST(AdoCallsOfTheDllFile, HasEveryMethodOfTheTableInItsOrder) {
  ASSERT_EQ(methodCalls().size(), kMethods.size());
  const std::map<std::string, Lines> pinned = pinnedCalls();
  EXPECT_EQ(pinned.size(), kMethods.size());
  for (std::size_t index = 0; index < kMethods.size(); ++index) {
    EXPECT_EQ(methodCalls()[index].method, kMethods[index].name);
    EXPECT_TRUE(pinned.contains(std::string{kMethods[index].name})) << kMethods[index].name;
  }
}

/// Test names are ASCII.
std::string withoutAccents(std::string name) {
  for (std::size_t at = name.find("à"); at != std::string::npos; at = name.find("à")) {
    name.replace(at, 2, "a");
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(, AdoCallsOfTheDll, ::testing::ValuesIn(methodCalls()),
                         [](const auto& call) { return withoutAccents(call.param.method); });

}  // namespace
}  // namespace azcoll::test
