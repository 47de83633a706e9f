#include "onboarding/OnbMotion.h"

#include <algorithm>

namespace dormel {
namespace {

/// One coordinate of the curve at its parameter.
double coordinate(double first, double second, double parameter) {
  const double rest = 1 - parameter;
  return 3 * rest * rest * parameter * first + 3 * rest * parameter * parameter * second +
         parameter * parameter * parameter;
}

}  // namespace

double OnbCurve::at(double time) const {
  if (!(time > 0)) return 0;
  if (time >= 1) return 1;
  // Time never runs backwards along the curve: halving always finds its parameter.
  double low = 0;
  double high = 1;
  for (int i = 0; i < 50; ++i) {
    const double middle = (low + high) / 2;
    (coordinate(x1, x2, middle) < time ? low : high) = middle;
  }
  return std::clamp(coordinate(y1, y2, low), 0.0, 1.0);
}

}  // namespace dormel
