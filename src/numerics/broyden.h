// Solver of the divergence of two populations of unequal sizes: finds
// theta, alpha and tau such that
//   theta * (alpha + (1 - alpha) * E1)        = y1
//   theta * ((1 - alpha) + alpha * E2)        = y2
//   tau + theta                               = y3
// with E1 = exp(-tau / (alpha * theta)), E2 = exp(-tau / ((1 - alpha) * theta)),
// by the globally convergent Broyden method, restarted from random starts.
#pragma once

#include <array>

#include "numerics/my_float.h"

class RandomGenerator;

class TBroyden {
 public:
  static constexpr int DEFAULT_TRIES = 20;

  // The three targets; the restarts draw from `generator`.
  TBroyden(double y1, double y2, double y3, RandomGenerator& generator);

  // Tries up to max_tries starts, the first deterministic and each later one
  // scattered at random; stops at the first success. Returns false when a
  // solution was found and true when every try failed; the failure of the
  // last try is then reported (codes 182 to 185).
  bool solve(int max_tries = DEFAULT_TRIES);
  bool solved() const { return !failed_; }

  // The solution, or the point where the last try ended.
  my_float theta() const { return x_[1]; }
  my_float alpha() const { return x_[2]; }
  my_float tau() const { return x_[3]; }

 private:
  int run_try(int attempt);

  RandomGenerator& generator_;
  std::array<my_float, 4> work_targets_{};  // scaled copies, slots 1 to 3
  std::array<my_float, 4> x_{};             // theta, alpha, tau in slots 1 to 3
  bool failed_ = true;
};
