// The host's holder bases: plugs that own one colour, or an array or matrix of colours, of one
// kind and model. The plug-in derives its holders from them; the host reaches colours through
// these operations only.
#pragma once

#include "hostkit/colormodel/ColorInterfaces.h"
#include "hostkit/plugsys/PlugType.h"

namespace Korvane {

// A plug that owns one colour of kind I (ILgtColor, IRayColor, ISurfColor, IScalarColor or
// IDualLgtColor).
template <class I>
class Holder : public Plug {
public:
    virtual I& Color() = 0;
    virtual const I& Color() const = 0;
    // The host's type of all holders of this kind; alive from host start to host end.
    static PlugType* ClassType();
};

// One host type per kind; defined in the host kit.
template <>
KOR_HOST_API PlugType* Holder<ILgtColor>::ClassType();
template <>
KOR_HOST_API PlugType* Holder<IRayColor>::ClassType();
template <>
KOR_HOST_API PlugType* Holder<ISurfColor>::ClassType();
template <>
KOR_HOST_API PlugType* Holder<IScalarColor>::ClassType();
template <>
KOR_HOST_API PlugType* Holder<IDualLgtColor>::ClassType();

// An array of light colours of one model.
class KOR_HOST_API ArrayLgtColorHolder : public Plug {
public:
    // Sizes the array to n; 0, or the code of the report made.
    virtual int Resize(int n) = 0;
    // The address of element i (not range-checked).
    virtual ILgtColor* Element(int i) = 0;
    virtual bool IsEqual(const ArrayLgtColorHolder& other) const = 0;
    virtual bool IsNotEqual(const ArrayLgtColorHolder& other) const = 0;
};

// A matrix of light colours of one model, stored row by row.
class KOR_HOST_API MatrixLgtColorHolder : public Plug {
public:
    virtual int Resize(int rows, int cols) = 0;  // may reshape in place (TMatrix::Alloc)
    virtual int Resize2(int rows, int cols) = 0; // keeps the overlapping block (TMatrix::Resize)
    virtual void Fill(const ILgtColor& color) = 0;
    virtual ILgtColor* Element(int i, int j) = 0;
};

// An array of ray colours of one model; its elements are reached through the array itself.
class KOR_HOST_API ArrayRayColorHolder : public Plug {
public:
    PlugType* ObjType() const override; // the host-wide type TArrayRayColorHolder
    virtual IArray& Array() = 0;
    virtual const IArray& Array() const = 0;
};

// Host types of the array and matrix holders; alive from host start to host end.
KOR_HOST_API extern PlugType* TArrayLgtColorHolder;
KOR_HOST_API extern PlugType* TMatrixLgtColorHolder;
KOR_HOST_API extern PlugType* TArrayRayColorHolder;

} // namespace Korvane
