// Reference counts, the shutdown step, SmartPtr, the count of live objects, and attachments: one
// reference per entry, released on replace, delete and with the bag.
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

struct Look {
    bool            looked = false;
    RefCountObject* seen = nullptr;
};

// An attachment that looks back at its bag while it shuts down.
class Peeker : public RefCountObject {
public:
    Peeker(AttachmentBag& bag, int id, Look& look) : _bag(bag), _id(id), _look(look) {}

protected:
    void shutdown() const override
    {
        _look.looked = true;
        _look.seen = _bag.getAttachment(_id);
    }

private:
    AttachmentBag& _bag;
    int            _id;
    Look&          _look;
};

constexpr int key = 5;

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

TEST(AttachmentBag, SettingAndReplacingMoveOneReference)
{
    Bag                      bag;
    Trace                    traceA, traceB, traceC;
    auto*                    a = new Probe(traceA);
    SmartPtr<RefCountObject> keepA(a);
    bag.setAttachment(key, a);
    bag.setAttachment(key, a);
    EXPECT_EQ(a->refCount(), 2);
    EXPECT_EQ(bag.getAttachment(key), a);
    EXPECT_EQ(a->refCount(), 2) << "getAttachment must not add a reference";

    auto* b = new Probe(traceB);
    bag.setAttachment(key, b);
    EXPECT_EQ(a->refCount(), 1);
    EXPECT_EQ(b->refCount(), 1);
    EXPECT_EQ(bag.getAttachmentCount(), 1u);
    // Nobody else holds b: replacing it ends it, with its shutdown step.
    bag.setAttachment(key, new Probe(traceC));
    EXPECT_EQ(traceB.shutdowns, 1);
    EXPECT_TRUE(traceB.destroyed);
    EXPECT_FALSE(traceC.destroyed);

    // Null is refused, the old attachment stays, and no empty entry is made.
    LogCapture log;
    bag.setAttachment(key, nullptr);
    bag.setAttachment(key + 1, nullptr);
    EXPECT_EQ(log.count("Can not add NULL attachemnt for 5 id", LOG_FATAL), 1) << log.all();
    EXPECT_EQ(log.count("Can not add NULL attachemnt for 6 id", LOG_FATAL), 1);
    EXPECT_NE(bag.getAttachment(key), nullptr);
    EXPECT_EQ(bag.getAttachmentCount(), 1u);

    const int first = AttachmentBag::createUniqueID();
    EXPECT_GE(first, 0);
    EXPECT_EQ(AttachmentBag::createUniqueID(), first + 1);
}

TEST(AttachmentBag, DeletingReleasesEntries)
{
    Trace                    kept, owned, other;
    auto*                    held = new Probe(kept);
    SmartPtr<RefCountObject> keep(held);
    Bag                      bag;
    bag.setAttachment(1, held);
    bag.setAttachment(2, new Probe(owned));
    bag.setAttachment(3, new Probe(other));
    bag.delAttachment(4);  // absent: ignored
    bag.delAttachment(3);
    EXPECT_TRUE(other.destroyed);
    EXPECT_EQ(bag.getAttachment(3), nullptr);
    EXPECT_EQ(bag.getAttachmentCount(), 2u);

    bag.delAllAttachment();
    EXPECT_EQ(bag.getAttachmentCount(), 0u);
    EXPECT_EQ(held->refCount(), 1);
    EXPECT_FALSE(kept.destroyed);
    EXPECT_TRUE(owned.destroyed);
    EXPECT_EQ(bag.getAttachment(1), nullptr);

    // The bag works again afterwards, and its destruction releases what it holds.
    auto* doomed = new Bag;
    doomed->setAttachment(1, held);
    EXPECT_EQ(held->refCount(), 2);
    Trace last;
    doomed->setAttachment(2, new Probe(last));
    doomed->release();
    EXPECT_TRUE(last.destroyed);
    EXPECT_EQ(held->refCount(), 1);
}

TEST(AttachmentBag, AttachmentLookingBackWhileTheBagGoesFindsNothing)
{
    // Both while the map is cleared and while the bag itself is destroyed; under the
    // sanitizers this also checks that nothing leaks or is touched after it was freed.
    Look clearing, dying;
    Bag  bag;
    bag.setAttachment(key, new Peeker(bag, key, clearing));
    bag.delAllAttachment();
    EXPECT_TRUE(clearing.looked);
    EXPECT_EQ(clearing.seen, nullptr);

    auto* doomed = new Bag;
    doomed->setAttachment(key, new Peeker(*doomed, key, dying));
    doomed->release();
    EXPECT_TRUE(dying.looked);
    EXPECT_EQ(dying.seen, nullptr);
}
