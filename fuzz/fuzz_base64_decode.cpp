// The Base64 decoder on arbitrary text in a buffer of exactly its size (so
// AddressSanitizer sees any access past the terminating zero), and the
// encoder's output read back for line lengths that hold whole groups.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "nyr/util/base64.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    auto text = std::make_unique<unsigned char[]>(size + 1);
    std::memcpy(text.get(), data, size);
    text[size] = 0;
    const unsigned long n = NyrDecodeBase64(text.get());
    if (n > size || text[n] != 0)
        abort();

    for (const unsigned line : {0u, 4u, 76u}) {
        std::string encoded = NyrEncodeBase64(data, size, line);
        if (encoded.size() % 4 != 0)
            abort();
        const unsigned long decoded = NyrDecodeBase64(reinterpret_cast<unsigned char*>(encoded.data()));
        if (decoded != size || std::memcmp(encoded.data(), data, size) != 0)
            abort();
    }
    return 0;
}
