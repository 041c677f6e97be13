// getStrValue -> setValueByStr -> equalValue for every type with a text form, on random values.
#include "tests/fields/FieldKit.h"

#include <memory>
#include <set>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

template <class... F>
void roundTripAll(Node& node, RandomValues& random, std::set<int>& covered)
{
    auto one = [&]<class T>(T*) {
        for (int round = 0; round < 40; ++round) {
            T original(node);
            // An empty MFString writes the empty text, which reads as one empty element.
            random.fill(original, std::is_same_v<T, MFString> ? 1 : 0);
            const std::string text = original.strValue();
            std::unique_ptr<Field> copy(FieldType::create(T::DataType, node));
            ASSERT_NE(copy, nullptr);
            copy->setValueByStr(0.0, text.c_str());
            ASSERT_TRUE(copy->equalValue(original)) << original.dataTypeName() << " from >" << text << "<";
            EXPECT_EQ(copy->strValue(), text) << original.dataTypeName();
            EXPECT_EQ(copy->size(), original.size()) << original.dataTypeName();
        }
        covered.insert(T::DataType);
    };
    (one(static_cast<F*>(nullptr)), ...);
}

} // namespace

// Node fields (their text names the child), the Any types (no text form) and MFSound (no text
// form as a list) are left out.
TEST(FieldRoundTripTest, EveryTypeWithATextFormReadsBackWhatItWrites)
{
    TestNodeType   type{"RoundNode", {}};
    SmartPtr<Node> node = type.make();
    RandomValues   random(20240611u, true);
    std::set<int>  covered;
    LogCapture     log;

    roundTripAll<SFBool, SFColor, SFColorRGBA, SFDouble, SFFloat, SFImage, SFInt32, SFMatrix3d, SFMatrix3f,
                 SFMatrix4d, SFMatrix4f, SFPlane, SFQubit, SFRotation, SFSound, SFString, SFTime, SFVec2d,
                 SFVec2f, SFVec3d, SFVec3f, SFVec4d, SFVec4f>(*node, random, covered);
    roundTripAll<MFBool, MFColor, MFColorRGBA, MFDouble, MFFloat, MFImage, MFInt32, MFMatrix3d, MFMatrix3f,
                 MFMatrix4d, MFMatrix4f, MFPlane, MFQubit, MFRotation, MFString, MFTime, MFVec2d, MFVec2f,
                 MFVec3d, MFVec3f, MFVec4d, MFVec4f>(*node, random, covered);

    const std::set<int> without{SFNodeType, MFNodeType, MFSoundType, XFAnyType, SFAnyType, MFAnyType};
    for (int dt = 1; dt <= 51; ++dt)
        EXPECT_NE(covered.count(dt) + without.count(dt), 0u) << FieldType::dataTypeName(NodePartDataType(dt));
    EXPECT_EQ(covered.size(), 45u);
    EXPECT_EQ(log.size(), 0u) << log.all();
}
