#include "nyrwidgets/views/view_print_dlg.h"

#include <QButtonGroup>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/platform/string_format.h"
#include "nyrwidgets/app/browse.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"
#include "nyrwidgets/views/list_view.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/view_print_p.h"

namespace {

QString Text(unsigned int id)
{
    return QString::fromStdString(NyrLoadString(id));
}

// Two or three radio buttons in a titled group; the first is checked.
QGroupBox* RadioGroup(QWidget* parent, unsigned int titleId, std::initializer_list<unsigned int> textIds,
                      QRadioButton** buttons)
{
    auto* box = new QGroupBox(Text(titleId), parent);
    auto* layout = new QVBoxLayout(box);
    auto* group = new QButtonGroup(box);
    int i = 0;
    for (unsigned int id : textIds) {
        buttons[i] = new QRadioButton(Text(id), box);
        group->addButton(buttons[i], i);
        layout->addWidget(buttons[i]);
        ++i;
    }
    buttons[0]->setChecked(true);
    return box;
}

// Whether any row of the list is selected (what == 1) or checked (2).
bool AnyRow(const CNyrListView& list, int what)
{
    if (const auto* report = qobject_cast<const CNyrReportView*>(&list))
        return what == CNyrListViewPrint::PrintSelected ? report->GetItemsSelected() : report->GetItemsChecked();
    if (what == CNyrListViewPrint::PrintSelected)
        return list.selectionModel() && list.selectionModel()->hasSelection();
    for (int row = 0, rows = list.GetItemCount(); row < rows; ++row) {
        if (list.GetCheck(row))
            return true;
    }
    return false;
}

}  // namespace

struct CNyrListViewPrintDlg::Private
{
    CNyrListViewPrint::PRINT_INFO* info;
    int mode;
    QRadioButton* printWhat[3] = {};
    QRadioButton* fit[2] = {};        // fit to width, keep widths
    QRadioButton* orientation[2] = {};  // portrait, landscape
    QSpinBox* margins[4] = {};
    QLineEdit* fileName = nullptr;
    int pagesWritten = 0;
};

CNyrListViewPrintDlg::CNyrListViewPrintDlg(CNyrListViewPrint::PRINT_INFO& info, int mode, QWidget* parent)
    : CNyrDialog(parent, "CNyrListViewPrintDlg"), d(new Private{&info, mode})
{
    setWindowTitle(
        QString::fromStdString(nyr::views_detail::MenuTextAsTitle(mode == ModePdf       ? NYR_IDS_MENU_EXPORT_PDF
                                                                  : mode == ModePreview ? NYR_IDS_MENU_PRINT_PREVIEW
                                                                                        : NYR_IDS_MENU_PRINT)));
    auto* grid = new QGridLayout;
    ContentLayout()->addLayout(grid);
    int row = 0;
    if (mode == ModePdf) {
        d->fileName = new QLineEdit(this);
        auto* label = new QLabel(Text(NYR_IDS_FILE_DLG_FILE_NAME), this);
        label->setBuddy(d->fileName);
        auto* browse = new QToolButton(this);
        browse->setText(QStringLiteral("..."));
        browse->setToolTip(Text(56118));
        connect(browse, &QToolButton::clicked, this, &CNyrListViewPrintDlg::Browse);
        auto* line = new QHBoxLayout;
        line->addWidget(label);
        line->addWidget(d->fileName, 1);
        line->addWidget(browse);
        grid->addLayout(line, row++, 0, 1, 2);
    }
    grid->addWidget(RadioGroup(this, NYR_IDS_PRINT_ROWS,
                               {NYR_IDS_ROWS_ALL, NYR_IDS_ROWS_SELECTED, NYR_IDS_ROWS_CHECKED}, d->printWhat),
                    row, 0);
    grid->addWidget(
        RadioGroup(this, NYR_IDS_PRINT_LAYOUT, {NYR_IDS_PRINT_FIT_WIDTH, NYR_IDS_PRINT_KEEP_WIDTHS}, d->fit), row++, 1);
    grid->addWidget(
        RadioGroup(this, NYR_IDS_PRINT_ORIENTATION, {NYR_IDS_PRINT_PORTRAIT, NYR_IDS_PRINT_LANDSCAPE}, d->orientation),
        row, 0);
    auto* marginBox = new QGroupBox(Text(NYR_IDS_PRINT_MARGINS), this);
    auto* form = new QFormLayout(marginBox);
    for (int side = 0; side < 4; ++side) {
        d->margins[side] = new QSpinBox(marginBox);
        d->margins[side]->setRange(0, 100);
        form->addRow(Text(NYR_IDS_PRINT_MARGIN_LEFT + static_cast<unsigned int>(side)), d->margins[side]);
    }
    grid->addWidget(marginBox, row, 1);
    InfoToControls();
}

CNyrListViewPrintDlg::~CNyrListViewPrintDlg() = default;

void CNyrListViewPrintDlg::InfoToControls()
{
    const CNyrListViewPrint::PRINT_INFO& info = *d->info;
    const int what = info.printWhat >= 0 && info.printWhat < 3 ? info.printWhat : CNyrListViewPrint::PrintAll;
    d->printWhat[what]->setChecked(true);
    d->fit[info.fitToWidth ? 0 : 1]->setChecked(true);
    d->orientation[info.landscape ? 1 : 0]->setChecked(true);
    const int values[4] = {info.marginsMm.left(), info.marginsMm.top(), info.marginsMm.right(),
                           info.marginsMm.bottom()};
    for (int side = 0; side < 4; ++side)
        d->margins[side]->setValue(values[side]);
    if (d->fileName)
        d->fileName->setText(QString::fromStdString(info.fileName));
}

void CNyrListViewPrintDlg::ControlsToInfo()
{
    CNyrListViewPrint::PRINT_INFO& info = *d->info;
    for (int i = 0; i < 3; ++i) {
        if (d->printWhat[i]->isChecked())
            info.printWhat = i;
    }
    info.fitToWidth = d->fit[0]->isChecked();
    info.landscape = d->orientation[1]->isChecked();
    info.marginsMm = QMargins(d->margins[SideLeft]->value(), d->margins[SideTop]->value(),
                              d->margins[SideRight]->value(), d->margins[SideBottom]->value());
    if (d->fileName)
        info.fileName = d->fileName->text().trimmed().toStdString();
}

void CNyrListViewPrintDlg::UpdateRowChoice()
{
    const CNyrListView* list = d->info->list;
    for (int what : {CNyrListViewPrint::PrintSelected, CNyrListViewPrint::PrintChecked}) {
        const bool enabled = list && AnyRow(*list, what);
        d->printWhat[what]->setEnabled(enabled);
        if (!enabled && d->printWhat[what]->isChecked())
            d->printWhat[CNyrListViewPrint::PrintAll]->setChecked(true);
    }
}

void CNyrListViewPrintDlg::showEvent(QShowEvent* e)
{
    UpdateRowChoice();
    CNyrDialog::showEvent(e);
}

int CNyrListViewPrintDlg::Run(const std::string& section)
{
    CNyrListViewPrint::LoadCustomProperties(*d->info, section);
    InfoToControls();
    if (Exec() != QDialog::Accepted)
        return 0;
    CNyrListViewPrint::StoreCustomProperties(*d->info, section);
    return 1;
}

bool CNyrListViewPrintDlg::OnOK()
{
    ControlsToInfo();
    return d->mode != ModePdf || WritePdf();
}

bool CNyrListViewPrintDlg::WritePdf()
{
    CNyrListViewPrint::PRINT_INFO& info = *d->info;
    const std::string caption = windowTitle().toStdString();
    if (info.fileName.empty()) {
        NyrMessageBox(NyrLoadString(NYR_IDS_FILE_NAME_EMPTY), caption, NYR_MB_OK | NYR_MB_ICONWARNING);
        d->fileName->setFocus();
        return false;
    }
    if (QFileInfo(QString::fromStdString(info.fileName)).suffix().isEmpty()) {
        info.fileName += ".pdf";
        d->fileName->setText(QString::fromStdString(info.fileName));
    }
    if (!CNyrBrowse::ConfirmReplace(this, QString::fromStdString(info.fileName), windowTitle())) {
        d->fileName->setFocus();
        return false;
    }
    std::string error;
    CNyrWaitCursor wait;
    d->pagesWritten = NyrExportListViewPdf(info, &error);
    if (d->pagesWritten == 0) {
        NyrMessageBox(error, caption, NYR_MB_OK | NYR_MB_ICONERROR);
        d->fileName->setFocus();
        return false;
    }
    return true;
}

void CNyrListViewPrintDlg::Browse()
{
    const QString file = CNyrBrowse::Browse(this, CNyrBrowse::eSaveFile, QStringLiteral("CNyrListViewPrintDlg"),
                                            d->fileName->text(), Text(NYR_IDS_FILTER_PDF) + QStringLiteral("|*.pdf||"));
    if (!file.isEmpty())
        d->fileName->setText(file);
}

int CNyrListViewPrintDlg::GetPageCount() const
{
    return d->pagesWritten;
}

QRadioButton* CNyrListViewPrintDlg::PrintWhatButton(int printWhat) const
{
    return printWhat >= 0 && printWhat < 3 ? d->printWhat[printWhat] : nullptr;
}

QRadioButton* CNyrListViewPrintDlg::FitToWidthButton(bool fit) const
{
    return d->fit[fit ? 0 : 1];
}

QRadioButton* CNyrListViewPrintDlg::LandscapeButton(bool landscape) const
{
    return d->orientation[landscape ? 1 : 0];
}

QSpinBox* CNyrListViewPrintDlg::MarginBox(int side) const
{
    return side >= 0 && side < 4 ? d->margins[side] : nullptr;
}

QLineEdit* CNyrListViewPrintDlg::FileNameEdit() const
{
    return d->fileName;
}
