// MatrixLgtColorHold<M> and its type, and the one place where the six of each are instantiated.
#include "plugin/holders/MatrixLgtColorHold.h"

#include "hostkit/base/User.h"
#include "plugin/holders/ColourArchive.h"
#include "plugin/holders/HolderIdents.h"
#include "plugin/holders/WholeCopy.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"

#include <cstdint>
#include <string>

namespace Korvane {
namespace {
constexpr const char* kDataGroup = "Data";
} // namespace

template <class M>
MatrixLgtColorHold<M>::MatrixLgtColorHold() = default;

template <class M>
MatrixLgtColorHold<M>::MatrixLgtColorHold(const MatrixLgtColorHold& other)
    : MatrixLgtColorHolder(other), colours_(other.colours_) {
    // The matrix copies storage only; a shape without elements (0 x n) is taken as it is.
    if (other.colours_.Elements() == 0)
        colours_.Alloc(other.colours_.Rows(), other.colours_.Cols());
}

template <class M>
MatrixLgtColorHold<M>::~MatrixLgtColorHold() = default;

template <class M>
TMatrix<typename MatrixLgtColorHold<M>::Colour>& MatrixLgtColorHold<M>::Colours() {
    return colours_;
}

template <class M>
const TMatrix<typename MatrixLgtColorHold<M>::Colour>& MatrixLgtColorHold<M>::Colours() const {
    return colours_;
}

template <class M>
PlugType* MatrixLgtColorHold<M>::ClassType() {
    return MatrixLgtColorHoldType<M>::Slot();
}

template <class M>
PlugType* MatrixLgtColorHold<M>::ObjType() const {
    return ClassType();
}

template <class M>
Plug* MatrixLgtColorHold<M>::Clone() const {
    return CloneWhole(*this, &MatrixLgtColorHold::Colours);
}

template <class M>
int MatrixLgtColorHold<M>::Resize(int rows, int cols) {
    if (colours_.Alloc(rows, cols) != 0)
        return User()->ErrorNoMemory(-1);
    return 0;
}

template <class M>
int MatrixLgtColorHold<M>::Resize2(int rows, int cols) {
    if (colours_.Resize(rows, cols) != 0)
        return User()->ErrorNoMemory(-1);
    return 0;
}

template <class M>
void MatrixLgtColorHold<M>::Fill(const ILgtColor& color) {
    const Colour& value = static_cast<const Colour&>(color);
    Colour* data = colours_.Data();
    for (long long i = 0, n = colours_.Elements(); i < n; ++i)
        data[i] = value;
}

template <class M>
ILgtColor* MatrixLgtColorHold<M>::Element(int i, int j) {
    return colours_.Data() + (static_cast<long long>(i) * colours_.Cols() + j);
}

template <class M>
MatrixLgtColorHoldType<M>::MatrixLgtColorHoldType()
    : PlugType(HolderIdents::FromModel<M>("MatrixLgtColorHold").c_str(), TMatrixLgtColorHolder,
               true, nullptr) {}

template <class M>
MatrixLgtColorHoldType<M>::~MatrixLgtColorHoldType() = default;

template <class M>
Plug* MatrixLgtColorHoldType<M>::NewInstance() {
    return new MatrixLgtColorHold<M>();
}

template <class M>
int MatrixLgtColorHoldType<M>::SerializeInstance(Plug* plug, Serializer& s) {
    auto* holder = dynamic_cast<MatrixLgtColorHold<M>*>(plug);
    if (!holder)
        return User()->InternalError("%s: SerializeInstance() of a plug that is not its holder",
                                     Ident().c_str());
    using Colour = typename MatrixLgtColorHold<M>::Colour;
    TMatrix<Colour>& colours = holder->Colours();
    s.OpenGroup(kDataGroup);
    if (s.IsReading()) {
        colours.Alloc(0, 0);
        std::int32_t rows = 0;
        std::int32_t cols = 0;
        std::int64_t count = 0; // stored for the host's readers; the shape decides
        s.Serialize(rows);
        s.Serialize(cols);
        s.Serialize(count);
        if (rows < 0 || cols < 0)
            s.SetDataError("Data: a matrix of " + std::to_string(rows) + " x " +
                           std::to_string(cols) + " colours");
        else if (ColourArchive::CanHoldColours<Colour>(s, std::int64_t{rows} * cols) &&
                 colours.Alloc(rows, cols) != 0)
            s.SetAllocError();
    } else if (colours.Elements() != 0) {
        std::int32_t rows = colours.Rows();
        std::int32_t cols = colours.Cols();
        std::int64_t count = colours.Elements();
        s.Serialize(rows);
        s.Serialize(cols);
        s.Serialize(count);
    }
    for (int i = 0; i < colours.Rows(); ++i)
        for (int j = 0; j < colours.Cols(); ++j)
            ColourArchive::Exchange(s, colours(i, j));
    return s.CloseGroup();
}

template <class M>
PlugType*& MatrixLgtColorHoldType<M>::Slot() {
    static PlugType* type = nullptr;
    return type;
}

KORVANE_MATRIX_LGT_HOLDS_OF(template class, BWModel<Unpolarized>)
KORVANE_MATRIX_LGT_HOLDS_OF(template class, BWModel<StokesPolarization>)
KORVANE_MATRIX_LGT_HOLDS_OF(template class, RGBModel<Unpolarized>)
KORVANE_MATRIX_LGT_HOLDS_OF(template class, RGBModel<StokesPolarization>)
KORVANE_MATRIX_LGT_HOLDS_OF(template class, SpectralModel<Unpolarized>)
KORVANE_MATRIX_LGT_HOLDS_OF(template class, SpectralModel<StokesPolarization>)

} // namespace Korvane
