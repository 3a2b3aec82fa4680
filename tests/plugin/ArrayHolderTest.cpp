// Array and matrix holders: exact equality, sizing and element addresses, fill, the group "Data"
// with its write/read asymmetry, damaged counts, and clones.
#include "HolderTestSupport.h"

#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/User.h"
#include "plugin/holders/ArrayLgtColorHold.h"
#include "plugin/holders/ArrayRayColorHold.h"
#include "plugin/holders/MatrixLgtColorHold.h"
#include "plugin/models/SpectralModel.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

using RGBS = RGBModel<StokesPolarization>;
using BWU = BWModel<Unpolarized>;
using SpS = SpectralModel<StokesPolarization>;
using Array = ArrayLgtColorHold<RGBS>;
using SpectralArray = ArrayLgtColorHold<SpS>;

// An array holder of n colours with patterns from `seed` on.
template <class H>
TPlugRef<H> Filled(int n, double seed) {
    TPlugRef<H> holder = new H();
    EXPECT_EQ(holder->Resize(n), 0);
    for (int i = 0; i < n; ++i)
        Pattern(holder->Colours()[i], seed + i);
    return holder;
}

// An archive holding the group "Data" with the given header and nothing else.
template <class... Int>
std::string HeaderOnly(Int... header) {
    BinarySerializer archive;
    archive.OpenGroup("Data");
    (archive.Serialize(header), ...);
    archive.CloseGroup();
    archive.Finish();
    return archive.Bytes();
}

} // namespace

TEST_F(Registered, LightArraysCompareEveryStoredValueExactly) {
    TPlugRef<Array> a = new Array();
    TPlugRef<Array> b = new Array();
    EXPECT_TRUE(a->IsEqual(*b.Get())); // two empty arrays
    a = Filled<Array>(3, 1.0);
    b = Filled<Array>(2, 1.0);
    EXPECT_TRUE(a->IsNotEqual(*b.Get())); // the same leading colours, another length
    b = Filled<Array>(3, 1.0);
    EXPECT_TRUE(a->IsEqual(*b.Get()));
    b->Colours()[2][11] = std::nextafter(b->Colours()[2][11], 0.0); // the last double
    EXPECT_FALSE(a->IsEqual(*b.Get()));
    a->Colours()[1][5] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(a->IsEqual(*a.Get()));
    EXPECT_TRUE(a->IsNotEqual(*a.Get()));
    TPlugRef<ArrayLgtColorHold<BWU>> other = new ArrayLgtColorHold<BWU>();
    EXPECT_FALSE(TPlugRef<Array>(new Array())->IsEqual(*other.Get())); // another model's array
}

TEST_F(Registered, ArraysAndMatricesSizeFillAndAddressTheirColours) {
    TPlugRef<Array> array = Filled<Array>(3, 1.0);
    EXPECT_EQ(array->Element(2), &array->Colours()[2]);
    ReportLog::Clear();
    {
        FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1);
        EXPECT_EQ(array->Resize(10), kNoMemoryCode);
    }
    EXPECT_EQ(ReportLog::Entries().at(0).kind, ReportKind::NoMemory);
    EXPECT_EQ(array->Colours().Count(), 3);

    TPlugRef<MatrixLgtColorHold<SpS>> matrix = new MatrixLgtColorHold<SpS>();
    LgtColor<SpS> colour;
    Pattern(colour, 2.0);
    matrix->Fill(colour); // 0 x 0: nothing to fill
    ASSERT_EQ(matrix->Resize(2, 3), 0);
    matrix->Fill(colour);
    EXPECT_EQ(matrix->Element(1, 2), matrix->Colours().Data() + 5);
    for (int k = 0; k < 6; ++k)
        EXPECT_TRUE(matrix->Colours().Data()[k] == colour);
    // The same element count reshapes in place; Resize2 keeps the overlapping block.
    const LgtColor<SpS>* storage = matrix->Colours().Data();
    matrix->Colours()(0, 0).Values()[0] = -1.0;
    ASSERT_EQ(matrix->Resize(3, 2), 0);
    EXPECT_EQ(matrix->Colours().Data(), storage);
    ASSERT_EQ(matrix->Resize2(1, 1), 0);
    EXPECT_EQ(matrix->Colours()(0, 0).Values()[0], -1.0);
}

TEST_F(Registered, DataGroupKeepsItsAsymmetryAndRoundTrips) {
    // An empty array writes the bare group; reading it empties a filled array.
    TPlugRef<Array> empty = new Array();
    BinarySerializer bare(Write(*empty.Get(), ArchiveFormat::Binary));
    EXPECT_EQ(bare.OpenGroup("Data") + bare.CloseGroup(), 0) << bare.Error();
    TPlugRef<Array> filled = Filled<Array>(2, 1.0);
    EXPECT_EQ(Read(*filled.Get(), Write(*empty.Get(), ArchiveFormat::Text), ArchiveFormat::Text),
              "");
    EXPECT_EQ(filled->Colours().Count(), 0);

    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        // Spectral colours, empty ones among them, each with its own sample count.
        TPlugRef<SpectralArray> spectral = Filled<SpectralArray>(1, 1.0);
        spectral->Resize(40);
        TPlugRef<SpectralArray> back = new SpectralArray();
        ASSERT_EQ(Read(*back.Get(), Write(*spectral.Get(), format), format), "");
        EXPECT_TRUE(back->IsEqual(*spectral.Get()));

        TPlugRef<MatrixLgtColorHold<BWU>> matrix = new MatrixLgtColorHold<BWU>();
        matrix->Resize(2, 3);
        for (int k = 0; k < 6; ++k)
            matrix->Colours().Data()[k][0] = k + 0.5;
        TPlugRef<MatrixLgtColorHold<BWU>> matrixBack = new MatrixLgtColorHold<BWU>();
        ASSERT_EQ(Read(*matrixBack.Get(), Write(*matrix.Get(), format), format), "");
        EXPECT_EQ(matrixBack->Colours().Cols(), 3);
        for (int k = 0; k < 6; ++k)
            EXPECT_EQ(matrixBack->Colours().Data()[k][0], k + 0.5);
    }
}

TEST_F(Registered, DamagedCountsFailTheArchiveBeforeAllocating) {
    TPlugRef<SpectralArray> array = Filled<SpectralArray>(2, 1.0);
    for (std::int32_t damaged : {INT32_MAX, -5, 3}) {
        EXPECT_NE(Read(*array.Get(), HeaderOnly(damaged), ArchiveFormat::Binary), "") << damaged;
        EXPECT_EQ(array->Colours().Count(), 0);
    }
    TPlugRef<MatrixLgtColorHold<RGBS>> matrix = new MatrixLgtColorHold<RGBS>();
    const std::int64_t unused = 0;
    for (auto [rows, cols] :
         {std::pair{INT32_MAX, INT32_MAX}, std::pair{-2, -3}, {2, -3}, {1, 1}}) {
        EXPECT_NE(Read(*matrix.Get(), HeaderOnly(rows, cols, unused), ArchiveFormat::Binary), "");
        EXPECT_EQ(matrix->Colours().Elements(), 0);
    }
    const std::string negative =
        Read(*matrix.Get(), HeaderOnly(2, -3, unused), ArchiveFormat::Binary);
    EXPECT_NE(negative.find("Data: a matrix of 2 x -3 colours"), std::string::npos) << negative;
}

TEST_F(Registered, ClonesCopyEveryColourIntoStorageOfTheirOwn) {
    TPlugRef<SpectralArray> array = Filled<SpectralArray>(2, 1.0);
    TPlugRef<SpectralArray> arrayClone = static_cast<SpectralArray*>(array->Clone());
    ASSERT_TRUE(arrayClone.Get());
    EXPECT_TRUE(arrayClone->IsEqual(*array.Get()));
    EXPECT_NE(arrayClone->Colours()[1].Values(), array->Colours()[1].Values());
    EXPECT_EQ(arrayClone->Name(), "ArrayLgtColorHold<CM>");

    // A matrix with no elements keeps its shape in a copy and in a clone.
    TPlugRef<MatrixLgtColorHold<BWU>> flat = new MatrixLgtColorHold<BWU>();
    ASSERT_EQ(flat->Resize(2, 0), 0);
    const MatrixLgtColorHold<BWU> copy(*flat.Get());
    TPlugRef<MatrixLgtColorHold<BWU>> flatClone =
        static_cast<MatrixLgtColorHold<BWU>*>(flat->Clone());
    for (const MatrixLgtColorHold<BWU>* m :
         {&copy, static_cast<const MatrixLgtColorHold<BWU>*>(flatClone.Get())}) {
        EXPECT_EQ(m->Colours().Rows(), 2);
        EXPECT_EQ(m->Colours().Cols(), 0);
    }

    // Ray arrays: the host's type and the fixed name; a clone keeps every X orientation.
    PlugRef made = SpS::GetModel()->NewArrayRayColorHold();
    auto* rays = static_cast<ArrayRayColorHold<SpS>*>(made.Get());
    EXPECT_EQ(rays->ObjType(), TArrayRayColorHolder);
    EXPECT_EQ(rays->Name(), "ArrayRayColorHold<CM>");
    ASSERT_EQ(static_cast<TArray<RayColor<SpS>>&>(rays->Array()).Alloc(2), 0);
    Pattern(rays->Colours()[0], 1.0);
    Pattern(rays->Colours()[1], 2.0);
    TPlugRef<ArrayRayColorHold<SpS>> raysClone =
        static_cast<ArrayRayColorHold<SpS>*>(rays->Clone());
    EXPECT_TRUE(raysClone->Colours().IsEqual(rays->Colours()));

    // Samples or storage that cannot be copied: no clone.
    {
        FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 2);
        EXPECT_EQ(rays->Clone(), nullptr);
    }
    FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1);
    EXPECT_EQ(array->Clone(), nullptr);
}
