// The texts of the codes a host finds in returned rows: one for each code
// each family writes, fitted or not, and a plain "not ours" for the rest;
// every row the fits return on the test plates has a text of its own.
#include <string>

#include "primary/user_plate.h"

namespace quent::test {
namespace {

std::string textOf(int32_T stateCount, real_T rt, real_T code) {
  real_T row[24] = {};
  row[12] = rt;
  row[13] = code;
  return QUENT_dGtrend_codeText(row, stateCount);
}

bool isUnknown(const std::string& text) { return text.find("do not write") != std::string::npos; }

TEST(CodeText, EachFamilysCodes) {
  const real_T rt = 592.4836799999999, none = -1.0;
  struct Case {
    int32_T states;
    real_T rt, code;
    const char* phrase;  // "" where the code is not one the family writes
  };
  const Case cases[] = {
      {2, rt, 2, "one transition, refitted from the plate's reference fit"},
      {3, rt, 3, "two transitions, refitted from the plate's reference fit with its amplitude share"},
      {3, rt, 6, "two transitions, amplitude share fitted freely"},
      {4, rt, 4, "three transitions, refitted from the plate's reference fit with its amplitude shares"},
      {4, rt, 5, "three transitions, amplitude shares fitted freely"},
      {2, none, 0, "fewer than 8 points"},
      {3, none, 0, "fewer than 16 points"},
      {4, none, 0, "fewer than 24 points"},
      {3, none, 6, "no two transitions of plausible shape"},
      {4, none, 5, "no three transitions of plausible shape"},
      {2, none, 12, "R squared below 0.95"},
      {3, none, 12, "a negative free energy"},
      {4, none, 12, "uncertainty of dG1 above a quarter"},
      {3, none, 35, "the host left the curve out"},
      {4, none, 35, "the host left the curve out"},
      // Codes of other families, of the other kind of row, or of no export.
      {2, rt, 3, ""}, {2, none, 2, ""}, {2, none, 35, ""}, {3, rt, 2, ""}, {3, none, 3, ""},
      {3, rt, 12, ""}, {4, rt, 6, ""}, {4, none, 6, ""}, {4, none, 4, ""}, {2, rt, 0, ""},
      {2, none, 11, ""}, {3, none, 34, ""}, {4, none, 71, ""}, {2, none, 2.5, ""},
  };
  for (const Case& c : cases) {
    const std::string text = textOf(c.states, c.rt, c.code);
    if (*c.phrase == '\0') {
      EXPECT_TRUE(isUnknown(text)) << c.states << " " << c.rt << " " << c.code << ": " << text;
      EXPECT_EQ(text.rfind(c.rt > 0.0 ? "fitted" : "not fitted", 0), 0u) << text;
    } else {
      EXPECT_NE(text.find(c.phrase), std::string::npos) << c.states << " " << c.code << ": " << text;
    }
  }
}

TEST(CodeText, ColumnTwelveAndStateCountAsTheFitsReadThem) {
  // RT 0 or NaN is no fit; a state count other than 3 or 4 is one transition.
  EXPECT_EQ(textOf(3, 0.0, 6), textOf(3, -1.0, 6));
  EXPECT_EQ(textOf(3, std::nan(""), 6), textOf(3, -1.0, 6));
  EXPECT_EQ(textOf(7, 600.0, 2), textOf(2, 600.0, 2));
  EXPECT_EQ(textOf(2, 1e-300, 2), textOf(2, 600.0, 2));  // any RT above 0 is a fit
  EXPECT_EQ(textOf(-3, -1.0, 0), textOf(2, -1.0, 0));
  EXPECT_STREQ(QUENT_dGtrend_codeText(nullptr, 3), "no row");
  // The same text every time: the host may keep the pointer.
  real_T row[24] = {};
  row[12] = -1.0;
  row[13] = 12.0;
  EXPECT_EQ(QUENT_dGtrend_codeText(row, 2), QUENT_dGtrend_codeText(row, 4));
}

template <int T>
void expectKnownTexts() {
  const UserPlate<T> plate;
  std::vector<int32_T> mask;
  const std::vector<real_T> rows = plate.automatic(mask);
  // The host drops all but ten points of curve 0 and leaves curve 1 out.
  std::fill(mask.begin() + 10, mask.begin() + plate.kPoints, 0);
  const std::vector<real_T> user = plate.user(mask, {1, 0, 1, 1, 1, 1});
  const std::vector<real_T> refused = plate.user({1, 1}, {1});  // mask too short
  for (const auto* set : {&rows, &user, &refused})
    for (size_t c = 0; c < set->size() / 24; ++c)
      EXPECT_FALSE(isUnknown(QUENT_dGtrend_codeText(set->data() + 24 * c, T + 1)))
          << "family " << T << " curve " << c << " code " << (*set)[24 * c + 13];
}

TEST(CodeText, EveryReturnedRowHasItsText) {
  expectKnownTexts<1>();
  expectKnownTexts<2>();
  expectKnownTexts<3>();
}

}  // namespace
}  // namespace quent::test
