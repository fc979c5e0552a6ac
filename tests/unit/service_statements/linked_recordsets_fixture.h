#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "service_fixture.h"
#include "support/method.h"

namespace azcoll::test {

// The statements for company 20 in 2024, in the pieces that they share.
inline const std::string kYear =
    " WHERE CG86_INDTIPO = 0 AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18 AND CG86_ANNOIVA = 2024";
inline const std::string kOwnMains =
    " SELECT  CG86_DITTA_CG18 FROM CG86_AZIENDECOLL" + kYear + " AND CG86_DITTACOLL_CG18 = 20)";

inline const std::string kLinkedOnly =
    "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT FROM CG86_AZIENDECOLL" + kYear +
    " AND CG86_DITTA_CG18 = 20";
inline const std::string kGroupUnordered =
    "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT, 0 AS 'ORDINAMENTO' FROM "
    "CG86_AZIENDECOLL" +
    kYear +
    " AND CG86_DITTA_CG18 = 20 UNION  SELECT DISTINCT CG86_DITTA_CG18 AS DITTA, CG86_INDTIPOCONT, "
    "1 AS 'ORDINAMENTO' FROM CG86_AZIENDECOLL" +
    kYear + " AND CG86_DITTA_CG18 = 20";
inline const std::string kMainFirst = kGroupUnordered + " ORDER BY ORDINAMENTO DESC, DITTA";
inline const std::string kMainLast = kGroupUnordered + " ORDER BY ORDINAMENTO, DITTA";
inline const std::string kGroupOfMain =
    "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT FROM CG86_AZIENDECOLL" + kYear +
    " AND CG86_DITTA_CG18 = 20 UNION  SELECT DISTINCT CG86_DITTA_CG18 AS DITTA, CG86_INDTIPOCONT "
    "FROM CG86_AZIENDECOLL" +
    kYear + " AND CG86_DITTA_CG18 = 20";
inline const std::string kMainsOfLinked =
    " UNION SELECT  CG86_DITTA_CG18 AS DITTA, CG86_INDTIPOCONT FROM CG86_AZIENDECOLL" + kYear +
    " AND CG86_DITTA_CG18 IN(" + kOwnMains;
inline const std::string kFellowsAndMain =
    "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT FROM CG86_AZIENDECOLL" + kYear +
    " AND CG86_DITTACOLL_CG18 <> 20 AND CG86_DITTA_CG18 IN(" + kOwnMains + kMainsOfLinked;
inline const std::string kGroupOfLinked =
    "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT FROM CG86_AZIENDECOLL" + kYear +
    " AND CG86_DITTA_CG18 IN(" + kOwnMains + kMainsOfLinked;
inline const std::string kWithVatReturn =
    "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT, 0 AS 'ORDINAMENTO', CG25_INDTIPODEN, "
    "CG25_FLGPOSTICIP, CG25_FLGGESBENZ, CG25_INDCATPART FROM CG86_AZIENDECOLL INNER JOIN "
    "CG25_ANADITTAGEST ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18" +
    kYear +
    " AND CG86_DITTA_CG18 = 20 UNION  SELECT DISTINCT CG86_DITTA_CG18 AS DITTA, CG86_INDTIPOCONT, "
    "1 AS 'ORDINAMENTO', CG25_INDTIPODEN, CG25_FLGPOSTICIP, CG25_FLGGESBENZ, CG25_INDCATPART FROM "
    "CG86_AZIENDECOLL INNER JOIN CG25_ANADITTAGEST ON CG86_DITTA_CG18 = CG25_DITTA_CG18" +
    kYear + " AND CG86_DITTA_CG18 = 20 ORDER BY ORDINAMENTO DESC, DITTA";

/// The lists and recordsets of the group of company 20.
class LinkedRecordsetsTest : public ServiceTest {
 protected:
  static std::map<std::string, Variant> given(const Operation& command) {
    return {command.parameters.begin(), command.parameters.end()};
  }
  /// Companies with their accounting types, two values a row.
  static ResultSet companies(std::vector<Variant> values) {
    return rowSet({"DITTA", "CG86_INDTIPOCONT"}, std::move(values));
  }
  /// Names of everything that reached the connection, in order.
  [[nodiscard]] Lines operationNames() const {
    Lines names;
    for (const Operation& operation : connection->operations) {
      names.push_back(operation.name);
    }
    return names;
  }
  /// A recordset that an earlier call left in the output.
  std::shared_ptr<Recordset> leaveRecordset() {
    service.CPOutput->Grst_DitteCollegate = connection->newRecordset();
    return service.CPOutput->Grst_DitteCollegate;
  }
  /// The flag that the procedure gets from a call that does not change it.
  Variant duplicationFlag() {
    (void)service.GetDittaPrincipale();
    return given(named("CommandExecute").back())["@GestioneDuplicazioneCliFor"];
  }
  /// The companies from the current row to the end.
  static Lines companiesLeft(Recordset& recordset) {
    Lines found;
    for (; !recordset.atEnd(); recordset.moveNext()) {
      found.push_back(recordset.fields().item("DITTA").value().text());
    }
    return found;
  }
};

}  // namespace azcoll::test
