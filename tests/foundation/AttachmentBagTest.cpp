#include "base/AttachmentBag.h"
#include "base/SmartPtr.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

using namespace Orvane;
using Orvane::Test::LogCapture;

namespace {

struct Trace {
    int  shutdowns = 0;
    bool destroyed = false;
};

class Attachment : public RefCountObject {
public:
    explicit Attachment(Trace& trace) : _trace(trace) {}

protected:
    ~Attachment() override { _trace.destroyed = true; }
    void shutdown() const override { ++_trace.shutdowns; }

private:
    Trace& _trace;
};

class Bag : public AttachmentBag {
public:
    ~Bag() override = default;
};

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

} // namespace

TEST(AttachmentBag, SettingTheSameAttachmentTwiceHoldsOneReference)
{
    Bag bag;
    Trace trace;
    auto* a = new Attachment(trace);
    bag.setAttachment(key, a);
    bag.setAttachment(key, a);
    EXPECT_EQ(a->refCount(), 1);
    EXPECT_EQ(bag.getAttachmentCount(), 1u);
    EXPECT_EQ(bag.getAttachment(key), a);
    EXPECT_EQ(a->refCount(), 1) << "getAttachment must not add a reference";
}

TEST(AttachmentBag, ReplacingMovesTheReferenceFromOldToNew)
{
    Bag bag;
    Trace traceA, traceB, traceC;
    auto* a = new Attachment(traceA);
    auto* b = new Attachment(traceB);
    SmartPtr<RefCountObject> keepA(a);

    bag.setAttachment(key, a);
    ASSERT_EQ(a->refCount(), 2);
    bag.setAttachment(key, b);
    EXPECT_EQ(a->refCount(), 1);
    EXPECT_EQ(b->refCount(), 1);
    EXPECT_EQ(bag.getAttachment(key), b);
    EXPECT_EQ(bag.getAttachmentCount(), 1u);
    EXPECT_FALSE(traceA.destroyed);

    // Nobody else holds b: replacing it ends it, with its shutdown step.
    bag.setAttachment(key, new Attachment(traceC));
    EXPECT_EQ(traceB.shutdowns, 1);
    EXPECT_TRUE(traceB.destroyed);
    EXPECT_FALSE(traceC.destroyed);
}

TEST(AttachmentBag, NullIsRefusedAndTheOldAttachmentStays)
{
    LogCapture log;
    Bag bag;
    Trace trace;
    auto* a = new Attachment(trace);
    bag.setAttachment(key, a);

    bag.setAttachment(key, nullptr);
    EXPECT_EQ(log.count("Can not add NULL attachemnt for 5 id", LOG_FATAL), 1) << log.all();
    EXPECT_EQ(bag.getAttachment(key), a);
    EXPECT_EQ(a->refCount(), 1);

    // A refused null does not make an empty entry either.
    bag.setAttachment(key + 1, nullptr);
    EXPECT_EQ(bag.getAttachmentCount(), 1u);
    EXPECT_EQ(log.count("Can not add NULL attachemnt for 6 id", LOG_FATAL), 1);
}

TEST(AttachmentBag, DelAttachmentDropsOneEntry)
{
    Bag bag;
    Trace traceA, traceB;
    bag.setAttachment(1, new Attachment(traceA));
    bag.setAttachment(2, new Attachment(traceB));

    bag.delAttachment(3);  // absent: ignored
    EXPECT_EQ(bag.getAttachmentCount(), 2u);

    bag.delAttachment(1);
    EXPECT_TRUE(traceA.destroyed);
    EXPECT_FALSE(traceB.destroyed);
    EXPECT_EQ(bag.getAttachment(1), nullptr);
    EXPECT_EQ(bag.getAttachmentCount(), 1u);
}

TEST(AttachmentBag, DelAllAttachmentReleasesEveryEntry)
{
    Bag bag;
    Trace kept, owned;
    auto* held = new Attachment(kept);
    SmartPtr<RefCountObject> keep(held);
    bag.setAttachment(1, held);
    bag.setAttachment(2, new Attachment(owned));

    bag.delAllAttachment();
    EXPECT_EQ(bag.getAttachmentCount(), 0u);
    EXPECT_EQ(held->refCount(), 1);
    EXPECT_FALSE(kept.destroyed);
    EXPECT_TRUE(owned.destroyed);
    EXPECT_EQ(bag.getAttachment(1), nullptr);
    EXPECT_EQ(bag.getAttachment(2), nullptr);
    EXPECT_EQ(bag.getAttachmentCount(), 0u);

    // The bag works again afterwards.
    bag.setAttachment(1, held);
    EXPECT_EQ(bag.getAttachment(1), held);
    EXPECT_EQ(held->refCount(), 2);
}

TEST(AttachmentBag, DestroyingTheBagReleasesItsAttachments)
{
    Trace kept, owned;
    auto* held = new Attachment(kept);
    SmartPtr<RefCountObject> keep(held);

    auto* bag = new Bag;
    bag->setAttachment(1, held);
    bag->setAttachment(2, new Attachment(owned));
    bag->release();

    EXPECT_TRUE(owned.destroyed);
    EXPECT_FALSE(kept.destroyed);
    EXPECT_EQ(held->refCount(), 1);
}

TEST(AttachmentBag, AttachmentLookingBackWhileTheBagGoesFindsNothing)
{
    // Both while the map is cleared and while the bag itself is destroyed; under the
    // sanitizers this also checks that nothing leaks or is touched after it was freed.
    Look clearing;
    Bag bag;
    bag.setAttachment(key, new Peeker(bag, key, clearing));
    bag.delAllAttachment();
    EXPECT_TRUE(clearing.looked);
    EXPECT_EQ(clearing.seen, nullptr);
    EXPECT_EQ(bag.getAttachmentCount(), 0u);

    Look dying;
    auto* doomed = new Bag;
    doomed->setAttachment(key, new Peeker(*doomed, key, dying));
    doomed->release();
    EXPECT_TRUE(dying.looked);
    EXPECT_EQ(dying.seen, nullptr);
}

TEST(AttachmentBag, CreateUniqueIDCountsUp)
{
    int first = AttachmentBag::createUniqueID();
    int second = AttachmentBag::createUniqueID();
    int third = AttachmentBag::createUniqueID();
    EXPECT_GE(first, 0);
    EXPECT_EQ(second, first + 1);
    EXPECT_EQ(third, first + 2);
}
