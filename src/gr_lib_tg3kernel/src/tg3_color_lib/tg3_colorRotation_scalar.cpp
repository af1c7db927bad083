#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorRotation.h"
#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_rationalArithmetic.h"

void tg3_rotateInverseScalar(gr_int32* a, gr_int32* b, gr_int32* c, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const gr_int32 u = tg3_wrappingSubtract(a[i], b[i]);
    const gr_int32 v = tg3_wrappingSubtract(c[i], b[i]);
    const gr_int32 t = tg3_sumOfProducts(u, TG3_COLOR_C4, v, TG3_COLOR_C5);
    const gr_int32 w = tg3_wrappingAdd(tg3_product(v, TG3_COLOR_C3), u);
    const gr_int32 tb = tg3_wrappingAdd(t, b[i]);
    b[i] = tg3_wrappingAdd(tg3_product(w, TG3_COLOR_C2), v);
    a[i] = tg3_wrappingAdd(w, tb);
    c[i] = tg3_wrappingAdd(tg3_wrappingSubtract(tg3_product(b[i], TG3_COLOR_C1), a[i]), tb);
  }
}

void tg3_rotateForwardScalar(gr_int32* a, gr_int32* b, gr_int32* c, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    gr_int32 x = a[i];
    gr_int32 y = b[i];
    gr_int32 z = c[i];
    z = tg3_wrappingSubtract(z, tg3_wrappingSubtract(tg3_product(y, TG3_COLOR_C1), x));
    x = tg3_wrappingSubtract(x, z);
    y = tg3_wrappingSubtract(y, tg3_product(x, TG3_COLOR_C2));
    x = tg3_wrappingSubtract(x, tg3_product(y, TG3_COLOR_C3));
    z = tg3_wrappingSubtract(z, tg3_sumOfProducts(x, TG3_COLOR_C4, y, TG3_COLOR_C5));
    a[i] = tg3_wrappingAdd(x, z);
    b[i] = z;
    c[i] = tg3_wrappingAdd(y, z);
  }
}
