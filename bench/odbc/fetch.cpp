// 100,000 rows of 40 columns, fetched whole: the provider's recordset against a program that binds
// its columns and keeps what it reads, column by column, in the types that it works with.

#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <string>
#include <variant>

#include "bare_odbc.h"
#include "counting_memory.h"
#include "data/text.h"
#include "measured.h"

namespace azcoll::bench {
namespace {

constexpr std::size_t kTextUnits = 61;

/// UTF-16 to UTF-8 for the characters of this table and all others of the first plane.
std::string narrow(const char16_t* text, std::size_t units) {
  std::string result;
  result.reserve(units);
  for (std::size_t at = 0; at < units; ++at) {
    const unsigned unit = text[at];
    if (unit < 0x80) {
      result += static_cast<char>(unit);
    } else if (unit < 0x800) {
      result += static_cast<char>(0xC0U | (unit >> 6U));
      result += static_cast<char>(0x80U | (unit & 0x3FU));
    } else {
      result += static_cast<char>(0xE0U | (unit >> 12U));
      result += static_cast<char>(0x80U | ((unit >> 6U) & 0x3FU));
      result += static_cast<char>(0x80U | (unit & 0x3FU));
    }
  }
  return result;
}

/// A bound column and what was read of it so far; Nulls are told apart by `isNull`.
template <typename Wire, typename Kept, SQLSMALLINT CType>
struct BareColumn {
  std::vector<Wire> wire;
  std::vector<SQLLEN> lengths;
  std::vector<Kept> kept{};
  std::vector<bool> isNull{};

  explicit BareColumn(std::size_t block) : wire(block), lengths(block) {}

  void bind(const BareStatement& statement, SQLUSMALLINT number) {
    statement.check(
        SQLBindCol(statement.get(), number, CType, wire.data(), sizeof(Wire), lengths.data()));
  }
  void take(std::size_t rows) {
    for (std::size_t row = 0; row < rows; ++row) {
      const bool none = lengths[row] == SQL_NULL_DATA;
      isNull.push_back(none);
      kept.push_back(none ? Kept{} : valueOf(wire[row], lengths[row]));
    }
  }

 private:
  static Kept valueOf(const Wire& value, SQLLEN length) {
    if constexpr (CType == SQL_C_WCHAR) {
      return narrow(value.data(), static_cast<std::size_t>(length) / sizeof(char16_t));
    } else if constexpr (CType == SQL_C_CHAR) {
      return Decimal::parse({value.data(), static_cast<std::size_t>(length)}).value();
    } else if constexpr (CType == SQL_C_TYPE_TIMESTAMP) {
      return Date::of(value.year, value.month, value.day, value.hour, value.minute, value.second,
                      static_cast<int>(value.fraction / 1'000'000))
          .value();
    } else {
      static_cast<void>(length);
      return value;
    }
  }
};

using IntColumn = BareColumn<std::int32_t, std::int32_t, SQL_C_SLONG>;
using ShortColumn = BareColumn<std::int16_t, std::int16_t, SQL_C_SSHORT>;
using DoubleColumn = BareColumn<double, double, SQL_C_DOUBLE>;
using DateColumn = BareColumn<SQL_TIMESTAMP_STRUCT, Date, SQL_C_TYPE_TIMESTAMP>;
using DecimalColumn = BareColumn<std::array<char, 64>, Decimal, SQL_C_CHAR>;
using TextColumn = BareColumn<std::array<char16_t, kTextUnits>, std::string, SQL_C_WCHAR>;
using AnyColumn =
    std::variant<IntColumn, ShortColumn, DoubleColumn, DateColumn, DecimalColumn, TextColumn>;

std::vector<AnyColumn> columnsFor(std::size_t block) {
  std::vector<AnyColumn> columns;
  for (int column = 0; column < kWideColumns; ++column) {
    switch (column % 10) {
      case 0:
      case 9:
        columns.emplace_back(IntColumn{block});
        break;
      case 2:
        columns.emplace_back(DecimalColumn{block});
        break;
      case 3:
        columns.emplace_back(DateColumn{block});
        break;
      case 4:
        columns.emplace_back(ShortColumn{block});
        break;
      case 7:
        columns.emplace_back(DoubleColumn{block});
        break;
      default:
        columns.emplace_back(TextColumn{block});
        break;
    }
  }
  return columns;
}

/// Reads everything; the columns keep it.
std::vector<AnyColumn> fetchBare(const BareConnection& connection, std::size_t block) {
  const BareStatement statement{connection};
  statement.execute(kWideQuery);
  std::vector<AnyColumn> columns = columnsFor(block);
  SQLULEN fetched = 0;
  if (block > 1) {
    SQLSetStmtAttr(statement.get(), SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(block),
                   0);
    SQLSetStmtAttr(statement.get(), SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
  }
  for (std::size_t column = 0; column < columns.size(); ++column) {
    std::visit([&](auto& part) { part.bind(statement, static_cast<SQLUSMALLINT>(column + 1)); },
               columns[column]);
  }
  while (statement.fetch()) {
    for (AnyColumn& column : columns) {
      std::visit([&](auto& part) { part.take(block > 1 ? fetched : 1); }, column);
    }
  }
  return columns;
}

/// Bytes of the values themselves: numbers at the size of their type on a server, texts at their
/// characters, Nulls at nothing.
std::size_t dataOf(const std::vector<AnyColumn>& columns) {
  constexpr std::size_t kDecimal19 = 9;
  constexpr std::size_t kMoment = 8;
  std::size_t bytes = 0;
  for (const AnyColumn& column : columns) {
    std::visit(
        [&](const auto& part) {
          for (std::size_t row = 0; row < part.kept.size(); ++row) {
            using Kept = typename std::decay_t<decltype(part.kept)>::value_type;
            if (part.isNull[row]) {
              continue;
            }
            if constexpr (std::is_same_v<Kept, std::string>) {
              bytes += part.kept[row].size();
            } else if constexpr (std::is_same_v<Kept, Decimal>) {
              bytes += kDecimal19;
            } else if constexpr (std::is_same_v<Kept, Date>) {
              bytes += kMoment;
            } else {
              bytes += sizeof(Kept);
            }
          }
        },
        column);
  }
  return bytes;
}

void fetchThroughProvider(benchmark::State& state, const Measured& on) {
  const std::shared_ptr<Connection> connection = openOdbc(on.database());
  for (auto _ : state) {
    const std::size_t before = liveBytes();
    startPeak();
    std::int64_t affected = 0;
    const double start = on.clock();
    const std::shared_ptr<Recordset> rows =
        connection->execute(kWideQuery, affected, CommandOption::Text);
    state.SetIterationTime(on.clock() - start);
    FetchMemory& memory = memoryOf(on.name);
    memory.providerHeld = liveBytes() - before;
    memory.providerPeak = peakBytes() - before;
    if (rows->recordCount() != kWideRows) {
      state.SkipWithError("the rows are not there");
    }
  }
}

void fetchThroughBareOdbc(benchmark::State& state, const Measured& on, std::size_t block) {
  const BareConnection connection{on.database().connectionString};
  for (auto _ : state) {
    const std::size_t before = liveBytes();
    startPeak();
    const double start = on.clock();
    const std::vector<AnyColumn> columns = fetchBare(connection, block);
    state.SetIterationTime(on.clock() - start);
    FetchMemory& memory = memoryOf(on.name);
    memory.bareHeld = liveBytes() - before;
    memory.barePeak = peakBytes() - before;
    memory.data = dataOf(columns);
    if (std::get<IntColumn>(columns[0]).kept.size() != kWideRows) {
      state.SkipWithError("the rows are not there");
    }
  }
}

/// Fetch, and every value of every row asked for: what packed rows cost those who read them all.
void readThroughProvider(benchmark::State& state, const Measured& on) {
  const std::shared_ptr<Connection> connection = openOdbc(on.database());
  for (auto _ : state) {
    std::int64_t affected = 0;
    const double start = on.clock();
    const std::shared_ptr<Recordset> rows =
        connection->execute(kWideQuery, affected, CommandOption::Text);
    std::int64_t nulls = 0;
    for (; !rows->atEnd(); rows->moveNext()) {
      for (std::size_t column = 0; column < std::size_t{kWideColumns}; ++column) {
        nulls += rows->fields().item(column).value().isNull() ? 1 : 0;
      }
    }
    state.SetIterationTime(on.clock() - start);
    benchmark::DoNotOptimize(nulls);
  }
}

void setUp(benchmark::internal::Benchmark* job) {
  job->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
}

}  // namespace

FetchMemory& memoryOf(const std::string& database) {
  static std::map<std::string, FetchMemory> all;
  return all[database];
}

void registerFetches(const Measured& on) {
  setUp(benchmark::RegisterBenchmark(join("fetch/provider/", on.name).c_str(), fetchThroughProvider,
                                     on));
  setUp(benchmark::RegisterBenchmark(join("fetch/provider and read/", on.name).c_str(),
                                     readThroughProvider, on));
  for (const std::size_t block : {std::size_t{1}, std::size_t{64}, std::size_t{512}}) {
    setUp(benchmark::RegisterBenchmark(
        join("fetch/bare ODBC, blocks of ", block, "/", on.name).c_str(), fetchThroughBareOdbc, on,
        block));
  }
}

}  // namespace azcoll::bench
