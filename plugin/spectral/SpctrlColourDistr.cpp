#include "plugin/spectral/SpctrlColourDistr.h"

#include "hostkit/base/FaultInjection.h"
#include "plugin/spectral/ExtSpctrlColourDistr.h"

#include <cstddef>
#include <new>

namespace Korvane {

template <class Comp>
int BSpctrlColourDistr<Comp>::SetLength(int n) {
    if (n == this->count_)
        return 0;
    Release();
    if (n < 0)
        return -1;
    if (FaultInjection::ShouldFail(FaultInjection::Distribution))
        return -1;
    Comp* block = new (std::nothrow) Comp[static_cast<std::size_t>(n)];
    if (!block)
        return -1;
    this->data_ = block;
    this->count_ = n;
    return 0;
}

template <class Comp>
void BSpctrlColourDistr<Comp>::CopyValues(const BArray<Comp>& from) {
    // When SetLength fails one side has no storage and the view copies nothing.
    SetLength(from.Count());
    BArray<Comp>::CopyValues(from);
}

template <class Comp>
void BSpctrlColourDistr<Comp>::Release() {
    delete[] this->data_;
    this->data_ = nullptr;
    this->count_ = 0;
}

template <class Comp>
SpctrlColourDistr<Comp>::SpctrlColourDistr(const SpctrlColourDistr& from)
    : BSpctrlColourDistr<Comp>(from) {
    this->CopyValues(from);
}

template <class Comp>
SpctrlColourDistr<Comp>& SpctrlColourDistr<Comp>::operator=(const SpctrlColourDistr& from) {
    this->CopyValues(from);
    return *this;
}

template <class Comp>
SpctrlColourDistr<Comp>::~SpctrlColourDistr() {
    this->Release();
}

template <class Comp>
const Comp ExtSpctrlColourDistr<Comp>::kZero{};

template <class Comp>
ExtSpctrlColourDistr<Comp>::ExtSpctrlColourDistr(const ExtSpctrlColourDistr& from)
    : SpctrlColourDistr<Comp>(from), first_(from.first_), last_(from.last_) {}

template <class Comp>
ExtSpctrlColourDistr<Comp>&
ExtSpctrlColourDistr<Comp>::operator=(const ExtSpctrlColourDistr& from) {
    this->CopyValues(from);
    first_ = from.first_;
    last_ = from.last_;
    return *this;
}

template <class Comp>
int ExtSpctrlColourDistr<Comp>::SetLength(int n) {
    if (n == this->count_)
        return 0;
    const int r = SpctrlColourDistr<Comp>::SetLength(n);
    if (r == 0) {
        first_ = 0;
        last_ = n - 1;
    }
    return r;
}

template <class Comp>
void ExtSpctrlColourDistr<Comp>::AddScaled(const BArray<Comp>& from, double k) {
    if (!this->data_)
        return;
    int hi = last_ < from.Count() - 1 ? last_ : from.Count() - 1;
    if (hi > this->count_ - 1)
        hi = this->count_ - 1;
    const Comp* src = from.Data();
    for (int i = first_ < 0 ? 0 : first_; i <= hi; ++i)
        for (int j = 0; j < Comp::kSize; ++j)
            this->data_[i].v[j] += k * src[i].v[j];
}

template <class Comp>
void ExtSpctrlColourDistr<Comp>::Fill(const Comp& v) {
    for (int i = 0; i < this->count_; ++i)
        this->data_[i] = InBand(i) ? v : Comp{};
}

template class BSpctrlColourDistr<ScalarComp>;
template class BSpctrlColourDistr<UnpLightComp>;
template class BSpctrlColourDistr<UnpSurfComp>;
template class BSpctrlColourDistr<UnpDualLgtComp>;
template class BSpctrlColourDistr<StkLightComp>;
template class BSpctrlColourDistr<StkDualLgtComp>;
template class BSpctrlColourDistr<StkSurfComp>;

template class SpctrlColourDistr<ScalarComp>;
template class SpctrlColourDistr<UnpLightComp>;
template class SpctrlColourDistr<UnpSurfComp>;
template class SpctrlColourDistr<UnpDualLgtComp>;
template class SpctrlColourDistr<StkLightComp>;
template class SpctrlColourDistr<StkDualLgtComp>;
template class SpctrlColourDistr<StkSurfComp>;

template class ExtSpctrlColourDistr<UnpLightComp>;
template class ExtSpctrlColourDistr<StkLightComp>;

} // namespace Korvane
