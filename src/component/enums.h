#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace azcoll {

/// Customer or supplier: the values of the `..._TIPOCF` columns.
enum EnumTipoCF : std::int32_t { Cliente = 0, Fornitore = 1 };

/// Where a configuration prompt is asked from; it chooses the prompt's wording.
enum EnumTipoMsgAziendeColl : std::int32_t {
  MsgProvenienzaEserciziAzienda = 0,
  MsgProvenienzaPrimaNota = 1
};

/// Kind of a row of the link table: `CG86_INDTIPO`.
enum EnumTipoCollegamentoCG86 : std::int32_t { AziendeColl = 0, CliForColl = 99 };

/// One published enumeration member.
struct EnumMember {
  std::string_view enumeration;
  std::string_view name;
  std::int32_t value;
};

/// Every enumeration member of the library, in order.
inline constexpr std::array kEnumMembers{
    EnumMember{"EnumTipoCF", "Cliente", Cliente},
    EnumMember{"EnumTipoCF", "Fornitore", Fornitore},
    EnumMember{"EnumTipoMsgAziendeColl", "MsgProvenienzaEserciziAzienda",
               MsgProvenienzaEserciziAzienda},
    EnumMember{"EnumTipoMsgAziendeColl", "MsgProvenienzaPrimaNota", MsgProvenienzaPrimaNota},
    EnumMember{"EnumTipoCollegamentoCG86", "AziendeColl", AziendeColl},
    EnumMember{"EnumTipoCollegamentoCG86", "CliForColl", CliForColl},
};

}  // namespace azcoll
