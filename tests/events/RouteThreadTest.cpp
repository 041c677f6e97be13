// The route registry is the one piece of the event system shared between threads: scenes of
// their own may be wired on several threads while a writer lists the routes. Run under
// ThreadSanitizer (make tsan) this test must report no race.
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Route.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

constexpr int threadCount = 4;
constexpr int nodesPerThread = 8;
constexpr int rounds = 300;

// One thread's scene: a type and namespace of its own, its nodes made and their slots opened
// before the threads start.
struct Scene {
    std::unique_ptr<TestNodeType> type;
    std::vector<SmartPtr<Node>>   nodes;

    explicit Scene(int index)
    {
        const std::string name = "Wire" + std::to_string(index);
        type = std::make_unique<TestNodeType>(
            name.c_str(), std::vector<PartSpec>{{"value", ExposedFieldPartType, SFFloatType}});
        for (int i = 0; i < nodesPerThread; ++i) {
            nodes.push_back(type->make());
            nodes.back()->findField(0u)->getInSlot(true);
            nodes.back()->findField(0u)->getOutSlot(true);
        }
    }
    EventOutSlot& out(int i) { return *nodes[i]->findField(0u)->getOutSlot(); }
    EventInSlot&  in(int i) { return *nodes[i]->findField(0u)->getInSlot(); }
};

TEST(RouteThreadTest, RegistryStaysConsistentWhileThreadsWireTheirOwnScenes)
{
    std::vector<std::unique_ptr<Scene>> scenes;
    for (int t = 0; t < threadCount; ++t)
        scenes.push_back(std::make_unique<Scene>(t));
    const unsigned before = Route::routeCount();

    std::atomic<int>  running{threadCount};
    std::atomic<bool> failed{false};
    std::vector<std::thread> wirers;
    for (int t = 0; t < threadCount; ++t) {
        wirers.emplace_back([&, t] {
            Scene& s = *scenes[t];
            std::vector<Route*> made;
            for (int round = 0; round < rounds; ++round) {
                for (int i = 0; i < nodesPerThread; ++i)
                    made.push_back(Route::create(s.out(i), s.in((i + 1 + round % 3) % nodesPerThread)));
                // Deleted from alternating ends: each unhooks itself from both slots.
                for (std::size_t i = 0; i < made.size(); ++i) {
                    if (!made[i])
                        failed = true;
                    else if (i % 2)
                        made[i]->inSlot().disconnect(&made[i]->outSlot());
                    else
                        delete made[i];
                }
                made.clear();
            }
            --running;
        });
    }

    // The writer's view: every listed route is whole while it is listed.
    unsigned long long seen = 0;
    std::thread lister([&] {
        while (running > 0) {
            std::vector<Route*> routes;
            Route::fillRouteVec(routes, nullptr, Route::DEFAULT);
            seen += routes.size();
            std::vector<Route*> own;
            Route::fillRouteVec(own, &scenes[0]->type->nameSpace(), static_cast<Route::Type>(~0u));
            if (own.size() > static_cast<std::size_t>(nodesPerThread))
                failed = true;
            if (Route::routeCount() < before)
                failed = true;
        }
    });

    for (std::thread& w : wirers)
        w.join();
    lister.join();

    EXPECT_FALSE(failed);
    EXPECT_EQ(Route::routeCount(), before);
    for (auto& s : scenes)
        for (int i = 0; i < nodesPerThread; ++i) {
            EXPECT_EQ(s->out(i).routeCount(), 0u);
            EXPECT_EQ(s->in(i).routeCount(), 0u);
        }
}

} // namespace
