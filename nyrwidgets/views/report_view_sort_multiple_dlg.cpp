#include "nyrwidgets/views/report_view_sort_multiple_dlg.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/views_text_p.h"

using nyr::views_detail::MenuTextAsTitle;
using nyr::views_detail::Text;

namespace {

constexpr int kKeys = 3;

}  // namespace

struct CNyrReportViewSortMultipleDlg::Private
{
    QComboBox* choice[kKeys] = {};
    QRadioButton* ascending[kKeys] = {};
    QRadioButton* descending[kKeys] = {};

    // Row `k` of the grid: its label (Alt+1, Alt+2, Alt+3 reach the column
    // choices), the choice of the view's columns that are not deleted, and
    // the two directions. The direction buttons of the three rows share
    // their texts, so they carry no mnemonic (Tab and the arrow keys reach
    // them).
    void AddKeyRow(QDialog* dialog, QGridLayout* grid, int k, const CNyrReportView* view)
    {
        QComboBox* box = choice[k] = new QComboBox(dialog);
        auto* label = new QLabel(QLatin1Char('&') + QString::number(k + 1) + QLatin1Char('.'), dialog);
        label->setBuddy(box);
        grid->addWidget(label, k, 0);
        box->addItem(QString(), kNoColumn);
        for (unsigned int c = 0; view && c < view->GetRealColumns(); ++c) {
            const CNyrReportViewCol* col = view->GetRealCol(c);
            if (!col->IsDeleted())
                box->addItem(QString::fromStdString(col->GetLabel()), static_cast<int>(c));
        }
        grid->addWidget(box, k, 1);
        auto* group = new QButtonGroup(dialog);
        ascending[k] = new QRadioButton(QString::fromStdString(MenuTextAsTitle(NYR_IDS_MENU_SORT_ASCENDING)), dialog);
        descending[k] = new QRadioButton(QString::fromStdString(MenuTextAsTitle(NYR_IDS_MENU_SORT_DESCENDING)), dialog);
        group->addButton(ascending[k]);
        group->addButton(descending[k]);
        ascending[k]->setChecked(true);
        grid->addWidget(ascending[k], k, 2);
        grid->addWidget(descending[k], k, 3);
    }
};

CNyrReportViewSortMultipleDlg::CNyrReportViewSortMultipleDlg(CNyrReportView* view, QWidget* parent)
    : QDialog(parent ? parent : view), d(new Private)
{
    setWindowTitle(QString::fromStdString(MenuTextAsTitle(NYR_IDS_MENU_SORT_MULTIPLE)));
    auto* grid = new QGridLayout(this);
    for (int k = 0; k < kKeys; ++k)
        d->AddKeyRow(this, grid, k, view);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Text(NYR_IDS_BUTTON_OK), QDialogButtonBox::AcceptRole);
    buttons->addButton(Text(NYR_IDS_BUTTON_CANCEL), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    grid->addWidget(buttons, kKeys, 0, 1, 4);

    // The view's sort state, up to its end marker.
    std::vector<CNyrReportView::SORT_STATE_REALCOL> state;
    if (view)
        view->GetSortState(state);
    for (std::size_t k = 0; k < state.size() && k < kKeys && state[k].realCol != NYR_NO_INDEX; ++k)
        SetChoice(static_cast<int>(k), static_cast<int>(state[k].realCol), state[k].ascending);
}

CNyrReportViewSortMultipleDlg::~CNyrReportViewSortMultipleDlg() = default;

void CNyrReportViewSortMultipleDlg::SetChoice(int key, int realCol, int ascending)
{
    if (key < 0 || key >= kKeys)
        return;
    const int i = d->choice[key]->findData(realCol);
    d->choice[key]->setCurrentIndex(i >= 0 ? i : 0);
    (ascending ? d->ascending[key] : d->descending[key])->setChecked(true);
}

int CNyrReportViewSortMultipleDlg::GetChoice(int key, int* ascending) const
{
    if (key < 0 || key >= kKeys)
        return kNoColumn;
    if (ascending)
        *ascending = d->ascending[key]->isChecked() ? 1 : 0;
    return d->choice[key]->currentData().toInt();
}

QComboBox* CNyrReportViewSortMultipleDlg::ChoiceBox(int key) const
{
    return key >= 0 && key < kKeys ? d->choice[key] : nullptr;
}

std::vector<CNyrReportView::SORT_STATE_REALCOL> CNyrReportViewSortMultipleDlg::GetSortState() const
{
    std::vector<CNyrReportView::SORT_STATE_REALCOL> state;
    for (int k = 0; k < kKeys; ++k) {
        int ascending = 1;
        const int col = GetChoice(k, &ascending);
        if (col != kNoColumn)
            state.push_back({static_cast<unsigned int>(col), ascending});
    }
    return state;
}

void CNyrReportViewSortMultipleDlg::accept()
{
    const int first = GetChoice(0);
    const int second = GetChoice(1);
    const int third = GetChoice(2);
    int offending = -1;
    if (second != kNoColumn && second == first)
        offending = 1;
    else if (third != kNoColumn && (third == second || third == first))
        offending = 2;
    if (offending >= 0) {
        NyrMessageBox(NyrLoadString(NYR_IDS_INPUT_COLUMN_TWICE), windowTitle().toStdString(), NYR_MB_ICONWARNING);
        d->choice[offending]->setFocus();
        return;
    }
    QDialog::accept();
}
