// Composing a MIME message with a large attachment, and sending messages of
// 10 KB over one SMTP connection. The attachment path and the sink's port
// come from the environment (bench/mail/suite.py sets them):
//   NYR_BENCH_ATTACHMENT   a file of 64 MiB
//   NYR_BENCH_SMTP_PORT    an SMTP sink on 127.0.0.1
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/mail/smtp.h"

namespace {

void BM_Compose_64MiBAttachment(benchmark::State& state)
{
    const char* path = std::getenv("NYR_BENCH_ATTACHMENT");
    if (!path) {
        state.SkipWithError("NYR_BENCH_ATTACHMENT is not set");
        return;
    }
    for (auto _ : state) {
        CNyrMailMessageMimeContainer m;
        m.From("Ann Surveyor <ann@example.org>");
        m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
        m.Subject("Scan data");
        m.AddMimePart(new CNyrMailMessageMimePartText("The scan is attached.\r\n"));
        m.AddMimePart(new CNyrMailMessageMimePartBinary(path));
        const std::string header = m.Header();
        const std::string body = m.Body();
        benchmark::DoNotOptimize(header.size() + body.size());
    }
}
BENCHMARK(BM_Compose_64MiBAttachment)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_Send_1000Messages_10KB(benchmark::State& state)
{
    const char* port = std::getenv("NYR_BENCH_SMTP_PORT");
    if (!port) {
        state.SkipWithError("NYR_BENCH_SMTP_PORT is not set");
        return;
    }
    CNyrMailMessage m;
    m.From("Ann Surveyor <ann@example.org>");
    m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    m.Subject("Observation log");
    std::string body;
    while (body.size() < 10 * 1024)
        body += "P" + std::to_string(body.size()) + ",4500123.456,512345.678,123.456,2.345\r\n";
    m.Body(body.c_str());
    for (auto _ : state) {
        CNyrSmtp smtp("127.0.0.1", static_cast<unsigned>(std::atoi(port)));
        if (!smtp.Connect()) {
            state.SkipWithError(smtp.GetLastError().c_str());
            return;
        }
        for (int i = 0; i < 1000; ++i) {
            if (!smtp.SendMailMessage(&m)) {
                state.SkipWithError(smtp.GetLastError().c_str());
                return;
            }
        }
        smtp.Disconnect();
    }
}
BENCHMARK(BM_Send_1000Messages_10KB)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
