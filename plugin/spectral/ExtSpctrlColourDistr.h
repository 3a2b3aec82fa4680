// ExtSpctrlColourDistr: a light distribution with a band, the index range [First(), Last()]
// outside which it is zero. Reads outside the band give the process-wide zero component and
// need no storage; writes outside it go to a scratch component that is reset to zero each time
// it is handed out, so they are lost. Work on light that is zero over most of the grid touches
// only the band. Indexes without storage count as outside the band, whatever the band says
// (after a failed SetLength the band keeps its old limits over an empty distribution).
#pragma once

#include "plugin/spectral/SpctrlColourDistr.h"

namespace Korvane {

template <class Comp>
class KOR_PLUGIN_API ExtSpctrlColourDistr : public SpctrlColourDistr<Comp> {
public:
    ExtSpctrlColourDistr() = default;
    // CopyValues followed by a copy of the band limits.
    ExtSpctrlColourDistr(const ExtSpctrlColourDistr& from);
    ExtSpctrlColourDistr& operator=(const ExtSpctrlColourDistr& from);

    // As for every distribution; a successful change of length also makes the band [0, n - 1].
    int SetLength(int n) override;
    // Adds k x from[i] to every double of component i, for i from First() to
    // min(Last(), from.Count() - 1); nothing without storage.
    virtual void AddScaled(const BArray<Comp>& from, double k);

    int First() const { return first_; }
    int Last() const { return last_; }
    void SetBand(int first, int last) {
        first_ = first;
        last_ = last;
    }
    bool InBand(int i) const { return i >= first_ && i <= last_ && i >= 0 && i < this->count_; }

    // Band-guarded read: component i inside the band, else the zero component.
    const Comp& Get(int i) const { return InBand(i) ? this->data_[i] : kZero; }
    // Band-guarded write: component i inside the band, else the zeroed scratch component.
    Comp& At(int i) {
        if (InBand(i))
            return this->data_[i];
        scratch_ = Comp{};
        return scratch_;
    }
    // Every stored component: v inside the band, zero outside.
    void Fill(const Comp& v);

    static const Comp kZero; // the zero component, one per component type in the process

private:
    int first_ = 0;
    int last_ = -1;
    Comp scratch_; // only ever read after it was zeroed
};

extern template class ExtSpctrlColourDistr<UnpLightComp>;
extern template class ExtSpctrlColourDistr<StkLightComp>;

} // namespace Korvane
