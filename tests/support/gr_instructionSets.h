/// @file
/// Runs a test of a SIMD kernel on every instruction set that this machine has.
#pragma once

#include <gtest/gtest.h>
#include <hwy/highway.h>
#include <hwy/targets.h>

#include <random>

#include "gr_lib_utils/include/gr_types.h"

/// Calls `body(random)` once for each instruction set for which the kernels were compiled and which
/// this machine can run, with that one chosen and a generator of one fixed seed. A failure names
/// the instruction set.
template <typename Body>
void forEachInstructionSet(Body&& body) {
  const auto choose = [](gr_int64 targets) {
    hwy::SetSupportedTargetsForTest(targets);  // 0: whatever the machine has
    hwy::GetChosenTarget().DeInit();           // the next call of a kernel chooses anew
  };
  for (const gr_int64 target : hwy::SupportedAndGeneratedTargets()) {
    SCOPED_TRACE(hwy::TargetName(target));
    choose(target);
    std::mt19937 random(20201);
    body(random);
  }
  choose(0);
}
