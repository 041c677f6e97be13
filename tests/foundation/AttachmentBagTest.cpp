// Attachments: one reference per entry, released on replace, delete and with the bag.
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

} // namespace

TEST(AttachmentBag, SettingAndReplacingMoveOneReference)
{
    Bag                      bag;
    Trace                    traceA, traceB, traceC;
    auto*                    a = new Attachment(traceA);
    SmartPtr<RefCountObject> keepA(a);
    bag.setAttachment(key, a);
    bag.setAttachment(key, a);
    EXPECT_EQ(a->refCount(), 2);
    EXPECT_EQ(bag.getAttachment(key), a);
    EXPECT_EQ(a->refCount(), 2) << "getAttachment must not add a reference";

    auto* b = new Attachment(traceB);
    bag.setAttachment(key, b);
    EXPECT_EQ(a->refCount(), 1);
    EXPECT_EQ(b->refCount(), 1);
    EXPECT_EQ(bag.getAttachmentCount(), 1u);
    // Nobody else holds b: replacing it ends it, with its shutdown step.
    bag.setAttachment(key, new Attachment(traceC));
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
    auto*                    held = new Attachment(kept);
    SmartPtr<RefCountObject> keep(held);
    Bag                      bag;
    bag.setAttachment(1, held);
    bag.setAttachment(2, new Attachment(owned));
    bag.setAttachment(3, new Attachment(other));
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
    doomed->setAttachment(2, new Attachment(last));
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
