#include "tests/support/tg3_literalSubblock.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoderReference.h"
#include "tests/support/gr_qEncoder.h"

namespace {

// The bits of a state word.
constexpr gr_uint32 LOWER_RIGHT = 0x0001, LOWER_LEFT = 0x0002, UPPER_RIGHT = 0x0004,
                    UPPER_LEFT = 0x0008, RIGHT = 0x0010, LEFT = 0x0020, UPPER = 0x0040,
                    LOWER = 0x0080, RIGHT_POSITIVE = 0x0100, LEFT_POSITIVE = 0x0200,
                    UPPER_POSITIVE = 0x0400, LOWER_POSITIVE = 0x0800, REFINED = 0x1000,
                    SIGNIFICANT = 0x2000;
constexpr gr_uint32 NEGATIVE = 0x80000000;

/// ISO/IEC 15444-1, Table D.1.
gr_uint32 zeroContext(gr_uint32 subband, gr_uint32 state) {
  int h = std::popcount(state & (RIGHT | LEFT));
  int v = std::popcount(state & (UPPER | LOWER));
  const int d = std::popcount(state & (LOWER_RIGHT | LOWER_LEFT | UPPER_RIGHT | UPPER_LEFT));
  const gr_uint32 place = subband == 0 ? 0 : (subband - 1) % 4;
  if (place == 3) {
    const int hv = h + v;
    if (d >= 3) return 8;
    if (d == 2) return hv >= 1 ? 7 : 6;
    if (d == 1) return hv >= 2 ? 5 : (hv == 1 ? 4 : 3);
    return hv >= 2 ? 2 : (hv == 1 ? 1 : 0);
  }
  if (place == 1) std::swap(h, v);
  if (h == 2) return 8;
  if (h == 1) return v >= 1 ? 7 : (d >= 1 ? 6 : 5);
  if (v == 2) return 4;
  if (v == 1) return 3;
  return d >= 2 ? 2 : (d == 1 ? 1 : 0);
}

struct SignRule {
  gr_uint32 context;
  gr_uint32 flip;
};

/// ISO/IEC 15444-1, Tables D.2 and D.3.
SignRule signRule(gr_uint32 state) {
  const auto contribution = [state](gr_uint32 isSignificant, gr_uint32 isPositive) {
    if ((state & isSignificant) == 0) return 0;
    return (state & isPositive) != 0 ? 1 : -1;
  };
  const int h =
      std::clamp(contribution(LEFT, LEFT_POSITIVE) + contribution(RIGHT, RIGHT_POSITIVE), -1, 1);
  const int v =
      std::clamp(contribution(UPPER, UPPER_POSITIVE) + contribution(LOWER, LOWER_POSITIVE), -1, 1);
  if (h == 1) return {v == 1 ? 13u : (v == 0 ? 12u : 11u), 0};
  if (h == 0) return v == 0 ? SignRule{9, 0} : SignRule{10, v == 1 ? 0u : 1u};
  return {v == 1 ? 11u : (v == 0 ? 12u : 13u), 1};
}

/// What is kept over the planes of a component.
struct Component {
  explicit Component(const TG3LiteralShape& s)
      : shape(s),
        stride(s.width + 4),
        states(size_t{stride} * (s.height + 4)),
        words(size_t{s.width} * s.height) {}

  const TG3LiteralShape& shape;
  gr_uint32 stride;
  std::vector<gr_uint32> states;  ///< two words of margin at every side
  std::vector<gr_uint32> words;   ///< sign and magnitude
};

void markSignificant(gr_uint32* state, gr_uint32 stride, bool negative, bool diagonals) {
  *state |= SIGNIFICANT;
  state[-1] |= RIGHT | (negative ? 0 : RIGHT_POSITIVE);
  state[1] |= LEFT | (negative ? 0 : LEFT_POSITIVE);
  gr_uint32* above = state - stride;
  gr_uint32* below = state + stride;
  *above |= LOWER | (negative ? 0 : LOWER_POSITIVE);
  *below |= UPPER | (negative ? 0 : UPPER_POSITIVE);
  if (!diagonals) return;
  above[-1] |= LOWER_RIGHT;
  above[1] |= LOWER_LEFT;
  below[-1] |= UPPER_RIGHT;
  below[1] |= UPPER_LEFT;
}

/// Visits the samples of a plane. `bit(context, wanted)` codes `wanted` and gives it back, or
/// decodes; `wanted(index)` is the sample word to encode.
template <typename Bit, typename Wanted>
void visitPlane(Component& component, gr_uint32 plane, bool bypass, Bit bit, Wanted wanted) {
  const TG3LiteralShape& shape = component.shape;
  const gr_uint32 mask = NEGATIVE >> plane;
  for (gr_uint32 y = shape.firstRow; y <= shape.lastRow; ++y) {
    for (gr_uint32 x = shape.firstColumn; x <= shape.lastColumn; ++x) {
      gr_uint32* state = &component.states[size_t{y + 2} * component.stride + x + 2];
      gr_uint32& word = component.words[size_t{y} * shape.width + x];
      const gr_uint32 target = wanted(size_t{y} * shape.width + x);
      const gr_uint32 targetBit = (target & mask) != 0 ? 1 : 0;
      if ((*state & SIGNIFICANT) != 0) {
        const gr_uint32 context =
            (*state & REFINED) != 0 ? 16u : ((*state & 0xFF) == 0 ? 14u : 15u);
        if (bit(context, targetBit) != 0) word |= mask;
        *state |= REFINED;
      } else if (bit(zeroContext(shape.subband, *state & 0xFF), targetBit) != 0) {
        word |= mask;
        const SignRule rule = signRule(*state);
        const gr_uint32 sign = bit(rule.context, (target >> 31) ^ rule.flip) ^ rule.flip;
        if (sign != 0) word |= NEGATIVE;
        markSignificant(state, component.stride, (word & NEGATIVE) != 0, !bypass);
      }
    }
  }
}

bool isEmpty(const TG3LiteralShape& shape) {
  return shape.firstColumn > shape.lastColumn || shape.firstRow > shape.lastRow;
}

}  // namespace

TG3LiteralShape tg3_literalShape(gr_uint32 subband, gr_uint32 width, gr_uint32 height) {
  return {subband, width, height, 0, width - 1, 0, height - 1};
}

std::vector<TG3LiteralPlane> tg3_literalEncode(const TG3LiteralShape& shape,
                                               const std::vector<gr_int32>& samples,
                                               gr_uint32 lastPlane, gr_uint32 bypassPlanes) {
  std::vector<TG3LiteralPlane> planes(32);
  std::vector<gr_uint32> targets;
  gr_uint32 allBits = 0;
  for (const gr_int32 sample : samples) {
    const auto magnitude = static_cast<gr_uint32>(std::abs(sample));
    targets.push_back(magnitude | (sample < 0 ? NEGATIVE : 0));
    allBits |= magnitude;
  }
  if (allBits == 0 || isEmpty(shape)) return planes;
  Component component(shape);
  auto contexts = GRMQEncoder::initialContexts();
  const auto wanted = [&targets](size_t index) { return targets[index]; };
  for (auto plane = static_cast<gr_uint32>(std::countl_zero(allBits)); plane <= lastPlane;
       ++plane) {
    TG3LiteralPlane& made = planes[plane];
    made.hasData = true;
    made.useBypass = ((bypassPlanes >> plane) & 1) != 0;
    if (made.useBypass) {
      gr_uint32 count = 0;
      visitPlane(
          component, plane, true,
          [&](gr_uint32, gr_uint32 value) {
            if (count % 8 == 0) made.bytes.push_back(0);
            made.bytes.back() |= static_cast<gr_uint8>(value << (7 - count++ % 8));
            return value;
          },
          wanted);
    } else {
      GRMQEncoder encoder;
      visitPlane(
          component, plane, false,
          [&](gr_uint32 context, gr_uint32 value) {
            encoder.encode(contexts[context], value);
            return value;
          },
          wanted);
      made.bytes = encoder.finish();
    }
  }
  return planes;
}

std::vector<gr_int32> tg3_literalDecode(const TG3LiteralShape& shape,
                                        const std::vector<TG3LiteralPlane>& planes) {
  Component component(shape);
  std::vector<gr_int32> samples(component.words.size());
  const auto slots = static_cast<gr_uint32>(planes.size());
  gr_uint32 first = 0;
  while (first < slots && !planes[first].hasData) ++first;
  if (first == slots || isEmpty(shape)) return samples;
  gr_uint32 last = first;
  while (last + 1 < slots && planes[last + 1].hasData) ++last;

  auto contexts = GRMQReferenceDecoder::initialContexts();
  const auto nothing = [](size_t) { return 0u; };
  for (gr_uint32 plane = first; plane <= last; ++plane) {
    const std::vector<gr_uint8>& bytes = planes[plane].bytes;
    if (bytes.empty()) break;
    if (planes[plane].useBypass) {
      size_t count = 0;
      visitPlane(
          component, plane, true,
          [&](gr_uint32, gr_uint32) {
            const size_t at = count++;
            return at < 8 * bytes.size() ? (bytes[at / 8] >> (7 - at % 8)) & 1u : 0u;
          },
          nothing);
    } else {
      GRMQReferenceDecoder decoder(bytes);
      visitPlane(
          component, plane, false,
          [&](gr_uint32 context, gr_uint32) { return decoder.decode(contexts[context]); }, nothing);
    }
  }

  const gr_uint32 half = last < 31 ? 1u << (30 - last) : 0;
  for (size_t n = 0; n < samples.size(); ++n) {
    gr_uint32 magnitude = component.words[n] & ~NEGATIVE;
    if (magnitude != 0 && half != 0) magnitude += n % 2 == 0 ? half - 1 : half;
    const auto value = static_cast<gr_int32>(magnitude);
    samples[n] = (component.words[n] & NEGATIVE) != 0 ? -value : value;
  }
  return samples;
}
