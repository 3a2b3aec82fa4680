// Spectral colour distributions: one colour component per wavelength of a spectral model's grid,
// component i belonging to wavelength i. A distribution does not know its grid; the caller
// always pairs it with the grid of the model it belongs to.
//
// BSpctrlColourDistr adds storage management to the view BArray; SpctrlColourDistr owns its
// storage and copies deeply. Storage is array-new of components that are not initialised:
// whoever sizes a distribution writes every value it later reads. A change of length discards
// the values, deliberately; the same length keeps them. Every block that exists is freed, the
// block of a zero length too, so no block outlives its distribution.
#pragma once

#include "hostkit/base/containers/BArray.h"
#include "plugin/PluginExport.h"
#include "plugin/colour/Components.h"

namespace Korvane {

template <class Comp>
class KOR_PLUGIN_API BSpctrlColourDistr : public BArray<Comp> {
public:
    using Component = Comp;

    // Makes the length n. The same length: 0, values kept. Otherwise the old block is freed and
    // n new, uninitialised components are allocated: 0, or -1 with an empty distribution when
    // memory runs out (or n is negative). No report is made.
    virtual int SetLength(int n);
    // SetLength(from.Count()) through the slot, then the view's copy: afterwards the first
    // Count() components equal those of `from`; from itself nothing changes.
    void CopyValues(const BArray<Comp>& from) override;

    // The components as doubles, Count() x Comp::kSize of them in order; null without storage.
    double* Values() { return this->data_ ? this->data_[0].v : nullptr; }
    const double* Values() const { return this->data_ ? this->data_[0].v : nullptr; }

protected:
    BSpctrlColourDistr() = default;
    BSpctrlColourDistr(const BSpctrlColourDistr&) : BArray<Comp>() {} // storage is never shared
    BSpctrlColourDistr& operator=(const BSpctrlColourDistr&) = delete;
    ~BSpctrlColourDistr() override = default;

    // Frees the block whenever one exists; the distribution is then empty.
    void Release();
};

template <class Comp>
class KOR_PLUGIN_API SpctrlColourDistr : public BSpctrlColourDistr<Comp> {
public:
    SpctrlColourDistr() = default;
    // Storage of its own with the components of `from` (CopyValues). When memory runs out the
    // copy is empty.
    SpctrlColourDistr(const SpctrlColourDistr& from);
    SpctrlColourDistr& operator=(const SpctrlColourDistr& from);
    ~SpctrlColourDistr() override;
};

// Exact equality of the stored components: same count and every double equal by ==.
template <class Comp>
bool SameComponents(const BArray<Comp>& a, const BArray<Comp>& b) {
    if (a.Count() != b.Count())
        return false;
    for (int i = 0; i < a.Count(); ++i)
        if (a[i] != b[i])
            return false;
    return true;
}

extern template class BSpctrlColourDistr<ScalarComp>;
extern template class BSpctrlColourDistr<UnpLightComp>;
extern template class BSpctrlColourDistr<UnpSurfComp>;
extern template class BSpctrlColourDistr<UnpDualLgtComp>;
extern template class BSpctrlColourDistr<StkLightComp>;
extern template class BSpctrlColourDistr<StkDualLgtComp>;
extern template class BSpctrlColourDistr<StkSurfComp>;

extern template class SpctrlColourDistr<ScalarComp>;
extern template class SpctrlColourDistr<UnpLightComp>;
extern template class SpctrlColourDistr<UnpSurfComp>;
extern template class SpctrlColourDistr<UnpDualLgtComp>;
extern template class SpctrlColourDistr<StkLightComp>;
extern template class SpctrlColourDistr<StkDualLgtComp>;
extern template class SpctrlColourDistr<StkSurfComp>;

} // namespace Korvane
