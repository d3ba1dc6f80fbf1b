#include "nyr/app/instance_message.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace {

constexpr std::string_view kMagic = "NYRI";

void PutU32(std::string& out, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        out += static_cast<char>((value >> (8 * i)) & 0xFF);
}

// The 32-bit value at `at`; false when the bytes end before it.
bool GetU32(std::string_view bytes, std::size_t at, std::uint32_t& value)
{
    if (bytes.size() < at + 4)
        return false;
    value = 0;
    for (int i = 0; i < 4; ++i)
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return true;
}

}  // namespace

std::string NyrEncodeInstanceMessage(const CNyrInstanceMessage& message)
{
    if (message.arguments.size() + 1 > kNyrInstanceMessageMaxFields)
        return {};
    std::string out(kMagic);
    PutU32(out, static_cast<std::uint32_t>(message.arguments.size() + 1));
    const auto put = [&out](const std::string& field) {
        if (out.size() + 4 + field.size() > kNyrInstanceMessageMaxBytes)
            return false;
        PutU32(out, static_cast<std::uint32_t>(field.size()));
        out += field;
        return true;
    };
    if (!put(message.workingDirectory))
        return {};
    for (const std::string& argument : message.arguments)
        if (!put(argument))
            return {};
    return out;
}

int NyrDecodeInstanceMessage(std::string_view bytes, CNyrInstanceMessage& message, std::size_t* used)
{
    const std::size_t magic = std::min(bytes.size(), kMagic.size());
    if (bytes.substr(0, magic) != kMagic.substr(0, magic))
        return -1;
    std::uint32_t count = 0;
    if (!GetU32(bytes, 4, count))
        return 0;
    if (count == 0 || count > kNyrInstanceMessageMaxFields)
        return -1;
    std::vector<std::string> fields;
    std::size_t at = 8;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t length = 0;
        if (!GetU32(bytes, at, length))
            return 0;
        if (at + 4 + std::size_t{length} > kNyrInstanceMessageMaxBytes)
            return -1;
        if (bytes.size() < at + 4 + length)
            return 0;
        fields.emplace_back(bytes.substr(at + 4, length));
        at += 4 + length;
    }
    message.workingDirectory = std::move(fields.front());
    message.arguments.assign(std::make_move_iterator(fields.begin() + 1), std::make_move_iterator(fields.end()));
    if (used)
        *used = at;
    return 1;
}
