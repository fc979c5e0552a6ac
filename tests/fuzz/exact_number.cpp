#include "fuzz/exact_number.h"

#include <algorithm>

namespace azcoll::fuzz {

ExactNumber::ExactNumber(std::string_view text) {
  bool behindPoint = false;
  for (const char c : text) {
    if (c == '-') {
      negative_ = true;
    } else if (c == '.') {
      behindPoint = true;
    } else if (c != '+') {
      digits_.push_back(c - '0');
      scale_ += behindPoint ? 1 : 0;
    }
  }
  std::reverse(digits_.begin(), digits_.end());
  trim();
}

void ExactNumber::trim() {
  while (!digits_.empty() && digits_.back() == 0) {
    digits_.pop_back();
  }
  while (scale_ > 0 && !digits_.empty() && digits_.front() == 0) {
    digits_.erase(digits_.begin());
    --scale_;
  }
  if (digits_.empty()) {
    scale_ = 0;
    negative_ = false;
  }
}

bool ExactNumber::fits() const {
  constexpr int kMost = 38;
  return digits_.size() <= kMost && scale_ <= kMost;
}

ExactNumber ExactNumber::magnitude() const {
  ExactNumber result = *this;
  result.negative_ = false;
  return result;
}

ExactNumber ExactNumber::negated() const {
  ExactNumber result = *this;
  result.negative_ = !negative_ && !isZero();
  return result;
}

ExactNumber::Digits ExactNumber::digitsAt(int scale) const {
  Digits digits(static_cast<std::size_t>(scale - scale_), 0);
  digits.insert(digits.end(), digits_.begin(), digits_.end());
  return digits;
}

std::strong_ordering ExactNumber::compare(const Digits& left, const Digits& right) {
  for (std::size_t i = std::max(left.size(), right.size()); i-- > 0;) {
    const int leftDigit = i < left.size() ? left[i] : 0;
    const int rightDigit = i < right.size() ? right[i] : 0;
    if (leftDigit != rightDigit) {
      return leftDigit <=> rightDigit;
    }
  }
  return std::strong_ordering::equal;
}

ExactNumber::Digits ExactNumber::add(const Digits& left, const Digits& right) {
  Digits sum;
  int carry = 0;
  for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
    carry += (i < left.size() ? left[i] : 0) + (i < right.size() ? right[i] : 0);
    sum.push_back(carry % 10);
    carry /= 10;
  }
  sum.push_back(carry);
  return sum;
}

ExactNumber::Digits ExactNumber::subtract(const Digits& left, const Digits& right) {
  Digits difference;
  int borrowed = 0;
  for (std::size_t i = 0; i < left.size(); ++i) {
    const int digit = left[i] - borrowed - (i < right.size() ? right[i] : 0);
    borrowed = digit < 0 ? 1 : 0;
    difference.push_back(digit + 10 * borrowed);
  }
  return difference;
}

ExactNumber operator+(const ExactNumber& left, const ExactNumber& right) {
  ExactNumber sum;
  sum.scale_ = std::max(left.scale_, right.scale_);
  const ExactNumber::Digits a = left.digitsAt(sum.scale_);
  const ExactNumber::Digits b = right.digitsAt(sum.scale_);
  if (left.negative_ == right.negative_) {
    sum.digits_ = ExactNumber::add(a, b);
    sum.negative_ = left.negative_;
  } else {
    const bool leftWins = ExactNumber::compare(a, b) >= 0;
    sum.digits_ = leftWins ? ExactNumber::subtract(a, b) : ExactNumber::subtract(b, a);
    sum.negative_ = leftWins ? left.negative_ : right.negative_;
  }
  sum.trim();
  return sum;
}

ExactNumber operator*(const ExactNumber& left, const ExactNumber& right) {
  ExactNumber product;
  product.digits_.assign(left.digits_.size() + right.digits_.size() + 1, 0);
  for (std::size_t i = 0; i < left.digits_.size(); ++i) {
    for (std::size_t j = 0; j < right.digits_.size(); ++j) {
      product.digits_[i + j] += left.digits_[i] * right.digits_[j];
    }
  }
  for (std::size_t i = 0; i + 1 < product.digits_.size(); ++i) {
    product.digits_[i + 1] += product.digits_[i] / 10;
    product.digits_[i] %= 10;
  }
  product.scale_ = left.scale_ + right.scale_;
  product.negative_ = left.negative_ != right.negative_;
  product.trim();
  return product;
}

std::strong_ordering operator<=>(const ExactNumber& left, const ExactNumber& right) {
  const ExactNumber difference = left - right;
  if (difference.isZero()) {
    return std::strong_ordering::equal;
  }
  return difference.negative_ ? std::strong_ordering::less : std::strong_ordering::greater;
}

}  // namespace azcoll::fuzz
