// Reference counts, the shutdown step, SmartPtr and the count of live objects.
#include "base/AttachmentBag.h"
#include "base/Observer.h"
#include "base/RefCountObject.h"
#include "base/SmartPtr.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

using namespace Orvane;
using Orvane::Test::LogCapture;

namespace {

// What happened to a probe, kept outside it so that it can be read after the probe is gone.
struct Trace {
    int  shutdowns = 0;
    bool destroyed = false;
    bool resurrect = false;  // take a new reference from inside shutdown()
    bool borrow = false;     // take a reference and drop it again inside shutdown()
};

class Probe : public RefCountObject {
public:
    explicit Probe(Trace& trace) : _trace(trace) {}

protected:
    ~Probe() override { _trace.destroyed = true; }
    void shutdown() const override
    {
        ++_trace.shutdowns;
        EXPECT_FALSE(_trace.destroyed);
        if (_trace.resurrect)
            addRef();
        if (_trace.borrow)
            SmartPtr<const Probe> again(this);  // back to zero when it goes
    }

private:
    Trace& _trace;
};

// An object that may live on the stack, so that its destructor can run with references held.
class StackObject : public RefCountObject {
public:
    ~StackObject() override = default;
};

class Bag : public AttachmentBag {};

const char* const illegalTransition = "Illegal Transition: RefCount != 0 after shutdown\n";

} // namespace

TEST(RefCount, LastSubRefShutsDownOnceThenDeletesAndReleaseOnlyActsOnZero)
{
    Trace trace;
    auto* probe = new Probe(trace);
    EXPECT_EQ(probe->refCount(), 0);
    probe->addRef();
    probe->addRef();
    probe->subRef();
    probe->release();  // never decrements by itself
    EXPECT_EQ(probe->refCount(), 1);
    EXPECT_EQ(trace.shutdowns, 0);
    EXPECT_FALSE(trace.destroyed);
    probe->subRef();
    EXPECT_EQ(trace.shutdowns, 1);
    EXPECT_TRUE(trace.destroyed);

    // An object that was never shared is destroyed through release() on the zero count, still
    // with its shutdown step.
    Trace unshared;
    (new Probe(unshared))->release();
    EXPECT_EQ(unshared.shutdowns, 1);
    EXPECT_TRUE(unshared.destroyed);
}

TEST(RefCount, ShutdownThatTakesAReferenceKeepsTheObject)
{
    LogCapture log;
    Trace trace;
    trace.resurrect = true;
    auto* probe = new Probe(trace);
    probe->addRef();

    probe->subRef();
    EXPECT_EQ(trace.shutdowns, 1);
    EXPECT_FALSE(trace.destroyed);
    EXPECT_EQ(probe->refCount(), 1);
    EXPECT_EQ(log.count(illegalTransition, LOG_FATAL), 1) << log.all();

    // The new owner lets go; this time nobody comes back and the object goes.
    trace.resurrect = false;
    probe->subRef();
    EXPECT_EQ(trace.shutdowns, 2);
    EXPECT_TRUE(trace.destroyed);
    EXPECT_EQ(log.count(illegalTransition), 1);
}

// Someone who looks at the object during its shutdown and lets go again must not start a second
// end of life: the object is shut down and deleted once.
TEST(RefCount, ReferenceBorrowedDuringShutdownDoesNotReleaseTwice)
{
    Trace trace;
    trace.borrow = true;
    auto* probe = new Probe(trace);
    probe->addRef();
    probe->subRef();
    EXPECT_EQ(trace.shutdowns, 1);
    EXPECT_TRUE(trace.destroyed);
}

TEST(RefCount, DestructorReportsReferencesStillHeld)
{
    LogCapture log;
    {
        StackObject object;
        object.addRef();
        object.addRef();
    }
    EXPECT_EQ(log.count("_refCount == 2 in RefCountObject Destructor\n", LOG_FATAL), 1) << log.all();

    log.clear();
    { StackObject object; }
    EXPECT_EQ(log.size(), 0u) << log.all();
}

TEST(SmartPtr, HoldsOneReferencePerHandle)
{
    Trace trace;
    auto* probe = new Probe(trace);
    {
        SmartPtr<RefCountObject> first(probe);
        EXPECT_EQ(probe->refCount(), 1);
        {
            SmartPtr<RefCountObject> copy(first);
            EXPECT_EQ(probe->refCount(), 2);
            SmartPtr<RefCountObject> moved(std::move(copy));
            EXPECT_EQ(probe->refCount(), 2);
            EXPECT_FALSE(copy);
            auto& alias = moved;
            moved = alias;  // self-assignment must not drop a reference
            EXPECT_EQ(probe->refCount(), 2);
        }
        EXPECT_EQ(probe->refCount(), 1);
        EXPECT_FALSE(trace.destroyed);
    }
    EXPECT_TRUE(trace.destroyed);
}

TEST(SmartPtr, ReassignmentTakesTheNewReferenceBeforeDroppingTheOld)
{
    // The old object is the only owner of the new one: dropping it first would delete the
    // object the handle is about to hold.
    Trace trace;
    auto* inner = new Probe(trace);
    auto* outer = new Bag;
    outer->setAttachment(AttachmentBag::createUniqueID(), inner);
    ASSERT_EQ(inner->refCount(), 1);

    SmartPtr<RefCountObject> handle(outer);
    handle = inner;
    EXPECT_FALSE(trace.destroyed);
    EXPECT_EQ(inner->refCount(), 1);
    EXPECT_EQ(handle.get(), inner);

    handle = nullptr;
    EXPECT_TRUE(trace.destroyed);
}

TEST(BaseObjectCount, FollowsEveryDerivedClass)
{
    // Other objects of the process exist already: only the change counts.
    const auto start = BaseObject::baseObjCount();
    {
        Trace trace;
        auto* probe = new Probe(trace);
        EXPECT_EQ(BaseObject::baseObjCount(), start + 1);
        auto* bag = new Bag;
        EXPECT_EQ(BaseObject::baseObjCount(), start + 2);
        Subject subject("count");
        EXPECT_EQ(BaseObject::baseObjCount(), start + 3);
        {
            Observer observer(subject, "count");
            EXPECT_EQ(BaseObject::baseObjCount(), start + 4);
            LogCapture log;  // the copy logs; keep it off stderr
            Subject copy(subject);
            EXPECT_EQ(BaseObject::baseObjCount(), start + 5);
        }
        EXPECT_EQ(BaseObject::baseObjCount(), start + 3);

        // An attachment is counted once, whoever holds it.
        Trace attached;
        bag->setAttachment(AttachmentBag::createUniqueID(), new Probe(attached));
        EXPECT_EQ(BaseObject::baseObjCount(), start + 4);

        bag->release();  // takes its attachment with it
        EXPECT_TRUE(attached.destroyed);
        EXPECT_EQ(BaseObject::baseObjCount(), start + 2);
        probe->release();
        EXPECT_EQ(BaseObject::baseObjCount(), start + 1);
    }
    EXPECT_EQ(BaseObject::baseObjCount(), start);
}
