// Any argument vector given to Context::createContextVec: parameters in both forms, values of
// every type, URLs that load and URLs that do not. Never a crash, and every context handed out
// goes away with its reference.
//
// The input is split at NUL bytes into the arguments after the program name (at most 64). A
// URL starting with "ok" is answered by the loader with a new context; any other fails.
#include "base/Context.h"
#include "base/ContextSetup.h"
#include "base/Log.h"
#include "base/Observer.h"
#include "base/Subject.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using namespace Orvane;

namespace {

// One parameter of each kind the command line meets, besides those of the library itself.
const unsigned registered[] = {
    Context::createParamID("fuzzFlag", "a flag", "Fuzz", false),
    Context::createParamID("fuzzCount", "a count", "Fuzz", 3),
    Context::createParamID("fuzzScale", "a scale", "Fuzz", 1.5f),
    Context::createParamID("fuzzName", "a name", "Fuzz", "none", "none,some"),
    Context::createTypedParamID(SFVec3fType, "fuzzVector", "a vector", "0 0 0", "Fuzz"),
};

void answer(const double&, Observer*, BaseObject* a, BaseObject*, BaseObject*, const void*)
{
    auto* request = static_cast<Context::LoadRequest*>(a);
    if (request->url.compare(0, 2, "ok") == 0)
        request->context = Context::create(request->url);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Observer loader(Context::loadContextSubject(), "fuzzLoader");
    static bool once = [] {
        Log::the().setLevel(LOG_DEBUG);
        Log::the().setDefaultSinkEnabled(false);
        loader.addCallback(&answer);
        return true;
    }();
    (void)once;
    (void)registered;

    std::vector<std::string> args{"fuzz"};
    std::string current;
    for (size_t i = 0; i < size && args.size() <= 64; ++i) {
        if (data[i] == 0) {
            args.push_back(current);
            current.clear();
        } else {
            current.push_back(static_cast<char>(data[i]));
        }
    }
    if (args.size() <= 64)
        args.push_back(current);
    std::vector<char*> argv;
    for (std::string& a : args)
        argv.push_back(a.data());

    SmartPtr<ContextSetup> setup(ContextSetup::create());
    std::vector<Context*> loaded;
    Context::createContextVec(static_cast<int>(argv.size()), argv.data(), *setup, loaded, true);
    for (Context* context : loaded)
        context->subRef();
    return 0;
}
