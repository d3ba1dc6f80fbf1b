// Peak memory that printing adds, by the number of rows:
//   bench_print_memory ours|theirs N
// builds a report view of N items (six columns) and prints one page, resets
// the peak (VmHWM) to the memory in use (VmRSS), prints all rows to a PDF
// file (the library's printout, or QTextDocument's HTML table) and reads the
// peak again. Prints "in-use peak pages" (kB, kB, count). The library draws
// pages one at a time, so its difference should not grow with N.
#include <QApplication>
#include <cstdio>
#include <cstring>

#include "bench/print/print_bench_p.h"

namespace {

// A field of /proc/self/status in kB, -1 when it cannot be read.
long StatusKilobytes(const char* field)
{
    FILE* f = std::fopen("/proc/self/status", "r");
    if (!f)
        return -1;
    char line[256];
    long kb = -1;
    const std::size_t length = std::strlen(field);
    while (std::fgets(line, sizeof line, f)) {
        if (std::strncmp(line, field, length) == 0)
            kb = std::atol(line + length);
    }
    std::fclose(f);
    return kb;
}

// Makes VmHWM start again from VmRSS (Linux 4.0 and later).
bool ResetPeak()
{
    FILE* f = std::fopen("/proc/self/clear_refs", "w");
    if (!f)
        return false;
    const bool ok = std::fputs("5", f) >= 0;
    return std::fclose(f) == 0 && ok;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3 || (std::strcmp(argv[1], "ours") != 0 && std::strcmp(argv[1], "theirs") != 0)) {
        std::fprintf(stderr, "usage: %s ours|theirs N\n", argv[0]);
        return 2;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    const bool ours = std::strcmp(argv[1], "ours") == 0;
    const std::unique_ptr<CNyrReportView> view = nyr::bench::MakeView(std::atoi(argv[2]));

    // One page first, so that fonts and the PDF engine are loaded before the
    // peak is reset: the view's selection is empty.
    const std::string file = std::string(P_tmpdir) + "/nyr_bench_print_memory.pdf";
    QPrinter printer(QPrinter::HighResolution);
    nyr::bench::SetUpPrinter(printer, file);
    CNyrListViewPrint::PRINT_INFO info;
    info.list = view.get();
    info.printWhat = CNyrListViewPrint::PrintSelected;
    NyrPrintListView(info, printer);
    if (!ResetPeak()) {
        std::fprintf(stderr, "cannot reset the peak memory\n");
        return 1;
    }
    const long inUse = StatusKilobytes("VmRSS:");
    const int pages = ours ? nyr::bench::PrintOurs(*view, printer) : nyr::bench::PrintTheirs(*view, printer);
    const long peak = StatusKilobytes("VmHWM:");
    std::remove(file.c_str());
    std::printf("%ld %ld %d\n", inUse, peak, pages);
    return pages > 0 ? 0 : 1;
}
