// The main job, a customer of the main company spread over its linked companies, in four forms: the
// component, its statements replayed as text, SQLite prepared by hand, and one set-based batch.

#include <benchmark/benchmark.h>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench_database.h"
#include "job_script.h"
#include "processor_time.h"
#include "raw_database.h"

namespace azcoll::bench {
namespace {

/// Times `job(code)` alone, for one code after another; `prepare(code)` comes before it and
/// `check(code)` after.
void timeJobs(benchmark::State& state, const std::function<void(std::int64_t)>& prepare,
              const std::function<void(std::int64_t)>& job,
              const std::function<bool(std::int64_t)>& check) {
  std::int64_t code = kFirstCode;
  for (auto _ : state) {
    prepare(++code);
    const double start = processorTime();
    job(code);
    state.SetIterationTime(processorTime() - start);
    if (!check(code)) {
      state.SkipWithError("the copies are not all there");
      return;
    }
  }
}

std::shared_ptr<Connection> openGroup(int linked, const std::string& file = ":memory:") {
  std::shared_ptr<Connection> connection = openExample(file);
  addGroup(*connection, linked);
  return connection;
}

void component(benchmark::State& state) {
  const auto linked = static_cast<int>(state.range(0));
  const std::shared_ptr<Connection> connection = openGroup(linked);
  CLSCO_AZIENDECOLL service;
  timeJobs(
      state, [&](std::int64_t code) { addCustomer(*connection, code); },
      [&](std::int64_t code) { spread(service, connection, code); },
      [&](std::int64_t code) {
        return service.Stato == Variant{std::int16_t{0}} &&
               companiesWith(*connection, code) == linked + 1;
      });
}

void replayedText(benchmark::State& state) {
  const auto linked = static_cast<int>(state.range(0));
  const std::shared_ptr<Connection> connection = openGroup(linked);
  const Script script{connection};
  std::vector<std::string> texts;
  timeJobs(
      state,
      [&](std::int64_t code) {
        addCustomer(*connection, code);
        texts = script.texts(code);
      },
      [&](std::int64_t) { script.replay(connection, texts); },
      [&](std::int64_t code) { return companiesWith(*connection, code) == linked + 1; });
}

/// What a program does that knows the job, the tables and SQLite.
class HandWritten {
 public:
  explicit HandWritten(const RawDatabase& database, int linked)
      : begin_{database.prepare("BEGIN IMMEDIATE")},
        commit_{database.prepare("COMMIT")},
        principal_{database.prepare(
            "SELECT min(CG86_DITTA_CG18) FROM CG86_AZIENDECOLL WHERE CG86_INDTIPO = 0 AND"
            " CG86_ANNOIVA = ?1 AND CG86_DITTA_CG18 = ?2 AND CG86_DITTACOLL_CG18 <> ?2")},
        group_{database.prepare(
            "SELECT CG86_DITTACOLL_CG18, CG86_INDTIPOCONT FROM CG86_AZIENDECOLL WHERE"
            " CG86_INDTIPO = 0 AND CG86_ANNOIVA = ?1 AND CG86_DITTA_CG18 = ?2 AND"
            " CG86_DITTACOLL_CG18 <> ?2 ORDER BY CG86_DITTACOLL_CG18")},
        taken_{database.prepare(inList(linked))},
        source_{database.prepare("SELECT * FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = ?1 AND"
                                 " CG44_TIPOCF = 0 AND CG44_CLIFOR = ?2")},
        intermediary_{database.prepare(
            "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = ?1 AND CG40_TIPOCF = 0 AND"
            " CG40_INTERMEDIO = ?2")},
        branch_{database.prepare(
            "SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = ?1 AND CG31_CODICE = ?2")},
        insert_{database.prepare(
            "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16,"
            " CG44_GRUPPO_CG10, CG44_CONTO_CG24, CG44_CONTOR_CG24, CG44_CODPAG_CG62,"
            " CG44_GGSCADFIX, CG44_CODABI_CG12, CG44_CODCAB_CG13, CG44_TIPOCF_CG40,"
            " CG44_INTERMEDIO_CG40, CG44_CODICE_CG08, CG44_CODICE_CG28, CG44_IDAGENTE_MG17,"
            " CG44_CODSEDE_CG31, CG44_IDMEDIA_CG99, CG44_FLGATTIVO) VALUES"
            " (?1,?2,?3,?4,?5,?6,?7,?8,?9,?10,?11,?12,?13,?14,?15,?16,?17,?18,?19)")},
        number_{database.prepare(
            "SELECT CG70_ULTNUMDOC FROM CG70_NUMERDOC WHERE CG70_DITTA_CG18 = ?1 AND CG70_SEZ_CG68"
            " = '00' AND CG70_ANNO = 0 AND CG70_TIPODOCINT = 901")},
        firstNumber_{database.prepare("INSERT INTO CG70_NUMERDOC VALUES (?1, '00', 0, 901, ?2)")},
        nextNumber_{database.prepare(
            "UPDATE CG70_NUMERDOC SET CG70_ULTNUMDOC = ?2 WHERE CG70_DITTA_CG18 = ?1 AND"
            " CG70_SEZ_CG68 = '00' AND CG70_ANNO = 0 AND CG70_TIPODOCINT = 901 AND"
            " (CG70_ULTNUMDOC IS NULL OR CG70_ULTNUMDOC < ?2)")} {}

  void spread(std::int64_t code) {
    bindGroup(*principal_);
    principal_->readAll();
    companies_.clear();
    bindGroup(*group_);
    while (group_->step()) {
      companies_.push_back(group_->integer(0));
    }
    begin_->step();
    for (std::size_t i = 0; i < companies_.size(); ++i) {
      taken_->bind(static_cast<int>(i) + 2, companies_[i]);
    }
    taken_->bind(1, code);
    taken_->readAll();
    source_->bind(1, kMainCompany);
    source_->bind(2, code);
    source_->readAll();
    for (const std::int64_t company : companies_) {
      copy(company, code);
    }
    record(kMainCompany, code);
    for (const std::int64_t company : companies_) {
      record(company, code);
    }
    commit_->step();
  }

 private:
  static std::string inList(int linked) {
    std::string list = "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 IN (?2";
    for (int i = 1; i < linked; ++i) {
      list += ",?" + std::to_string(i + 2);
    }
    return list + ") AND CG44_TIPOCF = 0 AND CG44_CLIFOR = ?1";
  }
  static void bindGroup(RawStatement& statement) {
    statement.bind(1, 2025);
    statement.bind(2, kMainCompany);
  }
  void copy(std::int64_t company, std::int64_t code) {
    intermediary_->bind(1, company);
    intermediary_->bind(2, 1);
    intermediary_->readAll();
    branch_->bind(1, company);
    branch_->bind(2, 1);
    branch_->readAll();
    constexpr int kColumns = 19;
    for (int column = 1; column <= kColumns; ++column) {
      insert_->bindNull(column);
    }
    insert_->bind(1, company);
    insert_->bind(2, 0);
    insert_->bind(3, code);
    insert_->bind(4, 3005);
    insert_->bind(5, 1);
    insert_->bind(12, 0);
    insert_->bind(13, 1);
    insert_->bind(14, "IT");
    insert_->bind(15, "22");
    insert_->bind(17, 1);
    insert_->bind(19, 0);
    insert_->step();
  }
  void record(std::int64_t company, std::int64_t code) {
    number_->bind(1, company);
    const bool there = number_->readAll() == 1;
    RawStatement& change = there ? *nextNumber_ : *firstNumber_;
    change.bind(1, company);
    change.bind(2, code);
    change.step();
  }

  using Statement = std::unique_ptr<RawStatement>;
  Statement begin_, commit_, principal_, group_, taken_, source_, intermediary_, branch_, insert_,
      number_, firstNumber_, nextNumber_;
  std::vector<std::int64_t> companies_;
};

void handWritten(benchmark::State& state) {
  const auto linked = static_cast<int>(state.range(0));
  const ScratchFile file;
  openGroup(linked, file.path()).reset();
  RawDatabase database{file.path()};
  HandWritten job{database, linked};
  const auto count = database.prepare(
      "SELECT count(*) FROM CG44_CLIFOR, CG70_NUMERDOC WHERE CG70_DITTA_CG18 = CG44_DITTA_CG18 AND"
      " CG70_TIPODOCINT = 901 AND CG70_ANNO = 0 AND CG70_ULTNUMDOC = ?1 AND CG44_TIPOCF = 0 AND"
      " CG44_CLIFOR = ?1 AND CG44_DITTA_CG18 >= 1000");
  timeJobs(
      state,
      [&](std::int64_t code) {
        database.run(
            join("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR,"
                 " CG44_CODICE_CG16, CG44_GRUPPO_CG10, CG44_TIPOCF_CG40,"
                 " CG44_INTERMEDIO_CG40, CG44_CODICE_CG08, CG44_CODICE_CG28,"
                 " CG44_CODSEDE_CG31, CG44_FLGATTIVO) VALUES (1000, 0, ",
                 code, ", 3005, 1, 0, 1, 'IT', '22', 1, 1)"));
      },
      [&](std::int64_t code) { job.spread(code); },
      [&](std::int64_t code) {
        count->bind(1, code);
        const bool found = count->step() && count->integer(0) == linked + 1;
        while (count->step()) {
        }
        return found;
      });
}

/// What a user would write instead: every copy in one statement, the numbers in two.
void setBased(benchmark::State& state) {
  const auto linked = static_cast<int>(state.range(0));
  const std::shared_ptr<Connection> connection = openGroup(linked);
  std::string batch;
  timeJobs(
      state,
      [&](std::int64_t code) {
        addCustomer(*connection, code);
        const std::string group =
            " FROM CG86_AZIENDECOLL AS L WHERE L.CG86_INDTIPO = 0 AND L.CG86_ANNOIVA = 2025 AND"
            " L.CG86_DITTA_CG18 = 1000";
        batch = join(
            "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16,"
            " CG44_GRUPPO_CG10, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, CG44_CODICE_CG08,"
            " CG44_CODICE_CG28, CG44_CODSEDE_CG31, CG44_FLGATTIVO) SELECT L.CG86_DITTACOLL_CG18,"
            " S.CG44_TIPOCF, S.CG44_CLIFOR, S.CG44_CODICE_CG16, S.CG44_GRUPPO_CG10,"
            " S.CG44_TIPOCF_CG40, S.CG44_INTERMEDIO_CG40, S.CG44_CODICE_CG08, S.CG44_CODICE_CG28,"
            " S.CG44_CODSEDE_CG31, 0 FROM CG86_AZIENDECOLL AS L INNER JOIN CG44_CLIFOR AS S ON"
            " S.CG44_DITTA_CG18 = L.CG86_DITTA_CG18 WHERE L.CG86_INDTIPO = 0 AND L.CG86_ANNOIVA ="
            " 2025 AND L.CG86_DITTA_CG18 = 1000 AND S.CG44_TIPOCF = 0 AND S.CG44_CLIFOR = ",
            code, "\r\n UPDATE CG70_NUMERDOC SET CG70_ULTNUMDOC = ", code,
            " WHERE CG70_SEZ_CG68 = '00' AND CG70_ANNO = 0 AND CG70_TIPODOCINT = 901 AND"
            " (CG70_DITTA_CG18 = 1000 OR CG70_DITTA_CG18 IN (SELECT L.CG86_DITTACOLL_CG18",
            group,
            "))\r\n INSERT INTO CG70_NUMERDOC (CG70_DITTA_CG18, CG70_SEZ_CG68, CG70_ANNO,"
            " CG70_TIPODOCINT, CG70_ULTNUMDOC) SELECT D.CG18_DITTA, '00', 0, 901, ",
            code,
            " FROM CG18_ANADITTABASE AS D WHERE (D.CG18_DITTA = 1000 OR D.CG18_DITTA IN (SELECT"
            " L.CG86_DITTACOLL_CG18",
            group,
            ")) AND NOT EXISTS (SELECT 1 FROM CG70_NUMERDOC AS N WHERE N.CG70_DITTA_CG18 ="
            " D.CG18_DITTA AND N.CG70_SEZ_CG68 = '00' AND N.CG70_ANNO = 0 AND N.CG70_TIPODOCINT ="
            " 901)");
      },
      [&](std::int64_t) {
        connection->beginTrans();
        run(*connection, batch);
        connection->commitTrans();
      },
      [&](std::int64_t code) { return companiesWith(*connection, code) == linked + 1; });
}

void groups(benchmark::internal::Benchmark* job) {
  job->Arg(1)->Arg(10)->Arg(100)->Arg(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);
}
BENCHMARK(component)->Apply(groups);
BENCHMARK(replayedText)->Apply(groups);
BENCHMARK(handWritten)->Apply(groups);
BENCHMARK(setBased)->Apply(groups);

}  // namespace
}  // namespace azcoll::bench
