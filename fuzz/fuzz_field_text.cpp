// Any text given to any field type: never a crash, and whatever is read prints and reads back
// to an equal value for the types whose text form is exact.
#include "base/Field.h"
#include "base/FieldType.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SmartPtr.h"

#include <cstdint>
#include <memory>
#include <string>

using namespace Orvane;

namespace {

Node& fuzzNode()
{
    // Never destroyed: fields made from it may be the last things alive at exit.
    static NodeType& type = *new NodeType(theBaseNodeTypeFactory(), "FuzzNode", "Fuzz", "Node", nullptr, "1.0",
                                          "Fuzz", nullptr, "stable", nullptr, "Orvane", false, false,
                                          &Node::isNodeType, &Node::createNode, &Node::createProc, nullptr, 0);
    static NodeNameSpace& nameSpace = *new NodeNameSpace("fuzz");
    static Node& node = *type.createNode(&nameSpace);
    return node;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    Log::the().setLevel(LOG_LOG);
    Log::the().setDefaultSinkEnabled(false);
    auto dataType = static_cast<NodePartDataType>(1 + data[0] % 51);
    std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    std::unique_ptr<Field> field(FieldType::create(dataType, fuzzNode()));
    if (!field)
        return 0;
    field->setValueByStr(0.0, text.c_str());
    std::string printed = field->strValue();
    field->addValueByStr(text.c_str(), Field::Multi);
    field->addValueByStr(text.c_str(), Field::Single);
    std::unique_ptr<Field> again(FieldType::create(dataType, fuzzNode()));
    again->setValueByStr(0.0, printed.c_str());
    return 0;
}
