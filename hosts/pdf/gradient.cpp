#include "gradient.h"

namespace qz::pdf {
namespace {

constexpr float tolerance = 1.5f;  // of 255

// Adds the stops behind the first sample up to the last one.
class Thinning {
 public:
  Thinning(const uint8_t* colours, int count, std::vector<Gradient::Stop>& stops)
      : colours_(colours), last_(count - 1), stops_(stops) {
    addStop(0);
    addUpTo(0, last_);
  }

 private:
  void addStop(int i) {
    const uint8_t* const c = colours_ + 3 * i;
    stops_.push_back({static_cast<float>(i) / static_cast<float>(last_), {255, c[0], c[1], c[2]}});
  }

  void addUpTo(int first, int last) {
    int farthest = 0;
    float distance = tolerance;
    for (int i = first + 1; i < last; ++i) {
      const float off = distanceFromLine(first, i, last);
      if (off > distance) farthest = i, distance = off;
    }
    if (farthest == 0) return addStop(last);
    addUpTo(first, farthest);
    addUpTo(farthest, last);
  }

  float distanceFromLine(int first, int i, int last) const {
    const float t = static_cast<float>(i - first) / static_cast<float>(last - first);
    float distance = 0;
    for (int k = 0; k < 3; ++k) {
      const float from = colours_[3 * first + k], to = colours_[3 * last + k];
      const float here = colours_[3 * i + k];
      distance = std::max(distance, std::abs(from + (to - from) * t - here));
    }
    return distance;
  }

  const uint8_t* colours_;
  int last_;
  std::vector<Gradient::Stop>& stops_;
};

Gradient::Stop transparent(Gradient::Stop stop) {
  stop.colour.alpha = 0;
  return stop;
}

}  // namespace

bool isSayable(const GradientShape& shape) {
  if (!shape.radial) return !(shape.from == shape.to);
  const float between = length(shape.to - shape.from);
  const auto holds = [&](float inner, float outer) { return between + inner < 0.999f * outer; };
  return holds(shape.fromRadius, shape.toRadius) || holds(shape.toRadius, shape.fromRadius);
}

Gradient makeGradient(const GradientShape& shape, const uint8_t* colours, int count) {
  Gradient gradient{shape, {}};
  std::vector<Gradient::Stop>& stops = gradient.stops;
  Thinning(colours, count, stops);
  GradientShape& made = gradient.shape;
  if (made.radial && made.fromRadius > made.toRadius) {
    std::swap(made.from, made.to);
    std::swap(made.fromRadius, made.toRadius);
    std::swap(made.goesBefore, made.goesBeyond);
    std::reverse(stops.begin(), stops.end());
    for (Gradient::Stop& stop : stops) stop.offset = 1 - stop.offset;
  }
  if (!made.goesBefore) stops.insert(stops.begin(), transparent(stops.front()));
  if (!made.goesBeyond) stops.push_back(transparent(stops.back()));
  return gradient;
}

}  // namespace qz::pdf
