#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"

/// Tables of T-SQL statements with what they must come to: `cases/*.txt`, read by one runner.
///
/// A section `== title` is one test on an empty database in memory; the section `== setup` of a
/// file runs in front of each of its other sections. Blocks are parted by an empty line: what is
/// expected, then the statement on one or more lines.
///
///     ok                      no result; `ok 3`: and 3 rows changed
///     rows                    the rows behind `----`, cells parted by ` | `, results by `====`
///     rows unordered          the same in any order
///     rows or outside         the rows, or a refusal as outside the language; nothing in between
///     error 207 text          the number and the text (`*` stands for anything) of the error
///     terminated 547 text     the same, with 3621 as the second entry of the Errors collection
///     outside                 refused as outside the supported language
///     error or outside 8117 text
///
/// In front of the rows, `names: a | b` tells the names of the columns (`-` for none) and
/// `kinds: Int16 | Text` the kinds of the first row's values. Cells: `NULL`, `True`, `12`, `12.50`
/// (a decimal with its scale; `12.` has none), `1.5e+00` (a double), `'text'` (with \n, \r, \\),
/// `2024-01-31` or `2024-01-31 10:00:00.003` (a date), `~3.5` (that number in any kind), `*`
/// (anything but NULL). `\r`, `\n` and `\e` (nothing) in a statement stand for line breaks and for
/// an empty line's content.
///
/// The same sections run on the server of AZCOLL_TEST_CONNESSIONE, but for blocks that the engine
/// refuses as outside the language. There an error is its number alone. `server: REASON` in front
/// of a block's expectation says that a server that is not SQL Server answers this block otherwise;
/// as a block of its own, the first of a section, that it answers something in the section
/// otherwise. What is marked and answered as written all the same is a failure: the mark has to go.
namespace azcoll::test {

struct Expected {
  enum class Kind { None, Rows, Error, Outside };
  Kind kind = Kind::None;
  bool outsideToo = false;
  bool unordered = false;
  bool terminated = false;
  std::optional<long long> affected;
  int number = 0;
  std::string text;  ///< of an error

  struct Result {
    std::vector<std::string> names;
    std::vector<std::string> kinds;
    std::vector<std::vector<std::string>> rows;
  };
  std::vector<Result> results;
};

struct Block {
  Expected expected;
  std::string statement;
  std::size_t line = 0;
  std::string serverWay;  ///< why another server answers otherwise; empty when it does not
};

struct Section {
  std::string file;
  std::string title;
  std::string problem;  ///< why the section cannot be run; else empty
  std::vector<Block> setup;
  std::vector<Block> blocks;
  std::string serverWay;  ///< as of a block, for blocks of which one depends on the other

  friend std::ostream& operator<<(std::ostream& out, const Section& section) {
    return out << section.file << ": " << section.title;
  }
};

/// The sections of a file's text; what is wrong with a section stands in its `problem`.
[[nodiscard]] std::vector<Section> readSections(const std::string& file, const std::string& text);

/// Every section of `cases/*.txt`.
[[nodiscard]] std::vector<Section> allSections();

/// Runs a section on an empty database in memory; returns what was not as expected.
[[nodiscard]] std::vector<std::string> runSection(const Section& section);

/// What a server made of a block.
struct ServerAnswer {
  std::vector<std::string> complaints;  ///< what was not as expected
  bool transactionLost = false;         ///< by an error
};

/// Runs one block on a connection to a server, which words its messages in its own way.
[[nodiscard]] ServerAnswer runOnServer(const Block& block, Connection& connection);

/// A value as the cells show it.
[[nodiscard]] std::string cellText(const Variant& value);

/// The name of a value's kind as in `Variant::Kind`.
[[nodiscard]] std::string kindName(const Variant& value);

}  // namespace azcoll::test
