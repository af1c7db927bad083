#include "hosts/gri/gri_terminal.h"

#include <gtest/gtest.h>

TEST(GRITerminalTest, BoldIsOnlyForTerminals) {
  EXPECT_EQ(GRITerminal().bold("Size"), "Size");
  EXPECT_EQ((GRITerminal{.isBold = true}.bold("Size")), "\x1B[1mSize\x1B[0m");
  EXPECT_EQ((GRITerminal{.isBold = true}.bold("")), "");
}

TEST(GRITerminalTest, LongTextIsCutBetweenCharacters) {
  EXPECT_EQ(GRITerminal::cut("short", 5), "short");
  EXPECT_EQ(GRITerminal::cut("longer", 5), "long…");
  EXPECT_EQ(GRITerminal::cut("äöüäöü", 6), "äöüäöü");
  EXPECT_EQ(GRITerminal::cut("äöüäöü", 3), "äö…");
  EXPECT_EQ(GRITerminal::cut("", 3), "");
}
