#include "platform/linux/display/TimingCurves.h"

#include <algorithm>

namespace dormel {
namespace {

/// One coordinate of the curve with the inner control values `a` and `b`.
double bezier(double a, double b, double u) {
  const double v = 1 - u;
  return 3 * v * v * u * a + 3 * v * u * u * b + u * u * u;
}

double cubic(double x1, double y1, double x2, double y2, double t) {
  double low = 0;
  double high = 1;
  for (int i = 0; i < 32; ++i) {  // x grows with the parameter: halve until it is found
    const double middle = (low + high) / 2;
    (bezier(x1, x2, middle) < t ? low : high) = middle;
  }
  return bezier(y1, y2, (low + high) / 2);
}

}  // namespace

double eased(TimingCurve curve, double t) {
  t = std::clamp(t, 0.0, 1.0);
  if (t == 0 || t == 1) return t;
  switch (curve) {
    case TimingCurve::easeIn:
      return cubic(0.42, 0, 1, 1, t);
    case TimingCurve::easeOut:
      return cubic(0, 0, 0.58, 1, t);
    case TimingCurve::easeInOut:
      return cubic(0.42, 0, 0.58, 1, t);
    case TimingCurve::linear:
      break;
  }
  return t;
}

}  // namespace dormel
