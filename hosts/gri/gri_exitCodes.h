/// @file
/// What the command's exit code says.
#pragma once

constexpr int GRI_EXIT_DONE = 0;
constexpr int GRI_EXIT_FAILED = 1;   // could not read or write
constexpr int GRI_EXIT_USAGE = 2;    // wrong use
constexpr int GRI_EXIT_DAMAGED = 3;  // damaged, but partly decoded with --keep-going
// 128 and the signal's number: interrupted; 130 for Ctrl-C
