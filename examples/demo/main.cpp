// The demo: what the library does, as far as it stands. A node type declared in code, a node of
// it, its fields set from text and printed back, and a listener that sees every change.
#include "base/FieldType.h"
#include "base/Log.h"
#include "base/MFString.h"
#include "base/MFVec3f.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/SFBool.h"
#include "base/SFColor.h"
#include "base/SFFloat.h"
#include "base/SFRotation.h"
#include "base/SFTime.h"
#include "base/SmartPtr.h"

#include <cstdio>

using namespace Orvane;

namespace {

// Prints every change of the field it listens to.
class PrintChanges : public Field::Listener {
public:
    void fieldChanged(const double& time, Field& field) override
    {
        std::printf("  changed at %.2f: %s = %s\n", time, field.findName(), field.strValue().c_str());
    }
};

} // namespace

int main()
{
    Log::the().setLevel(LOG_NOTICE);
    std::printf("Orvane demo: %u field types registered\n\n", FieldType::typeCount());

    // A node type declared in code: one descriptor per field, in slot order.
    NodePartDesc parts[] = {
        NodePartDesc(0, PartMask::bit(0), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess,
                     "intensity", nullptr, "1"),
        NodePartDesc(1, PartMask::bit(1), ExposedFieldPartType, SFColorType, NodePartDesc::CtorAutoProcess,
                     "color", nullptr, "1 1 1"),
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFRotationType, NodePartDesc::CtorAutoProcess,
                     "orientation", nullptr, "0 0 1 0"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, MFVec3fType, NodePartDesc::CtorAutoProcess,
                     "points"),
        NodePartDesc(4, PartMask::bit(4), ExposedFieldPartType, MFStringType, NodePartDesc::CtorAutoProcess,
                     "labels"),
        NodePartDesc(5, PartMask::bit(5), FieldPartType, SFBoolType, 0, "visible", nullptr, "TRUE"),
        NodePartDesc(6, PartMask::bit(6), EventOutPartType, SFTimeType, 0, "touchTime"),
    };
    NodeType lampType("Lamp", parts, sizeof parts / sizeof parts[0]);
    SmartPtr<Node> lamp(new Node(lampType));
    for (unsigned i = 0; i < lamp->partCount(); ++i)
        lamp->findField(i)->setDefaultValue(0.0);
    lamp->setStateUnchecked(Live);

    PrintChanges printer;
    for (unsigned i = 0; i < lamp->partCount(); ++i)
        lamp->findField(i)->addListener(&printer);

    std::printf("Fields set from text:\n");
    const char* texts[][2] = {
        {"intensity", "  0.75"},
        {"color", "1 0.5 0"},
        {"orientation", "0 1 0 1.5708"},
        {"points", "0 0 0, 1 0 0, 1 1 0"},
        {"labels", "\"left \\\"wing\\\"\" 'right'"},
        {"visible", "no"},
        {"touchTime", "1234567890.123456"},
    };
    for (unsigned i = 0; i < lamp->partCount(); ++i)
        lamp->findField(i)->setValueByStr(1.0 + i, texts[i][1]);

    std::printf("\nThe node's fields, printed back:\n");
    for (unsigned i = 0; i < lamp->partCount(); ++i) {
        Field* field = lamp->findField(i);
        std::printf("  %-10s %-12s %-12s %s%s\n", field->dataTypeName().c_str(), field->findName(),
                    NodePartDesc::partTypeName(field->type()), field->strValue().c_str(),
                    field->valueIsDefault() ? "  (default)" : "");
    }
    std::printf("\nChanged mask of the node: 0x%llx\n", lamp->changedMask().value());
    lamp->setStateUnchecked(Creation);
    return 0;
}
