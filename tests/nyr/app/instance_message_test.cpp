#include "nyr/app/instance_message.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

TEST(InstanceMessage, RoundTripsAndReadsBackFromEveryPrefix)
{
    const CNyrInstanceMessage cases[] = {
        {"/home/ann", {}},
        {"", {""}},
        {"/tmp", {"--open", "plan.nyr", "Gr\xc3\xbc\xc3\x9f" "e mit Leerzeichen.txt", std::string("nul\0byte", 8)}},
        {"/w", std::vector<std::string>(4095, "x")},  // the most fields allowed
    };
    for (const CNyrInstanceMessage& in : cases) {
        const std::string wire = NyrEncodeInstanceMessage(in);
        ASSERT_FALSE(wire.empty());
        CNyrInstanceMessage out;
        std::size_t used = 0;
        // Bytes arrive in any split: every proper prefix asks for more.
        for (std::size_t n = 0; n < wire.size(); n += 1 + n / 64)
            ASSERT_EQ(NyrDecodeInstanceMessage(std::string_view(wire).substr(0, n), out), 0) << n;
        ASSERT_EQ(NyrDecodeInstanceMessage(wire + "trailing", out, &used), 1);
        EXPECT_EQ(used, wire.size());
        EXPECT_EQ(out.workingDirectory, in.workingDirectory);
        EXPECT_EQ(out.arguments, in.arguments);
    }
}

TEST(InstanceMessage, RefusesWhatPassesALimitOrIsNotAMessage)
{
    EXPECT_EQ(NyrEncodeInstanceMessage({"/w", std::vector<std::string>(4096, "x")}), "");
    EXPECT_EQ(NyrEncodeInstanceMessage({"/w", {std::string(kNyrInstanceMessageMaxBytes, 'x')}}), "");

    CNyrInstanceMessage out;
    const struct
    {
        std::string bytes;
        int result;
    } cases[] = {
        {"GET / HTTP/1.1\r\n", -1},
        {"NYRX", -1},
        {std::string("NYRI\0\0\0\0", 8), -1},                  // no fields at all
        {std::string("NYRI\x01\x10\0\0", 8), -1},              // 4097 fields
        {std::string("NYRI\x01\0\0\0\xff\xff\xff\x7f", 12), -1},  // a 2 GiB field
        {std::string("NYRI\x01\0\0\0\x00\x00\x10\x00", 12), -1},  // 1 MiB field: with its header, too much
        {std::string("NYRI\x01\0\0\0\x05\0\0\0ab", 14), 0},    // still arriving
    };
    for (const auto& c : cases)
        EXPECT_EQ(NyrDecodeInstanceMessage(c.bytes, out), c.result) << c.bytes;

    // Random damage to a real message never reads outside it.
    std::mt19937 random(21);
    const std::string wire = NyrEncodeInstanceMessage({"/home/ann", {"a", "bb", "ccc"}});
    for (int round = 0; round < 2000; ++round) {
        std::string damaged = wire;
        damaged[random() % damaged.size()] = static_cast<char>(random());
        const int result = NyrDecodeInstanceMessage(damaged, out);
        EXPECT_TRUE(result >= -1 && result <= 1);
    }
}

}  // namespace
