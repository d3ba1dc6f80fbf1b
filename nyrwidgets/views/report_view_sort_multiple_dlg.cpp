#include "nyrwidgets/views/report_view_sort_multiple_dlg.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/views/report_view_col.h"

namespace {

constexpr int kKeys = 3;
constexpr unsigned kMbIconExclamation = 0x30;

QString MenuText(unsigned id)
{
    // A menu text without its mnemonic, shortcut and trailing dots.
    QString text = QString::fromStdString(NyrLoadString(id));
    text = text.section(QLatin1Char('\t'), 0, 0).remove(QLatin1Char('&'));
    while (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

}  // namespace

struct CNyrReportViewSortMultipleDlg::Private
{
    QComboBox* choice[kKeys] = {};
    QRadioButton* ascending[kKeys] = {};
    QRadioButton* descending[kKeys] = {};
};

CNyrReportViewSortMultipleDlg::CNyrReportViewSortMultipleDlg(CNyrReportView* view, QWidget* parent)
    : QDialog(parent ? parent : view), d(new Private)
{
    setWindowTitle(MenuText(26044));
    auto* grid = new QGridLayout;
    // Alt+1, Alt+2, Alt+3 reach the column choices. The direction buttons of
    // the three rows share their texts, so they carry no mnemonic (Tab and
    // the arrow keys reach them).
    const QString ascending = MenuText(26024);
    const QString descending = MenuText(26025);
    for (int k = 0; k < kKeys; ++k) {
        QComboBox* box = d->choice[k] = new QComboBox(this);
        auto* label = new QLabel(QLatin1Char('&') + QString::number(k + 1) + QLatin1Char('.'), this);
        label->setBuddy(box);
        grid->addWidget(label, k, 0);
        box->addItem(QString(), kNoColumn);
        for (unsigned int c = 0; view && c < view->GetRealColumns(); ++c) {
            const CNyrReportViewCol* col = view->GetRealCol(c);
            if (!col->IsDeleted())
                box->addItem(QString::fromStdString(col->GetLabel()), static_cast<int>(c));
        }
        grid->addWidget(box, k, 1);
        auto* group = new QButtonGroup(this);
        d->ascending[k] = new QRadioButton(ascending, this);
        d->descending[k] = new QRadioButton(descending, this);
        group->addButton(d->ascending[k]);
        group->addButton(d->descending[k]);
        d->ascending[k]->setChecked(true);
        grid->addWidget(d->ascending[k], k, 2);
        grid->addWidget(d->descending[k], k, 3);
    }
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(QString::fromStdString(NyrLoadString(26099)), QDialogButtonBox::AcceptRole);
    buttons->addButton(QString::fromStdString(NyrLoadString(26100)), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    grid->addWidget(buttons, kKeys, 0, 1, 4);
    setLayout(grid);

    if (view) {
        std::vector<CNyrReportView::SORT_STATE_REALCOL> state;
        view->GetSortState(state);
        for (int k = 0; k < kKeys && static_cast<std::size_t>(k) < state.size(); ++k) {
            if (state[static_cast<std::size_t>(k)].realCol == NYR_NO_INDEX)
                break;
            SetChoice(k, static_cast<int>(state[static_cast<std::size_t>(k)].realCol),
                      state[static_cast<std::size_t>(k)].ascending);
        }
    }
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
        NyrMessageBox(NyrLoadString(26094), windowTitle().toStdString(), kMbIconExclamation);
        d->choice[offending]->setFocus();
        return;
    }
    QDialog::accept();
}
