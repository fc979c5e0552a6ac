#pragma once

#include <compare>
#include <string>
#include <string_view>
#include <vector>

namespace azcoll::fuzz {

/// A decimal number of any length, computed digit by digit as on paper: what the system's decimals
/// are checked against.
class ExactNumber {
 public:
  /// Reads an optional sign, digits and an optional point, all of it well formed.
  explicit ExactNumber(std::string_view text);

  /// Whether it can be written with at most 38 digits, at most 38 of them fractional.
  [[nodiscard]] bool fits() const;
  /// Fractional digits, trailing zeros left out.
  [[nodiscard]] int scale() const { return scale_; }
  [[nodiscard]] std::size_t digitCount() const { return digits_.size(); }
  [[nodiscard]] bool isZero() const { return digits_.empty(); }
  [[nodiscard]] ExactNumber magnitude() const;
  [[nodiscard]] ExactNumber negated() const;

  friend ExactNumber operator+(const ExactNumber& left, const ExactNumber& right);
  friend ExactNumber operator-(const ExactNumber& left, const ExactNumber& right) {
    return left + right.negated();
  }
  friend ExactNumber operator*(const ExactNumber& left, const ExactNumber& right);
  friend std::strong_ordering operator<=>(const ExactNumber& left, const ExactNumber& right);
  friend bool operator==(const ExactNumber& left, const ExactNumber& right) {
    return (left <=> right) == std::strong_ordering::equal;
  }

 private:
  using Digits = std::vector<int>;  // the last digit first

  ExactNumber() = default;
  /// The digits when the number is written with that many fractional digits.
  [[nodiscard]] Digits digitsAt(int scale) const;
  /// Drops the zeros at both ends.
  void trim();
  static std::strong_ordering compare(const Digits& left, const Digits& right);
  static Digits add(const Digits& left, const Digits& right);
  /// `left` is not the smaller one.
  static Digits subtract(const Digits& left, const Digits& right);

  Digits digits_;
  int scale_ = 0;
  bool negative_ = false;
};

}  // namespace azcoll::fuzz
