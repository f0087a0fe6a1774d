// Knuth's subtractive generator (the published "ran3" form) and the deviates
// built on it: Ahrens and Dieter's method for a fractional gamma shape, a
// tangent rejection for integer shapes of 6 and more, and the Poisson deviate
// by multiplication of uniforms (mean below 12) or by rejection against a
// Lorentzian (mean 12 and more). Degenerate shapes and means give 0.
#include "numerics/random.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "numerics/numerics_report.h"
#include "numerics/special_functions.h"

namespace {

constexpr int MBIG = 1000000000;
constexpr int MSEED = 161803398;
constexpr int MZ = 0;
constexpr double FAC = 1e-9;

// What a default stream prints for a double.
std::string general(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%g", value);
  return buffer;
}

// A seed given through the environment: a negative integer that ran3 can
// take as it is, written in plain decimal with nothing around it.
std::optional<int> parse_env_seed(std::string_view text) {
  int value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (value >= 0 || value < -MSEED) return std::nullopt;
  return value;
}

}  // namespace

void RandomGenerator::seed_state(int idum) {
  // |idum| in 64 bits so that the most negative int has an absolute value.
  const long long magnitude = std::llabs(static_cast<long long>(idum));
  int mj = static_cast<int>(std::llabs(MSEED - magnitude) % MBIG);
  ma_[55] = mj;
  int mk = 1;
  for (int i = 1; i <= 54; ++i) {
    const int ii = (21 * i) % 55;
    ma_[ii] = mk;
    mk = mj - mk;
    if (mk < MZ) mk += MBIG;
    mj = ma_[ii];
  }
  for (int k = 1; k <= 4; ++k) {
    for (int i = 1; i <= 55; ++i) {
      ma_[i] -= ma_[1 + (i + 30) % 55];
      if (ma_[i] < MZ) ma_[i] += MBIG;
    }
  }
  inext_ = 0;
  inextp_ = 31;
}

double RandomGenerator::ran3(int* idum) {
  if (*idum < 0 || iff_ == 0) {
    iff_ = 1;
    seed_state(*idum);
    *idum = 1;
  }
  if (++inext_ == 56) inext_ = 1;
  if (++inextp_ == 56) inextp_ = 1;
  int mj = ma_[inext_] - ma_[inextp_];
  if (mj < MZ) mj += MBIG;
  ma_[inext_] = mj;
  const double value = mj * FAC;
  if (value >= 1.0) numerics_log() << " ** strange ran3:" << general(value) << "\n";
  return value;
}

double RandomGenerator::next_uniform() {
  int idum = 1;
  return ran3(&idum);
}

int RandomGenerator::get_seed_from_clock() {
  const std::time_t t = std::time(nullptr);
  std::srand(static_cast<unsigned>(t));
  for (;;) {
    const int r = std::rand() % 1000;
    const std::clock_t c = std::clock();
    const double mixed = static_cast<double>(t) + static_cast<double>(r) * static_cast<double>(c);
    const long long value = -(static_cast<long long>(mixed) % (2000000 - r));
    if (value < 0 && value >= -MSEED) return static_cast<int>(value);
  }
}

int RandomGenerator::seed_for_clock_path() {
  const char* text = std::getenv("MORVCORE_SEED");
  if (text == nullptr) return get_seed_from_clock();
  if (const std::optional<int> seed = parse_env_seed(text)) return *seed;
  numerics_log() << "WARNING: MORVCORE_SEED=\"" << text
                 << "\" is not a negative integer from -161803398 to -1; it is ignored and the "
                    "seed comes from the clock\n";
  return get_seed_from_clock();
}

void RandomGenerator::initialize_ran3(int seed, const std::filesystem::path& seed_file) {
  if (seed < 0 && seed >= -MSEED) {
    int idum = seed;
    ran3(&idum);
    numerics_log() << "Random generator initialized with seed=" << std::to_string(seed) << "\n";
    return;
  }
  if (seed < 0)
    numerics_report(numerics_kind::ERROR, "initialize_ran3()", numerics_code::SEED_TOO_LARGE);
  int lidum = seed_for_clock_path();
  const std::string line =
      "Random number generator initialized with lidum=" + std::to_string(lidum) + "\n";
  numerics_log() << line;
  std::ofstream seed_out(seed_file, std::ios::out | std::ios::trunc);
  if (seed_out) seed_out << line;
  ran3(&lidum);
}

int RandomGenerator::random_int(int* idum, int n) {
  const int k = static_cast<int>(std::floor(n * ran3(idum)));
  return k >= n ? n - 1 : k;
}

int RandomGenerator::uniform_index(int n) {
  const double u = next_uniform();
  if (n <= 0) return 0;
  const int k = static_cast<int>(n * u);
  return k >= n ? n - 1 : k;
}

double RandomGenerator::gamdev(double a) {
  if (a <= 0.0) return 0.0;
  const double n = std::floor(a);
  const double f = a - n;
  double g = 0.0;
  if (n > 0.0) {
    g = gamdev_int(static_cast<int>(n));
    if (f == 0.0) return g;
  }
  return gamma_fraction(f) + g;
}

// Gamma deviate of shape f in (0, 1), by Ahrens and Dieter's rejection.
double RandomGenerator::gamma_fraction(double f) {
  const double e = 2.718281828459;
  const double b = (e + f) / e;
  const double r = 1.0 / f;
  for (;;) {
    const double p = b * next_uniform();
    if (p <= 1.0) {
      const double x = std::pow(p, r);
      if (next_uniform() <= std::exp(-x)) return x;
    } else {
      const double x = -std::log((b - p) / f);
      if (next_uniform() <= std::pow(x, f - 1.0)) return x;
    }
  }
}

double RandomGenerator::gamdev_int(int a) {
  if (a < 1) return 0.0;
  if (a < 6) {
    double product = 1.0;
    for (int j = 1; j <= a; ++j) product *= next_uniform();
    return -std::log(product);
  }
  const double am = a - 1;
  const double s = std::sqrt(2.0 * am + 1.0);
  double x = 0.0;
  double e = 0.0;
  do {
    double y = 0.0;
    do {
      double v1 = 0.0;
      double v2 = 0.0;
      // A zero v1 would make the tangent infinite (a draw of exactly 0.5).
      do {
        v1 = 2.0 * next_uniform() - 1.0;
        v2 = 2.0 * next_uniform() - 1.0;
      } while (v1 * v1 + v2 * v2 > 1.0 || v1 == 0.0);
      y = v2 / v1;
      x = s * y + am;
    } while (x <= 0.0);
    e = (1.0 + y * y) * std::exp(am * std::log(x / am) - s * y);
  } while (next_uniform() > e);
  return x;
}

int RandomGenerator::poidev(double mean, int* idum) {
  constexpr double PI = 3.141592654;
  double em = -1.0;
  if (mean < 12.0) {
    if (mean != poidev_old_mean_) {
      poidev_old_mean_ = mean;
      poidev_g_ = std::exp(-mean);
    }
    double t = 1.0;
    do {
      em += 1.0;
      t *= ran3(idum);
    } while (t > poidev_g_);
    return static_cast<int>(em);
  }
  if (mean != poidev_old_mean_) {
    poidev_old_mean_ = mean;
    poidev_sq_ = std::sqrt(2.0 * mean);
    poidev_alxm_ = std::log(mean);
    poidev_g_ = mean * poidev_alxm_ - gammln(mean + 1.0);
  }
  double t = 0.0;
  do {
    double y = 0.0;
    do {
      y = std::tan(PI * ran3(idum));
      em = poidev_sq_ * y + mean;
    } while (em < 0.0);
    em = std::floor(em);
    t = 0.9 * (1.0 + y * y) * std::exp(em * poidev_alxm_ - gammln(em + 1.0) - poidev_g_);
  } while (ran3(idum) > t);
  return static_cast<int>(em);
}
