// korvane holder save|show: single-colour holders (light, surface, scalar of any model) written
// to plug files in either archive format, and any plug file's type and, for those holders, values.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace Korvane::Cli {

struct HolderOptions {
    std::string model;
    std::string kind = "light";
    std::vector<std::string> values; // numbers, or one spectrum file for a spectral model
    std::string output;
    std::string format = "binary";
    std::string input;
};

void RunHolderSave(const HolderOptions& options, std::ostream& out);
void RunHolderShow(const HolderOptions& options, std::ostream& out);

} // namespace Korvane::Cli
