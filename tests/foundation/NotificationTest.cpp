// Subjects and observers: callback ids and order, moving, switching off, changes during delivery.
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

TEST(Notification, CallbackIdsAndOrder)
{
    std::vector<Call> calls;
    Tag               a1{&calls, "a1"}, b1{&calls, "b1"}, a2{&calls, "a2"};
    Subject           subject("order"), x("x"), y("y"), z("z");
    Observer          a("a"), b("b");
    // Ids are counted across observers.
    const int first = a.addCallback(record, &a1);
    EXPECT_EQ(b.addCallback(record, &b1), first + 1);
    EXPECT_EQ(a.addCallback(record, &a2), first + 2);
    // Callbacks run by id within an observer, observers in attach order: b first although its
    // callback has the larger id.
    b.setSubject(&subject);
    a.setSubject(&subject);
    subject.notify(42.25, &x, &y, &z);
    EXPECT_EQ(tags(calls), (Tags{"b1", "a1", "a2"}));
    EXPECT_EQ(calls[0].time, 42.25);
    EXPECT_EQ(calls[0].observer, &b);
    EXPECT_EQ(calls[0].a, &x);
    EXPECT_EQ(calls[0].b, &y);
    EXPECT_EQ(calls[0].c, &z);
    calls.clear();
    subject.notify(1.0);
    EXPECT_EQ(calls[0].a, nullptr);
    EXPECT_EQ(calls[0].c, nullptr);
}

TEST(Notification, AnObserverHasAtMostOneSubject)
{
    std::vector<Call> calls;
    Tag               tag{&calls, "o"};
    Subject           first("first"), second("second"), third("third");
    Observer          observer(first, "moving");
    observer.addCallback(record, &tag);
    auto reached = [&](Subject& subject) {
        calls.clear();
        subject.notify(0.0);
        return calls.size();
    };
    EXPECT_EQ(observer.subject(), &first);

    second.attach(observer);
    second.attach(observer);  // again where it already is: no change
    EXPECT_EQ(first.observerCount(), 0u);
    EXPECT_EQ(second.observerCount(), 1u);
    EXPECT_EQ(observer.subject(), &second);
    EXPECT_EQ(reached(first), 0u);
    EXPECT_EQ(reached(second), 1u);

    // setSubject moves it the same way.
    observer.setSubject(&third);
    EXPECT_EQ(second.observerCount(), 0u);
    EXPECT_EQ(reached(second), 0u);
    EXPECT_EQ(reached(third), 1u);
    // Detaching from a subject it is not attached to does nothing.
    first.detach(observer);
    EXPECT_EQ(observer.subject(), &third);
    observer.setSubject(nullptr);
    EXPECT_EQ(observer.subject(), nullptr);
    EXPECT_EQ(third.observerCount(), 0u);
}

TEST(Notification, DisabledAndEmptyObserversAndSubjectsAreSilent)
{
    LogCapture        log;
    std::vector<Call> calls;
    Tag               on{&calls, "on"}, off{&calls, "off"};
    Subject           subject("switch");
    Observer          disabled(subject, "disabled"), empty(subject, "empty"), enabled(subject, "enabled");
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
    EXPECT_EQ(log.size(), 0u) << log.all();

    // Without a name, a name is empty; a subject that never had an observer is silent too.
    Subject lonely(nullptr);
    EXPECT_EQ(lonely.name(), "");
    EXPECT_EQ(Observer(nullptr).name(), "");
    lonely.notify(0.0);
}

TEST(Notification, ChangesWhileNotified)
{
    std::vector<Call> calls;
    Tag               once{&calls, "once"}, stays{&calls, "stays"}, leaving{&calls, "leaving"};
    once.removeSelf = true;
    leaving.detachObserver = true;
    Subject  subject("self");
    Observer observer(subject, "self"), leaver(subject, "leaver");
    once.id = observer.addCallback(record, &once);
    observer.addCallback(record, &stays);
    // The observer that detaches does not hide the next one.
    leaver.addCallback(record, &leaving);
    Observer last(subject, "last");
    last.addCallback(record, &stays);

    subject.notify(0.0);
    EXPECT_EQ(tags(calls), (Tags{"once", "stays", "leaving", "stays"}));
    EXPECT_EQ(observer.callbackCount(), 1u);
    EXPECT_EQ(leaver.subject(), nullptr);
    EXPECT_EQ(subject.observerCount(), 2u);
    calls.clear();
    subject.notify(0.0);
    EXPECT_EQ(tags(calls), (Tags{"stays", "stays"}));
}

TEST(Notification, ObserversLeaveOnDestructionAndDetachAll)
{
    std::vector<Call> calls;
    Tag               tag{&calls, "kept"};
    Subject           subject("leave");
    Observer          kept(subject, "kept");
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
}

TEST(Notification, CopyingAHandlerCopiesNameAndSwitchAndLogsAtTheLowestLevel)
{
    LogCapture log;
    Subject    subject("original");
    subject.setEnabled(false);
    Subject copy(subject);
    EXPECT_EQ(copy.name(), "original");
    EXPECT_FALSE(copy.enabled());
    EXPECT_EQ(log.count(copyText, LOG_LOG, "Orvane"), 1) << log.all();

    Log::the().setLevel(LOG_LOG);  // the capture restores the level
    Subject  source("source");
    Observer observer(source, "observer");
    Observer observerCopy(observer);
    EXPECT_EQ(observerCopy.name(), "observer");
    EXPECT_EQ(log.count(copyText, LOG_LOG, "Orvane"), 2);
    // The copy is not a second entry in the subject's list.
    EXPECT_EQ(observerCopy.subject(), nullptr);
    EXPECT_EQ(source.observerCount(), 1u);
}
