#include "cli/Plot.h"

#include "cli/Host.h"
#include "cli/Inputs.h"
#include "cli/Numbers.h"
#include "cli/ToolError.h"
#include "cli/analysis/Analysis.h"

#include "hostkit/colormodel/ColorModel.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>

namespace Korvane::Cli {
namespace {

using Analysis::Vec2;
using Analysis::Vec3;

struct Series {
    std::string name;
    std::vector<double> nm, values;
    Vec2 point; // xy or u'v'
    std::string colour;
};

// Panel geometry: data box [x0, x1] x [y0, y1] drawn into the pixel box (left, top, w, h).
struct Panel {
    double left, top, w, h, x0, x1, y0, y1;
    double X(double x) const { return left + (x - x0) / (x1 - x0) * w; }
    double Y(double y) const { return top + h - (y - y0) / (y1 - y0) * h; }
};

std::string F(double v) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.2f", v);
    return buf;
}

std::string Escape(const std::string& s) {
    std::string out;
    for (char c : s) {
        switch (c) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += (static_cast<unsigned char>(c) < 0x20) ? ' ' : c;
        }
    }
    return out;
}

void Axes(std::ostream& svg, const Panel& p, double xStep, double yStep, const std::string& xLabel,
          const std::string& yLabel) {
    svg << "<rect x='" << F(p.left) << "' y='" << F(p.top) << "' width='" << F(p.w) << "' height='"
        << F(p.h) << "' fill='white' stroke='#444'/>\n";
    for (double x = std::ceil(p.x0 / xStep) * xStep; x <= p.x1 + 1e-9; x += xStep) {
        svg << "<line x1='" << F(p.X(x)) << "' y1='" << F(p.top) << "' x2='" << F(p.X(x))
            << "' y2='" << F(p.top + p.h) << "' stroke='#e4e4e4'/>\n";
        svg << "<text x='" << F(p.X(x)) << "' y='" << F(p.top + p.h + 16)
            << "' text-anchor='middle'>" << Digits(x, 4) << "</text>\n";
    }
    for (double y = std::ceil(p.y0 / yStep) * yStep; y <= p.y1 + 1e-9; y += yStep) {
        svg << "<line x1='" << F(p.left) << "' y1='" << F(p.Y(y)) << "' x2='" << F(p.left + p.w)
            << "' y2='" << F(p.Y(y)) << "' stroke='#e4e4e4'/>\n";
        svg << "<text x='" << F(p.left - 6) << "' y='" << F(p.Y(y) + 4) << "' text-anchor='end'>"
            << Digits(y, 3) << "</text>\n";
    }
    svg << "<text x='" << F(p.left + p.w / 2) << "' y='" << F(p.top + p.h + 36)
        << "' text-anchor='middle'>" << xLabel << "</text>\n";
    svg << "<text x='" << F(p.left - 40) << "' y='" << F(p.top + p.h / 2)
        << "' text-anchor='middle' transform='rotate(-90 " << F(p.left - 40) << ' '
        << F(p.top + p.h / 2) << ")'>" << yLabel << "</text>\n";
}

void Polyline(std::ostream& svg, const Panel& p, const std::vector<Vec2>& pts,
              const std::string& style) {
    svg << "<polyline fill='none' " << style << " points='";
    for (const Vec2& v : pts)
        svg << F(p.X(v[0])) << ',' << F(p.Y(v[1])) << ' ';
    svg << "'/>\n";
}

// A text's box on the page, estimated from its length (the SVG viewer lays it out): 0.62 of
// the font size per character, from the cap height above the baseline to the descent below.
struct Box {
    double x0, y0, x1, y1;
    bool Overlaps(const Box& o) const { return x0 < o.x1 && o.x0 < x1 && y0 < o.y1 && o.y0 < y1; }
};

Box TextBox(double x, double baseline, const std::string& text, double size) {
    std::size_t chars = 0;
    for (char c : text)
        chars += (static_cast<unsigned char>(c) & 0xC0) != 0x80; // UTF-8 lead bytes
    return {x, baseline - 0.8 * size, x + 0.62 * size * static_cast<double>(chars),
            baseline + 0.25 * size};
}

// The vertical offset of a label at (x, baseline) that overlaps none of `taken`: 0, then a line
// down, a line up, two lines down, ... (at most 12 lines away; beyond that it stays put).
double FreeOffset(double x, double baseline, const std::string& text, double size,
                  const std::vector<Box>& taken) {
    const double line = size + 2.0;
    for (int step = 0; step <= 24; ++step) {
        const double dy = (step % 2 == 1 ? 1.0 : -1.0) * line * ((step + 1) / 2);
        const Box b = TextBox(x, baseline + dy, text, size);
        if (std::none_of(taken.begin(), taken.end(), [&](const Box& t) { return b.Overlaps(t); }))
            return dy;
    }
    return 0.0;
}

} // namespace

void RunPlot(const PlotOptions& o, std::ostream& out) {
    const Observer observer = Analysis::CurrentObserver();
    const auto toDiagram = [&](const Vec2& xy) { return o.ucs ? Analysis::UvPrimeFromXy(xy) : xy; };
    std::vector<Series> series;
    constexpr std::size_t kMaxSeries = 200;
    for (const std::string& file : o.files) {
        ReadSpectrumFile(file, [&](SpectrumIO::Spectrum& s) {
            if (series.size() >= kMaxSeries)
                DataError("plot draws at most " + std::to_string(kMaxSeries) + " spectra");
            CheckGridSize(s.nm.size(), file + ": spectrum " + s.name);
            Vec3 xyz{};
            if (Analysis::LightXYZ({s.nm.data(), s.values.data(), static_cast<int>(s.nm.size())},
                                   xyz) != 0)
                DataError(file + ": spectrum " + s.name + ": the converter refused its grid");
            Series r;
            // Labels without the folders of a path-derived name.
            const std::size_t slash = s.name.rfind('/');
            r.name = slash == std::string::npos ? s.name : s.name.substr(slash + 1);
            r.nm = s.nm;
            r.values = s.values;
            r.point = toDiagram(Analysis::Xy(xyz));
            r.colour = Analysis::EncodeSrgb(Analysis::LightSrgb(xyz)).hex; // as analyze shows it
            series.push_back(std::move(r));
            return true;
        });
    }

    if (series.empty())
        DataError("no spectra to plot");
    std::ostringstream svg;
    svg << "<?xml version='1.0' encoding='UTF-8'?>\n<svg xmlns='http://www.w3.org/2000/svg' "
           "width='1100' height='540' font-family='sans-serif' font-size='12'>\n"
           "<rect width='1100' height='540' fill='#fafafa'/>\n";

    // Spectra, each scaled to its peak.
    double lo = series.front().nm.front(), hi = series.front().nm.back();
    for (const Series& s : series) {
        lo = std::min(lo, s.nm.front());
        hi = std::max(hi, s.nm.back());
    }
    if (!(hi > lo))
        hi = lo + 1.0;
    const double span = hi - lo;
    const double xStep = span > 400 ? 100 : span > 100 ? 50 : span > 20 ? 10 : 1;
    const Panel sp{70, 40, 440, 450, lo, hi, 0.0, 1.05};
    svg << "<text x='70' y='24' font-size='15'>Spectra (each scaled to its peak)</text>\n";
    Axes(svg, sp, xStep, 0.2, "wavelength (nm)", "relative value");
    for (const Series& s : series) {
        double peak = 0.0;
        for (double v : s.values)
            peak = std::max(peak, std::abs(v));
        std::vector<Vec2> pts;
        for (std::size_t i = 0; i < s.nm.size(); ++i)
            pts.push_back({s.nm[i], peak > 0.0 ? std::max(-0.05, s.values[i] / peak) : 0.0});
        Polyline(svg, sp, pts, "stroke='#333' stroke-width='3.5' stroke-opacity='0.6'");
        Polyline(svg, sp, pts, "stroke='" + s.colour + "' stroke-width='2'");
    }

    // Legend: each spectrum's colour and name, top right of the spectra; beyond 12, a count.
    constexpr std::size_t kLegendRows = 12;
    for (std::size_t i = 0; i < series.size() && i < kLegendRows; ++i) {
        const double y = sp.top + 16 + 16 * static_cast<double>(i);
        svg << "<rect x='" << F(sp.left + sp.w - 150) << "' y='" << F(y - 9) << "' width='14' "
            << "height='10' fill='" << series[i].colour << "' stroke='#333'/><text x='"
            << F(sp.left + sp.w - 130) << "' y='" << F(y) << "'>" << Escape(series[i].name)
            << "</text>\n";
    }
    if (series.size() > kLegendRows)
        svg << "<text x='" << F(sp.left + sp.w - 130) << "' y='"
            << F(sp.top + 16 + 16 * static_cast<double>(kLegendRows)) << "' fill='#444'>+"
            << series.size() - kLegendRows << " more</text>\n";

    // Chromaticity diagram.
    // Equal scales on both axes: 650 px per unit of u'v', 500 px per unit of xy.
    const Panel cp = o.ucs ? Panel{640, 40, 422.5, 390, 0.0, 0.65, 0.0, 0.6}
                           : Panel{640, 40, 400, 450, 0.0, 0.8, 0.0, 0.9};
    svg << "<text x='640' y='24' font-size='15'>" << (o.ucs ? "CIE 1976 u'v'" : "CIE 1931 xy")
        << " (" << Analysis::ObserverName(observer) << " degree observer)</text>\n";
    Axes(svg, cp, 0.1, 0.1, o.ucs ? "u'" : "x", o.ucs ? "v'" : "y");
    std::vector<Vec2> locus;
    for (const Vec2& xy : Analysis::SpectralLocusXy(observer))
        locus.push_back(toDiagram(xy));
    locus.push_back(locus.front()); // the purple line
    svg << "<polygon fill='#f0f0f0' stroke='none' points='";
    for (const Vec2& v : locus)
        svg << F(cp.X(v[0])) << ',' << F(cp.Y(v[1])) << ' ';
    svg << "'/>\n";
    Polyline(svg, cp, locus, "stroke='#222' stroke-width='1.5'");
    for (int nm : {460, 480, 500, 520, 540, 560, 580, 600, 620, 700}) {
        const Vec2 v = locus[static_cast<std::size_t>(nm - Analysis::kLocusFirstNm)];
        svg << "<circle cx='" << F(cp.X(v[0])) << "' cy='" << F(cp.Y(v[1]))
            << "' r='2' fill='#222'/><text x='" << F(cp.X(v[0]) + 5) << "' y='" << F(cp.Y(v[1]) - 4)
            << "' font-size='10' fill='#444'>" << nm << "</text>\n";
    }
    // sRGB gamut: the primaries and white of the converter's N matrix.
    const TMatrix3& n = ColorModel::GetCIEConv()->RGB2XYZ();
    std::vector<Vec2> gamut;
    for (int c = 0; c < 4; ++c) {
        const Vec3 xyz{n[0][c % 3], n[1][c % 3], n[2][c % 3]};
        gamut.push_back(toDiagram(Analysis::Xy(xyz)));
    }
    Polyline(svg, cp, gamut, "stroke='#1f5fbf' stroke-width='1.2' stroke-dasharray='5,3'");
    svg << "<text x='" << F(cp.X(gamut[1][0]) + 6) << "' y='" << F(cp.Y(gamut[1][1]))
        << "' fill='#1f5fbf'>sRGB</text>\n";
    // Planckian locus 1000..25000 K, ticks with their CCT.
    std::vector<Vec2> planck;
    for (double t = 1000.0; t <= 25000.0; t *= 1.02)
        planck.push_back(toDiagram(Analysis::PlanckianXy(t, observer)));
    Polyline(svg, cp, planck, "stroke='#b03000' stroke-width='1.2'");
    std::vector<Box> taken; // what the spectra's labels must keep clear of
    for (double t : {1500.0, 2000.0, 2856.0, 4000.0, 6500.0, 10000.0}) {
        const Vec2 v = toDiagram(Analysis::PlanckianXy(t, observer));
        const std::string label = Digits(t, 5) + " K";
        svg << "<circle cx='" << F(cp.X(v[0])) << "' cy='" << F(cp.Y(v[1]))
            << "' r='2.5' fill='#b03000'/><text x='" << F(cp.X(v[0]) - 4) << "' y='"
            << F(cp.Y(v[1]) + 14) << "' font-size='10' fill='#b03000' text-anchor='end'>" << label
            << "</text>\n";
        Box b = TextBox(cp.X(v[0]) - 4, cp.Y(v[1]) + 14, label, 10);
        const double w = b.x1 - b.x0;
        taken.push_back({b.x0 - w, b.y0, b.x1 - w, b.y1}); // anchored at its end
    }
    const Vec2 d65 = toDiagram(Analysis::Xy(
        {n[0][0] + n[0][1] + n[0][2], n[1][0] + n[1][1] + n[1][2], n[2][0] + n[2][1] + n[2][2]}));
    svg << "<path d='M" << F(cp.X(d65[0]) - 5) << ' ' << F(cp.Y(d65[1])) << " h10 M"
        << F(cp.X(d65[0])) << ' ' << F(cp.Y(d65[1]) - 5) << " v10' stroke='#000'/><text x='"
        << F(cp.X(d65[0]) + 6) << "' y='" << F(cp.Y(d65[1]) - 6) << "'>D65</text>\n";
    // The points, then their labels: right of the point, moved a line at a time down or up
    // until clear of the CCT ticks' and D65's labels, the points and the labels already placed
    // (spectra of nearby colours, e.g. daylight-like lamps, would otherwise print over each
    // other), with a leader line to a label that moved.
    taken.push_back(TextBox(cp.X(d65[0]) + 6, cp.Y(d65[1]) - 6, "D65", 12));
    for (const Series& s : series) {
        if (!std::isfinite(s.point[0]) || !std::isfinite(s.point[1]))
            continue;
        const double x = cp.X(s.point[0]), y = cp.Y(s.point[1]);
        svg << "<circle cx='" << F(x) << "' cy='" << F(y) << "' r='5' fill='" << s.colour
            << "' stroke='#000'/>\n";
        taken.push_back({x - 5, y - 5, x + 5, y + 5});
    }
    for (const Series& s : series) {
        if (!std::isfinite(s.point[0]) || !std::isfinite(s.point[1]))
            continue;
        const double x = cp.X(s.point[0]), y = cp.Y(s.point[1]);
        const std::string label = Escape(s.name);
        const double dy = FreeOffset(x + 8, y + 4, s.name, 12, taken);
        taken.push_back(TextBox(x + 8, y + 4 + dy, s.name, 12));
        if (dy != 0.0)
            svg << "<line x1='" << F(x + 4) << "' y1='" << F(y + (dy > 0 ? 3 : -3)) << "' x2='"
                << F(x + 7) << "' y2='" << F(y + dy) << "' stroke='#666' stroke-width='0.8'/>\n";
        svg << "<text x='" << F(x + 8) << "' y='" << F(y + 4 + dy) << "'>" << label << "</text>\n";
    }
    svg << "</svg>\n";

    std::ofstream file(o.output, std::ios::binary);
    if (!file)
        DataError(o.output + ": cannot write: " + std::strerror(errno));
    file << svg.str();
    file.close();
    if (!file)
        DataError(o.output + ": cannot write: " + std::strerror(errno));
    out << "wrote " << o.output << " (" << series.size()
        << (series.size() == 1 ? " spectrum)\n" : " spectra)\n");
}

} // namespace Korvane::Cli
