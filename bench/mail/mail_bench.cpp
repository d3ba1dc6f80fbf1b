// Composing a MIME message with a large attachment, and sending messages of
// 10 KB over one SMTP connection. The attachment path and the sink's port
// come from the environment (bench/mail/suite.py sets them):
//   NYR_BENCH_ATTACHMENT   a file of 64 MiB
//   NYR_BENCH_SMTP_PORT    an SMTP sink on 127.0.0.1
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/mail/smtp.h"

namespace {

// The message Python's email package builds in python_mail.py, with the
// attachment in standard Base64 (as Python writes it) or the library's own form.
void Compose(benchmark::State& state, int standardBase64)
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
        auto* attachment = new CNyrMailMessageMimePartBinary(path);
        attachment->StandardBase64(standardBase64);
        m.AddMimePart(attachment);
        const std::string header = m.Header();
        const std::string body = m.Body();
        benchmark::DoNotOptimize(header.size() + body.size());
    }
}

void BM_Compose_64MiBAttachment(benchmark::State& state)
{
    Compose(state, 1);
}
BENCHMARK(BM_Compose_64MiBAttachment)->Unit(benchmark::kMillisecond);

void BM_Compose_64MiBAttachment_LibraryBase64(benchmark::State& state)
{
    Compose(state, 0);
}
BENCHMARK(BM_Compose_64MiBAttachment_LibraryBase64)->Unit(benchmark::kMillisecond);

// 1,000 messages of 10 KB over one connection to the sink on
// NYR_BENCH_SMTP_PORT: the plain dialogue, one message after the other, or
// pipelined with all messages in one call.
void Send(benchmark::State& state, bool pipelined)
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
    const std::vector<CNyrMailMessage*> messages(1000, &m);
    for (auto _ : state) {
        CNyrSmtp smtp("127.0.0.1", static_cast<unsigned>(std::atoi(port)));
        smtp.Pipelining(pipelined ? 1 : 0);
        if (!smtp.Connect()) {
            state.SkipWithError(smtp.GetLastError().c_str());
            return;
        }
        const unsigned sent = pipelined ? smtp.SendMailMessages(messages) : [&] {
            unsigned n = 0;
            for (auto* message : messages)
                n += smtp.SendMailMessage(message);
            return n;
        }();
        if (sent != messages.size()) {
            state.SkipWithError(smtp.GetLastError().c_str());
            return;
        }
        smtp.Disconnect();
    }
}

void BM_Send_1000Messages_10KB(benchmark::State& state)
{
    Send(state, false);
}
BENCHMARK(BM_Send_1000Messages_10KB)->Unit(benchmark::kMillisecond);

void BM_SendPipelined_1000Messages_10KB(benchmark::State& state)
{
    Send(state, true);
}
BENCHMARK(BM_SendPipelined_1000Messages_10KB)->Unit(benchmark::kMillisecond);

// The floor under any client of this dialogue: the same commands and data
// over a plain blocking socket, nothing composed, nothing checked beyond the
// one receive per reply. What is left is the round trips to the sink.
void BM_DialogueFloor_1000Messages_10KB(benchmark::State& state)
{
    const char* port = std::getenv("NYR_BENCH_SMTP_PORT");
    if (!port) {
        state.SkipWithError("NYR_BENCH_SMTP_PORT is not set");
        return;
    }
    std::string data = "From: \"Ann Surveyor\" <ann@example.org>\r\nSubject: Observation log\r\n\r\n";
    while (data.size() < 10 * 1024)
        data += "P" + std::to_string(data.size()) + ",4500123.456,512345.678,123.456,2.345\r\n";
    data += "\r\n.\r\n";
    for (auto _ : state) {
        const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(std::atoi(port)));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const int one = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        char reply[1024];
        auto command = [&](const std::string& text) {
            send(fd, text.data(), text.size(), MSG_NOSIGNAL);
            return recv(fd, reply, sizeof reply, 0) > 0;
        };
        bool ok = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                  recv(fd, reply, sizeof reply, 0) > 0 && command("HELO bench\r\n");
        for (int i = 0; ok && i < 1000; ++i)
            ok = command("MAIL From: <ann@example.org>\r\n") && command("RCPT TO: <bob@example.org>\r\n") &&
                 command("DATA\r\n") && command(data);
        ok = ok && command("QUIT\r\n");
        close(fd);
        if (!ok) {
            state.SkipWithError("the sink did not answer");
            return;
        }
    }
}
BENCHMARK(BM_DialogueFloor_1000Messages_10KB)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
