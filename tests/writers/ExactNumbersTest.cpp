// The exact-numbers option: every float and double read back through the fields' text setters
// equals the value that was written.
#include "base/Field.h"
#include "base/VRMLWriteAction.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <sstream>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

TEST(ExactNumbers, EveryFloatAndDoubleReadsBackEqual)
{
    TypeScope scope;
    const std::vector<PartSpec> parts = {
        {"f", FieldPartType, SFFloatType},      {"mf", FieldPartType, MFFloatType},
        {"d", FieldPartType, SFDoubleType},     {"t", FieldPartType, SFTimeType},
        {"md", FieldPartType, MFDoubleType},    {"mt", FieldPartType, MFTimeType},
        {"v3", FieldPartType, SFVec3fType},     {"mv3", FieldPartType, MFVec3fType},
        {"v2d", FieldPartType, SFVec2dType},    {"mv4d", FieldPartType, MFVec4dType},
        {"c", FieldPartType, SFColorType},      {"m4", FieldPartType, SFMatrix4fType},
        {"mm3d", FieldPartType, MFMatrix3dType}, {"p", FieldPartType, SFPlaneType},
    };
    scope.declare("Numbers", "Node", parts);
    scope.initAll();
    SmartPtr<Node> written = scope.make("Numbers"), read = scope.make("Numbers");

    // Random finite values of every magnitude, as text that each field parses exactly (the
    // 17-digit form), so that the fields hold values that a 6-digit form would lose.
    std::mt19937 random(99);
    auto number = [&](bool single) {
        for (;;) {
            double value = single ? static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(random())))
                                  : std::bit_cast<double>((static_cast<std::uint64_t>(random()) << 32) | random());
            if (std::isfinite(value))
                return value;
        }
    };
    for (int round = 0; round < 200; ++round) {
        for (const PartSpec& part : parts) {
            Field* field = written->findField(part.name);
            bool   single = part.dataType != SFDoubleType && part.dataType != SFTimeType && part.dataType != MFDoubleType &&
                          part.dataType != MFTimeType && part.dataType != SFVec2dType && part.dataType != MFVec4dType &&
                          part.dataType != MFMatrix3dType;
            std::string text;
            for (int i = 0; i < 18; ++i) {
                char buffer[40];
                std::snprintf(buffer, sizeof buffer, "%.17g ", number(single));
                text += buffer;
            }
            field->setValueByStr(0.0, text.c_str());
        }

        VRMLWriteAction writer;
        writer.setWriteExactNumbers(true);
        std::ostringstream out;
        ASSERT_TRUE(writer.writeStream(*written, out));
        std::istringstream lines(out.str());
        std::string        line;
        int                fields = 0;
        while (std::getline(lines, line)) {
            auto nameStart = line.find_first_not_of(' ');
            auto nameEnd = line.find(' ', nameStart);
            Field* field = nameEnd == std::string::npos ? nullptr : read->findField(line.substr(nameStart, nameEnd - nameStart));
            if (!field)
                continue;
            std::string value = line.substr(nameEnd + 1);
            if (value.size() >= 4 && value.compare(0, 2, "[ ") == 0)
                value = value.substr(2, value.size() - 4);
            field->setValueByStr(0.0, value.c_str());
            ++fields;
        }
        ASSERT_EQ(fields, static_cast<int>(parts.size()));
        for (const PartSpec& part : parts)
            ASSERT_TRUE(read->findField(part.name)->equalValue(*written->findField(part.name)))
                << part.name << " round " << round << ": " << written->findField(part.name)->strValue();
    }
}

} // namespace
