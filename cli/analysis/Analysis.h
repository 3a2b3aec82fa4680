// korvane_analysis: the colorimetry of measured spectra shared by the command-line tool and the
// Python module. Tristimulus values come from the host's current CIE converter; the loci from the
// observers' tables. Nothing here keeps state beyond immutable tables built on first use, so the
// functions may be called from several threads while the current converter stays put (a
// Colorimeter, which holds colours of the plug-in's models, belongs to one thread).
#pragma once

#include "cli/analysis/Chromaticity.h"
#include "cli/analysis/Cielab.h"
#include "cli/analysis/Colorimetry.h"
#include "cli/analysis/ColorimetryRecord.h"
#include "cli/analysis/Cri.h"
#include "cli/analysis/Illuminants.h"
#include "cli/analysis/ModelColour.h"
#include "cli/analysis/ObserverTables.h"
#include "cli/analysis/Planckian.h"
#include "cli/analysis/Spectrum.h"
#include "cli/analysis/SpectrumXYZ.h"
#include "cli/analysis/Srgb.h"
