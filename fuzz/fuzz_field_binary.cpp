// Any bytes given to any field type as its binary form: never a crash or a read past the data,
// what was read encodes to a form that reads back to the same bytes, and the value then
// converts into a field of another type without harm.
#include "base/Field.h"
#include "base/FieldType.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

using namespace Orvane;

namespace {

Node& fuzzNode()
{
    // Never destroyed: fields made from it may be the last things alive at exit.
    static NodeType& type = *new NodeType(theBaseNodeTypeFactory(), "FuzzBinaryNode", "Fuzz", "Node", nullptr, "1.0",
                                          "Fuzz", nullptr, "stable", nullptr, "Orvane", false, false,
                                          &Node::isNodeType, &Node::createNode, &Node::createProc, nullptr, 0);
    static NodeNameSpace& nameSpace = *new NodeNameSpace("fuzz binary");
    static Node& node = *type.createNode(&nameSpace);
    return node;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    Log::the().setLevel(LOG_LOG);
    Log::the().setDefaultSinkEnabled(false);
    auto dataType = static_cast<NodePartDataType>(1 + data[0] % 51);
    auto otherType = static_cast<NodePartDataType>(1 + data[1] % 51);
    std::string bytes(reinterpret_cast<const char*>(data + 2), size - 2);

    std::unique_ptr<Field> field(FieldType::create(dataType, fuzzNode()));
    if (!field)
        return 0;
    field->setValueByBin(0.0, bytes);
    field->set1ValueByBin(static_cast<int>(size % 5) - 1, bytes);
    std::string encoded = field->getBinValue();

    std::unique_ptr<Field> again(FieldType::create(dataType, fuzzNode()));
    again->setValueByBin(0.0, encoded);
    if (again->getBinValue() != encoded)
        std::abort();

    std::unique_ptr<Field> other(FieldType::create(otherType, fuzzNode()));
    if (other)
        other->setValueByField(0.0, *field);
    return 0;
}
