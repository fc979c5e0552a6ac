#pragma once

#include <memory>
#include <string>

#include "component/platform.h"

namespace azcoll::automation {

/// Where the suite names the class of its own document numbering: value `NumerazioneProgID` of the
/// key `Software\AZCOLLSRV`, the user's before the machine's.
[[nodiscard]] std::wstring numberingProgId();

/// The platform of Windows: ADO connections, message boxes, objects by ProgID, and the document
/// numbering that the registry names, else the default one.
///
/// A configuration screen is shown by the caller's framework object: its method `Mostra` is called
/// with the screen and comes back when the screen is closed.
class WindowsPlatform final : public Platform {
 public:
  [[nodiscard]] std::shared_ptr<Connection> newConnection(
      std::string_view connectionString) override;
  [[nodiscard]] std::unique_ptr<NumerazioneDocumenti> newNumbering() override;
  [[nodiscard]] Answer messageBox(std::string_view text, int style,
                                  std::string_view title) override;
  [[nodiscard]] std::shared_ptr<NamedMembers> createObject(std::string_view progId) override;
  void show(NamedMembers& screen, const std::shared_ptr<Object>& activeInterface) override;
};

}  // namespace azcoll::automation
