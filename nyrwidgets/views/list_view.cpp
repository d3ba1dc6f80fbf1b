#include "nyrwidgets/views/list_view.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <algorithm>
#include <cstring>
#include <numeric>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/views/header_ctrl_sort.h"
#include "nyrwidgets/views/list_view_p.h"
#include "nyrwidgets/views/list_view_save_as_dlg_cv.h"
#include "nyrwidgets/views/sample_sort_p.h"
#include "nyrwidgets/views/view_print_p.h"

namespace {

bool RowInRange(int row, int count)
{
    return row >= 0 && row < count;
}

}  // namespace

struct CNyrListView::Private
{
    CNyrListCtrlModel* plain = nullptr;  // the model when the view is a plain list, else null
    CNyrHeaderCtrlSort* header = nullptr;
    std::vector<SORT_STATE_SCREENCOL> sortState;  // screen form of the state shown by the header marks
    std::vector<QIcon> images;
    std::string inifileSection;  // empty: the class name
    std::string printTitle;      // empty: the window's title
    bool checkBoxes = false;
    bool suppressSelect = false;
    bool suppressCheck = false;
    // The one saved copy of the switches; valid while hasSaved.
    bool hasSaved = false;
    bool savedSelect = false;
    bool savedCheck = false;
    std::unique_ptr<CNyrListViewFind> find;  // created on first use
};

CNyrListView::CNyrListView(QWidget* parent) : QTableView(parent), d(new Private)
{
    d->plain = new CNyrListCtrlModel(this);
    d->plain->setParent(this);
    Init(d->plain);
}

CNyrListView::CNyrListView(QWidget* parent, QAbstractItemModel* model) : QTableView(parent), d(new Private)
{
    Init(model);
}

CNyrListView::~CNyrListView()
{
    // The finder stores the open dialog's options; the view must still be whole.
    d->find.reset();
}

void CNyrListView::Init(QAbstractItemModel* model)
{
    d->header = new CNyrHeaderCtrlSort(this);
    setHorizontalHeader(d->header);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setSortingEnabled(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    // Rows of one fixed height: the view never measures rows one by one.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    d->header->setStretchLastSection(false);
    if (model)
        setModel(model);
    connect(d->header, &QHeaderView::sectionClicked, this, [this](int section) { OnHeaderClick(section); });
}

int CNyrListView::GetItemCount() const
{
    return d->plain ? static_cast<int>(d->plain->rows.size()) : 0;
}

int CNyrListView::GetColumnCount() const
{
    return d->plain ? static_cast<int>(d->plain->columns.size()) : 0;
}

std::string CNyrListView::GetItemText(int screenItem, int screenCol) const
{
    if (!d->plain || !RowInRange(screenItem, GetItemCount()) || !RowInRange(screenCol, GetColumnCount()))
        return {};
    return d->plain->Text(screenItem, screenCol);
}

std::string CNyrListView::GetColumnLabel(int screenCol) const
{
    if (!d->plain || !RowInRange(screenCol, GetColumnCount()))
        return {};
    return d->plain->columns[static_cast<std::size_t>(screenCol)].label;
}

int CNyrListView::GetColumnOrder(int screenCol) const
{
    if (!RowInRange(screenCol, model()->columnCount()))
        return -1;
    return d->header->visualIndex(screenCol);
}

unsigned int CNyrListView::GetItemState(int screenItem, unsigned int mask) const
{
    if (!RowInRange(screenItem, model()->rowCount()))
        return 0;
    unsigned int state = 0;
    const QModelIndex i = model()->index(screenItem, 0);
    if (selectionModel()->isSelected(i))
        state |= LVIS_SELECTED;
    if (currentIndex().isValid() && currentIndex().row() == screenItem)
        state |= LVIS_FOCUSED;
    return state & mask;
}

int CNyrListView::SetItemState(int screenItem, unsigned int state, unsigned int mask)
{
    if (!RowInRange(screenItem, model()->rowCount()))
        return 0;
    const QModelIndex i = model()->index(screenItem, 0);
    if (mask & LVIS_SELECTED) {
        selectionModel()->select(i, ((state & LVIS_SELECTED) ? QItemSelectionModel::Select
                                                             : QItemSelectionModel::Deselect) |
                                        QItemSelectionModel::Rows);
    }
    if (mask & LVIS_FOCUSED) {
        if (state & LVIS_FOCUSED)
            selectionModel()->setCurrentIndex(i, QItemSelectionModel::NoUpdate);
        else if (currentIndex().row() == screenItem)
            selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
    }
    return 1;
}

int CNyrListView::GetCheck(int screenItem) const
{
    if (!d->plain || !RowInRange(screenItem, GetItemCount()))
        return 0;
    return d->plain->rows[static_cast<std::size_t>(screenItem)].checked ? 1 : 0;
}

int CNyrListView::SetCheck(int screenItem, int check)
{
    if (!d->plain || !RowInRange(screenItem, GetItemCount()))
        return 0;
    d->plain->setData(d->plain->index(screenItem, 0), check ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
    return 1;
}

int CNyrListView::GetFocusedItem() const
{
    const QModelIndex i = currentIndex();
    return i.isValid() ? i.row() : -1;
}

void CNyrListView::EnsureVisible(int screenItem)
{
    if (RowInRange(screenItem, model()->rowCount()))
        scrollTo(model()->index(screenItem, horizontalHeader()->logicalIndexAt(0) >= 0
                                                ? horizontalHeader()->logicalIndexAt(0)
                                                : 0));
}

CNyrHeaderCtrlSort* CNyrListView::GetHeaderCtrl() const
{
    return d->header;
}

void CNyrListView::SetCheckBoxes(bool on)
{
    if (d->checkBoxes == on)
        return;
    d->checkBoxes = on;
    viewport()->update();
}

bool CNyrListView::HasCheckBoxes() const
{
    return d->checkBoxes;
}

void CNyrListView::SetImageList(std::vector<QIcon> images)
{
    d->images = std::move(images);
    viewport()->update();
}

const std::vector<QIcon>& CNyrListView::GetImageList() const
{
    return d->images;
}

void CNyrListView::SetInifileSection(const std::string& section)
{
    d->inifileSection = section;
}

std::string CNyrListView::InifileSection() const
{
    return d->inifileSection.empty() ? std::string(metaObject()->className()) : d->inifileSection;
}

void CNyrListView::SetPrintTitle(const std::string& title)
{
    d->printTitle = title;
}

std::string CNyrListView::GetPrintTitle() const
{
    return d->printTitle.empty() ? window()->windowTitle().toStdString() : d->printTitle;
}

void CNyrListView::SetSuppressSelectNotifications(bool suppress)
{
    d->suppressSelect = suppress;
}

bool CNyrListView::GetSuppressSelectNotifications() const
{
    return d->suppressSelect;
}

void CNyrListView::SetSuppressCheckNotifications(bool suppress)
{
    d->suppressCheck = suppress;
}

bool CNyrListView::GetSuppressCheckNotifications() const
{
    return d->suppressCheck;
}

void CNyrListView::SetSuppressAllNotifications(bool suppress)
{
    d->suppressSelect = suppress;
    d->suppressCheck = suppress;
}

bool CNyrListView::GetSuppressAllNotifications() const
{
    return d->suppressSelect && d->suppressCheck;
}

void CNyrListView::SaveAllSuppressNotifications()
{
    d->hasSaved = true;
    d->savedSelect = d->suppressSelect;
    d->savedCheck = d->suppressCheck;
}

int CNyrListView::RestoreAllSuppressNotifications()
{
    if (!d->hasSaved)
        return 0;
    d->hasSaved = false;
    d->suppressSelect = d->savedSelect;
    d->suppressCheck = d->savedCheck;
    return 1;
}

bool CNyrListView::HasSavedSuppressNotifications() const
{
    return d->hasSaved;
}

void CNyrListView::ShowSortMarks(const std::vector<SORT_STATE_SCREENCOL>& state)
{
    d->sortState = state;
    std::vector<CNyrHeaderCtrlSort::SORT_COL> marks;
    for (const SORT_STATE_SCREENCOL& s : state) {
        if (s.screenCol == NYR_NO_INDEX)
            break;
        if (s.screenCol < static_cast<unsigned int>(model()->columnCount()))
            marks.push_back({static_cast<int>(s.screenCol), s.ascending});
    }
    d->header->SetSortColumns(marks);
}

void CNyrListView::GetSortState(std::vector<SORT_STATE_SCREENCOL>& state) const
{
    state = d->sortState;
}

void CNyrListView::OnHeaderClick(int screenCol)
{
    if (screenCol < 0)
        return;
    const auto col = static_cast<unsigned int>(screenCol);
    const bool same = d->sortState.size() == 1 && d->sortState[0].screenCol == col;
    SortList({SORT_STATE_SCREENCOL{col, same ? !d->sortState[0].ascending : 1}});
}

void CNyrListView::SortList(const std::vector<SORT_STATE_SCREENCOL>& state)
{
    ShowSortMarks(state);
    if (!d->plain || d->plain->rows.size() < 2)
        return;
    CNyrWaitCursor wait;
    // Rows are compared by their positions before the sort; equal rows keep
    // their order.
    std::vector<int> order(d->plain->rows.size());
    std::iota(order.begin(), order.end(), 0);
    nyr::NyrSampleSort(order.begin(), order.end(), [this, &state](int a, int b) {
        for (const SORT_STATE_SCREENCOL& s : state) {
            if (s.screenCol == NYR_NO_INDEX)
                break;
            const int r = OnCompareItems(a, b, s.screenCol);
            if (r != 0)
                return s.ascending ? r < 0 : r > 0;
        }
        return a < b;
    });
    d->plain->ApplyRowOrder(order);
}

int CNyrListView::OnCompareItems(int item1, int item2, unsigned int screenCol)
{
    if (!d->plain || screenCol >= d->plain->columns.size())
        return 0;
    const int r = std::strcmp(d->plain->Text(item1, static_cast<int>(screenCol)).c_str(),
                              d->plain->Text(item2, static_cast<int>(screenCol)).c_str());
    return (r > 0) - (r < 0);
}

int CNyrListView::InsertColumn(int screenCol, const std::string& label, int alignment, int width)
{
    if (!d->plain || screenCol < 0)
        return -1;
    const int col = std::min(screenCol, GetColumnCount());
    d->plain->InsertColumnAt(col, {label, alignment});
    d->header->resizeSection(col, width);
    return col;
}

int CNyrListView::DeleteColumn(int screenCol)
{
    if (!d->plain || !RowInRange(screenCol, GetColumnCount()))
        return 0;
    d->plain->RemoveColumnAt(screenCol);
    return 1;
}

int CNyrListView::InsertItem(int screenItem, const std::string& text)
{
    if (!d->plain || screenItem < 0)
        return -1;
    const int row = std::min(screenItem, GetItemCount());
    CNyrListCtrlModel::Row r;
    r.texts.push_back(text);
    d->plain->InsertRowAt(row, std::move(r));
    return row;
}

int CNyrListView::SetItemText(int screenItem, int screenCol, const std::string& text)
{
    if (!d->plain || !RowInRange(screenItem, GetItemCount()) || !RowInRange(screenCol, GetColumnCount()))
        return 0;
    auto& texts = d->plain->rows[static_cast<std::size_t>(screenItem)].texts;
    if (texts.size() <= static_cast<std::size_t>(screenCol))
        texts.resize(static_cast<std::size_t>(screenCol) + 1);
    texts[static_cast<std::size_t>(screenCol)] = text;
    d->plain->CellChanged(screenItem, screenCol);
    return 1;
}

int CNyrListView::DeleteItem(int screenItem)
{
    if (!d->plain || !RowInRange(screenItem, GetItemCount()))
        return 0;
    d->plain->RemoveRowAt(screenItem);
    return 1;
}

int CNyrListView::DeleteAllItems()
{
    if (!d->plain)
        return 0;
    d->plain->RemoveAllRows();
    return 1;
}

int CNyrListView::SetItemData(int screenItem, quintptr value)
{
    if (!d->plain || !RowInRange(screenItem, GetItemCount()))
        return 0;
    d->plain->rows[static_cast<std::size_t>(screenItem)].data = value;
    return 1;
}

quintptr CNyrListView::GetItemData(int screenItem) const
{
    if (!d->plain || !RowInRange(screenItem, GetItemCount()))
        return 0;
    return d->plain->rows[static_cast<std::size_t>(screenItem)].data;
}

int CNyrListView::FindItemByData(quintptr value) const
{
    if (!d->plain)
        return -1;
    for (std::size_t i = 0; i < d->plain->rows.size(); ++i) {
        if (d->plain->rows[i].data == value)
            return static_cast<int>(i);
    }
    return -1;
}

void CNyrListView::SelectScreenItems(const std::vector<int>& screenItems, int keepOthers)
{
    // One selection of runs of rows: a selection model fed row by row slows
    // down with every range it holds.
    std::vector<int> rows;
    rows.reserve(screenItems.size());
    const int count = model()->rowCount();
    for (int r : screenItems) {
        if (RowInRange(r, count))
            rows.push_back(r);
    }
    std::sort(rows.begin(), rows.end());
    QItemSelection selection;
    const int lastCol = std::max(0, model()->columnCount() - 1);
    for (std::size_t i = 0; i < rows.size();) {
        std::size_t j = i;
        while (j + 1 < rows.size() && rows[j + 1] <= rows[j] + 1)
            ++j;
        selection.append(QItemSelectionRange(model()->index(rows[i], 0), model()->index(rows[j], lastCol)));
        i = j + 1;
    }
    selectionModel()->select(selection, keepOthers ? QItemSelectionModel::Select : QItemSelectionModel::ClearAndSelect);
}

void CNyrListView::CheckScreenItems(const std::vector<int>& screenItems, int keepOthers)
{
    const int count = GetItemCount();
    std::vector<char> check(static_cast<std::size_t>(std::max(count, 0)), 0);
    for (int r : screenItems) {
        if (RowInRange(r, count))
            check[static_cast<std::size_t>(r)] = 1;
    }
    for (int r = 0; r < count; ++r) {
        if (check[static_cast<std::size_t>(r)])
            SetCheck(r, 1);
        else if (!keepOthers && GetCheck(r))
            SetCheck(r, 0);
    }
}

CNyrListViewFind& CNyrListView::GetFind()
{
    if (!d->find)
        d->find = std::make_unique<CNyrListViewFind>(this);
    return *d->find;
}

void CNyrListView::ShowFindDialog(unsigned int screenCol)
{
    GetFind().ShowFindDialog(screenCol);
}

void CNyrListView::HideFindDialog()
{
    if (d->find)
        d->find->HideFindDialog();
}

int CNyrListView::RestoreFindDialog(int activate)
{
    return d->find ? d->find->RestoreFindDialog(activate) : 0;
}

int CNyrListView::FindNext(int forward)
{
    return GetFind().FindNext(forward);
}

int CNyrListView::SaveAs()
{
    CNyrListViewSaveAsDlgCV::SAVE_AS_INFO info;
    info.list = this;
    OnSaveAsBegin(info);
    CNyrListViewSaveAsDlgCV dialog(info, this);
    return dialog.Run(InifileSection());
}

bool CNyrListView::event(QEvent* e)
{
    if (CNyrMessageEvent* m = CNyrMessageEvent::From(e)) {
        const unsigned int message = m->Message();
        if (message == WM_NYR_REPORTVIEW_FIND)
            ShowFindDialog();
        else if (message == WM_NYR_REPORTVIEW_FIND_NEXT || message == WM_NYR_REPORTVIEW_FIND_PREV)
            FindNext(message == WM_NYR_REPORTVIEW_FIND_NEXT);
        else if (message == WM_NYR_REPORTVIEW_SAVE_AS)
            SaveAs();
        else if (!nyr::views_detail::OnPrintCommand(*this, message))
            return QTableView::event(e);
        m->SetResult(1);
        return true;
    }
    return QTableView::event(e);
}

void CNyrListView::keyPressEvent(QKeyEvent* e)
{
    const auto modifiers = e->modifiers() & ~Qt::KeypadModifier;
    if (e->matches(QKeySequence::Find)) {
        ShowFindDialog();
    } else if (e->key() == Qt::Key_F3 && (modifiers == Qt::NoModifier || modifiers == Qt::ShiftModifier)) {
        FindNext(modifiers == Qt::NoModifier);
    } else if (e->matches(QKeySequence::FindNext) || e->matches(QKeySequence::FindPrevious)) {
        FindNext(e->matches(QKeySequence::FindNext));
    } else if (e->matches(QKeySequence::Print)) {
        Print();
    } else {
        QTableView::keyPressEvent(e);
        return;
    }
    e->accept();
}
