#include "tests/support/tg3_forwardColor.h"

namespace {

constexpr gr_int64 C1 = 19637;
constexpr gr_int64 C2 = 19309;
constexpr gr_int64 C3 = -22640;
constexpr gr_int64 C4 = -11469;
constexpr gr_int64 C5 = 24279;

// Products with multiples of 1/16384, rounded to the nearest.
gr_int64 product(gr_int64 x, gr_int64 k) { return (x * k + 8192) >> 14; }
gr_int64 products(gr_int64 x, gr_int64 k, gr_int64 y, gr_int64 l) {
  return (x * k + y * l + 8192) >> 14;
}

void store(gr_int32 (&sample)[3], gr_int64 a, gr_int64 b, gr_int64 c) {
  sample[0] = static_cast<gr_int32>(a);
  sample[1] = static_cast<gr_int32>(b);
  sample[2] = static_cast<gr_int32>(c);
}

}  // namespace

void tg3_colorRoutine4(gr_int32 (&sample)[3]) {
  gr_int64 a = sample[0];
  gr_int64 b = sample[1];
  gr_int64 c = sample[2];
  c -= product(b, C1) - a;
  a -= c;
  b -= product(a, C2);
  a -= product(b, C3);
  c -= products(a, C4, b, C5);
  store(sample, a + c, c, b + c);
}

void tg3_colorRoutine10(gr_int32 (&sample)[3]) {
  const gr_int64 u = gr_int64{sample[0]} - sample[1];
  const gr_int64 v = gr_int64{sample[2]} - sample[1];
  const gr_int64 t = products(u, C4, v, C5);
  const gr_int64 w = product(v, C3) + u;
  const gr_int64 b = product(w, C2) + v;
  const gr_int64 a = w + t + sample[1];
  store(sample, a, b, product(b, C1) - a + t + sample[1]);
}

void tg3_forwardColor(gr_uint32 kind, std::vector<TG3TestBands>& components) {
  if (kind == 1) return;
  const bool isFour = kind == 4 || kind == 7;
  for (size_t band = 0; band < components[0].size(); ++band) {
    for (size_t i = 0; i < components[0][band].size(); ++i) {
      gr_int32 sample[3] = {components[0][band][i], components[1][band][i], components[2][band][i]};
      isFour ? tg3_colorRoutine4(sample) : tg3_colorRoutine10(sample);
      for (size_t c = 0; c < 3; ++c) components[c][band][i] = sample[c];
    }
  }
}
