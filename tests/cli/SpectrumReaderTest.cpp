// The spectrum readers: the dialects of delimited text, CGATS as measurement software writes it,
// and the bounds that keep hostile input from costing unbounded time or memory.
#include "cli/io/SpectrumReader.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Korvane::SpectrumIO {
namespace {

struct Read {
    bool ok;
    std::vector<Spectrum> spectra;
    std::string error;
};

Read ReadText(const std::string& text, Format format = Format::Auto) {
    Read r{false, {}, ""};
    ReadError e;
    r.ok = ReadSpectra(
        text.data(), text.size(), "f",
        [&](Spectrum& s) {
            r.spectra.push_back(s);
            return true;
        },
        e, format);
    r.error = r.ok ? "" : e.Text();
    return r;
}

TEST(DelimitedReader, DialectsGiveTheSameSpectra) {
    const std::vector<std::string> dialects = {
        "nm,a,b\n400,1,2\n500,3,4\n",
        "\xEF\xBB\xBFnm;a;b\r\n400;1;2\r\n500;3;4\r\n",
        "# measured\n\nnm\ta\tb\n400\t1\t2\n# between\n500\t3\t4",
        "  nm   \"a\"  b\n 400  1   2\n500 3 4\n",
    };
    for (const std::string& text : dialects) {
        const Read r = ReadText(text);
        ASSERT_TRUE(r.ok) << r.error << " in " << text;
        ASSERT_EQ(r.spectra.size(), 2u);
        EXPECT_EQ(r.spectra[0].name, "a");
        EXPECT_EQ(r.spectra[1].name, "b");
        EXPECT_EQ(r.spectra[0].nm, (std::vector<double>{400, 500}));
        EXPECT_EQ(r.spectra[0].values, (std::vector<double>{1, 3}));
        EXPECT_EQ(r.spectra[1].values, (std::vector<double>{2, 4}));
    }
    // Without a header the spectra are named after the file and column.
    const Read r = ReadText("400,0.25\n401,+1e-3\n");
    ASSERT_TRUE(r.ok) << r.error;
    EXPECT_EQ(r.spectra[0].name, "f:1");
    EXPECT_EQ(r.spectra[0].values, (std::vector<double>{0.25, 1e-3}));
}

// Names may hold any delimiter but the file's own, and that one too in quotes: the delimiter is
// the one after the first data line's wavelength, and quotes protect what they hold.
TEST(DelimitedReader, NamesMayHoldDelimiters) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"nm;warm, 2700 K;cool\n400;1;2\n500;3;4\n", {"warm, 2700 K", "cool"}},
        {"nm;\"warm; 2700 K\";cool\n400;1;2\n500;3;4\n", {"warm; 2700 K", "cool"}},
        {"nm, \"the \"\"warm\"\" one\" ,cool\n400,1,2\n500 , 3,4\n", {"the \"warm\" one", "cool"}},
        {"# lamps\nnm\t\"a\tb\"\tc;d, e\n\n400\t1\t2\n500\t3\t4\n", {"a\tb", "c;d, e"}},
        {"nm \"warm white\"  cool\n400 1 2\n500 \"3\" 4\n", {"warm white", "cool"}},
    };
    for (const auto& [text, names] : cases) {
        const Read r = ReadText(text);
        ASSERT_TRUE(r.ok) << r.error << " in " << text;
        ASSERT_EQ(r.spectra.size(), 2u) << text;
        EXPECT_EQ(r.spectra[0].name, names[0]);
        EXPECT_EQ(r.spectra[1].name, names[1]);
        EXPECT_EQ(r.spectra[0].values, (std::vector<double>{1, 3})) << text;
        EXPECT_EQ(r.spectra[1].values, (std::vector<double>{2, 4})) << text;
    }
    // Decimal commas in semicolon-separated values are not read as delimiters.
    EXPECT_EQ(ReadText("nm;a\n400;0,5\n").error, "f:2:5: expected a finite number, found '0,5'");
    // Quotes are checked wherever they are, with the place of the fault.
    EXPECT_EQ(ReadText("nm;\"warm;cool\n400;1;2\n").error, "f:1:4: expected a closing '\"'");
    EXPECT_EQ(ReadText("nm;\"warm\"x;cool\n400;1;2\n").error,
              "f:1:10: expected a semicolon or the line end after a closing '\"', found 'x'");
    EXPECT_EQ(ReadText("400 \"1\"2\n").error,
              "f:1:8: expected a space or the line end after a closing '\"', found '2'");
    EXPECT_EQ(ReadText("nm;a;b\n400;1;2\n500;\"3;4\n").error, "f:3:5: expected a closing '\"'");
    // A header that does not match its data is named at the data line, and one with a single
    // name at its own line.
    EXPECT_EQ(ReadText("nm;warm, 2700 K\n400;1;2\n").error,
              "f:2: expected 2 semicolon-separated fields as in the first line, found 3");
    EXPECT_EQ(ReadText("# x\nnm, a\n\n400;1\n").error,
              "f:2: expected a wavelength column and at least one spectrum column separated by "
              "commas, semicolons, tabs or spaces; found one field");
}

TEST(DelimitedReader, ErrorsNameLineColumnAndWhatWasExpected) {
    EXPECT_EQ(ReadText("nm,a\n400,1\n500, x\n").error,
              "f:3:6: expected a finite number, found 'x'");
    EXPECT_EQ(ReadText("400,1\n500,\n").error, "f:2:5: expected a finite number, found ''");
    EXPECT_EQ(ReadText("400,1\n300,1\n").error,
              "f:2:1: expected a wavelength above the previous one (400), found '300'");
    EXPECT_EQ(ReadText("400,1\ninf,1\n").error,
              "f:2:1: expected a wavelength in nm (a finite positive number), found 'inf'");
    EXPECT_EQ(ReadText("400\n").error,
              "f:1: expected a wavelength column and at least one spectrum column separated by "
              "commas, semicolons, tabs or spaces; found one field");
    EXPECT_EQ(ReadText("nm,a\n# nothing\n").error,
              "f:2: no data rows: expected lines of a wavelength and values");
    EXPECT_EQ(ReadText("# only\n").error, "f:1: no spectra: only comments and blank lines");
}

TEST(DelimitedReader, BoundsHoldWhateverTheInput) {
    // One more wavelength than allowed: refused, at the line that exceeds the bound.
    std::string rows;
    for (int i = 1; i <= kMaxPoints + 1; ++i)
        rows += std::to_string(i) + ",0\n";
    const Read tooLong = ReadText(rows);
    EXPECT_EQ(tooLong.error, "f:100001: more than 100000 wavelengths (at most 100000 per spectrum "
                             "and 20000000 values per file)");
    // A line longer than the bound stops the read without holding it.
    const Read line = ReadText("400," + std::string(kMaxLineLength + 1, '1') + "\n");
    EXPECT_EQ(line.error, "f:1: line longer than 4194304 bytes");
    // Binary junk is an error, not a crash.
    const std::string junk("\x00\x01\xff\xfe,\n\x80", 7);
    EXPECT_FALSE(ReadText(junk).ok);
}

TEST(CgatsReader, SpectralFieldsNamesNormAndStreaming) {
    const std::string file = "CTI3\n"
                             "KEYWORD \"SPECTRAL_BANDS\"\n"
                             "SPECTRAL_BANDS \"3\"\n"
                             "SPECTRAL_START_NM \"400.0\"\n"
                             "SPECTRAL_END_NM \"700.0\"\n"
                             "SPECTRAL_NORM \"100.0\"\n"
                             "NUMBER_OF_FIELDS 5\n"
                             "BEGIN_DATA_FORMAT\n"
                             "SAMPLE_ID RGB_R SPEC_400 SPEC_550 SPEC_700\n"
                             "END_DATA_FORMAT\n"
                             "NUMBER_OF_SETS 3\n"
                             "BEGIN_DATA\n"
                             "\"A 1\" 0.5 10 20 30  # a comment\n"
                             "B2 0.5 40\n"
                             "50 60\n"
                             "C3 0.5 70 80 90\n"
                             "END_DATA\n";
    const Read r = ReadText(file);
    ASSERT_TRUE(r.ok) << r.error;
    ASSERT_EQ(r.spectra.size(), 3u);
    EXPECT_EQ(r.spectra[0].name, "A 1");
    EXPECT_EQ(r.spectra[1].name, "B2");
    // SPEC_550 is named off the even steps: the header's start, end and bands decide.
    EXPECT_EQ(r.spectra[0].nm, (std::vector<double>{400, 550, 700}));
    EXPECT_EQ(r.spectra[1].values, (std::vector<double>{0.4, 0.5, 0.6})); // divided by the norm

    // The sink stops the read after the first set: what follows is not even parsed.
    int seen = 0;
    ReadError e;
    const std::string cut = file.substr(0, file.find("B2")) + "broken";
    EXPECT_TRUE(ReadSpectra(
        cut.data(), cut.size(), "f",
        [&](Spectrum&) {
            ++seen;
            return false;
        },
        e));
    EXPECT_EQ(seen, 1);
}

TEST(CgatsReader, ErrorsNameTheField) {
    const std::string head = "SPECT\nBEGIN_DATA_FORMAT\nSPEC_400 SPEC_500\nEND_DATA_FORMAT\n"
                             "BEGIN_DATA\n";
    EXPECT_EQ(ReadText(head + "1 x\nEND_DATA\n").error,
              "f:6:3: expected a finite number for SPEC_500, found 'x'");
    EXPECT_EQ(ReadText(head + "1\nEND_DATA\n").error,
              "f:7:1: expected 1 more fields of set 1 before END_DATA");
    EXPECT_EQ(ReadText(head + "\"1 2\n").error, "f:6:1: expected a closing '\"'");
    EXPECT_EQ(ReadText("SPECT\nBEGIN_DATA_FORMAT\nSPEC_500 SPEC_400\nEND_DATA_FORMAT\n").error,
              "f:4: expected spectral fields with positive, increasing wavelengths; field "
              "SPEC_400 is at 400 nm");
    EXPECT_EQ(ReadText("SPECT\nSPECTRAL_NORM \"0\"\nBEGIN_DATA_FORMAT\nSPEC_400\n"
                       "END_DATA_FORMAT\n")
                  .error,
              "f:5: expected SPECTRAL_NORM to be a finite positive number, found '0'");
    EXPECT_EQ(ReadText("SPECT\nDESCRIPTOR x\n").error,
              "f:2: expected BEGIN_DATA_FORMAT before the end of the file");
}

} // namespace
} // namespace Korvane::SpectrumIO
