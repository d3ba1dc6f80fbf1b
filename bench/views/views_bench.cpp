// The report view with 1,000,000 items of six columns: adding and showing
// them, sorting by a double, a text and a CNyrTime column (ascending from
// insertion order, then descending from ascending; the numeric columns by
// their items' sort keys, and once more by the comparison alone), and the
// first paint of a view of 1,000 and of 1,000,000 items. The same sorts run
// through Qt's QSortFilterProxyModel over a plain QAbstractTableModel holding
// the same values (double, QString, QDateTime), in the same process.
#include <benchmark/benchmark.h>

#include <QAbstractTableModel>
#include <QApplication>
#include <QDateTime>
#include <QSortFilterProxyModel>
#include <memory>

#include "bench/qt_bench_p.h"
#include "bench/views/bench_items_p.h"

using nyr::bench::BenchItem;
using nyr::bench::Row;
using nyr::bench::Seconds;
using SortKey = CNyrReportView::SORT_STATE_REALCOL;

namespace {

constexpr int kRows = 1000000;

const std::vector<Row>& Rows()
{
    static const std::vector<Row> rows = nyr::bench::MakeRows(kRows);
    return rows;
}

// The view every sort benchmark shares, filled once.
CNyrReportView& SharedView()
{
    static CNyrReportView* view = [] {
        auto* v = new CNyrReportView;
        nyr::bench::AddColumns(*v);
        for (const Row& r : Rows())
            v->AddRealItem(new BenchItem(r));
        v->DisplayRealItems(0);
        return v;
    }();
    return *view;
}

// The plain Qt table: the same values as a Qt application would hold them.
class PlainTableModel : public QAbstractTableModel
{
public:
    explicit PlainTableModel(const std::vector<Row>& rows)
    {
        m_id.reserve(static_cast<qsizetype>(rows.size()));
        for (const Row& r : rows) {
            m_id.append(r.id);
            m_value.append(r.value);
            m_text.append(QString::fromStdString(r.text));
            m_time.append(QDateTime::fromSecsSinceEpoch(r.seconds));
            m_value2.append(r.value2);
            m_text2.append(QString::fromStdString(r.text2));
        }
    }
    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_id.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 6; }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role != Qt::DisplayRole || !index.isValid())
            return {};
        const int r = index.row();
        switch (index.column()) {
        case 0: return m_id[r];
        case 1: return m_value[r];
        case 2: return m_text[r];
        case 3: return m_time[r];
        case 4: return m_value2[r];
        default: return m_text2[r];
        }
    }

private:
    QList<int> m_id;
    QList<double> m_value;
    QList<QString> m_text;
    QList<QDateTime> m_time;
    QList<double> m_value2;
    QList<QString> m_text2;
};

QSortFilterProxyModel& SharedProxy()
{
    static QSortFilterProxyModel* proxy = [] {
        auto* model = new PlainTableModel(Rows());
        auto* p = new QSortFilterProxyModel;
        p->setSourceModel(model);
        p->setDynamicSortFilter(false);
        return p;
    }();
    return *proxy;
}

// Ascending from insertion order.
void BM_ReportViewSort_1M(benchmark::State& state)
{
    CNyrReportView& view = SharedView();
    const auto col = static_cast<unsigned int>(state.range(0));
    for (auto _ : state) {
        view.SortList(std::vector<SortKey>{});
        state.SetIterationTime(Seconds([&] { view.SortList(std::vector<SortKey>{{col, 1}}); }));
    }
}

// Descending from ascending.
void BM_ReportViewSortDescending_1M(benchmark::State& state)
{
    CNyrReportView& view = SharedView();
    const auto col = static_cast<unsigned int>(state.range(0));
    for (auto _ : state) {
        view.SortList(std::vector<SortKey>{{col, 1}});
        state.SetIterationTime(Seconds([&] { view.SortList(std::vector<SortKey>{{col, 0}}); }));
    }
}

// The same through the items' comparison alone: items that offer no keys.
void BM_ReportViewSortByComparison_1M(benchmark::State& state)
{
    const bool keys = BenchItem::offerKeys;
    BenchItem::offerKeys = false;
    BM_ReportViewSort_1M(state);
    BenchItem::offerKeys = keys;
}

void BM_QtProxySort_1M(benchmark::State& state)
{
    QSortFilterProxyModel& proxy = SharedProxy();
    const int col = static_cast<int>(state.range(0));
    for (auto _ : state) {
        proxy.sort(-1);
        state.SetIterationTime(Seconds([&] { proxy.sort(col, Qt::AscendingOrder); }));
    }
}

void BM_QtProxySortDescending_1M(benchmark::State& state)
{
    QSortFilterProxyModel& proxy = SharedProxy();
    const int col = static_cast<int>(state.range(0));
    for (auto _ : state) {
        proxy.sort(col, Qt::AscendingOrder);
        state.SetIterationTime(Seconds([&] { proxy.sort(col, Qt::DescendingOrder); }));
    }
}

// The item objects for all rows, made outside the timed part.
std::vector<BenchItem*> NewItems()
{
    std::vector<BenchItem*> items;
    items.reserve(Rows().size());
    for (const Row& r : Rows())
        items.push_back(new BenchItem(r));
    return items;
}

// Adding the items to the model and showing them (creating the item objects
// is the application's work and not timed).
void BM_AddAndDisplay_1M(benchmark::State& state)
{
    for (auto _ : state) {
        const std::vector<BenchItem*> items = NewItems();
        auto view = std::make_unique<CNyrReportView>();
        nyr::bench::AddColumns(*view);
        state.SetIterationTime(Seconds([&] {
            for (BenchItem* item : items)
                view->AddRealItem(item);
            view->DisplayRealItems(0);
        }));
    }
}

// Appending item by item, each shown at once.
void BM_AppendDisplayed_1M(benchmark::State& state)
{
    for (auto _ : state) {
        const std::vector<BenchItem*> items = NewItems();
        auto view = std::make_unique<CNyrReportView>();
        nyr::bench::AddColumns(*view);
        view->DisplayRealItems(0);
        state.SetIterationTime(Seconds([&] {
            for (BenchItem* item : items)
                view->AppendRealItem(item, 1);
        }));
    }
}

// The first paint of a new view of N items, 800 x 600 pixels.
void BM_FirstPaint(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        auto view = std::make_unique<CNyrReportView>();
        nyr::bench::AddColumns(*view);
        for (std::size_t i = 0; i < n; ++i)
            view->AddRealItem(new BenchItem(Rows()[i]));
        view->DisplayRealItems(0);
        view->resize(800, 600);
        state.SetIterationTime(Seconds([&] { benchmark::DoNotOptimize(view->grab()); }));
    }
}

BENCHMARK(BM_ReportViewSort_1M)->Arg(nyr::bench::kColValue)->Arg(nyr::bench::kColText)->Arg(nyr::bench::kColTime)
    ->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ReportViewSortDescending_1M)->Arg(nyr::bench::kColValue)->Arg(nyr::bench::kColText)
    ->Arg(nyr::bench::kColTime)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ReportViewSortByComparison_1M)
    ->Arg(nyr::bench::kColValue)
    ->Arg(nyr::bench::kColTime)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
BENCHMARK(BM_QtProxySort_1M)->Arg(nyr::bench::kColValue)->Arg(nyr::bench::kColText)->Arg(nyr::bench::kColTime)
    ->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_QtProxySortDescending_1M)->Arg(nyr::bench::kColValue)->Arg(nyr::bench::kColText)
    ->Arg(nyr::bench::kColTime)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_AddAndDisplay_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_AppendDisplayed_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_FirstPaint)->Arg(1000)->Arg(kRows)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

int main(int argc, char** argv)
{
    return nyr::bench::RunQtBenchmarks(argc, argv);
}
