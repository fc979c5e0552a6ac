#include "cursor/packed_rows.h"

#include <cmath>
#include <limits>
#include <string>

#include "gtest/gtest.h"

#include "cursor/client_cursor.h"
#include "data/connection.h"
#include "data/error.h"

namespace azcoll::cursor {
namespace {

std::vector<Variant> sampleRow(int row) {
  const std::string digits = std::to_string(row);
  return {kNull,
          row % 2 == 0,
          std::int16_t{-32768},
          std::int32_t{row},
          std::numeric_limits<std::int64_t>::min(),
          0.1,
          Decimal::parse("922337203685477.5807").value(),
          Decimal::parse("-99999999999999999999999999999999999999").value(),
          Decimal::parse("12.50").value(),
          Date::of(2024, 2, 29).value(),
          Date::of(9999, 12, 31, 23, 59, 59, 999).value(),
          "",
          std::string(static_cast<std::size_t>(row) % 700, 'x') + "à" + digits};
}

TEST(PackedRows, EveryValueComesBackAsItWas) {
  PackedRows rows;
  constexpr int kRows = 2'000;
  for (int row = 0; row < kRows; ++row) {
    for (const Variant& value : sampleRow(row)) {
      rows.append(value);
    }
    rows.endRow();
  }
  ASSERT_EQ(rows.rowCount(), static_cast<std::size_t>(kRows));
  std::vector<Variant> values(sampleRow(0).size());
  for (int row = kRows - 1; row >= 0; --row) {
    rows.read(static_cast<std::size_t>(row), values);
    ASSERT_EQ(values, sampleRow(row)) << row;
  }
  EXPECT_EQ(values[8].text(), "12.50");  // the scale, too
}

TEST(PackedRows, ValuesLongerThanABlockAreWhole) {
  PackedRows rows;
  for (const std::size_t length : {254U, 255U, 256U, 511U, 512U, 70'000U, 3'000'000U}) {
    rows.append(std::int32_t{1});
    rows.append(Variant{std::string(length, 'y')});
    rows.append(std::string_view{"fine"});
    rows.endRow();
  }
  std::vector<Variant> values(3);
  rows.read(6, values);
  EXPECT_EQ(values[1], Variant{std::string(3'000'000, 'y')});
  rows.read(2, values);
  EXPECT_EQ(values[1], Variant{std::string(256, 'y')});
  EXPECT_EQ(values[2], Variant{"fine"});
}

TEST(PackedRows, ATextShorterThanItsRoomTakesWhatItNeeds) {
  PackedRows rows;
  for (const std::size_t most : {3U, 255U, 256U, 9'000U}) {
    rows.appendWritten(most, [](char* room) {
      room[0] = 'o';
      room[1] = 'k';
      return std::size_t{2};
    });
  }
  rows.append(true);
  rows.endRow();
  std::vector<Variant> values(5);
  rows.read(0, values);
  EXPECT_EQ(values, (std::vector<Variant>{"ok", "ok", "ok", "ok", true}));
}

TEST(PackedRows, EmptyIsNullAndAnObjectIsRefused) {
  PackedRows rows;
  rows.append(Variant{});
  EXPECT_THROW(rows.append(Variant{std::shared_ptr<Object>{}}), Error);
  rows.endRow();
  std::vector<Variant> values(1, true);
  rows.read(0, values);
  EXPECT_TRUE(values[0].isNull());
}

/// A detached recordset of packed rows: C1 from 0 on, C2 its text.
std::shared_ptr<Recordset> packedRecordset(int count) {
  auto rows = std::make_shared<PackedRows>();
  for (int row = 0; row < count; ++row) {
    rows->append(std::int32_t{row});
    rows->append(Variant{"riga " + std::to_string(row)});
    rows->endRow();
  }
  ResultSet set;
  set.columns = {ColumnInfo{.name = "C1"}, ColumnInfo{.name = "C2"}};
  set.packed = std::move(rows);
  ExecutionResult result;
  result.results.push_back(std::move(set));
  return openClientCursor(std::move(result), nullptr);
}

std::string text(Recordset& rows) {
  return rows.fields().item("C1").value().text() + "=" + rows.fields().item("C2").value().text();
}

TEST(PackedRows, ARecordsetOfThemIsWalkedFilteredAndSearched) {
  const auto rows = packedRecordset(50);
  EXPECT_EQ(rows->recordCount(), 50);
  EXPECT_EQ(text(*rows), "0=riga 0");
  rows->find("C2 = 'riga 31'", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_EQ(text(*rows), "31=riga 31");
  rows->setFilter("C1 >= 40 AND C1 < 43");
  EXPECT_EQ(rows->recordCount(), 3);
  rows->moveNext();
  EXPECT_EQ(text(*rows), "41=riga 41");
}

TEST(PackedRows, TheirChangesStayAndAreUndoneLikeAllOthers) {
  const auto rows = packedRecordset(3);
  rows->moveNext();
  rows->fields().item("C2").setValue("cambiata");
  rows->update();
  rows->fields().item("C2").setValue("no");
  rows->cancelUpdate();
  EXPECT_EQ(text(*rows), "1=cambiata");
  rows->addNew();
  rows->fields().item("C1").setValue(std::int32_t{9});
  rows->fields().item("C2").setValue("nuova");
  EXPECT_EQ(rows->recordCount(), 4);
  rows->update();
  rows->addNew();
  rows->cancelUpdate();
  EXPECT_EQ(rows->recordCount(), 4);
  EXPECT_EQ(text(*rows), "9=nuova");
  rows->moveFirst();
  EXPECT_EQ(text(*rows), "0=riga 0");
  rows->moveNext();
  EXPECT_EQ(text(*rows), "1=cambiata");
  rows->setFilter("C2 = 'cambiata'");
  EXPECT_EQ(rows->recordCount(), 1);
}

}  // namespace
}  // namespace azcoll::cursor
