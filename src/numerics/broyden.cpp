// The globally convergent Broyden method (Dennis and Schnabel; in the form
// popularised by Press et al.): a QR factorisation of a finite-difference
// Jacobian, rank-one updates of that factorisation by Jacobi rotations, and
// a backtracking line search on f = |F|^2 / 2, all in extended precision.
// A try fails on a singular factor (182, 183), on too many iterations (184),
// on a line search that finds no sufficient decrease (185), or on a negative
// theta; only the last try's failure is reported. Zero targets give the
// trivial solution at once.
#include "numerics/broyden.h"

#include <cmath>

#include "numerics/allocators.h"
#include "numerics/numerics_report.h"
#include "numerics/random.h"

namespace {

constexpr int N = 3;
constexpr int MAXITS = 200;
constexpr my_float EPS = 1.0e-7L;  // relative noise below which an update is skipped
constexpr my_float TOLF = 1.0e-4L;
constexpr my_float TOLMIN = 1.0e-6L;
constexpr my_float TOLX = 1.0e-7L;
constexpr my_float STPMX = 1000.0L;
constexpr my_float FDJAC_EPS = 1.0e-4L;
constexpr my_float ALF = 1.0e-4L;
constexpr int OUT_OF_MEMORY = -1;  // already reported by the allocator

// NaN loses both comparisons, so the other argument wins.
my_float fmax_of(my_float a, my_float b) {
  return a > b ? a : b;
}
my_float sign_of(my_float a, my_float b) {
  return b >= 0.0L ? std::fabs(a) : -std::fabs(a);
}

my_float bounded_exp(my_float exponent) {
  if (exponent < -300.0L) return std::exp(-300.0L);
  if (exponent > 300.0L) return std::exp(300.0L);
  return std::exp(exponent);
}

// F(x) of the divergence system for the (scaled) targets y[1..3].
void divergence_residuals(const my_float* y, const my_float* x, my_float* f) {
  const my_float theta = x[1];
  const my_float alpha = x[2];
  const my_float tau = x[3];
  const my_float e1 =
      bounded_exp(alpha == 0.0L || theta == 0.0L ? -400.0L : -tau / (alpha * theta));
  const my_float e2 = bounded_exp(
      1.0L - alpha == 0.0L || theta == 0.0L ? -400.0L : -tau / ((1.0L - alpha) * theta));
  f[1] = theta * (alpha + (1.0L - alpha) * e1) - y[1];
  f[2] = theta * ((1.0L - alpha) + alpha * e2) - y[2];
  f[3] = tau + theta - y[3];
}

// One run of the iteration from a start x[1..N], with its working arrays.
class BroydenRun {
 public:
  explicit BroydenRun(const my_float* targets) : targets_(targets) {}
  // 0 on convergence, else the code of the failure.
  int run(my_float* x);

 private:
  bool allocated() const;
  my_float fmin(const my_float* x);
  void fdjac(my_float* x);
  bool qrdcmp();
  bool fresh_factorisation(my_float* x);
  bool broyden_update(const my_float* x);
  void qrupdt(my_float* u, const my_float* v);
  void rotate(int i, my_float a, my_float b);
  void rsolv(my_float* b);
  void newton_step();
  bool lnsrch(my_float fold, my_float* x, my_float& f, my_float stpmax, bool& check);
  my_float next_lambda(my_float alam, my_float alam2, my_float f, my_float f2, my_float fold,
                       my_float slope) const;
  my_float max_abs_residual();
  my_float gradient_test(const my_float* x, my_float f);
  my_float step_test(const my_float* x);

  const my_float* targets_;
  OffsetVector c_{1, N}, d_{1, N}, fvcold_{1, N}, g_{1, N}, p_{1, N}, s_{1, N}, t_{1, N}, w_{1, N},
      xold_{1, N}, fvec_{1, N}, ftrial_{1, N};
  OffsetMatrix qt_{1, N, 1, N}, r_{1, N, 1, N};
};

bool BroydenRun::allocated() const {
  for (const OffsetVector* v :
       {&c_, &d_, &fvcold_, &g_, &p_, &s_, &t_, &w_, &xold_, &fvec_, &ftrial_}) {
    if (!v->valid()) return false;
  }
  return qt_.valid() && r_.valid();
}

my_float BroydenRun::fmin(const my_float* x) {
  divergence_residuals(targets_, x, fvec_.get());
  my_float sum = 0.0L;
  for (int i = 1; i <= N; ++i) sum += fvec_[i] * fvec_[i];
  return 0.5L * sum;
}

// Forward differences into r_, around x with residuals fvec_.
void BroydenRun::fdjac(my_float* x) {
  for (int j = 1; j <= N; ++j) {
    const my_float temp = x[j];
    my_float h = FDJAC_EPS * std::fabs(temp);
    if (h == 0.0L) h = FDJAC_EPS;
    x[j] = temp + h;
    h = x[j] - temp;  // the step actually taken
    divergence_residuals(targets_, x, ftrial_.get());
    x[j] = temp;
    for (int i = 1; i <= N; ++i) r_[i][j] = (ftrial_[i] - fvec_[i]) / h;
  }
}

// Householder QR of r_ in place; true when a factor is singular.
bool BroydenRun::qrdcmp() {
  bool singular = false;
  for (int k = 1; k < N; ++k) {
    my_float scale = 0.0L;
    for (int i = k; i <= N; ++i) scale = fmax_of(scale, std::fabs(r_[i][k]));
    if (scale == 0.0L) {
      singular = true;
      c_[k] = d_[k] = 0.0L;
      continue;
    }
    for (int i = k; i <= N; ++i) r_[i][k] /= scale;
    my_float sum = 0.0L;
    for (int i = k; i <= N; ++i) sum += r_[i][k] * r_[i][k];
    const my_float sigma = sign_of(std::sqrt(sum), r_[k][k]);
    r_[k][k] += sigma;
    c_[k] = sigma * r_[k][k];
    d_[k] = -scale * sigma;
    for (int j = k + 1; j <= N; ++j) {
      sum = 0.0L;
      for (int i = k; i <= N; ++i) sum += r_[i][k] * r_[i][j];
      const my_float tau = sum / c_[k];
      for (int i = k; i <= N; ++i) r_[i][j] -= tau * r_[i][k];
    }
  }
  d_[N] = r_[N][N];
  return singular || d_[N] == 0.0L;
}

// New Jacobian at x, factorised; Q^T formed explicitly, R unpacked.
bool BroydenRun::fresh_factorisation(my_float* x) {
  fdjac(x);
  if (qrdcmp()) return false;
  for (int i = 1; i <= N; ++i) {
    for (int j = 1; j <= N; ++j) qt_[i][j] = 0.0L;
    qt_[i][i] = 1.0L;
  }
  for (int k = 1; k < N; ++k) {
    if (c_[k] == 0.0L) continue;
    for (int j = 1; j <= N; ++j) {
      my_float sum = 0.0L;
      for (int i = k; i <= N; ++i) sum += r_[i][k] * qt_[i][j];
      sum /= c_[k];
      for (int i = k; i <= N; ++i) qt_[i][j] -= sum * r_[i][k];
    }
  }
  for (int i = 1; i <= N; ++i) {
    r_[i][i] = d_[i];
    for (int j = 1; j < i; ++j) r_[i][j] = 0.0L;
  }
  return true;
}

// Broyden's rank-one update of Q R; false when R turns singular.
bool BroydenRun::broyden_update(const my_float* x) {
  for (int i = 1; i <= N; ++i) s_[i] = x[i] - xold_[i];
  for (int i = 1; i <= N; ++i) {
    my_float sum = 0.0L;
    for (int j = i; j <= N; ++j) sum += r_[i][j] * s_[j];
    t_[i] = sum;
  }
  bool skip = true;
  for (int i = 1; i <= N; ++i) {
    my_float sum = 0.0L;
    for (int j = 1; j <= N; ++j) sum += qt_[j][i] * t_[j];
    w_[i] = fvec_[i] - fvcold_[i] - sum;
    if (std::fabs(w_[i]) >= EPS * (std::fabs(fvec_[i]) + std::fabs(fvcold_[i]))) {
      skip = false;
    } else {
      w_[i] = 0.0L;
    }
  }
  if (skip) return true;
  for (int i = 1; i <= N; ++i) {
    my_float sum = 0.0L;
    for (int j = 1; j <= N; ++j) sum += qt_[i][j] * w_[j];
    t_[i] = sum;
  }
  my_float den = 0.0L;
  for (int i = 1; i <= N; ++i) den += s_[i] * s_[i];
  for (int i = 1; i <= N; ++i) s_[i] /= den;
  qrupdt(t_.get(), s_.get());
  for (int i = 1; i <= N; ++i) {
    if (r_[i][i] == 0.0L) return false;
    d_[i] = r_[i][i];
  }
  return true;
}

// Q R + u v^T re-factorised by Jacobi rotations.
void BroydenRun::qrupdt(my_float* u, const my_float* v) {
  int k = N;
  while (k >= 1 && u[k] == 0.0L) --k;
  if (k < 1) k = 1;
  for (int i = k - 1; i >= 1; --i) {
    rotate(i, u[i], -u[i + 1]);
    if (u[i] == 0.0L) {
      u[i] = std::fabs(u[i + 1]);
    } else if (std::fabs(u[i]) > std::fabs(u[i + 1])) {
      const my_float ratio = u[i + 1] / u[i];
      u[i] = std::fabs(u[i]) * std::sqrt(1.0L + ratio * ratio);
    } else {
      const my_float ratio = u[i] / u[i + 1];
      u[i] = std::fabs(u[i + 1]) * std::sqrt(1.0L + ratio * ratio);
    }
  }
  for (int j = 1; j <= N; ++j) r_[1][j] += u[1] * v[j];
  for (int i = 1; i < k; ++i) rotate(i, r_[i][i], -r_[i + 1][i]);
}

void BroydenRun::rotate(int i, my_float a, my_float b) {
  my_float c = 0.0L;
  my_float s = 0.0L;
  if (a == 0.0L) {
    s = b >= 0.0L ? 1.0L : -1.0L;
  } else if (std::fabs(a) > std::fabs(b)) {
    const my_float fact = b / a;
    c = sign_of(1.0L / std::sqrt(1.0L + fact * fact), a);
    s = fact * c;
  } else {
    const my_float fact = a / b;
    s = sign_of(1.0L / std::sqrt(1.0L + fact * fact), b);
    c = fact * s;
  }
  for (int j = i; j <= N; ++j) {
    const my_float y = r_[i][j];
    const my_float w = r_[i + 1][j];
    r_[i][j] = c * y - s * w;
    r_[i + 1][j] = s * y + c * w;
  }
  for (int j = 1; j <= N; ++j) {
    const my_float y = qt_[i][j];
    const my_float w = qt_[i + 1][j];
    qt_[i][j] = c * y - s * w;
    qt_[i + 1][j] = s * y + c * w;
  }
}

// Back substitution with the upper triangle of r_ and the diagonal d_.
void BroydenRun::rsolv(my_float* b) {
  b[N] /= d_[N];
  for (int i = N - 1; i >= 1; --i) {
    my_float sum = 0.0L;
    for (int j = i + 1; j <= N; ++j) sum += r_[i][j] * b[j];
    b[i] = (b[i] - sum) / d_[i];
  }
}

// Gradient g = (Q R)^T F and Newton step p = -(Q R)^{-1} F.
void BroydenRun::newton_step() {
  for (int i = 1; i <= N; ++i) {
    my_float sum = 0.0L;
    for (int j = 1; j <= N; ++j) sum += qt_[i][j] * fvec_[j];
    g_[i] = sum;
  }
  for (int i = N; i >= 1; --i) {
    my_float sum = 0.0L;
    for (int j = 1; j <= i; ++j) sum += r_[j][i] * g_[j];
    g_[i] = sum;
  }
  for (int i = 1; i <= N; ++i) {
    my_float sum = 0.0L;
    for (int j = 1; j <= N; ++j) sum += qt_[i][j] * fvec_[j];
    p_[i] = -sum;
  }
  rsolv(p_.get());
}

// Backtracking along p_ from xold_; false on an ascent direction. check is
// set when the step fell below its tolerance without sufficient decrease.
bool BroydenRun::lnsrch(my_float fold, my_float* x, my_float& f, my_float stpmax, bool& check) {
  check = false;
  my_float sum = 0.0L;
  for (int i = 1; i <= N; ++i) sum += p_[i] * p_[i];
  sum = std::sqrt(sum);
  if (sum > stpmax) {
    for (int i = 1; i <= N; ++i) p_[i] *= stpmax / sum;
  }
  my_float slope = 0.0L;
  for (int i = 1; i <= N; ++i) slope += g_[i] * p_[i];
  if (!(slope < 0.0L)) return false;
  my_float test = 0.0L;
  for (int i = 1; i <= N; ++i) {
    const my_float temp = std::fabs(p_[i]) / fmax_of(std::fabs(xold_[i]), 1.0L);
    if (temp > test) test = temp;
  }
  const my_float alamin = TOLX / test;
  my_float alam = 1.0L;
  my_float alam2 = 0.0L;
  my_float f2 = 0.0L;
  for (;;) {
    for (int i = 1; i <= N; ++i) x[i] = xold_[i] + alam * p_[i];
    f = fmin(x);
    if (alam < alamin) {
      for (int i = 1; i <= N; ++i) x[i] = xold_[i];
      check = true;
      return true;
    }
    if (f <= fold + ALF * alam * slope) return true;
    const my_float tmplam = next_lambda(alam, alam2, f, f2, fold, slope);
    alam2 = alam;
    f2 = f;
    alam = fmax_of(tmplam, 0.1L * alam);
  }
}

// Minimiser of the quadratic (first backtrack) or cubic model of f along
// the step, at most half the last lambda.
my_float BroydenRun::next_lambda(my_float alam, my_float alam2, my_float f, my_float f2,
                                 my_float fold, my_float slope) const {
  if (alam == 1.0L) return -slope / (2.0L * (f - fold - slope));
  const my_float rhs1 = f - fold - alam * slope;
  const my_float rhs2 = f2 - fold - alam2 * slope;
  const my_float a = (rhs1 / (alam * alam) - rhs2 / (alam2 * alam2)) / (alam - alam2);
  const my_float b =
      (-alam2 * rhs1 / (alam * alam) + alam * rhs2 / (alam2 * alam2)) / (alam - alam2);
  my_float tmplam = 0.0L;
  if (a == 0.0L) {
    tmplam = -slope / (2.0L * b);
  } else {
    const my_float disc = b * b - 3.0L * a * slope;
    if (disc < 0.0L) {
      tmplam = 0.5L * alam;
    } else if (b <= 0.0L) {
      tmplam = (-b + std::sqrt(disc)) / (3.0L * a);
    } else {
      tmplam = -slope / (b + std::sqrt(disc));
    }
  }
  return tmplam > 0.5L * alam ? 0.5L * alam : tmplam;
}

my_float BroydenRun::max_abs_residual() {
  my_float test = 0.0L;
  for (int i = 1; i <= N; ++i) test = fmax_of(std::fabs(fvec_[i]), test);
  return test;
}

// Largest relative gradient component: tells a spurious minimum of f.
my_float BroydenRun::gradient_test(const my_float* x, my_float f) {
  my_float test = 0.0L;
  const my_float den = fmax_of(f, 0.5L * N);
  for (int i = 1; i <= N; ++i) {
    const my_float temp = std::fabs(g_[i]) * fmax_of(std::fabs(x[i]), 1.0L) / den;
    if (temp > test) test = temp;
  }
  return test;
}

// Largest relative change of x over the last step.
my_float BroydenRun::step_test(const my_float* x) {
  my_float test = 0.0L;
  for (int i = 1; i <= N; ++i) {
    const my_float temp = std::fabs(x[i] - xold_[i]) / fmax_of(std::fabs(x[i]), 1.0L);
    if (temp > test) test = temp;
  }
  return test;
}

int BroydenRun::run(my_float* x) {
  if (!allocated()) return OUT_OF_MEMORY;
  my_float f = fmin(x);
  if (max_abs_residual() < 0.01L * TOLF) return 0;
  my_float sum = 0.0L;
  for (int i = 1; i <= N; ++i) sum += x[i] * x[i];
  const my_float stpmax = STPMX * fmax_of(std::sqrt(sum), static_cast<my_float>(N));
  bool restart = true;
  for (int its = 1; its <= MAXITS; ++its) {
    if (restart) {
      if (!fresh_factorisation(x)) return numerics_code::SINGULAR_JACOBIAN;
    } else if (!broyden_update(x)) {
      return numerics_code::R_SINGULAR;
    }
    newton_step();
    for (int i = 1; i <= N; ++i) {
      xold_[i] = x[i];
      fvcold_[i] = fvec_[i];
    }
    const my_float fold = f;
    bool check = false;
    if (!lnsrch(fold, x, f, stpmax, check)) return numerics_code::ROUNDOFF_IN_LNSRCH;
    if (max_abs_residual() < TOLF) return 0;
    if (check) {
      // A failed line search: fatal right after a fresh Jacobian or at a
      // spurious minimum of f, else worth one more fresh Jacobian.
      if (restart || gradient_test(x, f) < TOLMIN) return numerics_code::ROUNDOFF_IN_LNSRCH;
      restart = true;
    } else {
      restart = false;
      if (step_test(x) < TOLX) return 0;
    }
  }
  return numerics_code::TOO_MANY_ITERATIONS;
}

const char* function_of(int code) {
  return code == numerics_code::ROUNDOFF_IN_LNSRCH ? "TBroyden::lnsrch()" : "TBroyden::broydn()";
}

}  // namespace

TBroyden::TBroyden(double y1, double y2, double y3, RandomGenerator& generator)
    : generator_(generator), work_targets_{0.0L, y1, y2, y3} {}

// One try: scale, start, iterate, scale back. Returns 0 or a failure code
// (1 for a solution with a negative or non-finite theta).
int TBroyden::run_try(int attempt) {
  my_float* y = work_targets_.data();
  my_float m = fmax_of(fmax_of(y[1], y[2]), y[3]);
  if (m == 0.0L) m = 1.0L;
  for (int i = 1; i <= N; ++i) y[i] /= m;
  const my_float sum = y[1] + y[2];
  x_[1] = sum / 2.0L;
  x_[3] = y[3] - x_[1];
  x_[2] = sum == 0.0L ? 0.5L : y[1] / sum;
  if (attempt > 0) {
    for (int i = 1; i <= N; ++i) {
      int idum = 1;
      x_[i] *= 0.01L * (200.0L * generator_.ran3(&idum) + 1.0L);
    }
  }
  const int code = BroydenRun(y).run(x_.data());
  // theta and tau scale with the targets; alpha is a proportion.
  x_[1] *= m;
  x_[3] *= m;
  for (int i = 1; i <= N; ++i) y[i] *= m;
  if (code != 0) return code;
  if (!std::isfinite(x_[1]) || !std::isfinite(x_[2]) || !std::isfinite(x_[3]) || x_[1] < 0.0L) {
    return 1;
  }
  return 0;
}

bool TBroyden::solve(int max_tries) {
  failed_ = true;
  for (int attempt = 0; attempt < max_tries && failed_; ++attempt) {
    const int code = run_try(attempt);
    failed_ = code != 0;
    if (failed_ && attempt == max_tries - 1 && code > 1) {
      numerics_report(numerics_kind::ERROR, function_of(code), code);
    }
  }
  return failed_;
}
