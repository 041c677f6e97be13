// Encoding algorithms: the one exception they throw, payload reading, the registry by URI.
#include "platform/xeltra/EncodedData.h"
#include "platform/xeltra/EncodingAlgorithm.h"
#include "platform/xeltra/EncodingAlgorithmException.h"
#include "platform/xeltra/EncodingAlgorithmRegistry.h"
#include "platform/tessil/Thread.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <istream>
#include <sstream>

using namespace Xeltra;

namespace {

// Decodes each octet into an int; an octet 0xFF is corrupt. Encoding is not supported.
class OctetAlgorithm : public EncodingAlgorithm {
public:
    EncodedData& decodeFromInputStream(unsigned int length, std::istream& in) override
    {
        std::vector<unsigned char> payload;
        readPayload(in, length, payload);
        std::vector<std::int32_t>& values = _data.makeIntArray();
        for (unsigned char octet : payload) {
            if (octet == 0xFF) {
                _data.clear();
                fail("Could not decompress stream");
            }
            values.push_back(octet);
        }
        return _data;
    }
    void encodeToOutputStream(bool, const EncodedData&, std::ostream&) override { fail("Not implemented"); }
    std::string_view uri() const override { return "urn:orvane:test:octets"; }

    // Exposed for the payload test.
    using EncodingAlgorithm::readPayload;

private:
    EncodedData _data;
};

// Registered while the test program loads, before main: the registry must already work then.
const bool registeredStatically = EncodingAlgorithmRegistry::the().addType<OctetAlgorithm>("urn:orvane:test:static");

} // namespace

TEST(EncodingAlgorithm, DecodesAndThrowsTheOneAllowedException)
{
    OctetAlgorithm algorithm;
    EncodedData& data = algorithm.decodeFromBytes(std::string_view("\x01\x02\x03", 3));
    EXPECT_EQ(data.kind(), EncodedData::INT_ARRAY);
    EXPECT_EQ(data.intArray(), (std::vector<std::int32_t>{1, 2, 3}));

    try {
        algorithm.decodeFromBytes(std::string_view("\x01\xFF", 2));
        FAIL() << "no exception";
    } catch (const std::exception& error) {  // catchable as a standard exception
        EXPECT_STREQ(error.what(), "Could not decompress stream");
        EXPECT_NE(dynamic_cast<const EncodingAlgorithmException*>(&error), nullptr);
    }
    // The byte form of encoding passes on what the stream form throws.
    EXPECT_THROW(algorithm.encodeToBytes(true, data), EncodingAlgorithmException);
}

TEST(EncodingAlgorithm, ReadPayloadStopsAtTheEndOfTheStream)
{
    // A length far beyond the data must not size the buffer.
    std::istringstream in(std::string(100000, 'z'));
    std::vector<unsigned char> buffer;
    EXPECT_EQ(OctetAlgorithm::readPayload(in, 4000000000u, buffer), 100000u);
    EXPECT_EQ(buffer.size(), 100000u);
    EXPECT_EQ(buffer.back(), 'z');

    std::istringstream exact("abcdef");
    EXPECT_EQ(OctetAlgorithm::readPayload(exact, 4, buffer), 4u);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "abcd");
    EXPECT_EQ(exact.get(), 'e');  // nothing beyond length is consumed
}

TEST(EncodingAlgorithmRegistry, RegistersFindsAndCreatesByURI)
{
    Orvane::Test::LogCapture log;
    EncodingAlgorithmRegistry& registry = EncodingAlgorithmRegistry::the();
    EXPECT_TRUE(registeredStatically);
    EXPECT_TRUE(registry.contains("urn:orvane:test:static"));

    const std::string uri = "urn:orvane:test:octets";
    ASSERT_TRUE(registry.addType<OctetAlgorithm>(uri));
    EXPECT_TRUE(registry.find(uri) != nullptr);
    std::unique_ptr<EncodingAlgorithm> algorithm = registry.create(uri);
    ASSERT_NE(algorithm, nullptr);
    EXPECT_EQ(algorithm->uri(), uri);

    EXPECT_FALSE(registry.addType<OctetAlgorithm>(uri));
    EXPECT_TRUE(log.containsFragment("is already registered"));
    int made = 0;
    EXPECT_TRUE(registry.add(uri, [&made] { ++made; return std::make_unique<OctetAlgorithm>(); }, true));
    registry.create(uri);
    EXPECT_EQ(made, 1);
    EXPECT_FALSE(registry.add("", [] { return std::make_unique<OctetAlgorithm>(); }));
    EXPECT_FALSE(registry.add("urn:orvane:test:null", nullptr));

    std::vector<std::string> uris = registry.uris();
    EXPECT_TRUE(std::is_sorted(uris.begin(), uris.end()));
    EXPECT_NE(std::find(uris.begin(), uris.end(), uri), uris.end());

    EXPECT_EQ(registry.create("urn:orvane:test:unknown"), nullptr);
    EXPECT_FALSE(registry.find("urn:orvane:test:unknown"));
    EXPECT_TRUE(registry.remove(uri));
    EXPECT_FALSE(registry.remove(uri));
    EXPECT_EQ(registry.create(uri), nullptr);
}

TEST(EncodingAlgorithmRegistry, AcceptsRegistrationsFromSeveralThreads)
{
    EncodingAlgorithmRegistry& registry = EncodingAlgorithmRegistry::the();
    auto uri = [](int t, int i) { return "urn:orvane:test:thread:" + std::to_string(t) + ":" + std::to_string(i); };
    Tessil::Thread threads[4];
    for (int t = 0; t < 4; ++t)
        threads[t].start([&registry, &uri, t] {
            for (int i = 0; i < 50; ++i) {
                registry.addType<OctetAlgorithm>(uri(t, i));
                registry.create(uri(t, i));
            }
        });
    for (auto& thread : threads)
        thread.join();
    for (int t = 0; t < 4; ++t)
        for (int i = 0; i < 50; ++i)
            EXPECT_TRUE(registry.remove(uri(t, i)));
}
