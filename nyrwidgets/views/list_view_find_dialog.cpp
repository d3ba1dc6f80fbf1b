#include "nyrwidgets/views/list_view_find_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "nyr/frame/resource_module.h"
#include "nyrwidgets/views/list_view.h"
#include "nyrwidgets/views/list_view_find.h"

namespace {

QString Text(unsigned int id)
{
    return QString::fromStdString(NyrLoadString(id));
}

// A menu text as a button text: without its shortcut and trailing dots.
QString ButtonText(unsigned int id)
{
    QString text = Text(id).section(QLatin1Char('\t'), 0, 0);
    while (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

// The dialog's own labels in the text table.
constexpr unsigned int kFindWhat = 26295, kInColumn = 26296, kMatchWord = 26297, kMatchCase = 26298,
                       kFromBeginning = 26299, kAddToSelection = 26300, kAddToChecked = 26301;

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
    bool updating = false;  // set while the controls are filled from the criteria
};

CNyrListViewFindDialog::CNyrListViewFindDialog(CNyrListViewFind* finder, QWidget* parent)
    : QDialog(parent, Qt::Tool), d(new Private{finder})
{
    setWindowTitle(Text(56122));
    setModal(false);

    d->search = new QLineEdit(this);
    d->column = new QComboBox(this);
    d->matchWord = new QCheckBox(Text(kMatchWord), this);
    d->matchCase = new QCheckBox(Text(kMatchCase), this);
    d->fromBeginning = new QCheckBox(Text(kFromBeginning), this);
    d->findNext = new QPushButton(ButtonText(26033), this);
    d->findPrev = new QPushButton(ButtonText(26034), this);
    d->selectAll = new QPushButton(ButtonText(26035), this);
    d->addToSelection = new QPushButton(Text(kAddToSelection), this);
    d->checkAll = new QPushButton(ButtonText(26038), this);
    d->addToChecked = new QPushButton(Text(kAddToChecked), this);
    auto* close = new QPushButton(Text(56124), this);
    d->findNext->setDefault(true);
    d->findNext->setAutoDefault(true);

    auto* fields = new QGridLayout;
    auto* searchLabel = new QLabel(Text(kFindWhat), this);
    searchLabel->setBuddy(d->search);
    auto* columnLabel = new QLabel(Text(kInColumn), this);
    columnLabel->setBuddy(d->column);
    fields->addWidget(searchLabel, 0, 0);
    fields->addWidget(d->search, 0, 1);
    fields->addWidget(columnLabel, 1, 0);
    fields->addWidget(d->column, 1, 1);
    auto* left = new QVBoxLayout;
    left->addLayout(fields);
    left->addWidget(d->matchWord);
    left->addWidget(d->matchCase);
    left->addWidget(d->fromBeginning);
    left->addStretch();
    auto* right = new QVBoxLayout;
    for (QPushButton* b : {d->findNext, d->findPrev, d->selectAll, d->addToSelection, d->checkAll, d->addToChecked})
        right->addWidget(b);
    right->addStretch();
    right->addWidget(close);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(right);

    // Every change goes to the criteria at once.
    connect(d->search, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!d->updating)
            CNyrListViewFind::StaticSearchCrit().searchString = text.toStdString();
        EnableButtons();
    });
    connect(d->column, &QComboBox::currentIndexChanged, this, [this] {
        if (d->updating || d->column->currentIndex() < 0)
            return;
        CNyrListViewFind::CSearchCrit& crit = CNyrListViewFind::StaticSearchCrit();
        const int col = d->column->currentData().toInt();
        crit.searchAll = col < 0 ? 1 : 0;
        if (col >= 0)
            crit.column = col;
    });
    const auto flag = [this](QCheckBox* box, int CNyrListViewFind::CSearchCrit::*field) {
        connect(box, &QCheckBox::toggled, this, [this, field](bool on) {
            if (!d->updating)
                CNyrListViewFind::StaticSearchCrit().*field = on ? 1 : 0;
        });
    };
    flag(d->matchWord, &CNyrListViewFind::CSearchCrit::matchWord);
    flag(d->matchCase, &CNyrListViewFind::CSearchCrit::matchCase);
    flag(d->fromBeginning, &CNyrListViewFind::CSearchCrit::searchFromBeginning);
    connect(d->findNext, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnFindNextClicked);
    connect(d->findPrev, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnFindPrevClicked);
    connect(d->selectAll, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnSelectAllClicked);
    connect(d->addToSelection, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnAddToSelectionClicked);
    connect(d->checkAll, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnCheckAllClicked);
    connect(d->addToChecked, &QPushButton::clicked, this, &CNyrListViewFindDialog::OnAddToCheckedClicked);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    UpdateControls();
}

CNyrListViewFindDialog::~CNyrListViewFindDialog() = default;

void CNyrListViewFindDialog::UpdateControls()
{
    CNyrListViewFind::CSearchCrit& crit = CNyrListViewFind::StaticSearchCrit();
    const CNyrListView* view = d->finder->GetListView();
    d->updating = true;
    if (d->search->text().toStdString() != crit.searchString)
        d->search->setText(QString::fromStdString(crit.searchString));
    d->column->clear();
    d->column->addItem(Text(26008), -1);
    if (view) {
        // The columns as the user sees them: in display order.
        std::vector<std::pair<int, int>> byOrder;  // (display position, screen column)
        for (int c = 0; c < view->GetColumnCount(); ++c)
            byOrder.emplace_back(view->GetColumnOrder(c), c);
        std::sort(byOrder.begin(), byOrder.end());
        for (const auto& [order, c] : byOrder)
            d->column->addItem(QString::fromStdString(view->GetColumnLabel(c)), c);
    }
    const int choice = crit.searchAll || crit.column < 0 ? 0 : d->column->findData(crit.column);
    d->column->setCurrentIndex(std::max(choice, 0));
    d->matchWord->setChecked(crit.matchWord != 0);
    d->matchCase->setChecked(crit.matchCase != 0);
    d->fromBeginning->setChecked(crit.searchFromBeginning != 0);
    d->updating = false;
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
    for (QPushButton* b : {d->findNext, d->findPrev, d->selectAll, d->addToSelection, d->checkAll, d->addToChecked})
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
