#include "linked/group_procedure.h"

namespace azcoll::linked {
namespace {

constexpr std::int16_t flag(bool value) { return value ? 1 : 0; }

}  // namespace

std::shared_ptr<Command> groupCommand(const std::shared_ptr<Connection>& connection,
                                      const Variant& company, const Date& start) {
  std::shared_ptr<Command> command = connection->newCommand();
  command->setActiveConnection(connection);
  command->setCommandText("PC_GetDitteCollegate");
  command->setCommandType(CommandOption::StoredProcedure);
  command->setCommandTimeout(0);
  command->setPrepared(true);
  Parameters& parameters = command->parameters();
  parameters.item("@CodiceDitta").setValue(company);
  parameters.item("@DataInizioElaborazione").setValue(start);
  return command;
}

void selectCompanies(Command& command, std::int16_t duplicating, const GroupFilter& filter) {
  Parameters& parameters = command.parameters();
  parameters.item("@GestioneDuplicazioneCliFor").setValue(duplicating);
  parameters.item("@EscludiDittaPrincipale").setValue(flag(filter.withoutMain));
  parameters.item("@EscludiDittaCorrente").setValue(flag(filter.withoutCurrent));
  parameters.item("@TipoCF").setValue(filter.kind);
  parameters.item("@CodIntermedio").setValue(filter.intermediary);
  parameters.item("@CodSede").setValue(filter.branch);
}

}  // namespace azcoll::linked
