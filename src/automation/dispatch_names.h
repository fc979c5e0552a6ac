#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "automation/boundary.h"
#include "automation/wire.h"

namespace azcoll::automation {

/// What a caller may do with one member.
struct MemberInfo {
  std::wstring name;
  bool method = false;
  Assignment assignment{};
};

/// The members of a class in interface order: position + 1 is a member's dispatch identifier.
using MemberList = std::vector<MemberInfo>;

/// Identifier of the member of that name, letter case ignored; nothing when there is none.
///
/// The type library knows the names too, but in an 8-bit form that is read by the process's code
/// page: a program that runs in UTF-8 would not find the accented ones there.
[[nodiscard]] std::optional<DISPID> memberIdentifier(const MemberList& members,
                                                     const wchar_t* name);

/// The way of assigning that the interface has for the member: callers without a separate way for
/// objects assign them by value, and some ask for both ways at once.
[[nodiscard]] WORD settledFlags(const MemberList& members, DISPID identifier, WORD flags,
                                const DISPPARAMS& parameters);

/// Calls a member through the type library. What the caller got wrong (a value that does not
/// convert) comes back as an exception with a description.
HRESULT invokeMember(const Origin& origin, const MemberList& members, ITypeInfo* types, void* self,
                     DISPID identifier, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                     EXCEPINFO* exception, UINT* badArgument) noexcept;

}  // namespace azcoll::automation
