// The settings store on a file of 100 sections x 100 integer entries (about
// 0.9 MB; Python's configparser runs the same work in suite.py), and Base64
// on 64 MiB of random bytes against OpenSSL's EVP_EncodeBlock and
// EVP_DecodeBlock.
#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "nyr/util/base64.h"
#include "nyr/util/profile_entries.h"

namespace {

// ---- settings store ---------------------------------------------------------

// The same names as suite.py writes for configparser.
std::string SectionName(int s)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "Report %03d", s);
    return buffer;
}

std::string EntryName(int e)
{
    char buffer[96];
    std::snprintf(buffer, sizeof buffer, "Column %03d Width Of The Adjusted Observations Table In The Report (###)",
                  e);
    return buffer;
}

struct SettingsFile
{
    std::string folder;
    std::string path;
    std::vector<std::pair<std::string, std::string>> keys;  // random (section, entry) pairs

    SettingsFile()
    {
        char pattern[] = "/tmp/nyr-bench-XXXXXX";
        folder = mkdtemp(pattern);
        path = folder + "/bench.ini";
        std::mt19937 rng(42);
        std::ofstream out(path);
        for (int s = 0; s < 100; ++s) {
            out << "[" << SectionName(s) << "]\n";
            for (int e = 0; e < 100; ++e)
                out << EntryName(e) << "=" << static_cast<int>(rng() % 2000001) - 1000000 << "\n";
            out << "\n";
        }
        out.close();
        for (int i = 0; i < 10000; ++i)
            keys.emplace_back(SectionName(static_cast<int>(rng() % 100)), EntryName(static_cast<int>(rng() % 100)));
    }
    ~SettingsFile() { std::filesystem::remove_all(folder); }
};

SettingsFile& Settings()
{
    static SettingsFile file;
    return file;
}

void BM_ProfileReadInt_10000Random_100x100(benchmark::State& state)
{
    SettingsFile& f = Settings();
    CNyrProfileEntries::ReadProfileInt(f.path, "x", "y", 0);  // parsed once, as configparser's read
    for (auto _ : state) {
        long sum = 0;
        for (const auto& [section, entry] : f.keys)
            sum += static_cast<int>(CNyrProfileEntries::ReadProfileInt(f.path, section, entry, 0));
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_ProfileReadInt_10000Random_100x100)->Unit(benchmark::kMillisecond);

void BM_ProfileWriteInt_1000Random_100x100(benchmark::State& state)
{
    SettingsFile& f = Settings();
    static int round = 0;  // new values every run: a write that changes nothing skips the file
    for (auto _ : state) {
        ++round;
        for (int i = 0; i < 1000; ++i) {
            const auto& [section, entry] = f.keys[static_cast<size_t>(i)];
            if (!CNyrProfileEntries::WriteProfileInt(f.path, section, entry, round * 1000 + i))
                state.SkipWithError("write failed");
        }
    }
}
BENCHMARK(BM_ProfileWriteInt_1000Random_100x100)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_ProfileColdParse_100x100(benchmark::State& state)
{
    SettingsFile& f = Settings();
    std::ifstream in(f.path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    int round = 0;
    std::string previous;
    for (auto _ : state) {
        // The cache knows a file by device and inode, so a link to it would
        // be a file read already: every round reads a fresh copy.
        state.PauseTiming();
        const std::string copy = f.folder + "/copy" + std::to_string(round++);
        std::ofstream(copy, std::ios::binary) << text;
        if (!previous.empty())
            unlink(previous.c_str());  // after the copy, so its inode is not the one just freed
        previous = copy;
        state.ResumeTiming();
        benchmark::DoNotOptimize(CNyrProfileEntries::ReadProfileInt(copy, "Report 050", "x", 0));
    }
}
BENCHMARK(BM_ProfileColdParse_100x100)->Unit(benchmark::kMillisecond);

// ---- Base64 -------------------------------------------------------------------

constexpr size_t kBytes = size_t{64} << 20;

const std::string& RandomData()
{
    static const std::string data = [] {
        std::string d(kBytes, '\0');
        std::mt19937_64 rng(7);
        for (size_t i = 0; i + 8 <= d.size(); i += 8) {
            const uint64_t v = rng();
            std::memcpy(&d[i], &v, 8);
        }
        return d;
    }();
    return data;
}

const unsigned char* Bytes(const std::string& s) { return reinterpret_cast<const unsigned char*>(s.data()); }

void BM_NyrEncodeBase64_64MiB(benchmark::State& state)
{
    const std::string& data = RandomData();
    const auto line = static_cast<unsigned>(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(NyrEncodeBase64(Bytes(data), data.size(), line));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
}
BENCHMARK(BM_NyrEncodeBase64_64MiB)->Arg(0)->Arg(76)->Unit(benchmark::kMillisecond);

// OpenSSL's block encoder has no line breaks: lines of 76 characters are
// 57-byte blocks each followed by CR LF, written into one buffer.
void BM_OpenSSLEncodeBlock_64MiB(benchmark::State& state)
{
    const std::string& data = RandomData();
    const bool lines = state.range(0) != 0;
    for (auto _ : state) {
        const size_t size = lines ? (data.size() / 57 + 1) * 78 + 1 : (data.size() + 2) / 3 * 4 + 1;
        std::unique_ptr<unsigned char[]> out(new unsigned char[size]);
        if (!lines) {
            EVP_EncodeBlock(out.get(), Bytes(data), static_cast<int>(data.size()));
        } else {
            unsigned char* dst = out.get();
            for (size_t at = 0; at < data.size(); at += 57) {
                dst += EVP_EncodeBlock(dst, Bytes(data) + at, static_cast<int>(std::min<size_t>(57, data.size() - at)));
                *dst++ = '\r';
                *dst++ = '\n';
            }
        }
        benchmark::DoNotOptimize(out.get());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
}
BENCHMARK(BM_OpenSSLEncodeBlock_64MiB)->Arg(0)->Arg(76)->Unit(benchmark::kMillisecond);

// Our decoder works in place, so each run gets a fresh copy of the text
// (outside the timing); OpenSSL writes into a separate buffer.
void BM_NyrDecodeBase64_64MiB(benchmark::State& state)
{
    const std::string& data = RandomData();
    const std::string text = NyrEncodeBase64(Bytes(data), data.size(), static_cast<unsigned>(state.range(0)));
    std::string work;
    for (auto _ : state) {
        state.PauseTiming();
        work = text;
        state.ResumeTiming();
        if (NyrDecodeBase64(reinterpret_cast<unsigned char*>(work.data())) != data.size())
            state.SkipWithError("decoded size differs");
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
}
BENCHMARK(BM_NyrDecodeBase64_64MiB)->Arg(0)->Arg(76)->Unit(benchmark::kMillisecond);

// EVP_DecodeBlock takes one block without line breaks: the 76 text is
// decoded line by line.
void BM_OpenSSLDecodeBlock_64MiB(benchmark::State& state)
{
    const std::string& data = RandomData();
    const bool lines = state.range(0) != 0;
    std::string text((data.size() + 2) / 3 * 4 + 1, '\0');
    const int n = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), Bytes(data), static_cast<int>(data.size()));
    text.resize(static_cast<size_t>(n));
    if (lines) {
        std::string broken;
        for (size_t at = 0; at < text.size(); at += 76)
            broken.append(text, at, 76).append("\r\n");
        text = std::move(broken);
    }
    for (auto _ : state) {
        std::unique_ptr<unsigned char[]> out(new unsigned char[data.size() + 3]);
        long total = 0;
        if (!lines) {
            total = EVP_DecodeBlock(out.get(), Bytes(text), static_cast<int>(text.size()));
        } else {
            for (size_t at = 0; at < text.size(); at += 78) {
                const size_t len = std::min<size_t>(76, text.size() - at - 2);
                total += EVP_DecodeBlock(out.get() + total, Bytes(text) + at, static_cast<int>(len));
            }
        }
        if (total < static_cast<long>(data.size()))
            state.SkipWithError("OpenSSL decoded too little");
        benchmark::DoNotOptimize(out.get());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
}
BENCHMARK(BM_OpenSSLDecodeBlock_64MiB)->Arg(0)->Arg(76)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
