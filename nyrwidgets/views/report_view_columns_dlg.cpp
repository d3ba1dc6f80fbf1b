#include "nyrwidgets/views/report_view_columns_dlg.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "nyr/frame/text_ids.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/views_text_p.h"

using nyr::views_detail::Text;

namespace {

constexpr int kLabelColumn = 0;
constexpr int kWidthColumn = 1;
constexpr int kMaxWidth = 32767;
constexpr int kRealColRole = Qt::UserRole + 1;

// The dialog's own labels in the text table.

// Widths are edited in a spin box of the valid range.
class WidthDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        auto* box = new QSpinBox(parent);
        box->setRange(0, kMaxWidth);
        box->setFrame(false);
        return box;
    }
};

// The view's columns as the dialog lists them first: the visible ones by
// display position, then the hidden ones in real order.
std::vector<CNyrReportViewColumnsDlg::COLUMN> ColumnsOnScreen(const CNyrReportView& view)
{
    std::vector<CNyrReportViewColumnsDlg::COLUMN> columns;
    std::vector<std::pair<int, unsigned int>> shown;  // (display position, real column)
    for (unsigned int c = 0; c < view.GetRealColumns(); ++c) {
        if (view.GetRealCol(c)->IsVisible())
            shown.emplace_back(view.GetColumnOrder(view.ScreenColFromReal(c)), c);
    }
    std::sort(shown.begin(), shown.end());
    for (const auto& [position, c] : shown)
        columns.push_back({c, true, view.horizontalHeader()->sectionSize(view.ScreenColFromReal(c))});
    for (unsigned int c = 0; c < view.GetRealColumns(); ++c) {
        const CNyrReportViewCol* col = view.GetRealCol(c);
        if (col->IsHidden() && !col->IsDeleted())
            columns.push_back({c, false, col->GetWidth()});
    }
    return columns;
}

}  // namespace

struct CNyrReportViewColumnsDlg::Private
{
    CNyrReportView* view;
    unsigned int style = 0;
    QTableWidget* list = nullptr;
    QCheckBox* all = nullptr;
    QPushButton* up = nullptr;
    QPushButton* down = nullptr;
    QPushButton* defaults = nullptr;
    QPushButton* ok = nullptr;
    QDialogButtonBox* buttons = nullptr;
    bool updating = false;  // set while rows are filled or moved: their changes are not the user's

    void CreateControls(QDialog* dialog)
    {
        all = new QCheckBox(Text(NYR_IDS_ALL_COLUMNS), dialog);
        all->setTristate(true);
        all->setEnabled(style & CNyrReportView::ColumnsDlgVisibility);
        list = new QTableWidget(0, 2, dialog);
        list->setHorizontalHeaderLabels({Text(NYR_IDS_HEADING_COLUMN), Text(NYR_IDS_COLUMNS_WIDTH)});
        list->horizontalHeader()->setSectionResizeMode(kLabelColumn, QHeaderView::Stretch);
        list->verticalHeader()->hide();
        list->setSelectionBehavior(QAbstractItemView::SelectRows);
        list->setSelectionMode(QAbstractItemView::SingleSelection);
        list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                              QAbstractItemView::AnyKeyPressed);
        list->setItemDelegateForColumn(kWidthColumn, new WidthDelegate(list));
        up = new QPushButton(Text(NYR_IDS_COLUMNS_MOVE_UP), dialog);
        down = new QPushButton(Text(NYR_IDS_COLUMNS_MOVE_DOWN), dialog);
        defaults = new QPushButton(Text(NYR_IDS_COLUMNS_DEFAULTS), dialog);
        up->setVisible(style & CNyrReportView::ColumnsDlgOrder);
        down->setVisible(style & CNyrReportView::ColumnsDlgOrder);
        defaults->setVisible(style & CNyrReportView::ColumnsDlgDefaults);
        buttons = new QDialogButtonBox(dialog);
        ok = buttons->addButton(Text(NYR_IDS_BUTTON_OK), QDialogButtonBox::AcceptRole);
        buttons->addButton(Text(NYR_IDS_BUTTON_CANCEL), QDialogButtonBox::RejectRole);
    }

    // "[All columns]" on top, the list with the move and defaults buttons
    // beside it, OK and Cancel below.
    void LayOut(QDialog* dialog)
    {
        auto* side = new QVBoxLayout;
        side->addWidget(up);
        side->addWidget(down);
        side->addStretch();
        side->addWidget(defaults);
        auto* middle = new QHBoxLayout;
        middle->addWidget(list, 1);
        middle->addLayout(side);
        auto* layout = new QVBoxLayout(dialog);
        layout->addWidget(all);
        layout->addLayout(middle, 1);
        layout->addWidget(buttons);
    }

    void AddRow(const CNyrReportViewCol* col, unsigned int realCol, bool visible, int width)
    {
        const int row = list->rowCount();
        list->insertRow(row);
        auto* label = new QTableWidgetItem(QString::fromStdString(col->GetLabel()));
        label->setData(kRealColRole, realCol);
        Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        if (style & CNyrReportView::ColumnsDlgVisibility)
            flags |= Qt::ItemIsUserCheckable;
        label->setFlags(flags);
        label->setCheckState(visible ? Qt::Checked : Qt::Unchecked);
        auto* size = new QTableWidgetItem;
        size->setData(Qt::EditRole, width);
        size->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable |
                       ((style & CNyrReportView::ColumnsDlgWidth) ? Qt::ItemIsEditable : Qt::NoItemFlags));
        list->setItem(row, kLabelColumn, label);
        list->setItem(row, kWidthColumn, size);
    }

    // A click on "[All columns]", partly checked or not, checks or clears all.
    void CheckAll()
    {
        const Qt::CheckState state = all->checkState() == Qt::Unchecked ? Qt::Unchecked : Qt::Checked;
        const QScopedValueRollback filling(updating, true);
        for (int r = 0; r < list->rowCount(); ++r)
            list->item(r, kLabelColumn)->setCheckState(state);
    }
};

CNyrReportViewColumnsDlg::CNyrReportViewColumnsDlg(CNyrReportView* view, QWidget* parent)
    : QDialog(parent ? parent : view), d(new Private{view})
{
    d->style = view ? view->GetColumnsDlgStyle() : 0;
    setWindowTitle(QString::fromStdString(nyr::views_detail::MenuTextAsTitle(NYR_IDS_MENU_COLUMNS)));
    d->CreateControls(this);
    d->LayOut(this);
    connect(d->buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(d->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(d->up, &QPushButton::clicked, this, &CNyrReportViewColumnsDlg::MoveUp);
    connect(d->down, &QPushButton::clicked, this, &CNyrReportViewColumnsDlg::MoveDown);
    connect(d->defaults, &QPushButton::clicked, this, &CNyrReportViewColumnsDlg::SetDefaults);
    connect(d->list, &QTableWidget::itemChanged, this, [this] { UpdateStates(); });
    connect(d->list, &QTableWidget::currentCellChanged, this, [this] { UpdateStates(); });
    connect(d->all, &QCheckBox::clicked, this, [this] {
        d->CheckAll();
        UpdateStates();
    });
    SetColumns(view ? ColumnsOnScreen(*view) : std::vector<COLUMN>());
    resize(360, 360);
}

CNyrReportViewColumnsDlg::~CNyrReportViewColumnsDlg() = default;

std::vector<CNyrReportViewColumnsDlg::COLUMN> CNyrReportViewColumnsDlg::GetColumns() const
{
    std::vector<COLUMN> columns;
    for (int r = 0; r < d->list->rowCount(); ++r) {
        const QTableWidgetItem* label = d->list->item(r, kLabelColumn);
        columns.push_back({label->data(kRealColRole).toUInt(), label->checkState() == Qt::Checked,
                           std::clamp(d->list->item(r, kWidthColumn)->data(Qt::EditRole).toInt(), 0, kMaxWidth)});
    }
    return columns;
}

void CNyrReportViewColumnsDlg::SetColumns(const std::vector<COLUMN>& columns)
{
    {
        const QScopedValueRollback filling(d->updating, true);
        d->list->setRowCount(0);
        for (const COLUMN& c : columns) {
            const CNyrReportViewCol* col = d->view ? d->view->GetRealCol(c.realCol) : nullptr;
            if (col && !col->IsDeleted())
                d->AddRow(col, c.realCol, c.visible, std::clamp(c.width, 0, kMaxWidth));
        }
    }
    if (d->list->rowCount() > 0)
        d->list->setCurrentCell(0, kLabelColumn);
    UpdateStates();
}

void CNyrReportViewColumnsDlg::MoveRow(int from, int to)
{
    if (from < 0 || to < 0 || from >= d->list->rowCount() || to >= d->list->rowCount())
        return;
    {
        const QScopedValueRollback moving(d->updating, true);
        for (int c : {kLabelColumn, kWidthColumn}) {
            QTableWidgetItem* a = d->list->takeItem(from, c);
            QTableWidgetItem* b = d->list->takeItem(to, c);
            d->list->setItem(from, c, b);
            d->list->setItem(to, c, a);
        }
    }
    d->list->setCurrentCell(to, kLabelColumn);
    UpdateStates();
}

void CNyrReportViewColumnsDlg::MoveUp()
{
    const int row = d->list->currentRow();
    MoveRow(row, row - 1);
}

void CNyrReportViewColumnsDlg::MoveDown()
{
    const int row = d->list->currentRow();
    MoveRow(row, row + 1);
}

void CNyrReportViewColumnsDlg::SetDefaults()
{
    if (!d->view)
        return;
    std::vector<std::pair<int, unsigned int>> byOrder;  // (default order, real column)
    for (unsigned int c = 0; c < d->view->GetRealColumns(); ++c) {
        if (!d->view->GetRealCol(c)->IsDeleted())
            byOrder.emplace_back(d->view->GetRealColOrderDefault(c), c);
    }
    std::stable_sort(byOrder.begin(), byOrder.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<COLUMN> columns;
    for (const auto& [order, c] : byOrder) {
        const CNyrReportViewCol* col = d->view->GetRealCol(c);
        columns.push_back({c, !col->GetHiddenDefault(), col->GetWidthDefault()});
    }
    SetColumns(columns);
}

void CNyrReportViewColumnsDlg::UpdateStates()
{
    if (d->updating)
        return;
    int checked = 0;
    const int rows = d->list->rowCount();
    for (int r = 0; r < rows; ++r)
        checked += d->list->item(r, kLabelColumn)->checkState() == Qt::Checked ? 1 : 0;
    d->all->setCheckState(checked == 0 ? Qt::Unchecked : checked == rows ? Qt::Checked : Qt::PartiallyChecked);
    d->ok->setEnabled(checked > 0);
    const int row = d->list->currentRow();
    d->up->setEnabled(row > 0);
    d->down->setEnabled(row >= 0 && row + 1 < rows);
}

QTableWidget* CNyrReportViewColumnsDlg::ColumnList() const
{
    return d->list;
}

QCheckBox* CNyrReportViewColumnsDlg::AllColumnsBox() const
{
    return d->all;
}

QPushButton* CNyrReportViewColumnsDlg::MoveUpButton() const
{
    return d->up;
}

QPushButton* CNyrReportViewColumnsDlg::MoveDownButton() const
{
    return d->down;
}

QPushButton* CNyrReportViewColumnsDlg::DefaultsButton() const
{
    return d->defaults;
}

QPushButton* CNyrReportViewColumnsDlg::OkButton() const
{
    return d->ok;
}
