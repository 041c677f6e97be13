#include "base/Observer.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Orvane;
using Orvane::Test::LogCapture;

namespace {

struct Call {
    std::string tag;
    double      time;
    Observer*   observer;
    BaseObject* a;
    BaseObject* b;
    BaseObject* c;
};

// The user data of a callback: where to record the call and what else to do.
struct Tag {
    std::vector<Call>* calls;
    std::string        name;
    int                id = -1;            // the callback's own id, once known
    bool               removeSelf = false;
    bool               detachObserver = false;
};

void record(const double& time, Observer* observer, BaseObject* a, BaseObject* b, BaseObject* c,
            const void* userData)
{
    const auto* tag = static_cast<const Tag*>(userData);
    tag->calls->push_back({tag->name, time, observer, a, b, c});
    if (tag->removeSelf)
        observer->removeCallback(tag->id);
    if (tag->detachObserver)
        observer->setSubject(nullptr);
}

std::vector<std::string> tags(const std::vector<Call>& calls)
{
    std::vector<std::string> out;
    for (const Call& call : calls)
        out.push_back(call.tag);
    return out;
}

using Tags = std::vector<std::string>;

const char* const copyText = "Running Notification Handler copy constructor !\n";

} // namespace

TEST(Notification, CallbackIdsAreSharedAcrossObservers)
{
    std::vector<Call> calls;
    Tag tag{&calls, "x"};
    Observer first("first");
    Observer second("second");
    int n = first.addCallback(record, &tag);
    int next = second.addCallback(record, &tag);
    EXPECT_EQ(next, n + 1);
    EXPECT_EQ(first.addCallback(record, &tag), n + 2);
}

TEST(Notification, CallbacksRunByIdWithinAnObserverAndObserversInAttachOrder)
{
    std::vector<Call> calls;
    Tag a1{&calls, "a1"}, b1{&calls, "b1"}, a2{&calls, "a2"};
    Subject subject("order");
    Observer a("a"), b("b");
    a.addCallback(record, &a1);
    b.addCallback(record, &b1);
    a.addCallback(record, &a2);
    // b is attached first although its callback has the larger id.
    b.setSubject(&subject);
    a.setSubject(&subject);

    subject.notify(1.5);
    EXPECT_EQ(tags(calls), (Tags{"b1", "a1", "a2"}));
}

TEST(Notification, CallbackReceivesTimeObserverObjectsAndUserData)
{
    std::vector<Call> calls;
    Tag tag{&calls, "t"};
    Subject subject("args"), x("x"), y("y"), z("z");
    Observer observer(subject, "args");
    observer.addCallback(record, &tag);

    subject.notify(42.25, &x, &y, &z);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].tag, "t");
    EXPECT_EQ(calls[0].time, 42.25);
    EXPECT_EQ(calls[0].observer, &observer);
    EXPECT_EQ(calls[0].a, &x);
    EXPECT_EQ(calls[0].b, &y);
    EXPECT_EQ(calls[0].c, &z);

    subject.notify(1.0);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1].a, nullptr);
    EXPECT_EQ(calls[1].c, nullptr);
}

TEST(Notification, AnObserverHasAtMostOneSubject)
{
    std::vector<Call> calls;
    Tag tag{&calls, "o"};
    Subject first("first"), second("second"), third("third");
    Observer observer(first, "moving");
    observer.addCallback(record, &tag);
    EXPECT_EQ(observer.subject(), &first);
    EXPECT_EQ(first.observerCount(), 1u);

    second.attach(observer);
    EXPECT_EQ(first.observerCount(), 0u);
    EXPECT_EQ(second.observerCount(), 1u);
    EXPECT_EQ(observer.subject(), &second);
    first.notify(0.0);
    EXPECT_TRUE(calls.empty());
    second.notify(0.0);
    EXPECT_EQ(calls.size(), 1u);

    // Attaching again where it already is changes nothing.
    second.attach(observer);
    EXPECT_EQ(second.observerCount(), 1u);
    calls.clear();
    second.notify(0.0);
    EXPECT_EQ(calls.size(), 1u);

    // setSubject moves it the same way, and the new subject reaches it.
    observer.setSubject(&third);
    EXPECT_EQ(second.observerCount(), 0u);
    EXPECT_EQ(third.observerCount(), 1u);
    EXPECT_EQ(observer.subject(), &third);
    calls.clear();
    second.notify(0.0);
    third.notify(0.0);
    EXPECT_EQ(calls.size(), 1u);

    // Detaching from a subject it is not attached to does nothing.
    first.detach(observer);
    EXPECT_EQ(observer.subject(), &third);
    EXPECT_EQ(third.observerCount(), 1u);

    observer.setSubject(nullptr);
    EXPECT_EQ(observer.subject(), nullptr);
    EXPECT_EQ(third.observerCount(), 0u);
}

TEST(Notification, DisabledObserversAndSubjectsAreSilent)
{
    std::vector<Call> calls;
    Tag on{&calls, "on"}, off{&calls, "off"};
    Subject subject("switch");
    Observer disabled(subject, "disabled"), enabled(subject, "enabled");
    disabled.addCallback(record, &off);
    enabled.addCallback(record, &on);

    disabled.setEnabled(false);
    subject.notify(0.0);
    EXPECT_EQ(tags(calls), (Tags{"on"}));

    calls.clear();
    subject.setEnabled(false);
    subject.notify(0.0);
    EXPECT_TRUE(calls.empty());

    subject.setEnabled(true);
    disabled.setEnabled(true);
    subject.notify(0.0);
    EXPECT_EQ(tags(calls), (Tags{"off", "on"}));
}

TEST(Notification, ObserverWithoutCallbacksIsSkippedSilently)
{
    LogCapture log;
    std::vector<Call> calls;
    Tag before{&calls, "before"}, after{&calls, "after"};
    Subject subject("gap");
    Observer first(subject, "first"), empty(subject, "empty"), last(subject, "last");
    first.addCallback(record, &before);
    last.addCallback(record, &after);

    subject.notify(0.0);
    EXPECT_EQ(tags(calls), (Tags{"before", "after"}));
    EXPECT_EQ(log.size(), 0u) << log.all();

    // A subject that never had an observer is silent too.
    Subject lonely("lonely");
    lonely.notify(0.0);
    EXPECT_EQ(lonely.observerCount(), 0u);
}

TEST(Notification, CallbackThatRemovesItselfWhileNotified)
{
    std::vector<Call> calls;
    Tag once{&calls, "once"}, stays{&calls, "stays"};
    once.removeSelf = true;
    Subject subject("self");
    Observer observer(subject, "self");
    once.id = observer.addCallback(record, &once);
    observer.addCallback(record, &stays);

    subject.notify(0.0);
    EXPECT_EQ(tags(calls), (Tags{"once", "stays"}));
    EXPECT_EQ(observer.callbackCount(), 1u);

    calls.clear();
    subject.notify(0.0);
    EXPECT_EQ(tags(calls), (Tags{"stays"}));
}

TEST(Notification, ObserverThatDetachesWhileNotifiedDoesNotHideTheNext)
{
    std::vector<Call> calls;
    Tag leaving{&calls, "leaving"}, next{&calls, "next"};
    leaving.detachObserver = true;
    Subject subject("leave");
    Observer first(subject, "first"), second(subject, "second");
    first.addCallback(record, &leaving);
    second.addCallback(record, &next);

    subject.notify(0.0);
    EXPECT_EQ(tags(calls), (Tags{"leaving", "next"}));
    EXPECT_EQ(first.subject(), nullptr);
    EXPECT_EQ(subject.observerCount(), 1u);
}

TEST(Notification, ObserversLeaveOnDestructionAndDetachAll)
{
    std::vector<Call> calls;
    Tag tag{&calls, "kept"};
    Subject subject("leave");
    Observer kept(subject, "kept");
    kept.addCallback(record, &tag);
    {
        Observer transient(subject, "transient");
        transient.addCallback(record, &tag);
        EXPECT_EQ(subject.observerCount(), 2u);
    }
    EXPECT_EQ(subject.observerCount(), 1u);
    subject.notify(0.0);  // must not reach the destroyed observer
    EXPECT_EQ(calls.size(), 1u);

    Observer other(subject, "other");
    subject.detachAll();
    EXPECT_EQ(subject.observerCount(), 0u);
    EXPECT_EQ(kept.subject(), nullptr);
    EXPECT_EQ(other.subject(), nullptr);
    calls.clear();
    subject.notify(0.0);
    EXPECT_TRUE(calls.empty());
}

TEST(Notification, CopyingAHandlerCopiesNameAndSwitchAndLogs)
{
    LogCapture log;
    Subject subject("original");
    subject.setEnabled(false);
    Subject copy(subject);
    EXPECT_EQ(copy.name(), "original");
    EXPECT_FALSE(copy.enabled());
    EXPECT_EQ(log.count(copyText, LOG_LOG, "Orvane"), 1) << log.all();

    Subject source("source");
    Observer observer(source, "observer");
    Observer observerCopy(observer);
    EXPECT_EQ(observerCopy.name(), "observer");
    EXPECT_EQ(log.count(copyText, LOG_LOG, "Orvane"), 2);
    // The copy is not a second entry in the subject's list.
    EXPECT_EQ(observerCopy.subject(), nullptr);
    EXPECT_EQ(source.observerCount(), 1u);
}

TEST(Notification, CopyLogIsWrittenAtTheLowestLevel)
{
    LogCapture log;
    Log::the().setLevel(LOG_LOG);  // the capture restores the level
    Subject subject("plain");
    Subject copy(subject);
    EXPECT_EQ(log.count(copyText, LOG_LOG), 1) << log.all();
}

TEST(Notification, NullNameIsEmpty)
{
    Subject subject(nullptr);
    Observer observer(nullptr);
    EXPECT_EQ(subject.name(), "");
    EXPECT_EQ(observer.name(), "");
    EXPECT_TRUE(subject.enabled());
    EXPECT_TRUE(observer.enabled());
}
