// korvane analyze: the colorimetry of every spectrum in the files, as light or as reflectances
// under an illuminant. The table and CSV stream (each spectrum is reported as soon as it is
// read); the JSON document is written whole at the end, or not at all after an error.
#pragma once

#include "hostkit/cie/CIEConv.h"

#include <ostream>
#include <string>
#include <vector>

namespace Korvane::Cli {

enum class OutputFormat { Table, Csv, Json };

struct AnalyzeOptions {
    std::vector<std::string> files; // "-" is standard input
    bool reflectance = false;
    std::string illuminant = "D65"; // D65, D50, A, E (in any case) or a spectrum file
    OutputFormat format = OutputFormat::Table;
    int precision = 6; // significant digits in the table
};

// Writes the report to `out`; a ToolError for bad input. The current converter's observer is
// the one reported.
void RunAnalyze(const AnalyzeOptions& options, std::ostream& out);

} // namespace Korvane::Cli
