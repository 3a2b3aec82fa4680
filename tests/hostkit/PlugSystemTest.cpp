// Plug objects, counted references, the plug allocation fault site and the type registry.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/User.h"
#include "hostkit/base/containers/TArray.h"
#include "hostkit/plugsys/PlugRef.h"
#include "hostkit/plugsys/PlugType.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Korvane;

namespace {

struct Probe : Plug {
    static inline int constructed = 0;
    static inline int destroyed = 0;
    static void Reset() { constructed = destroyed = 0; }
    Probe() { ++constructed; }
    ~Probe() override { ++destroyed; }
};

} // namespace

TEST(PlugRef, CountsReferencesAndTheLastReleaseDeletes) {
    Probe::Reset();
    Probe* p = new Probe;
    EXPECT_EQ(p->RefCount(), 0);
    {
        PlugRef a = p;
        PlugRef b(a);
        TPlugRef<Probe> typed = p;
        EXPECT_EQ(typed->RefCount(), 3);
        a = nullptr;
        typed = nullptr;
        EXPECT_EQ(p->RefCount(), 1);
        EXPECT_EQ(Probe::destroyed, 0);
    }
    EXPECT_EQ(Probe::destroyed, 1);

    PlugRef r = new Probe;
    r = new Probe; // reassigning releases the plug held before
    EXPECT_EQ(Probe::destroyed, 2);
    r = nullptr;
    EXPECT_EQ(Probe::destroyed, 3);
}

TEST(PlugRef, ReturnObjNoDeleteHandsTheObjectOver) {
    Probe::Reset();
    TPlugRef<Probe> factory = new Probe;
    Probe* made = factory.ReturnObjNoDelete();
    EXPECT_FALSE(factory);
    EXPECT_EQ(made->RefCount(), 0);
    EXPECT_EQ(Probe::destroyed, 0);
    EXPECT_EQ(factory.ReturnObjNoDelete(), nullptr);

    PlugRef caller = made;
    PlugRef second = made;
    EXPECT_EQ(second.ReturnObjNoDelete(), made); // another reference remains: one fewer
    EXPECT_EQ(made->RefCount(), 1);
    caller = nullptr;
    EXPECT_EQ(Probe::destroyed, 1);
}

TEST(PlugRef, SelfAssignmentKeepsThePlug) {
    Probe::Reset();
    PlugRef r = new Probe;
    const PlugRef& same = r;
    r = same;
    r = r.Get();
    ASSERT_TRUE(r);
    EXPECT_EQ(r.Get()->RefCount(), 1);
    EXPECT_EQ(Probe::destroyed, 0);
}

TEST(PlugAlloc, FailedAllocationYieldsNullWithoutConstructing) {
    Probe::Reset();
    PlugRef first;
    {
        FaultInjection::ScopedFailure fail(FaultInjection::PlugAlloc, 2, true);
        first = new Probe;
        TArray<double> other(10); // another site: neither counted nor failed
        EXPECT_EQ(other.Alloc(3), 0);
        EXPECT_EQ(new Probe, nullptr);
        EXPECT_EQ(new Probe, nullptr);
        EXPECT_EQ(FaultInjection::Counted(), 3);
    }
    EXPECT_TRUE(first);
    EXPECT_EQ(Probe::constructed, 1);
    PlugRef after = new Probe; // disarmed
    EXPECT_TRUE(after);
}

TEST(PlugTypeRegistry, FindsTypesAndRefusesADuplicateIdentifier) {
    PlugType* type = new PlugType("PlugSystemTest.Type", nullptr, true, nullptr);
    EXPECT_TRUE(type->IsRegistered());
    EXPECT_EQ(PlugType::Find("PlugSystemTest.Type"), type);
    const std::vector<PlugType*> all = PlugType::Registered();
    EXPECT_NE(std::find(all.begin(), all.end(), type), all.end());

    PlugType* duplicate = new PlugType("PlugSystemTest.Type", nullptr, true, nullptr);
    EXPECT_FALSE(duplicate->IsRegistered());
    const std::vector<Report> log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].kind, ReportKind::InternalError);
    EXPECT_NE(log[0].text.find("\"PlugSystemTest.Type\""), std::string::npos) << log[0].text;

    DeleteType(duplicate); // deleting the refused type leaves the registered one in place
    EXPECT_EQ(duplicate, nullptr);
    EXPECT_EQ(PlugType::Find("PlugSystemTest.Type"), type);
    DeleteType(type);
    EXPECT_EQ(type, nullptr);
    EXPECT_EQ(PlugType::Find("PlugSystemTest.Type"), nullptr);
    DeleteType(type); // null is accepted
    EXPECT_EQ(PlugType::Find(nullptr), nullptr);
}

TEST(PlugTypeRegistry, IsKindOfFollowsTheParentChain) {
    PlugType* base = new PlugType("PlugSystemTest.Base", nullptr, true, nullptr);
    PlugType* mid = new PlugType("PlugSystemTest.Mid", base, true, nullptr);
    PlugType* leaf = new PlugType("PlugSystemTest.Leaf", mid, false, nullptr);
    PlugType* other = new PlugType("PlugSystemTest.Other", nullptr, true, nullptr);
    EXPECT_TRUE(leaf->IsKindOf(leaf));
    EXPECT_TRUE(leaf->IsKindOf(mid));
    EXPECT_TRUE(leaf->IsKindOf(base));
    EXPECT_FALSE(base->IsKindOf(leaf));
    EXPECT_FALSE(leaf->IsKindOf(other));
    EXPECT_FALSE(leaf->IsKindOf(nullptr));
    for (PlugType** t : {&leaf, &mid, &base, &other})
        DeleteType(*t);
}
