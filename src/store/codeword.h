// The codeword beside each refinable value: 0 fixed, 1.0 a parameter of its own, otherwise
// |c| = 10 n + |m| with group n and multiplier m carrying the sign of c.
#pragma once

namespace kaldena {

class Codeword {
 public:
  constexpr Codeword() = default;
  constexpr explicit Codeword(float value) : value_(value) {}

  // The codeword of a value shared through group n with multiplier m (|m| below 10).
  static Codeword Group(int group, float multiplier);
  static constexpr Codeword Own() { return Codeword(1.0f); }

  float Value() const { return value_; }
  bool IsFixed() const { return value_ == 0.0f; }
  bool IsOwn() const { return value_ == 1.0f; }
  bool IsGroup() const { return !IsFixed() && !IsOwn(); }
  // n = int(|c| / 10); 0 for a fixed value or one of its own.
  int GroupNumber() const;
  // (|c| - 10 n) with the sign of c; 1 for a value of its own, 0 for a fixed one.
  float Multiplier() const;

 private:
  float value_ = 0.0f;
};

}  // namespace kaldena
