#include "platform/triangulation/exact_predicates.h"

namespace {

// A number as a sum of doubles that do not overlap, ascending in size and without zeros; no term is 0.
template <int Capacity>
struct Expansion {
  int count = 0;
  double term[Capacity];

  void append(double value) {
    if (value != 0.0) term[count++] = value;
  }
  double largest() const { return count == 0 ? 0.0 : term[count - 1]; }
};

// The rounded result, and in `error` what the rounding lost.
double two_sum(double a, double b, double& error) {
  const double sum = a + b;
  const double b_part = sum - a;
  error = (a - (sum - b_part)) + (b - b_part);
  return sum;
}

// The upper 26 bits; the rest fits in 26 bits with its sign.
double upper_half(double a) {
  const double spread = 134217729.0 * a;  // 2^27 + 1
  return spread - (spread - a);
}

double two_product(double a, double b, double& error) {
  const double product = a * b;
  const double a_high = upper_half(a), b_high = upper_half(b);
  const double a_low = a - a_high, b_low = b - b_high;
  error = a_low * b_low - (((product - a_high * b_high) - a_low * b_high) - a_high * b_low);
  return product;
}

Expansion<2> difference(double a, double b) {
  Expansion<2> result;
  double error;
  const double value = two_sum(a, -b, error);
  result.append(error);
  result.append(value);
  return result;
}

// Merges by size and adds from the smallest term up.
template <int A, int B>
Expansion<A + B> sum(const Expansion<A>& e, const Expansion<B>& f) {
  Expansion<A + B> result;
  int i = 0, j = 0;
  const auto next = [&] {
    const bool from_e = j == f.count || (i < e.count && std::fabs(e.term[i]) <= std::fabs(f.term[j]));
    return from_e ? e.term[i++] : f.term[j++];
  };
  const int total = e.count + f.count;
  if (total == 0) return result;
  double carried = next();
  for (int k = 1; k < total; ++k) {
    double error;
    carried = two_sum(carried, next(), error);
    result.append(error);
  }
  result.append(carried);
  return result;
}

template <int A>
Expansion<2 * A> scaled(const Expansion<A>& e, double factor) {
  Expansion<2 * A> result;
  double carried = 0.0;
  for (int k = 0; k < e.count; ++k) {
    double low, error;
    const double high = two_product(e.term[k], factor, low);
    const double middle = two_sum(carried, low, error);
    result.append(error);
    carried = two_sum(high, middle, error);
    result.append(error);
  }
  result.append(carried);
  return result;
}

template <int A>
Expansion<A> negated(Expansion<A> e) {
  for (int k = 0; k < e.count; ++k) e.term[k] = -e.term[k];
  return e;
}

// A copy for a place that holds more or fewer terms; the terms of e fit.
template <int Capacity, int A>
Expansion<Capacity> recast(const Expansion<A>& e) {
  Expansion<Capacity> result;
  result.count = e.count;
  for (int k = 0; k < e.count; ++k) result.term[k] = e.term[k];
  return result;
}

template <int A, int B>
Expansion<2 * A * B> product(const Expansion<A>& e, const Expansion<B>& f) {
  Expansion<2 * A * B> result;
  for (int k = 0; k < f.count; ++k) result = recast<2 * A * B>(sum(result, scaled(e, f.term[k])));
  return result;
}

struct ExactVector {
  Expansion<2> x, y;
  ExactVector(const giPoint2& from, const giPoint2& to) : x(difference(to.x, from.x)), y(difference(to.y, from.y)) {}
};

Expansion<16> cross(const ExactVector& a, const ExactVector& b) {
  return sum(product(a.x, b.y), negated(product(b.x, a.y)));
}

Expansion<16> length_sq(const ExactVector& a) { return sum(product(a.x, a.x), product(a.y, a.y)); }

}  // namespace

double exact_orientation(const giPoint2& a, const giPoint2& b, const giPoint2& c) {
  return cross(ExactVector(c, a), ExactVector(c, b)).largest();
}

double exact_in_circle(const giPoint2& a, const giPoint2& b, const giPoint2& c, const giPoint2& d) {
  const ExactVector da(d, a), db(d, b), dc(d, c);
  const Expansion<512> at_a = product(length_sq(da), cross(db, dc));
  const Expansion<512> at_b = product(length_sq(db), cross(dc, da));
  const Expansion<512> at_c = product(length_sq(dc), cross(da, db));
  return sum(sum(at_a, at_b), at_c).largest();
}
