#include "nyrwidgets/views/list_view_find_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>
#include <array>

#include "nyr/frame/text_ids.h"
#include "nyrwidgets/views/list_view.h"
#include "nyrwidgets/views/list_view_find.h"
#include "nyrwidgets/views/views_text_p.h"

using nyr::views_detail::MenuTextAsButton;
using nyr::views_detail::Text;
using Crit = CNyrListViewFind::CSearchCrit;

namespace {

// The dialog's own labels in the text table.

}  // namespace

struct CNyrListViewFindDialog::Private
{
    CNyrListViewFind* finder;
    QLineEdit* search = nullptr;
    QComboBox* column = nullptr;
    QCheckBox* matchWord = nullptr;
    QCheckBox* matchCase = nullptr;
    QCheckBox* fromBeginning = nullptr;
    QPushButton* findNext = nullptr;
    QPushButton* findPrev = nullptr;
    QPushButton* selectAll = nullptr;
    QPushButton* addToSelection = nullptr;
    QPushButton* checkAll = nullptr;
    QPushButton* addToChecked = nullptr;
    QPushButton* close = nullptr;
    bool updating = false;  // set while the controls are filled from the criteria

    // The buttons down the right side, in order.
    std::array<QPushButton*, 6> Buttons() const
    {
        return {findNext, findPrev, selectAll, addToSelection, checkAll, addToChecked};
    }

    void CreateControls(QDialog* dialog)
    {
        search = new QLineEdit(dialog);
        column = new QComboBox(dialog);
        matchWord = new QCheckBox(Text(NYR_IDS_FIND_WHOLE_WORD), dialog);
        matchCase = new QCheckBox(Text(NYR_IDS_FIND_MATCH_CASE), dialog);
        fromBeginning = new QCheckBox(Text(NYR_IDS_FIND_FROM_BEGINNING), dialog);
        findNext = new QPushButton(MenuTextAsButton(NYR_IDS_MENU_FIND_NEXT), dialog);
        findPrev = new QPushButton(MenuTextAsButton(NYR_IDS_MENU_FIND_PREVIOUS), dialog);
        selectAll = new QPushButton(MenuTextAsButton(NYR_IDS_MENU_SELECT_ALL), dialog);
        addToSelection = new QPushButton(Text(NYR_IDS_FIND_ADD_TO_SELECTION), dialog);
        checkAll = new QPushButton(MenuTextAsButton(NYR_IDS_MENU_CHECK_ALL), dialog);
        addToChecked = new QPushButton(Text(NYR_IDS_FIND_ADD_TO_CHECKED), dialog);
        close = new QPushButton(Text(NYR_IDS_TIP_CLOSE), dialog);
        findNext->setDefault(true);
        findNext->setAutoDefault(true);
    }

    // The search text and column with their labels over the options on the
    // left; the buttons down the right, Close at the bottom.
    void LayOut(QDialog* dialog)
    {
        auto* fields = new QGridLayout;
        auto* searchLabel = new QLabel(Text(NYR_IDS_FIND_WHAT), dialog);
        searchLabel->setBuddy(search);
        auto* columnLabel = new QLabel(Text(NYR_IDS_FIND_IN_COLUMN), dialog);
        columnLabel->setBuddy(column);
        fields->addWidget(searchLabel, 0, 0);
        fields->addWidget(search, 0, 1);
        fields->addWidget(columnLabel, 1, 0);
        fields->addWidget(column, 1, 1);
        auto* left = new QVBoxLayout;
        left->addLayout(fields);
        for (QCheckBox* box : {matchWord, matchCase, fromBeginning})
            left->addWidget(box);
        left->addStretch();
        auto* right = new QVBoxLayout;
        for (QPushButton* b : Buttons())
            right->addWidget(b);
        right->addStretch();
        right->addWidget(close);
        auto* layout = new QHBoxLayout(dialog);
        layout->addLayout(left, 1);
        layout->addLayout(right);
    }

    // Every change of a control goes to the criteria at once.
    void ConnectCriteria(CNyrListViewFindDialog* dialog)
    {
        QObject::connect(search, &QLineEdit::textChanged, dialog, [this, dialog](const QString& text) {
            if (!updating)
                CNyrListViewFind::StaticSearchCrit().searchString = text.toStdString();
            dialog->EnableButtons();
        });
        QObject::connect(column, &QComboBox::currentIndexChanged, dialog, [this] {
            if (updating || column->currentIndex() < 0)
                return;
            Crit& crit = CNyrListViewFind::StaticSearchCrit();
            const int col = column->currentData().toInt();
            crit.searchAll = col < 0 ? 1 : 0;
            if (col >= 0)
                crit.column = col;
        });
        const auto flag = [this, dialog](QCheckBox* box, int Crit::*field) {
            QObject::connect(box, &QCheckBox::toggled, dialog, [this, field](bool on) {
                if (!updating)
                    CNyrListViewFind::StaticSearchCrit().*field = on ? 1 : 0;
            });
        };
        flag(matchWord, &Crit::matchWord);
        flag(matchCase, &Crit::matchCase);
        flag(fromBeginning, &Crit::searchFromBeginning);
    }

    // The column choice: all columns, then the view's in display order.
    void FillColumns(const CNyrListView* view)
    {
        column->clear();
        column->addItem(Text(NYR_IDS_ALL_COLUMNS), -1);
        if (!view)
            return;
        std::vector<std::pair<int, int>> byOrder;  // (display position, screen column)
        for (int c = 0; c < view->GetColumnCount(); ++c)
            byOrder.emplace_back(view->GetColumnOrder(c), c);
        std::sort(byOrder.begin(), byOrder.end());
        for (const auto& [order, c] : byOrder)
            column->addItem(QString::fromStdString(view->GetColumnLabel(c)), c);
    }
};

CNyrListViewFindDialog::CNyrListViewFindDialog(CNyrListViewFind* finder, QWidget* parent)
    : QDialog(parent, Qt::Tool), d(new Private{finder})
{
    setWindowTitle(Text(NYR_IDS_TIP_FIND));
    setModal(false);
    d->CreateControls(this);
    d->LayOut(this);
    d->ConnectCriteria(this);
    connect(d->findNext, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnFindNextClicked);
    connect(d->findPrev, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnFindPrevClicked);
    connect(d->selectAll, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnSelectAllClicked);
    connect(d->addToSelection, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnAddToSelectionClicked);
    connect(d->checkAll, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnCheckAllClicked);
    connect(d->addToChecked, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnAddToCheckedClicked);
    connect(d->close, &QPushButton::clicked, this, &QDialog::reject);
    UpdateControls();
}

CNyrListViewFindDialog::~CNyrListViewFindDialog() = default;

void CNyrListViewFindDialog::UpdateControls()
{
    Crit& crit = CNyrListViewFind::StaticSearchCrit();
    const CNyrListView* view = d->finder->GetListView();
    int choice;
    {
        const QScopedValueRollback filling(d->updating, true);
        if (d->search->text().toStdString() != crit.searchString)
            d->search->setText(QString::fromStdString(crit.searchString));
        d->FillColumns(view);
        choice = crit.searchAll || crit.column < 0 ? 0 : d->column->findData(crit.column);
        d->column->setCurrentIndex(std::max(choice, 0));
        d->matchWord->setChecked(crit.matchWord != 0);
        d->matchCase->setChecked(crit.matchCase != 0);
        d->fromBeginning->setChecked(crit.searchFromBeginning != 0);
    }
    // A column no longer on screen: the dialog shows all columns, and the
    // criteria follow what it shows.
    if (choice < 0)
        crit.searchAll = 1;
    const bool checks = view && view->HasCheckBoxes();
    d->checkAll->setVisible(checks);
    d->addToChecked->setVisible(checks);
    EnableButtons();
}

void CNyrListViewFindDialog::EnableButtons()
{
    const bool any = !d->search->text().isEmpty() && d->finder->GetListView();
    for (QPushButton* b : d->Buttons())
        b->setEnabled(any);
}

QLineEdit* CNyrListViewFindDialog::SearchEdit() const
{
    return d->search;
}

QComboBox* CNyrListViewFindDialog::ColumnBox() const
{
    return d->column;
}

QCheckBox* CNyrListViewFindDialog::MatchWordBox() const
{
    return d->matchWord;
}

QCheckBox* CNyrListViewFindDialog::MatchCaseBox() const
{
    return d->matchCase;
}

QCheckBox* CNyrListViewFindDialog::FromBeginningBox() const
{
    return d->fromBeginning;
}

QPushButton* CNyrListViewFindDialog::FindNextButton() const
{
    return d->findNext;
}

QPushButton* CNyrListViewFindDialog::FindPrevButton() const
{
    return d->findPrev;
}

QPushButton* CNyrListViewFindDialog::SelectAllButton() const
{
    return d->selectAll;
}

QPushButton* CNyrListViewFindDialog::AddToSelectionButton() const
{
    return d->addToSelection;
}

QPushButton* CNyrListViewFindDialog::CheckAllButton() const
{
    return d->checkAll;
}

QPushButton* CNyrListViewFindDialog::AddToCheckedButton() const
{
    return d->addToChecked;
}

void CNyrListViewFindDialog::OnFindNextClicked()
{
    d->finder->FindNext(1);
}

void CNyrListViewFindDialog::OnFindPrevClicked()
{
    d->finder->FindNext(0);
}

void CNyrListViewFindDialog::OnSelectAllClicked()
{
    d->finder->SelectAllMatching(CNyrListViewFind::SearchCrit(), 0);
}

void CNyrListViewFindDialog::OnAddToSelectionClicked()
{
    d->finder->SelectAllMatching(CNyrListViewFind::SearchCrit(), 1);
}

void CNyrListViewFindDialog::OnCheckAllClicked()
{
    d->finder->CheckAllMatching(CNyrListViewFind::SearchCrit(), 0);
}

void CNyrListViewFindDialog::OnAddToCheckedClicked()
{
    d->finder->CheckAllMatching(CNyrListViewFind::SearchCrit(), 1);
}

void CNyrListViewFindDialog::keyPressEvent(QKeyEvent* e)
{
    const auto modifiers = e->modifiers() & ~Qt::KeypadModifier;
    if (e->key() == Qt::Key_F3 && (modifiers == Qt::NoModifier || modifiers == Qt::ShiftModifier)) {
        if (d->findNext->isEnabled())
            d->finder->FindNext(modifiers == Qt::NoModifier);
        e->accept();
        return;
    }
    QDialog::keyPressEvent(e);
}

void CNyrListViewFindDialog::hideEvent(QHideEvent* e)
{
    d->finder->StoreDialogOptions();
    QDialog::hideEvent(e);
}
