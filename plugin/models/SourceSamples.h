// How every conversion of every model reads a spectral colour, whatever its sample count.
//
// The rule, for the BW, RGB, spectral, XYZ and xyY models alike, for light, surface, scalar and
// ray colours of both polarizations and for the display, energy and density paths:
//
//   A conversion never reads or writes outside an array, whatever the sample count of a colour.
//   Where a conversion has a failure report of its own for a colour whose count is not its
//   model's NWaves, it makes that report: the spectral model's resampling
//   ("SPEC light color conversion failure" and its surface and scalar siblings), the RGB model's
//   polarized spectral sources ("RGB light color conversion failure", ...) and its ray colours
//   (-1), and the sums through the mass colour converter (LgtColorToRGB, LgtColorToXYZ), which
//   answer as they state for a colour of another length. Otherwise a source colour contributes its
//   first NWaves samples, and zeros past its end when it has fewer.
//
// The models hold to it by reading a source colour through FirstSamples below (its own array
// slot into a scratch array that has room for every stored sample), through band-guarded reads
// (zero past the count), or by bounding their loops by both the colour's count and the grid's.
#pragma once

#include "hostkit/base/containers/TArray.h"
#include "hostkit/cie/CIEConv.h"
#include "hostkit/colormodel/ColorModel.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/SpectralModel.h"

#include <type_traits>

namespace Korvane::SourceSamples {

// The light XYZ of an unpolarized spectral light read where it is, when nothing would be copied:
// a colour of exactly the source's NWaves samples with a band over all of them (LgtToArray would
// copy them bit for bit), integrated through the source's converter tables when known. False,
// with xyz untouched, when the copying path decides.
template <class I>
bool InPlaceLightXYZ(const SpectralSource& source, const I& from, TVect3<double>& xyz) {
    const auto& d = ColourAccess::Value<SpectralModel<Unpolarized>>(from).Distr();
    const int n = source.n;
    if (source.polarized || n < 1 || d.Count() != n || d.First() > 0 || d.Last() < n - 1)
        return false;
    const BArray<double> inPlace(const_cast<double*>(d.Values()), n);
    if (source.tables)
        CIEConv::spectrum2xyz(*source.tables, *source.waves, inPlace, xyz);
    else
        CIEConv::spectrum2xyz(*source.waves, inPlace, xyz);
    return true;
}

// The doubles that the array slots (LgtToArray, SurfToArray, ScalarToArray) of the spectral
// model `src` write for `from`: every stored sample, in the layout its HasPolarization states.
template <class I>
int StoredDoubles(const ColorModel& src, const I& from) {
    const auto doubles = [](const auto& c) {
        return c.Count() * std::decay_t<decltype(c)>::Component::kSize;
    };
    if (src.HasPolarization())
        return doubles(ColourAccess::Value<SpectralModel<StokesPolarization>>(from));
    return doubles(ColourAccess::Value<SpectralModel<Unpolarized>>(from));
}

// `spectrum` becomes the first src.NWaves() doubles that read(src, from, out) writes, zeros
// past what it writes. The array is sized first to hold everything the slot writes, then cut to
// NWaves (cutting keeps the storage). 0, or -1 when the array cannot be sized.
template <class I, class Read>
int FirstSamples(const ColorModel& src, const I& from, Read read, TArray<double>& spectrum) {
    const int n = src.NWaves();
    const int stored = StoredDoubles(src, from);
    if (spectrum.Alloc(stored > n ? stored : n) != 0)
        return -1;
    spectrum.Fill(0.0);
    read(src, from, spectrum.Data());
    spectrum.Alloc(n);
    return 0;
}

} // namespace Korvane::SourceSamples
