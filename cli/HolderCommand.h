// korvane holder save|show: every holder type a model makes (light, surface, scalar, ray and dual
// light colours, light-colour arrays and matrices, of every model and polarization) written to
// plug files in either archive format, and any plug file's type and values.
#pragma once

#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace Korvane::Cli {

// Most doubles one saved holder may hold (elements x values per colour): 80 MB in memory and
// about as much on disk; `--array` and `--matrix` beyond it are refused as bad usage.
inline constexpr long long kMaxHolderDoubles = 10000000;

// `array` when --array was not given (any count the user gives, -1 included, is checked).
inline constexpr int kNoArray = std::numeric_limits<int>::min();

struct HolderOptions {
    std::string model;
    std::string kind = "light";      // light, surface, scalar, ray or dual
    int array = kNoArray;            // --array N: N light colours, each the given colour
    std::vector<int> matrix;         // --matrix R C: R x C light colours
    std::vector<double> xort;        // --xort X Y Z: a Stokes ray colour's reference axis
    std::vector<std::string> values; // numbers, or one spectrum file for a spectral model
    std::string output;
    std::string format = "binary";
    std::string input;
};

void RunHolderSave(const HolderOptions& options, std::ostream& out);
void RunHolderShow(const HolderOptions& options, std::ostream& out);

} // namespace Korvane::Cli
