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

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

using RGBS = RGBModel<StokesPolarization>;
using BWU = BWModel<Unpolarized>;
using SpU = SpectralModel<Unpolarized>;
using SpS = SpectralModel<StokesPolarization>;

template <class H>
TPlugRef<H> Make(int n, double seed) {
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
    using H = ArrayLgtColorHold<RGBS>;
    TPlugRef<H> a = new H();
    TPlugRef<H> b = new H();
    EXPECT_TRUE(a->IsEqual(*b.Get()));
    EXPECT_FALSE(a->IsNotEqual(*b.Get()));

    a = Make<H>(3, 1.0);
    b = Make<H>(2, 1.0);
    EXPECT_FALSE(a->IsEqual(*b.Get())); // same leading colours, other length
    EXPECT_TRUE(a->IsNotEqual(*b.Get()));
    b = Make<H>(3, 1.0);
    EXPECT_TRUE(a->IsEqual(*b.Get()));
    b->Colours()[2][11] = std::nextafter(b->Colours()[2][11], 0.0); // the last double
    EXPECT_FALSE(a->IsEqual(*b.Get()));

    a->Colours()[1][5] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(a->IsEqual(*a.Get()));
    EXPECT_TRUE(a->IsNotEqual(*a.Get()));

    // Another model's array, and spectral colours of other sample counts, are never equal.
    TPlugRef<ArrayLgtColorHold<BWU>> bw = new ArrayLgtColorHold<BWU>();
    EXPECT_FALSE(TPlugRef<H>(new H())->IsEqual(*bw.Get()));
    TPlugRef<ArrayLgtColorHold<SpU>> s1 = Make<ArrayLgtColorHold<SpU>>(1, 1.0);
    TPlugRef<ArrayLgtColorHold<SpU>> s2 = new ArrayLgtColorHold<SpU>();
    s2->Resize(1);
    EXPECT_FALSE(s1->IsEqual(*s2.Get()));
}

TEST_F(Registered, ArraysAndMatricesSizeFillAndAddressTheirColours) {
    TPlugRef<ArrayLgtColorHold<RGBS>> array = Make<ArrayLgtColorHold<RGBS>>(3, 1.0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(array->Element(i), &array->Colours()[i]);
    ReportLog::Clear();
    {
        FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1);
        EXPECT_EQ(array->Resize(10), kNoMemoryCode);
    }
    EXPECT_EQ(ReportLog::Entries().at(0).kind, ReportKind::NoMemory);
    EXPECT_EQ(array->Colours().Count(), 3);

    using HM = MatrixLgtColorHold<SpS>;
    TPlugRef<HM> matrix = new HM();
    LgtColor<SpS> colour;
    Pattern(colour, 2.0);
    matrix->Fill(colour); // 0 x 0: nothing to fill
    ASSERT_EQ(matrix->Resize(2, 3), 0);
    matrix->Fill(colour);
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 3; ++j) {
            EXPECT_EQ(matrix->Element(i, j), matrix->Colours().Data() + (3 * i + j));
            EXPECT_TRUE(matrix->Colours()(i, j) == colour);
        }
    // The same element count reshapes in place; Resize2 keeps the overlapping block.
    const LgtColor<SpS>* storage = matrix->Colours().Data();
    matrix->Colours()(0, 0).Values()[0] = -1.0;
    ASSERT_EQ(matrix->Resize(3, 2), 0);
    EXPECT_EQ(matrix->Colours().Data(), storage);
    ASSERT_EQ(matrix->Resize2(1, 1), 0);
    EXPECT_EQ(matrix->Colours()(0, 0).Values()[0], -1.0);
    {
        FaultInjection::ScopedFailure fail(FaultInjection::MatrixStorage, 1);
        EXPECT_EQ(matrix->Resize(4, 4), kNoMemoryCode);
    }
}

TEST_F(Registered, DataGroupKeepsItsAsymmetryAndRoundTrips) {
    // An empty array writes the bare group; reading it empties a filled array.
    using H = ArrayLgtColorHold<RGBS>;
    TPlugRef<H> empty = new H();
    BinarySerializer bare(Write(*empty.Get(), ArchiveFormat::Binary));
    EXPECT_EQ(bare.OpenGroup("Data"), 0);
    EXPECT_EQ(bare.CloseGroup(), 0) << bare.Error();
    TPlugRef<H> filled = Make<H>(2, 1.0);
    EXPECT_EQ(Read(*filled.Get(), Write(*empty.Get(), ArchiveFormat::Text), ArchiveFormat::Text),
              "");
    EXPECT_EQ(filled->Colours().Count(), 0);

    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        TPlugRef<H> from = Make<H>(2, 1.0);
        TPlugRef<H> back = new H();
        ASSERT_EQ(Read(*back.Get(), Write(*from.Get(), format), format), "");
        EXPECT_TRUE(back->IsEqual(*from.Get()));

        // Spectral colours, empty ones too, each with its own sample count.
        TPlugRef<ArrayLgtColorHold<SpS>> spectral = Make<ArrayLgtColorHold<SpS>>(1, 1.0);
        spectral->Resize(40);
        TPlugRef<ArrayLgtColorHold<SpS>> spectralBack = new ArrayLgtColorHold<SpS>();
        ASSERT_EQ(Read(*spectralBack.Get(), Write(*spectral.Get(), format), format), "");
        EXPECT_TRUE(spectralBack->IsEqual(*spectral.Get()));

        // A matrix: rows, columns and the element count, then its colours row by row.
        using HM = MatrixLgtColorHold<BWU>;
        TPlugRef<HM> matrix = new HM();
        matrix->Resize(2, 3);
        for (int k = 0; k < 6; ++k)
            matrix->Colours().Data()[k][0] = k + 0.5;
        TPlugRef<HM> matrixBack = new HM();
        ASSERT_EQ(Read(*matrixBack.Get(), Write(*matrix.Get(), format), format), "");
        ASSERT_EQ(matrixBack->Colours().Rows(), 2);
        ASSERT_EQ(matrixBack->Colours().Cols(), 3);
        for (int k = 0; k < 6; ++k)
            EXPECT_EQ(matrixBack->Colours().Data()[k][0], k + 0.5);
    }
    TPlugRef<MatrixLgtColorHold<BWU>> matrix = new MatrixLgtColorHold<BWU>();
    matrix->Resize(1, 2);
    BinarySerializer header(Write(*matrix.Get(), ArchiveFormat::Binary));
    std::int32_t rows = 0, cols = 0;
    std::int64_t count = 0;
    header.OpenGroup("Data");
    header.Serialize(rows);
    header.Serialize(cols);
    header.Serialize(count);
    EXPECT_EQ(rows * 10 + cols, 12);
    EXPECT_EQ(count, 2);
}

TEST_F(Registered, DamagedCountsFailTheArchiveBeforeAllocating) {
    TPlugRef<ArrayLgtColorHold<SpS>> array = Make<ArrayLgtColorHold<SpS>>(2, 1.0);
    for (std::int32_t damaged : {INT32_MAX, -5, 3}) {
        EXPECT_NE(Read(*array.Get(), HeaderOnly(damaged), ArchiveFormat::Binary), "") << damaged;
        EXPECT_EQ(array->Colours().Count(), 0);
    }
    TPlugRef<MatrixLgtColorHold<RGBS>> matrix = new MatrixLgtColorHold<RGBS>();
    const std::int64_t unused = 0;
    for (auto [rows, cols] : {std::pair{INT32_MAX, INT32_MAX}, std::pair{-2, -3}, {1, 1}}) {
        EXPECT_NE(Read(*matrix.Get(), HeaderOnly(rows, cols, unused), ArchiveFormat::Binary), "");
        EXPECT_EQ(matrix->Colours().Elements(), 0);
    }
}

TEST_F(Registered, ClonesCopyEveryColourIntoStorageOfTheirOwn) {
    TPlugRef<ArrayLgtColorHold<SpU>> array = Make<ArrayLgtColorHold<SpU>>(2, 1.0);
    TPlugRef<ArrayLgtColorHold<SpU>> arrayClone =
        static_cast<ArrayLgtColorHold<SpU>*>(array->Clone());
    ASSERT_TRUE(arrayClone.Get());
    EXPECT_TRUE(arrayClone->IsEqual(*array.Get()));
    EXPECT_NE(arrayClone->Colours()[1].Values(), array->Colours()[1].Values());

    TPlugRef<MatrixLgtColorHold<SpU>> matrix = new MatrixLgtColorHold<SpU>();
    matrix->Resize(0, 4);
    TPlugRef<MatrixLgtColorHold<SpU>> matrixClone =
        static_cast<MatrixLgtColorHold<SpU>*>(matrix->Clone());
    ASSERT_TRUE(matrixClone.Get());
    EXPECT_EQ(matrixClone->Colours().Cols(), 4);

    // Ray arrays: the host's type and name; a clone keeps every X orientation.
    PlugRef made = SpS::GetModel()->NewArrayRayColorHold();
    auto* rays = static_cast<ArrayRayColorHold<SpS>*>(made.Get());
    EXPECT_EQ(rays->ObjType(), TArrayRayColorHolder);
    EXPECT_EQ(rays->Name(), "ArrayRayColorHold<CM>");
    EXPECT_EQ(&rays->Array(), &rays->Colours());
    ASSERT_EQ(rays->Colours().Alloc(2), 0);
    Pattern(rays->Colours()[0], 1.0);
    Pattern(rays->Colours()[1], 2.0);
    TPlugRef<ArrayRayColorHold<SpS>> raysClone =
        static_cast<ArrayRayColorHold<SpS>*>(rays->Clone());
    ASSERT_TRUE(raysClone.Get());
    EXPECT_TRUE(raysClone->Colours().IsEqual(rays->Colours()));

    // Samples or storage that cannot be copied: no clone.
    {
        FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 2);
        EXPECT_EQ(rays->Clone(), nullptr);
    }
    FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1);
    EXPECT_EQ(array->Clone(), nullptr);
}
