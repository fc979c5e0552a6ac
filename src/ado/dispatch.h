#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ado/com.h"
#include "data/object.h"
#include "data/variant.h"

namespace azcoll::ado {

/// An argument of a late-bound call: a value, a reference to be written, or left out.
class Argument {
 public:
  // NOLINTBEGIN(google-explicit-constructor): a value converts to its argument without ceremony
  Argument(int value);
  Argument(bool value);
  Argument(std::string_view text);
  Argument(const std::string& text) : Argument{std::string_view{text}} {}
  Argument(const char* text) : Argument{std::string_view{text}} {}
  Argument(const Variant& value);
  Argument(IDispatch* object);
  template <typename Enumeration>
  requires std::is_enum_v<Enumeration> Argument(Enumeration value)
      : Argument{static_cast<int>(value)} {}
  // NOLINTEND(google-explicit-constructor)

  /// Left out, for an optional argument.
  static Argument missing();
  /// Written by the call; `target` must outlive it.
  static Argument out(VARIANT& target);

  [[nodiscard]] const VARIANT& value() const { return value_.value(); }

 private:
  Argument() = default;

  ScopedVariant value_;
};

/// Whose an object is.
enum class Owner : std::uint8_t {
  Provider,  ///< ADO's: what it reports stands in the connection's `Errors`, too
  Host       ///< the caller's, as a screen: no database has failed
};

/// A late-bound object: members called by name, their identifiers asked for once.
///
/// The identifiers are kept per object, because nothing promises that two objects of one kind give
/// a name the same identifier. A failure throws `Error`: one of the provider when an object of the
/// provider reports it, unless it says that the use of automation was at fault.
class Dispatch {
 public:
  explicit Dispatch(ComPtr<IDispatch> object, Owner owner = Owner::Provider)
      : object_{std::move(object)}, owner_{owner} {}

  [[nodiscard]] const ComPtr<IDispatch>& object() const { return object_; }

  using Arguments = std::initializer_list<Argument>;
  /// Calls a method; its result may be ignored.
  ScopedVariant call(std::wstring_view member, Arguments arguments = {});
  /// Reads a property, or calls a method for its result, as late-bound callers do.
  ScopedVariant get(std::wstring_view member, Arguments arguments = {});
  /// Assigns by value, or an object by reference.
  void put(std::wstring_view member, const Argument& value);
  void putRef(std::wstring_view member, IDispatch* object);

  /// The object that a property or method gives; none for Nothing. Throws `Error` for anything
  /// else.
  ComPtr<IDispatch> getObject(std::wstring_view member, Arguments arguments = {});
  [[nodiscard]] std::int64_t getNumber(std::wstring_view member);
  [[nodiscard]] bool getFlag(std::wstring_view member);
  [[nodiscard]] std::string getText(std::wstring_view member);

 private:
  DISPID identifier(std::wstring_view member);
  ScopedVariant invoke(std::wstring_view member, WORD access, const Argument* first,
                       std::size_t count);

  ComPtr<IDispatch> object_;
  Owner owner_;
  std::vector<std::pair<std::wstring, DISPID>> identifiers_;
};

/// A new object of the class registered under `progId`. Throws `Error` when it cannot be had.
[[nodiscard]] ComPtr<IDispatch> createObject(std::wstring_view progId);

}  // namespace azcoll::ado
