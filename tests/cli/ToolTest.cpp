// The command-line tool end to end, run as a user runs it: golden outputs, published values,
// round trips through the models, and every error path with its exact message and exit code.
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <set>
#include <sstream>

namespace Korvane::ToolTest {
namespace {

using nlohmann::json;

std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string Slurp(const std::string& name) {
    return Read(DataFile(name));
}

const std::string kRef = "/usr/share/color/argyll/ref/";

// ---- the overview ---------------------------------------------------------------------------

TEST(ToolOverview, DefaultsRunTheRoundTripAndSayWhatToTryNext) {
    const ToolResult r = Tool("");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_NE(r.out.find("white    1.000000  1.000000  1.000000  1.000000  1.000000  1.000000  "
                         "0.950456  1.000000  1.089058  0.312700  0.329000          683.000"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("\nNext: korvane analyze FILE"), std::string::npos);
    EXPECT_EQ(r.out.rfind("plug-in: ", 0), 0u);
    EXPECT_NE(r.out.find(" (version id 263237)\nmodels: "), std::string::npos) << r.out;
    const ToolResult csv = Tool("--csv --grid 380 780 5 --observer 10 --rgb 0.2 0.4 0.6");
    ASSERT_EQ(csv.code, 0) << csv.err;
    EXPECT_NE(csv.out.find("rgb1,0.200000,0.400000,0.600000,0.200000,0.400000,0.600000,"),
              std::string::npos)
        << csv.out;
}

TEST(ToolHelp, NamesTheToolAndTheOptionsEachCommandTakes) {
    const ToolResult top = Tool("--help");
    ASSERT_EQ(top.code, 0) << top.err;
    EXPECT_NE(top.out.find("\nUsage: korvane [OPTIONS] [SUBCOMMAND]\n"), std::string::npos)
        << top.out;
    // --observer where it changes the figures; an example for every command.
    for (const char* cmd : {"analyze", "convert", "plot"}) {
        const ToolResult r = Tool(std::string(cmd) + " --help");
        ASSERT_EQ(r.code, 0) << r.err;
        EXPECT_NE(r.out.find(std::string("Usage: korvane ") + cmd + " [OPTIONS]"),
                  std::string::npos)
            << r.out;
        EXPECT_NE(r.out.find("  --observer INT:{2,10}"), std::string::npos) << r.out;
        EXPECT_NE(r.out.find("Example: korvane " + std::string(cmd)), std::string::npos) << r.out;
    }
    for (const char* cmd : {"save", "show"}) {
        const ToolResult r = Tool(std::string("holder ") + cmd + " --help");
        ASSERT_EQ(r.code, 0) << r.err;
        EXPECT_NE(r.out.find(std::string("Example: korvane holder ") + cmd), std::string::npos)
            << r.out;
    }
    EXPECT_NE(Tool("convert --help")
                  .out.find("--csv writes the numbers in full, and a spectral result in the "
                            "form --from spectral FILE reads back"),
              std::string::npos);
    // The observer is still taken before the command.
    const ToolResult ten = Tool("--observer 10 analyze --json " + kRef + "F1.sp");
    ASSERT_EQ(ten.code, 0) << ten.err;
    EXPECT_EQ(json::parse(ten.out)["observer"], "CIE 1964 10");
}

// ---- analyze: golden outputs and published values ---------------------------------------------

TEST(ToolAnalyze, GoldenJsonOfTwoLamps) {
    // lamps.csv: semicolons, a byte-order mark, CRLF line ends, a comment and a quoted name.
    const ToolResult r = Tool("analyze - --json", Slurp("lamps.csv"));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, Slurp("lamps.analyze.json"));
}

TEST(ToolAnalyze, GoldenCsvOfReflectancesUnderA) {
    const ToolResult r = Tool("analyze - --reflectance --illuminant A --csv", Slurp("patches.txt"));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, Slurp("patches.analyze.csv"));
}

TEST(ToolAnalyze, GoldenTable) {
    const ToolResult r = Tool("analyze - --precision 4", Slurp("lamps.csv"));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, Slurp("lamps.analyze.txt"));
}

TEST(ToolAnalyze, PublishedChromaticitiesAndCctsOfAAndD65) {
    // CIE 15:2004: A x 0.44757, y 0.40745, 2856 K; D65 x 0.31271, y 0.32902, 6504 K. The
    // chromaticities are published to five decimals from 5 nm sums: within 2.5e-5. A's CCT is
    // 2848 K on c2 = 1.435e-2, 2855.5 K on ours; D65's comes from the 1 nm table, 1.4 K below the
    // value of its published chromaticity.
    constexpr double kXy = 2.5e-5;
    const ToolResult r = Tool("analyze --json '" + DataFile("illuminant_a_5nm.csv") + "' '" +
                              KORVANE_SOURCE_DIR + "/data/cie_d65_spd.csv'");
    ASSERT_EQ(r.code, 0) << r.err;
    const json j = json::parse(r.out);
    ASSERT_EQ(j["spectra"].size(), 2u);
    const json& a = j["spectra"][0];
    EXPECT_NEAR(a["xy"][0].get<double>(), 0.44757, kXy);
    EXPECT_NEAR(a["xy"][1].get<double>(), 0.40745, kXy);
    EXPECT_NEAR(a["CCT"].get<double>(), 2856.0, 1.0);
    EXPECT_NEAR(a["CRI"]["Ra"].get<double>(), 100.0, 0.01); // a Planckian source is its reference
    const json& d65 = j["spectra"][1];
    EXPECT_NEAR(d65["xy"][0].get<double>(), 0.31271, kXy);
    EXPECT_NEAR(d65["xy"][1].get<double>(), 0.32902, kXy);
    EXPECT_NEAR(d65["CCT"].get<double>(), 6504.0, 2.0);
    EXPECT_EQ(j["observer"], "CIE 1931 2");
    EXPECT_EQ(j["kind"], "light");
    EXPECT_TRUE(j["illuminant"].is_null());
}

TEST(ToolAnalyze, PublishedRaOfFluorescentIlluminants) {
    // CIE 15:2004 Table T.8.1: Ra 76 (F1), 72 (F5), 95 (F8); F8 sits on the reference switch
    // (see CriTest): within 0.6, the others within the rounding of the published integers.
    const ToolResult r =
        Tool("analyze --json " + kRef + "F1.sp " + kRef + "F5.sp " + kRef + "F8.sp");
    ASSERT_EQ(r.code, 0) << r.err;
    const json j = json::parse(r.out);
    const double published[] = {76.0, 72.0, 95.0}, tolerance[] = {0.5, 0.5, 0.6};
    for (int i = 0; i < 3; ++i) {
        const json& s = j["spectra"][static_cast<std::size_t>(i)];
        EXPECT_NEAR(s["CRI"]["Ra"].get<double>(), published[i], tolerance[i]) << s["file"];
        EXPECT_EQ(s["CRI"]["R"].size(), 14u);
        EXPECT_EQ(s["grid"]["count"], 81);
    }
}

TEST(ToolAnalyze, KeysAndNullsAsDocumented) {
    const ToolResult r =
        Tool("analyze --json --reflectance -", "400,0.5\n500,0.5\n600,0.5\n700,0.5\n");
    ASSERT_EQ(r.code, 0) << r.err;
    const nlohmann::ordered_json j = nlohmann::ordered_json::parse(r.out);
    EXPECT_EQ(j["illuminant"], "D65");
    const auto& s = j["spectra"][0];
    std::vector<std::string> keys;
    for (auto it = s.begin(); it != s.end(); ++it)
        keys.push_back(it.key());
    EXPECT_EQ(keys, (std::vector<std::string>{"name", "file", "grid", "XYZ", "xy", "uv",
                                              "luminance", "radiant", "CCT", "Duv",
                                              "dominant_wavelength", "purity", "CRI", "Lab",
                                              "sRGB_linear", "sRGB", "hex", "sRGB_clipped"}));
    EXPECT_TRUE(s["CRI"].is_null());       // reflectances have no colour rendering
    EXPECT_TRUE(s["luminance"].is_null()); // nor a luminance: 683 Y is a light's
    // A flat 50 % reflector under D65: Y 0.5, L* 76.07, neutral against the white reflector
    // (a*, b* 0 to rounding); in sRGB a hair green, as the D65 table is a hair off sRGB's white.
    EXPECT_DOUBLE_EQ(s["XYZ"][1].get<double>(), 0.5);
    EXPECT_NEAR(s["Lab"][0].get<double>(), 76.0693, 1e-4);
    EXPECT_NEAR(s["Lab"][1].get<double>(), 0.0, 1e-12);
    EXPECT_EQ(s["hex"], "#bbbcbb");
    EXPECT_EQ(s["name"], "<stdin>:1");
}

// A light's colour is its chromaticity at full strength: the linear sRGB scaled so that its
// largest channel is 1, flagged only when a channel falls outside the gamut (below 0).
TEST(ToolAnalyze, LightsShowTheirChromaticityAtFullStrength) {
    const ToolResult r = Tool("analyze --json '" + DataFile("illuminant_a_5nm.csv") + "' '" +
                              KORVANE_SOURCE_DIR + "/data/cie_d65_spd.csv' " + kRef + "F8.sp");
    ASSERT_EQ(r.code, 0) << r.err;
    const json j = json::parse(r.out);
    const std::string hex[] = {"#ffb264", "#ffffff", "#ffebcd"}; // A orange, D65, F8 warm white
    for (std::size_t i = 0; i < 3; ++i) {
        const json& s = j["spectra"][i];
        SCOPED_TRACE(s["name"].get<std::string>());
        EXPECT_EQ(s["hex"], hex[i]);
        EXPECT_FALSE(s["sRGB_clipped"].get<bool>());
        double largest = 0.0, encoded = 0.0;
        for (std::size_t c = 0; c < 3; ++c) {
            largest = std::max(largest, s["sRGB_linear"][c].get<double>());
            encoded = std::max(encoded, s["sRGB"][c].get<double>());
        }
        EXPECT_EQ(largest, 1.0);
        EXPECT_EQ(encoded, 1.0);
    }
    // A narrow green band lies outside the gamut: red below 0, clipped and flagged.
    const ToolResult green = Tool("analyze --json -", "510,0\n520,1\n530,0\n");
    ASSERT_EQ(green.code, 0) << green.err;
    const json band = json::parse(green.out);
    const json& g = band["spectra"][0];
    EXPECT_LT(g["sRGB_linear"][0].get<double>(), 0.0);
    EXPECT_EQ(g["sRGB"][0].get<double>(), 0.0);
    EXPECT_TRUE(g["sRGB_clipped"].get<bool>());
}

// Black has no hue: no dominant wavelength or purity, as light or as a reflectance.
TEST(ToolAnalyze, BlackHasNoDominantWavelength) {
    for (const char* kind : {"", " --reflectance"}) {
        SCOPED_TRACE(kind);
        const std::string zero = "400,0\n500,0\n600,0\n";
        const ToolResult r = Tool(std::string("analyze --json -") + kind, zero);
        ASSERT_EQ(r.code, 0) << r.err;
        const json j = json::parse(r.out);
        const json& s = j["spectra"][0];
        EXPECT_TRUE(s["dominant_wavelength"].is_null());
        EXPECT_TRUE(s["purity"].is_null());
        EXPECT_EQ(s["hex"], "#000000");
        const ToolResult table = Tool(std::string("analyze -") + kind, zero);
        ASSERT_EQ(table.code, 0) << table.err;
        const std::string row = table.out.substr(table.out.rfind("<stdin>:1"));
        EXPECT_NE(row.find("            -            -  #000000\n"), std::string::npos) << row;
    }
}

TEST(ToolAnalyze, ObserverTenChangesEveryFigure) {
    const ToolResult two = Tool("analyze --json " + kRef + "F1.sp");
    const ToolResult ten = Tool("analyze --json --observer 10 " + kRef + "F1.sp");
    ASSERT_EQ(ten.code, 0) << ten.err;
    const json a = json::parse(two.out), b = json::parse(ten.out);
    EXPECT_EQ(b["observer"], "CIE 1964 10");
    EXPECT_NE(a["spectra"][0]["XYZ"], b["spectra"][0]["XYZ"]);
    EXPECT_NE(a["spectra"][0]["CCT"], b["spectra"][0]["CCT"]);
}

// A flat 50 % reflector on 380..780 nm at 5 nm under each illuminant: its XYZ is half the
// white's, so its xy is the illuminant's chromaticity and its CIELAB (76.07, 0, 0).
TEST(ToolAnalyze, ReflectancesUnderEveryIlluminant) {
    std::string flat;
    for (int nm = 380; nm <= 780; nm += 5)
        flat += std::to_string(nm) + ",0.5\n";
    const std::string file = TempFile("flat.csv", flat);
    struct Case {
        std::string illuminant;
        double x, y, tolerance;
    };
    // CIE 15:2004: D50 (0.34567, 0.35850), A (0.44757, 0.40745) from 5 nm sums; E (1/3, 1/3)
    // to the rounding of the observer's table.
    const Case cases[] = {{"D50", 0.34567, 0.35850, 2.5e-5},
                          {"E", 1.0 / 3.0, 1.0 / 3.0, 1e-4},
                          {"A", 0.44757, 0.40745, 2.5e-5},
                          {"'" + DataFile("illuminant_a_5nm.csv") + "'", 0.44757, 0.40745, 2.5e-5}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.illuminant);
        const ToolResult r =
            Tool("analyze --json --reflectance --illuminant " + c.illuminant + " '" + file + "'");
        ASSERT_EQ(r.code, 0) << r.err;
        const json j = json::parse(r.out);
        const json& s = j["spectra"][0];
        EXPECT_NEAR(s["XYZ"][1].get<double>(), 0.5, 1e-12);
        EXPECT_NEAR(s["xy"][0].get<double>(), c.x, c.tolerance);
        EXPECT_NEAR(s["xy"][1].get<double>(), c.y, c.tolerance);
        EXPECT_NEAR(s["Lab"][0].get<double>(), 76.0693, 1e-4);
        EXPECT_NEAR(s["Lab"][1].get<double>(), 0.0, 1e-9);
        EXPECT_NEAR(s["Lab"][2].get<double>(), 0.0, 1e-9);
        EXPECT_EQ(j["kind"], "reflectance");
    }
    // The A of the file and the A of the formula light the coloured patches alike.
    const ToolResult named =
        Tool("analyze --json --reflectance --illuminant A " + DataFile("patches.txt"));
    const ToolResult table =
        Tool("analyze --json --reflectance --illuminant '" + DataFile("illuminant_a_5nm.csv") +
             "' " + DataFile("patches.txt"));
    ASSERT_EQ(table.code, 0) << table.err;
    const json a = json::parse(named.out), b = json::parse(table.out);
    ASSERT_EQ(a["spectra"].size(), b["spectra"].size());
    for (std::size_t i = 0; i < a["spectra"].size(); ++i)
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(a["spectra"][i]["Lab"][k].get<double>(),
                        b["spectra"][i]["Lab"][k].get<double>(), 1e-4);
}

TEST(ToolAnalyze, IlluminantNamesInAnyCase) {
    for (const char* name : {"d65", "d50", "a", "e"}) {
        SCOPED_TRACE(name);
        std::string upper = name;
        for (char& c : upper)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        const std::string patches = " '" + DataFile("patches.txt") + "'";
        const ToolResult lower =
            Tool(std::string("analyze --json --reflectance --illuminant ") + name + patches);
        ASSERT_EQ(lower.code, 0) << lower.err;
        EXPECT_EQ(lower.out,
                  Tool("analyze --json --reflectance --illuminant " + upper + patches).out);
        EXPECT_EQ(json::parse(lower.out)["illuminant"], upper);
    }
}

// Neutral reflectances have a* = b* = 0; what the arithmetic leaves (1e-13 and the like) is
// printed in the table as the 0 it is, at the precision of the L*a*b* triple.
TEST(ToolAnalyze, TheTableRoundsRoundingNoiseToZero) {
    std::string greys = "nm,white,half,grey,dark";
    for (int nm = 380; nm <= 780; nm += 5)
        greys += "\n" + std::to_string(nm) + ",1,0.5,0.18,0.03";
    const std::string file = TempFile("greys.csv", greys + "\n");
    for (const char* illuminant : {"D65", "D50", "E"}) {
        SCOPED_TRACE(illuminant);
        const ToolResult r = Tool(std::string("analyze --reflectance --illuminant ") + illuminant +
                                  " '" + file + "'");
        ASSERT_EQ(r.code, 0) << r.err;
        std::istringstream lines(r.out);
        std::string line;
        std::getline(lines, line);
        std::getline(lines, line);
        int rows = 0;
        while (std::getline(lines, line)) {
            std::istringstream cells(line);
            std::vector<std::string> c;
            for (std::string cell; cells >> cell;)
                c.push_back(cell);
            ASSERT_GE(c.size(), 13u) << line;
            EXPECT_EQ(c[11], "0") << line; // a*
            EXPECT_EQ(c[12], "0") << line; // b*
            ++rows;
        }
        EXPECT_EQ(rows, 4);
        // CSV keeps every digit the arithmetic gave.
        EXPECT_NE(Tool(std::string("analyze --csv --reflectance --illuminant ") + illuminant +
                       " '" + file + "'")
                      .out.find("e-1"),
                  std::string::npos);
    }
}

// ---- convert and resample: round trips --------------------------------------------------------

TEST(ToolConvert, RgbThroughASpectrumAndBack) {
    const ToolResult spectrum =
        Tool("convert --from rgb 0.2 0.4 0.6 --to spectral --grid 380 780 5 --csv");
    ASSERT_EQ(spectrum.code, 0) << spectrum.err;
    const std::string file = TempFile("spectrum.csv", spectrum.out);
    const ToolResult back = Tool("convert --from spectral '" + file + "' --to rgb --json");
    ASSERT_EQ(back.code, 0) << back.err;
    const json j = json::parse(back.out);
    // The reconstruction is exact on its grid; written shortest round-trip and read back, the
    // RGB returns to rounding of the 3x3 solve.
    constexpr double kRoundTrip = 1e-12;
    EXPECT_NEAR(j["values"][0].get<double>(), 0.2, kRoundTrip);
    EXPECT_NEAR(j["values"][1].get<double>(), 0.4, kRoundTrip);
    EXPECT_NEAR(j["values"][2].get<double>(), 0.6, kRoundTrip);
    EXPECT_EQ(j["model"], "URGB");
}

TEST(ToolConvert, XyyToRgbAndSurfaces) {
    ToolResult r = Tool("convert --from xyy 0.3127 0.329 1 --to rgb");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "URGB light:  R 1  G 1  B 1\n");
    r = Tool("convert --from xyz 0.95047 1 1.08883 --to xyy --csv");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.substr(0, 25), "# XYY light colour\nx,y,Y\n");
    r = Tool("convert --kind surface --from rgb 0.5 0.5 0.5 --to spectral --json");
    ASSERT_EQ(r.code, 0) << r.err;
    const json j = json::parse(r.out);
    EXPECT_EQ(j["wavelengths"].size(), 33u); // the registered spectral model's default grid
    for (const json& v : j["values"])
        EXPECT_NEAR(v.get<double>(), 0.5, 1e-12); // grey is flat
}

TEST(ToolConvert, ASpectrumFileGivesOneSpectrum) {
    const std::string lamps = DataFile("lamps.csv");
    // Two lamps: which one is up to the user, by name or by number.
    ToolResult r = Tool("convert --from spectral '" + lamps + "' --to xyz");
    EXPECT_EQ(r.code, 2);
    EXPECT_EQ(r.err, "korvane: error: " + lamps +
                         " holds 2 spectra: incandescent, white LED; choose one with --spectrum "
                         "NAME or --spectrum NUMBER (1..2)\n");
    EXPECT_EQ(r.out, "");
    const ToolResult byName =
        Tool("convert --from spectral '" + lamps + "' --spectrum 'white LED' --to xyz --json");
    const ToolResult byNumber =
        Tool("convert --from spectral '" + lamps + "' --spectrum 2 --to xyz --json");
    const ToolResult first =
        Tool("convert --from spectral '" + lamps + "' --spectrum 1 --to xyz --json");
    ASSERT_EQ(byName.code, 0) << byName.err;
    EXPECT_EQ(byName.out, byNumber.out);
    EXPECT_NE(byName.out, first.out);
    r = Tool("convert --from spectral '" + lamps + "' --spectrum 3 --to xyz");
    EXPECT_EQ(r.code, 2);
    EXPECT_EQ(r.err, "korvane: error: --spectrum 3: no spectrum of that name or number; " + lamps +
                         " holds 2 spectra: incandescent, white LED\n");
    r = Tool("convert --from rgb 1 1 1 --spectrum 1 --to xyz");
    EXPECT_EQ(r.code, 2);
    EXPECT_EQ(r.err, "korvane: error: --spectrum picks a spectrum of the file given to --from "
                     "spectral or stokes-spectral\n");

    // A Stokes spectral model takes a spectrum file as the intensity of unpolarized light (or
    // of a depolarizing surface): the colour of the unpolarized model's, in intensity only.
    const std::string f1 = " " + kRef + "F1.sp --json";
    const ToolResult light = Tool("convert --from stokes-spectral" + f1 + " --to rgb");
    ASSERT_EQ(light.code, 0) << light.err;
    EXPECT_EQ(json::parse(light.out)["values"],
              json::parse(Tool("convert --from spectral" + f1 + " --to rgb").out)["values"]);
    const ToolResult surface =
        Tool("convert --from stokes-spectral" + f1 + " --to stokes-rgb --kind surface");
    ASSERT_EQ(surface.code, 0) << surface.err;
    const json mueller = json::parse(surface.out)["values"];
    const json plain = json::parse(
        Tool("convert --from spectral" + f1 + " --to rgb --kind surface").out)["values"];
    ASSERT_EQ(mueller.size(), 48u);
    for (std::size_t i = 0; i < 48; ++i)
        EXPECT_EQ(mueller[i].get<double>(), i % 16 == 0 ? plain[i / 16].get<double>() : 0.0) << i;
}

TEST(ToolResample, OntoASubsetGridKeepsTheSamples) {
    const ToolResult r = Tool("resample " + kRef + "F5.sp --grid 380 780 20");
    ASSERT_EQ(r.code, 0) << r.err;
    std::istringstream lines(r.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "# light resampled from " + kRef + "F5.sp onto 21 wavelengths, 380..780 nm");
    std::getline(lines, line);
    EXPECT_EQ(line, "wavelength_nm,F5.sp:1");
    int rows = 0;
    while (std::getline(lines, line))
        ++rows;
    EXPECT_EQ(rows, 21);
    // Every target wavelength is a source wavelength: the value is the sample itself
    // (F5.sp at 560 nm: 15.20 / SPECTRAL_NORM 30).
    EXPECT_NE(r.out.find("\n560,0.5066666666666666\n"), std::string::npos) << r.out;
}

// ---- plot and holders -------------------------------------------------------------------------

struct SvgText {
    double x, y;
    std::string text;
};

// The <text x='..' y='..'>...</text> elements of an SVG the tool wrote.
std::vector<SvgText> Texts(const std::string& svg) {
    std::vector<SvgText> out;
    for (std::size_t at = svg.find("<text x='"); at != std::string::npos;
         at = svg.find("<text x='", at + 1)) {
        const std::size_t open = svg.find('>', at), close = svg.find("</text>", at);
        const std::size_t y = svg.find("y='", at);
        out.push_back({std::stod(svg.substr(at + 9)), std::stod(svg.substr(y + 3)),
                       svg.substr(open + 1, close - open - 1)});
    }
    return out;
}

TEST(ToolPlot, LabelsOfNearbyPointsStayApart) {
    // F1, F5 and D65 lie within a few thousandths in xy, on D65's own mark.
    const std::string svg = TempFile("near.svg", "");
    const ToolResult r = Tool("plot " + kRef + "F1.sp " + kRef + "F5.sp " + KORVANE_SOURCE_DIR +
                              "/data/cie_d65_spd.csv -o '" + svg + "'");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "wrote " + svg + " (3 spectra)\n");
    // The labels of the diagram (right of the spectra panel), each taken as 7 px a character
    // wide and 9 px high (the cap height of 12 px type): no two overlap.
    std::vector<SvgText> labels;
    for (const SvgText& t : Texts(Read(svg)))
        if (t.x > 600 &&
            (t.text == "F1.sp:1" || t.text == "F5.sp:1" || t.text == "d65" || t.text == "D65"))
            labels.push_back(t);
    ASSERT_EQ(labels.size(), 4u);
    for (std::size_t i = 0; i < labels.size(); ++i)
        for (std::size_t j = i + 1; j < labels.size(); ++j) {
            const SvgText &a = labels[i], &b = labels[j];
            const double wa = 7.0 * static_cast<double>(a.text.size()),
                         wb = 7.0 * static_cast<double>(b.text.size());
            const bool apart =
                a.x + wa <= b.x || b.x + wb <= a.x || a.y + 9 <= b.y || b.y + 9 <= a.y;
            EXPECT_TRUE(apart) << a.text << " at " << a.x << "," << a.y << " and " << b.text
                               << " at " << b.x << "," << b.y;
        }
}

TEST(ToolPlot, TheLegendCountsWhatItLeavesOutAndTheMessageCountsInEnglish) {
    std::string many = "nm";
    for (int c = 1; c <= 14; ++c)
        many += ",s" + std::to_string(c);
    for (int nm = 400; nm <= 700; nm += 100) {
        many += "\n" + std::to_string(nm);
        for (int c = 1; c <= 14; ++c)
            many += "," + std::to_string(c * (nm - 350));
    }
    const std::string svg = TempFile("many.svg", "");
    ToolResult r = Tool("plot '" + TempFile("many.csv", many + "\n") + "' -o '" + svg + "'");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "wrote " + svg + " (14 spectra)\n");
    const std::string text = Read(svg);
    EXPECT_NE(text.find(">s12</text>"), std::string::npos);
    EXPECT_NE(text.find(">+2 more</text>"), std::string::npos);
    r = Tool("plot " + kRef + "F1.sp -o '" + svg + "'");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "wrote " + svg + " (1 spectrum)\n");
}

TEST(ToolHolder, SaveAndShowInBothFormats) {
    for (const char* format : {"binary", "text"}) {
        const std::string file = TempFile(std::string("c.") + format, "");
        ToolResult r = Tool("holder save --model rgb --values 0.2 0.4 0.6 --format " +
                            std::string(format) + " -o '" + file + "'");
        ASSERT_EQ(r.code, 0) << r.err;
        r = Tool("holder show '" + file + "'");
        ASSERT_EQ(r.code, 0) << r.err;
        EXPECT_EQ(r.out.substr(r.out.find("model:")),
                  "model: URGB\nkind: light\nvalues (3): 0.2 0.4 0.6\n");
    }
    const std::string file = TempFile("s.plug", "");
    ToolResult r = Tool("holder save --model spectral --kind surface --values '" +
                        DataFile("patches.txt") + "' -o '" + file + "'");
    ASSERT_EQ(r.code, 0) << r.err;
    r = Tool("holder show '" + file + "'");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find("kind: surface\nvalues (31): 0.5 0.5"), std::string::npos) << r.out;
}

// ---- errors: message and exit code ------------------------------------------------------------

struct ErrorCase {
    const char* args;
    const char* input;
    int code;
    const char* message;
};

// Runs each case and checks its exit code and error text; `out` checks what it printed.
template <std::size_t N, class Out>
void ExpectErrors(const ErrorCase (&cases)[N], Out out) {
    for (const ErrorCase& c : cases) {
        SCOPED_TRACE(c.args);
        const ToolResult r = Tool(c.args, c.input);
        EXPECT_EQ(r.code, c.code);
        EXPECT_EQ(r.err, c.message);
        out(r.out);
    }
}

// Every holder family (single colours of each kind, light arrays and matrices) of BW, RGB and
// spectral models, unpolarized and Stokes, saved and shown back in both archive formats. `shown`
// is what show prints after the type line; "{v}" stands for the values line of the given colour.
struct HolderCase {
    const char* args;
    const char* type;
    const char* shown;
};

TEST(ToolHolder, EveryFamilyRoundTripsInBothFormats) {
    const std::string stokes = "1 0.5 0 0 2 0 0.25 0 3 0 0 -1";
    const HolderCase cases[] = {
        {"--model bw --kind scalar --values 0.25", "UBWScalarColorHold",
         "model: UBW\nkind: scalar\nvalues (1): 0.25\n"},
        {"--model rgb --kind ray --values 0.2 0.4 0.6", "URGBRayColorHold",
         "model: URGB\nkind: ray\nvalues (3): 0.2 0.4 0.6\n"},
        {"--model rgb --kind dual --values 0.2 0.4 0.6", "URGBDualLgtColorHold",
         "model: URGB\nkind: dual\nvalues (3): 0.2 0.4 0.6\n"},
        {"--model stokes-bw --kind ray --values 1 0.5 0 0", "StkBWRayColorHold",
         "model: StkBW\nkind: ray\nvalues (4): 1 0.5 0 0\nxort: 1 0 0\n"},
        {"--model stokes-rgb --kind ray --xort 0 0 1 --values 1 0.5 0 0 2 0 0.25 0 3 0 0 -1",
         "StkRGBRayColorHold",
         "model: StkRGB\nkind: ray\nvalues (12): 1 0.5 0 0 2 0 0.25 0 3 0 0 -1\nxort: 0 0 1\n"},
        {"--model stokes-rgb --kind dual --values 1 0.5 0 0 2 0 0.25 0 3 0 0 -1",
         "StkRGBDualLgtColorHold",
         "model: StkRGB\nkind: dual\nvalues (12): 1 0.5 0 0 2 0 0.25 0 3 0 0 -1\n"},
        {"--model bw --array 3 --values 0.5", "UBWArrayLgtColorHold",
         "model: UBW\nkind: light array\nelements: 3\n[0] values (1): 0.5\n"
         "[1] values (1): 0.5\n[2] values (1): 0.5\n"},
        {"--model stokes-rgb --array 1 --values 1 0.5 0 0 2 0 0.25 0 3 0 0 -1",
         "StkRGBArrayLgtColorHold",
         "model: StkRGB\nkind: light array\nelements: 1\n"
         "[0] values (12): 1 0.5 0 0 2 0 0.25 0 3 0 0 -1\n"},
        {"--model rgb --matrix 2 3 --values 0.1 0.2 0.3", "URGBMatrixLgtColorHold",
         "model: URGB\nkind: light matrix\nelements: 2 x 3\n[0,0] values (3): 0.1 0.2 0.3\n"
         "[0,1] values (3): 0.1 0.2 0.3\n[0,2] values (3): 0.1 0.2 0.3\n"
         "[1,0] values (3): 0.1 0.2 0.3\n[1,1] values (3): 0.1 0.2 0.3\n"
         "[1,2] values (3): 0.1 0.2 0.3\n"},
        {"--model stokes-bw --matrix 1 2 --values 1 0 0.5 0", "StkBWMatrixLgtColorHold",
         "model: StkBW\nkind: light matrix\nelements: 1 x 2\n[0,0] values (4): 1 0 0.5 0\n"
         "[0,1] values (4): 1 0 0.5 0\n"},
    };
    for (const HolderCase& c : cases) {
        for (const char* format : {"binary", "text"}) {
            SCOPED_TRACE(std::string(c.args) + " " + format);
            const std::string file = TempFile(std::string("h.") + format, "");
            ToolResult r = Tool(std::string("holder save ") + c.args + " --format " + format +
                                " -o '" + file + "'");
            ASSERT_EQ(r.code, 0) << r.err;
            EXPECT_EQ(r.out, "wrote " + file + ": " + c.type + " (" + format + ")\n");
            r = Tool("holder show '" + file + "'");
            ASSERT_EQ(r.code, 0) << r.err;
            EXPECT_EQ(r.out, std::string("type: ") + c.type + "\n" + c.shown);
        }
    }
}

// Spectral holders of every family: the file's 31 samples of 0.5 come back in every element; a
// Stokes model takes them as S0 of unpolarized light.
TEST(ToolHolder, SpectralFamiliesKeepTheFileSamples) {
    std::string half, halfStokes;
    for (int i = 0; i < 31; ++i) {
        half += " 0.5";
        halfStokes += " 0.5 0 0 0";
    }
    const std::string v = "values (31):" + half + "\n", vs = "values (124):" + halfStokes + "\n";
    const HolderCase cases[] = {
        {"--model spectral --kind dual", "USpectrDualLgtColorHold", "model: USpectr\nkind: dual\n"},
        {"--model spectral --kind ray", "USpectrRayColorHold", "model: USpectr\nkind: ray\n"},
        {"--model stokes-spectral --kind ray", "StkSpectrRayColorHold",
         "model: StkSpectr\nkind: ray\n"},
        {"--model stokes-spectral --kind dual", "StkSpectrDualLgtColorHold",
         "model: StkSpectr\nkind: dual\n"},
        {"--model spectral --array 2", "USpectrArrayLgtColorHold",
         "model: USpectr\nkind: light array\nelements: 2\n"},
        {"--model stokes-spectral --matrix 2 1", "StkSpectrMatrixLgtColorHold",
         "model: StkSpectr\nkind: light matrix\nelements: 2 x 1\n"},
    };
    for (const HolderCase& c : cases) {
        for (const char* format : {"binary", "text"}) {
            SCOPED_TRACE(std::string(c.args) + " " + format);
            const bool stokes = std::string(c.args).find("stokes") != std::string::npos;
            const std::string& values = stokes ? vs : v;
            std::string expected = std::string("type: ") + c.type + "\n" + c.shown;
            if (std::string(c.shown).find("array") != std::string::npos)
                expected += "[0] " + values + "[1] " + values;
            else if (std::string(c.shown).find("matrix") != std::string::npos)
                expected += "[0,0] " + values + "[1,0] " + values;
            else
                expected += values +
                            (std::string(c.type) == "StkSpectrRayColorHold" ? "xort: 1 0 0\n" : "");
            const std::string file = TempFile(std::string("s.") + format, "");
            ToolResult r =
                Tool(std::string("holder save ") + c.args + " --values '" +
                     DataFile("patches.txt") + "' --format " + format + " -o '" + file + "'");
            ASSERT_EQ(r.code, 0) << r.err;
            r = Tool("holder show '" + file + "'");
            ASSERT_EQ(r.code, 0) << r.err;
            EXPECT_EQ(r.out, expected);
        }
    }
}

std::string Repeat(const std::string& text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i)
        out += text;
    return out;
}

// All 42 holder types the plug-in registers can be written: 5 single kinds, the light array and
// the light matrix, of each of the six models; each file shows back as its own type.
TEST(ToolHolder, EveryHolderTypeCanBeWritten) {
    const std::pair<const char*, const char*> models[] = {
        {"bw", "0.5"},          {"stokes-bw", "1 0 0 0"},
        {"rgb", "0.1 0.2 0.3"}, {"stokes-rgb", "1 0 0 0 1 0 0 0 1 0 0 0"},
        {"spectral", ""},       {"stokes-spectral", ""}};
    const char* shapes[] = {"--kind light", "--kind surface", "--kind scalar", "--kind ray",
                            "--kind dual",  "--array 2",      "--matrix 2 2"};
    std::set<std::string> types;
    for (const auto& [model, light] : models) {
        for (const char* shape : shapes) {
            SCOPED_TRACE(std::string(model) + " " + shape);
            // Surface colours of Stokes models are Mueller matrices (16 per channel); scalar
            // colours are never polarized.
            const std::string m = model;
            const int channels = m.find("rgb") != std::string::npos ? 3 : 1;
            std::string values = std::string(" --values ") + light;
            if (*light == 0)
                values = " --values '" + DataFile("patches.txt") + "'";
            else if (std::string(shape) == "--kind surface" && m.rfind("stokes", 0) == 0)
                values = " --values" + Repeat(" 0.5", 16 * channels);
            else if (std::string(shape) == "--kind scalar")
                values = " --values" + Repeat(" 0.5", channels);
            const std::string file = TempFile("all.plug", "");
            const ToolResult r = Tool(std::string("holder save --model ") + model + " " + shape +
                                      values + " -o '" + file + "'");
            ASSERT_EQ(r.code, 0) << r.err;
            const ToolResult shown = Tool("holder show '" + file + "'");
            ASSERT_EQ(shown.code, 0) << shown.err;
            const std::string type = r.out.substr(r.out.rfind(": ") + 2);
            EXPECT_EQ(shown.out.rfind("type: " + type.substr(0, type.find(' ')) + "\nmodel: ", 0),
                      0u)
                << shown.out;
            EXPECT_EQ(shown.out.find("not shown"), std::string::npos) << shown.out;
            types.insert(type);
        }
    }
    EXPECT_EQ(types.size(), 42u);
}

TEST(ToolHolder, RefusedShapesAndKindsAreUsageErrors) {
    const ErrorCase cases[] = {
        {"holder save --model rgb --matrix 0 0 --values 1 2 3 -o x", "", 2,
         "korvane: error: --matrix takes rows and columns of at least 1\n"},
        {"holder save --model rgb --array -1 --values 1 2 3 -o x", "", 2,
         "korvane: error: --array takes a count of at least 1\n"},
        {"holder save --model rgb --kind blue --values 1 2 3 -o x", "", 2,
         "korvane: error: --kind takes light, surface, scalar, ray or dual, not 'blue'\n"},
        {"holder save --model rgb --kind surface --array 2 --values 1 2 3 -o x", "", 2,
         "korvane: error: --array and --matrix hold light colours; --kind surface cannot be "
         "combined with them\n"},
        {"holder save --model rgb --kind ray --xort 0 1 0 --values 1 2 3 -o x", "", 2,
         "korvane: error: --xort applies to the ray colours of Stokes models only\n"},
        {"holder save --model stokes-rgb --kind dual --values 1 2 3 -o x", "", 2,
         "korvane: error: a dual colour of StkRGB takes 12 values, got 3\n"},
        {"holder save --model bw --array 10000001 --values 1 -o x", "", 2,
         "korvane: error: 10000001 colours of 1 values exceed the tool's limit of 10000000 "
         "values in one holder\n"},
    };
    ExpectErrors(cases, [](const std::string& out) { EXPECT_EQ(out, ""); });
}

TEST(ToolErrors, EveryPathSaysWhatAndExitsWithItsCode) {
    const ErrorCase cases[] = {
        // Bad data: exit 1, the place named.
        {"analyze -", "nm,a\n400,1\n500,abc\n", 1,
         "korvane: error: <stdin>:3:5: expected a finite number, found 'abc'\n"},
        {"analyze -", "400,1\n400,2\n", 1,
         "korvane: error: <stdin>:2:1: expected a wavelength above the previous one (400), "
         "found '400'\n"},
        {"analyze -", "400,1\n500,nan\n", 1,
         "korvane: error: <stdin>:2:5: expected a finite number, found 'nan'\n"},
        {"analyze -", "400,1\n500,1e999\n", 1,
         "korvane: error: <stdin>:2:5: expected a finite number, found '1e999'\n"},
        {"analyze -", "400,1,2\n500,1\n", 1,
         "korvane: error: <stdin>:2: expected 3 comma-separated fields as in the first line, "
         "found 2\n"},
        {"analyze -", "-5,1\n", 1,
         "korvane: error: <stdin>:1:1: expected a wavelength in nm (a finite positive number), "
         "found '-5'\n"},
        {"analyze -", "", 1, "korvane: error: <stdin>: no spectra: the input is empty\n"},
        {"analyze -",
         "SPECT\nBEGIN_DATA_FORMAT\nSAMPLE_ID SPEC_400 SPEC_500\nEND_DATA_FORMAT\n"
         "BEGIN_DATA\nx 1 2\n",
         1, "korvane: error: <stdin>:6: expected END_DATA before the end of the file\n"},
        {"analyze -",
         "SPECT\nSPECTRAL_BANDS \"3\"\nSPECTRAL_START_NM \"400\"\nSPECTRAL_END_NM "
         "\"500\"\nBEGIN_DATA_FORMAT\nSPEC_400 SPEC_500\nEND_DATA_FORMAT\n",
         1,
         "korvane: error: <stdin>:7: SPECTRAL_BANDS says 3 but the data format has 2 spectral "
         "fields\n"},
        {"analyze -", "CTI3\nBEGIN_DATA_FORMAT\nSAMPLE_ID RGB_R\nEND_DATA_FORMAT\n", 1,
         "korvane: error: <stdin>:4: expected SPEC_<nm> or SPECTRAL_<nm> fields in the data "
         "format (line 4); found none\n"},
        {"analyze /nonexistent/lamp.csv", "", 1,
         "korvane: error: /nonexistent/lamp.csv: cannot open: No such file or directory\n"},
        {"plot - -o /nonexistent/plot.svg", "400,1\n500,1\n", 1,
         "korvane: error: /nonexistent/plot.svg: cannot write: No such file or directory\n"},
        {"holder show /nonexistent/c.plug", "", 1,
         "korvane: error: PlugFile: cannot open \"/nonexistent/c.plug\": No such file or "
         "directory\n"},
        {"resample - --grid-file /nonexistent/grid.csv", "400,1\n", 1,
         "korvane: error: /nonexistent/grid.csv: cannot open: No such file or directory\n"},
        {"convert --from rgb 0.2 0.4 0.6 --to stokes-spectral", "", 1,
         "korvane: error: the StkSpectr model refused the light colour of URGB: Not supported "
         "spectral light color conversion\n"},
        {"--plugin /nonexistent.so", "", 1,
         "korvane: error: cannot load the plug-in /nonexistent.so: cannot load plug-in module "
         "\"/nonexistent.so\": not a shared library that can be opened (/nonexistent.so: cannot "
         "open shared object file: No such file or directory)\n"},
        // Bad usage: exit 2.
        {"--grid 0 100 10", "", 2,
         "korvane: error: --grid needs 0 < first <= last and a positive step (nm)\n"},
        {"--grid 380 inf 1", "", 2,
         "korvane: error: --grid takes finite numbers: first last step in nm\n"},
        {"--grid 380 780 1e-6", "", 2,
         "korvane: error: --grid 380 780 1e-06 makes 400000001 wavelengths; the tool takes at "
         "most 4001\n"},
        {"--grid 380 780 4.9e-324", "", 2,
         "korvane: error: --grid 380 780 5e-324 makes too many wavelengths; the tool takes at "
         "most 4001\n"},
        {"--rgb nan 0 0", "", 2, "korvane: error: --rgb takes finite numbers\n"},
        {"--rgb inf 0 0", "", 2, "korvane: error: --rgb takes finite numbers\n"},
        {"--rgb 1 0", "", 2,
         "korvane: --rgb: At least 3 required but received 2\nRun 'korvane --help' for usage.\n"},
        {"--rgb 1 0 0 1", "", 2, "korvane: error: --rgb takes three values per colour\n"},
        {"convert --from rgb 1 2 --to xyz", "", 2,
         "korvane: error: --from rgb light takes 3 values, got 2\n"},
        {"convert --from cmyk 1 2 3 4 --to xyz", "", 2,
         "korvane: error: unknown model 'cmyk': expected bw, rgb, spectral, xyz, xyy, stokes-bw, "
         "stokes-rgb or stokes-spectral\n"},
        {"convert --from rgb 1 2 3 --to spectral --grid 1 1e9 1", "", 2,
         "korvane: error: --grid 1 1e+09 1 makes 1e+09 wavelengths; the tool takes at most 4001\n"},
        {"analyze - --illuminant A", "400,1\n", 2,
         "korvane: error: --illuminant applies to --reflectance only\n"},
        {"analyze - --illuminant D65", "400,1\n", 2,
         "korvane: error: --illuminant applies to --reflectance only\n"},
        {"analyze - --reflectance --illuminant D55", "400,1\n", 2,
         "korvane: error: --illuminant takes D65, D50, A, E or a spectrum file; 'D55' is "
         "neither\n"},
        {"resample -", "400,1\n", 2,
         "korvane: error: resample needs --grid FIRST LAST STEP or --grid-file FILE\n"},
        {"analyze", "", 2, "korvane: files is required\nRun 'korvane --help' for usage.\n"},
    };
    ExpectErrors(cases, [](const std::string& out) {
        EXPECT_EQ(out.find("error"), std::string::npos); // no error text on stdout
    });
}

// Errors that need files of their own: a file that is not a plug file, a grid file that is not a
// spectrum file or is too long, and a later file failing after the earlier ones were written.
TEST(ToolErrors, FilesThatAreNotWhatTheCommandNeeds) {
    const std::string lamps = DataFile("lamps.csv");
    ToolResult r = Tool("holder show '" + lamps + "'");
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "korvane: error: PlugFile: cannot read \"" + lamps +
                         "\": not a plug file (neither a binary nor a text archive)\n");
    EXPECT_EQ(r.out, "");

    const std::string badGrid = TempFile("grid.csv", "400,1\n400,2\n");
    r = Tool("resample '" + lamps + "' --grid-file '" + badGrid + "'");
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "korvane: error: " + badGrid +
                         ":2:1: expected a wavelength above the previous one (400), found '400'\n");
    EXPECT_EQ(r.out, "");
    std::string longGrid;
    for (int i = 0; i < 4002; ++i)
        longGrid += std::to_string(300 + i * 0.1) + ",1\n";
    const std::string tooLong = TempFile("long.csv", longGrid);
    r = Tool("resample '" + lamps + "' --grid-file '" + tooLong + "'");
    EXPECT_EQ(r.code, 1); // a grid from a file is data; --grid on the command line is usage
    EXPECT_EQ(r.err, "korvane: error: " + tooLong +
                         " has 4002 wavelengths; the tool's spectral models take at most 4001\n");

    // Results are written as each file is read: the first file's row stays, then the error.
    const std::string bad = TempFile("bad.csv", "nm,a\n400,1\n500,x\n");
    r = Tool("analyze " + kRef + "F1.sp '" + bad + "' --precision 3");
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "korvane: error: " + bad + ":3:5: expected a finite number, found 'x'\n");
    EXPECT_NE(r.out.find("\nF1.sp:1 "), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("bad.csv"), std::string::npos) << r.out;
}

// A script reading --json gets a whole document or nothing: an error in a later file or a later
// line leaves no opened document behind.
TEST(ToolErrors, JsonIsWholeOrNothing) {
    const ErrorCase cases[] = {
        {"analyze --json /usr/share/color/argyll/ref/F8.sp /nonexistent/lamp.csv", "", 1,
         "korvane: error: /nonexistent/lamp.csv: cannot open: No such file or directory\n"},
        {"analyze - --json", "400,1\n500,x\n", 1,
         "korvane: error: <stdin>:2:5: expected a finite number, found 'x'\n"},
        {"analyze --json --reflectance /usr/share/color/argyll/ref/F8.sp -", "400,1\n400,2\n", 1,
         "korvane: error: <stdin>:2:1: expected a wavelength above the previous one (400), "
         "found '400'\n"},
    };
    ExpectErrors(cases, [](const std::string& out) {
        EXPECT_TRUE(out.empty() || json::accept(out)) << out;
    });
}

TEST(ToolErrors, GridsBeyondTheToolsBoundAreRefusedWithoutLoadingThem) {
    std::string big;
    for (int i = 0; i < 4002; ++i)
        big += std::to_string(300 + i * 0.1) + ",1\n";
    const ToolResult r = Tool("analyze -", big);
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "korvane: error: <stdin>: spectrum <stdin>:1 has 4002 wavelengths; the "
                     "tool's spectral models take at most 4001\n");
}

} // namespace
} // namespace Korvane::ToolTest
