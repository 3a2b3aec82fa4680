// MatrixLgtColorHold<M>: a host plug that keeps a matrix of light colours of model M, stored row
// by row: element (i, j) lies at index i * columns + j and is reached by address without checks.
// MatrixLgtColorHoldType<M> is its plug type: identifier "<model>MatrixLgtColorHold" (e.g.
// "StkBWMatrixLgtColorHold"), parent the host's TMatrixLgtColorHolder.
//
// In an archive the holder is one group "Data": rows and columns (ints) and the element count (a
// 64-bit int, read and not used) when the matrix has elements, then every colour row by row. An
// empty matrix writes nothing inside the group, while reading always asks for the three numbers;
// the archive answers 0 at the end of a group.
#pragma once

#include "hostkit/base/containers/TMatrix.h"
#include "hostkit/colormodel/Holders.h"
#include "plugin/PluginExport.h"
#include "plugin/colour/ColourValues.h"

namespace Korvane {

template <class M>
class KOR_PLUGIN_API MatrixLgtColorHold : public MatrixLgtColorHolder {
public:
    using Colour = LgtColor<M>;

    // No storage, 0 rows by 0 columns.
    MatrixLgtColorHold();
    // Copies the shape and every colour (a spectral colour gets samples of its own).
    MatrixLgtColorHold(const MatrixLgtColorHold& other);
    ~MatrixLgtColorHold() override;

    // The holder's MatrixLgtColorHoldType<M>, null while the library is not registered.
    static PlugType* ClassType();

    PlugType* ObjType() const override;
    // A copy of this holder, or null when memory runs out.
    Plug* Clone() const override;
    // TMatrix::Alloc: a new shape with the same element count keeps the colours; otherwise new,
    // unset colours. 0, or the code of the no-memory report.
    int Resize(int rows, int cols) override;
    // TMatrix::Resize: keeps the overlapping block of colours. 0, or the code of the no-memory
    // report.
    int Resize2(int rows, int cols) override;
    // Every element becomes a copy of `color`, in storage order.
    void Fill(const ILgtColor& color) override;
    ILgtColor* Element(int i, int j) override;

    TMatrix<Colour>& Colours();
    const TMatrix<Colour>& Colours() const;

private:
    TMatrix<Colour> colours_;
};

template <class M>
class KOR_PLUGIN_API MatrixLgtColorHoldType : public PlugType {
public:
    MatrixLgtColorHoldType();
    ~MatrixLgtColorHoldType() override;

    // A new empty holder, or null when memory runs out (nothing reported).
    Plug* NewInstance() override;
    // The group "Data" as above. Negative dimensions fail the archive; a shape that cannot be
    // allocated marks it out of memory. The result of closing the group; an internal error for a
    // plug of another class.
    int SerializeInstance(Plug* plug, Serializer& s) override;

    // The library-wide pointer to the type object.
    static PlugType*& Slot();
};

#define KORVANE_MATRIX_LGT_HOLDS_OF(declare, M)                                                    \
    declare MatrixLgtColorHold<M>;                                                                 \
    declare MatrixLgtColorHoldType<M>;

KORVANE_MATRIX_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, BWModel<Unpolarized>)
KORVANE_MATRIX_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, BWModel<StokesPolarization>)
KORVANE_MATRIX_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, RGBModel<Unpolarized>)
KORVANE_MATRIX_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, RGBModel<StokesPolarization>)
KORVANE_MATRIX_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, SpectralModel<Unpolarized>)
KORVANE_MATRIX_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, SpectralModel<StokesPolarization>)

} // namespace Korvane
