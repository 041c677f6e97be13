// Random text: no type breaks on it, and the numbers read are those of strtod and strtol.
#include "tests/fields/FieldKit.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Random texts: mostly characters that mean something to a number or list parser, some bytes
// of any value. Never NUL inside, as every text reaches the parsers as a C string.
class TextMaker {
public:
    explicit TextMaker(std::uint32_t seed) : _rng(seed) {}

    std::string next()
    {
        static const char numeric[] = "0123456789.-+eExXpPaAfFnNiItTyY \t\n\r,;\"'\\()";
        std::string s(static_cast<std::size_t>(pick(0, 40)), ' ');
        for (char& c : s)
            c = pick(0, 3) ? numeric[pick(0, sizeof numeric - 2)] : static_cast<char>(pick(1, 255));
        // Now and then a long run of digits or a huge exponent.
        if (pick(0, 15) == 0)
            s.insert(static_cast<std::size_t>(pick(0, static_cast<int>(s.size()))), std::string(400, '9'));
        if (pick(0, 15) == 0)
            s.insert(0, pick(0, 1) ? "1e38" : "3.4028236e38");
        return s;
    }

private:
    int pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(_rng); }
    std::mt19937 _rng;
};

// IEEE narrowing of a double to float, round to nearest: beyond FLT_MAX by half an ulp or
// more is infinity, closer is FLT_MAX. Spelt out because a plain cast of an out-of-range
// double is undefined.
float narrow(double d)
{
    const double halfUlpAboveMax = static_cast<double>(FLT_MAX) + std::ldexp(1.0, 103);
    if (std::isnan(d))
        return static_cast<float>(d);
    if (std::fabs(d) >= halfUlpAboveMax)
        return std::copysign(INFINITY, static_cast<float>(d > 0 ? 1 : -1));
    if (std::fabs(d) > FLT_MAX)
        return std::copysign(FLT_MAX, static_cast<float>(d > 0 ? 1 : -1));
    return static_cast<float>(d);
}

template <class T>
bool same(T a, T b)
{
    if (std::isnan(a) || std::isnan(b))
        return std::isnan(a) && std::isnan(b);
    return a == b && std::signbit(a) == std::signbit(b);
}

// The tokens of a text between any of the separators.
std::vector<std::string> tokens(const std::string& text, const char* separators)
{
    std::vector<std::string> out;
    std::size_t p = 0;
    while ((p = text.find_first_not_of(separators, p)) != std::string::npos) {
        std::size_t e = text.find_first_of(separators, p);
        out.push_back(text.substr(p, e == std::string::npos ? std::string::npos : e - p));
        p = e;
    }
    return out;
}

bool boolRule(const char* t)
{
    char c = t[0];
    if (!c || std::strchr("FNfn", c))
        return false;
    if (std::strchr("TYty", c))
        return true;
    if (!((c >= '0' && c <= '9') || c == '-' || c == '.'))
        return false;
    double d = std::strtod(t, nullptr);
    return d != 0.0 || std::isnan(d);
}

} // namespace

TEST(FieldFuzzTextTest, RandomTextNeverBreaksAnyType)
{
    TestNodeType   type{"FuzzNode", {{"f", ExposedFieldPartType, MFStringType}}};
    SmartPtr<Node> node = type.make();
    TextMaker      maker(77u);
    std::vector<std::unique_ptr<Field>> fields;
    for (int dt = 1; dt <= 51; ++dt) {
        fields.emplace_back(FieldType::create(static_cast<NodePartDataType>(dt), *node));
        ASSERT_NE(fields.back(), nullptr) << dt;
    }
    LogCapture log;
    for (int round = 0; round < 300; ++round) {
        const std::string text = maker.next();
        for (auto& f : fields) {
            f->setValueByStr(0.0, text.c_str());
            std::string out = f->strValue();
            // What a field writes it can read again, whatever it was made of.
            f->setValueByStr(0.0, out.c_str());
            const char* rest = f->addValueByStr(text.c_str(), Field::Single);
            if (rest) {
                EXPECT_TRUE(rest >= text.c_str() && rest <= text.c_str() + text.size()) << f->dataTypeName();
            }
            f->addValueByStr(text.c_str(), Field::Multi);
            f->strValue();
            if (f->size() > 64)
                f->clear();
        }
        log.clear();
    }
}

TEST(FieldFuzzTextTest, NumbersAreWhatTheCConversionsGive)
{
    TestNodeType   type{"FuzzNode", {}};
    SmartPtr<Node> node = type.make();
    TextMaker      maker(4242u);
    SFFloat        f(*node);
    SFDouble       d(*node);
    SFInt32        i(*node);
    SFBool         b(*node);
    SFString       s(*node);
    MFFloat        mf(*node);
    MFDouble       md(*node);
    MFInt32        mi(*node);
    // The edges first: limits of float, hex, signs, words and leading junk.
    const std::vector<std::string> fixed = {
        "1e3", "-.5", "0x10", "0x1", "1,5", " \t\n 2", "+", "+7", "+1", " 1", "1e39", "-1e39", "3.4028235e38",
        "3.4028236e38", "nan", "-nan", "  -12xyz", "3.9", "1e400", "4.9e-324", "1234567890.123456", "true", "Yes",
        "y", "FALSE", "N", "0", "0.0", "-0.0", ".5", "-1", "1abc", "-", ".", "x", ""};
    for (std::size_t round = 0; round < fixed.size() + 3000; ++round) {
        const std::string text = round < fixed.size() ? fixed[round] : maker.next();
        const char*       t = text.c_str();
        f.setValueByStr(0.0, t);
        d.setValueByStr(0.0, t);
        i.setValueByStr(0.0, t);
        b.setValueByStr(0.0, t);
        s.setValueByStr(0.0, t);
        const double expected = std::strtod(t, nullptr);
        ASSERT_TRUE(same(d.value(), expected)) << ">" << text << "< " << d.value() << " vs " << expected;
        ASSERT_TRUE(same(f.value(), narrow(expected))) << ">" << text << "< " << f.value();
        ASSERT_EQ(i.value(), static_cast<int>(std::strtol(t, nullptr, 10))) << ">" << text << "<";
        ASSERT_EQ(b.value(), boolRule(t)) << ">" << text << "<";
        ASSERT_EQ(s.value(), text);
        ASSERT_EQ(s.strValue(), text);

        // Whole values: every token between blanks and commas on its own.
        mf.setValueByStr(0.0, t);
        md.setValueByStr(0.0, t);
        mi.setValueByStr(0.0, t);
        std::vector<std::string> whole = tokens(text, " \t\n\r,");
        ASSERT_EQ(md.size(), whole.size()) << ::testing::PrintToString(text);
        ASSERT_EQ(mf.size(), whole.size());
        ASSERT_EQ(mi.size(), whole.size());
        for (std::size_t k = 0; k < whole.size(); ++k) {
            double v = std::strtod(whole[k].c_str(), nullptr);
            ASSERT_TRUE(same(md.elem(int(k)), v)) << ">" << text << "< token " << whole[k];
            ASSERT_TRUE(same(mf.elem(int(k)), narrow(v))) << ">" << text << "< token " << whole[k];
            ASSERT_EQ(mi.elem(int(k)), static_cast<int>(std::strtol(whole[k].c_str(), nullptr, 10)))
                << ">" << text << "< token " << whole[k];
        }

        // Fragments: the semicolon separates too.
        md.clear();
        md.addValueByStr(t, Field::Multi);
        std::vector<std::string> fragment = tokens(text, " ,;\t\n\r");
        ASSERT_EQ(md.size(), fragment.size()) << ">" << text << "<";
        for (std::size_t k = 0; k < fragment.size(); ++k)
            ASSERT_TRUE(same(md.elem(int(k)), std::strtod(fragment[k].c_str(), nullptr)))
                << ">" << text << "< token " << fragment[k];
    }
}
