// Context parameters: registry, defaults from the environment, typed reading, roots.
#include "base/Context.h"
#include "base/ContextSetup.h"
#include "base/NodePartDesc.h"
#include "base/SFBool.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/SFString.h"
#include "base/SFVec3f.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Parameters of this test program, registered once for the process like every parameter.
struct Params {
    unsigned flag = Context::createParamID("testFlag", "a flag", "Test", true);
    unsigned number = Context::createParamID("testNumber", "a number", "Test", 7);
    unsigned ratio = Context::createParamID("testRatio", "a ratio", "Test", 0.5f);
    unsigned text = Context::createParamID("testText", "a text", "Test", "1");
    unsigned choice = Context::createParamID("testChoice", "a choice", "Test", "fast", "fast,slow");
    unsigned vector = Context::createTypedParamID(SFVec3fType, "testVector", "a vector", "3 0 0", "Test");
};

Params& params()
{
    static Params p;
    return p;
}

// At load, as modules register theirs; the parameters of single tests come after.
[[maybe_unused]] const Params& registered = params();

struct ContextParamTest : ::testing::Test {
    SmartPtr<Context> context{Context::create()};
    LogCapture        log;

    template <class F>
    F& field(unsigned id)
    {
        return *static_cast<F*>(context->paramField(id));
    }
};

TEST_F(ContextParamTest, RegistryHoldsOneExposedDescriptorPerParameter)
{
    const Params& p = params();
    EXPECT_EQ(p.number, p.flag + 1);
    EXPECT_EQ(p.vector, p.flag + 5);
    EXPECT_GT(Context::paramCount(), p.vector);

    NodePartDesc* ratio = Context::paramDesc(p.ratio);
    ASSERT_NE(ratio, nullptr);
    EXPECT_EQ(ratio->mask(), PartMask::bit(p.ratio % 64));
    EXPECT_EQ(ratio->partType(), ExposedFieldPartType);
    EXPECT_EQ(ratio->dataType(), SFFloatType);
    EXPECT_EQ(ratio->defaultValue(), "0.5");
    EXPECT_EQ(Context::paramDesc(p.flag)->defaultValue(), "TRUE");
    EXPECT_EQ(Context::paramDesc(p.number)->dataType(), SFInt32Type);
    EXPECT_EQ(Context::paramDesc(p.text)->dataType(), SFStringType);
    EXPECT_EQ(Context::paramDesc(p.choice)->valueType(), "fast,slow");
    EXPECT_EQ(Context::paramDesc(Context::paramCount()), nullptr);
}

TEST_F(ContextParamTest, EnvironmentReplacesTheDefault)
{
    ::setenv("ACP_testFromEnvironment", "42", 1);
    unsigned id = Context::createParamID("testFromEnvironment", "from the environment", "Test", 3);
    ::unsetenv("ACP_testFromEnvironment");
    EXPECT_EQ(Context::paramDesc(id)->defaultValue(), "42");
    EXPECT_EQ(log.count("Overwrite context default value: ACP_testFromEnvironment/42\n", LOG_NOTICE), 1);
    EXPECT_EQ(context->paramIValue(id), 42);
}

TEST_F(ContextParamTest, ValuesStartAtTheDefaultsAndBelongToOneContext)
{
    const Params& p = params();
    EXPECT_TRUE(context->paramBValue(p.flag));
    EXPECT_EQ(context->paramIValue(p.number), 7);
    EXPECT_FLOAT_EQ(context->paramFValue(p.ratio), 0.5f);
    EXPECT_EQ(context->paramSValue(p.choice), "fast");
    EXPECT_EQ(context->paramField("testNumber"), context->paramField(p.number));
    EXPECT_EQ(context->paramField("noSuchParameter"), nullptr);
    EXPECT_EQ(log.count("Autocreate ContextSetup on access\n", LOG_INFO), 1);

    SmartPtr<Context> other(Context::create());
    field<SFInt32>(p.number).setValue(9);
    EXPECT_EQ(context->paramIValue(p.number), 9);
    EXPECT_EQ(other->paramIValue(p.number), 7);
}

TEST_F(ContextParamTest, ReadingFollowsTheParameterType)
{
    const Params& p = params();
    // Strings count by their leading digits only.
    auto text = [&](const char* t) -> Context& {
        field<SFString>(p.text).setValue(t);
        return *context;
    };
    EXPECT_TRUE(text("1").paramBValue(p.text));
    EXPECT_FALSE(text("TRUE").paramBValue(p.text));
    EXPECT_EQ(text("12abc").paramIValue(p.text), 12);
    EXPECT_FLOAT_EQ(text("2.5").paramFValue(p.text), 2.5f);

    // Floats truncate toward zero before they are a bool or an int.
    field<SFFloat>(p.ratio).setValue(0.5f);
    EXPECT_FALSE(context->paramBValue(p.ratio));
    field<SFFloat>(p.ratio).setValue(-1.7f);
    EXPECT_TRUE(context->paramBValue(p.ratio));
    EXPECT_EQ(context->paramIValue(p.ratio), -1);
    field<SFFloat>(p.ratio).setValue(1e20f);
    EXPECT_EQ(context->paramIValue(p.ratio), 2147483647);

    field<SFInt32>(p.number).setValue(0);
    EXPECT_FALSE(context->paramBValue(p.number));
    EXPECT_EQ(context->paramSValue(p.number), "0");

    field<SFBool>(p.flag).setValue(false);
    EXPECT_EQ(context->paramSValue(p.flag), "FALSE");
    EXPECT_EQ(context->paramIValue(p.flag), 0);
    field<SFBool>(p.flag).setValue(true);
    EXPECT_EQ(context->paramSValue(p.flag), "TRUE");
    EXPECT_FLOAT_EQ(context->paramFValue(p.flag), 1.0f);

    // Any other type reads through its text.
    EXPECT_TRUE(context->paramBValue(p.vector));
    EXPECT_EQ(context->paramIValue(p.vector), 3);
    EXPECT_EQ(context->paramSValue(p.vector), "3 0 0");
}

TEST_F(ContextParamTest, UnknownIDIsReported)
{
    const unsigned id = Context::paramCount() + 5;
    char expected[128];
    std::snprintf(expected, sizeof expected, "No valid context ID ( %p.%d )\n", static_cast<void*>(context.get()),
                  static_cast<int>(id));
    EXPECT_FALSE(context->paramBValue(id));
    EXPECT_EQ(context->paramIValue(id), 0);
    EXPECT_EQ(context->paramFValue(id), 0.0f);
    EXPECT_EQ(context->paramSValue(id), "");
    EXPECT_EQ(log.count(expected, LOG_FATAL), 4) << log.all();
}

TEST_F(ContextParamTest, ParameterRegisteredLaterIsReachableInAnExistingContext)
{
    ASSERT_NE(context->contextSetup(), nullptr);
    unsigned late = Context::createParamID("testLate", "made after the context", "Test", 11);
    EXPECT_EQ(context->paramIValue(late), 11);
    EXPECT_EQ(context->paramField("testLate"), context->paramField(late));
    EXPECT_EQ(context->paramField(late)->desc()->name(), "testLate");
}

TEST_F(ContextParamTest, NodesFindTheirContextThroughTheirNamespace)
{
    TestNodeType type{"Ctx", {{"f", ExposedFieldPartType, SFFloatType}}};
    SmartPtr<Node> root = type.make("R");
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", &type.nameSpace()));
    EXPECT_EQ(root->context(), nullptr);

    context->addRoot(*root);
    EXPECT_EQ(root->context(), context.get());
    EXPECT_EQ(inner->context(), context.get());
    EXPECT_EQ(context->findRoot(type.type()), root.get());
    EXPECT_EQ(context->rootCount(), 1u);
    EXPECT_EQ(context->contextSetup()->nameSpace().context(), context.get());

    EXPECT_TRUE(context->removeRoot(type.type()));
    EXPECT_FALSE(context->removeRoot(type.type()));
    EXPECT_EQ(root->context(), nullptr);

    // A context that goes away leaves no dangling binding behind.
    {
        SmartPtr<Context> shortLived(Context::create());
        shortLived->addRoot(*root);
        EXPECT_EQ(inner->context(), shortLived.get());
    }
    EXPECT_EQ(log.count("RootBag is not empty in Context destructor\n", LOG_WARNING), 1);
    EXPECT_EQ(root->context(), nullptr);
}

TEST_F(ContextParamTest, SetupNodeHoldsTheParametersAfterTheNodeFields)
{
    ContextSetup* setup = context->contextSetup();
    ASSERT_NE(setup, nullptr);
    EXPECT_EQ(context->contextSetup(), setup);
    Field* f = setup->paramField(params().ratio);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f, setup->findField("testRatio", SearchFieldName));
}

} // namespace
