// Example host: reads denaturation curves from a CSV file, fits them with the
// library, reduces the free energies to a trend over sample concentration and
// draws it.  It calls the C interface exactly as an instrument program would:
// wrap buffers, fit, reduce, draw, and read results back from the records.
//
//   fit_plate [--states 2|3|4] [--temperature C] [--golden]
//             [--exclude-curve ID]... [--drop ID:FIRST-LAST]... FILE.csv
//
// FILE.csv is either a plate in long form (columns curve, sample_conc,
// denaturant, signal) or one measured curve (columns denaturant, signal).
// --golden prints every output number with 17 significant digits instead of
// the readable tables, for comparison with a stored result.
// --exclude-curve and --drop refit the plate under the scientist's own
// choice: the automatic fit's point mask with points FIRST to LAST (from 0,
// in ascending denaturant) of curve ID taken out, and without the excluded
// curves; both fits are printed side by side.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "quent_dgtrend.h"

namespace {

struct Curve {
  std::string id;
  double conc = 1.0;
  std::vector<std::pair<double, double>> points;  // (denaturant, signal)
};

std::vector<std::string> splitCsv(const std::string& line) {
  std::vector<std::string> cells;
  std::stringstream s(line);
  std::string cell;
  while (std::getline(s, cell, ',')) cells.push_back(cell);
  if (!line.empty() && line.back() == ',') cells.push_back("");
  return cells;
}

bool readCurves(const char* path, bool quiet, std::vector<Curve>& curves, std::string& error) {
  std::ifstream in(path);
  if (!in) {
    error = std::string("cannot open ") + path;
    return false;
  }
  std::string line;
  std::getline(in, line);  // header
  std::map<std::string, size_t> index;
  int lineNumber = 1;
  while (std::getline(in, line)) {
    ++lineNumber;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    const auto cells = splitCsv(line);
    if (cells.size() != 2 && cells.size() != 4) {
      error = "line " + std::to_string(lineNumber) + ": expected 2 or 4 columns";
      return false;
    }
    if (std::any_of(cells.begin(), cells.end(), [](const std::string& c) { return c.empty(); })) {
      // Measured files have gaps; a point without a value is left out.
      if (!quiet) std::printf("note: line %d has a missing value; point left out\n", lineNumber);
      continue;
    }
    const bool plate = cells.size() == 4;
    const std::string id = plate ? cells[0] : "1";
    auto found = index.find(id);
    if (found == index.end()) {
      found = index.emplace(id, curves.size()).first;
      curves.push_back({id, plate ? std::atof(cells[1].c_str()) : 1.0, {}});
    }
    const size_t at = plate ? 2 : 0;
    curves[found->second].points.emplace_back(std::atof(cells[at].c_str()),
                                              std::atof(cells[at + 1].c_str()));
  }
  if (curves.empty()) {
    error = "no data";
    return false;
  }
  return true;
}

// A record around a host buffer; the library may move it to storage of its
// own, so results are always read back through the record.
template <class T, class Record>
Record* wrap(std::vector<T>& buffer, Record* (*create)(T*, int32_T, int32_T)) {
  return create(buffer.data(), 1, static_cast<int32_T>(buffer.size()));
}

// Records go back to the library that made them; the host's buffers stay.
void release(RealArray* r) { QUENT_emxDestroyArray_real_T(r); }
void release(Int32Array* r) { QUENT_emxDestroyArray_int32_T(r); }

int32_T count(const RealArray* r) { return r->size[0] * r->size[1]; }

// Points a scientist takes out of one curve.
struct Drop {
  std::string id;
  int first = 0, last = -1;
};

bool parseDrop(const char* text, Drop& d) {
  const char* colon = std::strrchr(text, ':');
  if (colon == nullptr || std::sscanf(colon + 1, "%d-%d", &d.first, &d.last) != 2 ||
      d.first < 0 || d.last < d.first)
    return false;
  d.id.assign(text, colon);
  return true;
}

// The scientist's choice: curve flags and a point mask, from the automatic
// fit's mask.  False, with a message, for a curve the file does not have.
bool userChoice(const std::vector<Curve>& curves, const std::vector<std::string>& excluded,
                const std::vector<Drop>& drops, const int32_T* automaticMask,
                int32_T pointsPerCurve, std::vector<int32_T>& flags, std::vector<int32_T>& mask,
                std::string& error) {
  const auto indexOf = [&](const std::string& id) {
    for (size_t c = 0; c < curves.size(); ++c)
      if (curves[c].id == id) return static_cast<int>(c);
    error = "no curve " + id + " in the file";
    return -1;
  };
  flags.assign(curves.size(), 1);
  mask.assign(automaticMask, automaticMask + curves.size() * pointsPerCurve);
  for (const std::string& id : excluded) {
    const int c = indexOf(id);
    if (c < 0) return false;
    flags[c] = 0;
  }
  for (const Drop& d : drops) {
    const int c = indexOf(d.id);
    if (c < 0) return false;
    for (int i = d.first; i <= d.last && i < pointsPerCurve; ++i) mask[c * pointsPerCurve + i] = 0;
  }
  return true;
}

// The automatic fit and the refit under the scientist's choice, curve by
// curve (first transition), and the two trends.
void printUserRefit(bool golden, const std::vector<Curve>& curves,
                    const std::vector<std::string>& excluded, const std::vector<Drop>& drops,
                    int32_T pointsPerCurve, const double* rows, const int32_T* mask,
                    const double* summary, const double* userRows, const int32_T* userMask,
                    const int32_T* userFlags, const double* userSummary) {
  if (golden) {
    std::printf("# user_primaryFit fitRows\n");
    for (size_t c = 0; c < curves.size(); ++c) {
      for (int32_T k = 0; k < 24; ++k) std::printf("%s%.17g", k ? " " : "", userRows[24 * c + k]);
      std::printf("\n");
    }
    std::printf("# user summary\n%.17g %.17g %.17g %.17g\n", userSummary[0], userSummary[1],
                userSummary[2], userSummary[3]);
    return;
  }
  std::printf("\nrefit under your choice:");
  const char* separator = " ";
  for (const std::string& id : excluded) {
    std::printf("%scurve %s left out", separator, id.c_str());
    separator = "; ";
  }
  for (const Drop& d : drops) {
    std::printf("%scurve %s points %d-%d taken out", separator, d.id.c_str(), d.first, d.last);
    separator = "; ";
  }
  std::printf("\n%-6s %8s | %-36s | %-36s\n", "", "", "automatic", "yours");
  std::printf("%-6s %8s | %4s %9s %7s %8s %4s | %4s %9s %7s %8s %4s\n", "curve", "conc", "code",
              "dG1", "Cm1", "R2", "used", "code", "dG1", "Cm1", "R2", "used");
  const auto cells = [pointsPerCurve](const double* r, const int32_T* m, size_t c) {
    int used = 0;
    for (int32_T i = 0; i < pointsPerCurve; ++i) used += m[c * pointsPerCurve + i];
    if (r[12] > 0.0) std::printf("%4.0f %9.1f %7.4f %8.5f %4d", r[13], r[4], r[5], r[14], used);
    else std::printf("%4.0f %-31s", r[13], " no accepted fit");
  };
  for (size_t c = 0; c < curves.size(); ++c) {
    std::printf("%-6s %8.4g | ", curves[c].id.c_str(), curves[c].conc);
    cells(rows + 24 * c, mask, c);
    std::printf(" | ");
    if (userFlags[c] == 1) cells(userRows + 24 * c, userMask, c);
    else std::printf("%4.0f %-31s", userRows[24 * c + 13], " left out");
    std::printf("\n");
  }
  std::printf("trend slope, intercept: automatic %.2f, %.2f; yours %.2f, %.2f\n", summary[0],
              summary[1], userSummary[0], userSummary[1]);
}

}  // namespace

int main(int argc, char** argv) {
  int32_T stateCount = 2;
  double temperature = 25.0;
  bool golden = false;
  const char* path = nullptr;
  std::vector<std::string> excluded;
  std::vector<Drop> drops;
  bool usage = false;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--states") && i + 1 < argc) stateCount = std::atoi(argv[++i]);
    else if (!std::strcmp(argv[i], "--temperature") && i + 1 < argc) temperature = std::atof(argv[++i]);
    else if (!std::strcmp(argv[i], "--golden")) golden = true;
    else if (!std::strcmp(argv[i], "--exclude-curve") && i + 1 < argc) excluded.push_back(argv[++i]);
    else if (!std::strcmp(argv[i], "--drop") && i + 1 < argc) {
      drops.emplace_back();
      usage = usage || !parseDrop(argv[++i], drops.back());
    } else path = argv[i];
  }
  if (path == nullptr || usage) {
    std::fprintf(stderr,
                 "usage: fit_plate [--states 2|3|4] [--temperature C] [--golden]\n"
                 "                 [--exclude-curve ID]... [--drop ID:FIRST-LAST]... FILE.csv\n");
    return 2;
  }
  std::vector<Curve> curves;
  std::string error;
  if (!readCurves(path, golden, curves, error)) {
    std::fprintf(stderr, "fit_plate: %s\n", error.c_str());
    return 1;
  }

  // The library takes one length for all curves of a call.
  const size_t points = curves[0].points.size();
  for (const Curve& c : curves) {
    if (c.points.size() != points) {
      std::fprintf(stderr,
                   "fit_plate: curve %s has %zu points, curve %s has %zu: curves of one call "
                   "must have equal length (fit them in separate calls)\n",
                   curves[0].id.c_str(), points, c.id.c_str(), c.points.size());
      return 1;
    }
  }
  // Ascending denaturant within each curve; an all-negative curve (circular
  // dichroism) is turned positive, since non-positive signal counts as
  // missing in the averages the library builds.
  std::vector<double> denaturant, signal, conc;
  for (Curve& c : curves) {
    const auto ascending = [](const auto& a, const auto& b) { return a.first < b.first; };
    if (!std::is_sorted(c.points.begin(), c.points.end(), ascending) && !golden)
      std::printf("note: curve %s does not run in ascending denaturant; its points are sorted\n",
                  c.id.c_str());
    std::stable_sort(c.points.begin(), c.points.end(), ascending);
    const bool negative = std::all_of(c.points.begin(), c.points.end(),
                                      [](const auto& p) { return p.second < 0.0; });
    if (negative && !golden)
      std::printf("note: curve %s has only negative signal; its sign is flipped for fitting\n",
                  c.id.c_str());
    for (const auto& p : c.points) {
      denaturant.push_back(p.first);
      signal.push_back(negative ? -p.second : p.second);
    }
    conc.push_back(c.conc);
  }
  const int32_T curveCount = static_cast<int32_T>(curves.size());
  const int32_T pointsPerCurve = static_cast<int32_T>(points);
  const int32_T allSize[2] = {1, curveCount * pointsPerCurve};
  const int32_T concSize[2] = {1, curveCount};

  std::vector<double> rowBuffer(24 * curves.size());
  std::vector<int32_T> maskBuffer(denaturant.size());
  RealArray* rows = wrap(rowBuffer, QUENT_emxCreateWrapper_real_T);
  Int32Array* mask = wrap(maskBuffer, QUENT_emxCreateWrapper_int32_T);
  QUENT_dGtrend_primaryFit(pointsPerCurve, denaturant.data(), allSize, signal.data(), allSize,
                           conc.data(), concSize, stateCount, temperature, rows, mask);

  std::vector<int32_T> flags(curves.size(), 1);
  std::vector<double> concOutBuffer(curves.size()), trendBuffer(curves.size()),
      deviationBuffer(curves.size());
  std::vector<int32_T> usedBuffer(curves.size());
  RealArray* concOut = wrap(concOutBuffer, QUENT_emxCreateWrapper_real_T);
  RealArray* trendOut = wrap(trendBuffer, QUENT_emxCreateWrapper_real_T);
  RealArray* deviationOut = wrap(deviationBuffer, QUENT_emxCreateWrapper_real_T);
  Int32Array* usedOut = wrap(usedBuffer, QUENT_emxCreateWrapper_int32_T);
  double summary[4];
  QUENT_dGtrend_calc(conc.data(), concSize, rows->data, rows->size, flags.data(), concSize, 1,
                     concOut, trendOut, deviationOut, usedOut, summary);

  constexpr int32_T kGrid = 9;
  std::vector<double> gridBuffer(kGrid), lineBuffer(kGrid), fdBuffer(kGrid), fraggBuffer(kGrid),
      fraggfdBuffer(kGrid);
  RealArray* grid = wrap(gridBuffer, QUENT_emxCreateWrapper_real_T);
  RealArray* line = wrap(lineBuffer, QUENT_emxCreateWrapper_real_T);
  RealArray* fd = wrap(fdBuffer, QUENT_emxCreateWrapper_real_T);
  RealArray* fragg = wrap(fraggBuffer, QUENT_emxCreateWrapper_real_T);
  RealArray* fraggfd = wrap(fraggfdBuffer, QUENT_emxCreateWrapper_real_T);
  QUENT_dGtrend_trend(conc.data(), concSize, summary, kGrid, grid, line);
  QUENT_dGtrend_fd(conc.data(), concSize, summary, kGrid, temperature, grid, fd);
  QUENT_dGtrend_fragg(conc.data(), concSize, summary, kGrid, temperature, grid, fragg);
  QUENT_dGtrend_fraggfd(conc.data(), concSize, summary, kGrid, temperature, grid, fraggfd);

  if (golden) {
    const char* name = std::strrchr(path, '/');
    std::printf("# fit_plate --golden %s (states %d, %g C): every output, 17 digits.\n"
                "# A stored copy detects change, not correctness: review a difference,\n"
                "# then regenerate with the same command.\n",
                name ? name + 1 : path, stateCount, temperature);
    std::printf("# fitRows\n");
    for (int32_T c = 0; c < curveCount; ++c) {
      for (int32_T k = 0; k < 24; ++k) std::printf("%s%.17g", k ? " " : "", rows->data[24 * c + k]);
      std::printf("\n");
    }
    std::printf("# pointMask\n");
    for (int32_T c = 0; c < curveCount; ++c) {
      for (int32_T i = 0; i < pointsPerCurve; ++i)
        std::printf("%d", mask->data[c * pointsPerCurve + i]);
      std::printf("\n");
    }
    std::printf("# calc: conc trend deviation used\n");
    for (int32_T g = 0; g < count(concOut); ++g)
      std::printf("%.17g %.17g %.17g %d\n", concOut->data[g], trendOut->data[g],
                  deviationOut->data[g], usedOut->data[g]);
    std::printf("# summary\n%.17g %.17g %.17g %.17g\n", summary[0], summary[1], summary[2],
                summary[3]);
    std::printf("# grid trend fd fragg fraggfd\n");
    for (int32_T i = 0; i < count(grid); ++i)
      std::printf("%.17g %.17g %.17g %.17g %.17g\n", grid->data[i], line->data[i], fd->data[i],
                  fragg->data[i], fraggfd->data[i]);
  } else {
    // Energy, midpoint and m value of each transition; the amplitude shares
    // of the first transitions follow the second and the third.
    const int transitions = stateCount == 3 ? 2 : stateCount == 4 ? 3 : 1;
    const int energyColumn[3] = {4, 6, 9}, shareColumn[2] = {8, 11};
    std::printf("%-6s %10s %5s", "curve", "conc", "code");
    for (int t = 1; t <= transitions; ++t) {
      std::printf(" %9s%d %7s%d %7s%d", "dG", t, "Cm", t, "m", t);
      if (t > 1) std::printf(" %7s%d", "amp", t - 1);
    }
    std::printf(" %8s %8s %6s\n", "R2", "err(dG1)", "used");
    for (int32_T c = 0; c < curveCount; ++c) {
      const double* r = rows->data + 24 * c;
      int used = 0;
      for (int32_T i = 0; i < pointsPerCurve; ++i) used += mask->data[c * pointsPerCurve + i];
      std::printf("%-6s %10.4g %5.0f", curves[c].id.c_str(), conc[c], r[13]);
      if (!(r[12] > 0.0)) {
        std::printf("  no accepted fit: %s\n", QUENT_dGtrend_codeText(r, stateCount));
        continue;
      }
      for (int t = 0; t < transitions; ++t) {
        const double dG = r[energyColumn[t]], Cm = r[energyColumn[t] + 1];
        std::printf(" %10.1f %8.4f %8.1f", dG, Cm, dG / Cm);
        if (t > 0) std::printf(" %8.4f", r[shareColumn[t - 1]]);
      }
      std::printf(" %8.5f %8.1f %6d\n", r[14], r[15], used);
    }
    std::printf("\ntrend of dG over ln(sample concentration): slope %.2f, intercept %.2f, "
                "R2 of group means %.4f, %g concentrations\n",
                summary[0], summary[1], summary[2], summary[3]);
    std::printf("\n%10s %10s %10s %10s %10s\n", "conc", "mean dG", "sd", "used", "");
    for (int32_T g = 0; g < count(concOut); ++g)
      std::printf("%10.4g %10.1f %10.1f %10d\n", concOut->data[g], trendOut->data[g],
                  deviationOut->data[g], usedOut->data[g]);
    if (conc.size() < 2) {
      std::printf("\n(one curve: no trend to draw)\n");
    } else {
      std::printf("\n%10s %10s %10s %10s %10s\n", "conc", "trend", "fd", "fragg", "fraggfd");
    }
    for (int32_T i = 0; conc.size() >= 2 && i < count(grid); ++i)
      std::printf("%10.4g %10.1f %10.4g %10.4g %10.4g\n", grid->data[i], line->data[i],
                  fd->data[i], fragg->data[i], fraggfd->data[i]);
  }

  int status = 0;
  if (!excluded.empty() || !drops.empty()) {
    std::vector<int32_T> userFlags, userMask;
    if (userChoice(curves, excluded, drops, mask->data, pointsPerCurve, userFlags, userMask,
                   error)) {
      std::vector<double> userRowBuffer(24 * curves.size());
      RealArray* userRows = wrap(userRowBuffer, QUENT_emxCreateWrapper_real_T);
      QUENT_dGtrend_user_primaryFit(pointsPerCurve, denaturant.data(), allSize, signal.data(),
                                    allSize, conc.data(), concSize, userMask.data(), allSize,
                                    userFlags.data(), concSize, stateCount, temperature,
                                    userRows);
      double userSummary[4];
      QUENT_dGtrend_calc(conc.data(), concSize, userRows->data, userRows->size, userFlags.data(),
                         concSize, 1, concOut, trendOut, deviationOut, usedOut, userSummary);
      printUserRefit(golden, curves, excluded, drops, pointsPerCurve, rows->data, mask->data,
                     summary, userRows->data, userMask.data(), userFlags.data(), userSummary);
      release(userRows);
    } else {
      std::fprintf(stderr, "fit_plate: %s\n", error.c_str());
      status = 1;
    }
  }

  release(rows);
  release(mask);
  release(concOut);
  release(trendOut);
  release(deviationOut);
  release(usedOut);
  for (RealArray* r : {grid, line, fd, fragg, fraggfd}) release(r);
  return status;
}
