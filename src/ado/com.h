#pragma once

#include <utility>

#include "ado/win.h"

namespace azcoll::ado {

/// A counted reference to a COM object, or none.
template <typename Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(const ComPtr& other) : pointer_{other.pointer_} { addRef(); }
  ComPtr(ComPtr&& other) noexcept : pointer_{std::exchange(other.pointer_, nullptr)} {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~ComPtr() {
    if (pointer_ != nullptr) {
      pointer_->Release();
    }
  }

  /// A further reference to `pointer`, which may be null.
  static ComPtr share(Interface* pointer) {
    ComPtr result;
    result.pointer_ = pointer;
    result.addRef();
    return result;
  }
  /// Takes over the reference that came with `pointer`.
  static ComPtr adopt(Interface* pointer) {
    ComPtr result;
    result.pointer_ = pointer;
    return result;
  }

  [[nodiscard]] Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  /// Hands the reference over to the caller.
  Interface* detach() { return std::exchange(pointer_, nullptr); }
  /// Where a function writes a new reference; releases the old one.
  Interface** receive() {
    *this = ComPtr{};
    return &pointer_;
  }

  /// Another interface of the same object; none when it has no such interface.
  template <typename Other>
  [[nodiscard]] ComPtr<Other> as(REFIID identifier) const {
    void* other = nullptr;
    if (pointer_ == nullptr || FAILED(pointer_->QueryInterface(identifier, &other))) {
      return {};
    }
    return ComPtr<Other>::adopt(static_cast<Other*>(other));
  }

 private:
  void addRef() {
    if (pointer_ != nullptr) {
      pointer_->AddRef();
    }
  }

  Interface* pointer_ = nullptr;
};

/// Whether two interfaces belong to one object.
template <typename First, typename Second>
[[nodiscard]] bool sameObject(const ComPtr<First>& first, const ComPtr<Second>& second) {
  const auto left = first.template as<IUnknown>(IID_IUnknown);
  const auto right = second.template as<IUnknown>(IID_IUnknown);
  return left && left.get() == right.get();
}

/// A VARIANT that clears itself.
class ScopedVariant {
 public:
  ScopedVariant() { VariantInit(&value_); }
  ScopedVariant(const ScopedVariant&) = delete;
  ScopedVariant(ScopedVariant&& other) noexcept : value_{other.value_} {
    VariantInit(&other.value_);
  }
  ScopedVariant& operator=(const ScopedVariant&) = delete;
  ScopedVariant& operator=(ScopedVariant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~ScopedVariant() { VariantClear(&value_); }

  [[nodiscard]] const VARIANT& value() const { return value_; }
  /// The VARIANT itself, to be written into.
  [[nodiscard]] VARIANT& raw() { return value_; }
  /// Hands the content over to the caller.
  VARIANT detach() {
    VARIANT content = value_;
    VariantInit(&value_);
    return content;
  }

 private:
  VARIANT value_;
};

}  // namespace azcoll::ado
